// SPDX-License-Identifier: MIT
#include "diplaywind.h"
#include "inputsourcetooltip.h"
#include "languagefiles.h"
#include "queuedhandoff.h"
#include "trkey.h"
#include <vexainputsourcewidget/inputsourcedragpayload.h>
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/inputsourcemetatypes.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/testing/framefactory.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <zq/mediacore/valuemeta.h>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDataStream>
#include <QElapsedTimer>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMovie>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QWindow>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <thread>

using vexa::inputsource::DiplayWind;
using vexa::inputsource::InputSourceDragPayload;
using vexa::inputsource::InputSourceItem;
using vexa::inputsource::InputSourceToolTip;
using vexa::inputsource::MetaQueryResult;
using vexa::inputsource::QueuedHandoff;
using vexa::inputsource::trKey;
using vexa::testing::FrameFactory;

namespace {

constexpr int ndiKind = 7;
constexpr int captureKind = 8;
constexpr int webKind = 9;
constexpr int streamKind = 13;
constexpr uint64_t tileId = 4711;

void switchLanguage(const char* code)
{
    InputSourceTranslateManager::instance().translator().switchLanguage(QLatin1String(code));
}

template <typename T>
T* child(const InputSourceItem& tile, const char* name)
{
    return tile.findChild<T*>(QLatin1String(name));
}

QLabel* infoLabel(const InputSourceItem& tile)
{
    return child<QLabel>(tile, "infoLabel");
}

QLabel* durationLabel(const InputSourceItem& tile)
{
    return child<QLabel>(tile, "duration");
}

QLabel* stateDot(const InputSourceItem& tile)
{
    auto* const online = child<QLabel>(tile, "state_online");
    return online != nullptr ? online : child<QLabel>(tile, "state_offline");
}

vexa::widgets::PushButton* previewButton(const InputSourceItem& tile)
{
    return child<vexa::widgets::PushButton>(tile, "previewBtn");
}

vexa::widgets::ComboBox* chooser(const InputSourceItem& tile)
{
    return child<vexa::widgets::ComboBox>(tile, "resolutionBox");
}

vexa::widgets::EditBox* nameEditor(const InputSourceItem& tile)
{
    return child<vexa::widgets::EditBox>(tile, "nameEdit");
}

QWidget* border(const InputSourceItem& tile)
{
    return child<QWidget>(tile, "itemBorder");
}

QWidget* cover(const InputSourceItem& tile)
{
    return child<QWidget>(tile, "cover");
}

DiplayWind* surface(const InputSourceItem& tile)
{
    return tile.findChild<DiplayWind*>();
}

QAction* action(const InputSourceItem& tile, const char* key)
{
    for (QAction* candidate : tile.findChild<QMenu*>()->findChildren<QAction*>()) {
        if (candidate->text() == trKey(key)) {
            return candidate;
        }
    }
    return nullptr;
}

using Rows = QVector<InputSourceToolTip::Row>;

void collectRows(QLayout* layout, Rows& rows)
{
    for (int index = 0; index < layout->count(); ++index) {
        QLayout* const row = layout->itemAt(index)->layout();
        if (row == nullptr || row->count() < 2) {
            continue;
        }
        auto* const key = qobject_cast<QLabel*>(row->itemAt(0)->widget());
        auto* const value = qobject_cast<QLabel*>(row->itemAt(1)->widget());
        if (key != nullptr && value != nullptr) {
            rows.append({key->text(), value->text()});
        }
    }
}

// Hovers the tile and reads back the rows of the tool-tip it shows.
Rows hoverRows(InputSourceItem& tile)
{
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(&tile, &enter);
    auto* const toolTip = tile.findChild<InputSourceToolTip*>();
    Rows rows;
    if (toolTip != nullptr && toolTip->layout() != nullptr) {
        collectRows(toolTip->layout(), rows);
    }
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&tile, &leave);
    return rows;
}

QStringList flatten(const Rows& rows)
{
    QStringList texts;
    for (const InputSourceToolTip::Row& row : rows) {
        texts << row.first << row.second;
    }
    return texts;
}

struct MenuProbe
{
    int shown = 0;
    QStringList visibleActions;
};

// Asks the tile for its context menu; a menu that opens is read and closed from inside its own
// event loop, so the test never blocks and sees exactly what the operator would have seen.
MenuProbe openContextMenu(InputSourceItem& tile)
{
    MenuProbe probe;
    QMenu* const menu = tile.findChild<QMenu*>();
    const QMetaObject::Connection connection =
        QObject::connect(menu, &QMenu::aboutToShow, menu, [&probe, menu] {
            ++probe.shown;
            for (QAction* entry : menu->actions()) {
                if (entry->isVisible()) {
                    probe.visibleActions << entry->text();
                }
            }
            QTimer::singleShot(0, menu, &QMenu::close);
        });
    const QPoint local(20, 20);
    QContextMenuEvent event(QContextMenuEvent::Mouse, local, tile.mapToGlobal(local));
    QCoreApplication::sendEvent(&tile, &event);
    QObject::disconnect(connection);
    return probe;
}

void selectByClick(InputSourceItem& tile)
{
    QTest::mouseClick(&tile, Qt::LeftButton, Qt::NoModifier, QPoint(40, 30));
}

void pushFrameFromAnotherThread(InputSourceItem& tile, int width, int height, double rate)
{
    const auto frame = FrameFactory::pattern(width, height, 0, 0, rate);
    std::thread pusher([&tile, &frame] { tile.updateFrame(frame.get()); });
    pusher.join();
}

// Counts the queued calls the tile receives, to see how many a stream of frames posts.
// Counts the calls that frame threads queue to the tile.
class HandoffCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QueuedHandoff::eventType()) {
            ++count;
        }
        return false;
    }
};

// Two frames of a 1 x 1 GIF: the smallest animation QMovie accepts.
QByteArray tinyAnimation()
{
    // 1 x 1 pixels, a palette of two colours.
    const QByteArray header = QByteArrayLiteral("GIF89a\x01\x00\x01\x00\x80\x00\x00"
                                                "\x00\x00\x00\xff\xff\xff");
    // A delay of a tenth of a second, then the one pixel in colour 0.
    const QByteArray frame = QByteArrayLiteral("\x21\xf9\x04\x00\x0a\x00\x00\x00"
                                               "\x2c\x00\x00\x00\x00\x01\x00\x01\x00\x00"
                                               "\x02\x02\x44\x01\x00");
    return header + frame + frame + QByteArrayLiteral("\x3b");
}

std::shared_ptr<zq::mediacore::ValueMeta> metaWithLost(bool lost)
{
    zq::mediacore::MetaValues values;
    values.lost = lost;
    return std::make_shared<zq::mediacore::ValueMeta>(values);
}

QByteArray pointerBytes(const void* pointer)
{
    return QByteArray(reinterpret_cast<const char*>(&pointer), sizeof pointer);
}

QByteArray streamedBool(bool value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << value;
    return bytes;
}

} // namespace

using Prepare = std::function<void(InputSourceItem&)>;

Q_DECLARE_METATYPE(Prepare)
Q_DECLARE_METATYPE(std::shared_ptr<zq::mediacore::ValueMeta>)

class TestInputSourceItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void stateIsReadableAsProperties();
    void runningTimeStopsAtTheLargestCount();
    void thumbnailOfAMediaDescriptionIsShown();
    void inconsistentThumbnailIsRefused();
    void thumbnailTooWideForAnImageIsRefused();

    void tileLayout();
    void floatingChildren();
    void kindSpecificSetUp_data();
    void kindSpecificSetUp();

    void nameCapsTheEditorOnlyUpToTwentyCharacters_data();
    void nameCapsTheEditorOnlyUpToTwentyCharacters();
    void renameActionEditsAndReportsTheName();

    void runningTimeText_data();
    void runningTimeText();
    void secondSetOnlineKeepsTheClockAndTheTime();
    void goingOfflineResetsTimeAndResolution();
    void goingOnlineShowsResolutionChooserAndPreview();

    void plainClickSelects();
    void ctrlClickTogglesTheSelection();
    void otherButtonsDoNotSelect();
    void clearSelectClearsTheMark();
    void doubleClickIsReported();
    void hoverSwitchesStyleAndShowsToolTipUnderTheTile();

    void toolTipRows_data();
    void toolTipRows();

    void menuOfUnselectedTile_data();
    void menuOfUnselectedTile();
    void menuOfMultiSelectionOffersOnlyDelete_data();
    void menuOfMultiSelectionOffersOnlyDelete();
    void captureTileWithMultiSelectionOpensNoMenu();
    void menuOfSingleSelectionOffersEverything();
    void deleteReportsTheTileOrTheSelection();
    void editIsReported();

    void previewClickLocksTheToggleFor500Ms();
    void previewToggleIsAppliedQueued();
    void loadingAnimationFollowsThePreview();
    void deviceCaptionIsFixed();

    void setResolution_data();
    void setResolution();
    void offlineResolutionIsNotKept();
    void webModeText();
    void longInfoTextStaysInsideTheTile();

    void chooserEntryText();
    void resolutionModeOneOffersOnlyTheCurrentResolution();
    void setCurrentCaptResolutionPicksTheFloatEqualEntry();
    void setCurrentCaptResolutionWithoutMatchChangesNothing();
    void pickingAResolutionReportsItsRecord();

    void streamFpsFollowsIncomingFrames();
    void unchangedFrameRateIsPostedOnce();
    void framesRefreshAResolutionSetMeanwhile();
    void framesWhileOfflineAreShownOnceOnline();
    void framesOfOtherKindsLeaveTheResolution();
    void frameReachesTheSurface();

    void dragPayload_data();
    void dragPayload();
    void dragStartsAtThirtyPixels_data();
    void dragStartsAtThirtyPixels();
    void dragNeedsDragEnabled();

    void translateLanguageAppliesTheLoadedLanguage();
    void thumbnailIsStretchedToTheThumbnailArea();
    void destructionFreesTheSurfaceAndDropsPendingUpdates();
};

void TestInputSourceItem::initTestCase()
{
    vexa::inputsource::registerMetaTypes();
    auto& translator = InputSourceTranslateManager::instance().translator();
    QVERIFY(translator.load(languageFile("en_US")));
    QVERIFY(translator.load(languageFile("zh_CN")));
    switchLanguage("en_US");
}

void TestInputSourceItem::cleanup()
{
    switchLanguage("en_US");
}

void TestInputSourceItem::tileLayout()
{
    InputSourceItem tile(streamKind);
    QCOMPARE(tile.minimumWidth(), 170);
    QCOMPARE(tile.maximumWidth(), 170);
    QCOMPARE(tile.property("style").toString(), QStringLiteral("BG4"));
    QCOMPARE(tile.property("radius").toString(), QStringLiteral("M"));
    QVERIFY(tile.testAttribute(Qt::WA_StyledBackground));
    QCOMPARE(tile.kind(), streamKind);

    QWidget* const frame = border(tile);
    QVERIFY(frame != nullptr);
    QCOMPARE(frame->property("select").toBool(), false);
    QCOMPARE(frame->property("radius").toString(), QStringLiteral("M"));
    QCOMPARE(tile.layout()->contentsMargins(), QMargins(0, 0, 0, 0));
    auto* const column = qobject_cast<QVBoxLayout*>(frame->layout());
    QVERIFY(column != nullptr);
    QCOMPARE(column->spacing(), 2);
    QCOMPARE(column->contentsMargins(), QMargins(1, 1, 1, 1));

    auto* const thumbnail = qobject_cast<QLabel*>(column->itemAt(0)->widget());
    QVERIFY(thumbnail != nullptr);
    QCOMPARE(thumbnail->objectName(), QStringLiteral("thumbnail_streaming"));
    QCOMPARE(thumbnail->minimumSize(), QSize(168, 88));
    QCOMPARE(thumbnail->maximumSize(), QSize(168, 88));
    QCOMPARE(thumbnail->property("style").toString(), QStringLiteral("BG5"));
    QCOMPARE(thumbnail->property("radius").toString(), QStringLiteral("M"));

    const QMargins rowMargins[] = {{8, 2, 8, 0}, {4, 0, 4, 0}, {4, 0, 4, 0}, {6, 0, 6, 6}};
    for (int row = 0; row < 4; ++row) {
        QCOMPARE(column->itemAt(row + 1)->layout()->contentsMargins(), rowMargins[row]);
    }
    auto* const caption = qobject_cast<QLabel*>(column->itemAt(1)->layout()->itemAt(0)->widget());
    QVERIFY(caption != nullptr);
    QVERIFY(caption->isHidden());
    QCOMPARE(caption->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(caption->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);

    auto* const name =
        qobject_cast<vexa::widgets::EditBox*>(column->itemAt(2)->layout()->itemAt(0)->widget());
    QCOMPARE(name, nameEditor(tile));
    QVERIFY(name->triggerEdit());
    auto* const second =
        qobject_cast<vexa::widgets::EditBox*>(column->itemAt(3)->layout()->itemAt(0)->widget());
    QVERIFY(second != nullptr);
    QVERIFY(second->triggerEdit());
    QVERIFY(second->isHidden());

    QLayout* const infoRow = column->itemAt(4)->layout();
    QCOMPARE(infoRow->itemAt(0)->widget(), static_cast<QWidget*>(infoLabel(tile)));
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("--"));
    QCOMPARE(infoLabel(tile)->property("fontSize").toString(), QStringLiteral("S"));
    QVERIFY(!infoLabel(tile)->isEnabled());
    QCOMPARE(infoRow->itemAt(1)->widget(), static_cast<QWidget*>(chooser(tile)));
    QCOMPARE(chooser(tile)->property("fontSize").toString(), QStringLiteral("S"));
    QCOMPARE(chooser(tile)->view()->property("fontSize").toString(), QStringLiteral("S"));
    QCOMPARE(chooser(tile)->minimumHeight(), 21);
    QCOMPARE(chooser(tile)->maximumHeight(), 21);
    QVERIFY(!chooser(tile)->isEnabled());
    QVERIFY(chooser(tile)->isHidden());
}

void TestInputSourceItem::floatingChildren()
{
    InputSourceItem tile(streamKind);
    QWidget* const coverWidget = cover(tile);
    QCOMPARE(coverWidget->geometry(), QRect(1, 1, 168, 88));
    QCOMPARE(coverWidget->property("style").toString(), QStringLiteral("BG5"));
    QCOMPARE(coverWidget->property("radius").toString(), QStringLiteral("M"));
    QVERIFY(coverWidget->isHidden());
    auto* const loading = child<QLabel>(tile, "loadingLabel");
    QCOMPARE(loading->parentWidget(), coverWidget);
    QCOMPARE(loading->minimumSize(), QSize(64, 64));
    QCOMPARE(loading->maximumSize(), QSize(64, 64));
    QVERIFY(loading->hasScaledContents());
    QCOMPARE(loading->property("radius").toString(), QStringLiteral("M"));
    QCOMPARE(coverWidget->layout()->itemAt(0)->alignment(), Qt::Alignment(Qt::AlignCenter));

    QCOMPARE(surface(tile)->geometry(), QRect(1, 1, 168, 88));
    QVERIFY(surface(tile)->isHidden());

    QLabel* const dot = stateDot(tile);
    QCOMPARE(dot->objectName(), QStringLiteral("state_offline"));
    QCOMPARE(dot->geometry(), QRect(10, 8, 10, 10));

    auto* const toggle = previewButton(tile);
    QCOMPARE(toggle->geometry(), QRect(142, 3, 20, 20));
    QVERIFY(toggle->isCheckable());
    QVERIFY(toggle->isChecked());
    QCOMPARE(toggle->property("imageBtn").toString(), QStringLiteral("display"));

    QLabel* const time = durationLabel(tile);
    QCOMPARE(time->geometry(), QRect(55, 70, 60, 12));
    QCOMPARE(time->text(), QStringLiteral("000:00:00"));
    QCOMPARE(time->alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(time->property("fontSize").toString(), QStringLiteral("S"));

    // Later children lie on top: cover, surface, dot, button, running time.
    const QObjectList children = tile.children();
    const QList<QObject*> order = {coverWidget, surface(tile), dot, toggle, time};
    for (int index = 1; index < order.size(); ++index) {
        QVERIFY(children.indexOf(order[index - 1]) < children.indexOf(order[index]));
    }
    QVERIFY(children.indexOf(border(tile)) < children.indexOf(coverWidget));

    QVERIFY(!tile.isOnline());
    QVERIFY(!tile.isSelected());
    QVERIFY(tile.isPreviewToggleEnabled());
}

void TestInputSourceItem::kindSpecificSetUp_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("thumbnailName");
    QTest::addColumn<QStringList>("menuActions");
    QTest::addColumn<bool>("captureLines");
    QTest::addColumn<bool>("urlLine");

    const QStringList common = {QStringLiteral("Rename"), QStringLiteral("Delete")};
    QTest::newRow("ndi") << ndiKind << "thumbnail_ndi" << common << false << false;
    QTest::newRow("capture") << captureKind << "thumbnail_capture"
                             << QStringList{QStringLiteral("Rename")} << true << false;
    QTest::newRow("web") << webKind << "thumbnail_web"
                         << (common + QStringList{QStringLiteral("Edit")}) << false << true;
    QTest::newRow("stream") << streamKind << "thumbnail_streaming" << common << false << false;
    QTest::newRow("other") << 3 << "thumbnail_streaming" << common << false << false;
}

