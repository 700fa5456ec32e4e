// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "ndirows.h"
#include "trkey.h"

#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QHBoxLayout>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

#include <thread>

using vexa::STResourceRenamedModel;
using vexa::inputsource::NdiDialog;
using vexa::inputsource::NdiListItem;
using vexa::inputsource::STInputSource;
using vexa::inputsource::trKey;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::ModalAnswerer;
using vexa::testing::WarningRecorder;

class TestNdiDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layoutNumbers();
    void openingShowsAnEmptyListUntilTheAnswer();
    void refreshKeepsTheOldRowsUntilTheAnswer();
    void addedSendersAreTickedDisabledAndIgnored();
    void selectAllLooksHalfCheckedCheckedAndUnchecked();
    void selectAllTicksOnlyWhatCanBeAdded();
    void twoRowsCannotShareAReceiverName();
    void aNameTheManagerReportsAsUsedIsRefused();
    void anAcceptedNameIsSentAtOnce();
    void confirmWithARepeatedNameNeitherAddsNorCloses();
    void closeWithARepeatedNameKeepsTheDialogOpen();
    void confirmAddsTickedRowsInListOrder();
    void confirmWithNothingTickedSendsAnEmptyAdd();
    void longSenderNameStaysWholeAndEditable();
    void withoutAManagerEveryPathWarns();
    void aNewListKeepsTicksNamesAndTheEditUnderWay();
    void aListArrivingUnderANoticeWaitsForIt();
    void unbindingStopsTheLists();
    void keyboard();
    void tabWalksTheNamesOfEveryNewList();
    void translationAndTheRowQuirk();
};

namespace {

// A dialog bound to a manager double on a real runtime thread.
struct BoundDialog
{
    BoundDialog()
        : mgr(std::make_shared<FakeInputSourceMgr>(&runtime))
    {
        dialog.setInputSourceMgr(mgr, &runtime);
    }
    ~BoundDialog() { dialog.unsetInputSourceMgr(); }

    // Shows and activates the dialog, as exec() would, so that its edits can take the focus.
    void open()
    {
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
    }
    void answer(const std::vector<STResourceRenamedModel>& models) { answerNdiList(*mgr, models); }
    std::vector<NdiListItem*> rows() const { return ndiRows(dialog); }
    QLabel* status() const { return labelOf(dialog, "ndiStatusLabel"); }
    vexa::widgets::PushButton* button(const char* name) const
    {
        return dialog.findChild<vexa::widgets::PushButton*>(QLatin1String(name));
    }
    void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
    void tick(int row) { QTest::mouseClick(checkButtonOf(*rows().at(row)), Qt::LeftButton); }
    // Types into a row's receiver name without finishing the edit.
    void type(int row, const QString& text)
    {
        QLineEdit* const editor = receiverEditorOf(*rows().at(row));
        editor->setFocus();
        editor->selectAll();
        QTest::keyClicks(editor, text);
    }
    // Ends the edit by moving on with Tab.
    void tabOn(int row) { QTest::keyClick(receiverEditorOf(*rows().at(row)), Qt::Key_Tab); }
    QString selectAllStyle() const
    {
        return button("ndiSelectAllBtn")->property("checkStyle").toString();
    }
    std::vector<STInputSource> added() const
    {
        return std::get<0>(mgr->lastArguments<std::vector<STInputSource>>("addInputSources"));
    }

    quandel::ZQRuntime runtime;
    std::shared_ptr<FakeInputSourceMgr> mgr;
    NdiDialog dialog;
};

std::vector<STResourceRenamedModel> threeSenders()
{
    return {ndiSender("192.168.1.10", "CAM-1"), ndiSender("192.168.1.11", "CAM-2", "Wide"),
            ndiSender("192.168.1.12", "CAM-3")};
}

// Every request ran on the runtime's thread, none on the GUI thread.
void verifyOnRuntime(const FakeInputSourceMgr& mgr)
{
    for (const auto& call : mgr.calls()) {
        QVERIFY2(call.onRuntimeThread, call.operation.c_str());
        QVERIFY2(call.thread != std::this_thread::get_id(), call.operation.c_str());
    }
}

} // namespace

