// SPDX-License-Identifier: MIT
// The bytes are a language file: the translator loads them from disk as a host would, and
// then every key of the shipped language files is looked up in every way the library and a host
// do. Whatever the bytes, loading returns, and when it accepts them the lookups return too.

#include <quandel/trans/translator.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct Key
{
    QByteArray scope1;
    QByteArray scope2;
    QByteArray key;
};

// Every message of the shipped .ts sources, read once.
std::vector<Key> readShippedKeys()
{
    std::vector<Key> keys;
    for (const QString& path : QStringLiteral(VEXA_TRANSLATION_SOURCES).split(QLatin1Char('|'))) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "fuzz_languagefile: cannot read %s\n", qPrintable(path));
            std::abort();
        }
        QXmlStreamReader xml(&file);
        QByteArray context;
        Key key;
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isEndElement() && xml.name() == QLatin1String("message")) {
                keys.push_back(key);
            } else if (!xml.isStartElement()) {
                continue;
            } else if (xml.name() == QLatin1String("message")) {
                key = Key{context, {}, {}};
            } else if (xml.name() == QLatin1String("name")) {
                context = xml.readElementText().toUtf8();
            } else if (xml.name() == QLatin1String("source")) {
                key.key = xml.readElementText().toUtf8();
            } else if (xml.name() == QLatin1String("comment")) {
                key.scope2 = xml.readElementText().toUtf8();
            }
        }
    }
    return keys;
}

struct Setup
{
    Setup()
        : keys(readShippedKeys())
        , path(directory.filePath(QStringLiteral("input.qm")))
    {
        // Refused files are the common case here; their warnings would flood the output.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    }

    const std::vector<Key> keys;
    // One file per process, so that parallel fuzzing jobs do not share it.
    QTemporaryDir directory;
    const QString path;
};

void fail(const char* what)
{
    std::fprintf(stderr, "fuzz_languagefile: %s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const Setup setup;
    {
        QFile file(setup.path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            fail("cannot write the input file");
        }
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }

    quandel::trans::Translator translator;
    const bool loaded = translator.load(setup.path);
    const QStringList languages = translator.languages();
    if (languages.size() != (loaded ? 1 : 0)) {
        fail("the languages do not follow what load() answered");
    }
    translator.switchLanguage(loaded ? languages.first() : QStringLiteral("zh_CN"));
    for (const Key& key : setup.keys) {
        const char* const scope1 = key.scope1.constData();
        const char* const scope2 = key.scope2.constData();
        const char* const text = key.key.constData();
        const QString found = translator.lookup(scope1, scope2, text);
        if (!loaded && !found.isNull()) {
            fail("a refused file answered a lookup");
        }
        translator.lookup(scope1, nullptr, text);
        translator.lookup("OtherScope", scope2, text);
        translator.lookup(scope1, "OtherComment", text);
        if (quandel::trans::translate(translator, scope1, scope2, text).isNull()) {
            fail("translate() returned a null string");
        }
    }
    return 0;
}
