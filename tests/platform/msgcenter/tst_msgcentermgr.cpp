#include <quandel/msgcenter/msgcentermgr.h>

#include <QCoreApplication>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using quandel::msgcenter::IMsgCenterMgr;
using quandel::msgcenter::MsgCenterMgr;
using quandel::msgcenter::PostedMessage;
using quandel::msgcenter::STMessage;

namespace {

STMessage textMessage(const QString& text)
{
    STMessage message;
    message.text = text;
    return message;
}

QList<quint64> spiedIds(const QSignalSpy& spy)
{
    QList<quint64> ids;
    for (const QList<QVariant>& arguments : spy) {
        ids.append(arguments.at(0).value<quint64>());
    }
    return ids;
}

QList<quint64> keptIds(const MsgCenterMgr& centre)
{
    QList<quint64> ids;
    for (const PostedMessage& posted : centre.messages()) {
        ids.append(posted.id);
    }
    return ids;
}

} // namespace

class TestMsgCenterMgr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void keepsTheMessageAsPosted();
    void idsCountUpFromOne();
    void usableThroughTheInterface();
    void capacityDropsTheOldest();
    void capacityIsAtLeastOne();
    void triggerActionRunsTheCallbackOnTheCallingThread();
    void triggerActionWithoutCallback();
    void actionMayCallBackIntoTheCentre();
    void directSlotMayCallBackIntoTheCentre();
    void dismissRemovesOneMessage();
    void clearRemovesEveryMessage();
    void concurrentPostsKeepEveryMessage();
    void concurrentPostsBeyondCapacityKeepTheNewest();
    void postsFromAnotherThreadArriveQueuedOnTheMainThread();
};

void TestMsgCenterMgr::startsEmpty()
{
    MsgCenterMgr centre;
    QVERIFY(centre.messages().isEmpty());
    QVERIFY(!centre.message(1).has_value());
    QVERIFY(!centre.triggerAction(1));
}

void TestMsgCenterMgr::keepsTheMessageAsPosted()
{
    MsgCenterMgr centre;
    QSignalSpy posted(&centre, &MsgCenterMgr::messagePosted);
    QSignalSpy removed(&centre, &MsgCenterMgr::messageRemoved);

    STMessage message;
    message.text = QStringLiteral("Camera 2 disconnected");
    message.level = STMessage::Warning;
    message.displayMs = 5000;
    message.action.label = QStringLiteral("Reconnect");
    int calls = 0;
    message.action.callback = [&calls] { ++calls; };

    const QDateTime before = QDateTime::currentDateTime();
    centre.postMessage(message);
    const QDateTime after = QDateTime::currentDateTime();

    QCOMPARE(spiedIds(posted), QList<quint64>({1}));
    QCOMPARE(removed.count(), 0);

    const std::optional<PostedMessage> kept = centre.message(1);
    QVERIFY(kept.has_value());
    QCOMPARE(kept->id, quint64(1));
    QCOMPARE(kept->message.text, QStringLiteral("Camera 2 disconnected"));
    QCOMPARE(kept->message.level, int(STMessage::Warning));
    QCOMPARE(kept->message.displayMs, 5000);
    QCOMPARE(kept->message.action.label, QStringLiteral("Reconnect"));
    QVERIFY(bool(kept->message.action.callback));
    QVERIFY(kept->postedAt.isValid());
    QVERIFY(kept->postedAt >= before);
    QVERIFY(kept->postedAt <= after);
    QCOMPARE(calls, 0);

    const STMessage defaults;
    QCOMPARE(defaults.level, int(STMessage::Info));
    QCOMPARE(defaults.displayMs, -1);
    centre.postMessage(defaults);
    QCOMPARE(centre.message(2)->message.displayMs, -1);
    QVERIFY(centre.message(2)->message.action.label.isEmpty());
}

