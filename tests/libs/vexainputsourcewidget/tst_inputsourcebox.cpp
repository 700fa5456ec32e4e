// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "languagefiles.h"
#include "trkey.h"
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>

#include <XJ/Utils/flowlayout.h>
#include <vexa/widgets/pushbutton.h>

#include <QAction>
#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <vector>

using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;
using vexa::inputsource::trKey;

namespace {

template <typename T>
T* part(const InputSourceBox& box, const char* name)
{
    return box.findChild<T*>(QLatin1String(name));
}

QPushButton* headerButton(const InputSourceBox& box)
{
    return part<QPushButton>(box, "boxHeaderButton");
}

QLabel* arrow(const InputSourceBox& box)
{
    return part<QLabel>(box, "boxArrowLabel");
}

vexa::widgets::PushButton* previewSwitch(const InputSourceBox& box)
{
    return part<vexa::widgets::PushButton>(box, "boxPreviewButton");
}

vexa::widgets::PushButton* addButton(const InputSourceBox& box)
{
    return part<vexa::widgets::PushButton>(box, "boxAddButton");
}

QWidget* itemArea(const InputSourceBox& box)
{
    return part<QWidget>(box, "boxItemArea");
}

// The answer findItem() must give, as a walk of the layout from its end would find it.
InputSourceItem* lastInLayout(const InputSourceBox& box, uint64_t id)
{
    QLayout* const layout = itemArea(box)->layout();
    for (int index = layout->count() - 1; index >= 0; --index) {
        auto* const tile = qobject_cast<InputSourceItem*>(layout->itemAt(index)->widget());
        if (tile != nullptr && tile->id() == id) {
            return tile;
        }
    }
    return nullptr;
}

void switchLanguage(const char* code)
{
    InputSourceTranslateManager::instance().translator().switchLanguage(QLatin1String(code));
}

// Remembers the keys that reached it after the box passed them on.
class KeyWitness : public QWidget
{
public:
    std::vector<int> keys;

protected:
    void keyPressEvent(QKeyEvent* event) override { keys.push_back(event->key()); }
};

} // namespace

class TestInputSourceBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void frameIsBuiltCollapsed();
    void setTitleAndButtonVisibility();
    void setAddVisibleDisablesWithoutHiding();
    void setPreviewStateOnlyTurnsTheSwitch();
    void expandingAnEmptyBoxTurnsTheArrowOnly();
    void collapsingHidesTheTiles();
    void addButtonEmitsSignalAddClicked();
    void resultSignalsDefaultWhenUnanswered();

    void findItemOnEmptyBoxIsNull();
    void findItemAnswersTheLastAddedOfAnId();
    void findItemFollowsRemovals();

    void plainClickSelectsOneAndClearsTheOthers();
    void ctrlClickAddsAndRemovesFromTheSelection();
    void batchSelectKeepsDuplicatesAndRemovesOneCopy();
    void clearItemSelectEmptiesSilently();
    void removingATileDropsItFromTheSelection();

    void deleteKeyInCaptureBoxDoesNothingButPassesOn();
    void deleteKeyElsewhereStartsBatchDeleteEvenWhenEmpty();

    void tileSignalsReachTheBox();
    void translateLanguageRefreshesHeaderAndTiles();
};

void TestInputSourceBox::initTestCase()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    for (const char* code : {"zh_CN", "en_US"}) {
        QVERIFY(translator.load(languageFile(code)));
    }
    switchLanguage("en_US");
}

