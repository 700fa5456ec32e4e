// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>

#include <QString>

/// The compiled language file of `code` ("zh_CN", "zh_TW", "en_US") as the build writes it.
inline QString languageFile(const char* code)
{
    return QStringLiteral(VEXA_TRANSLATIONS_BUILD_DIR "/vexainputsourcewidget_%1.qm")
        .arg(QLatin1String(code));
}

/// Loads the compiled files of the shipped languages into the library's translator; false when
/// one is refused.
inline bool loadShippedLanguages()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    for (const char* code : {"zh_CN", "zh_TW", "en_US"}) {
        if (!translator.load(languageFile(code))) {
            return false;
        }
    }
    return true;
}
