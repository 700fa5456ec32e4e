// SPDX-License-Identifier: MIT
#include "languagefiles.h"
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

using vexa::inputsource::trKey;

class TestInputSourceTranslateManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instanceIsUnique();
    void firstUseFromSeveralThreadsMakesOneInstance();
    void translatorIsTheSameOnEveryCall();
    void missingKeyYieldsTheKey();
    void switchingLanguageChangesTheTexts();
};

void TestInputSourceTranslateManager::instanceIsUnique()
{
    QCOMPARE(&InputSourceTranslateManager::instance(), &InputSourceTranslateManager::instance());
}

void TestInputSourceTranslateManager::firstUseFromSeveralThreadsMakesOneInstance()
{
    std::vector<InputSourceTranslateManager*> seen(8, nullptr);
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        threads.emplace_back([&seen, &go, i] {
            while (!go) {
                std::this_thread::yield();
            }
            seen[i] = &InputSourceTranslateManager::instance();
        });
    }
    go = true;
    for (auto& thread : threads) {
        thread.join();
    }
    for (auto* manager : seen) {
        QCOMPARE(manager, &InputSourceTranslateManager::instance());
    }
}

void TestInputSourceTranslateManager::translatorIsTheSameOnEveryCall()
{
    auto& manager = InputSourceTranslateManager::instance();
    QCOMPARE(&manager.translator(), &manager.translator());
    QCOMPARE(&InputSourceTranslateManager::instance().translator(), &manager.translator());
}

void TestInputSourceTranslateManager::missingKeyYieldsTheKey()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    QVERIFY(translator.load(languageFile("en_US")));
    translator.switchLanguage(QStringLiteral("en_US"));
    QCOMPARE(trKey("NoSuchKeyInAnyLanguageFile"), QStringLiteral("NoSuchKeyInAnyLanguageFile"));
}

void TestInputSourceTranslateManager::switchingLanguageChangesTheTexts()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    for (const char* code : {"zh_CN", "zh_TW", "en_US"}) {
        QVERIFY2(translator.load(languageFile(code)), code);
    }

    translator.switchLanguage(QStringLiteral("zh_CN"));
    const QString simplified = trKey("DeleteText");
    translator.switchLanguage(QStringLiteral("zh_TW"));
    const QString traditional = trKey("DeleteText");
    translator.switchLanguage(QStringLiteral("en_US"));
    const QString english = trKey("DeleteText");

    for (const QString& translated : {simplified, traditional, english}) {
        QVERIFY(!translated.isEmpty());
        QVERIFY(translated != QStringLiteral("DeleteText"));
    }
    QVERIFY(simplified != english);
    QVERIFY(traditional != english);
    QVERIFY(simplified != traditional);

    translator.switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(trKey("DeleteText"), simplified);
}

QTEST_GUILESS_MAIN(TestInputSourceTranslateManager)
#include "tst_inputsourcetranslatemanager.moc"
