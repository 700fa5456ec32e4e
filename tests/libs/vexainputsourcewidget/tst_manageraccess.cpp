// SPDX-License-Identifier: MIT
#include "manageraccess.h"

#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/runtime/zqruntime.h>

#include <QtTest>

#include <memory>
#include <stdexcept>
#include <thread>

using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::ManagerAccess;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::WarningRecorder;

namespace {

// A caller of the helper, so that the warning can be checked to name it rather than the helper.
std::shared_ptr<IInputSourceMgr> lockFromHere(const ManagerAccess& access, int* line)
{
    *line = __LINE__ + 1;
    return access.lock(VEXA_HERE);
}

ManagerAccess accessTo(const std::shared_ptr<IInputSourceMgr>& mgr, quandel::ZQRuntime& runtime)
{
    ManagerAccess access;
    access.setManager(mgr);
    access.setRuntime(&runtime);
    return access;
}

} // namespace

class TestManagerAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lockAnswersTheBoundManager();
    void aGoneManagerWarnsAtTheCallersPlace();
    void theTextOfTheWarningCanBeChosen();
    void resetForgetsTheManager();
    void sendRunsOnTheRuntimeThreadWithTheManager();
    void sendWithoutManagerRunsNothing();
    void aThrowingRequestIsLoggedWithItsTag();
    void aRefusedCallYieldsTheDefaultSilently();
};

void TestManagerAccess::lockAnswersTheBoundManager()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>();
    ManagerAccess access;
    access.setManager(mgr);
    WarningRecorder recorder;
    QCOMPARE(access.lock(VEXA_HERE), std::static_pointer_cast<IInputSourceMgr>(mgr));
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 0);
}

void TestManagerAccess::aGoneManagerWarnsAtTheCallersPlace()
{
    ManagerAccess access;
    {
        auto mgr = std::make_shared<FakeInputSourceMgr>();
        access.setManager(mgr);
    }
    WarningRecorder recorder;
    int line = 0;
    QCOMPARE(lockFromHere(access, &line), nullptr);
    const auto warning = recorder.find(QStringLiteral("nullptr == inputSourceMgr"));
    QVERIFY(warning.has_value());
    QVERIFY(warning->file.endsWith("tst_manageraccess.cpp"));
    QCOMPARE(warning->line, line);
    QVERIFY(warning->function.contains("lockFromHere(const"));
}

void TestManagerAccess::theTextOfTheWarningCanBeChosen()
{
    ManagerAccess access;
    WarningRecorder recorder;
    QCOMPARE(access.lock(VEXA_HERE, "inputSourceMgr is nullptr"), nullptr);
    QCOMPARE(recorder.count(QStringLiteral("inputSourceMgr is nullptr")), 1);
}

void TestManagerAccess::resetForgetsTheManager()
{
    auto mgr = std::make_shared<FakeInputSourceMgr>();
    ManagerAccess access;
    access.setManager(mgr);
    access.reset();
    QVERIFY(access.manager().lock() == nullptr);
}

void TestManagerAccess::sendRunsOnTheRuntimeThreadWithTheManager()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    const ManagerAccess access = accessTo(mgr, runtime);
    std::thread::id ranOn;
    const bool answer = access.send(VEXA_HERE, "test", [&ranOn](IInputSourceMgr& manager) {
        ranOn = std::this_thread::get_id();
        return manager.isNameRepeated("Cam");
    });
    QVERIFY(!answer);
    QVERIFY(ranOn != std::this_thread::get_id());
    QCOMPARE(mgr->callCount("isNameRepeated"), 1);
}

void TestManagerAccess::sendWithoutManagerRunsNothing()
{
    quandel::ZQRuntime runtime;
    ManagerAccess access;
    access.setRuntime(&runtime);
    WarningRecorder recorder;
    bool ran = false;
    const bool answer = access.send(VEXA_HERE, "test", [&ran](IInputSourceMgr&) {
        ran = true;
        return true;
    });
    QVERIFY(!answer);
    QVERIFY(!ran);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 1);
}

void TestManagerAccess::aThrowingRequestIsLoggedWithItsTag()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    const ManagerAccess access = accessTo(mgr, runtime);
    WarningRecorder recorder;
    const int answer = access.send(VEXA_HERE, "slotSomething", [](IInputSourceMgr&) -> int {
        throw std::runtime_error("device busy");
    });
    QCOMPARE(answer, 0);
    QCOMPARE(recorder.count(QStringLiteral("slotSomething: device busy")), 1);
}

void TestManagerAccess::aRefusedCallYieldsTheDefaultSilently()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    const ManagerAccess access = accessTo(mgr, runtime);
    runtime.setGateOpen(false);
    WarningRecorder recorder;
    bool ran = false;
    const bool answer = access.send(VEXA_HERE, "test", [&ran](IInputSourceMgr&) {
        ran = true;
        return true;
    });
    runtime.setGateOpen(true);
    QVERIFY(!answer);
    QVERIFY(!ran);
    QVERIFY(recorder.messages().empty());
}

QTEST_MAIN(TestManagerAccess)
#include "tst_manageraccess.moc"