void TestMsgCenterMgr::idsCountUpFromOne()
{
    MsgCenterMgr centre;
    QSignalSpy posted(&centre, &MsgCenterMgr::messagePosted);
    centre.postMessage(textMessage("a"));
    centre.postMessage(textMessage("b"));
    centre.postMessage(textMessage("c"));

    QCOMPARE(spiedIds(posted), QList<quint64>({1, 2, 3}));
    const QVector<PostedMessage> kept = centre.messages();
    QCOMPARE(kept.size(), 3);
    QCOMPARE(kept.at(0).message.text, QStringLiteral("a"));
    QCOMPARE(kept.at(1).message.text, QStringLiteral("b"));
    QCOMPARE(kept.at(2).message.text, QStringLiteral("c"));
    QCOMPARE(centre.message(2)->message.text, QStringLiteral("b"));
    QVERIFY(!centre.message(0).has_value());
    QVERIFY(!centre.message(4).has_value());
}

void TestMsgCenterMgr::usableThroughTheInterface()
{
    MsgCenterMgr centre;
    IMsgCenterMgr* host = &centre;
    host->postMessage(textMessage("through the interface"));
    QCOMPARE(centre.messages().size(), 1);
    QCOMPARE(centre.messages().at(0).message.text, QStringLiteral("through the interface"));
}

void TestMsgCenterMgr::capacityDropsTheOldest()
{
    MsgCenterMgr centre(3);
    QStringList events;
    connect(&centre, &MsgCenterMgr::messagePosted, this,
            [&events](quint64 id) { events.append(QStringLiteral("posted %1").arg(id)); });
    connect(&centre, &MsgCenterMgr::messageRemoved, this,
            [&events](quint64 id) { events.append(QStringLiteral("removed %1").arg(id)); });
    QSignalSpy removed(&centre, &MsgCenterMgr::messageRemoved);

    for (int i = 1; i <= 5; ++i) {
        centre.postMessage(textMessage(QString::number(i)));
    }

    QCOMPARE(keptIds(centre), QList<quint64>({3, 4, 5}));
    QCOMPARE(centre.messages().at(0).message.text, QStringLiteral("3"));
    QCOMPARE(spiedIds(removed), QList<quint64>({1, 2}));
    QCOMPARE(events, QStringList({"posted 1", "posted 2", "posted 3", "removed 1", "posted 4",
                                  "removed 2", "posted 5"}));
    QVERIFY(!centre.message(1).has_value());
    QVERIFY(!centre.triggerAction(1));
}

void TestMsgCenterMgr::capacityIsAtLeastOne()
{
    MsgCenterMgr centre(0);
    QSignalSpy removed(&centre, &MsgCenterMgr::messageRemoved);
    centre.postMessage(textMessage("first"));
    QCOMPARE(keptIds(centre), QList<quint64>({1}));
    centre.postMessage(textMessage("second"));
    QCOMPARE(keptIds(centre), QList<quint64>({2}));
    QCOMPARE(spiedIds(removed), QList<quint64>({1}));
}

void TestMsgCenterMgr::triggerActionRunsTheCallbackOnTheCallingThread()
{
    MsgCenterMgr centre;
    std::vector<std::thread::id> callers;
    STMessage message = textMessage("Source lost");
    message.action.label = QStringLiteral("Retry");
    message.action.callback = [&callers] { callers.push_back(std::this_thread::get_id()); };
    centre.postMessage(message);

    QVERIFY(centre.triggerAction(1));
    QCOMPARE(callers.size(), std::size_t(1));
    QVERIFY(callers.at(0) == std::this_thread::get_id());

    bool triggered = false;
    std::thread::id worker;
    std::thread thread([&] {
        worker = std::this_thread::get_id();
        triggered = centre.triggerAction(1);
    });
    thread.join();
    QVERIFY(triggered);
    QCOMPARE(callers.size(), std::size_t(2));
    QVERIFY(callers.at(1) == worker);
    QVERIFY(worker != std::this_thread::get_id());

    QVERIFY(centre.message(1).has_value());
}

void TestMsgCenterMgr::triggerActionWithoutCallback()
{
    MsgCenterMgr centre;
    centre.postMessage(textMessage("no action"));
    STMessage labelOnly = textMessage("label only");
    labelOnly.action.label = QStringLiteral("Open");
    centre.postMessage(labelOnly);
    int calls = 0;
    STMessage withAction = textMessage("with action");
    withAction.action.callback = [&calls] { ++calls; };
    centre.postMessage(withAction);

    QVERIFY(!centre.triggerAction(1));
    QVERIFY(!centre.triggerAction(2));
    QVERIFY(!centre.triggerAction(42));
    QCOMPARE(calls, 0);

    centre.dismiss(3);
    QVERIFY(!centre.triggerAction(3));
    QCOMPARE(calls, 0);
}

