// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "languagefiles.h"
#include "trkey.h"
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/testing/framefactory.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/testing/runtimeblocker.h>
#include <vexainputsourcewidget/testing/waituntil.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/msgcenter/msgcentermgr.h>
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;
using vexa::inputsource::MetaQueryResult;
using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::trKey;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::ModalAnswerer;
using vexa::testing::WarningRecorder;

namespace {

using Ids = std::vector<uint64_t>;

constexpr int noDialogMs = 300;

bool isOnline(const InputSourceItem& tile)
{
    return tile.findChild<QLabel*>(QStringLiteral("state_online")) != nullptr;
}

vexa::widgets::PushButton* previewSwitch(const InputSourceBox& box)
{
    return box.findChild<vexa::widgets::PushButton*>(QStringLiteral("boxPreviewButton"));
}

vexa::widgets::PushButton* tileToggle(const InputSourceItem& tile)
{
    return tile.findChild<vexa::widgets::PushButton*>(QStringLiteral("previewBtn"));
}

QAction* menuAction(const InputSourceItem& tile, const QString& text)
{
    for (QAction* candidate : tile.findChild<QMenu*>()->actions()) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

Ids deletedIds(const FakeInputSourceMgr& mgr)
{
    return std::get<0>(mgr.lastArguments<Ids>("deleteInputSources"));
}

// A shown box bound to `mgr` that the test may destroy, holding the tile of source 1.
QPointer<InputSourceBox> boxWithOneSource(quandel::ZQRuntime& runtime,
                                          const std::shared_ptr<FakeInputSourceMgr>& mgr)
{
    QPointer<InputSourceBox> box = new InputSourceBox;
    box->setResourceType(EnResourceType::NetworkStream);
    box->setZQRuntime(&runtime);
    box->setInputSourceMgr(mgr);
    box->resize(400, 300);
    box->show();
    mgr->fireOnRuntime([](auto& manager) {
        manager.signalResourcesAdded({makeSource(1, EnResourceType::NetworkStream)}, {});
    });
    BoundBox::settle();
    return box;
}

// Opens the tile's context menu as a right click would, runs `whileOpen` once it shows and
// answers how many milliseconds the menu stayed open. The menu is expected to close by itself;
// after 3 s a safety net closes it, so the test cannot hang.
qint64 openMenuOf(InputSourceItem* tile, const std::function<void()>& whileOpen)
{
    QPointer<QMenu> menu = tile->findChild<QMenu*>();
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, whileOpen] {
        whileOpen();
        QTimer::singleShot(3000, menu, [menu] { menu->close(); });
    });
    QElapsedTimer open;
    open.start();
    const QPoint local(20, 20);
    QContextMenuEvent event(QContextMenuEvent::Mouse, local, tile->mapToGlobal(local));
    QCoreApplication::sendEvent(tile, &event);
    return open.elapsed();
}

// Arms an answerer that must not find a dialog: a dialog would block the test, so it closes
// whatever shows up and the test can see that something did.
void expectNoDialog(ModalAnswerer& answerer)
{
    answerer.setTimeout(noDialogMs);
    answerer.closeWhenShown();
}

} // namespace

class TestInputSourceBoxBinding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void bindingConnectsOnTheRuntimeThread();
    void unbindingDisconnects();
    void bindingAnExpiredManagerWarnsAndEmitsNothing();
    void refusedGateConnectsNothingAndStillAnnounces();
    void bindingTwiceKeepsOneConnectionPerSignal();
    void destroyedBoxIgnoresLaterNotifications();

    void tilesOnlyForOwnTypeAndWithMeta();
    void addedTileIsFilledFromTheMeta();
    void captureTileGetsItsFormats();
    void lastTileRemovedCollapsesAndLaterAddExpands();
    void clearedManagerRemovesEveryTile();
    void sourceRemovedWhileItsMenuIsOpen();
    void notificationsKeepTheirOrder();

    void onlineStatusOfOtherTypesIsIgnored();
    void unknownIdsWarnOrAreSkipped();
    void otherKindsSourcesAreNotThisBoxsBusiness();
    void extractedMetaUpdatesTheTile();
    void resolutionUpdateShowsSizeAndRate();
    void captResolutionUpdateSelectsTheFormat();
    void previewedChangeSetsTheToggles();
    void onlineTimeReachesTheTiles();
    void webDescriptionChangeUpdatesTheAddress();
    void resolutionErrorGoesToTheMessageCentre();

    void deleteNotInUseAsksNothing();
    void deleteInUseAsksAndCancelSendsNothing();
    void deleteInUseConfirmedSendsAndTileStaysUntilConfirmed();
    void batchDeleteAsksOnceAtTheFirstSourceInUse();
    void batchDeleteOfNothingSendsAnEmptyList();
    void batchDeleteInCaptureBoxDoesNothing();
    void clearItemKeepsSourcesInUseUnlessForced();
    void clearItemNeverSendsCaptureDevices();

    void renameSendsTheNewName();
    void renameRefusedTellsAndShowsTheKeptName();
    void tilePreviewSendsOneRecord();
    void boxPreviewSwitchesTilesAndGuardsFor500ms();
    void captureFormatChoiceIsSent();
    void metaQueryRunsOnTheRuntime();

    void commandsWithAnExpiredManagerWarnAndSendNothing();
    void throwingManagerIsLoggedNotFatal();
    void refusedCommandSendsNothingAndLogsNothing();
    void framesReachTheTileOfTheirId();

    void unbindingForgetsTheManager();
    void rebindingDropsTheOldManagerFirst();
    void tilesExistOnceTheirNotificationRan();
    void boxDestroyedWhileItsNameNoticeIsOpen();
    void boxDestroyedWhileItsDeleteQuestionIsOpen();
    void boxDestroyedWhileATileMenuIsOpen();
    void refusedRenamesAreToldOneAtATimeInOrder();
};

void TestInputSourceBoxBinding::initTestCase()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    QVERIFY(translator.load(languageFile("en_US")));
    translator.switchLanguage(QStringLiteral("en_US"));
}