void TestInputSourceItem::kindSpecificSetUp()
{
    QFETCH(int, kind);
    QFETCH(QString, thumbnailName);
    QFETCH(QStringList, menuActions);
    QFETCH(bool, captureLines);
    QFETCH(bool, urlLine);

    InputSourceItem tile(kind);
    QCOMPARE(tile.kind(), kind);
    QVERIFY(tile.findChild<QLabel*>(thumbnailName) != nullptr);
    QCOMPARE(child<QLabel>(tile, "captionLabel")->isHidden(), !captureLines);
    QCOMPARE(chooser(tile)->isHidden(), !captureLines);
    QCOMPARE(infoLabel(tile)->isHidden(), captureLines);
    QCOMPARE(child<vexa::widgets::EditBox>(tile, "urlEdit")->isHidden(), !urlLine);

    QStringList visible;
    for (QAction* entry : tile.findChild<QMenu*>()->actions()) {
        if (entry->isVisible()) {
            visible << entry->text();
        }
    }
    QStringList expected;
    for (const QString& key : menuActions) {
        expected << trKey(key.toLatin1().constData());
    }
    QCOMPARE(visible, expected);
}

void TestInputSourceItem::nameCapsTheEditorOnlyUpToTwentyCharacters_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("maxLength");

    const int untouched = vexa::widgets::EditBox().maxLength();
    QTest::newRow("20 characters") << QString(20, QLatin1Char('n')) << 20;
    QTest::newRow("21 characters") << QString(21, QLatin1Char('n')) << untouched;
    QTest::newRow("empty") << QString() << 20;
}

void TestInputSourceItem::nameCapsTheEditorOnlyUpToTwentyCharacters()
{
    QFETCH(QString, name);
    QFETCH(int, maxLength);

    InputSourceItem tile(streamKind);
    tile.setName(name);
    QCOMPARE(nameEditor(tile)->text(), name);
    QCOMPARE(nameEditor(tile)->maxLength(), maxLength);

    // A long name after a short one leaves the cap of the short one.
    tile.setName(QString(20, QLatin1Char('a')));
    const QString longName(25, QLatin1Char('b'));
    tile.setName(longName);
    QCOMPARE(nameEditor(tile)->text(), longName);
    QCOMPARE(nameEditor(tile)->maxLength(), 20);
}

void TestInputSourceItem::renameActionEditsAndReportsTheName()
{
    InputSourceItem tile(streamKind);
    tile.setId(tileId);
    tile.setName(QStringLiteral("Camera"));
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QSignalSpy renamed(&tile, &InputSourceItem::signalNameChanged);

    action(tile, "Rename")->trigger();
    QVERIFY(nameEditor(tile)->isEditing());
    auto* const editor = nameEditor(tile)->findChild<QLineEdit*>(QStringLiteral("editor"));
    QTest::keyClicks(editor, QStringLiteral("Studio"));
    QTest::keyClick(editor, Qt::Key_Return);

    QCOMPARE(renamed.count(), 1);
    QCOMPARE(renamed.at(0).at(0).value<uint64_t>(), tileId);
    QCOMPARE(renamed.at(0).at(1).toString(), QStringLiteral("Studio"));
}

void TestInputSourceItem::runningTimeText_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("shown");

    QTest::newRow("first tick") << 1 << "000:00:01";
    QTest::newRow("3725 s") << 3725 << "001:02:05";
    QTest::newRow("360000 s") << 360000 << "100:00:00";
    QTest::newRow("1000 hours widen the field") << 3600000 << "1000:00:00";
}

void TestInputSourceItem::runningTimeText()
{
    QFETCH(int, seconds);
    QFETCH(QString, shown);

    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    tile.setRunningSeconds(seconds - 1);
    QCOMPARE(durationLabel(tile)->text(), QStringLiteral("000:00:00"));
    QTRY_COMPARE_WITH_TIMEOUT(durationLabel(tile)->text(), shown, 5000);
}

void TestInputSourceItem::secondSetOnlineKeepsTheClockAndTheTime()
{
    InputSourceItem tile(streamKind);
    tile.setRunningSeconds(41);
    QElapsedTimer sinceStart;
    tile.setOnline(true);
    sinceStart.start();

    // The second call must come well inside the first second, or a restarted clock could not be
    // told from the running one: this wait places the call, it does not wait for a result.
    QTRY_VERIFY_WITH_TIMEOUT(sinceStart.elapsed() >= 400, 2000);
    tile.setOnline(true);
    QElapsedTimer sinceSecondCall;
    sinceSecondCall.start();
    QCOMPARE(durationLabel(tile)->text(), QStringLiteral("000:00:00"));

    QTRY_COMPARE_WITH_TIMEOUT(durationLabel(tile)->text(), QStringLiteral("000:00:42"), 5000);
    // A restarted 1000 ms clock could not tick before about 950 ms after the second call.
    QVERIFY2(sinceSecondCall.elapsed() < 900,
             qPrintable(QStringLiteral("tick came %1 ms after the second setOnline(true)")
                            .arg(sinceSecondCall.elapsed())));
    QTRY_COMPARE_WITH_TIMEOUT(durationLabel(tile)->text(), QStringLiteral("000:00:43"), 5000);
}

void TestInputSourceItem::goingOfflineResetsTimeAndResolution()
{
    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("25"));
    tile.setRunningSeconds(99);
    QTRY_COMPARE_WITH_TIMEOUT(durationLabel(tile)->text(), QStringLiteral("000:01:40"), 5000);
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@25fps"));

    tile.setOnline(false);
    QVERIFY(!tile.isOnline());
    QCOMPARE(stateDot(tile)->objectName(), QStringLiteral("state_offline"));
    QCOMPARE(durationLabel(tile)->text(), QStringLiteral("000:00:00"));
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("--"));
    QVERIFY(!chooser(tile)->isEnabled());

    // Stopped and reset: back online, the clock counts from zero again.
    tile.setOnline(true);
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@25fps"));
    QTRY_COMPARE_WITH_TIMEOUT(durationLabel(tile)->text(), QStringLiteral("000:00:01"), 5000);
}

void TestInputSourceItem::goingOnlineShowsResolutionChooserAndPreview()
{
    InputSourceItem tile(captureKind);
    tile.show();
    tile.setOnline(true);
    QCOMPARE(stateDot(tile)->objectName(), QStringLiteral("state_online"));
    QVERIFY(tile.isOnline());
    QVERIFY(chooser(tile)->isEnabled());
    // Preview off: the surface stays hidden.
    QVERIFY(surface(tile)->isHidden());
    tile.setOnline(false);

    InputSourceItem stream(streamKind);
    stream.show();
    stream.setPreviewChecked(false);
    QTRY_VERIFY(!surface(stream)->isHidden());
    stream.setOnline(true);
    QVERIFY(!surface(stream)->isHidden());
    stream.setOnline(false);
    QVERIFY(surface(stream)->isHidden());
    stream.setOnline(true);
    QVERIFY(!surface(stream)->isHidden());
}

void TestInputSourceItem::plainClickSelects()
{
    InputSourceItem tile(streamKind);
    tile.setId(tileId);
    QSignalSpy selected(&tile, &InputSourceItem::signalSelect);
    QSignalSpy batch(&tile, &InputSourceItem::signalBatchSelect);

    selectByClick(tile);
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).value<uint64_t>(), tileId);
    QVERIFY(tile.isSelected());
    QCOMPARE(border(tile)->property("select").toBool(), true);

    // A plain click on a selected tile keeps it selected.
    selectByClick(tile);
    QCOMPARE(selected.count(), 2);
    QVERIFY(tile.isSelected());
    QCOMPARE(batch.count(), 0);
}

