// SPDX-License-Identifier: MIT
#include <quandel/runtime/zqruntime.h>
#include <vexainputsourcewidget/testing/runtimeblocker.h>
#include <vexainputsourcewidget/testing/waituntil.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#define TEST_CALL_SITE __FILE__, __LINE__, Q_FUNC_INFO

using quandel::ZQRuntime;
using vexa::testing::LoggedMessage;
using vexa::testing::RuntimeBlocker;
using vexa::testing::WarningRecorder;

Q_DECLARE_METATYPE(ZQRuntime::StopMode)

namespace {

// Long enough for a slow sanitizer build; a task that has not run by then never will.
constexpr auto timeout = std::chrono::seconds(30);
constexpr int timeoutMs = 30000;

const char destroyOnRuntimeThreadArgument[] = "--destroy-runtime-from-its-own-task";

template <typename T>
bool isReady(const std::future<T>& future)
{
    return future.wait_for(timeout) == std::future_status::ready;
}

// Posts a task and waits for it: once it has run, every task posted before it has run too.
bool drain(quandel::IZQRuntime& runtime)
{
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> ran = done->get_future();
    runtime.post([done] { done->set_value(); }, TEST_CALL_SITE);
    return isReady(ran);
}

// Joins when destroyed, so that a failed check does not end the process through a joinable
// std::thread. Declare it before any RuntimeBlocker its thread waits for.
class JoiningThread
{
public:
    JoiningThread() = default;
    ~JoiningThread() { join(); }

    JoiningThread(const JoiningThread&) = delete;
    JoiningThread& operator=(const JoiningThread&) = delete;

    void start(std::function<void()> body) { m_thread = std::thread(std::move(body)); }
    void join()
    {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

private:
    std::thread m_thread;
};

// Runs an action when destroyed, to see what a task's destructor may do.
class OnDestroy
{
public:
    explicit OnDestroy(std::function<void()> action)
        : m_action(std::move(action))
    {}
    ~OnDestroy() { m_action(); }

    OnDestroy(const OnDestroy&) = delete;
    OnDestroy& operator=(const OnDestroy&) = delete;

private:
    std::function<void()> m_action;
};

bool waitUntilStopped(const ZQRuntime& runtime)
{
    return vexa::testing::waitUntil([&runtime] { return runtime.isStopped(); }, timeout);
}

int destroyRuntimeFromItsOwnTask()
{
    // The crash is the expected outcome; it should leave no core file behind.
    const rlimit noCoreFile{0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);

    auto* runtime = new ZQRuntime;
    runtime->post([runtime] { delete runtime; }, TEST_CALL_SITE);
    std::promise<void> never;
    never.get_future().wait_for(timeout);
    return 0;
}

} // namespace

class TestZQRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsTasksInPostingOrder();
    void keepsEachPostersOrder();
    void runsEveryTaskOnOneOtherThread();
    void closedGateRefusesCallsButRunsPosts();
    void stoppedRuntimeRefusesCalls();
    void stopRunQueuedRunsEveryQueuedTask();
    void stopDiscardQueuedDestroysQueuedTasksUnrun();
    void postAfterStopDestroysTaskUnrun();
    void throwingTaskIsReportedAndWorkerGoesOn();
    void stopFromTaskDoesNotDeadlock_data();
    void stopFromTaskDoesNotDeadlock();
    void taskDestructorMayPost();
    void pendingCountCountsQueuedTasks();
    void destructorRunsQueuedTasks();
    void destroyingFromOwnTaskIsFatal();
};

void TestZQRuntime::runsTasksInPostingOrder()
{
    constexpr int count = 1000;
    std::vector<int> order;
    ZQRuntime runtime;
    for (int i = 0; i < count; ++i) {
        runtime.post([&order, i] { order.push_back(i); }, TEST_CALL_SITE);
    }
    QVERIFY(drain(runtime));

    std::vector<int> expected(count);
    std::iota(expected.begin(), expected.end(), 0);
    QCOMPARE(order, expected);
}

void TestZQRuntime::keepsEachPostersOrder()
{
    constexpr int posters = 4;
    constexpr int postsEach = 500;
    std::vector<std::pair<int, int>> runs;
    ZQRuntime runtime;

    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int poster = 0; poster < posters; ++poster) {
        threads.emplace_back([&, poster] {
            while (!go.load()) {
                std::this_thread::yield();
            }
            for (int i = 0; i < postsEach; ++i) {
                runtime.post([&runs, poster, i] { runs.emplace_back(poster, i); }, TEST_CALL_SITE);
            }
        });
    }
    go.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }
    QVERIFY(drain(runtime));

    QCOMPARE(runs.size(), std::size_t(posters * postsEach));
    std::vector<int> next(posters, 0);
    for (const auto& [poster, i] : runs) {
        QCOMPARE(i, next[poster]);
        ++next[poster];
    }
}