void TestInputSourceBoxBinding::bindingConnectsOnTheRuntimeThread()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    InputSourceBox box;
    box.setZQRuntime(&runtime);
    QSignalSpy finished(&box, &InputSourceBox::signalMgrSettingFinished);

    box.setInputSourceMgr(mgr);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).value<std::weak_ptr<IInputSourceMgr>>().lock(),
             std::shared_ptr<IInputSourceMgr>(mgr));
    QCOMPARE(finished.at(0).at(1).value<quandel::IZQRuntime*>(), &runtime);
    QCOMPARE(box.inputSourceMgr().lock(), std::shared_ptr<IInputSourceMgr>(mgr));

    // The twelve notifications a box reacts to, and none of the others.
    QCOMPARE(mgr->signalResourcesAdded.slot_count(), 1U);
    QCOMPARE(mgr->signalResourceExtracted.slot_count(), 1U);
    QCOMPARE(mgr->signalOnlineStatusChanged.slot_count(), 1U);
    QCOMPARE(mgr->signalResourcesDeleted.slot_count(), 1U);
    QCOMPARE(mgr->signalResourceRenamed.slot_count(), 1U);
    QCOMPARE(mgr->signalResourcesCleared.slot_count(), 1U);
    QCOMPARE(mgr->signalPreviewedChanged.slot_count(), 1U);
    QCOMPARE(mgr->signalResolutionUpdated.slot_count(), 1U);
    QCOMPARE(mgr->signalResolutionError.slot_count(), 1U);
    QCOMPARE(mgr->signalCaptResolutionUpdated.slot_count(), 1U);
    QCOMPARE(mgr->signalOnlineTimeUpdated.slot_count(), 1U);
    QCOMPARE(mgr->signalWebInfoChanged.slot_count(), 1U);
    QCOMPARE(mgr->signalNdiSourcesUpdated.slot_count(), 0U);
    QCOMPARE(mgr->signalResourceExtractFailed.slot_count(), 0U);

    // Connecting waited for the runtime: a notification fired right after is handled.
    mgr->fireOnRuntime([](auto& manager) {
        manager.signalResourcesAdded({makeSource(3, EnResourceType::Unassigned)}, {});
    });
    box.unsetInputSourceMgr();
}

void TestInputSourceBoxBinding::unbindingDisconnects()
{
    BoundBox bound;
    QSignalSpy unset(&bound.box, &InputSourceBox::signalMgrUnsettingFinished);
    bound.box.unsetInputSourceMgr();
    QCOMPARE(unset.count(), 1);
    QCOMPARE(bound.mgr->signalResourcesAdded.slot_count(), 0U);
    QCOMPARE(bound.mgr->signalWebInfoChanged.slot_count(), 0U);

    bound.add({makeSource(1, EnResourceType::NetworkStream)});
    QCOMPARE(bound.box.itemCount(), 0);
}

void TestInputSourceBoxBinding::bindingAnExpiredManagerWarnsAndEmitsNothing()
{
    quandel::ZQRuntime runtime;
    InputSourceBox box;
    box.setZQRuntime(&runtime);
    QSignalSpy finished(&box, &InputSourceBox::signalMgrSettingFinished);
    QSignalSpy unset(&box, &InputSourceBox::signalMgrUnsettingFinished);
    std::weak_ptr<IInputSourceMgr> expired;
    {
        auto gone = std::make_shared<FakeInputSourceMgr>(&runtime);
        expired = gone;
    }

    WarningRecorder recorder;
    box.setInputSourceMgr(expired);
    QCOMPARE(finished.count(), 0);
    const auto warning = recorder.find(QStringLiteral("nullptr == inputSourceMgr"));
    QVERIFY(warning.has_value());
    QVERIFY(warning->function.contains("setInputSourceMgr"));
    QVERIFY(warning->file.endsWith("inputsourceboxbinding.cpp"));
    QVERIFY(warning->line > 0);

    box.unsetInputSourceMgr();
    QCOMPARE(unset.count(), 0);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 2);
}

void TestInputSourceBoxBinding::refusedGateConnectsNothingAndStillAnnounces()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    InputSourceBox box;
    box.setZQRuntime(&runtime);
    QSignalSpy finished(&box, &InputSourceBox::signalMgrSettingFinished);
    QSignalSpy unset(&box, &InputSourceBox::signalMgrUnsettingFinished);

    runtime.setGateOpen(false);
    WarningRecorder recorder;
    box.setInputSourceMgr(mgr);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).value<std::weak_ptr<IInputSourceMgr>>().lock(),
             std::static_pointer_cast<IInputSourceMgr>(mgr));
    QCOMPARE(finished.at(0).at(1).value<quandel::IZQRuntime*>(),
             static_cast<quandel::IZQRuntime*>(&runtime));
    QCOMPARE(mgr->signalResourcesAdded.slot_count(), 0U);
    QVERIFY(ownWarnings(recorder).empty());

    box.unsetInputSourceMgr();
    QCOMPARE(unset.count(), 1);
    QVERIFY(box.inputSourceMgr().lock() == nullptr);
    QVERIFY(ownWarnings(recorder).empty());

    runtime.setGateOpen(true);
    box.setInputSourceMgr(mgr);
    QCOMPARE(finished.count(), 2);
    QCOMPARE(mgr->signalResourcesAdded.slot_count(), 1U);
    box.unsetInputSourceMgr();
}

void TestInputSourceBoxBinding::bindingTwiceKeepsOneConnectionPerSignal()
{
    BoundBox bound;
    bound.box.setInputSourceMgr(bound.mgr);
    QCOMPARE(bound.mgr->signalResourcesAdded.slot_count(), 1U);
    bound.addOwn({1});
    QCOMPARE(bound.box.itemCount(), 1);
}

void TestInputSourceBoxBinding::destroyedBoxIgnoresLaterNotifications()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    auto box = std::make_unique<InputSourceBox>();
    box->setResourceType(EnResourceType::NetworkStream);
    box->setZQRuntime(&runtime);
    box->setInputSourceMgr(mgr);

    // Queued but not yet handled when the box goes, then fired after it went.
    mgr->fireOnRuntime([](auto& manager) {
        manager.signalResourcesAdded({makeSource(1, EnResourceType::NetworkStream)}, {});
    });
    box.reset();
    QCOMPARE(mgr->signalResourcesAdded.slot_count(), 0U);
    mgr->fireOnRuntime([](auto& manager) {
        manager.signalResourcesAdded({makeSource(2, EnResourceType::NetworkStream)}, {});
        manager.signalOnlineTimeUpdated({{1, 5}});
    });
    BoundBox::settle();
}

void TestInputSourceBoxBinding::tilesOnlyForOwnTypeAndWithMeta()
{
    BoundBox bound(EnResourceType::NdiSource);
    bound.add({makeSource(1, EnResourceType::NetworkStream),
               makeSource(2, EnResourceType::NdiSource, {}, false),
               makeSource(3, EnResourceType::NdiSource), makeSource(4, EnResourceType::WebPage)});
    QCOMPARE(bound.box.itemCount(), 1);
    QVERIFY(bound.tile(3) != nullptr);
    QCOMPARE(bound.tile(3)->kind(), 7);
    QCOMPARE(bound.tile(1), nullptr);
    QCOMPARE(bound.tile(2), nullptr);
}