void TestNdiDialog::layoutNumbers()
{
    NdiDialog dialog;
    QCOMPARE(dialog.minimumWidth(), 760);
    QCOMPARE(dialog.maximumWidth(), 760);
    QListWidget* const list = ndiList(dialog);
    QCOMPARE(list->minimumHeight(), 256);
    QCOMPARE(list->maximumHeight(), 256);
    QCOMPARE(list->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    auto* const main = qobject_cast<QVBoxLayout*>(dialog.dialogWidget()->layout());
    QVERIFY(main != nullptr);
    QCOMPARE(main->contentsMargins(), QMargins(24, 24, 24, 24));
    QCOMPARE(main->spacing(), 0);
    QCOMPARE(main->count(), 6);
    QCOMPARE(main->itemAt(2)->spacerItem()->sizeHint().height(), 20);
    QCOMPARE(main->itemAt(4)->spacerItem()->sizeHint().height(), 4);
    auto* const header = qobject_cast<QHBoxLayout*>(main->itemAt(0)->layout());
    QCOMPARE(header->contentsMargins(), QMargins(8, 8, 8, 8));
    QCOMPARE(header->spacing(), 8);
    auto* const buttons = qobject_cast<QHBoxLayout*>(main->itemAt(5)->layout());
    QCOMPARE(buttons->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(buttons->spacing(), 12);
    const auto* selectAll =
        dialog.findChild<vexa::widgets::PushButton*>(QStringLiteral("ndiSelectAllBtn"));
    QCOMPARE(selectAll->size(), QSize(20, 20));
    QVERIFY(selectAll->isCheckable());
    QCOMPARE(labelOf(dialog, "ndiIpHeader")->maximumWidth(), 130);
    QCOMPARE(labelOf(dialog, "ndiSenderHeader")->maximumWidth(), 190);
    QCOMPARE(labelOf(dialog, "ndiReceiverHeader")->maximumWidth(), 190);
    QCOMPARE(labelOf(dialog, "ndiStateHeader")->property("fontSize").toString(),
             QStringLiteral("M"));
    for (const char* name : {"ndiRefreshBtn", "ndiCancelBtn", "ndiConfirmBtn"}) {
        QCOMPARE(dialog.findChild<QWidget*>(QLatin1String(name))->maximumHeight(), 24);
    }
    QCOMPARE(dialog.findChild<QWidget*>(QStringLiteral("ndiConfirmBtn"))->property("style"),
             QVariant(QStringLiteral("general")));
    QCOMPARE(dialog.findChild<QWidget*>(QStringLiteral("ndiRefreshBtn"))->property("style"),
             QVariant(QStringLiteral("assist")));
}

void TestNdiDialog::openingShowsAnEmptyListUntilTheAnswer()
{
    BoundDialog bound;
    bound.answer(threeSenders());
    bound.open();
    QCOMPARE(bound.rows().size(), std::size_t{0});
    QCOMPARE(bound.status()->text(), trKey("NDIRefreshing"));
    QCOMPARE(bound.status()->property("style").toString(), QStringLiteral("grayHint"));
    QCOMPARE(bound.mgr->callCount("refreshNdiSources"), 1);

    bound.answer(threeSenders());
    QCOMPARE(bound.rows().size(), std::size_t{3});
    QCOMPARE(bound.rows().at(1)->ipAddress(), QStringLiteral("192.168.1.11"));
    QCOMPARE(bound.status()->text(), trKey("NDIRefreshed"));
    QCOMPARE(bound.status()->property("style").toString(), QStringLiteral("greenHint"));
    verifyOnRuntime(*bound.mgr);
}

void TestNdiDialog::refreshKeepsTheOldRowsUntilTheAnswer()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.click("ndiRefreshBtn");
    QCOMPARE(bound.mgr->callCount("refreshNdiSources"), 2);
    QCOMPARE(bound.rows().size(), std::size_t{3});
    QCOMPARE(bound.status()->text(), trKey("NDIRefreshing"));
    QCOMPARE(bound.status()->property("style").toString(), QStringLiteral("grayHint"));
    QVERIFY(bound.status()->isVisible());
    bound.answer({ndiSender("192.168.1.20", "NEW")});
    QCOMPARE(bound.rows().size(), std::size_t{1});
    QCOMPARE(bound.status()->text(), trKey("NDIRefreshed"));
    verifyOnRuntime(*bound.mgr);
}

void TestNdiDialog::addedSendersAreTickedDisabledAndIgnored()
{
    BoundDialog bound;
    bound.open();
    bound.answer(
        {ndiSender("192.168.1.10", "CAM-1", "", true), ndiSender("192.168.1.11", "CAM-2")});
    NdiListItem* const added = bound.rows().at(0);
    QVERIFY(added->isChecked());
    QVERIFY(!checkButtonOf(*added)->isEnabled());
    // The one selectable row ticked: all, not half, although the added row is ticked too.
    bound.tick(1);
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("checked"));
    QVERIFY(bound.button("ndiSelectAllBtn")->isChecked());
    // Select-all off leaves the added row ticked.
    bound.click("ndiSelectAllBtn");
    QVERIFY(added->isChecked());
    QVERIFY(!bound.rows().at(1)->isChecked());
    bound.click("ndiSelectAllBtn");
    bound.click("ndiConfirmBtn");
    const std::vector<STInputSource> sources = bound.added();
    QCOMPARE(sources.size(), std::size_t{1});
    QCOMPARE(sources.at(0).address, std::string("192.168.1.11"));
}

