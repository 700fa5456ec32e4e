// SPDX-License-Identifier: MIT
#include "logcategory.h"

#include <vexainputsourcewidget/inputsourcewidget.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/runtime/zqruntime.h>
#include <quandel/trans/translator.h>

#include <QLoggingCategory>
#include <QtTest>

using vexa::testing::WarningRecorder;

// The categories a host filters with QT_LOGGING_RULES: "vexa.inputsource" for the library,
// one of their own for the reference platform modules.
class TestLogCategory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void libraryWarnsInItsCategory();
    void rulesSilenceTheLibraryOnly();
    void platformModulesWarnInTheirOwn();
};

void TestLogCategory::cleanup()
{
    QLoggingCategory::setFilterRules(QString());
}

void TestLogCategory::libraryWarnsInItsCategory()
{
    QCOMPARE(QByteArray(vexa::inputsource::lcInputSource().categoryName()),
             QByteArray("vexa.inputsource"));

    WarningRecorder recorder;
    vexa::inputsource::InputSourceWidget widget;
    widget.setInputSourceMgr({});

    const auto warning = recorder.find(QStringLiteral("nullptr == inputSourceMgr"));
    QVERIFY(warning.has_value());
    QCOMPARE(warning->type, QtWarningMsg);
    QCOMPARE(warning->category, QByteArray("vexa.inputsource"));
    QVERIFY2(warning->function.contains("setInputSourceMgr"), warning->function.constData());
    QVERIFY(warning->file.endsWith(".cpp"));
    QVERIFY(warning->line > 0);
}

void TestLogCategory::rulesSilenceTheLibraryOnly()
{
    QLoggingCategory::setFilterRules(QStringLiteral("vexa.inputsource.warning=false"));

    WarningRecorder recorder;
    vexa::inputsource::InputSourceWidget widget;
    widget.setInputSourceMgr({});
    quandel::trans::Translator translator;
    QVERIFY(!translator.load(QStringLiteral("/nonexistent/language.qm")));

    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 0);
    QCOMPARE(recorder.messages().size(), std::size_t(1));
    QCOMPARE(recorder.messages().front().category, QByteArray("vexa.platform.translator"));
}

void TestLogCategory::platformModulesWarnInTheirOwn()
{
    WarningRecorder recorder;
    quandel::trans::Translator translator;
    QVERIFY(!translator.load(QStringLiteral("/nonexistent/language.qm")));
    quandel::ZQRuntime runtime;
    runtime.stop();
    runtime.post([] {}, __FILE__, __LINE__, Q_FUNC_INFO);

    const std::vector<vexa::testing::LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(2));
    QCOMPARE(messages[0].category, QByteArray("vexa.platform.translator"));
    QCOMPARE(messages[1].category, QByteArray("vexa.platform.runtime"));
}

QTEST_MAIN(TestLogCategory)
#include "tst_logcategory.moc"