void TestInputSourceBoxBinding::addedTileIsFilledFromTheMeta()
{
    BoundBox bound(EnResourceType::WebPage);
    zq::mediacore::MetaValues values;
    values.name = "Scoreboard";
    values.address = "https://example.org/score";
    values.webMode = 1;
    values.thumbnail.width = 2;
    values.thumbnail.height = 1;
    values.thumbnail.rgba = {255, 0, 0, 255, 0, 0, 255, 255};
    bound.add({makeSource(8, EnResourceType::WebPage, values)});

    InputSourceItem* const tile = bound.tile(8);
    QVERIFY(tile != nullptr);
    QCOMPARE(tile->id(), uint64_t(8));
    QCOMPARE(tile->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"))->text(),
             QStringLiteral("Scoreboard"));
    QCOMPARE(tile->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"))->text(),
             QStringLiteral("https://example.org/score"));
    // Stretched over the thumbnail area: red on the left, blue on the right.
    const QImage thumbnail = tile->thumbnail().toImage();
    QCOMPARE(thumbnail.pixelColor(0, 0), QColor(255, 0, 0));
    QCOMPARE(thumbnail.pixelColor(thumbnail.width() - 1, 0), QColor(0, 0, 255));
    QVERIFY(!isOnline(*tile));
}

void TestInputSourceBoxBinding::captureTileGetsItsFormats()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    zq::mediacore::MetaValues values;
    values.captResolutions = {{1920, 1080, 59.94F, "NV12"}, {1280, 720, 30.0F, "YUY2"}};
    values.currentCaptResolution = {1280, 720, 30.0F, "YUY2"};
    bound.add({makeSource(4, EnResourceType::LocalCaptureDevice, values)});

    auto* const chooser =
        bound.tile(4)->findChild<vexa::widgets::ComboBox*>(QStringLiteral("resolutionBox"));
    QVERIFY(chooser != nullptr);
    QCOMPARE(chooser->count(), 2);
    QCOMPARE(chooser->currentIndex(), 1);
}

void TestInputSourceBoxBinding::lastTileRemovedCollapsesAndLaterAddExpands()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    auto* const header = bound.box.findChild<QPushButton*>(QStringLiteral("boxHeaderButton"));
    auto* const area = bound.box.findChild<QWidget*>(QStringLiteral("boxItemArea"));
    QVERIFY(header->isChecked());

    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({1}); });
    BoundBox::settle();
    QVERIFY(header->isChecked());
    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({2}); });
    BoundBox::settle();
    QCOMPARE(bound.box.itemCount(), 0);
    QVERIFY(!header->isChecked());
    QVERIFY(area->isHidden());

    bound.addOwn({3});
    QVERIFY(header->isChecked());
    QVERIFY(area->isVisible());
    QVERIFY(bound.tile(3)->isVisible());
}

void TestInputSourceBoxBinding::clearedManagerRemovesEveryTile()
{
    BoundBox bound;
    bound.addOwn({1, 2, 3, 2});
    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesCleared(); });
    BoundBox::settle();
    QCOMPARE(bound.box.itemCount(), 0);
    QCOMPARE(bound.box.findItem(2), nullptr);
}

void TestInputSourceBoxBinding::sourceRemovedWhileItsMenuIsOpen()
{
    BoundBox bound;
    bound.addOwn({1});
    QPointer<InputSourceItem> tile = bound.tile(1);
    bool menuOpened = false;
    const qint64 openMs = openMenuOf(tile, [&] {
        menuOpened = true;
        // The host removes the source while the operator looks at its menu.
        bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({1}); });
    });

    QVERIFY(menuOpened);
    QVERIFY(openMs < 2000);
    QCOMPARE(bound.box.findItem(1), nullptr);
    QCOMPARE(bound.box.itemCount(), 0);
    // Withdrawn at once, destroyed once its menu handler has returned, not under it.
    QVERIFY(!tile.isNull());
    QVERIFY(!tile->isVisible());
    QTRY_VERIFY(tile.isNull());

    // Without a menu open, a removed tile goes at once.
    bound.addOwn({2});
    QPointer<InputSourceItem> plain = bound.tile(2);
    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({2}); });
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    QVERIFY(plain.isNull());
}

void TestInputSourceBoxBinding::notificationsKeepTheirOrder()
{
    BoundBox bound;
    WarningRecorder recorder;
    bound.mgr->fireOnRuntime([](auto& mgr) {
        mgr.signalResourcesAdded({makeSource(1, EnResourceType::NetworkStream)}, {});
        mgr.signalOnlineStatusChanged({{1, true}}, 13);
        mgr.signalResourcesDeleted({1});
        mgr.signalResourcesAdded({makeSource(2, EnResourceType::NetworkStream)}, {});
    });
    BoundBox::settle();
    QCOMPARE(bound.box.itemCount(), 1);
    QVERIFY(bound.tile(2) != nullptr);
    QVERIFY(ownWarnings(recorder).empty());
}

void TestInputSourceBoxBinding::onlineStatusOfOtherTypesIsIgnored()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalOnlineStatusChanged({{1, true}}, 7); });
    BoundBox::settle();
    QVERIFY(!isOnline(*bound.tile(1)));

    bound.mgr->fireOnRuntime([](auto& mgr) {
        mgr.signalOnlineStatusChanged({{1, true}, {2, true}}, 13);
    });
    BoundBox::settle();
    QVERIFY(isOnline(*bound.tile(1)));
    QVERIFY(isOnline(*bound.tile(2)));

    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalOnlineStatusChanged({{2, false}}, 13); });
    BoundBox::settle();
    QVERIFY(isOnline(*bound.tile(1)));
    QVERIFY(!isOnline(*bound.tile(2)));
}

void TestInputSourceBoxBinding::unknownIdsWarnOrAreSkipped()
{
    BoundBox bound;
    bound.addOwn({1});
    WarningRecorder recorder;
    STInputSource unknown;
    unknown.id = 99;
    unknown.captResolutions = {{1920, 1080, 50.0F, "NV12"}};
    vexa::STResourceRenamedModel renamed;
    renamed.id = 99;
    renamed.name = "Nobody";
    bound.mgr->fireOnRuntime([&](auto& mgr) {
        mgr.signalResourceExtracted(makeSource(99, EnResourceType::NetworkStream), {});
        mgr.signalOnlineStatusChanged({{99, true}}, 13);
        mgr.signalResolutionUpdated(unknown);
        bool flag = false;
        mgr.signalResourceRenamed(renamed, flag);
        mgr.signalCaptResolutionUpdated(unknown);
        mgr.signalPreviewedChanged({unknown});
        mgr.signalOnlineTimeUpdated({{99, 5}});
        mgr.signalResourcesDeleted({99});
    });
    BoundBox::settle();

    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceItem")), 3);
    QCOMPARE(recorder.count(QStringLiteral("updateItemOnlineStatus nullptr == inputSourceItem")),
             1);
    QCOMPARE(static_cast<int>(ownWarnings(recorder).size()), 4);
    QCOMPARE(bound.box.itemCount(), 1);
    QVERIFY(!isOnline(*bound.tile(1)));
}

