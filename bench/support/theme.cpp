#include "support/theme.h"

#include <vexa/widgets/style.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace vexa::bench {

namespace {

QDir themesDir()
{
    return QDir(QStringLiteral(VEXA_BENCH_THEMES_DIR));
}

} // namespace

QString defaultThemeStyleSheet()
{
    QFile file(themesDir().filePath(QStringLiteral("inputsource.qss")));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return {};
    }
    // Qt resolves a relative url against the working directory, not against the sheet.
    QString sheet = QString::fromUtf8(file.readAll());
    sheet.replace(
        QRegularExpression(QStringLiteral(R"re(url\(\s*(["']?)(icons/[^"')]*)\1\s*\))re")),
        QStringLiteral("url(\"%1/\\2\")").arg(themesDir().absolutePath()));
    return vexa::widgets::defaultStyleSheet() + sheet;
}

QString defaultLoadingAnimation()
{
    return themesDir().absoluteFilePath(QStringLiteral("loading.gif"));
}

} // namespace vexa::bench
