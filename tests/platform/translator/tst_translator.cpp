// SPDX-License-Identifier: MIT
#include <quandel/trans/translator.h>

#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryFile>
#include <QTest>
#include <QXmlStreamReader>

#include <atomic>
#include <thread>
#include <vector>

using quandel::trans::translate;
using quandel::trans::Translator;
using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

namespace {

QString qmFile(const char* name)
{
    return QStringLiteral(VEXA_TEST_QM_DIR "/") + QLatin1String(name);
}

// A language file as the library ships it, compiled by the build.
QString shippedFile(const char* code)
{
    return QStringLiteral(VEXA_TRANSLATIONS_BUILD_DIR "/vexainputsourcewidget_") +
           QLatin1String(code) + QStringLiteral(".qm");
}

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// One text of a .ts source: the two scopes and the key a lookup names it by.
struct Key
{
    QByteArray scope1;
    QByteArray scope2;
    QByteArray key;
};

// Every message of the library's shipped .ts sources.
std::vector<Key> shippedKeys()
{
    std::vector<Key> keys;
    for (const QString& path : QStringLiteral(VEXA_TRANSLATION_SOURCES).split(QLatin1Char('|'))) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        QXmlStreamReader xml(&file);
        QByteArray context;
        Key key;
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isEndElement() && xml.name() == QLatin1String("message")) {
                keys.push_back(key);
                continue;
            }
            if (!xml.isStartElement()) {
                continue;
            }
            if (xml.name() == QLatin1String("message")) {
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

// Looks every key up the ways the library and a host may: with its scopes, without the second
// scope, under another first scope. Returns how many lookups found a text.
int lookUpEveryKey(const Translator& translator, const std::vector<Key>& keys)
{
    int found = 0;
    for (const Key& key : keys) {
        const char* const scope1 = key.scope1.constData();
        const char* const scope2 = key.scope2.constData();
        found += translator.lookup(scope1, scope2, key.key.constData()).isNull() ? 0 : 1;
        found += translator.lookup(scope1, nullptr, key.key.constData()).isNull() ? 0 : 1;
        found += translator.lookup("OtherScope", scope2, key.key.constData()).isNull() ? 0 : 1;
        translate(translator, scope1, scope2, key.key.constData());
    }
    return found;
}

// A file whose contents the test sets, kept until the object goes.
class ScratchFile
{
public:
    ScratchFile() { m_file.open(); }

    QString write(const QByteArray& bytes)
    {
        m_file.resize(0);
        m_file.seek(0);
        m_file.write(bytes);
        m_file.flush();
        return m_file.fileName();
    }

private:
    QTemporaryFile m_file;
};

// Offset of the header of the first block with `tag` in a well-formed file, or -1.
int blockOffset(const QByteArray& bytes, char tag)
{
    int position = 16;
    while (position + 5 <= bytes.size()) {
        if (bytes.at(position) == tag) {
            return position;
        }
        const auto* const length = reinterpret_cast<const uchar*>(bytes.constData() + position + 1);
        position += 5 + ((length[0] << 24) | (length[1] << 16) | (length[2] << 8) | length[3]);
    }
    return -1;
}

void setLength(QByteArray& bytes, int at, quint32 length)
{
    bytes[at] = static_cast<char>(length >> 24);
    bytes[at + 1] = static_cast<char>(length >> 16);
    bytes[at + 2] = static_cast<char>(length >> 8);
    bytes[at + 3] = static_cast<char>(length);
}

// The warnings the translator logged about `path`.
QStringList warningsAbout(const WarningRecorder& recorder, const QString& path)
{
    QStringList texts;
    for (const LoggedMessage& message : recorder.messages()) {
        if (message.type == QtWarningMsg && message.text.contains(path)) {
            texts << message.text;
        }
    }
    return texts;
}

} // namespace

class TestTranslator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithoutLanguages();
    void switchingChangesTexts();
    void languageComesFromTheFileNotItsName();
    void missingKeyYieldsTheKey();
    void secondScopeSelectsAmongTextsOfOneKey_data();
    void secondScopeSelectsAmongTextsOfOneKey();
    void keyWithOneTextAnswersAnySecondScope();
    void laterFileOfALanguageIsConsultedAfterEarlierOnes();
    void filesAreConsultedInLoadOrder();
    void missingFileIsRefused();
    void fileWithoutLanguageIsRefused();
    void fileThatIsNotCompiledIsRefused();
    void languageWithoutFilesYieldsKeys();
    void fileLoadedAfterSwitchingIsUsed();
    void keyIsReturnedAsUtf8();
    void concurrentLookupsWhileSwitching();
    void concurrentLookupsWhileLoading();
    void fileWithACorruptStringLengthIsRefused();
    void emptyFileIsRefused();
    void hugeLengthFieldsAreRefused();
    void fileNamingDependenciesIsRefused();
    void everyTruncationOfAShippedFileIsHarmless();
    void everyFlippedByteOfAShippedFileIsHarmless();
    void fileChangedAfterLoadingIsNotReadAgain();
};