void TestInputSourceBoxBinding::otherKindsSourcesAreNotThisBoxsBusiness()
{
    BoundBox bound;
    bound.addOwn({1});
    auto web = makeSource(50, EnResourceType::WebPage);
    bound.known.push_back(web);
    bound.mgr->setResources(bound.known);
    bound.mgr->clearCalls();
    WarningRecorder recorder;
    bound.mgr->fireOnRuntime([&web](auto& mgr) {
        mgr.signalResourceExtracted(web, {50, true, {}});
    });
    BoundBox::settle();
    // An extraction carries its resource, whose type the handler reads without the manager.
    QVERIFY(ownWarnings(recorder).empty());

    // A rename and a resolution carry only an id: without a tile for it the box warns, and its
    // handlers never ask the manager which kind the source is.
    bound.mgr->fireOnRuntime([](auto& mgr) {
        vexa::STResourceRenamedModel renamed;
        renamed.id = 50;
        renamed.name = "Web 50";
        bool flag = false;
        mgr.signalResourceRenamed(renamed, flag);
        STInputSource looked;
        looked.id = 50;
        mgr.signalResolutionUpdated(looked);
    });
    BoundBox::settle();
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceItem")), 2);
    QCOMPARE(bound.mgr->callCount("getResourceById"), 0);

    // A record declaring the box's own kind still reaches it.
    bound.mgr->fireOnRuntime([](auto& mgr) {
        STInputSource own;
        own.id = 1;
        own.sourceType = 13;
        own.resolutionWidth = 640;
        own.resolutionHeight = 360;
        own.frameRate = 25;
        mgr.signalOnlineStatusChanged({{1, true}}, 13);
        mgr.signalResolutionUpdated(own);
    });
    BoundBox::settle();
    QCOMPARE(bound.tile(1)->findChild<QLabel*>(QStringLiteral("infoLabel"))->text(),
             QStringLiteral("640*360@25fps"));
}

void TestInputSourceBoxBinding::extractedMetaUpdatesTheTile()
{
    BoundBox bound(EnResourceType::NdiSource);
    auto source = makeSource(5, EnResourceType::NdiSource);
    bound.add({source});
    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalOnlineStatusChanged({{5, true}}, 7); });
    InputSourceItem* const tile = bound.tile(5);
    QVERIFY(!tile->isDragEnabled());

    zq::mediacore::MetaValues values;
    values.resourceType = EnResourceType::NdiSource;
    values.name = "Source 5";
    values.resolutionText = "1280*720";
    values.frameRate = 29.97;
    values.thumbnail.width = 1;
    values.thumbnail.height = 1;
    values.thumbnail.rgba = {0, 255, 0, 255};
    source->setMeta(std::make_shared<zq::mediacore::ValueMeta>(values));
    bound.mgr->fireOnRuntime([&source](auto& mgr) {
        mgr.signalResourceExtracted(source, {5, true, {}});
    });
    BoundBox::settle();

    QCOMPARE(tile->findChild<QLabel*>(QStringLiteral("infoLabel"))->text(),
             QStringLiteral("1280*720@29.97fps"));
    QCOMPARE(tile->thumbnail().toImage().pixelColor(0, 0), QColor(0, 255, 0));

    // Only now may a drag start.
    QVERIFY(tile->isDragEnabled());
}

void TestInputSourceBoxBinding::resolutionUpdateShowsSizeAndRate()
{
    BoundBox bound;
    bound.addOwn({1});
    bound.mgr->fireOnRuntime([](auto& mgr) {
        mgr.signalOnlineStatusChanged({{1, true}}, 13);
        STInputSource info;
        info.id = 1;
        info.resolutionWidth = 1280;
        info.resolutionHeight = 720;
        info.frameRate = 50;
        mgr.signalResolutionUpdated(info);
    });
    BoundBox::settle();
    QCOMPARE(bound.tile(1)->findChild<QLabel*>(QStringLiteral("infoLabel"))->text(),
             QStringLiteral("1280*720@50fps"));
}

void TestInputSourceBoxBinding::captResolutionUpdateSelectsTheFormat()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    zq::mediacore::MetaValues values;
    values.captResolutions = {{1920, 1080, 59.94F, "NV12"}, {1280, 720, 30.0F, "YUY2"}};
    values.currentCaptResolution = values.captResolutions.front();
    bound.add({makeSource(4, EnResourceType::LocalCaptureDevice, values)});
    auto* const chooser =
        bound.tile(4)->findChild<vexa::widgets::ComboBox*>(QStringLiteral("resolutionBox"));
    QCOMPARE(chooser->currentIndex(), 0);

    bound.mgr->fireOnRuntime([](auto& mgr) {
        STInputSource info;
        info.id = 4;
        info.captResolutions = {{1280, 720, 30.0F, "YUY2"}};
        mgr.signalCaptResolutionUpdated(info);
    });
    BoundBox::settle();
    QCOMPARE(chooser->currentIndex(), 1);
}

void TestInputSourceBoxBinding::previewedChangeSetsTheToggles()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QVERIFY(bound.tile(1)->isPreviewChecked());
    bound.mgr->fireOnRuntime([](auto& mgr) {
        STInputSource open;
        open.id = 1;
        open.preview = true;
        STInputSource closed;
        closed.id = 2;
        closed.preview = false;
        STInputSource missing;
        missing.id = 77;
        missing.preview = true;
        mgr.signalPreviewedChanged({open, closed, missing});
    });
    BoundBox::settle();
    QVERIFY(!bound.tile(1)->isPreviewChecked());
    QVERIFY(bound.tile(2)->isPreviewChecked());
    QCOMPARE(bound.mgr->callCount("previewInputSources"), 0);
}

void TestInputSourceBoxBinding::onlineTimeReachesTheTiles()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    bound.mgr->fireOnRuntime([](auto& mgr) {
        mgr.signalOnlineStatusChanged({{1, true}, {2, true}}, 13);
        mgr.signalOnlineTimeUpdated({{1, 3599}, {2, 100}, {42, 1}});
    });
    BoundBox::settle();
    // The clock shows the next second on its next tick.
    QTRY_COMPARE(bound.tile(1)->findChild<QLabel*>(QStringLiteral("duration"))->text(),
                 QStringLiteral("001:00:00"));
    QTRY_COMPARE(bound.tile(2)->findChild<QLabel*>(QStringLiteral("duration"))->text(),
                 QStringLiteral("000:01:41"));
}