void TestZQRuntime::runsEveryTaskOnOneOtherThread()
{
    constexpr int count = 100;
    std::vector<std::thread::id> threadIds;
    std::vector<bool> insideFlags;
    ZQRuntime runtime;
    quandel::IZQRuntime& host = runtime;

    for (int i = 0; i < count; ++i) {
        host.post(
            [&] {
                threadIds.push_back(std::this_thread::get_id());
                insideFlags.push_back(host.isInRuntimeThread());
            },
            TEST_CALL_SITE);
    }
    QVERIFY(drain(host));

    QCOMPARE(threadIds.size(), std::size_t(count));
    QVERIFY(threadIds.front() != std::this_thread::get_id());
    QVERIFY(std::all_of(threadIds.begin(), threadIds.end(),
                        [&](std::thread::id id) { return id == threadIds.front(); }));
    QVERIFY(
        std::all_of(insideFlags.begin(), insideFlags.end(), [](bool inside) { return inside; }));

    QVERIFY(!host.isInRuntimeThread());
    bool insideOnOtherThread = true;
    std::thread other([&] { insideOnOtherThread = host.isInRuntimeThread(); });
    other.join();
    QVERIFY(!insideOnOtherThread);
}

void TestZQRuntime::closedGateRefusesCallsButRunsPosts()
{
    ZQRuntime runtime;
    QVERIFY(runtime.isGateOpen());
    QVERIFY(runtime.checkCall(TEST_CALL_SITE));

    runtime.setGateOpen(false);
    QVERIFY(!runtime.isGateOpen());
    QVERIFY(!runtime.checkCall(TEST_CALL_SITE));

    // The gate only advises callers; what they post anyway still runs.
    std::promise<void> ran;
    std::future<void> ranFuture = ran.get_future();
    runtime.post([&ran] { ran.set_value(); }, TEST_CALL_SITE);
    QVERIFY(isReady(ranFuture));
    QVERIFY(!runtime.checkCall(TEST_CALL_SITE));

    runtime.setGateOpen(true);
    QVERIFY(runtime.isGateOpen());
    QVERIFY(runtime.checkCall(TEST_CALL_SITE));
}

void TestZQRuntime::stoppedRuntimeRefusesCalls()
{
    ZQRuntime runtime;
    QVERIFY(!runtime.isStopped());

    runtime.stop();
    QVERIFY(runtime.isStopped());
    QVERIFY(runtime.isGateOpen());
    QVERIFY(!runtime.checkCall(TEST_CALL_SITE));

    runtime.stop(ZQRuntime::StopMode::DiscardQueued);
    QVERIFY(runtime.isStopped());
    QVERIFY(!runtime.checkCall(TEST_CALL_SITE));
}

void TestZQRuntime::stopRunQueuedRunsEveryQueuedTask()
{
    constexpr int count = 50;
    int runs = 0;
    bool lateTaskRan = false;
    WarningRecorder recorder;
    ZQRuntime runtime;
    JoiningThread stopper;
    RuntimeBlocker blocker(runtime, timeout);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
    for (int i = 0; i < count; ++i) {
        runtime.post([&runs] { ++runs; }, TEST_CALL_SITE);
    }
    QCOMPARE(runtime.pendingCount(), std::size_t(count));

    stopper.start([&] { runtime.stop(ZQRuntime::StopMode::RunQueued); });
    QVERIFY(waitUntilStopped(runtime));
    QCOMPARE(runtime.pendingCount(), std::size_t(count));
    runtime.post([&lateTaskRan] { lateTaskRan = true; }, TEST_CALL_SITE);
    QCOMPARE(runtime.pendingCount(), std::size_t(count));

    blocker.release();
    stopper.join();
    QCOMPARE(runs, count);
    QCOMPARE(runtime.pendingCount(), std::size_t(0));
    QVERIFY(!lateTaskRan);
}