void TestMsgCenterMgr::actionMayCallBackIntoTheCentre()
{
    MsgCenterMgr centre;
    STMessage message = textMessage("Update available");
    message.action.label = QStringLiteral("Install");
    message.action.callback = [&centre] {
        centre.dismiss(1);
        centre.postMessage(textMessage("Installing"));
    };
    centre.postMessage(message);

    QVERIFY(centre.triggerAction(1));
    QCOMPARE(keptIds(centre), QList<quint64>({2}));
    QCOMPARE(centre.message(2)->message.text, QStringLiteral("Installing"));
}

void TestMsgCenterMgr::directSlotMayCallBackIntoTheCentre()
{
    MsgCenterMgr centre(2);
    QList<int> sizesSeen;
    connect(
        &centre, &MsgCenterMgr::messagePosted, this,
        [&](quint64 id) {
            sizesSeen.append(centre.messages().size());
            QVERIFY(centre.message(id).has_value());
        },
        Qt::DirectConnection);
    connect(
        &centre, &MsgCenterMgr::messageRemoved, this,
        [&](quint64 id) { QVERIFY(!centre.message(id).has_value()); }, Qt::DirectConnection);

    centre.postMessage(textMessage("a"));
    centre.postMessage(textMessage("b"));
    centre.postMessage(textMessage("c"));
    QCOMPARE(sizesSeen, QList<int>({1, 2, 2}));
}

void TestMsgCenterMgr::dismissRemovesOneMessage()
{
    MsgCenterMgr centre;
    QSignalSpy removed(&centre, &MsgCenterMgr::messageRemoved);
    for (int i = 0; i < 3; ++i) {
        centre.postMessage(textMessage(QString::number(i)));
    }

    centre.dismiss(2);
    QCOMPARE(spiedIds(removed), QList<quint64>({2}));
    QCOMPARE(keptIds(centre), QList<quint64>({1, 3}));
    QVERIFY(!centre.message(2).has_value());
    QCOMPARE(centre.message(3)->message.text, QStringLiteral("2"));

    centre.dismiss(2);
    centre.dismiss(99);
    QCOMPARE(removed.count(), 1);

    centre.dismiss(1);
    centre.dismiss(3);
    QCOMPARE(spiedIds(removed), QList<quint64>({2, 1, 3}));
    QVERIFY(centre.messages().isEmpty());
}

void TestMsgCenterMgr::clearRemovesEveryMessage()
{
    MsgCenterMgr centre;
    QSignalSpy removed(&centre, &MsgCenterMgr::messageRemoved);
    QSignalSpy posted(&centre, &MsgCenterMgr::messagePosted);
    for (int i = 0; i < 3; ++i) {
        centre.postMessage(textMessage(QString::number(i)));
    }
    centre.dismiss(2);
    removed.clear();

    centre.clear();
    QCOMPARE(spiedIds(removed), QList<quint64>({1, 3}));
    QVERIFY(centre.messages().isEmpty());

    centre.clear();
    QCOMPARE(removed.count(), 2);

    centre.postMessage(textMessage("after clear"));
    QCOMPARE(posted.last().at(0).value<quint64>(), quint64(4));
    QCOMPARE(keptIds(centre), QList<quint64>({4}));
}