void TestInputSourceBoxBinding::webDescriptionChangeUpdatesTheAddress()
{
    BoundBox bound(EnResourceType::WebPage);
    bound.addOwn({6});
    WarningRecorder recorder;
    STWebOperation changed;
    changed.kind = 1;
    changed.code = STWebOperation::WebDescriptionChanged;
    changed.id = 6;
    changed.webDescription.address = "https://example.org/next";
    STWebOperation otherKind = changed;
    otherKind.kind = 2;
    otherKind.webDescription.address = "https://example.org/ignored";
    STWebOperation readings = changed;
    readings.code = STWebOperation::LoadReadings;
    readings.webDescription.address = "https://example.org/ignored";

    bound.mgr->fireOnRuntime([&](auto& mgr) {
        mgr.signalWebInfoChanged(otherKind);
        mgr.signalWebInfoChanged(readings);
    });
    QCOMPARE(bound.mgr->callCount("getResourceById"), 0);

    bound.mgr->fireOnRuntime([&](auto& mgr) { mgr.signalWebInfoChanged(changed); });
    BoundBox::settle();
    QCOMPARE(bound.tile(6)->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"))->text(),
             QStringLiteral("https://example.org/next"));
    const auto lookups = bound.mgr->callsOf("getResourceById");
    QCOMPARE(static_cast<int>(lookups.size()), 1);
    QVERIFY(lookups.front().onRuntimeThread);

    STWebOperation unknown = changed;
    unknown.id = 404;
    bound.mgr->fireOnRuntime([&](auto& mgr) { mgr.signalWebInfoChanged(unknown); });
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSource")), 1);
}

void TestInputSourceBoxBinding::resolutionErrorGoesToTheMessageCentre()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    const quandel::CaptResolutionsInfo refused{1920, 1080, 59.94F, "NV12"};
    bound.mgr->fireOnRuntime([&refused](auto& mgr) { mgr.signalResolutionError(refused); });
    BoundBox::settle();

    quandel::msgcenter::MsgCenterMgr centre;
    bound.box.setMsgCenterMgr(&centre);
    bound.mgr->fireOnRuntime([&refused](auto& mgr) { mgr.signalResolutionError(refused); });
    BoundBox::settle();
    const auto messages = centre.messages();
    QCOMPARE(static_cast<int>(messages.size()), 1);
    QCOMPARE(messages.front().message.text, trKey("captResolutionError_1") +
                                                QStringLiteral("1920*1080@59.94,NV12") +
                                                trKey("captResolutionError_2"));
    QCOMPARE(messages.front().message.level, 2);
    QCOMPARE(messages.front().message.displayMs, -1);
}

void TestInputSourceBoxBinding::deleteNotInUseAsksNothing()
{
    BoundBox bound;
    bound.addOwn({1});
    QList<uint64_t> asked;
    connect(&bound.box, &InputSourceBox::signalCheckInputSourceBeUsed, this, [&asked](uint64_t id) {
        asked.append(id);
        return false;
    });
    ModalAnswerer answerer;
    expectNoDialog(answerer);

    Q_EMIT bound.tile(1)->signalDelete(1);
    QCOMPARE(asked, QList<uint64_t>{1});
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 1);
    QCOMPARE(deletedIds(*bound.mgr), Ids{1});
    QVERIFY(bound.mgr->callsOf("deleteInputSources").front().onRuntimeThread);
    QTest::qWait(noDialogMs + 100);
    QVERIFY(!answerer.answered());
}

void TestInputSourceBoxBinding::deleteInUseAsksAndCancelSendsNothing()
{
    BoundBox bound;
    bound.addOwn({1});
    connect(&bound.box, &InputSourceBox::signalCheckInputSourceBeUsed, this,
            [](uint64_t) { return true; });

    for (const QString& answer : {QStringLiteral("secondBtn"), QString()}) {
        ModalAnswerer answerer;
        if (answer.isEmpty()) {
            answerer.closeWhenShown();
        } else {
            answerer.clickWhenShown(answer);
        }
        Q_EMIT bound.tile(1)->signalDelete(1);
        QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
        QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));
        QVERIFY(answerer.labelTexts().contains(trKey("DeleteText")));
    }
    BoundBox::settle();
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 0);
}

void TestInputSourceBoxBinding::deleteInUseConfirmedSendsAndTileStaysUntilConfirmed()
{
    BoundBox bound;
    bound.addOwn({1});
    connect(&bound.box, &InputSourceBox::signalCheckInputSourceBeUsed, this,
            [](uint64_t) { return true; });
    bound.tile(1)->show();
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));

    // Through the tile's own menu, as the operator does it.
    menuAction(*bound.tile(1), trKey("Delete"))->trigger();
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 1);
    QCOMPARE(deletedIds(*bound.mgr), Ids{1});
    BoundBox::settle();
    QVERIFY(bound.tile(1) != nullptr);

    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({1}); });
    BoundBox::settle();
    QCOMPARE(bound.tile(1), nullptr);
}

void TestInputSourceBoxBinding::batchDeleteAsksOnceAtTheFirstSourceInUse()
{
    BoundBox bound;
    bound.addOwn({1, 2, 3});
    for (const uint64_t id : {1, 2, 3}) {
        Q_EMIT bound.tile(id)->signalBatchSelect(id, true);
    }
    QList<uint64_t> asked;
    connect(&bound.box, &InputSourceBox::signalCheckInputSourceBeUsed, this, [&asked](uint64_t id) {
        asked.append(id);
        return id == 2;
    });

    ModalAnswerer cancel;
    cancel.clickWhenShown(QStringLiteral("secondBtn"));
    Q_EMIT bound.tile(1)->signalBatchDelete();
    QVERIFY2(cancel.answered(), qPrintable(cancel.errorString()));
    QVERIFY(cancel.labelTexts().contains(trKey("DeleteBatchText")));
    QCOMPARE(asked, (QList<uint64_t>{1, 2}));
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 0);

    ModalAnswerer confirm;
    confirm.clickWhenShown(QStringLiteral("firstBtn"));
    Q_EMIT bound.tile(3)->signalBatchDelete();
    QVERIFY2(confirm.answered(), qPrintable(confirm.errorString()));
    QCOMPARE(deletedIds(*bound.mgr), (Ids{1, 2, 3}));
}

