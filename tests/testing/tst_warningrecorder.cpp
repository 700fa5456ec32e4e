// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QLoggingCategory>
#include <QtTest>

#include <mutex>
#include <thread>
#include <vector>

using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

Q_LOGGING_CATEGORY(sourceCategory, "vexa.test.source")

namespace {

// A handler of the test's own, to see what reaches the handler a recorder replaced.
std::mutex seenMutex;
std::vector<QString> seenTexts;

void seeingHandler(QtMsgType, const QMessageLogContext&, const QString& text)
{
    std::lock_guard<std::mutex> lock(seenMutex);
    seenTexts.push_back(text);
}

std::vector<QString> seen()
{
    std::lock_guard<std::mutex> lock(seenMutex);
    return seenTexts;
}

// Puts the test's own handler in place for one test function and Qt Test's back afterwards.
class SeeingHandlerInstalled
{
public:
    SeeingHandlerInstalled()
        : m_previous(qInstallMessageHandler(&seeingHandler))
    {
        std::lock_guard<std::mutex> lock(seenMutex);
        seenTexts.clear();
    }
    ~SeeingHandlerInstalled() { qInstallMessageHandler(m_previous); }

    SeeingHandlerInstalled(const SeeingHandlerInstalled&) = delete;
    SeeingHandlerInstalled& operator=(const SeeingHandlerInstalled&) = delete;

private:
    QtMessageHandler m_previous;
};

} // namespace

class TestWarningRecorder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsAMessageFromAnotherThreadWithItsContext();
    void recordsTypeAndCategory();
    void recordsConcurrentMessagesFromManyThreads();
    void findsAndCountsByExactText();
    void clearForgetsTheRecords();
    void restoresThePreviousHandler();
    void forwardsOnlyWhenAsked();
    void newestOfNestedRecordersRecords();
    void recordersDestroyedOutOfOrderKeepTheChain();
};

void TestWarningRecorder::recordsAMessageFromAnotherThreadWithItsContext()
{
    WarningRecorder recorder;
    int line = 0;
    std::thread::id workerId;
    std::thread worker([&line, &workerId] {
        workerId = std::this_thread::get_id();
        line = __LINE__ + 1;
        QMessageLogger(__FILE__, line, Q_FUNC_INFO).warning("nullptr == inputSourceMgr");
    });
    worker.join();

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    const LoggedMessage& message = messages.front();
    QCOMPARE(message.type, QtWarningMsg);
    QCOMPARE(message.text, QStringLiteral("nullptr == inputSourceMgr"));
    QVERIFY2(message.file.endsWith("tst_warningrecorder.cpp"), message.file.constData());
    QCOMPARE(message.line, line);
    QVERIFY2(message.function.contains("recordsAMessageFromAnotherThreadWithItsContext"),
             message.function.constData());
    QCOMPARE(message.category, QByteArray("default"));
    QVERIFY(message.thread == workerId);
    QVERIFY(message.thread != std::this_thread::get_id());
}

void TestWarningRecorder::recordsTypeAndCategory()
{
    WarningRecorder recorder;
    qCWarning(sourceCategory, "categorised");
    qCritical("critical");
    qInfo("info");

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(3));
    QCOMPARE(messages[0].type, QtWarningMsg);
    QCOMPARE(messages[0].category, QByteArray("vexa.test.source"));
    QCOMPARE(messages[1].type, QtCriticalMsg);
    QCOMPARE(messages[1].text, QStringLiteral("critical"));
    QCOMPARE(messages[2].type, QtInfoMsg);
    QCOMPARE(messages[2].category, QByteArray("default"));
}

