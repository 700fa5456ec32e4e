#pragma once

#include <QString>

/// The compiled language file of `code` ("zh_CN", "zh_TW", "en_US") as the build writes it.
inline QString languageFile(const char* code)
{
    return QStringLiteral(VEXA_TRANSLATIONS_BUILD_DIR "/vexainputsourcewidget_%1.qm")
        .arg(QLatin1String(code));
}