void TestInputSourceBoxBinding::batchDeleteOfNothingSendsAnEmptyList()
{
    BoundBox bound;
    bound.addOwn({1});
    int asked = 0;
    connect(&bound.box, &InputSourceBox::signalCheckInputSourceBeUsed, this, [&asked](uint64_t) {
        ++asked;
        return true;
    });
    ModalAnswerer answerer;
    expectNoDialog(answerer);

    Q_EMIT bound.tile(1)->signalBatchDelete();
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 1);
    QVERIFY(deletedIds(*bound.mgr).empty());
    QCOMPARE(asked, 0);
    QTest::qWait(noDialogMs + 100);
    QVERIFY(!answerer.answered());
}

void TestInputSourceBoxBinding::batchDeleteInCaptureBoxDoesNothing()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    bound.addOwn({1});
    Q_EMIT bound.tile(1)->signalBatchSelect(1, true);
    Q_EMIT bound.tile(1)->signalBatchDelete();
    BoundBox::settle();
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 0);
}

void TestInputSourceBoxBinding::clearItemKeepsSourcesInUseUnlessForced()
{
    BoundBox bound;
    bound.addOwn({1, 2, 3});
    connect(&bound.box, &InputSourceBox::signalCheckInputSourceBeUsed, this,
            [](uint64_t id) { return id == 2; });
    ModalAnswerer answerer;
    expectNoDialog(answerer);

    bound.box.clearItem(false);
    QCOMPARE(deletedIds(*bound.mgr), (Ids{1, 3}));
    bound.box.clearItem(true);
    QCOMPARE(deletedIds(*bound.mgr), (Ids{1, 2, 3}));
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 2);
    // Nothing goes before the manager says so.
    QCOMPARE(bound.box.itemCount(), 3);
    QVERIFY(!answerer.answered());
}

void TestInputSourceBoxBinding::clearItemNeverSendsCaptureDevices()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    bound.addOwn({1, 2});
    bound.box.clearItem(true);
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 1);
    QVERIFY(deletedIds(*bound.mgr).empty());
}

void TestInputSourceBoxBinding::renameSendsTheNewName()
{
    BoundBox bound;
    bound.addOwn({1});
    Q_EMIT bound.tile(1)->signalNameChanged(1, QStringLiteral("Studio 北"));
    QCOMPARE(bound.mgr->callCount("renameInputSource"), 1);
    const auto [model] =
        bound.mgr->lastArguments<vexa::STResourceRenamedModel>("renameInputSource");
    QCOMPARE(model.id, uint64_t(1));
    QCOMPARE(QString::fromStdString(model.name), QStringLiteral("Studio 北"));
    QVERIFY(model.ipAddress.empty());
    QVERIFY(model.senderName.empty());
    QCOMPARE(model.flag, uint64_t(0));
    QVERIFY(bound.mgr->callsOf("renameInputSource").front().onRuntimeThread);
}

void TestInputSourceBoxBinding::renameRefusedTellsAndShowsTheKeptName()
{
    BoundBox bound;
    bound.addOwn({1});
    auto* const name =
        bound.tile(1)->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"));

    vexa::STResourceRenamedModel accepted;
    accepted.id = 1;
    accepted.name = "Studio";
    {
        ModalAnswerer answerer;
        expectNoDialog(answerer);
        bound.mgr->fireOnRuntime([&accepted](auto& mgr) {
            bool flag = false;
            mgr.signalResourceRenamed(accepted, flag);
        });
        BoundBox::settle();
        QCOMPARE(name->text(), QStringLiteral("Studio"));
        QTest::qWait(noDialogMs + 100);
        QVERIFY(!answerer.answered());
    }

    vexa::STResourceRenamedModel refused = accepted;
    refused.name = "Studio";
    refused.flag = 1;
    name->setText(QStringLiteral("Taken"));
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    bound.mgr->fireOnRuntime([&refused](auto& mgr) {
        bool flag = false;
        mgr.signalResourceRenamed(refused, flag);
    });
    QTRY_VERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(answerer.labelTexts().contains(trKey("NameAlreadyExists")));
    QTRY_COMPARE(name->text(), QStringLiteral("Studio"));
}

void TestInputSourceBoxBinding::tilePreviewSendsOneRecord()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QTest::mouseClick(tileToggle(*bound.tile(2)), Qt::LeftButton);
    QVERIFY(bound.mgr->waitForCalls("previewInputSources", 1));
    const auto [sources, enable] =
        bound.mgr->lastArguments<std::vector<STInputSource>, bool>("previewInputSources");
    QCOMPARE(static_cast<int>(sources.size()), 1);
    QCOMPARE(sources.front().id, uint64_t(2));
    QVERIFY(sources.front().preview);
    QVERIFY(enable);
    QVERIFY(bound.mgr->callsOf("previewInputSources").front().onRuntimeThread);
}

void TestInputSourceBoxBinding::boxPreviewSwitchesTilesAndGuardsFor500ms()
{
    BoundBox bound;
    bound.addOwn({1, 2, 3});
    // Tile 2 was just clicked: its toggle is in its own lock-out and is left alone.
    QTest::mouseClick(tileToggle(*bound.tile(2)), Qt::LeftButton);
    QVERIFY(!bound.tile(2)->isPreviewToggleEnabled());
    bound.mgr->clearCalls();

    vexa::widgets::PushButton* const button = previewSwitch(bound.box);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!button->isChecked());
    QVERIFY(!button->isEnabled());
    QCOMPARE(button->toolTip(), trKey("DisablePreview"));
    QVERIFY(!bound.tile(1)->isPreviewChecked());
    QVERIFY(!bound.tile(3)->isPreviewChecked());

    QCOMPARE(bound.mgr->callCount("previewInputSources"), 1);
    const auto [sources, enable] =
        bound.mgr->lastArguments<std::vector<STInputSource>, bool>("previewInputSources");
    QCOMPARE(static_cast<int>(sources.size()), 2);
    QCOMPARE(sources[0].id, uint64_t(1));
    QCOMPARE(sources[1].id, uint64_t(3));
    QVERIFY(sources[0].preview && sources[1].preview);
    QVERIFY(enable);

    // A second click within the guard cannot land.
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(bound.mgr->callCount("previewInputSources"), 1);
    QVERIFY(!button->isChecked());

    QTRY_VERIFY_WITH_TIMEOUT(button->isEnabled(), 2000);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(bound.mgr->callCount("previewInputSources"), 2);
    QCOMPARE(button->toolTip(), trKey("EnablePreview"));
    const auto [closed, closedEnable] =
        bound.mgr->lastArguments<std::vector<STInputSource>, bool>("previewInputSources");
    QVERIFY(!closedEnable);
    QVERIFY(std::none_of(closed.begin(), closed.end(),
                         [](const STInputSource& source) { return source.preview; }));
}