void TestNdiDialog::selectAllLooksHalfCheckedCheckedAndUnchecked()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    auto* const selectAll = bound.button("ndiSelectAllBtn");
    bound.tick(0);
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("halfChecked"));
    QVERIFY(selectAll->isChecked());
    bound.tick(1);
    bound.tick(2);
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("checked"));
    QVERIFY(selectAll->isChecked());
    bound.tick(2);
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("halfChecked"));
    bound.tick(0);
    bound.tick(1);
    QVERIFY(!selectAll->isChecked());
    // Unticking all leaves the look as it was.
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("halfChecked"));
}

void TestNdiDialog::selectAllTicksOnlyWhatCanBeAdded()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.tick(0);
    bound.click("ndiSelectAllBtn");
    // The half-checked button was checked: the click unchecks it, and every row with it.
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("checked"));
    for (NdiListItem* row : bound.rows()) {
        QVERIFY(!row->isChecked());
    }
    bound.click("ndiSelectAllBtn");
    for (NdiListItem* row : bound.rows()) {
        QVERIFY(row->isChecked());
    }
}

void TestNdiDialog::twoRowsCannotShareAReceiverName()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    bound.type(0, QStringLiteral("Wide"));
    bound.tabOn(0);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(answerer.labelTexts().contains(trKey("NameAlreadyExists")));
    QCOMPARE(bound.rows().at(0)->receiverName(), QStringLiteral("CAM-1"));
    // Found within the dialog: the manager was not asked, nothing renamed.
    QCOMPARE(bound.mgr->callCount("isNameRepeated"), 0);
    QCOMPARE(bound.mgr->callCount("renameNdiReceiver"), 0);
}

void TestNdiDialog::aNameTheManagerReportsAsUsedIsRefused()
{
    BoundDialog bound;
    bound.mgr->setRepeatedNames({"Studio"});
    bound.open();
    bound.answer(threeSenders());
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    bound.type(2, QStringLiteral("Studio"));
    bound.tabOn(2);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(bound.rows().at(2)->receiverName(), QStringLiteral("CAM-3"));
    QCOMPARE(bound.mgr->callCount("isNameRepeated"), 1);
    QCOMPARE(std::get<0>(bound.mgr->lastArguments<std::string>("isNameRepeated")),
             std::string("Studio"));
    QCOMPARE(bound.mgr->callCount("renameNdiReceiver"), 0);
    verifyOnRuntime(*bound.mgr);
}