void TestMsgCenterMgr::concurrentPostsKeepEveryMessage()
{
    constexpr int threadCount = 4;
    constexpr int postsPerThread = 500;
    constexpr int total = threadCount * postsPerThread;
    MsgCenterMgr centre(total);

    // QSignalSpy is not safe to feed from several threads; this recorder is.
    std::mutex signalledMutex;
    std::vector<quint64> signalled;
    connect(
        &centre, &MsgCenterMgr::messagePosted, this,
        [&](quint64 id) {
            std::lock_guard lock(signalledMutex);
            signalled.push_back(id);
        },
        Qt::DirectConnection);
    std::atomic<int> removedCount{0};
    connect(
        &centre, &MsgCenterMgr::messageRemoved, this, [&](quint64) { ++removedCount; },
        Qt::DirectConnection);

    std::vector<std::thread> posters;
    for (int t = 0; t < threadCount; ++t) {
        posters.emplace_back([&centre, t] {
            for (int i = 0; i < postsPerThread; ++i) {
                centre.postMessage(textMessage(QStringLiteral("%1/%2").arg(t).arg(i)));
            }
        });
    }
    for (auto& poster : posters) {
        poster.join();
    }

    QCOMPARE(removedCount.load(), 0);
    const QVector<PostedMessage> kept = centre.messages();
    QCOMPARE(kept.size(), total);
    QSet<QString> texts;
    for (int i = 0; i < kept.size(); ++i) {
        QCOMPARE(kept.at(i).id, quint64(i + 1));
        texts.insert(kept.at(i).message.text);
    }
    QCOMPARE(texts.size(), total);
    for (int t = 0; t < threadCount; ++t) {
        QVERIFY(texts.contains(QStringLiteral("%1/0").arg(t)));
        QVERIFY(texts.contains(QStringLiteral("%1/%2").arg(t).arg(postsPerThread - 1)));
    }

    std::sort(signalled.begin(), signalled.end());
    QCOMPARE(signalled.size(), std::size_t(total));
    for (int i = 0; i < total; ++i) {
        QCOMPARE(signalled.at(std::size_t(i)), quint64(i + 1));
    }
}

void TestMsgCenterMgr::concurrentPostsBeyondCapacityKeepTheNewest()
{
    constexpr int threadCount = 4;
    constexpr int postsPerThread = 300;
    constexpr int total = threadCount * postsPerThread;
    constexpr int capacity = 50;
    MsgCenterMgr centre(capacity);

    std::mutex removedMutex;
    std::vector<quint64> removed;
    connect(
        &centre, &MsgCenterMgr::messageRemoved, this,
        [&](quint64 id) {
            std::lock_guard lock(removedMutex);
            removed.push_back(id);
        },
        Qt::DirectConnection);

    std::vector<std::thread> posters;
    for (int t = 0; t < threadCount; ++t) {
        posters.emplace_back([&centre] {
            for (int i = 0; i < postsPerThread; ++i) {
                centre.postMessage(textMessage(QStringLiteral("message")));
                centre.messages();
            }
        });
    }
    for (auto& poster : posters) {
        poster.join();
    }

    QList<quint64> expectedKept;
    for (int id = total - capacity + 1; id <= total; ++id) {
        expectedKept.append(quint64(id));
    }
    QCOMPARE(keptIds(centre), expectedKept);

    std::sort(removed.begin(), removed.end());
    QCOMPARE(removed.size(), std::size_t(total - capacity));
    for (int i = 0; i < total - capacity; ++i) {
        QCOMPARE(removed.at(std::size_t(i)), quint64(i + 1));
    }
}

void TestMsgCenterMgr::postsFromAnotherThreadArriveQueuedOnTheMainThread()
{
    MsgCenterMgr centre;
    QSignalSpy spy(&centre, &MsgCenterMgr::messagePosted);

    QObject receiver;
    QList<quint64> received;
    bool allOnMainThread = true;
    connect(&centre, &MsgCenterMgr::messagePosted, &receiver, [&](quint64 id) {
        received.append(id);
        allOnMainThread =
            allOnMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
    });

    std::thread poster([&centre] {
        for (int i = 0; i < 3; ++i) {
            centre.postMessage(textMessage(QStringLiteral("from a worker")));
        }
    });
    poster.join();

    // The spy is connected directly and saw the signals on the worker; the receiver gets them
    // only once the main thread's event loop runs.
    QCOMPARE(spiedIds(spy), QList<quint64>({1, 2, 3}));
    QVERIFY(received.isEmpty());
    QTRY_COMPARE(received, QList<quint64>({1, 2, 3}));
    QVERIFY(allOnMainThread);
}

QTEST_GUILESS_MAIN(TestMsgCenterMgr)
#include "tst_msgcentermgr.moc"
