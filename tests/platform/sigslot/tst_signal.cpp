// SPDX-License-Identifier: MIT
#include <sigslot/signal.h>

#include <QtTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

class Receiver
{
public:
    void onValue(int value) { values.push_back(value); }
    void onFlag(bool& handled) { handled = true; }

    std::vector<int> values;
};

// Counts its copies, so that a test can tell whether an argument was passed on or copied.
struct Payload
{
    Payload() = default;
    Payload(const Payload& other)
        : value(other.value)
    {
        ++copies;
    }
    Payload& operator=(const Payload&) = default;

    int value = 0;
    static inline int copies = 0;
};

class PayloadReceiver
{
public:
    void onPayload(const Payload& payload) { seen = &payload; }

    const Payload* seen = nullptr;
};

// Holds every thread of a test until all of them are running, so that their work overlaps.
class StartLine
{
public:
    void wait() const
    {
        while (!m_open.load()) {
            std::this_thread::yield();
        }
    }
    void open() { m_open.store(true); }

private:
    std::atomic<bool> m_open{false};
};

} // namespace

class TestSignal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connectsLambda();
    void connectsMemberFunctionOfRawPointer();
    void connectsMemberFunctionOfSharedPointer();
    void callsSlotsInConnectionOrder();
    void passesConstReferenceWithoutCopy();
    void slotAnswersThroughOutFlag();
    void disconnectStopsCalls();
    void connectionCopiesShareOneConnection();
    void connectionEndsWithSignal();
    void scopedConnectionDisconnectsAtScopeExit();
    void scopedConnectionMoveAssignmentDisconnectsPrevious();
    void scopedConnectionMoveKeepsConnection();
    void scopedConnectionReleaseKeepsConnection();
    void disconnectAllSlots();
    void slotCountFollowsConnections();
    void emitsWhileOtherThreadsConnectAndDisconnect();
    void emissionStartedAfterDisconnectNeverCallsSlot();
};

void TestSignal::connectsLambda()
{
    sigslot::signal<int, QString> signal;
    int received = 0;
    QString text;
    signal.connect([&](int value, const QString& name) {
        received = value;
        text = name;
    });

    signal(42, QStringLiteral("camera"));

    QCOMPARE(received, 42);
    QCOMPARE(text, QStringLiteral("camera"));
}

void TestSignal::connectsMemberFunctionOfRawPointer()
{
    sigslot::signal<int> signal;
    Receiver receiver;
    const sigslot::connection connection = signal.connect(&Receiver::onValue, &receiver);

    signal(1);
    signal(2);

    QCOMPARE(receiver.values, (std::vector<int>{1, 2}));
    QVERIFY(connection.connected());
}

void TestSignal::connectsMemberFunctionOfSharedPointer()
{
    sigslot::signal<int> signal;
    auto receiver = std::make_shared<Receiver>();
    const std::weak_ptr<Receiver> watcher = receiver;
    sigslot::connection connection = signal.connect(&Receiver::onValue, receiver);

    signal(7);
    QCOMPARE(receiver->values, std::vector<int>{7});

    // The connection holds the receiver, so dropping the caller's reference does not end it.
    const Receiver* const raw = receiver.get();
    receiver.reset();
    QVERIFY(!watcher.expired());
    signal(8);
    QCOMPARE(raw->values, (std::vector<int>{7, 8}));

    connection.disconnect();
    QVERIFY(watcher.expired());
}

void TestSignal::callsSlotsInConnectionOrder()
{
    sigslot::signal<> signal;
    std::vector<int> order;
    std::vector<sigslot::connection> connections;
    for (int i = 0; i < 5; ++i) {
        connections.push_back(signal.connect([&order, i] { order.push_back(i); }));
    }

    signal();
    QCOMPARE(order, (std::vector<int>{0, 1, 2, 3, 4}));

    order.clear();
    connections[2].disconnect();
    signal.connect([&order] { order.push_back(5); });
    signal();
    QCOMPARE(order, (std::vector<int>{0, 1, 3, 4, 5}));
}

void TestSignal::passesConstReferenceWithoutCopy()
{
    sigslot::signal<const Payload&> signal;
    const Payload* seenByLambda = nullptr;
    signal.connect([&](const Payload& payload) { seenByLambda = &payload; });
    PayloadReceiver receiver;
    signal.connect(&PayloadReceiver::onPayload, &receiver);

    Payload payload;
    payload.value = 3;
    Payload::copies = 0;
    signal(payload);

    QCOMPARE(seenByLambda, &payload);
    QCOMPARE(receiver.seen, &payload);
    QCOMPARE(Payload::copies, 0);
}