void TestNdiDialog::anAcceptedNameIsSentAtOnce()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.type(2, QStringLiteral("Goal cam"));
    bound.tabOn(2);
    QCOMPARE(bound.mgr->callCount("renameNdiReceiver"), 1);
    const STResourceRenamedModel model =
        std::get<0>(bound.mgr->lastArguments<STResourceRenamedModel>("renameNdiReceiver"));
    QCOMPARE(model.ipAddress, std::string("192.168.1.12"));
    QCOMPARE(model.name, std::string("Goal cam"));
    // Not ticked, not confirmed: the rename went all the same.
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
    verifyOnRuntime(*bound.mgr);
}

void TestNdiDialog::confirmWithARepeatedNameNeitherAddsNorCloses()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.tick(0);
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    bound.type(0, QStringLiteral("Wide"));
    bound.click("ndiConfirmBtn");
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound.dialog.isVisible());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
    QTest::qWait(250);
    bound.click("ndiConfirmBtn");
    QVERIFY(!bound.dialog.isVisible());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    QCOMPARE(bound.added().at(0).name, std::string("CAM-1"));
}

void TestNdiDialog::closeWithARepeatedNameKeepsTheDialogOpen()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    bound.type(0, QStringLiteral("Wide"));
    bound.click("ndiCancelBtn");
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound.dialog.isVisible());
    QTest::qWait(250);
    bound.click("ndiCancelBtn");
    QVERIFY(!bound.dialog.isVisible());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

void TestNdiDialog::confirmAddsTickedRowsInListOrder()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.tick(2);
    bound.tick(1);
    bound.click("ndiConfirmBtn");
    const std::vector<STInputSource> sources = bound.added();
    QCOMPARE(sources.size(), std::size_t{2});
    QCOMPARE(sources.at(0).address, std::string("192.168.1.11"));
    QCOMPARE(sources.at(0).name, std::string("Wide"));
    QCOMPARE(sources.at(0).sourceType, 7);
    QCOMPARE(sources.at(1).address, std::string("192.168.1.12"));
    QCOMPARE(sources.at(1).name, std::string("CAM-3"));
    QVERIFY(!bound.dialog.isVisible());
    verifyOnRuntime(*bound.mgr);
}

void TestNdiDialog::confirmWithNothingTickedSendsAnEmptyAdd()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.click("ndiConfirmBtn");
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    QVERIFY(bound.added().empty());
    QVERIFY(!bound.dialog.isVisible());
    verifyOnRuntime(*bound.mgr);
}

void TestNdiDialog::longSenderNameStaysWholeAndEditable()
{
    BoundDialog bound;
    bound.open();
    const QString longName = QStringLiteral("Outside broadcast van 2"); // 23 characters
    bound.answer({ndiSender("192.168.1.30", longName.toStdString())});
    NdiListItem* const row = bound.rows().at(0);
    QCOMPARE(row->receiverName(), longName);
    QLineEdit* const editor = receiverEditorOf(*row);
    editor->setFocus();
    editor->end(false);
    QTest::keyClicks(editor, QStringLiteral("b"));
    bound.tabOn(0);
    QCOMPARE(
        std::get<0>(bound.mgr->lastArguments<STResourceRenamedModel>("renameNdiReceiver")).name,
        QString(longName + QLatin1Char('b')).toStdString());
}