void TestInputSourceBox::frameIsBuiltCollapsed()
{
    InputSourceBox box;
    QCOMPARE(box.property("style").toString(), QStringLiteral("BG3"));
    QVERIFY(box.testAttribute(Qt::WA_StyledBackground));
    QCOMPARE(box.focusPolicy(), Qt::StrongFocus);

    QWidget* const header = part<QWidget>(box, "boxHeader");
    QVERIFY(header != nullptr);
    QCOMPARE(header->minimumHeight(), 32);
    QCOMPARE(header->maximumHeight(), 32);
    QCOMPARE(headerButton(box)->parentWidget(), header);
    QCOMPARE(headerButton(box)->maximumHeight(), 20);
    QVERIFY(headerButton(box)->isCheckable());
    QVERIFY(!headerButton(box)->isChecked());

    // Image, title, preview switch, add button, in that order, inside the header button.
    auto* const row = qobject_cast<QHBoxLayout*>(headerButton(box)->layout());
    QVERIFY(row != nullptr);
    QCOMPARE(row->count(), 4);
    QCOMPARE(row->itemAt(0)->widget(), arrow(box));
    QCOMPARE(row->itemAt(1)->widget(), part<QLabel>(box, "boxTitleLabel"));
    QCOMPARE(row->itemAt(2)->widget(), previewSwitch(box));
    QCOMPARE(row->itemAt(3)->widget(), addButton(box));
    QCOMPARE(row->contentsMargins(), QMargins(0, 0, 0, 0));

    QCOMPARE(arrow(box)->size(), QSize(20, 20));
    QCOMPARE(arrow(box)->property("labelImage").toString(), QStringLiteral("right"));
    QCOMPARE(previewSwitch(box)->size(), QSize(20, 20));
    QCOMPARE(previewSwitch(box)->property("imageBtn").toString(), QStringLiteral("display"));
    QVERIFY(previewSwitch(box)->isCheckable());
    QVERIFY(previewSwitch(box)->isChecked());
    QCOMPARE(addButton(box)->size(), QSize(20, 20));
    QCOMPARE(addButton(box)->property("imageBtn").toString(), QStringLiteral("add"));

    auto* const flow = qobject_cast<XJ::Utils::FlowLayout*>(itemArea(box)->layout());
    QVERIFY(flow != nullptr);
    QCOMPARE(flow->horizontalSpacing(), 8);
    QCOMPARE(flow->verticalSpacing(), 8);
    QCOMPARE(flow->contentsMargins(), QMargins(0, 0, 0, 0));
    QVERIFY(itemArea(box)->isHidden());

    auto* const column = qobject_cast<QVBoxLayout*>(box.layout());
    QVERIFY(column != nullptr);
    QCOMPARE(column->spacing(), 0);
    QCOMPARE(column->contentsMargins(), QMargins(8, 0, 8, 0));
    QCOMPARE(column->itemAt(0)->widget(), header);
    QCOMPARE(column->itemAt(1)->widget(), itemArea(box));
    QCOMPARE(box.itemCount(), 0);
    QVERIFY(box.inputSourceMgr().expired());
}

void TestInputSourceBox::setTitleAndButtonVisibility()
{
    InputSourceBox box;
    box.show();
    box.setTitle(QStringLiteral("Streams"));
    QCOMPARE(part<QLabel>(box, "boxTitleLabel")->text(), QStringLiteral("Streams"));

    box.setAddBtnVisible(false);
    QVERIFY(addButton(box)->isHidden());
    box.setAddBtnVisible(true);
    QVERIFY(!addButton(box)->isHidden());

    box.setPreviewBtnVisible(false);
    QVERIFY(previewSwitch(box)->isHidden());
    box.setPreviewBtnVisible(true);
    QVERIFY(!previewSwitch(box)->isHidden());
}

void TestInputSourceBox::setAddVisibleDisablesWithoutHiding()
{
    InputSourceBox box;
    box.show();

    box.setAddVisible(false);
    QVERIFY(addButton(box)->isVisible());
    QVERIFY(!addButton(box)->isEnabled());
    QVERIFY(addButton(box)->property("imageBtn").toString().isEmpty());

    box.setAddVisible(true);
    QVERIFY(addButton(box)->isEnabled());
    QCOMPARE(addButton(box)->property("imageBtn").toString(), QStringLiteral("close"));
}

