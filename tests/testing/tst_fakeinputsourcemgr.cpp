// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>

#include <QtTest>

#include <atomic>
#include <thread>

using vexa::inputsource::STInputSource;
using vexa::testing::FakeInputSourceMgr;

class TestFakeInputSourceMgr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsRequestsWithArgumentsAndThread();
    void answersQueriesFromScript();
    void firesSignalsOnTheRuntimeThread();
    void fireRethrowsTheEmittersException();
    void waitsForCallsFromOtherThreads();
    void hookRunsOnTheRequestThread();
    void lastArgumentsRefusesWrongTypesAndMissingCalls();
    void clearForgetsCalls();

private:
    quandel::ZQRuntime m_runtime;
};

void TestFakeInputSourceMgr::recordsRequestsWithArgumentsAndThread()
{
    FakeInputSourceMgr mgr(&m_runtime);
    STInputSource source;
    source.id = 3;
    source.preview = true;
    mgr.previewInputSources({source}, true);
    mgr.deleteInputSources({1, 2});

    const auto calls = mgr.calls();
    QCOMPARE(calls.size(), std::size_t(2));
    QCOMPARE(calls[0].operation, std::string("previewInputSources"));
    QCOMPARE(calls[1].operation, std::string("deleteInputSources"));
    QVERIFY(calls[0].thread == std::this_thread::get_id());
    QCOMPARE(calls[0].onRuntimeThread, false);

    const auto [sources, enable] =
        mgr.lastArguments<std::vector<STInputSource>, bool>("previewInputSources");
    QCOMPARE(sources.size(), std::size_t(1));
    QCOMPARE(sources.front().id, uint64_t(3));
    QCOMPARE(enable, true);
    QVERIFY(std::get<0>(mgr.lastArguments<std::vector<uint64_t>>("deleteInputSources")) ==
            std::vector<uint64_t>({1, 2}));
}

void TestFakeInputSourceMgr::answersQueriesFromScript()
{
    FakeInputSourceMgr mgr(&m_runtime);
    auto first = std::make_shared<quandel::resource::ValueResource>(
        1, quandel::resource::EnResourceType::WebPage, "WebPage1");
    auto second = std::make_shared<quandel::resource::ValueResource>(
        2, quandel::resource::EnResourceType::NetworkStream, "Stream1");
    mgr.setResources({first, second});
    mgr.setGeneratedStreamingName("Stream7");
    mgr.setRepeatedNames({"Taken"});
    mgr.setRenameAnswer(false);

    QCOMPARE(mgr.getResources().size(), std::size_t(2));
    QVERIFY(mgr.getResourceById(2) == second);
    QVERIFY(mgr.getResourceById(9) == nullptr);
    QCOMPARE(mgr.generateStreamingName(), std::string("Stream7"));
    QVERIFY(mgr.isNameRepeated("Taken"));
    QVERIFY(!mgr.isNameRepeated("Free"));
    QCOMPARE(mgr.renameInputSource({1, "New", {}, {}, 0}), false);
    QCOMPARE(mgr.callCount("isNameRepeated"), 2);
}

void TestFakeInputSourceMgr::firesSignalsOnTheRuntimeThread()
{
    FakeInputSourceMgr mgr(&m_runtime);
    std::atomic<bool> onRuntime{false};
    std::vector<uint64_t> received;
    mgr.signalResourcesDeleted.connect([&](const std::vector<uint64_t>& ids) {
        onRuntime = m_runtime.isInRuntimeThread();
        received = ids;
    });
    bool repeated = false;
    mgr.signalResourceRenamed.connect(
        [](const vexa::STResourceRenamedModel&, bool& flag) { flag = true; });

    mgr.fireOnRuntime([](FakeInputSourceMgr& m) { m.signalResourcesDeleted({4, 5}); });
    mgr.fireOnRuntime([&repeated](FakeInputSourceMgr& m) {
        m.signalResourceRenamed({4, "Name", {}, {}, 0}, repeated);
    });

    QVERIFY(onRuntime);
    QVERIFY(received == std::vector<uint64_t>({4, 5}));
    QVERIFY(repeated);
}

void TestFakeInputSourceMgr::fireRethrowsTheEmittersException()
{
    FakeInputSourceMgr mgr(&m_runtime);
    QVERIFY_EXCEPTION_THROWN(
        mgr.fireOnRuntime([](FakeInputSourceMgr&) { throw std::runtime_error("emitter"); }),
        std::runtime_error);
}

void TestFakeInputSourceMgr::waitsForCallsFromOtherThreads()
{
    FakeInputSourceMgr mgr(&m_runtime);
    QVERIFY(!mgr.waitForCalls("refreshNdiSources", 1, std::chrono::milliseconds(10)));
    m_runtime.post([&mgr] { mgr.refreshNdiSources(); }, __FILE__, __LINE__, "refresh");
    QVERIFY(mgr.waitForCalls("refreshNdiSources", 1));
    QVERIFY(mgr.callsOf("refreshNdiSources").front().onRuntimeThread);
}

void TestFakeInputSourceMgr::hookRunsOnTheRequestThread()
{
    FakeInputSourceMgr mgr(&m_runtime);
    std::atomic<bool> hookOnRuntime{false};
    std::atomic<int> hooked{0};
    mgr.setCallHook([&](const vexa::testing::RecordedCall& call) {
        hookOnRuntime = call.onRuntimeThread && m_runtime.isInRuntimeThread();
        ++hooked;
    });
    m_runtime.post([&mgr] { mgr.refreshCaptureDevices(); }, __FILE__, __LINE__, "refresh");
    QVERIFY(mgr.waitForCalls("refreshCaptureDevices", 1));
    QTRY_COMPARE(hooked.load(), 1);
    QVERIFY(hookOnRuntime);

    mgr.setCallHook([](const vexa::testing::RecordedCall&) { throw std::runtime_error("hook"); });
    QVERIFY_EXCEPTION_THROWN(mgr.refreshNdiSources(), std::runtime_error);
}

void TestFakeInputSourceMgr::lastArgumentsRefusesWrongTypesAndMissingCalls()
{
    FakeInputSourceMgr mgr;
    QVERIFY_EXCEPTION_THROWN(mgr.lastArguments<std::vector<uint64_t>>("deleteInputSources"),
                             std::logic_error);
    mgr.deleteInputSources({1});
    QVERIFY_EXCEPTION_THROWN(mgr.lastArguments<uint64_t>("deleteInputSources"), std::logic_error);
}

void TestFakeInputSourceMgr::clearForgetsCalls()
{
    FakeInputSourceMgr mgr;
    mgr.refreshNdiSources();
    mgr.clearCalls();
    QVERIFY(mgr.calls().empty());
    QCOMPARE(mgr.callCount("refreshNdiSources"), 0);
}

QTEST_GUILESS_MAIN(TestFakeInputSourceMgr)
#include "tst_fakeinputsourcemgr.moc"