void TestWarningRecorder::recordsConcurrentMessagesFromManyThreads()
{
    constexpr int threadCount = 4;
    constexpr int messagesEach = 200;
    WarningRecorder recorder;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t, &recorder] {
            for (int i = 0; i < messagesEach; ++i) {
                qWarning("thread %d message %d", t, i);
                // Reading while others log is part of what must be safe.
                if (i % 50 == 0) {
                    recorder.count(QStringLiteral("thread 0 message 0"));
                    recorder.messages();
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    QCOMPARE(recorder.messages().size(), std::size_t(threadCount * messagesEach));
    for (int t = 0; t < threadCount; ++t) {
        const QString last = QStringLiteral("thread %1 message %2").arg(t).arg(messagesEach - 1);
        QCOMPARE(recorder.count(last), 1);
    }
}

void TestWarningRecorder::findsAndCountsByExactText()
{
    WarningRecorder recorder;
    const int firstLine = __LINE__ + 1;
    QMessageLogger(__FILE__, firstLine, "void First::call()").warning("nullptr == runtime");
    qWarning("nullptr == runtime, again");
    QMessageLogger(__FILE__, firstLine + 100, "void Second::call()").warning("nullptr == runtime");

    QCOMPARE(recorder.count(QStringLiteral("nullptr == runtime")), 2);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == runtime, again")), 1);
    QCOMPARE(recorder.count(QStringLiteral("nullptr ==")), 0);

    const std::optional<LoggedMessage> found = recorder.find(QStringLiteral("nullptr == runtime"));
    QVERIFY(found.has_value());
    QCOMPARE(found->line, firstLine);
    QCOMPARE(found->function, QByteArray("void First::call()"));
    QVERIFY(!recorder.find(QStringLiteral("nullptr")).has_value());
}

void TestWarningRecorder::clearForgetsTheRecords()
{
    WarningRecorder recorder;
    qWarning("before");
    recorder.clear();
    qWarning("after");

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    QCOMPARE(messages.front().text, QStringLiteral("after"));
}

void TestWarningRecorder::restoresThePreviousHandler()
{
    SeeingHandlerInstalled seeing;
    {
        WarningRecorder recorder;
        QVERIFY(!recorder.isForwarding());
        qWarning("recorded");
        QCOMPARE(recorder.count(QStringLiteral("recorded")), 1);
    }
    qWarning("seen");
    std::thread([] { qWarning("seen from a thread"); }).join();

    QCOMPARE(seen(),
             (std::vector<QString>{QStringLiteral("seen"), QStringLiteral("seen from a thread")}));
    const QtMessageHandler current = qInstallMessageHandler(&seeingHandler);
    QVERIFY(current == &seeingHandler);
}

void TestWarningRecorder::forwardsOnlyWhenAsked()
{
    SeeingHandlerInstalled seeing;
    WarningRecorder recorder;
    qWarning("kept");
    recorder.setForwarding(true);
    QVERIFY(recorder.isForwarding());
    qWarning("passed on");
    recorder.setForwarding(false);
    qWarning("kept again");

    QCOMPARE(recorder.messages().size(), std::size_t(3));
    QCOMPARE(seen(), std::vector<QString>{QStringLiteral("passed on")});
}

void TestWarningRecorder::newestOfNestedRecordersRecords()
{
    SeeingHandlerInstalled seeing;
    WarningRecorder outer;
    {
        WarningRecorder inner;
        qWarning("inner only");
        inner.setForwarding(true);
        qWarning("inner and outer");
        outer.setForwarding(true);
        qWarning("all three");

        QCOMPARE(inner.messages().size(), std::size_t(3));
    }
    outer.setForwarding(false);
    qWarning("outer again");

    const std::vector<LoggedMessage> messages = outer.messages();
    QCOMPARE(messages.size(), std::size_t(3));
    QCOMPARE(messages[0].text, QStringLiteral("inner and outer"));
    QCOMPARE(messages[1].text, QStringLiteral("all three"));
    QCOMPARE(messages[2].text, QStringLiteral("outer again"));
    QCOMPARE(seen(), std::vector<QString>{QStringLiteral("all three")});
}

void TestWarningRecorder::recordersDestroyedOutOfOrderKeepTheChain()
{
    SeeingHandlerInstalled seeing;
    auto outer = std::make_unique<WarningRecorder>();
    auto inner = std::make_unique<WarningRecorder>();
    outer.reset();

    inner->setForwarding(true);
    qWarning("past the gone recorder");
    QCOMPARE(inner->messages().size(), std::size_t(1));
    QCOMPARE(seen(), std::vector<QString>{QStringLiteral("past the gone recorder")});

    inner.reset();
    qWarning("after both");
    QCOMPARE(seen().size(), std::size_t(2));
    QVERIFY(qInstallMessageHandler(&seeingHandler) == &seeingHandler);
}

QTEST_GUILESS_MAIN(TestWarningRecorder)
#include "tst_warningrecorder.moc"