void TestInputSourceBoxBinding::captureFormatChoiceIsSent()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    bound.addOwn({4});
    const quandel::CaptResolutionsInfo chosen{1280, 720, 30.0F, "YUY2"};
    Q_EMIT bound.tile(4)->signalCaptResolutionChanged(4, chosen);
    QCOMPARE(bound.mgr->callCount("changeCaptResolution"), 1);
    const auto [source] = bound.mgr->lastArguments<STInputSource>("changeCaptResolution");
    QCOMPARE(source.id, uint64_t(4));
    QCOMPARE(static_cast<int>(source.captResolutions.size()), 1);
    QVERIFY(source.captResolutions.front() == chosen);
}

void TestInputSourceBoxBinding::metaQueryRunsOnTheRuntime()
{
    BoundBox bound(EnResourceType::WebPage);
    zq::mediacore::MetaValues native;
    native.webMode = 0;
    zq::mediacore::MetaValues captured;
    captured.webMode = 1;
    auto first = makeSource(1, EnResourceType::WebPage, native);
    auto second = makeSource(2, EnResourceType::WebPage, captured);
    bound.mgr->setResources({first, second});
    bound.add({first, second});

    const MetaQueryResult answer = bound.tile(1)->signalGetInputSourceMeta(1);
    QCOMPARE(std::get<0>(answer), first->getMeta());
    QVERIFY(std::get<1>(answer));
    QVERIFY(bound.mgr->callsOf("getResourceById").back().onRuntimeThread);
    QVERIFY(!std::get<1>(bound.tile(2)->signalGetInputSourceMeta(2)));

    WarningRecorder recorder;
    const MetaQueryResult missing = bound.tile(1)->signalGetInputSourceMeta(404);
    QCOMPARE(std::get<0>(missing), nullptr);
    QVERIFY(!std::get<1>(missing));
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSource")), 1);
}

void TestInputSourceBoxBinding::commandsWithAnExpiredManagerWarnAndSendNothing()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    BoundBox bound;
    bound.addOwn({1});
    // Bind the box to a manager that then goes away without unbinding.
    bound.box.setInputSourceMgr(mgr);
    mgr.reset();
    // The runtime drops the binding request's reference a moment after the box got its answer.
    const std::weak_ptr<IInputSourceMgr> boxMgr = bound.box.inputSourceMgr();
    QVERIFY(
        vexa::testing::waitUntil([&boxMgr] { return boxMgr.expired(); }, std::chrono::seconds(5)));
    InputSourceItem* const tile = bound.tile(1);
    WarningRecorder recorder;

    Q_EMIT tile->signalDelete(1);
    Q_EMIT tile->signalBatchDelete();
    Q_EMIT tile->signalNameChanged(1, QStringLiteral("New"));
    Q_EMIT tile->signalPreviewChanged(1, true);
    Q_EMIT tile->signalCaptResolutionChanged(1, {});
    bound.box.clearItem(true);
    QTest::mouseClick(previewSwitch(bound.box), Qt::LeftButton);
    const MetaQueryResult meta = tile->signalGetInputSourceMeta(1);
    bound.box.unsetInputSourceMgr();

    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 9);
    QCOMPARE(static_cast<int>(ownWarnings(recorder).size()), 9);
    QCOMPARE(std::get<0>(meta), nullptr);
    QVERIFY(bound.mgr->calls().empty());
    // The whole-box switch already turned the tiles before it found the manager gone.
    QVERIFY(!tile->isPreviewChecked());
}

void TestInputSourceBoxBinding::throwingManagerIsLoggedNotFatal()
{
    BoundBox bound;
    bound.addOwn({1});
    bound.mgr->setCallHook(
        [](const vexa::testing::RecordedCall&) { throw std::runtime_error("device busy"); });
    WarningRecorder recorder;
    Q_EMIT bound.tile(1)->signalDelete(1);
    bound.mgr->setCallHook({});
    QCOMPARE(recorder.count(QStringLiteral("slotItemDelete: device busy")), 1);
    QVERIFY(bound.tile(1) != nullptr);
}

void TestInputSourceBoxBinding::refusedCommandSendsNothingAndLogsNothing()
{
    BoundBox bound;
    bound.addOwn({1});
    bound.runtime.setGateOpen(false);
    WarningRecorder recorder;
    Q_EMIT bound.tile(1)->signalNameChanged(1, QStringLiteral("Closed"));
    const MetaQueryResult meta = bound.tile(1)->signalGetInputSourceMeta(1);
    bound.runtime.setGateOpen(true);
    // The runtime's gate saw the call site; the box adds nothing to the log.
    QVERIFY(ownWarnings(recorder).empty());
    QCOMPARE(std::get<0>(meta), nullptr);
    QCOMPARE(std::get<1>(meta), false);
    QCOMPARE(bound.mgr->callCount("renameInputSource"), 0);
}

void TestInputSourceBoxBinding::framesReachTheTileOfTheirId()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    bound.mgr->fireOnRuntime([](auto& mgr) {
        mgr.signalOnlineStatusChanged({{1, true}, {2, true}}, 13);
    });
    BoundBox::settle();
    const auto frame = vexa::testing::FrameFactory::pattern(64, 36, 0, 0, 48.0);
    std::thread([&bound, &frame] {
        bound.box.updateFrame(1, frame.get());
        bound.box.updateFrame(77, frame.get());
    }).join();
    // A stream tile takes its rate text from its frames.
    QTRY_VERIFY(bound.tile(1)
                    ->findChild<QLabel*>(QStringLiteral("infoLabel"))
                    ->text()
                    .endsWith(QStringLiteral("@48fps")));
    QVERIFY(!bound.tile(2)
                 ->findChild<QLabel*>(QStringLiteral("infoLabel"))
                 ->text()
                 .endsWith(QStringLiteral("@48fps")));
}

void TestInputSourceBoxBinding::unbindingForgetsTheManager()
{
    BoundBox bound;
    bound.addOwn({1});
    bound.box.unsetInputSourceMgr();
    QVERIFY(bound.box.inputSourceMgr().lock() == nullptr);

    WarningRecorder recorder;
    bound.box.clearItem(true);
    Q_EMIT bound.tile(1)->signalDelete(1);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 2);
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 0);
    QCOMPARE(bound.mgr->signalResourcesAdded.slot_count(), 0U);
}

