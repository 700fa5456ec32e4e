// SPDX-License-Identifier: MIT
#include <vexa/diagnostics/warning.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QString>
#include <QtTest>

#include <thread>
#include <vector>

using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

class TestWarning : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logsCStringWithCallSite();
    void logsQStringWithCallSite();
    void keepsTextExactly();
    void isOneStatement();
    void logsFromAnyThread();

private:
    int reportMissingSource(int sourceIndex, const QString& name);
};

int TestWarning::reportMissingSource(int sourceIndex, const QString& name)
{
    const int line = __LINE__ + 1;
    VEXA_WARNING(QStringLiteral("source %1 (%2) has no frame").arg(sourceIndex).arg(name));
    return line;
}

void TestWarning::logsCStringWithCallSite()
{
    WarningRecorder recorder;
    const int line = __LINE__ + 1;
    VEXA_WARNING("nullptr == inputSourceMgr");

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    const LoggedMessage& message = messages.front();
    QCOMPARE(message.type, QtWarningMsg);
    QCOMPARE(message.text, QStringLiteral("nullptr == inputSourceMgr"));
    QVERIFY2(message.file.endsWith("tst_warning.cpp"), message.file.constData());
    QCOMPARE(message.line, line);
    QCOMPARE(message.function, QByteArray("void TestWarning::logsCStringWithCallSite()"));
    QCOMPARE(message.category, QByteArray("default"));
}

void TestWarning::logsQStringWithCallSite()
{
    WarningRecorder recorder;
    const int line = reportMissingSource(3, QStringLiteral("Camera \"A\""));

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    const LoggedMessage& message = messages.front();
    QCOMPARE(message.type, QtWarningMsg);
    QCOMPARE(message.text, QStringLiteral("source 3 (Camera \"A\") has no frame"));
    QVERIFY2(message.file.endsWith("tst_warning.cpp"), message.file.constData());
    QCOMPARE(message.line, line);
    QVERIFY2(message.function.contains("TestWarning::reportMissingSource(int, const QString&)"),
             message.function.constData());
}

void TestWarning::keepsTextExactly()
{
    WarningRecorder recorder;
    const QString text = QStringLiteral("  \"quoted\"\ttext with trailing space ");
    VEXA_WARNING(text);
    VEXA_WARNING("");

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(2));
    QCOMPARE(messages[0].text, text);
    QCOMPARE(messages[1].text, QString());
}

void TestWarning::isOneStatement()
{
    WarningRecorder recorder;
    const bool found = recorder.messages().empty();
    if (found)
        VEXA_WARNING("taken");
    else
        VEXA_WARNING("not taken");

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    QCOMPARE(messages.front().text, QStringLiteral("taken"));
}

void TestWarning::logsFromAnyThread()
{
    WarningRecorder recorder;
    int line = 0;
    std::thread worker([&line] {
        line = __LINE__ + 1;
        VEXA_WARNING("from a worker thread");
    });
    worker.join();

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    const LoggedMessage& message = messages.front();
    QCOMPARE(message.text, QStringLiteral("from a worker thread"));
    QCOMPARE(message.line, line);
    QVERIFY(message.file.endsWith("tst_warning.cpp"));
    QVERIFY2(message.function.contains("logsFromAnyThread"), message.function.constData());
}

QTEST_GUILESS_MAIN(TestWarning)

#include "tst_warning.moc"