void TestInputSourceItem::ctrlClickTogglesTheSelection()
{
    InputSourceItem tile(streamKind);
    tile.setId(tileId);
    QSignalSpy selected(&tile, &InputSourceItem::signalSelect);
    QSignalSpy batch(&tile, &InputSourceItem::signalBatchSelect);

    QTest::mouseClick(&tile, Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QCOMPARE(batch.count(), 1);
    QCOMPARE(batch.at(0).at(0).value<uint64_t>(), tileId);
    QCOMPARE(batch.at(0).at(1).toBool(), true);
    QVERIFY(tile.isSelected());

    QTest::mouseClick(&tile, Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QCOMPARE(batch.count(), 2);
    QCOMPARE(batch.at(1).at(1).toBool(), false);
    QVERIFY(!tile.isSelected());
    QCOMPARE(selected.count(), 0);
}

void TestInputSourceItem::otherButtonsDoNotSelect()
{
    InputSourceItem tile(streamKind);
    QSignalSpy selected(&tile, &InputSourceItem::signalSelect);
    QSignalSpy batch(&tile, &InputSourceItem::signalBatchSelect);
    QTest::mouseClick(&tile, Qt::RightButton, Qt::NoModifier, QPoint(40, 30));
    QTest::mouseClick(&tile, Qt::MiddleButton, Qt::ControlModifier, QPoint(40, 30));
    QCOMPARE(selected.count(), 0);
    QCOMPARE(batch.count(), 0);
    QVERIFY(!tile.isSelected());
}

void TestInputSourceItem::clearSelectClearsTheMark()
{
    InputSourceItem tile(streamKind);
    selectByClick(tile);
    QVERIFY(tile.isSelected());
    tile.clearSelect();
    QVERIFY(!tile.isSelected());
    QCOMPARE(border(tile)->property("select").toBool(), false);
}

void TestInputSourceItem::doubleClickIsReported()
{
    InputSourceItem tile(webKind);
    tile.setId(tileId);
    QSignalSpy doubleClicked(&tile, &InputSourceItem::signalDoubleClicked);
    QTest::mouseDClick(&tile, Qt::LeftButton, Qt::NoModifier, QPoint(40, 30));
    QCOMPARE(doubleClicked.count(), 1);
    QCOMPARE(doubleClicked.at(0).at(0).value<uint64_t>(), tileId);
}

void TestInputSourceItem::hoverSwitchesStyleAndShowsToolTipUnderTheTile()
{
    InputSourceItem tile(streamKind);
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));

    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(&tile, &enter);
    QCOMPARE(tile.property("style").toString(), QStringLiteral("BG6"));
    QPointer<InputSourceToolTip> toolTip = tile.findChild<InputSourceToolTip*>();
    QVERIFY(!toolTip.isNull());
    QVERIFY(toolTip->isVisible());
    QCOMPARE(toolTip->pos(), tile.mapToGlobal(QPoint(0, tile.height())));

    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&tile, &leave);
    QCOMPARE(tile.property("style").toString(), QStringLiteral("BG4"));
    QVERIFY(toolTip.isNull());

    // Every entry builds a fresh tool-tip with one set of rows.
    QCOMPARE(hoverRows(tile).size(), 3);
    QCOMPARE(hoverRows(tile).size(), 3);
}

void TestInputSourceItem::toolTipRows_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<Prepare>("prepare");
    // Keys and values in turn; "@caption" stands for a capture tile's translated default caption.
    QTest::addColumn<QStringList>("expected");

    const auto nothing = [](InputSourceItem&) {};
    QTest::newRow("stream without resolution") << streamKind << Prepare([](InputSourceItem& tile) {
        tile.setUrl(QStringLiteral("rtsp://cam/1"));
    }) << QStringList{QStringLiteral("Url"), QStringLiteral("rtsp://cam/1"), QStringLiteral("Dpi"),
                      QStringLiteral(""),    QStringLiteral("Fps"),          QStringLiteral("")};
    QTest::newRow("stream with resolution") << streamKind << Prepare([](InputSourceItem& tile) {
        tile.setOnline(true);
        tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("25"));
    }) << QStringList{QStringLiteral("Url"),       QStringLiteral(""),    QStringLiteral("Dpi"),
                      QStringLiteral("1920*1080"), QStringLiteral("Fps"), QStringLiteral("25fps")};
    QTest::newRow("ndi") << ndiKind << Prepare([](InputSourceItem& tile) {
        tile.setUrl(QStringLiteral("10.0.0.7"));
        tile.setOnline(true);
        tile.setResolution(QStringLiteral("1280*720"), QStringLiteral("50"));
    }) << QStringList{QStringLiteral("Url"), QStringLiteral("10.0.0.7"),
                      QStringLiteral("Dpi"), QStringLiteral("1280*720"),
                      QStringLiteral("Fps"), QStringLiteral("50fps")};
    QTest::newRow("web native") << webKind << Prepare([](InputSourceItem& tile) {
        tile.setName(QStringLiteral("News"));
        tile.setUrl(QStringLiteral("https://news"));
        tile.setWebMode(0);
        tile.setResolution(QStringLiteral("1280*720"), QStringLiteral("30"));
    })
                                << QStringList{QStringLiteral("Name"), QStringLiteral("News"),
                                               QStringLiteral("Url"),
                                               QStringLiteral("https://news")};
    QTest::newRow("web screenshot") << webKind << Prepare([](InputSourceItem& tile) {
        tile.setName(QStringLiteral("News"));
        tile.setUrl(QStringLiteral("https://news"));
        tile.setWebMode(1);
        tile.setResolution(QStringLiteral("1,280*720"), QStringLiteral("30"));
    }) << QStringList{QStringLiteral("Name"), QStringLiteral("News"),
                      QStringLiteral("Url"),  QStringLiteral("https://news"),
                      QStringLiteral("Dpi"),  QStringLiteral("1280*720")};
    QTest::newRow("capture with empty chooser")
        << captureKind << Prepare(nothing)
        << QStringList{QStringLiteral("Name"), QStringLiteral("@caption"), QStringLiteral("Url"),
                       QStringLiteral("")};
    QTest::newRow("capture with a resolution entry")
        << captureKind << Prepare([](InputSourceItem& tile) {
               tile.setUrl(QStringLiteral("/dev/video0"));
               tile.setCaptResolutions({{1920, 1080, 59.94f, "NV12"}});
           })
        << QStringList{QStringLiteral("Name"), QStringLiteral("@caption"),
                       QStringLiteral("Url"),  QStringLiteral("/dev/video0"),
                       QStringLiteral("Dpi"),  QStringLiteral("1920*1080"),
                       QStringLiteral("Fps"),  QStringLiteral("59.94")};
    QTest::newRow("capture whose current entry has no record")
        << captureKind << Prepare([](InputSourceItem& tile) { tile.setResolutionMode(1); })
        << QStringList{QStringLiteral("Name"), QStringLiteral("@caption"), QStringLiteral("Url"),
                       QStringLiteral("")};
}

void TestInputSourceItem::toolTipRows()
{
    QFETCH(int, kind);
    QFETCH(Prepare, prepare);
    QFETCH(QStringList, expected);

    InputSourceItem tile(kind);
    tile.show();
    prepare(tile);

    QStringList wanted;
    for (int index = 0; index + 1 < expected.size(); index += 2) {
        wanted << trKey(expected[index].toLatin1().constData())
               << (expected[index + 1] == QStringLiteral("@caption") ? trKey("LocalCaptureDevice")
                                                                     : expected[index + 1]);
    }
    QCOMPARE(flatten(hoverRows(tile)), wanted);
}

void TestInputSourceItem::menuOfUnselectedTile_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("stream") << streamKind
                            << QStringList{QStringLiteral("Rename"), QStringLiteral("Delete")};
    QTest::newRow("ndi") << ndiKind
                         << QStringList{QStringLiteral("Rename"), QStringLiteral("Delete")};
    QTest::newRow("web") << webKind
                         << QStringList{QStringLiteral("Rename"), QStringLiteral("Delete"),
                                        QStringLiteral("Edit")};
    QTest::newRow("capture has no Delete") << captureKind << QStringList{QStringLiteral("Rename")};
}