void TestSignal::slotAnswersThroughOutFlag()
{
    sigslot::signal<bool&> signal;
    bool handled = false;
    signal(handled);
    QVERIFY(!handled);

    // The second slot sees what the first one wrote: both get the emitter's own variable.
    bool seenBySecond = false;
    Receiver receiver;
    signal.connect(&Receiver::onFlag, &receiver);
    signal.connect([&](bool& flag) { seenBySecond = flag; });

    signal(handled);
    QVERIFY(handled);
    QVERIFY(seenBySecond);
}

void TestSignal::disconnectStopsCalls()
{
    sigslot::signal<> signal;
    int calls = 0;
    sigslot::connection connection = signal.connect([&] { ++calls; });
    QVERIFY(connection.connected());

    signal();
    connection.disconnect();
    QVERIFY(!connection.connected());
    signal();
    QCOMPARE(calls, 1);

    connection.disconnect();
    QVERIFY(!connection.connected());

    sigslot::connection empty;
    QVERIFY(!empty.connected());
    empty.disconnect();
}

void TestSignal::connectionCopiesShareOneConnection()
{
    sigslot::signal<> signal;
    int calls = 0;
    const sigslot::connection original = signal.connect([&] { ++calls; });
    sigslot::connection copy = original;

    copy.disconnect();

    QVERIFY(!original.connected());
    signal();
    QCOMPARE(calls, 0);
}

void TestSignal::connectionEndsWithSignal()
{
    sigslot::connection connection;
    {
        sigslot::signal<> signal;
        connection = signal.connect([] {});
        QVERIFY(connection.connected());
    }
    QVERIFY(!connection.connected());
    connection.disconnect();
}

void TestSignal::scopedConnectionDisconnectsAtScopeExit()
{
    sigslot::signal<> signal;
    int calls = 0;
    {
        const sigslot::scoped_connection scoped = signal.connect([&] { ++calls; });
        QVERIFY(scoped.connected());
        signal();
    }
    signal();

    QCOMPARE(calls, 1);
    QCOMPARE(signal.slot_count(), std::size_t(0));
}

void TestSignal::scopedConnectionMoveAssignmentDisconnectsPrevious()
{
    sigslot::signal<> signal;
    int firstCalls = 0;
    int secondCalls = 0;
    sigslot::scoped_connection scoped = signal.connect([&] { ++firstCalls; });
    const sigslot::connection adopted = signal.connect([] {});
    sigslot::scoped_connection other(adopted);

    scoped = signal.connect([&] { ++secondCalls; });
    signal();
    QCOMPARE(firstCalls, 0);
    QCOMPARE(secondCalls, 1);

    // Taking over another handle breaks what this one held and leaves the other one empty.
    scoped = std::move(other);
    QVERIFY(!other.connected());
    QVERIFY(scoped.connected());
    QVERIFY(adopted.connected());
    signal();
    QCOMPARE(secondCalls, 1);
    QCOMPARE(signal.slot_count(), std::size_t(1));

    scoped.disconnect();
    QVERIFY(!adopted.connected());
}

void TestSignal::scopedConnectionMoveKeepsConnection()
{
    sigslot::signal<> signal;
    int calls = 0;
    std::unique_ptr<sigslot::scoped_connection> survivor;
    {
        sigslot::scoped_connection scoped = signal.connect([&] { ++calls; });
        survivor = std::make_unique<sigslot::scoped_connection>(std::move(scoped));
    }
    signal();
    QCOMPARE(calls, 1);

    survivor.reset();
    signal();
    QCOMPARE(calls, 1);
}

void TestSignal::scopedConnectionReleaseKeepsConnection()
{
    sigslot::signal<> signal;
    int calls = 0;
    sigslot::connection released;
    {
        sigslot::scoped_connection scoped = signal.connect([&] { ++calls; });
        released = scoped.release();
        QVERIFY(!scoped.connected());
    }
    QVERIFY(released.connected());
    signal();
    QCOMPARE(calls, 1);

    released.disconnect();
    signal();
    QCOMPARE(calls, 1);
}

void TestSignal::disconnectAllSlots()
{
    sigslot::signal<int> signal;
    int calls = 0;
    const sigslot::connection first = signal.connect([&](int) { ++calls; });
    const sigslot::connection second = signal.connect([&](int) { ++calls; });

    signal.disconnect_all_slots();
    signal(1);

    QCOMPARE(calls, 0);
    QVERIFY(!first.connected());
    QVERIFY(!second.connected());
    QCOMPARE(signal.slot_count(), std::size_t(0));

    signal.connect([&](int) { ++calls; });
    signal(2);
    QCOMPARE(calls, 1);
}