void TestTranslator::startsWithoutLanguages()
{
    Translator translator;
    QVERIFY(translator.currentLanguage().isEmpty());
    QVERIFY(translator.languages().isEmpty());
    QVERIFY(translator.lookup("InputSource", "Widget", "Add").isNull());
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("Add"));
}

void TestTranslator::switchingChangesTexts()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("en_US.qm")));
    QVERIFY(translator.load(qmFile("zh_CN.qm")));
    QCOMPARE(translator.languages(),
             QStringList({QStringLiteral("en_US"), QStringLiteral("zh_CN")}));

    translator.switchLanguage(QStringLiteral("en_US"));
    QCOMPARE(translator.currentLanguage(), QStringLiteral("en_US"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("Add source"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Remove"),
             QStringLiteral("Remove source"));

    translator.switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(translator.currentLanguage(), QStringLiteral("zh_CN"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("添加来源"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Remove"), QStringLiteral("移除来源"));

    translator.switchLanguage(QStringLiteral("en_US"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("Add source"));
}

void TestTranslator::languageComesFromTheFileNotItsName()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("second.qm")));
    QCOMPARE(translator.languages(), QStringList({QStringLiteral("zh_TW")}));

    translator.switchLanguage(QStringLiteral("second"));
    QVERIFY(translator.lookup("InputSource", "Widget", "Add").isNull());

    translator.switchLanguage(QStringLiteral("zh_TW"));
    QCOMPARE(translator.lookup("InputSource", "Widget", "Add"), QStringLiteral("新增來源"));
}

void TestTranslator::missingKeyYieldsTheKey()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("en_US.qm")));
    QVERIFY(translator.load(qmFile("zh_CN.qm")));
    translator.switchLanguage(QStringLiteral("zh_CN"));

    // "Close" exists only in the English file.
    QVERIFY(translator.lookup("InputSource", nullptr, "Close").isNull());
    QCOMPARE(translate(translator, "InputSource", nullptr, "Close"), QStringLiteral("Close"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Unknown"), QStringLiteral("Unknown"));
    QCOMPARE(translate(translator, "OtherScope", "Widget", "Add"), QStringLiteral("Add"));
}

void TestTranslator::secondScopeSelectsAmongTextsOfOneKey_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QByteArray>("scope2");
    QTest::addColumn<QString>("expected");

    QTest::newRow("en_US widget") << "en_US" << QByteArray("Widget") << "Add source";
    QTest::newRow("en_US menu") << "en_US" << QByteArray("Menu") << "Add…";
    QTest::newRow("zh_CN widget") << "zh_CN" << QByteArray("Widget") << "添加来源";
    QTest::newRow("zh_CN menu") << "zh_CN" << QByteArray("Menu") << "添加…";
}

void TestTranslator::secondScopeSelectsAmongTextsOfOneKey()
{
    QFETCH(QString, language);
    QFETCH(QByteArray, scope2);
    QFETCH(QString, expected);

    Translator translator;
    QVERIFY(translator.load(qmFile("en_US.qm")));
    QVERIFY(translator.load(qmFile("zh_CN.qm")));
    translator.switchLanguage(language);
    QCOMPARE(translator.lookup("InputSource", scope2.constData(), "Add"), expected);
}

void TestTranslator::keyWithOneTextAnswersAnySecondScope()
{
    // lrelease stores the first text of a key without its comment, so that text also answers
    // second scopes the .ts source does not name; a .ts file can therefore give one text for
    // every scope and add scoped texts only where they differ.
    Translator translator;
    QVERIFY(translator.load(qmFile("en_US.qm")));
    translator.switchLanguage(QStringLiteral("en_US"));
    QCOMPARE(translator.lookup("InputSource", "Toolbar", "Remove"),
             QStringLiteral("Remove source"));
    QCOMPARE(translator.lookup("InputSource", "Widget", "Close"), QStringLiteral("Close panel"));
    QCOMPARE(translator.lookup("InputSource", nullptr, "Close"), QStringLiteral("Close panel"));
}

