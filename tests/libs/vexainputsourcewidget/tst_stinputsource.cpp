// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/stweboperation.h>

#include <QtTest>

#include <type_traits>

using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::STWebTab;

class TestSTInputSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsArePlainValues();
    void defaultInputSource();
    void copiesAreIndependent();
    void defaultRenameModel();
    void defaultWebOperation();
};

void TestSTInputSource::recordsArePlainValues()
{
    QVERIFY(std::is_default_constructible_v<STInputSource>);
    QVERIFY(std::is_copy_constructible_v<STInputSource>);
    QVERIFY(std::is_copy_assignable_v<STInputSource>);
    QVERIFY(std::is_copy_constructible_v<vexa::STResourceRenamedModel>);
    QVERIFY(std::is_copy_constructible_v<STWebOperation>);
    QVERIFY(std::is_copy_constructible_v<STWebTab>);
}

void TestSTInputSource::defaultInputSource()
{
    const STInputSource source;
    QCOMPARE(source.id, uint64_t(0));
    QVERIFY(source.name.empty());
    QVERIFY(source.address.empty());
    QCOMPARE(source.sourceType, 14);
    QCOMPARE(source.createdAndChangedAtMs[0], uint64_t(0));
    QCOMPARE(source.createdAndChangedAtMs[1], uint64_t(0));
    QCOMPARE(source.frameRate, 0);
    QCOMPARE(source.preview, false);
    QVERIFY(source.userName.empty());
    QCOMPARE(source.useHardwareDecoding, false);
    QVERIFY(source.password.empty());
    QVERIFY(source.devicePath.empty());
    QCOMPARE(source.muted, false);
    QCOMPARE(source.colorAdjustments[0], 0);
    QCOMPARE(source.colorAdjustments[1], 0);
    QCOMPARE(source.colorAdjustments[2], 0);
    QCOMPARE(source.audioGainDb, 0.0F);
    QVERIFY(source.transportProtocol.empty());
    QVERIFY(source.captResolutions.empty());
    QCOMPARE(source.autoReconnect, true);
    QVERIFY(source.webName.empty());
    QCOMPARE(source.channelIndex, 1);
    QCOMPARE(source.currentTabIndex, 1);
    QCOMPARE(source.webMode, 0);
    QVERIFY(source.webTabs.empty());
    QCOMPARE(source.resolutionWidth, 1920);
    QCOMPARE(source.resolutionHeight, 1080);
    QCOMPARE(source.patchId, uint64_t(0));
    QCOMPARE(source.webWindowWidth, 1600);
    QCOMPARE(source.webWindowHeight, 900);
}

void TestSTInputSource::copiesAreIndependent()
{
    STInputSource original;
    original.name = "Stream1";
    original.webTabs.push_back(STWebTab{"WebTab1", "https://example.org", 1});
    original.captResolutions.push_back({1920, 1080, 60.0F, "NV12"});

    STInputSource copy = original;
    copy.name = "Stream2";
    copy.webTabs.front().url = "https://example.com";
    copy.captResolutions.front().width = 1280;

    QCOMPARE(original.name, std::string("Stream1"));
    QCOMPARE(original.webTabs.front().url, std::string("https://example.org"));
    QCOMPARE(original.captResolutions.front().width, 1920);
}

void TestSTInputSource::defaultRenameModel()
{
    const vexa::STResourceRenamedModel model;
    QCOMPARE(model.id, uint64_t(0));
    QVERIFY(model.name.empty());
    QVERIFY(model.ipAddress.empty());
    QVERIFY(model.senderName.empty());
    QCOMPARE(model.flag, uint64_t(0));
}

void TestSTInputSource::defaultWebOperation()
{
    const STWebOperation operation;
    QCOMPARE(operation.kind, 1);
    QCOMPARE(operation.code, 0);
    QCOMPARE(operation.id, uint64_t(0));
    QVERIFY(operation.webDescription.webTabs.empty());
    QCOMPARE(operation.webDescription.currentTabIndex, 1);
    for (double reading : operation.loadReadings) {
        QCOMPARE(reading, -1.0);
    }
    QCOMPARE(int(STWebOperation::WebDescriptionChanged), 14);
    QCOMPARE(int(STWebOperation::LoadReadings), 15);
    QCOMPARE(int(STWebOperation::LoadThresholds), 16);
    QCOMPARE(int(STWebOperation::SameNativePageOnPatches), 17);
}

QTEST_GUILESS_MAIN(TestSTInputSource)
#include "tst_stinputsource.moc"