void TestZQRuntime::stopDiscardQueuedDestroysQueuedTasksUnrun()
{
    std::atomic<bool> bodyRan{false};
    ZQRuntime runtime;
    JoiningThread stopper;
    RuntimeBlocker blocker(runtime, timeout);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));

    auto token = std::make_shared<int>(1);
    const std::weak_ptr<int> tokenWatch = token;
    runtime.post([token, &bodyRan] { bodyRan = true; }, TEST_CALL_SITE);
    token.reset();
    auto packaged = std::make_shared<std::packaged_task<int()>>([] { return 1; });
    std::future<int> result = packaged->get_future();
    runtime.post([packaged] { (*packaged)(); }, TEST_CALL_SITE);
    packaged.reset();
    QCOMPARE(runtime.pendingCount(), std::size_t(2));

    // stop() destroys the queue itself, while the worker is still busy with the blocker.
    stopper.start([&] { runtime.stop(ZQRuntime::StopMode::DiscardQueued); });
    QVERIFY(isReady(result));
    QCOMPARE(runtime.pendingCount(), std::size_t(0));

    blocker.release();
    stopper.join();
    QVERIFY(tokenWatch.expired());
    QVERIFY(!bodyRan.load());
    try {
        result.get();
        QFAIL("the discarded task's future holds a value");
    } catch (const std::future_error& error) {
        QCOMPARE(error.code(), std::make_error_code(std::future_errc::broken_promise));
    }
}

void TestZQRuntime::postAfterStopDestroysTaskUnrun()
{
    bool bodyRan = false;
    WarningRecorder recorder;
    ZQRuntime runtime;
    runtime.stop();

    auto token = std::make_shared<int>(1);
    const std::weak_ptr<int> tokenWatch = token;
    runtime.post([token, &bodyRan] { bodyRan = true; }, "poster.cpp", 77, "void Poster::send(int)");
    token.reset();

    QVERIFY(tokenWatch.expired());
    QVERIFY(!bodyRan);
    QCOMPARE(runtime.pendingCount(), std::size_t(0));
    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    const LoggedMessage& message = messages.front();
    QCOMPARE(message.type, QtWarningMsg);
    QVERIFY2(message.text.contains(QLatin1String("poster.cpp:77 void Poster::send(int)")),
             qPrintable(message.text));
    QVERIFY(message.file.endsWith("zqruntime.cpp"));
    QVERIFY(message.line > 0);
    QVERIFY(message.function.contains("ZQRuntime::post"));
}

void TestZQRuntime::throwingTaskIsReportedAndWorkerGoesOn()
{
    bool laterTaskRan = false;
    WarningRecorder recorder;
    ZQRuntime runtime;
    runtime.post([] { throw std::runtime_error("decoder lost"); }, "source.cpp", 12,
                 "void Source::push(int)");
    runtime.post([] { throw 42; }, "other.cpp", 34, "void Other::run()");
    runtime.post([&laterTaskRan] { laterTaskRan = true; }, TEST_CALL_SITE);
    QVERIFY(drain(runtime));
    QVERIFY(laterTaskRan);

    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(2));
    for (const LoggedMessage& message : messages) {
        QCOMPARE(message.type, QtWarningMsg);
        QVERIFY2(message.file.endsWith("zqruntime.cpp"), message.file.constData());
        QVERIFY(message.line > 0);
        QVERIFY2(message.function.contains("ZQRuntime"), message.function.constData());
    }
    QVERIFY2(messages[0].text.contains(QLatin1String("decoder lost")),
             qPrintable(messages[0].text));
    QVERIFY2(messages[0].text.contains(QLatin1String("source.cpp:12 void Source::push(int)")),
             qPrintable(messages[0].text));
    QVERIFY2(messages[1].text.contains(QLatin1String("other.cpp:34 void Other::run()")),
             qPrintable(messages[1].text));
}

void TestZQRuntime::stopFromTaskDoesNotDeadlock_data()
{
    QTest::addColumn<ZQRuntime::StopMode>("mode");
    QTest::addColumn<int>("expectedLaterRuns");
    QTest::newRow("run queued") << ZQRuntime::StopMode::RunQueued << 10;
    QTest::newRow("discard queued") << ZQRuntime::StopMode::DiscardQueued << 0;
}