void TestInputSourceBox::setPreviewStateOnlyTurnsTheSwitch()
{
    BoundBox bound;
    QSignalSpy clicked(&bound.box, &InputSourceBox::signalPreviewClicked);

    bound.box.setPreviewState(true);
    QVERIFY(!previewSwitch(bound.box)->isChecked());
    bound.box.setPreviewState(false);
    QVERIFY(previewSwitch(bound.box)->isChecked());

    BoundBox::settle();
    QCOMPARE(bound.mgr->callCount("previewInputSources"), 0);
    QCOMPARE(clicked.count(), 0);
}

void TestInputSourceBox::expandingAnEmptyBoxTurnsTheArrowOnly()
{
    InputSourceBox box;
    box.show();
    QTest::mouseClick(headerButton(box), Qt::LeftButton);
    QVERIFY(headerButton(box)->isChecked());
    QCOMPARE(arrow(box)->property("labelImage").toString(), QStringLiteral("down"));
    QVERIFY(itemArea(box)->isHidden());

    QTest::mouseClick(headerButton(box), Qt::LeftButton);
    QCOMPARE(arrow(box)->property("labelImage").toString(), QStringLiteral("right"));
    QVERIFY(itemArea(box)->isHidden());
}

void TestInputSourceBox::collapsingHidesTheTiles()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QVERIFY(headerButton(bound.box)->isChecked());
    QVERIFY(itemArea(bound.box)->isVisible());

    QTest::mouseClick(headerButton(bound.box), Qt::LeftButton);
    QVERIFY(itemArea(bound.box)->isHidden());
    QCOMPARE(arrow(bound.box)->property("labelImage").toString(), QStringLiteral("right"));
    QCOMPARE(bound.box.itemCount(), 2);

    QTest::mouseClick(headerButton(bound.box), Qt::LeftButton);
    QVERIFY(itemArea(bound.box)->isVisible());
}

void TestInputSourceBox::addButtonEmitsSignalAddClicked()
{
    InputSourceBox box;
    box.show();
    QSignalSpy added(&box, &InputSourceBox::signalAddClicked);
    QTest::mouseClick(addButton(box), Qt::LeftButton);
    QCOMPARE(added.count(), 1);
}

void TestInputSourceBox::resultSignalsDefaultWhenUnanswered()
{
    InputSourceBox box;
    QVERIFY(!box.signalCheckInputSourceBeUsed(7));
    QCOMPARE(box.signalGetRenderWidget(), nullptr);

    QWidget renderer;
    connect(&box, &InputSourceBox::signalGetRenderWidget, &renderer,
            [&renderer] { return &renderer; });
    QCOMPARE(box.signalGetRenderWidget(), &renderer);
}

void TestInputSourceBox::findItemOnEmptyBoxIsNull()
{
    InputSourceBox box;
    QCOMPARE(box.findItem(0), nullptr);
    QCOMPARE(box.findItem(42), nullptr);
}

void TestInputSourceBox::findItemAnswersTheLastAddedOfAnId()
{
    BoundBox bound;
    bound.addOwn({5, 6, 5});
    QCOMPARE(bound.box.itemCount(), 3);

    InputSourceItem* const found = bound.box.findItem(5);
    QVERIFY(found != nullptr);
    QCOMPARE(found, lastInLayout(bound.box, 5));
    QCOMPARE(itemArea(bound.box)->layout()->indexOf(found), 2);
    QCOMPARE(bound.box.findItem(6), lastInLayout(bound.box, 6));
    QCOMPARE(bound.box.findItem(7), nullptr);
}