void TestTranslator::laterFileOfALanguageIsConsultedAfterEarlierOnes()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("zh_CN.qm")));
    QVERIFY(translator.load(qmFile("more.qm")));
    QCOMPARE(translator.languages(), QStringList({QStringLiteral("zh_CN")}));

    translator.switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(translator.lookup("InputSource", "Widget", "Add"), QStringLiteral("添加来源"));
    QCOMPARE(translator.lookup("InputSource", "Widget", "Rename"), QStringLiteral("重命名来源"));
}

void TestTranslator::filesAreConsultedInLoadOrder()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("more.qm")));
    QVERIFY(translator.load(qmFile("zh_CN.qm")));

    translator.switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(translator.lookup("InputSource", "Widget", "Add"), QStringLiteral("添加来源（补充）"));
    QCOMPARE(translator.lookup("InputSource", "Widget", "Remove"), QStringLiteral("移除来源"));
}

void TestTranslator::missingFileIsRefused()
{
    Translator translator;
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("cannot read language file")));
    QVERIFY(!translator.load(qmFile("absent_en_US.qm")));
    QVERIFY(translator.languages().isEmpty());
}

void TestTranslator::fileWithoutLanguageIsRefused()
{
    Translator translator;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("records no language")));
    QVERIFY(!translator.load(qmFile("nolanguage.qm")));
    QVERIFY(translator.languages().isEmpty());

    translator.switchLanguage(QString());
    QVERIFY(translator.lookup("InputSource", "Widget", "Add").isNull());
}

void TestTranslator::fileThatIsNotCompiledIsRefused()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    QVERIFY(file.write("<TS language=\"en_US\"></TS>\n") > 0);
    file.close();

    Translator translator;
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("is not a compiled language file")));
    QVERIFY(!translator.load(file.fileName()));
    QVERIFY(translator.languages().isEmpty());
}

void TestTranslator::languageWithoutFilesYieldsKeys()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("en_US.qm")));
    translator.switchLanguage(QStringLiteral("fr_FR"));
    QCOMPARE(translator.currentLanguage(), QStringLiteral("fr_FR"));
    QVERIFY(translator.lookup("InputSource", "Widget", "Add").isNull());
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("Add"));
}

void TestTranslator::fileLoadedAfterSwitchingIsUsed()
{
    Translator translator;
    translator.switchLanguage(QStringLiteral("zh_TW"));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("Add"));

    QVERIFY(translator.load(qmFile("second.qm")));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Add"), QStringLiteral("新增來源"));
}

void TestTranslator::keyIsReturnedAsUtf8()
{
    Translator translator;
    QCOMPARE(translate(translator, "InputSource", "Widget", "Caméra №2"),
             QString::fromUtf8("Caméra №2"));
}

void TestTranslator::concurrentLookupsWhileSwitching()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("en_US.qm")));
    QVERIFY(translator.load(qmFile("zh_CN.qm")));
    QVERIFY(translator.load(qmFile("second.qm")));

    const QStringList codes{QStringLiteral("en_US"), QStringLiteral("zh_CN"),
                            QStringLiteral("zh_TW"), QStringLiteral("fr_FR")};
    const QSet<QString> validCodes(codes.begin(), codes.end());
    const QSet<QString> validTexts{QStringLiteral("Add source"), QStringLiteral("添加来源"),
                                   QStringLiteral("新增來源"), QStringLiteral("Add")};
    constexpr int readerCount = 4;
    constexpr int lookupsPerReader = 2000;
    std::atomic<int> readersDone{0};
    std::atomic<int> invalid{0};
    int switches = 0;

    // The readers do a fixed amount of work and the switcher keeps switching until they are
    // done, so the test takes the same time however the lock favours readers or writers.
    std::vector<std::thread> readers;
    for (int i = 0; i < readerCount; ++i) {
        readers.emplace_back([&] {
            for (int n = 0; n < lookupsPerReader; ++n) {
                if (!validTexts.contains(translate(translator, "InputSource", "Widget", "Add"))) {
                    ++invalid;
                }
                const QString code = translator.currentLanguage();
                if (!code.isEmpty() && !validCodes.contains(code)) {
                    ++invalid;
                }
            }
            ++readersDone;
        });
    }
    std::thread switcher([&] {
        do {
            translator.switchLanguage(codes.at(switches % codes.size()));
            ++switches;
        } while (readersDone.load() < readerCount);
    });
    switcher.join();
    for (auto& reader : readers) {
        reader.join();
    }

    QCOMPARE(invalid.load(), 0);
    QVERIFY(switches >= 1);
    QCOMPARE(translator.currentLanguage(), codes.at((switches - 1) % codes.size()));
}