void TestNdiDialog::withoutAManagerEveryPathWarns()
{
    WarningRecorder recorder;
    NdiDialog dialog;
    const auto warnedIn = [&recorder](const char* function) {
        for (const auto& message : recorder.messages()) {
            if (message.text == QLatin1String("nullptr == inputSourceMgr") &&
                message.function.contains(function)) {
                return true;
            }
        }
        return false;
    };
    dialog.setInputSourceMgr(std::weak_ptr<vexa::inputsource::IInputSourceMgr>(), nullptr);
    QVERIFY(warnedIn("setInputSourceMgr"));
    dialog.unsetInputSourceMgr();
    QVERIFY(warnedIn("unsetInputSourceMgr"));

    // A manager that goes after binding.
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    dialog.setInputSourceMgr(mgr, &runtime);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    answerNdiList(*mgr, threeSenders());
    mgr.reset();
    recorder.clear();

    dialog.findChild<QPushButton*>(QStringLiteral("ndiRefreshBtn"))->click();
    QVERIFY(warnedIn("updateNDIDeviceInfo"));
    QLineEdit* const editor = receiverEditorOf(*ndiRows(dialog).at(0));
    editor->setFocus();
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("Fresh"));
    QTest::keyClick(editor, Qt::Key_Tab);
    QVERIFY(warnedIn("slotCheckReceiverNameRepeated"));
    QVERIFY(warnedIn("slotReceiverNameChanged"));
    dialog.findChild<QPushButton*>(QStringLiteral("ndiConfirmBtn"))->click();
    QVERIFY(warnedIn("onConfirmClicked"));
    QVERIFY(dialog.isVisible());
    dialog.unsetInputSourceMgr();
    QVERIFY(warnedIn("unsetInputSourceMgr"));
}

void TestNdiDialog::aNewListKeepsTicksNamesAndTheEditUnderWay()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    bound.tick(1);
    bound.type(2, QStringLiteral("Goal cam"));
    bound.tabOn(2);
    bound.type(0, QStringLiteral("Half"));
    QLineEdit* editor = receiverEditorOf(*bound.rows().at(0));
    QVERIFY(editor->hasFocus());

    // Discovery finds one more sender; the manager's list still carries the old default names.
    std::vector<STResourceRenamedModel> more = threeSenders();
    more.insert(more.begin(), ndiSender("192.168.1.9", "CAM-0"));
    bound.answer(more);
    const std::vector<NdiListItem*> rows = bound.rows();
    QCOMPARE(rows.size(), std::size_t{4});
    QVERIFY(!rows.at(0)->isChecked());
    QVERIFY(rows.at(2)->isChecked());
    QCOMPARE(rows.at(3)->receiverName(), QStringLiteral("Goal cam"));
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("halfChecked"));
    QVERIFY(bound.button("ndiSelectAllBtn")->isChecked());

    editor = receiverEditorOf(*rows.at(1));
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->text(), QStringLiteral("Half"));
    QTest::keyClicks(editor, QStringLiteral(" way"));
    bound.tabOn(1);
    QCOMPARE(
        std::get<0>(bound.mgr->lastArguments<STResourceRenamedModel>("renameNdiReceiver")).name,
        std::string("Half way"));
    // Nothing was renamed or asked for the rows that went.
    QCOMPARE(bound.mgr->callCount("renameNdiReceiver"), 2);
}

void TestNdiDialog::aListArrivingUnderANoticeWaitsForIt()
{
    BoundDialog bound;
    bound.open();
    bound.answer(threeSenders());
    ModalAnswerer answerer;
    answerer.whenShown([&bound](QWidget* notice) {
        // Discovery answers while the operator reads the notice.
        answerNdiList(*bound.mgr, {ndiSender("192.168.1.40", "LATE")});
        QCOMPARE(bound.rows().size(), std::size_t{3});
        notice->findChild<QPushButton*>(QStringLiteral("firstBtn"))->click();
    });
    bound.type(0, QStringLiteral("Wide"));
    bound.tabOn(0);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QTRY_COMPARE(bound.rows().size(), std::size_t{1});
    QCOMPARE(bound.rows().at(0)->ipAddress(), QStringLiteral("192.168.1.40"));
}