void TestInputSourceBox::findItemFollowsRemovals()
{
    BoundBox bound;
    bound.addOwn({5, 6, 5});
    InputSourceItem* const newer = bound.box.findItem(5);

    // The manager deletes one tile of the id per id it names: the one findItem answers.
    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({5}); });
    BoundBox::settle();
    QCOMPARE(bound.box.itemCount(), 2);
    InputSourceItem* const older = bound.box.findItem(5);
    QVERIFY(older != nullptr);
    QVERIFY(older != newer);
    QCOMPARE(older, lastInLayout(bound.box, 5));

    // A tile someone else destroys is not answered any more.
    delete older;
    QCOMPARE(bound.box.findItem(5), nullptr);
    QCOMPARE(bound.box.itemCount(), 1);
}

void TestInputSourceBox::plainClickSelectsOneAndClearsTheOthers()
{
    BoundBox bound;
    bound.addOwn({1, 2, 3});
    QSignalSpy selected(&bound.box, &InputSourceBox::signalItemSelect);

    QTest::mouseClick(bound.tile(1), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QTest::mouseClick(bound.tile(2), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QVERIFY(bound.tile(1)->isSelected());
    QVERIFY(bound.tile(2)->isSelected());
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{1, 2}));

    QTest::mouseClick(bound.tile(3), Qt::LeftButton, Qt::NoModifier, QPoint(40, 30));
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{3}));
    QVERIFY(!bound.tile(1)->isSelected());
    QVERIFY(!bound.tile(2)->isSelected());
    QVERIFY(bound.tile(3)->isSelected());
    QCOMPARE(selected.count(), 3);
}

void TestInputSourceBox::ctrlClickAddsAndRemovesFromTheSelection()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QSignalSpy selected(&bound.box, &InputSourceBox::signalItemSelect);

    QTest::mouseClick(bound.tile(2), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QTest::mouseClick(bound.tile(1), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{2, 1}));
    QVERIFY(bound.tile(1)->signalCheckMultiSelect());

    QTest::mouseClick(bound.tile(2), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{1}));
    QVERIFY(!bound.tile(1)->signalCheckMultiSelect());
    QCOMPARE(selected.count(), 3);
}

void TestInputSourceBox::batchSelectKeepsDuplicatesAndRemovesOneCopy()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QSignalSpy selected(&bound.box, &InputSourceBox::signalItemSelect);
    InputSourceItem* const tile = bound.tile(1);

    Q_EMIT tile->signalBatchSelect(1, true);
    Q_EMIT tile->signalBatchSelect(1, true);
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{1, 1}));
    // One distinct tile, yet two entries: the box answers "several".
    QVERIFY(tile->signalCheckMultiSelect());

    Q_EMIT tile->signalBatchSelect(1, false);
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{1}));
    QVERIFY(!tile->signalCheckMultiSelect());

    // Removing an id that is not selected changes nothing but is still announced.
    Q_EMIT tile->signalBatchSelect(2, false);
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{1}));
    QCOMPARE(selected.count(), 4);
}

void TestInputSourceBox::clearItemSelectEmptiesSilently()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QTest::mouseClick(bound.tile(1), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QTest::mouseClick(bound.tile(2), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QSignalSpy selected(&bound.box, &InputSourceBox::signalItemSelect);

    bound.box.clearItemSelect();
    QVERIFY(bound.box.selectedIds().empty());
    QVERIFY(!bound.tile(1)->isSelected());
    QVERIFY(!bound.tile(2)->isSelected());
    QCOMPARE(selected.count(), 0);
}

void TestInputSourceBox::removingATileDropsItFromTheSelection()
{
    BoundBox bound;
    bound.addOwn({1, 2});
    QTest::mouseClick(bound.tile(1), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));
    QTest::mouseClick(bound.tile(2), Qt::LeftButton, Qt::ControlModifier, QPoint(40, 30));

    bound.mgr->fireOnRuntime([](auto& mgr) { mgr.signalResourcesDeleted({1}); });
    BoundBox::settle();
    QCOMPARE(bound.box.selectedIds(), (std::vector<uint64_t>{2}));
}