void TestTranslator::concurrentLookupsWhileLoading()
{
    Translator translator;
    QVERIFY(translator.load(qmFile("zh_CN.qm")));
    translator.switchLanguage(QStringLiteral("zh_CN"));

    const QSet<QString> validTexts{QStringLiteral("Rename"), QStringLiteral("重命名来源")};
    std::atomic<bool> loaded{false};
    std::atomic<bool> loadResult{false};
    std::atomic<int> invalid{0};

    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([&] {
            do {
                if (!validTexts.contains(
                        translate(translator, "InputSource", "Widget", "Rename"))) {
                    ++invalid;
                }
                translator.languages();
            } while (!loaded.load());
        });
    }
    std::thread loader([&] {
        loadResult = translator.load(qmFile("more.qm")) && translator.load(qmFile("second.qm"));
        loaded = true;
    });
    loader.join();
    for (auto& reader : readers) {
        reader.join();
    }

    QVERIFY(loadResult.load());
    QCOMPARE(invalid.load(), 0);
    QCOMPARE(translator.languages(),
             QStringList({QStringLiteral("zh_CN"), QStringLiteral("zh_TW")}));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Rename"),
             QStringLiteral("重命名来源"));
}

void TestTranslator::fileWithACorruptStringLengthIsRefused()
{
    // The shipped Chinese file with the high byte of one source text's length set: QTranslator
    // would accept it and read far past the file at the first lookup.
    QByteArray bytes = contentsOf(shippedFile("zh_CN"));
    // The source text field of the key "Rename": its tag, then its length in four bytes.
    const QByteArray field = QByteArray::fromHex("0600000006") + QByteArray("Rename");
    const int offset = bytes.indexOf(field);
    QVERIFY(offset > 0);
    QCOMPARE(bytes.indexOf(field, offset + 1), -1);
    bytes[offset + 1] = '\xff';
    ScratchFile scratch;
    const QString path = scratch.write(bytes);

    Translator translator;
    QVERIFY(translator.load(shippedFile("en_US")));
    WarningRecorder recorder;
    QVERIFY(!translator.load(path));
    const QStringList warnings = warningsAbout(recorder, path);
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings.first().contains(QStringLiteral("malformed")) &&
                 warnings.first().contains(QStringLiteral("source text at offset %1").arg(offset)),
             qPrintable(warnings.first()));
    QCOMPARE(translator.languages(), QStringList({QStringLiteral("en_US")}));

    const std::vector<Key> keys = shippedKeys();
    QVERIFY(!keys.empty());
    translator.switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(lookUpEveryKey(translator, keys), 0);
    translator.switchLanguage(QStringLiteral("en_US"));
    QVERIFY(lookUpEveryKey(translator, keys) > 0);
    QCOMPARE(translate(translator, "InputSource", "Widget", "Cancel"), QStringLiteral("Cancel"));
}

void TestTranslator::emptyFileIsRefused()
{
    ScratchFile scratch;
    const QString path = scratch.write(QByteArray());
    Translator translator;
    WarningRecorder recorder;
    QVERIFY(!translator.load(path));
    const QStringList warnings = warningsAbout(recorder, path);
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings.first().contains(QStringLiteral("is not a compiled language file")),
             qPrintable(warnings.first()));
    QVERIFY(translator.languages().isEmpty());
}

void TestTranslator::hugeLengthFieldsAreRefused()
{
    const QByteArray original = contentsOf(shippedFile("zh_CN"));
    const int messagesBlock = blockOffset(original, '\x69');
    QVERIFY(messagesBlock > 0);
    // The block's own length, then the first field of the first record (a translation).
    const std::vector<std::pair<int, quint32>> cases{
        {messagesBlock + 1, 0xfffffff0U},
        {messagesBlock + 1, 0x7fffffffU},
        {messagesBlock + 6, 0x7ffffffeU},
        {messagesBlock + 6, 0x80000000U},
        {blockOffset(original, '\x42') + 1, 0xffffffffU},
    };
    ScratchFile scratch;
    for (const auto& [at, length] : cases) {
        QByteArray bytes = original;
        setLength(bytes, at, length);
        const QString path = scratch.write(bytes);
        Translator translator;
        WarningRecorder recorder;
        QVERIFY2(!translator.load(path), qPrintable(QString::number(length, 16)));
        const QStringList warnings = warningsAbout(recorder, path);
        QCOMPARE(warnings.size(), 1);
        QVERIFY2(warnings.first().contains(QStringLiteral("malformed")),
                 qPrintable(warnings.first()));
        QVERIFY(translator.languages().isEmpty());
    }
}