void TestNdiDialog::unbindingStopsTheLists()
{
    BoundDialog bound;
    bound.open();
    bound.dialog.unsetInputSourceMgr();
    bound.answer(threeSenders());
    QCOMPARE(bound.rows().size(), std::size_t{0});
    QCOMPARE(bound.status()->text(), trKey("NDIRefreshing"));
    bound.dialog.setInputSourceMgr(bound.mgr, &bound.runtime);
}

void TestNdiDialog::keyboard()
{
    BoundDialog bound;
    bound.open();
    bound.answer({ndiSender("192.168.1.10", "CAM-1", "", true), ndiSender("192.168.1.11", "CAM-2"),
                  ndiSender("192.168.1.12", "CAM-3")});
    QListWidget* const list = ndiList(bound.dialog);
    list->setFocus();
    list->setCurrentRow(1);
    QTest::keyClick(list, Qt::Key_Space);
    QVERIFY(bound.rows().at(1)->isChecked());
    QCOMPARE(bound.selectAllStyle(), QStringLiteral("halfChecked"));
    // An added row does not change.
    list->setCurrentRow(0);
    QTest::keyClick(list, Qt::Key_Space);
    QVERIFY(bound.rows().at(0)->isChecked());

    // Tab walks the receiver names in list order.
    QTest::keyClick(list, Qt::Key_Tab);
    QVERIFY(receiverEditorOf(*bound.rows().at(0))->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(receiverEditorOf(*bound.rows().at(1))->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(receiverEditorOf(*bound.rows().at(2))->hasFocus());

    // Enter confirms.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    QCOMPARE(bound.added().size(), std::size_t{1});
    QVERIFY(!bound.dialog.isVisible());
}

void TestNdiDialog::tabWalksTheNamesOfEveryNewList()
{
    BoundDialog bound;
    bound.open();
    bound.answer({ndiSender("192.168.1.10", "CAM-1"), ndiSender("192.168.1.11", "CAM-2")});
    // A second list replaces the rows of the first.
    bound.answer({ndiSender("192.168.1.20", "CAM-A"), ndiSender("192.168.1.21", "CAM-B", "", true),
                  ndiSender("192.168.1.22", "CAM-C")});
    QListWidget* const list = ndiList(bound.dialog);
    list->setFocus();
    for (NdiListItem* const row : bound.rows()) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), receiverEditorOf(*row));
    }
    for (const char* name : {"ndiRefreshBtn", "ndiCancelBtn", "ndiConfirmBtn"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), bound.button(name));
    }
    // And back again.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), receiverEditorOf(*bound.rows().back()));
}

void TestNdiDialog::translationAndTheRowQuirk()
{
    BoundDialog bound;
    bound.open();
    bound.answer({ndiSender("192.168.1.10", "CAM-1", "", true)});
    bound.dialog.translateLanguage();
    QCOMPARE(bound.dialog.title(), trKey("AddNdiMedia"));
    QCOMPARE(labelOf(bound.dialog, "ndiIpHeader")->text(), trKey("IPAddress"));
    QCOMPARE(labelOf(bound.dialog, "ndiStateHeader")->text(), trKey("State"));
    QCOMPARE(bound.button("ndiConfirmBtn")->text(), trKey("OK"));
    QCOMPARE(bound.button("ndiSelectAllBtn")->accessibleName(), trKey("SelectAll"));
    QCOMPARE(bound.status()->text(), trKey("NDIRefreshed"));
    NdiListItem* const row = bound.rows().at(0);
    QVERIFY(row->isAdded());
    QCOMPARE(labelOf(*row, "ndiStateLabel")->text(), trKey("NotAdded"));
    QCOMPARE(checkButtonOf(*row)->accessibleName(), QStringLiteral("CAM-1, ") + trKey("NotAdded"));
}

QTEST_MAIN(TestNdiDialog)
#include "tst_ndidialog.moc"
