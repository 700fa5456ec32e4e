// SPDX-License-Identifier: MIT
#include "runonruntime.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/runtimeblocker.h>
#include <vexainputsourcewidget/testing/waituntil.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/valuemeta.h>

#include <QtTest>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::MetaQueryResult;
using vexa::inputsource::runOnRuntime;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::RuntimeBlocker;
using vexa::testing::waitUntil;

namespace {

constexpr auto patience = std::chrono::seconds(10);

// A manager that tells when it is destroyed.
class ObservedMgr : public FakeInputSourceMgr
{
public:
    ObservedMgr(quandel::IZQRuntime* runtime, std::atomic<bool>& destroyed)
        : FakeInputSourceMgr(runtime)
        , m_destroyed(destroyed)
    {}
    ~ObservedMgr() override { m_destroyed = true; }

private:
    std::atomic<bool>& m_destroyed;
};

MetaQueryResult queryMeta(const std::shared_ptr<IInputSourceMgr>& mgr, uint64_t id)
{
    const auto resource = mgr->getResourceById(id);
    if (!resource) {
        return {nullptr, false};
    }
    return {resource->getMeta(), true};
}

} // namespace

class TestRunOnRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsOnTheRuntimeThreadAndReturnsTheResult();
    void refusingGateRunsNothingAndGivesDefaults();
    void refusingGateDestroysTheCallable();
    void callOnTheRuntimeThreadRunsInline();
    void managerDroppedWhileQueuedIsAliveWhenTheRequestRuns();
    void discardedTaskGivesBrokenPromise();
    void exceptionReachesTheCaller();
    void metaQueryCarriesTheMeta();
    void missingRuntimeIsLoggedAndGivesDefaults();

private:
    quandel::ZQRuntime m_runtime;
};

void TestRunOnRuntime::runsOnTheRuntimeThreadAndReturnsTheResult()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>(&m_runtime);
    mgr->setRenameAnswer(false);
    const vexa::STResourceRenamedModel model{7, "Camera 1", {}, {}, 0};

    const bool accepted = runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotItemNameChanged",
                                       std::bind(&IInputSourceMgr::renameInputSource,
                                                 std::shared_ptr<IInputSourceMgr>(mgr), model));

    QCOMPARE(accepted, false);
    const auto calls = mgr->callsOf("renameInputSource");
    QCOMPARE(calls.size(), std::size_t(1));
    QVERIFY(calls.front().onRuntimeThread);
    QVERIFY(calls.front().thread != std::this_thread::get_id());
    QCOMPARE(
        std::get<0>(mgr->lastArguments<vexa::STResourceRenamedModel>("renameInputSource")).name,
        std::string("Camera 1"));
}

void TestRunOnRuntime::refusingGateRunsNothingAndGivesDefaults()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>(&m_runtime);
    mgr->setRenameAnswer(true);
    auto meta = std::make_shared<zq::mediacore::ValueMeta>();
    auto resource = std::make_shared<quandel::resource::ValueResource>(
        5, quandel::resource::EnResourceType::NetworkStream, "Stream1");
    resource->setMeta(meta);
    mgr->setResources({resource});

    m_runtime.setGateOpen(false);
    runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotItemDelete",
                 [mgr] { mgr->deleteInputSources({5}); });
    const bool renamed = runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotItemNameChanged", [mgr] {
        return mgr->renameInputSource({5, "x", {}, {}, 0});
    });
    const MetaQueryResult queried =
        runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotGetInputSourceMeta",
                     [mgr] { return queryMeta(mgr, 5); });
    m_runtime.setGateOpen(true);

    QCOMPARE(renamed, false);
    QVERIFY(std::get<0>(queried) == nullptr);
    QCOMPARE(std::get<1>(queried), false);
    QVERIFY(mgr->calls().empty());
}

void TestRunOnRuntime::refusingGateDestroysTheCallable()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>(&m_runtime);
    const std::weak_ptr<FakeInputSourceMgr> watched = mgr;
    std::shared_ptr<FakeInputSourceMgr> bound = mgr;
    mgr.reset();

    m_runtime.setGateOpen(false);
    runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotItemDelete",
                 [bound = std::move(bound)] { bound->deleteInputSources({1}); });
    m_runtime.setGateOpen(true);

    QVERIFY(watched.expired());
}

void TestRunOnRuntime::callOnTheRuntimeThreadRunsInline()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>(&m_runtime);
    std::promise<bool> answered;
    auto answer = answered.get_future();

    m_runtime.post(
        [this, mgr, &answered] {
            // Waiting on its own queue would never end; the call must run right here.
            const bool result = runOnRuntime(&m_runtime, __FILE__, __LINE__, "setInputSourceMgr",
                                             [mgr] { return mgr->isNameRepeated("Cam"); });
            answered.set_value(result);
        },
        __FILE__, __LINE__, "callOnTheRuntimeThreadRunsInline");

    QCOMPARE(answer.wait_for(patience), std::future_status::ready);
    QCOMPARE(answer.get(), false);
    const auto calls = mgr->callsOf("isNameRepeated");
    QCOMPARE(calls.size(), std::size_t(1));
    QVERIFY(calls.front().onRuntimeThread);
}