void TestTranslator::fileNamingDependenciesIsRefused()
{
    // QTranslator would open the named file from disk itself, unchecked.
    Translator translator;
    WarningRecorder recorder;
    QVERIFY(!translator.load(qmFile("dependency.qm")));
    const QStringList warnings = warningsAbout(recorder, qmFile("dependency.qm"));
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings.first().contains(QStringLiteral("depends on other files (base_fr)")),
             qPrintable(warnings.first()));
    QVERIFY(translator.languages().isEmpty());
}

void TestTranslator::everyTruncationOfAShippedFileIsHarmless()
{
    const QByteArray original = contentsOf(shippedFile("zh_CN"));
    QVERIFY(original.size() > 1000);
    const std::vector<Key> keys = shippedKeys();
    // A cut right after a block leaves a shorter file that is still whole: the language alone,
    // say. Any other cut must be refused.
    QSet<int> blockEnds;
    for (int position = 16; position + 5 <= original.size();) {
        const auto* const length =
            reinterpret_cast<const uchar*>(original.constData() + position + 1);
        position += 5 + ((length[0] << 24) | (length[1] << 16) | (length[2] << 8) | length[3]);
        blockEnds.insert(position);
    }
    ScratchFile scratch;
    int accepted = 0;
    for (int size = 0; size < original.size(); ++size) {
        const QString path = scratch.write(original.left(size));
        Translator translator;
        WarningRecorder recorder;
        const bool loaded = translator.load(path);
        if (!blockEnds.contains(size)) {
            QVERIFY2(!loaded, qPrintable(QStringLiteral("cut at %1").arg(size)));
            QCOMPARE(warningsAbout(recorder, path).size(), 1);
            continue;
        }
        if (loaded) {
            ++accepted;
            translator.switchLanguage(translator.languages().value(0));
            lookUpEveryKey(translator, keys);
        }
    }
    QVERIFY(accepted <= blockEnds.size());
}

void TestTranslator::everyFlippedByteOfAShippedFileIsHarmless()
{
    const QByteArray original = contentsOf(shippedFile("zh_CN"));
    QVERIFY(original.size() > 1000);
    const std::vector<Key> keys = shippedKeys();
    ScratchFile scratch;
    int refused = 0;
    int accepted = 0;
    for (int at = 0; at < original.size(); ++at) {
        for (const char flip : {'\xff', '\x01', '\x80'}) {
            QByteArray bytes = original;
            bytes[at] = static_cast<char>(bytes.at(at) ^ flip);
            const QString path = scratch.write(bytes);
            Translator translator;
            WarningRecorder recorder;
            if (!translator.load(path)) {
                ++refused;
                QCOMPARE(warningsAbout(recorder, path).size(), 1);
                continue;
            }
            ++accepted;
            // Whatever the flipped byte did to the texts, every lookup must return.
            translator.switchLanguage(translator.languages().value(0));
            lookUpEveryKey(translator, keys);
        }
    }
    qInfo("%d altered files refused, %d accepted and looked up", refused, accepted);
    // The magic number and the lengths alone make up a good part of the file.
    QVERIFY(refused > 100);
    // Flips inside texts leave the file well formed.
    QVERIFY(accepted > 1000);
}

void TestTranslator::fileChangedAfterLoadingIsNotReadAgain()
{
    ScratchFile scratch;
    const QString path = scratch.write(contentsOf(shippedFile("zh_CN")));
    Translator translator;
    QVERIFY(translator.load(path));
    translator.switchLanguage(QStringLiteral("zh_CN"));
    const QString before = translate(translator, "InputSource", "Widget", "Cancel");
    QVERIFY(before != QStringLiteral("Cancel"));

    // The translator keeps the bytes it checked; what happens to the file later is not seen.
    scratch.write(QByteArray(4096, '\xff'));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Cancel"), before);
    const std::vector<Key> keys = shippedKeys();
    QVERIFY(lookUpEveryKey(translator, keys) > 0);
}

QTEST_GUILESS_MAIN(TestTranslator)
#include "tst_translator.moc"
