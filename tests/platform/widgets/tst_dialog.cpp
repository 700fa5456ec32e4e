// SPDX-License-Identifier: MIT
#include <vexa/widgets/dialog.h>
#include <vexa/widgets/pushbutton.h>

#include <vexainputsourcewidget/testing/modalanswerer.h>

#include <QCloseEvent>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

using vexa::testing::ModalAnswerer;
using vexa::widgets::Dialog;
using vexa::widgets::PushButton;

namespace {

// A dialog that, like one guarding an unfinished input, may refuse to close.
class GuardedDialog : public Dialog
{
public:
    bool guard = false;

protected:
    void closeEvent(QCloseEvent* event) override
    {
        if (guard) {
            event->ignore();
            return;
        }
        Dialog::closeEvent(event);
    }
};

void addContent(Dialog& dialog)
{
    auto* const layout = new QVBoxLayout(dialog.dialogWidget());
    layout->setContentsMargins(28, 28, 28, 28);
    layout->addWidget(new QLabel(QStringLiteral("Media name"), dialog.dialogWidget()));
}

QWidget* titleBar(const Dialog& dialog)
{
    return dialog.findChild<QWidget*>(QStringLiteral("titleBar"));
}

// The title bar's centre in the coordinates of the dialog's window.
// Content, and room on every side, so that drags in any direction stay on the screen.
bool showAwayFromTheCorner(Dialog& dialog)
{
    addContent(dialog);
    dialog.move(100, 100);
    dialog.show();
    return QTest::qWaitForWindowExposed(&dialog);
}

QPoint titleBarCentre(const Dialog& dialog)
{
    const QWidget* const bar = titleBar(dialog);
    return bar->mapTo(&dialog, bar->rect().center());
}

} // namespace

class TestDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isFramelessWithItsOwnTitleBar();
    void contentSitsBelowTheTitleBar();
    void setTitleShowsInTheTitleBar();
    void draggingTheTitleBarMovesTheWindow();
    void onlyTheLeftButtonDrags();
    void draggingTheContentDoesNotMoveTheWindow();
    void closeButtonEndsExecWithZero();
    void closeButtonGoesThroughCloseEvent();
    void escapeEndsExecWithZero();
    void closeButtonNeverTakesTheFocus();
};

void TestDialog::isFramelessWithItsOwnTitleBar()
{
    Dialog dialog;
    QVERIFY(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(titleBar(dialog) != nullptr);
    QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("titleLabel")) != nullptr);
    QVERIFY(dialog.findChild<PushButton*>(QStringLiteral("closeBtn")) != nullptr);
    QVERIFY(dialog.findChild<QWidget*>(QStringLiteral("dialogFrame")) != nullptr);
    QCOMPARE(dialog.dialogWidget(), dialog.findChild<QWidget*>(QStringLiteral("dialogWidget")));
    QCOMPARE(dialog.findChild<PushButton*>(QStringLiteral("closeBtn"))->property("imageBtn"),
             QVariant(QStringLiteral("close")));
}

void TestDialog::contentSitsBelowTheTitleBar()
{
    Dialog dialog;
    addContent(dialog);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QWidget* const bar = titleBar(dialog);
    const QRect barRect(bar->mapTo(&dialog, QPoint()), bar->size());
    const QRect contentRect(dialog.dialogWidget()->mapTo(&dialog, QPoint()),
                            dialog.dialogWidget()->size());
    QVERIFY(bar->isVisible());
    QVERIFY(dialog.dialogWidget()->isVisible());
    QVERIFY(contentRect.top() >= barRect.bottom());
    QVERIFY(contentRect.height() > 50);
    QCOMPARE(contentRect.width(), barRect.width());
}

void TestDialog::setTitleShowsInTheTitleBar()
{
    Dialog dialog;
    dialog.setTitle(QStringLiteral("AddStreaming"));
    QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("titleLabel"))->text(),
             QStringLiteral("AddStreaming"));
    QCOMPARE(dialog.title(), QStringLiteral("AddStreaming"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("AddStreaming"));
    dialog.setWindowTitle(QStringLiteral("Other"));
    QCOMPARE(dialog.title(), QStringLiteral("Other"));
}

void TestDialog::draggingTheTitleBarMovesTheWindow()
{
    Dialog dialog;
    QVERIFY(showAwayFromTheCorner(dialog));
    const QPoint start = dialog.pos();
    QWindow* const window = dialog.windowHandle();
    const QPoint grab = titleBarCentre(dialog);
    const QPoint delta(40, 25);

    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, grab);
    QTest::mouseMove(window, grab + delta);
    QTRY_COMPARE(dialog.pos(), start + delta);
    // The window keeps following while the button stays down.
    QTest::mouseMove(window, grab + QPoint(10, 5));
    QTRY_COMPARE(dialog.pos(), start + delta + QPoint(10, 5));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, grab + QPoint(10, 5));

    // After the release, moving the pointer leaves the window where it is.
    const QPoint dropped = dialog.pos();
    QTest::mouseMove(window, grab + QPoint(30, 30));
    QCOMPARE(dialog.pos(), dropped);
}

void TestDialog::onlyTheLeftButtonDrags()
{
    Dialog dialog;
    QVERIFY(showAwayFromTheCorner(dialog));
    const QPoint start = dialog.pos();
    QWindow* const window = dialog.windowHandle();
    const QPoint grab = titleBarCentre(dialog);

    QTest::mousePress(window, Qt::RightButton, Qt::NoModifier, grab);
    QTest::mouseMove(window, grab + QPoint(40, 25));
    QTest::mouseRelease(window, Qt::RightButton, Qt::NoModifier, grab + QPoint(40, 25));
    QCOMPARE(dialog.pos(), start);
}

void TestDialog::draggingTheContentDoesNotMoveTheWindow()
{
    Dialog dialog;
    QVERIFY(showAwayFromTheCorner(dialog));
    const QPoint start = dialog.pos();
    QWindow* const window = dialog.windowHandle();
    QWidget* const content = dialog.dialogWidget();
    const QPoint grab = content->mapTo(&dialog, content->rect().center());

    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, grab);
    QTest::mouseMove(window, grab + QPoint(40, 25));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, grab + QPoint(40, 25));
    QCOMPARE(dialog.pos(), start);
}

void TestDialog::closeButtonEndsExecWithZero()
{
    Dialog dialog;
    addContent(dialog);
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("closeBtn"));
    QCOMPARE(dialog.exec(), 0);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(!dialog.isVisible());
}

void TestDialog::closeButtonGoesThroughCloseEvent()
{
    GuardedDialog dialog;
    dialog.guard = true;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTest::mouseClick(dialog.findChild<PushButton*>(QStringLiteral("closeBtn")), Qt::LeftButton);
    QVERIFY(dialog.isVisible());

    dialog.guard = false;
    QTest::mouseClick(dialog.findChild<PushButton*>(QStringLiteral("closeBtn")), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
}

void TestDialog::escapeEndsExecWithZero()
{
    Dialog dialog;
    addContent(dialog);
    ModalAnswerer answerer;
    answerer.pressKeyWhenShown(Qt::Key_Escape);
    QCOMPARE(dialog.exec(), 0);
    QVERIFY(answerer.answered());
}

void TestDialog::closeButtonNeverTakesTheFocus()
{
    Dialog dialog;
    const auto* const close = dialog.findChild<PushButton*>(QStringLiteral("closeBtn"));
    QCOMPARE(close->focusPolicy(), Qt::NoFocus);
    QVERIFY(!close->autoDefault());
}

QTEST_MAIN(TestDialog)
#include "tst_dialog.moc"
