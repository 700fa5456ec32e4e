// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>

#include <QtTest>

#include <cstdint>
#include <type_traits>

using vexa::inputsource::IInputSourceMgr;

class TestIInputSourceMgr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAnAbstractInterface();
    void signalsAreDeclaredInConnectionTableOrder();
    void outFlagReachesTheEmitter();
};

void TestIInputSourceMgr::isAnAbstractInterface()
{
    QVERIFY(std::is_abstract_v<IInputSourceMgr>);
    QVERIFY(std::has_virtual_destructor_v<IInputSourceMgr>);
    QVERIFY(!std::is_copy_constructible_v<IInputSourceMgr>);
}

void TestIInputSourceMgr::signalsAreDeclaredInConnectionTableOrder()
{
    vexa::testing::FakeInputSourceMgr mgr;
    // Members of one access level are laid out in declaration order, so their addresses tell
    // the order in which the interface declares its signals.
    const std::vector<std::uintptr_t> addresses = {
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourcesAdded),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourceExtracted),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourceExtractFailed),
        reinterpret_cast<std::uintptr_t>(&mgr.signalPreviewedChanged),
        reinterpret_cast<std::uintptr_t>(&mgr.signalOnlineStatusChanged),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourcesCleared),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourcesReordered),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourceLost),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourceRecovered),
        reinterpret_cast<std::uintptr_t>(&mgr.signalCaptResolutionUpdated),
        reinterpret_cast<std::uintptr_t>(&mgr.signalOnlineTimeUpdated),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourcesDeleted),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResourceRenamed),
        reinterpret_cast<std::uintptr_t>(&mgr.signalNdiSourcesUpdated),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResolutionUpdated),
        reinterpret_cast<std::uintptr_t>(&mgr.signalCaptureDevicesChanged),
        reinterpret_cast<std::uintptr_t>(&mgr.signalStreamingTextChanged),
        reinterpret_cast<std::uintptr_t>(&mgr.signalResolutionError),
        reinterpret_cast<std::uintptr_t>(&mgr.signalWebInfoChanged),
    };
    for (std::size_t i = 1; i < addresses.size(); ++i) {
        QVERIFY2(addresses[i - 1] < addresses[i], qPrintable(QString::number(i)));
    }
}

void TestIInputSourceMgr::outFlagReachesTheEmitter()
{
    vexa::testing::FakeInputSourceMgr mgr;
    mgr.signalResourceRenamed.connect([](const vexa::STResourceRenamedModel& model,
                                         bool& repeated) { repeated = model.name == "Taken"; });
    bool repeated = false;
    mgr.signalResourceRenamed({3, "Taken", {}, {}, 0}, repeated);
    QVERIFY(repeated);
}

QTEST_GUILESS_MAIN(TestIInputSourceMgr)
#include "tst_iinputsourcemgr.moc"