void TestInputSourceItem::menuOfUnselectedTile()
{
    QFETCH(int, kind);
    QFETCH(QStringList, expected);

    InputSourceItem tile(kind);
    int asked = 0;
    connect(&tile, &InputSourceItem::signalCheckMultiSelect, this, [&asked] {
        ++asked;
        return true;
    });
    const MenuProbe probe = openContextMenu(tile);
    QCOMPARE(asked, 0);
    QCOMPARE(probe.shown, 1);
    QStringList translated;
    for (const QString& key : expected) {
        translated << trKey(key.toLatin1().constData());
    }
    QCOMPARE(probe.visibleActions, translated);
}

void TestInputSourceItem::menuOfMultiSelectionOffersOnlyDelete_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("stream") << streamKind;
    QTest::newRow("ndi") << ndiKind;
    QTest::newRow("web") << webKind;
}

void TestInputSourceItem::menuOfMultiSelectionOffersOnlyDelete()
{
    QFETCH(int, kind);

    InputSourceItem tile(kind);
    int asked = 0;
    connect(&tile, &InputSourceItem::signalCheckMultiSelect, this, [&asked] {
        ++asked;
        return true;
    });
    selectByClick(tile);
    MenuProbe probe = openContextMenu(tile);
    QCOMPARE(asked, 1);
    QCOMPARE(probe.shown, 1);
    QCOMPARE(probe.visibleActions, QStringList{trKey("Delete")});

    // Once the selection is gone, everything comes back.
    tile.clearSelect();
    probe = openContextMenu(tile);
    QCOMPARE(asked, 1);
    QVERIFY(probe.visibleActions.contains(trKey("Rename")));
}

void TestInputSourceItem::captureTileWithMultiSelectionOpensNoMenu()
{
    InputSourceItem tile(captureKind);
    int asked = 0;
    connect(&tile, &InputSourceItem::signalCheckMultiSelect, this, [&asked] {
        ++asked;
        return true;
    });
    selectByClick(tile);
    const MenuProbe probe = openContextMenu(tile);
    QCOMPARE(asked, 1);
    QCOMPARE(probe.shown, 0);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
}

void TestInputSourceItem::menuOfSingleSelectionOffersEverything()
{
    InputSourceItem tile(webKind);
    int asked = 0;
    connect(&tile, &InputSourceItem::signalCheckMultiSelect, this, [&asked] {
        ++asked;
        return false;
    });
    selectByClick(tile);
    const MenuProbe probe = openContextMenu(tile);
    QCOMPARE(asked, 1);
    QCOMPARE(probe.visibleActions, (QStringList{trKey("Rename"), trKey("Delete"), trKey("Edit")}));

    // A capture tile with a single selection still opens its menu, without "Delete".
    InputSourceItem capture(captureKind);
    connect(&capture, &InputSourceItem::signalCheckMultiSelect, this, [] { return false; });
    selectByClick(capture);
    QCOMPARE(openContextMenu(capture).visibleActions, QStringList{trKey("Rename")});
}

void TestInputSourceItem::deleteReportsTheTileOrTheSelection()
{
    InputSourceItem tile(streamKind);
    tile.setId(tileId);
    QSignalSpy deleted(&tile, &InputSourceItem::signalDelete);
    QSignalSpy batchDeleted(&tile, &InputSourceItem::signalBatchDelete);

    action(tile, "Delete")->trigger();
    QCOMPARE(deleted.count(), 1);
    QCOMPARE(deleted.at(0).at(0).value<uint64_t>(), tileId);
    QCOMPARE(batchDeleted.count(), 0);

    selectByClick(tile);
    action(tile, "Delete")->trigger();
    QCOMPARE(deleted.count(), 1);
    QCOMPARE(batchDeleted.count(), 1);
}

void TestInputSourceItem::editIsReported()
{
    InputSourceItem tile(webKind);
    tile.setId(tileId);
    QSignalSpy edited(&tile, &InputSourceItem::signalEdit);
    action(tile, "Edit")->trigger();
    QCOMPARE(edited.count(), 1);
    QCOMPARE(edited.at(0).at(0).value<uint64_t>(), tileId);
}

void TestInputSourceItem::previewClickLocksTheToggleFor500Ms()
{
    InputSourceItem tile(streamKind);
    tile.setId(tileId);
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QSignalSpy changed(&tile, &InputSourceItem::signalPreviewChanged);
    auto* const toggle = previewButton(tile);

    QElapsedTimer sinceClick;
    QTest::mouseClick(toggle, Qt::LeftButton);
    sinceClick.start();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<uint64_t>(), tileId);
    QCOMPARE(changed.at(0).at(1).toBool(), true);
    QVERIFY(!toggle->isChecked());
    QVERIFY(!toggle->isEnabled());
    QVERIFY(!tile.isPreviewToggleEnabled());

    // Clicks during the lock-out are lost.
    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(changed.count(), 1);

    QTRY_VERIFY_WITH_TIMEOUT(toggle->isEnabled(), 3000);
    QVERIFY2(sinceClick.elapsed() >= 450,
             qPrintable(QStringLiteral("enabled after %1 ms").arg(sinceClick.elapsed())));

    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(1).at(1).toBool(), false);
}

void TestInputSourceItem::previewToggleIsAppliedQueued()
{
    InputSourceItem tile(streamKind);
    QSignalSpy changed(&tile, &InputSourceItem::signalPreviewChanged);

    tile.setPreviewChecked(false);
    QVERIFY(!previewButton(tile)->isChecked());
    QVERIFY(surface(tile)->isHidden());
    QVERIFY(cover(tile)->isHidden());
    QTRY_VERIFY(!surface(tile)->isHidden());
    QVERIFY(!cover(tile)->isHidden());

    tile.setPreviewChecked(true);
    QVERIFY(!surface(tile)->isHidden());
    QTRY_VERIFY(surface(tile)->isHidden());
    QVERIFY(cover(tile)->isHidden());
    QCOMPARE(changed.count(), 0);
}

void TestInputSourceItem::loadingAnimationFollowsThePreview()
{
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/loading-XXXXXX.gif"));
    QVERIFY(file.open());
    file.write(tinyAnimation());
    file.close();

    InputSourceItem tile(streamKind);
    tile.setLoadingMovie(file.fileName());
    auto* const loading = child<QLabel>(tile, "loadingLabel");
    QMovie* const movie = loading->movie();
    QVERIFY(movie != nullptr);
    QCOMPARE(movie->parent(), static_cast<QObject*>(loading));
    QCOMPARE(movie->fileName(), file.fileName());
    QVERIFY(movie->isValid());

    // The tile only pauses and resumes; starting is the box's.
    movie->start();
    tile.setPreviewChecked(false);
    QTRY_VERIFY(!cover(tile)->isHidden());
    QCOMPARE(movie->state(), QMovie::Running);
    tile.setPreviewChecked(true);
    QTRY_COMPARE(movie->state(), QMovie::Paused);
    tile.setPreviewChecked(false);
    QTRY_COMPARE(movie->state(), QMovie::Running);

    // A second animation replaces the first.
    QPointer<QMovie> first = movie;
    tile.setLoadingMovie(file.fileName());
    QVERIFY(first.isNull());
    QVERIFY(loading->movie() != nullptr);
}

void TestInputSourceItem::deviceCaptionIsFixed()
{
    InputSourceItem tile(captureKind);
    auto* const caption = child<QLabel>(tile, "captionLabel");
    QCOMPARE(
        caption->text(),
        QFontMetrics(caption->font()).elidedText(trKey("LocalCaptureDevice"), Qt::ElideRight, 142));

    const QString device = QStringLiteral("USB3.0 HD Video Capture Device With A Long Name");
    tile.setDeviceCaption(device, QStringLiteral("Camera 1"));
    const QString full = QStringLiteral("Camera 1(") + device + QLatin1Char(')');
    const QString elided = QFontMetrics(caption->font()).elidedText(full, Qt::ElideRight, 142);
    QVERIFY(elided != full);
    QCOMPARE(caption->text(), elided);
    QCOMPARE(hoverRows(tile).value(0).second, full);

    switchLanguage("zh_CN");
    tile.translateLanguage();
    QCOMPARE(caption->text(), elided);
    QCOMPARE(hoverRows(tile).value(0).second, full);

    // The toggle still changes, but the surface and the cover stay as they are.
    tile.setPreviewChecked(false);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QVERIFY(!previewButton(tile)->isChecked());
    QVERIFY(surface(tile)->isHidden());
    QVERIFY(cover(tile)->isHidden());
}

