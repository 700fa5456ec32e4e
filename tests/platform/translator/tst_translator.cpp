#include <quandel/trans/translator.h>

#include <QRegularExpression>
#include <QSet>
#include <QTemporaryFile>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using quandel::trans::translate;
using quandel::trans::Translator;

namespace {

QString qmFile(const char* name)
{
    return QStringLiteral(VEXA_TEST_QM_DIR "/") + QLatin1String(name);
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
    QCOMPARE(translator.languages(), QStringList({"en_US", "zh_CN"}));

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
    QCOMPARE(translator.languages(), QStringList({"zh_TW"}));

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
    QCOMPARE(translator.languages(), QStringList({"zh_CN"}));

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
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot read language file"));
    QVERIFY(!translator.load(qmFile("absent_en_US.qm")));
    QVERIFY(translator.languages().isEmpty());
}

void TestTranslator::fileWithoutLanguageIsRefused()
{
    Translator translator;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("records no language"));
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
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("is not a compiled language file"));
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

    const QStringList codes{"en_US", "zh_CN", "zh_TW", "fr_FR"};
    const QSet<QString> validCodes(codes.begin(), codes.end());
    const QSet<QString> validTexts{"Add source", "添加来源", "新增來源", "Add"};
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

    const QSet<QString> validTexts{"Rename", "重命名来源"};
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
    QCOMPARE(translator.languages(), QStringList({"zh_CN", "zh_TW"}));
    QCOMPARE(translate(translator, "InputSource", "Widget", "Rename"),
             QStringLiteral("重命名来源"));
}

QTEST_GUILESS_MAIN(TestTranslator)
#include "tst_translator.moc"