void TestRunOnRuntime::managerDroppedWhileQueuedIsAliveWhenTheRequestRuns()
{
    std::atomic<bool> destroyed{false};
    std::atomic<bool> aliveDuringRequest{false};
    auto owner = std::make_shared<ObservedMgr>(&m_runtime, destroyed);
    owner->setCallHook(
        [&](const vexa::testing::RecordedCall&) { aliveDuringRequest = !destroyed; });
    const std::weak_ptr<IInputSourceMgr> weak = owner;

    RuntimeBlocker blocker(m_runtime);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
    std::thread caller([this, weak] {
        const auto mgr = weak.lock();
        runOnRuntime(
            &m_runtime, __FILE__, __LINE__, "slotItemDelete",
            std::bind(&IInputSourceMgr::deleteInputSources, mgr, std::vector<uint64_t>{11, 12}));
    });
    QVERIFY(waitUntil([this] { return m_runtime.pendingCount() == 1; }, patience));

    owner.reset();
    QVERIFY(!weak.expired());
    QVERIFY(!destroyed);

    blocker.release();
    caller.join();

    QVERIFY(aliveDuringRequest);
    // The last reference goes with the finished task, which the worker destroys right after
    // handing over the result, so the caller may return a moment before the manager goes.
    QVERIFY(vexa::testing::waitUntil([&destroyed] { return destroyed.load(); }, patience));
    QVERIFY(weak.expired());
}

void TestRunOnRuntime::discardedTaskGivesBrokenPromise()
{
    auto runtime = std::make_unique<quandel::ZQRuntime>();
    auto mgr = std::make_shared<FakeInputSourceMgr>(runtime.get());
    RuntimeBlocker blocker(*runtime);
    QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));

    std::atomic<bool> sawQueuedRequest{false};
    std::thread stopper([&runtime, &sawQueuedRequest] {
        sawQueuedRequest = waitUntil([&runtime] { return runtime->pendingCount() == 1; }, patience);
        runtime->stop(quandel::ZQRuntime::StopMode::DiscardQueued);
    });

    bool broken = false;
    try {
        runOnRuntime(runtime.get(), __FILE__, __LINE__, "slotItemDelete",
                     [mgr] { mgr->deleteInputSources({3}); });
    } catch (const std::future_error& error) {
        broken = error.code() == std::future_errc::broken_promise;
    }
    blocker.release();
    stopper.join();

    QVERIFY(sawQueuedRequest);
    QVERIFY(broken);
    QCOMPARE(mgr->callCount("deleteInputSources"), 0);
}

void TestRunOnRuntime::exceptionReachesTheCaller()
{
    QString message;
    try {
        runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotItemDelete",
                     []() -> bool { throw std::runtime_error("manager refused"); });
    } catch (const std::runtime_error& error) {
        message = QString::fromUtf8(error.what());
    }
    QCOMPARE(message, QStringLiteral("manager refused"));

    // The runtime goes on serving requests after one of them threw.
    QCOMPARE(runOnRuntime(&m_runtime, __FILE__, __LINE__, "next", [] { return 42; }), 42);
}

void TestRunOnRuntime::metaQueryCarriesTheMeta()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>(&m_runtime);
    auto meta = std::make_shared<zq::mediacore::ValueMeta>();
    auto resource = std::make_shared<quandel::resource::ValueResource>(
        9, quandel::resource::EnResourceType::WebPage, "WebPage1");
    resource->setMeta(meta);
    mgr->setResources({resource});

    const MetaQueryResult found =
        runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotGetInputSourceMeta",
                     [mgr] { return queryMeta(mgr, 9); });
    const MetaQueryResult missing =
        runOnRuntime(&m_runtime, __FILE__, __LINE__, "slotGetInputSourceMeta",
                     [mgr] { return queryMeta(mgr, 10); });

    QVERIFY(std::get<0>(found) == meta);
    QCOMPARE(std::get<1>(found), true);
    QVERIFY(std::get<0>(missing) == nullptr);
    QCOMPARE(std::get<1>(missing), false);
}

void TestRunOnRuntime::missingRuntimeIsLoggedAndGivesDefaults()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>();
    QTest::ignoreMessage(QtWarningMsg, "nullptr == runtime");
    const bool result = runOnRuntime(nullptr, __FILE__, __LINE__, "slotItemNameChanged",
                                     [mgr] { return mgr->renameInputSource({}); });
    QCOMPARE(result, false);
    QVERIFY(mgr->calls().empty());
}

QTEST_GUILESS_MAIN(TestRunOnRuntime)
#include "tst_runonruntime.moc"