void TestInputSourceItem::setResolution_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("online");
    QTest::addColumn<int>("resolutionMode");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("rate");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QStringList>("chooserEntries");

    QTest::newRow("offline") << streamKind << false << 0 << "1920*1080"
                             << "25"
                             << "--" << QStringList{};
    QTest::newRow("online") << streamKind << true << 0 << "1920*1080"
                            << "25"
                            << "1920*1080@25fps" << QStringList{};
    QTest::newRow("commas removed") << ndiKind << true << 0 << "1,920*1,080"
                                    << "29,97"
                                    << "1920*1080@2997fps" << QStringList{};
    QTest::newRow("mode 1 replaces the chooser")
        << captureKind << true << 1 << "3840*2160"
        << "30"
        << "3840*2160@30fps" << QStringList{QStringLiteral("3840*2160@30fps")};
    QTest::newRow("mode 1 offline keeps the chooser")
        << captureKind << false << 1 << "3840*2160"
        << "30"
        << "--" << QStringList{QStringLiteral("1920*1080@60")};
    QTest::newRow("mode 0 leaves the chooser") << captureKind << true << 0 << "3840*2160"
                                               << "30"
                                               << "3840*2160@30fps" << QStringList{};
}

void TestInputSourceItem::setResolution()
{
    QFETCH(int, kind);
    QFETCH(bool, online);
    QFETCH(int, resolutionMode);
    QFETCH(QString, size);
    QFETCH(QString, rate);
    QFETCH(QString, shown);
    QFETCH(QStringList, chooserEntries);

    InputSourceItem tile(kind);
    tile.setResolutionMode(resolutionMode);
    tile.setOnline(online);
    tile.setResolution(size, rate);
    QCOMPARE(infoLabel(tile)->text(), shown);
    QStringList entries;
    for (int index = 0; index < chooser(tile)->count(); ++index) {
        entries << chooser(tile)->itemText(index);
    }
    QCOMPARE(entries, chooserEntries);
}

void TestInputSourceItem::offlineResolutionIsNotKept()
{
    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    tile.setResolution(QStringLiteral("1280*720"), QStringLiteral("50"));
    tile.setOnline(false);
    tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("25"));
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("--"));
    tile.setOnline(true);
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("1280*720@50fps"));

    // Callable by name, as a queued call would reach it.
    QVERIFY(QMetaObject::invokeMethod(&tile, "setResolution", Qt::QueuedConnection,
                                      Q_ARG(QString, QStringLiteral("640*360")),
                                      Q_ARG(QString, QStringLiteral("5"))));
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("640*360@5fps"));
}

void TestInputSourceItem::webModeText()
{
    InputSourceItem tile(webKind);
    QCOMPARE(infoLabel(tile)->text(), trKey("NativeMode"));

    tile.setWebMode(1);
    tile.setResolution(QStringLiteral("1,920*1,080"), QStringLiteral("ignored"));
    QCOMPARE(infoLabel(tile)->text(), trKey("ScreenshotMode") + QStringLiteral(" 1920*1080"));

    // Offline and online both end on the web mode text.
    tile.setOnline(true);
    QCOMPARE(infoLabel(tile)->text(), trKey("ScreenshotMode") + QStringLiteral(" 1920*1080"));
    tile.setOnline(false);
    QCOMPARE(infoLabel(tile)->text(), trKey("ScreenshotMode") + QStringLiteral(" 1920*1080"));

    tile.setWebMode(0);
    tile.setResolution(QStringLiteral("1280*720"), QString());
    QCOMPARE(infoLabel(tile)->text(), trKey("NativeMode"));

    // An unknown mode leaves the label alone.
    tile.setWebMode(5);
    tile.setResolution(QStringLiteral("640*360"), QString());
    QCOMPARE(infoLabel(tile)->text(), trKey("NativeMode"));
}

void TestInputSourceItem::longInfoTextStaysInsideTheTile()
{
    InputSourceItem tile(webKind);
    tile.setWebMode(1);
    tile.setResolution(QStringLiteral("7680*4320"), QString());
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));

    QLabel* const info = infoLabel(tile);
    const QString full = trKey("ScreenshotMode") + QStringLiteral(" 7680*4320");
    QCOMPARE(info->text(), full);
    QCOMPARE(tile.width(), 170);
    // Wider than the tile, the text still leaves the label inside its row's margins; the label
    // draws it elided there.
    QVERIFY(info->fontMetrics().horizontalAdvance(full) > info->width());
    QVERIFY(info->geometry().right() <= border(tile)->width() - 1 - 6);
}

void TestInputSourceItem::chooserEntryText()
{
    InputSourceItem tile(captureKind);
    const quandel::CaptResolutionsInfo full{1920, 1080, 60.0f, "NV12"};
    const quandel::CaptResolutionsInfo odd{720, 576, 29.97f, "%1 YUY2"};
    tile.setCaptResolutions({full, odd});
    QCOMPARE(chooser(tile)->count(), 2);
    QCOMPARE(chooser(tile)->itemText(0), QStringLiteral("1920*1080@60.00,NV12"));
    QCOMPARE(chooser(tile)->itemText(1), QStringLiteral("720*576@29.97,%1 YUY2"));
    QCOMPARE(chooser(tile)->itemData(0).value<quandel::CaptResolutionsInfo>(), full);
    QCOMPARE(chooser(tile)->itemData(1).value<quandel::CaptResolutionsInfo>(), odd);
}

void TestInputSourceItem::resolutionModeOneOffersOnlyTheCurrentResolution()
{
    InputSourceItem tile(captureKind);
    tile.setResolutionMode(0);
    QCOMPARE(chooser(tile)->count(), 0);
    tile.setResolutionMode(1);
    QCOMPARE(chooser(tile)->count(), 1);
    QCOMPARE(chooser(tile)->itemText(0), QStringLiteral("1920*1080@60"));
    QVERIFY(!chooser(tile)->itemData(0).isValid());
}

void TestInputSourceItem::setCurrentCaptResolutionPicksTheFloatEqualEntry()
{
    InputSourceItem tile(captureKind);
    tile.setResolutionMode(1);
    tile.setCaptResolutions({{1920, 1080, 30.0f, "NV12"},
                             {1920, 1080, 59.94f, "YUY2"},
                             {1920, 1080, 59.94f, "NV12"},
                             {1920, 1080, 59.94f, "NV12"}});
    QCOMPARE(chooser(tile)->currentIndex(), 0);

    // One step of float away from the entry: not ==, but equal under the tolerance.
    quandel::CaptResolutionsInfo current{1920, 1080, std::nextafter(59.94f, 100.0f), "NV12"};
    QVERIFY(current != chooser(tile)->itemData(3).value<quandel::CaptResolutionsInfo>());
    tile.setCurrentCaptResolution(current);
    QCOMPARE(chooser(tile)->currentIndex(), 3);

    tile.setCurrentCaptResolution({1920, 1080, 30.0f, "NV12"});
    QCOMPARE(chooser(tile)->currentIndex(), 1);
}

void TestInputSourceItem::setCurrentCaptResolutionWithoutMatchChangesNothing()
{
    InputSourceItem empty(captureKind);
    empty.setCurrentCaptResolution({1920, 1080, 30.0f, "NV12"});
    QCOMPARE(empty.findChild<vexa::widgets::ComboBox*>()->currentIndex(), -1);

    InputSourceItem tile(captureKind);
    tile.setCaptResolutions({{1920, 1080, 30.0f, "NV12"}, {1280, 720, 29.97f, "NV12"}});
    tile.setCurrentCaptResolution({1280, 720, 29.97f, "NV12"});
    QCOMPARE(chooser(tile)->currentIndex(), 1);
    tile.setCurrentCaptResolution({1280, 720, 30.0f, "NV12"});
    tile.setCurrentCaptResolution({1280, 720, 29.97f, "MJPG"});
    tile.setCurrentCaptResolution({1280, 721, 29.97f, "NV12"});
    QCOMPARE(chooser(tile)->currentIndex(), 1);
}

