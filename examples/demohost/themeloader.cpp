// SPDX-License-Identifier: MIT
#include "themeloader.h"

#include <vexa/diagnostics/warning.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace demohost {

namespace {

bool isRelative(const QString& url)
{
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
    return !url.startsWith(QLatin1Char('/')) && !url.startsWith(QLatin1Char(':')) &&
           !scheme.match(url).hasMatch();
}

bool holdsTheme(const QString& dir)
{
    return !dir.isEmpty() &&
           QFileInfo::exists(QDir(dir).filePath(QLatin1String(ThemeLoader::styleSheetFile)));
}

} // namespace

QString ThemeLoader::themesDir()
{
    const QString candidates[] = {
        QStringLiteral(VEXA_DEMO_THEMES_DIR),
        QDir(QCoreApplication::applicationDirPath())
            .filePath(QStringLiteral("../share/vexainputsourcewidget/themes")),
    };
    for (const QString& candidate : candidates) {
        if (holdsTheme(candidate)) {
            return QDir::cleanPath(QDir(candidate).absolutePath());
        }
    }
    return {};
}

QString ThemeLoader::styleSheet(const QString& dir, const QString& file)
{
    QFile sheet(QDir(dir).filePath(file));
    if (!sheet.open(QIODevice::ReadOnly | QIODevice::Text)) {
        VEXA_WARNING(QStringLiteral("cannot read the theme %1: %2")
                         .arg(sheet.fileName(), sheet.errorString()));
        return {};
    }
    return absoluteUrls(QString::fromUtf8(sheet.readAll()), dir);
}

QString ThemeLoader::absoluteUrls(const QString& sheet, const QString& dir)
{
    // url( path ), url('path') or url("path"); the quote, if any, must close the path.
    static const QRegularExpression url(QStringLiteral(R"re(url\(\s*(["']?)([^"')]*)\1\s*\))re"));
    const QDir base(dir);
    QString result;
    result.reserve(sheet.size());
    int copied = 0;
    QRegularExpressionMatchIterator matches = url.globalMatch(sheet);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString path = match.captured(2).trimmed();
        if (path.isEmpty() || !isRelative(path)) {
            continue;
        }
        result += sheet.midRef(copied, match.capturedStart() - copied);
        result += QStringLiteral("url(\"%1\")").arg(QDir::cleanPath(base.absoluteFilePath(path)));
        copied = match.capturedEnd();
    }
    result += sheet.midRef(copied);
    return result;
}

QString ThemeLoader::loadingAnimation(const QString& dir)
{
    return QDir::cleanPath(QDir(dir).absoluteFilePath(QLatin1String(loadingAnimationFile)));
}

} // namespace demohost
