// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/runtimeblocker.h>
#include <vexainputsourcewidget/testing/waituntil.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/runtime/zqruntime.h>

#include <QtTest>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

using quandel::ZQRuntime;
using vexa::testing::RuntimeBlocker;
using vexa::testing::waitUntil;
using vexa::testing::WarningRecorder;

namespace {

// Long enough for a slow sanitizer build; what has not happened by then never will.
constexpr auto patience = std::chrono::seconds(30);
// How long a task that must not run is given to run all the same.
constexpr auto grace = std::chrono::milliseconds(200);

// A blocker holds only once every task posted before it has run, so a second one tells that
// the worker got past the first.
bool everyEarlierTaskRan(quandel::IZQRuntime& runtime)
{
    const RuntimeBlocker after(runtime, patience);
    return after.isHolding();
}

} // namespace

class TestRuntimeBlocker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsTheWorkerUntilReleased();
    void releaseTwiceIsHarmless();
    void destructorReleases();
    void stoppedRuntimeFailsAtOnce();
    void busyRuntimeTimesOutAndLetsGoLater();
    void onTheRuntimeThreadFailsAtOnce();
    void waitUntilSeesAConditionMadeTrueElsewhere();
    void waitUntilGivesUpAfterTheTimeout();
};

void TestRuntimeBlocker::holdsTheWorkerUntilReleased()
{
    ZQRuntime runtime;
    RuntimeBlocker blocker(runtime);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
    QVERIFY(blocker.errorString().isEmpty());
    // The holding task was taken from the queue: it runs, it does not wait there.
    QCOMPARE(runtime.pendingCount(), std::size_t(0));

    std::promise<void> ran;
    std::future<void> ranFuture = ran.get_future();
    runtime.post([&ran] { ran.set_value(); }, __FILE__, __LINE__, Q_FUNC_INFO);
    QCOMPARE(ranFuture.wait_for(grace), std::future_status::timeout);
    QCOMPARE(runtime.pendingCount(), std::size_t(1));

    blocker.release();
    QVERIFY(!blocker.isHolding());
    QCOMPARE(ranFuture.wait_for(patience), std::future_status::ready);
}

void TestRuntimeBlocker::releaseTwiceIsHarmless()
{
    ZQRuntime runtime;
    RuntimeBlocker blocker(runtime);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
    blocker.release();
    blocker.release();
    QVERIFY(!blocker.isHolding());
    QVERIFY(everyEarlierTaskRan(runtime));
}

void TestRuntimeBlocker::destructorReleases()
{
    ZQRuntime runtime;
    std::atomic<bool> ran{false};
    {
        RuntimeBlocker blocker(runtime);
        QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
        runtime.post([&ran] { ran = true; }, __FILE__, __LINE__, Q_FUNC_INFO);
        std::this_thread::sleep_for(grace);
        QVERIFY(!ran);
    }
    QVERIFY(everyEarlierTaskRan(runtime));
    QVERIFY(ran);
}

void TestRuntimeBlocker::stoppedRuntimeFailsAtOnce()
{
    WarningRecorder recorder;
    ZQRuntime runtime;
    runtime.stop();

    QElapsedTimer clock;
    clock.start();
    RuntimeBlocker blocker(runtime, patience);
    QVERIFY(clock.elapsed() < 10000);
    QVERIFY(!blocker.isHolding());
    QVERIFY2(blocker.errorString().contains(QLatin1String("unrun")),
             qPrintable(blocker.errorString()));
    QCOMPARE(recorder.count(blocker.errorString()), 1);
}

void TestRuntimeBlocker::busyRuntimeTimesOutAndLetsGoLater()
{
    WarningRecorder recorder;
    ZQRuntime runtime;
    RuntimeBlocker first(runtime);
    QVERIFY2(first.isHolding(), qPrintable(first.errorString()));

    const auto second = std::make_unique<RuntimeBlocker>(runtime, std::chrono::milliseconds(50));
    QVERIFY(!second->isHolding());
    QVERIFY2(second->errorString().contains(QLatin1String("within 50 ms")),
             qPrintable(second->errorString()));
    QCOMPARE(recorder.count(second->errorString()), 1);

    // The late holding task must not keep the worker once the blocker that gave up lets go.
    second->release();
    first.release();
    QVERIFY(everyEarlierTaskRan(runtime));
}

void TestRuntimeBlocker::onTheRuntimeThreadFailsAtOnce()
{
    WarningRecorder recorder;
    ZQRuntime runtime;
    std::promise<QString> error;
    std::future<QString> errorFuture = error.get_future();
    runtime.post(
        [&runtime, &error] {
            RuntimeBlocker blocker(runtime, patience);
            error.set_value(blocker.isHolding() ? QString() : blocker.errorString());
        },
        __FILE__, __LINE__, Q_FUNC_INFO);

    QCOMPARE(errorFuture.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    const QString why = errorFuture.get();
    QVERIFY2(why.contains(QLatin1String("runtime thread")), qPrintable(why));
    QVERIFY(everyEarlierTaskRan(runtime));
}

void TestRuntimeBlocker::waitUntilSeesAConditionMadeTrueElsewhere()
{
    std::atomic<bool> flag{false};
    std::thread setter([&flag] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        flag = true;
    });
    const bool seen = waitUntil([&flag] { return flag.load(); }, patience);
    setter.join();
    QVERIFY(seen);
}

void TestRuntimeBlocker::waitUntilGivesUpAfterTheTimeout()
{
    int evaluations = 0;
    const auto start = std::chrono::steady_clock::now();
    QVERIFY(!waitUntil(
        [&evaluations] {
            ++evaluations;
            return false;
        },
        std::chrono::milliseconds(50)));
    QVERIFY(std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(50));
    QVERIFY(evaluations > 1);
}

QTEST_GUILESS_MAIN(TestRuntimeBlocker)
#include "tst_runtimeblocker.moc"