void TestInputSourceItem::pickingAResolutionReportsItsRecord()
{
    InputSourceItem tile(captureKind);
    tile.setId(tileId);
    tile.setResolutionMode(1);
    const quandel::CaptResolutionsInfo format{1280, 720, 50.0f, "MJPG"};
    tile.setCaptResolutions({format});
    tile.setOnline(true);
    QSignalSpy changed(&tile, &InputSourceItem::signalCaptResolutionChanged);

    // The operator steps down from the entry without a record to the one with a record.
    QTest::keyClick(chooser(tile), Qt::Key_Down);
    QCOMPARE(chooser(tile)->currentIndex(), 1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<uint64_t>(), tileId);
    QCOMPARE(changed.at(0).at(1).value<quandel::CaptResolutionsInfo>(), format);

    QTest::keyClick(chooser(tile), Qt::Key_Up);
    QCOMPARE(chooser(tile)->currentIndex(), 0);
    QCOMPARE(changed.count(), 1);
}

void TestInputSourceItem::streamFpsFollowsIncomingFrames()
{
    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("0"));

    pushFrameFromAnotherThread(tile, 64, 36, 25.0);
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@25fps"));
    pushFrameFromAnotherThread(tile, 64, 36, 30.0);
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@30fps"));
    // The integer part of the frame's rate.
    pushFrameFromAnotherThread(tile, 64, 36, 59.94);
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@59fps"));
}

void TestInputSourceItem::unchangedFrameRateIsPostedOnce()
{
    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("0"));
    HandoffCounter counter;
    tile.installEventFilter(&counter);

    const auto frame = FrameFactory::pattern(64, 36, 0, 0, 25.0);
    std::thread pusher([&tile, &frame] {
        for (int index = 0; index < 100; ++index) {
            tile.updateFrame(frame.get());
        }
    });
    pusher.join();
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@25fps"));
    QCoreApplication::processEvents();
    QCOMPARE(counter.count, 1);
}

void TestInputSourceItem::framesRefreshAResolutionSetMeanwhile()
{
    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    pushFrameFromAnotherThread(tile, 64, 36, 25.0);
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("@25fps"));

    // The box sets the meta's resolution; the next frame of the same rate refreshes it, as
    // every frame would.
    tile.setResolution(QStringLiteral("1280*720"), QStringLiteral("25.00"));
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("1280*720@25.00fps"));
    pushFrameFromAnotherThread(tile, 64, 36, 25.0);
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("1280*720@25fps"));
}

void TestInputSourceItem::framesWhileOfflineAreShownOnceOnline()
{
    InputSourceItem tile(streamKind);
    tile.setOnline(true);
    tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("0"));
    tile.setOnline(false);
    HandoffCounter counter;
    tile.installEventFilter(&counter);

    pushFrameFromAnotherThread(tile, 64, 36, 25.0);
    QTRY_COMPARE(counter.count, 1);
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("--"));

    tile.setOnline(true);
    QCOMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@0fps"));
    pushFrameFromAnotherThread(tile, 64, 36, 25.0);
    QTRY_COMPARE(infoLabel(tile)->text(), QStringLiteral("1920*1080@25fps"));
}

void TestInputSourceItem::framesOfOtherKindsLeaveTheResolution()
{
    for (const int kind : {ndiKind, captureKind, webKind, 3}) {
        InputSourceItem tile(kind);
        tile.setOnline(true);
        tile.setResolution(QStringLiteral("1920*1080"), QStringLiteral("50"));
        const QString before = infoLabel(tile)->text();
        HandoffCounter counter;
        tile.installEventFilter(&counter);
        pushFrameFromAnotherThread(tile, 64, 36, 25.0);
        QCoreApplication::processEvents();
        QCOMPARE(counter.count, 0);
        QCOMPARE(infoLabel(tile)->text(), before);
    }
}

void TestInputSourceItem::frameReachesTheSurface()
{
    InputSourceItem tile(ndiKind);
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    tile.setPreviewChecked(false);
    QTRY_VERIFY(surface(tile)->isVisible());

    const auto frame = FrameFactory::solid(32, 16, 200, 10, 20);
    std::thread pusher([&tile, &frame] { tile.updateFrame(frame.get()); });
    pusher.join();
    // A null frame is refused by the surface and leaves the picture in place.
    tile.updateFrame(nullptr);
    QTRY_COMPARE(surface(tile)->grab().toImage().pixelColor(84, 44), QColor(200, 10, 20));
}

void TestInputSourceItem::dragPayload_data()
{
    QTest::addColumn<std::shared_ptr<zq::mediacore::ValueMeta>>("meta");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QByteArray>("webMode");
    QTest::addColumn<bool>("damaged");

    QTest::newRow("lost meta, flag true") << metaWithLost(true) << true << QByteArray("0") << true;
    QTest::newRow("sound meta, flag false")
        << metaWithLost(false) << false << QByteArray("1") << false;
    QTest::newRow("no meta") << std::shared_ptr<zq::mediacore::ValueMeta>() << false
                             << QByteArray("1") << false;
}

void TestInputSourceItem::dragPayload()
{
    QFETCH(std::shared_ptr<zq::mediacore::ValueMeta>, meta);
    QFETCH(bool, valid);
    QFETCH(QByteArray, webMode);
    QFETCH(bool, damaged);

    const uint64_t id = 18446744073709551557ULL;
    const MetaQueryResult answer{meta, valid};
    const std::unique_ptr<QMimeData> payload(InputSourceDragPayload::make(id, answer));

    QCOMPARE(payload->formats(), (QStringList{QStringLiteral("materialId"), QStringLiteral("resId"),
                                              QStringLiteral("meta"), QStringLiteral("webMode"),
                                              QStringLiteral("damaged"), QStringLiteral("type"),
                                              QStringLiteral("size")}));
    QCOMPARE(payload->data(QStringLiteral("materialId")), QByteArray("18446744073709551557"));
    QCOMPARE(payload->data(QStringLiteral("resId")), QByteArray("18446744073709551557"));

    const QByteArray address = payload->data(QStringLiteral("meta"));
    QCOMPARE(address.size(), 8);
    QCOMPARE(address, pointerBytes(static_cast<const zq::mediacore::IMeta*>(meta.get())));
    zq::mediacore::IMeta* readBack = nullptr;
    std::memcpy(&readBack, address.constData(), sizeof readBack);
    QCOMPARE(readBack, static_cast<zq::mediacore::IMeta*>(meta.get()));

    QCOMPARE(payload->data(QStringLiteral("webMode")), webMode);
    const QByteArray lost = payload->data(QStringLiteral("damaged"));
    QCOMPARE(lost.size(), 1);
    QCOMPARE(lost, streamedBool(damaged));
    QCOMPARE(lost.at(0), damaged ? '\x01' : '\x00');
    QCOMPARE(payload->data(QStringLiteral("type")), QByteArray("1"));
    QCOMPARE(payload->data(QStringLiteral("size")), QByteArray("1"));
}

void TestInputSourceItem::dragStartsAtThirtyPixels_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<bool>("starts");

    QTest::newRow("29 right") << QPoint(29, 0) << false;
    QTest::newRow("30 right") << QPoint(30, 0) << true;
    QTest::newRow("29 up") << QPoint(0, -29) << false;
    QTest::newRow("30 down") << QPoint(0, 30) << true;
    QTest::newRow("21,21 is 29.7") << QPoint(21, 21) << false;
    QTest::newRow("18,24 is 30") << QPoint(18, 24) << true;
    QTest::newRow("-24,-18 is 30") << QPoint(-24, -18) << true;
}

void TestInputSourceItem::dragStartsAtThirtyPixels()
{
    QFETCH(QPoint, offset);
    QFETCH(bool, starts);

    InputSourceItem tile(streamKind);
    tile.setId(tileId);
    tile.setDragEnabled(true);
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QWindow* const window = tile.windowHandle();
    int queried = 0;
    uint64_t queriedId = 0;
    const auto meta = metaWithLost(false);
    // Answered as the box does, by a direct connection, right before the drag runs. The
    // offscreen platform ends QDrag::exec() at once, so the test never waits on a drag loop.
    connect(&tile, &InputSourceItem::signalGetInputSourceMeta, this,
            [&queried, &queriedId, &meta](uint64_t id) {
                ++queried;
                queriedId = id;
                return MetaQueryResult{meta, true};
            });

    const QPoint press(50, 35);
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, press);
    QTest::mouseMove(window, press + QPoint(offset.x() / 2, offset.y() / 2));
    QCOMPARE(queried, 0);
    QTest::mouseMove(window, press + offset);
    QCOMPARE(queried, starts ? 1 : 0);
    if (starts) {
        QCOMPARE(queriedId, tileId);
    }
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, press + offset);
    QVERIFY(tile.isSelected());
}

