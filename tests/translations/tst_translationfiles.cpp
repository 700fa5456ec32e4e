// SPDX-License-Identifier: MIT
#include <quandel/trans/translator.h>

#include <QtTest>

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <map>
#include <set>

namespace {

struct LanguageFile
{
    QString path;
    QString language;
    // key -> translation, for the messages of the library's scopes that lrelease compiles
    std::map<QString, QString> texts;
    QStringList problems;
};

LanguageFile readTs(const QString& path)
{
    LanguageFile file;
    file.path = path;
    QFile input(path);
    if (!input.open(QIODevice::ReadOnly)) {
        file.problems << QStringLiteral("cannot open");
        return file;
    }
    QXmlStreamReader xml(&input);
    QString context;
    QString source;
    QString comment;
    QString translation;
    QString type;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            const auto name = xml.name();
            if (name == QLatin1String("TS")) {
                file.language = xml.attributes().value(QLatin1String("language")).toString();
            } else if (name == QLatin1String("name")) {
                context = xml.readElementText();
            } else if (name == QLatin1String("message")) {
                source.clear();
                comment.clear();
                translation.clear();
                type.clear();
            } else if (name == QLatin1String("source")) {
                source = xml.readElementText();
            } else if (name == QLatin1String("comment")) {
                comment = xml.readElementText();
            } else if (name == QLatin1String("translation")) {
                type = xml.attributes().value(QLatin1String("type")).toString();
                translation = xml.readElementText();
            }
        } else if (xml.isEndElement() && xml.name() == QLatin1String("message")) {
            if (context == QLatin1String("InputSource") && comment == QLatin1String("Widget")) {
                if (!type.isEmpty()) {
                    file.problems << QStringLiteral("%1 is %2").arg(source, type);
                }
                if (file.texts.count(source) != 0) {
                    file.problems << QStringLiteral("%1 appears twice").arg(source);
                }
                file.texts[source] = translation;
            }
        }
    }
    if (xml.hasError()) {
        file.problems << xml.errorString();
    }
    return file;
}

// Every key the library's code looks up goes through trKey("...").
std::set<QString> keysUsedByTheCode()
{
    std::set<QString> keys;
    const QRegularExpression lookup(QStringLiteral(R"(\btrKey\(\s*"([^"]+)\"\s*\))"));
    QDirIterator it(QStringLiteral(VEXA_LIBRARY_SOURCE_DIR),
                    {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile source(it.next());
        if (!source.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QString text = QString::fromUtf8(source.readAll());
        auto matches = lookup.globalMatch(text);
        while (matches.hasNext()) {
            keys.insert(matches.next().captured(1));
        }
    }
    return keys;
}

QStringList tsFiles()
{
    return QString::fromUtf8(VEXA_TRANSLATION_SOURCES).split(QLatin1Char('|'), Qt::SkipEmptyParts);
}

QSet<QString> placeholders(const QString& text)
{
    QSet<QString> found;
    const QRegularExpression marker(QStringLiteral("%\\d+"));
    auto matches = marker.globalMatch(text);
    while (matches.hasNext()) {
        found.insert(matches.next().captured(0));
    }
    return found;
}

} // namespace

class TestTranslationFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threeLanguagesShip();
    void filesAreWellFormedAndFinished();
    void everyFileHasTheSameKeys();
    void everyKeyTheCodeUsesIsTranslated();
    void placeholdersAgreeAcrossLanguages();
    void compiledFilesAnswerEveryKey();
};

void TestTranslationFiles::threeLanguagesShip()
{
    QStringList languages;
    for (const QString& path : tsFiles()) {
        const LanguageFile file = readTs(path);
        QVERIFY2(QFileInfo(path).baseName().endsWith(file.language), qPrintable(path));
        languages << file.language;
    }
    languages.sort();
    QCOMPARE(languages, QStringList({QStringLiteral("en_US"), QStringLiteral("zh_CN"),
                                     QStringLiteral("zh_TW")}));
}

void TestTranslationFiles::filesAreWellFormedAndFinished()
{
    for (const QString& path : tsFiles()) {
        const LanguageFile file = readTs(path);
        QVERIFY2(file.problems.isEmpty(),
                 qPrintable(path + QLatin1String(": ") + file.problems.join(QStringLiteral("; "))));
        QVERIFY2(!file.texts.empty(), qPrintable(path));
        for (const auto& [key, text] : file.texts) {
            QVERIFY2(!text.trimmed().isEmpty(), qPrintable(path + QLatin1String(": ") + key));
        }
    }
}

void TestTranslationFiles::everyFileHasTheSameKeys()
{
    const QStringList paths = tsFiles();
    QVERIFY(!paths.isEmpty());
    const LanguageFile reference = readTs(paths.first());
    for (const QString& path : paths) {
        const LanguageFile file = readTs(path);
        for (const auto& entry : reference.texts) {
            QVERIFY2(file.texts.count(entry.first) == 1,
                     qPrintable(path + QLatin1String(" lacks ") + entry.first));
        }
        QCOMPARE(file.texts.size(), reference.texts.size());
    }
}

void TestTranslationFiles::everyKeyTheCodeUsesIsTranslated()
{
    const std::set<QString> keys = keysUsedByTheCode();
    for (const QString& path : tsFiles()) {
        const LanguageFile file = readTs(path);
        for (const QString& key : keys) {
            const auto found = file.texts.find(key);
            QVERIFY2(found != file.texts.end(), qPrintable(path + QLatin1String(" lacks ") + key));
            QVERIFY2(!found->second.trimmed().isEmpty(),
                     qPrintable(path + QLatin1String(": empty ") + key));
        }
    }
}

void TestTranslationFiles::placeholdersAgreeAcrossLanguages()
{
    std::map<QString, QSet<QString>> expected;
    for (const QString& path : tsFiles()) {
        const LanguageFile file = readTs(path);
        for (const auto& [key, text] : file.texts) {
            const QSet<QString> markers = placeholders(text);
            const auto known = expected.find(key);
            if (known == expected.end()) {
                expected[key] = markers;
            } else {
                QVERIFY2(known->second == markers, qPrintable(path + QLatin1String(": ") + key));
            }
        }
    }
}

void TestTranslationFiles::compiledFilesAnswerEveryKey()
{
    quandel::trans::Translator translator;
    for (const QString& path : tsFiles()) {
        const LanguageFile file = readTs(path);
        const QString compiled = QStringLiteral(VEXA_TRANSLATIONS_BUILD_DIR "/%1.qm")
                                     .arg(QFileInfo(path).completeBaseName());
        QVERIFY2(translator.load(compiled), qPrintable(compiled));
        translator.switchLanguage(file.language);
        for (const auto& [key, text] : file.texts) {
            const QByteArray utf8 = key.toUtf8();
            QCOMPARE(translator.lookup("InputSource", "Widget", utf8.constData()), text);
        }
    }
}

QTEST_GUILESS_MAIN(TestTranslationFiles)
#include "tst_translationfiles.moc"