void TestInputSourceBoxBinding::rebindingDropsTheOldManagerFirst()
{
    BoundBox bound;
    std::weak_ptr<IInputSourceMgr> expired;
    {
        auto gone = std::make_shared<FakeInputSourceMgr>(&bound.runtime);
        expired = gone;
    }
    bound.box.setInputSourceMgr(expired);
    QCOMPARE(bound.mgr->signalResourcesAdded.slot_count(), 0U);
    bound.mgr->fireOnRuntime([](auto& mgr) {
        mgr.signalResourcesAdded({makeSource(1, EnResourceType::NetworkStream)}, {});
    });
    BoundBox::settle();
    QCOMPARE(bound.box.itemCount(), 0);

    // A binding the runtime refuses leaves neither manager connected.
    bound.box.setInputSourceMgr(bound.mgr);
    QCOMPARE(bound.mgr->signalResourcesAdded.slot_count(), 1U);
    auto other = std::make_shared<FakeInputSourceMgr>(&bound.runtime);
    bound.runtime.setGateOpen(false);
    bound.box.setInputSourceMgr(other);
    bound.runtime.setGateOpen(true);
    QCOMPARE(bound.mgr->signalResourcesAdded.slot_count(), 0U);
    QCOMPARE(other->signalResourcesAdded.slot_count(), 0U);
    QCOMPARE(bound.box.inputSourceMgr().lock(), std::static_pointer_cast<IInputSourceMgr>(other));
    bound.box.unsetInputSourceMgr();
}

void TestInputSourceBoxBinding::tilesExistOnceTheirNotificationRan()
{
    BoundBox bound;
    auto first = makeSource(1, EnResourceType::NetworkStream);
    auto second = makeSource(2, EnResourceType::NetworkStream);
    int countSeen = -1;
    bool foundSecond = false;
    QObject context;
    bound.mgr->fireOnRuntime([&](auto& mgr) {
        mgr.signalResourcesAdded({first, second}, {});
        // Queued behind the box's own calls, as a host's next step would be.
        QMetaObject::invokeMethod(
            &context,
            [&] {
                countSeen = bound.box.itemCount();
                foundSecond = bound.box.findItem(2) != nullptr;
            },
            Qt::QueuedConnection);
    });
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    QCOMPARE(countSeen, 2);
    QVERIFY(foundSecond);
    // Shown and placed once the notification's tiles are all made.
    QTRY_VERIFY(bound.tile(2)->isVisibleTo(&bound.box));
}

void TestInputSourceBoxBinding::boxDestroyedWhileItsNameNoticeIsOpen()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QPointer<InputSourceBox> box = boxWithOneSource(runtime, mgr);

    ModalAnswerer answerer;
    answerer.whenShown([&box](QWidget*) { delete box; });
    mgr->fireOnRuntime([](auto& manager) {
        vexa::STResourceRenamedModel refused;
        refused.id = 1;
        refused.name = "Kept";
        refused.flag = 1;
        bool flag = false;
        manager.signalResourceRenamed(refused, flag);
    });
    BoundBox::settle();
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(box.isNull());
    // The notice closed with its box; nothing waits for an answer.
    QTRY_COMPARE(QApplication::activeModalWidget(), nullptr);
}

void TestInputSourceBoxBinding::boxDestroyedWhileItsDeleteQuestionIsOpen()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QPointer<InputSourceBox> box = new InputSourceBox;
    box->setResourceType(EnResourceType::NetworkStream);
    box->setZQRuntime(&runtime);
    box->setInputSourceMgr(mgr);
    box->resize(400, 300);
    box->show();
    connect(box, &InputSourceBox::signalCheckInputSourceBeUsed, this,
            [](uint64_t) { return true; });
    mgr->fireOnRuntime([](auto& manager) {
        manager.signalResourcesAdded({makeSource(1, EnResourceType::NetworkStream)}, {});
    });
    BoundBox::settle();
    QTest::mouseClick(box->findItem(1), Qt::LeftButton, Qt::NoModifier, QPoint(30, 30));
    QCOMPARE(box->selectedIds(), std::vector<uint64_t>{1});

    ModalAnswerer answerer;
    answerer.whenShown([&box](QWidget*) { delete box; });
    QTest::keyClick(box, Qt::Key_Delete);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(box.isNull());
    QTRY_COMPARE(QApplication::activeModalWidget(), nullptr);
    QCOMPARE(mgr->callCount("deleteInputSources"), 0);
}

void TestInputSourceBoxBinding::boxDestroyedWhileATileMenuIsOpen()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QPointer<InputSourceBox> box = boxWithOneSource(runtime, mgr);
    QPointer<InputSourceItem> tile = box->findItem(1);
    QObject context;
    const qint64 openMs =
        openMenuOf(tile, [&] { QTimer::singleShot(0, &context, [&box] { delete box; }); });
    QVERIFY(box.isNull());
    QVERIFY(openMs < 2000);
    QTRY_VERIFY(tile.isNull());
}

void TestInputSourceBoxBinding::refusedRenamesAreToldOneAtATimeInOrder()
{
    BoundBox bound;
    bound.addOwn({1, 2, 3});
    // Each notice is answered when it shows; what was on screen at that moment is kept.
    std::vector<int> openNotices;
    std::vector<QString> nameOfFirstWhenShown;
    QTimer answering;
    answering.setInterval(20);
    connect(&answering, &QTimer::timeout, this, [&] {
        auto* const modal = QApplication::activeModalWidget();
        if (modal == nullptr) {
            return;
        }
        int visible = 0;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->inherits("vexa::widgets::TipDialog")) {
                ++visible;
            }
        }
        openNotices.push_back(visible);
        nameOfFirstWhenShown.push_back(bound.tile(1)->name());
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("firstBtn")),
                          Qt::LeftButton);
    });
    answering.start();
    bound.mgr->fireOnRuntime([](auto& mgr) {
        for (const uint64_t id : {1, 2, 3}) {
            vexa::STResourceRenamedModel refused;
            refused.id = id;
            refused.name = "Kept " + std::to_string(id);
            refused.flag = 1;
            bool flag = false;
            mgr.signalResourceRenamed(refused, flag);
        }
    });
    QTRY_COMPARE(openNotices.size(), std::size_t(3));
    answering.stop();
    QCOMPARE(openNotices, (std::vector<int>{1, 1, 1}));
    // The first rename applied once its own notice closed, before the second notice.
    QCOMPARE(nameOfFirstWhenShown.at(0), QStringLiteral("Source 1"));
    QCOMPARE(nameOfFirstWhenShown.at(1), QStringLiteral("Kept 1"));
    QTRY_COMPARE(bound.tile(3)->name(), QStringLiteral("Kept 3"));
    QCOMPARE(bound.tile(2)->name(), QStringLiteral("Kept 2"));
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
}

QTEST_MAIN(TestInputSourceBoxBinding)
#include "tst_inputsourceboxbinding.moc"