void TestZQRuntime::stopFromTaskDoesNotDeadlock()
{
    QFETCH(ZQRuntime::StopMode, mode);
    QFETCH(int, expectedLaterRuns);

    std::promise<void> stopReturned;
    std::future<void> stopReturnedFuture = stopReturned.get_future();
    int laterRuns = 0;
    bool postedAfterStopRan = false;
    WarningRecorder recorder;
    ZQRuntime runtime;
    RuntimeBlocker blocker(runtime, timeout);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
    runtime.post(
        [&] {
            runtime.stop(mode);
            runtime.post([&postedAfterStopRan] { postedAfterStopRan = true; }, TEST_CALL_SITE);
            stopReturned.set_value();
        },
        TEST_CALL_SITE);
    for (int i = 0; i < 10; ++i) {
        runtime.post([&laterRuns] { ++laterRuns; }, TEST_CALL_SITE);
    }

    blocker.release();
    QVERIFY(isReady(stopReturnedFuture));
    QVERIFY(runtime.isStopped());

    // Waits for the worker, which the call from the task could not do.
    runtime.stop(ZQRuntime::StopMode::RunQueued);
    QCOMPARE(laterRuns, expectedLaterRuns);
    QVERIFY(!postedAfterStopRan);
    QCOMPARE(runtime.pendingCount(), std::size_t(0));
}

void TestZQRuntime::taskDestructorMayPost()
{
    std::promise<void> followUpRan;
    std::future<void> followUpRanFuture = followUpRan.get_future();
    bool refusedFollowUpRan = false;
    WarningRecorder recorder;
    ZQRuntime runtime;

    auto poster = std::make_shared<OnDestroy>(
        [&] { runtime.post([&followUpRan] { followUpRan.set_value(); }, TEST_CALL_SITE); });
    runtime.post([poster] {}, TEST_CALL_SITE);
    poster.reset();
    QVERIFY(isReady(followUpRanFuture));

    // A discarded task is destroyed after the stop has begun, so what it posts is refused.
    {
        JoiningThread stopper;
        RuntimeBlocker blocker(runtime, timeout);
        QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
        auto refusedPoster = std::make_shared<OnDestroy>([&] {
            runtime.post([&refusedFollowUpRan] { refusedFollowUpRan = true; }, "late.cpp", 5,
                         "void Late::post()");
        });
        runtime.post([refusedPoster] {}, TEST_CALL_SITE);
        refusedPoster.reset();
        stopper.start([&] { runtime.stop(ZQRuntime::StopMode::DiscardQueued); });
        QVERIFY(waitUntilStopped(runtime));
        blocker.release();
        stopper.join();
    }
    QVERIFY(!refusedFollowUpRan);
    const std::vector<LoggedMessage> messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    QVERIFY(messages.front().text.contains(QLatin1String("late.cpp:5 void Late::post()")));
}

void TestZQRuntime::pendingCountCountsQueuedTasks()
{
    ZQRuntime runtime;
    QCOMPARE(runtime.pendingCount(), std::size_t(0));
    RuntimeBlocker blocker(runtime, timeout);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
    QCOMPARE(runtime.pendingCount(), std::size_t(0));

    for (int i = 0; i < 3; ++i) {
        runtime.post([] {}, TEST_CALL_SITE);
    }
    QCOMPARE(runtime.pendingCount(), std::size_t(3));

    blocker.release();
    QVERIFY(drain(runtime));
    QCOMPARE(runtime.pendingCount(), std::size_t(0));
}

void TestZQRuntime::destructorRunsQueuedTasks()
{
    constexpr int count = 20;
    int runs = 0;
    std::atomic<bool> destructorSeenStopping{false};
    {
        auto runtime = std::make_unique<ZQRuntime>();
        ZQRuntime* const raw = runtime.get();
        // Holds the worker until the destructor has begun to stop, so that the later tasks are
        // surely still queued when it does.
        runtime->post(
            [raw, &destructorSeenStopping] { destructorSeenStopping = waitUntilStopped(*raw); },
            TEST_CALL_SITE);
        for (int i = 0; i < count; ++i) {
            runtime->post([&runs] { ++runs; }, TEST_CALL_SITE);
        }
        runtime.reset();
    }
    QVERIFY(destructorSeenStopping.load());
    QCOMPARE(runs, count);
}

void TestZQRuntime::destroyingFromOwnTaskIsFatal()
{
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Qt may otherwise send the fatal message to the system journal instead of stderr.
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(destroyOnRuntimeThreadArgument)});
    QVERIFY(child.waitForFinished(timeoutMs));

    const QByteArray errors = child.readAllStandardError();
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QVERIFY2(errors.contains("destroyed by a task running on its own runtime thread"),
             errors.constData());
}

int main(int argc, char* argv[])
{
    if (argc == 2 && qstrcmp(argv[1], destroyOnRuntimeThreadArgument) == 0) {
        return destroyRuntimeFromItsOwnTask();
    }
    QCoreApplication application(argc, argv);
    TestZQRuntime test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_zqruntime.moc"
