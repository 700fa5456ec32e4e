// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "ndirows.h"
#include "trkey.h"

#include <vexainputsourcewidget/ndibox.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <QtTest>

using vexa::inputsource::NdiBox;
using vexa::inputsource::NdiDialog;
using vexa::inputsource::trKey;
using vexa::testing::FakeInputSourceMgr;

class TestNdiBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titleAndType();
    void addOpensTheDialogBoundToTheBoxManager();
    void unbindingTheBoxUnbindsTheDialog();
    void translationReachesTheDialog();
    void theDialogOutlivesItsBoxWhileOpen();
};

namespace {

// The box's dialog: a window of its own, found among the top-level widgets.
QPointer<NdiDialog> dialogOf()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* const dialog = qobject_cast<NdiDialog*>(widget)) {
            return dialog;
        }
    }
    return nullptr;
}

// Clicks the box's add button once the event loop runs, runs `whileOpen` with the open dialog
// and returns once the dialog's loop is over.
void openAndRun(NdiBox& box, const std::function<void(NdiDialog&)>& whileOpen)
{
    QTimer::singleShot(0, [whileOpen] {
        QTRY_VERIFY(dialogOf() != nullptr && dialogOf()->isVisible());
        whileOpen(*dialogOf());
    });
    box.findChild<QPushButton*>(QStringLiteral("boxAddButton"))->click();
}

} // namespace

void TestNdiBox::titleAndType()
{
    NdiBox box;
    QCOMPARE(box.findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text(),
             QStringLiteral("NDI"));
    QCOMPARE(box.resourceType(), EnResourceType::NdiSource);
    QPointer<NdiDialog> dialog = dialogOf();
    QVERIFY(dialog != nullptr);
    QVERIFY(dialog->parentWidget() == nullptr);
}

void TestNdiBox::addOpensTheDialogBoundToTheBoxManager()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    NdiBox box;
    box.setZQRuntime(&runtime);
    box.setInputSourceMgr(mgr);
    bool shown = false;
    openAndRun(box, [&](NdiDialog& dialog) {
        shown = true;
        QVERIFY(dialog.isModal());
        QCOMPARE(mgr->callCount("refreshNdiSources"), 1);
        answerNdiList(*mgr, {ndiSender("10.1.1.1", "CAM")});
        QCOMPARE(ndiRows(dialog).size(), std::size_t{1});
        dialog.close();
    });
    QVERIFY(shown);
    // Reused for the next opening, emptied again.
    openAndRun(box, [&](NdiDialog& dialog) {
        QCOMPARE(ndiRows(dialog).size(), std::size_t{0});
        QCOMPARE(mgr->callCount("refreshNdiSources"), 2);
        dialog.close();
    });
    for (const auto& call : mgr->calls()) {
        QVERIFY(call.onRuntimeThread);
    }
    box.unsetInputSourceMgr();
}

void TestNdiBox::unbindingTheBoxUnbindsTheDialog()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    NdiBox box;
    box.setZQRuntime(&runtime);
    box.setInputSourceMgr(mgr);
    box.unsetInputSourceMgr();
    vexa::testing::WarningRecorder recorder;
    openAndRun(box, [&](NdiDialog& dialog) {
        answerNdiList(*mgr, {ndiSender("10.1.1.1", "CAM")});
        QCOMPARE(ndiRows(dialog).size(), std::size_t{0});
        dialog.close();
    });
    QCOMPARE(mgr->callCount("refreshNdiSources"), 0);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 1);
}

void TestNdiBox::translationReachesTheDialog()
{
    NdiBox box;
    QPointer<NdiDialog> dialog = dialogOf();
    dialog->setTitle(QString());
    box.translateLanguage();
    QCOMPARE(dialog->title(), trKey("AddNdiMedia"));
}

void TestNdiBox::theDialogOutlivesItsBoxWhileOpen()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QPointer<NdiBox> box = new NdiBox;
    box->setZQRuntime(&runtime);
    box->setInputSourceMgr(mgr);
    box->show();
    QPointer<NdiDialog> open;
    openAndRun(*box, [&](NdiDialog& dialog) {
        open = &dialog;
        answerNdiList(*mgr, {ndiSender("10.1.1.1", "CAM")});
        delete box;
        QVERIFY(dialog.isVisible());
        // Still usable: the operator finishes what they started.
        dialog.findChild<QPushButton*>(QStringLiteral("ndiConfirmBtn"))->click();
    });
    QVERIFY(box.isNull());
    QCOMPARE(mgr->callCount("addInputSources"), 1);
    QTRY_VERIFY(open.isNull());
    QVERIFY(dialogOf() == nullptr);
}

QTEST_MAIN(TestNdiBox)
#include "tst_ndibox.moc"