void TestSignal::slotCountFollowsConnections()
{
    sigslot::signal<> signal;
    QCOMPARE(signal.slot_count(), std::size_t(0));

    sigslot::connection first = signal.connect([] {});
    signal.connect([] {});
    {
        const sigslot::scoped_connection third = signal.connect([] {});
        QCOMPARE(signal.slot_count(), std::size_t(3));
    }
    QCOMPARE(signal.slot_count(), std::size_t(2));

    first.disconnect();
    QCOMPARE(signal.slot_count(), std::size_t(1));
}

void TestSignal::emitsWhileOtherThreadsConnectAndDisconnect()
{
    constexpr int emitters = 4;
    constexpr int emissionsPerEmitter = 2000;
    constexpr int churners = 3;
    constexpr int connectionsPerChurner = 500;

    sigslot::signal<int> signal;
    std::atomic<long> steadyCalls{0};
    std::atomic<long> steadySum{0};
    signal.connect([&](int value) {
        steadyCalls.fetch_add(1);
        steadySum.fetch_add(value);
    });
    std::atomic<long> churnCalls{0};
    std::atomic<int> churnConnects{0};

    StartLine start;
    std::vector<std::thread> threads;
    for (int e = 0; e < emitters; ++e) {
        threads.emplace_back([&] {
            start.wait();
            for (int i = 1; i <= emissionsPerEmitter; ++i) {
                signal(i);
            }
        });
    }
    for (int c = 0; c < churners; ++c) {
        threads.emplace_back([&] {
            start.wait();
            for (int i = 0; i < connectionsPerChurner; ++i) {
                sigslot::scoped_connection scoped =
                    signal.connect([&](int) { churnCalls.fetch_add(1); });
                churnConnects.fetch_add(1);
                if (i % 2 == 0) {
                    scoped.disconnect();
                }
            }
        });
    }
    start.open();
    for (std::thread& thread : threads) {
        thread.join();
    }

    constexpr long perEmitterSum = long(emissionsPerEmitter) * (emissionsPerEmitter + 1) / 2;
    QCOMPARE(steadyCalls.load(), long(emitters) * emissionsPerEmitter);
    QCOMPARE(steadySum.load(), emitters * perEmitterSum);
    QCOMPARE(churnConnects.load(), churners * connectionsPerChurner);
    QCOMPARE(signal.slot_count(), std::size_t(1));

    const long churnCallsAfterJoin = churnCalls.load();
    signal(0);
    QCOMPARE(churnCalls.load(), churnCallsAfterJoin);
}

void TestSignal::emissionStartedAfterDisconnectNeverCallsSlot()
{
    // Round r connects one slot, waits until it has been called, and disconnects it. Every
    // emission carries the number of rounds whose disconnect() had returned when it began, so
    // the slot of round r must never see a number above r.
    constexpr int rounds = 200;
    constexpr int emitters = 3;

    sigslot::signal<int> signal;
    std::atomic<int> disconnectedRounds{0};
    std::atomic<bool> done{false};
    std::atomic<int> lateCalls{0};
    std::vector<std::atomic<int>> callsPerRound(rounds);

    StartLine start;
    std::vector<std::thread> threads;
    for (int e = 0; e < emitters; ++e) {
        threads.emplace_back([&] {
            start.wait();
            while (!done.load()) {
                signal(disconnectedRounds.load());
            }
        });
    }

    bool everyRoundCalled = true;
    start.open();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (int round = 0; round < rounds; ++round) {
        sigslot::connection connection = signal.connect([&, round](int disconnectedBefore) {
            callsPerRound[round].fetch_add(1);
            if (disconnectedBefore > round) {
                lateCalls.fetch_add(1);
            }
        });
        while (callsPerRound[round].load() == 0 && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
        everyRoundCalled = everyRoundCalled && callsPerRound[round].load() > 0;
        connection.disconnect();
        disconnectedRounds.store(round + 1);
    }
    done.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }

    QVERIFY(everyRoundCalled);
    QCOMPARE(lateCalls.load(), 0);
    QCOMPARE(signal.slot_count(), std::size_t(0));
}

QTEST_GUILESS_MAIN(TestSignal)

#include "tst_signal.moc"
