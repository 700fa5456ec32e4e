// SPDX-License-Identifier: MIT
#include "boundbox.h"

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/waituntil.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <vexa/widgets/pushbutton.h>

#include <QLabel>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>

#include <memory>
#include <thread>

using vexa::inputsource::CaptureCardBox;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::STInputSource;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::WarningRecorder;

namespace {

using BoundCaptureBox = BoundBoxOf<CaptureCardBox>;

// The object a host reaches the device slot through, as docs/integration.md tells it.
QObject* deviceReceiver(const CaptureCardBox& box)
{
    return box.findChild<QObject*>(QStringLiteral("captureCardBoxImpl"));
}

void deviceChanged(const CaptureCardBox& box, bool isArrival)
{
    QVERIFY(
        QMetaObject::invokeMethod(deviceReceiver(box), "slotUpdateDevice", Q_ARG(bool, isArrival)));
}

} // namespace

class TestCaptureCardBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isACaptureBoxWithoutAddButton();
    void slotsAreReachableByName();
    void translationKeepsTheTitleKey();
    void arrivalRefreshesOnTheGuiThread();
    void arrivalPostedFromADeviceThreadRunsOnTheGuiThread();
    void removalCausesNoManagerCall();
    void arrivalWithoutManagerLogsOncePerEvent();
    void arrivalAfterTheManagerWentLogs();
    void runtimeReachesTheBaseBox();
};

void TestCaptureCardBox::isACaptureBoxWithoutAddButton()
{
    CaptureCardBox box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));

    QCOMPARE(box.resourceType(), EnResourceType::LocalCaptureDevice);
    QCOMPARE(box.findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text(),
             QStringLiteral("CaptureCard"));
    auto* const add = box.findChild<vexa::widgets::PushButton*>(QStringLiteral("boxAddButton"));
    QVERIFY(add != nullptr);
    QVERIFY(!add->isVisible());
    QVERIFY(
        box.findChild<vexa::widgets::PushButton*>(QStringLiteral("boxPreviewButton"))->isVisible());
}

void TestCaptureCardBox::slotsAreReachableByName()
{
    CaptureCardBox box;
    const QObject* const receiver = deviceReceiver(box);
    QVERIFY(receiver != nullptr);
    const QMetaObject* const meta = receiver->metaObject();
    const int translate = meta->indexOfSlot("slotTranslateLanguage()");
    const int update = meta->indexOfSlot("slotUpdateDevice(bool)");
    QVERIFY(translate >= 0);
    QVERIFY(update >= 0);
    QVERIFY(translate < update);
    QCOMPARE(meta->method(update).parameterNames().value(0), QByteArray("isArrival"));
}

void TestCaptureCardBox::translationKeepsTheTitleKey()
{
    CaptureCardBox box;
    QSignalSpy translated(&box, &InputSourceBox::signalTranslateLanguage);
    box.translateLanguage();
    QCOMPARE(translated.count(), 1);
    QCOMPARE(box.findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text(),
             QStringLiteral("CaptureCard"));
}

void TestCaptureCardBox::arrivalRefreshesOnTheGuiThread()
{
    BoundCaptureBox bound;
    WarningRecorder recorder;

    deviceChanged(bound.box, true);

    const auto calls = bound.mgr->calls();
    QCOMPARE(static_cast<int>(calls.size()), 1);
    QCOMPARE(calls.front().operation, std::string("refreshCaptureDevices"));
    QCOMPARE(calls.front().thread, std::this_thread::get_id());
    QVERIFY(!calls.front().onRuntimeThread);
    QVERIFY(ownWarnings(recorder).empty());

    deviceChanged(bound.box, true);
    QCOMPARE(bound.mgr->callCount("refreshCaptureDevices"), 2);
}

void TestCaptureCardBox::arrivalPostedFromADeviceThreadRunsOnTheGuiThread()
{
    BoundCaptureBox bound;
    QObject* const receiver = deviceReceiver(bound.box);

    // A host's device watcher runs on a thread of its own and posts, as the guide says.
    std::thread watcher([receiver] {
        QMetaObject::invokeMethod(receiver, "slotUpdateDevice", Qt::QueuedConnection,
                                  Q_ARG(bool, true));
    });
    watcher.join();
    QCOMPARE(bound.mgr->callCount("refreshCaptureDevices"), 0);
    QTRY_COMPARE(bound.mgr->callCount("refreshCaptureDevices"), 1);
    QCOMPARE(bound.mgr->calls().front().thread, std::this_thread::get_id());
}

void TestCaptureCardBox::removalCausesNoManagerCall()
{
    BoundCaptureBox bound;
    WarningRecorder recorder;

    deviceChanged(bound.box, false);
    BoundCaptureBox::settle();

    QVERIFY(bound.mgr->calls().empty());
    QVERIFY(ownWarnings(recorder).empty());
}

void TestCaptureCardBox::arrivalWithoutManagerLogsOncePerEvent()
{
    CaptureCardBox box;
    WarningRecorder recorder;

    deviceChanged(box, true);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 1);
    deviceChanged(box, true);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 2);
    deviceChanged(box, false);

    const auto own = ownWarnings(recorder);
    QCOMPARE(static_cast<int>(own.size()), 2);
    QVERIFY(own.front().file.endsWith("capturecardbox.cpp"));
    QVERIFY(own.front().line > 0);
    QVERIFY2(own.front().function.contains("slotUpdateDevice(bool)"),
             own.front().function.constData());
    QCOMPARE(box.itemCount(), 0);
}

void TestCaptureCardBox::arrivalAfterTheManagerWentLogs()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    CaptureCardBox box;
    box.setZQRuntime(&runtime);
    box.setInputSourceMgr(mgr);
    const std::weak_ptr<FakeInputSourceMgr> gone = mgr;
    mgr.reset();
    // The runtime drops the binding request's reference a moment after the box got its answer.
    QVERIFY(vexa::testing::waitUntil([&gone] { return gone.expired(); }, std::chrono::seconds(5)));
    WarningRecorder recorder;

    deviceChanged(box, true);

    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 1);
}

void TestCaptureCardBox::runtimeReachesTheBaseBox()
{
    BoundCaptureBox bound;
    bound.addOwn({4});
    QVERIFY(bound.tile(4) != nullptr);

    Q_EMIT bound.tile(4)->signalPreviewChanged(4, true);

    const auto previews = bound.mgr->callsOf("previewInputSources");
    QCOMPARE(static_cast<int>(previews.size()), 1);
    QVERIFY(previews.front().onRuntimeThread);
}

QTEST_MAIN(TestCaptureCardBox)
#include "tst_capturecardbox.moc"