void TestInputSourceBox::deleteKeyInCaptureBoxDoesNothingButPassesOn()
{
    KeyWitness parent;
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    bound.box.setParent(&parent);
    parent.show();
    bound.box.show();
    bound.addOwn({1});
    Q_EMIT bound.tile(1)->signalBatchSelect(1, true);

    QTest::keyClick(&bound.box, Qt::Key_Delete);
    QTest::keyClick(&bound.box, Qt::Key_A);
    BoundBox::settle();
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 0);
    QCOMPARE(parent.keys, (std::vector<int>{Qt::Key_Delete, Qt::Key_A}));
}

void TestInputSourceBox::deleteKeyElsewhereStartsBatchDeleteEvenWhenEmpty()
{
    KeyWitness parent;
    BoundBox bound;
    bound.box.setParent(&parent);
    parent.show();
    bound.box.show();
    bound.addOwn({1});

    QTest::keyClick(&bound.box, Qt::Key_Delete);
    QVERIFY(bound.mgr->waitForCalls("deleteInputSources", 1));
    QVERIFY(
        std::get<0>(bound.mgr->lastArguments<std::vector<uint64_t>>("deleteInputSources")).empty());
    QCOMPARE(parent.keys, (std::vector<int>{Qt::Key_Delete}));

    Q_EMIT bound.tile(1)->signalBatchSelect(1, true);
    QTest::keyClick(&bound.box, Qt::Key_Delete);
    QVERIFY(bound.mgr->waitForCalls("deleteInputSources", 2));
    QCOMPARE(std::get<0>(bound.mgr->lastArguments<std::vector<uint64_t>>("deleteInputSources")),
             (std::vector<uint64_t>{1}));
}

void TestInputSourceBox::tileSignalsReachTheBox()
{
    BoundBox bound(EnResourceType::WebPage);
    bound.addOwn({9});
    QSignalSpy doubleClicked(&bound.box, &InputSourceBox::signalDoubleClicked);
    QSignalSpy edited(&bound.box, &InputSourceBox::signalItemEdit);

    QTest::mouseDClick(bound.tile(9), Qt::LeftButton, Qt::NoModifier, QPoint(40, 30));
    QCOMPARE(doubleClicked.count(), 1);
    QCOMPARE(doubleClicked.at(0).at(0).value<uint64_t>(), uint64_t(9));

    Q_EMIT bound.tile(9)->signalEdit(9);
    QCOMPARE(edited.count(), 1);
    QCOMPARE(edited.at(0).at(0).value<uint64_t>(), uint64_t(9));
}

void TestInputSourceBox::translateLanguageRefreshesHeaderAndTiles()
{
    BoundBox bound(EnResourceType::LocalCaptureDevice);
    bound.addOwn({1});
    QSignalSpy translated(&bound.box, &InputSourceBox::signalTranslateLanguage);

    switchLanguage("zh_CN");
    bound.box.translateLanguage();
    const QString chineseAdd = trKey("Add");
    QCOMPARE(addButton(bound.box)->toolTip(), chineseAdd);
    // The switch is checked (preview off), so it offers to enable.
    QCOMPARE(previewSwitch(bound.box)->toolTip(), trKey("EnablePreview"));
    const QString chineseCaption =
        bound.tile(1)->findChild<QLabel*>(QStringLiteral("captionLabel"))->text();
    QCOMPARE(translated.count(), 1);

    switchLanguage("en_US");
    bound.box.setPreviewState(true);
    bound.box.translateLanguage();
    QCOMPARE(addButton(bound.box)->toolTip(), trKey("Add"));
    QVERIFY(trKey("Add") != chineseAdd);
    QCOMPARE(previewSwitch(bound.box)->toolTip(), trKey("DisablePreview"));
    QVERIFY(bound.tile(1)->findChild<QLabel*>(QStringLiteral("captionLabel"))->text() !=
            chineseCaption);
    QCOMPARE(translated.count(), 2);
}

QTEST_MAIN(TestInputSourceBox)
#include "tst_inputsourcebox.moc"