void TestInputSourceItem::dragNeedsDragEnabled()
{
    InputSourceItem tile(streamKind);
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QWindow* const window = tile.windowHandle();
    QSignalSpy queried(&tile, &InputSourceItem::signalGetInputSourceMeta);

    const QPoint press(50, 35);
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, press);
    QTest::mouseMove(window, press + QPoint(40, 40));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, press + QPoint(40, 40));
    QCOMPARE(queried.count(), 0);

    // Without a button held, moving is not dragging.
    tile.setDragEnabled(true);
    QTest::mouseMove(window, press);
    QTest::mouseMove(window, press + QPoint(40, 40));
    QCOMPARE(queried.count(), 0);

    // With the button held it is, and the spy's default answer gives the query's empty result.
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, press);
    QTest::mouseMove(window, press + QPoint(40, 40));
    QCOMPARE(queried.count(), 1);
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, press + QPoint(40, 40));
}

void TestInputSourceItem::translateLanguageAppliesTheLoadedLanguage()
{
    InputSourceItem capture(captureKind);
    InputSourceItem web(webKind);
    auto* const caption = child<QLabel>(capture, "captionLabel");
    const auto elided = [caption](const QString& full) {
        return QFontMetrics(caption->font()).elidedText(full, Qt::ElideRight, 142);
    };
    QCOMPARE(caption->text(), elided(QStringLiteral("Local Capture Device")));
    QCOMPARE(infoLabel(web)->text(), QStringLiteral("Native mode"));
    QCOMPARE(action(web, "Edit")->text(), QStringLiteral("Edit"));

    switchLanguage("zh_CN");
    capture.translateLanguage();
    web.translateLanguage();
    QCOMPARE(caption->text(), elided(QStringLiteral("本地采集设备")));
    QCOMPARE(flatten(hoverRows(capture)).mid(0, 2),
             (QStringList{QStringLiteral("名称"), QStringLiteral("本地采集设备")}));
    QCOMPARE(infoLabel(web)->text(), QStringLiteral("原生模式"));
    QStringList actions;
    for (QAction* entry : web.findChild<QMenu*>()->actions()) {
        actions << entry->text();
    }
    QCOMPARE(actions, (QStringList{QStringLiteral("重命名"), QStringLiteral("删除"),
                                   QStringLiteral("编辑")}));

    // A caption wider than 142 pixels is elided on the right; the tool-tip keeps it whole.
    switchLanguage("en_US");
    InputSourceItem narrow(captureKind);
    auto* const narrowCaption = child<QLabel>(narrow, "captionLabel");
    QFont wide = narrowCaption->font();
    wide.setPixelSize(40);
    narrowCaption->setFont(wide);
    narrow.translateLanguage();
    QVERIFY(narrowCaption->text() != trKey("LocalCaptureDevice"));
    QCOMPARE(narrowCaption->text(),
             QFontMetrics(wide).elidedText(trKey("LocalCaptureDevice"), Qt::ElideRight, 142));
    QCOMPARE(hoverRows(narrow).value(0).second, trKey("LocalCaptureDevice"));
}

void TestInputSourceItem::thumbnailIsStretchedToTheThumbnailArea()
{
    InputSourceItem tile(streamKind);
    QVERIFY(tile.thumbnail().isNull());
    QPixmap picture(320, 90);
    picture.fill(Qt::green);
    tile.setThumbnail(picture);
    QCOMPARE(tile.thumbnail().size(), QSize(168, 88));
    QCOMPARE(tile.thumbnail().toImage().pixelColor(0, 0), QColor(Qt::green));
    tile.setThumbnail(QPixmap());
    QVERIFY(tile.thumbnail().isNull());
}

void TestInputSourceItem::destructionFreesTheSurfaceAndDropsPendingUpdates()
{
    auto* const tile = new InputSourceItem(streamKind);
    tile->setOnline(true);
    tile->setPreviewChecked(false);
    QPointer<DiplayWind> shownSurface = surface(*tile);
    QVERIFY(!shownSurface.isNull());
    pushFrameFromAnotherThread(*tile, 64, 36, 25.0);
    // A frame-rate update, a repaint and the preview toggle are still queued.
    delete tile;
    QVERIFY(shownSurface.isNull());
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

void TestInputSourceItem::stateIsReadableAsProperties()
{
    InputSourceItem tile(13);
    tile.setId(18446744073709551557ULL);
    tile.setName(QStringLiteral("Studio Feed"));
    QCOMPARE(tile.property("id").toULongLong(), 18446744073709551557ULL);
    QCOMPARE(tile.property("online").toBool(), false);
    QCOMPARE(tile.property("previewing").toBool(), false);
    QCOMPARE(tile.property("runningSeconds").toInt(), 0);
    QCOMPARE(tile.property("name").toString(), QStringLiteral("Studio Feed"));

    tile.setOnline(true);
    tile.setRunningSeconds(3725);
    tile.setPreviewChecked(false);
    QCOMPARE(tile.property("online").toBool(), true);
    QCOMPARE(tile.property("previewing").toBool(), true);
    QCOMPARE(tile.property("runningSeconds").toInt(), 3725);
}

void TestInputSourceItem::runningTimeStopsAtTheLargestCount()
{
    InputSourceItem tile(13);
    tile.setOnline(true);
    tile.setRunningSeconds(std::numeric_limits<int>::max() - 1);
    auto* const duration = tile.findChild<QLabel*>(QStringLiteral("duration"));
    QTRY_COMPARE_WITH_TIMEOUT(duration->text(), QStringLiteral("596523:14:07"), 3000);
    QCOMPARE(tile.runningSeconds(), std::numeric_limits<int>::max());

    vexa::testing::WarningRecorder recorder;
    QTRY_VERIFY_WITH_TIMEOUT(
        recorder.find(QStringLiteral("the running time of source 0 cannot count further"))
            .has_value(),
        3000);
    QTest::qWait(1100);
    QCOMPARE(tile.runningSeconds(), std::numeric_limits<int>::max());
    QCOMPARE(duration->text(), QStringLiteral("596523:14:07"));
    QCOMPARE(recorder.count(QStringLiteral("the running time of source 0 cannot count further")),
             1);
}

void TestInputSourceItem::thumbnailOfAMediaDescriptionIsShown()
{
    InputSourceItem tile(13);
    zq::mediacore::Thumbnail picture;
    picture.width = 4;
    picture.height = 2;
    picture.rgba.assign(4 * 2 * 4, 0xff);
    tile.setThumbnail(picture);
    QVERIFY(!tile.thumbnail().isNull());

    // An empty picture leaves the one shown.
    tile.setThumbnail(zq::mediacore::Thumbnail());
    QVERIFY(!tile.thumbnail().isNull());
}

void TestInputSourceItem::inconsistentThumbnailIsRefused()
{
    InputSourceItem tile(13);
    tile.setId(9);
    zq::mediacore::Thumbnail picture;
    picture.width = 64;
    picture.height = 64;
    picture.rgba.assign(16, 0);
    vexa::testing::WarningRecorder recorder;
    tile.setThumbnail(picture);
    QVERIFY(tile.thumbnail().isNull());
    QCOMPARE(
        recorder.count(QStringLiteral("thumbnail of source 9 refused: 64 x 64 pixels in 16 bytes")),
        1);
}

void TestInputSourceItem::thumbnailTooWideForAnImageIsRefused()
{
    // Consistent sizes whose line length in bytes does not fit an int.
    InputSourceItem tile(13);
    tile.setId(5);
    zq::mediacore::Thumbnail picture;
    picture.width = 536870912;
    picture.height = 1;
    picture.rgba.resize(std::size_t(picture.width) * 4);
    QVERIFY(picture.isValid());
    vexa::testing::WarningRecorder recorder;
    tile.setThumbnail(picture);
    QVERIFY(tile.thumbnail().isNull());
    QCOMPARE(recorder.count(QStringLiteral("thumbnail of source 5 refused: 536870912 x 1 pixels "
                                           "in 2147483648 bytes")),
             1);
}

QTEST_MAIN(TestInputSourceItem)
#include "tst_inputsourceitem.moc"
