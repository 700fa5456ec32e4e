// SPDX-License-Identifier: MIT
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/elidinglabel.h>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

using vexa::widgets::EditBox;

namespace {

// A window as the box lives in: the box, a second field to move the focus to, a surface that
// takes no focus (like a tile) and a default button that Enter would press.
struct Window
{
    Window()
        : dialog(std::make_unique<QDialog>())
        , box(new EditBox(dialog.get()))
        , other(new QLineEdit(dialog.get()))
        , surface(new QLabel(QStringLiteral("surface"), dialog.get()))
        , defaultButton(new QPushButton(QStringLiteral("OK"), dialog.get()))
    {
        auto* const layout = new QVBoxLayout(dialog.get());
        layout->addWidget(box);
        layout->addWidget(other);
        layout->addWidget(surface);
        layout->addWidget(defaultButton);
        surface->setMinimumHeight(40);
        defaultButton->setDefault(true);
        dialog->resize(240, 200);
    }

    bool show()
    {
        dialog->show();
        return QTest::qWaitForWindowActive(dialog.get());
    }

    // The set-up of most tests: an in-place box showing `text`, on an active window.
    bool showInPlace(const QString& text)
    {
        box->setTriggerEdit(true);
        box->setText(text);
        return show();
    }

    QLineEdit* editor() const { return box->findChild<QLineEdit*>(QStringLiteral("editor")); }
    QLabel* label() const { return box->findChild<QLabel*>(QStringLiteral("label")); }

    std::unique_ptr<QDialog> dialog;
    EditBox* const box;
    QLineEdit* const other;
    QLabel* const surface;
    QPushButton* const defaultButton;
};

// As a person replaces the whole text: select it all, then type.
void retype(QLineEdit* editor, const QString& text)
{
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty()) {
        QTest::keyClick(editor, Qt::Key_Backspace);
    } else {
        QTest::keyClicks(editor, text);
    }
}

} // namespace

class TestEditBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void alwaysEditableByDefault();
    void enterEmitsEditingFinishedOnce();
    void leavingEmitsEditingFinished();
    void triggerEditShowsTheLabelUntilEditingBegins();
    void enterEndsATriggeredEditOnceAndStaysInside();
    void emptiedAndLeftRestoresTheText();
    void emptiedWithoutRestoreStaysEmpty();
    void escapeRestoresTheTextWithoutEmitting();
    void escapeWithoutTriggerEditUndoesFirstThenReachesTheWindow();
    void maxLengthHoldsWhenTyping();
    void aLongerTextIsNeverCut();
    void doubleClickStartsEditingOnlyWhenEnabled();
    void aPressOutsideEndsATriggeredEdit();
    void theLabelElidesWhatDoesNotFit();
    void editPropertyRepolishesTheEditor();
    void ownPropertyRepolishesTheChildren();
    void placeholderGoesToTheEditor();
    void placeholderIsDimmerThanTheText();
};

void TestEditBox::alwaysEditableByDefault()
{
    Window window;
    QVERIFY(window.show());
    QVERIFY(!window.box->triggerEdit());
    QVERIFY(window.editor()->isVisible());
    QVERIFY(!window.label()->isVisible());
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    QTest::keyClicks(window.editor(), QStringLiteral("rtsp://cam"));
    QCOMPARE(window.box->text(), QStringLiteral("rtsp://cam"));
}

void TestEditBox::enterEmitsEditingFinishedOnce()
{
    Window window;
    QVERIFY(window.show());
    QSignalSpy finished(window.box, &EditBox::editingFinished);
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    QTest::keyClicks(window.editor(), QStringLiteral("Cam 1"));
    QTest::keyClick(window.editor(), Qt::Key_Return);
    QCOMPARE(finished.count(), 1);
    // Nothing new was edited: neither a second Enter nor leaving finishes anything.
    QTest::keyClick(window.editor(), Qt::Key_Return);
    QTest::mouseClick(window.other, Qt::LeftButton);
    QTRY_VERIFY(window.other->hasFocus());
    QCOMPARE(finished.count(), 1);
    QCOMPARE(window.box->text(), QStringLiteral("Cam 1"));
}

void TestEditBox::leavingEmitsEditingFinished()
{
    Window window;
    QVERIFY(window.show());
    QSignalSpy finished(window.box, &EditBox::editingFinished);
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    QTRY_VERIFY(window.editor()->hasFocus());
    QTest::keyClicks(window.editor(), QStringLiteral("rtmp://host/live"));
    QTest::mouseClick(window.other, Qt::LeftButton);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(window.box->text(), QStringLiteral("rtmp://host/live"));
}

void TestEditBox::triggerEditShowsTheLabelUntilEditingBegins()
{
    Window window;
    QVERIFY(window.showInPlace(QStringLiteral("Cam 1")));
    QVERIFY(window.label()->isVisible());
    QVERIFY(!window.editor()->isVisible());
    QCOMPARE(window.label()->text(), QStringLiteral("Cam 1"));
    QVERIFY(!window.box->isEditing());

    window.box->beginEdit();
    QVERIFY(window.box->isEditing());
    QVERIFY(window.editor()->isVisible());
    QVERIFY(!window.label()->isVisible());
    QTRY_VERIFY(window.editor()->hasFocus());
    QCOMPARE(window.editor()->selectedText(), QStringLiteral("Cam 1"));
}

void TestEditBox::enterEndsATriggeredEditOnceAndStaysInside()
{
    Window window;
    QVERIFY(window.showInPlace(QStringLiteral("Cam 1")));
    QSignalSpy finished(window.box, &EditBox::editingFinished);
    QSignalSpy defaultPressed(window.defaultButton, &QPushButton::clicked);

    window.box->beginEdit();
    QTest::keyClicks(window.editor(), QStringLiteral("Studio A"));
    QTest::keyClick(window.editor(), Qt::Key_Return);

    QCOMPARE(finished.count(), 1);
    QCOMPARE(window.box->text(), QStringLiteral("Studio A"));
    QVERIFY(!window.box->isEditing());
    QVERIFY(window.label()->isVisible());
    QVERIFY(!window.editor()->isVisible());
    QCOMPARE(window.label()->text(), QStringLiteral("Studio A"));
    QCOMPARE(defaultPressed.count(), 0);
    QVERIFY(window.dialog->isVisible());
}

void TestEditBox::emptiedAndLeftRestoresTheText()
{
    Window window;
    window.box->setTriggerEdit(true);
    window.box->setCanRestoreText(true);
    window.box->setText(QStringLiteral("Cam 1"));
    QVERIFY(window.show());
    QSignalSpy finished(window.box, &EditBox::editingFinished);

    window.box->beginEdit();
    QTRY_VERIFY(window.editor()->hasFocus());
    retype(window.editor(), QString());
    QCOMPARE(window.editor()->text(), QString());
    QTest::mouseClick(window.other, Qt::LeftButton);

    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(window.box->text(), QStringLiteral("Cam 1"));
    QCOMPARE(window.label()->text(), QStringLiteral("Cam 1"));
    QVERIFY(window.label()->isVisible());
}

void TestEditBox::emptiedWithoutRestoreStaysEmpty()
{
    Window window;
    window.box->setText(QStringLiteral("Cam 1"));
    QVERIFY(window.show());
    QSignalSpy finished(window.box, &EditBox::editingFinished);
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    retype(window.editor(), QString());
    QTest::keyClick(window.editor(), Qt::Key_Return);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(window.box->text(), QString());
}

void TestEditBox::escapeRestoresTheTextWithoutEmitting()
{
    Window window;
    QVERIFY(window.showInPlace(QStringLiteral("Cam 1")));
    QSignalSpy finished(window.box, &EditBox::editingFinished);

    window.box->beginEdit();
    QTest::keyClicks(window.editor(), QStringLiteral("Wrong"));
    QTest::keyClick(window.editor(), Qt::Key_Escape);

    QCOMPARE(window.box->text(), QStringLiteral("Cam 1"));
    QCOMPARE(window.label()->text(), QStringLiteral("Cam 1"));
    QVERIFY(!window.box->isEditing());
    QVERIFY(window.label()->isVisible());
    QCOMPARE(finished.count(), 0);
    // The Escape ended the edit, not the window.
    QVERIFY(window.dialog->isVisible());
    // Nor does the focus leaving afterwards finish the cancelled edit.
    QTest::mouseClick(window.other, Qt::LeftButton);
    QTRY_VERIFY(window.other->hasFocus());
    QCOMPARE(finished.count(), 0);
}

void TestEditBox::escapeWithoutTriggerEditUndoesFirstThenReachesTheWindow()
{
    Window window;
    window.box->setText(QStringLiteral("rtsp://a"));
    QVERIFY(window.show());
    QSignalSpy finished(window.box, &EditBox::editingFinished);
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    QTest::keyClicks(window.editor(), QStringLiteral("/more"));
    QTest::keyClick(window.editor(), Qt::Key_Escape);
    QCOMPARE(window.box->text(), QStringLiteral("rtsp://a"));
    QVERIFY(window.dialog->isVisible());

    QTest::keyClick(window.editor(), Qt::Key_Escape);
    QVERIFY(!window.dialog->isVisible());
    QCOMPARE(window.dialog->result(), int(QDialog::Rejected));
    QCOMPARE(finished.count(), 0);
}

void TestEditBox::maxLengthHoldsWhenTyping()
{
    Window window;
    window.box->setTriggerEdit(true);
    window.box->setMaxLength(20);
    QCOMPARE(window.box->maxLength(), 20);
    QVERIFY(window.show());
    window.box->beginEdit();
    QTest::keyClicks(window.editor(), QStringLiteral("A name far longer than twenty"));
    QCOMPARE(window.editor()->text(), QStringLiteral("A name far longer th"));
    QTest::keyClick(window.editor(), Qt::Key_Return);
    QCOMPARE(window.box->text(), QStringLiteral("A name far longer th"));
}

void TestEditBox::aLongerTextIsNeverCut()
{
    Window window;
    window.box->setMaxLength(5);
    window.box->setText(QStringLiteral("Local Capture Device"));
    QCOMPARE(window.box->text(), QStringLiteral("Local Capture Device"));
    window.box->setMaxLength(4);
    QCOMPARE(window.box->text(), QStringLiteral("Local Capture Device"));

    // Once the operator has shortened it, the limit is the limit again.
    QVERIFY(window.show());
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    retype(window.editor(), QStringLiteral("abcdefg"));
    QTest::keyClick(window.editor(), Qt::Key_Return);
    QCOMPARE(window.box->text(), QStringLiteral("abcdefg"));
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    retype(window.editor(), QStringLiteral("hijklmn"));
    QCOMPARE(window.editor()->text(), QStringLiteral("hijklmn"));
    QTest::keyClick(window.editor(), Qt::Key_Return);
    window.box->setText(QStringLiteral("ab"));
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    retype(window.editor(), QStringLiteral("hijklmn"));
    QCOMPARE(window.editor()->text(), QStringLiteral("hijk"));
}

void TestEditBox::doubleClickStartsEditingOnlyWhenEnabled()
{
    Window window;
    QVERIFY(window.showInPlace(QStringLiteral("Cam 1")));

    QTest::mouseDClick(window.label(), Qt::LeftButton);
    QVERIFY(!window.box->isEditing());
    QVERIFY(!window.editor()->isVisible());

    window.box->setCanDoubleClick(true);
    QTest::mouseDClick(window.label(), Qt::LeftButton);
    QVERIFY(window.box->isEditing());
    QVERIFY(window.editor()->isVisible());
    QTRY_VERIFY(window.editor()->hasFocus());
}

void TestEditBox::aPressOutsideEndsATriggeredEdit()
{
    Window window;
    QVERIFY(window.showInPlace(QStringLiteral("Cam 1")));
    QSignalSpy finished(window.box, &EditBox::editingFinished);
    window.box->beginEdit();
    QTest::keyClicks(window.editor(), QStringLiteral("Cam 2"));

    // Presses inside the editor keep the edit going.
    QTest::mouseClick(window.editor(), Qt::LeftButton);
    QVERIFY(window.box->isEditing());

    // The surface takes no focus, yet pressing it means leaving the edit.
    QTest::mouseClick(window.surface, Qt::LeftButton);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(window.box->text(), QStringLiteral("Cam 2"));
    QVERIFY(window.label()->isVisible());

    // Once the edit is over, presses elsewhere mean nothing to the box.
    QTest::mouseClick(window.surface, Qt::LeftButton);
    QCOMPARE(finished.count(), 1);
}

void TestEditBox::theLabelElidesWhatDoesNotFit()
{
    Window window;
    window.box->setTriggerEdit(true);
    window.box->setFixedWidth(60);
    const QString name = QStringLiteral("Local Capture Device with a long name");
    window.box->setText(name);
    QVERIFY(window.show());
    auto* const label = qobject_cast<vexa::widgets::ElidingLabel*>(window.label());
    QVERIFY(label != nullptr);
    QTRY_VERIFY(label->isElided());
    // Screen readers and tests read the whole text; only the painting is cut.
    QCOMPARE(label->text(), name);
    QCOMPARE(window.box->text(), name);

    window.box->setFixedWidth(600);
    QTRY_VERIFY(!label->isElided());
    QCOMPARE(label->text(), name);
}

void TestEditBox::editPropertyRepolishesTheEditor()
{
    EditBox box;
    box.setStyleSheet(
        QStringLiteral("QLineEdit { color: rgb(1, 2, 3); }"
                       "QLineEdit[style=\"editError\"] { color: rgb(240, 71, 75); }"));
    box.ensurePolished();
    QLineEdit* const editor = box.findChild<QLineEdit*>(QStringLiteral("editor"));
    editor->ensurePolished();
    QCOMPARE(editor->palette().color(QPalette::Text), QColor(1, 2, 3));

    box.setEditProperty("style", QStringLiteral("editError"));
    QCOMPARE(editor->property("style").toString(), QStringLiteral("editError"));
    QCOMPARE(editor->palette().color(QPalette::Text), QColor(240, 71, 75));

    box.setEditProperty("style", QString());
    QCOMPARE(editor->palette().color(QPalette::Text), QColor(1, 2, 3));
}

void TestEditBox::ownPropertyRepolishesTheChildren()
{
    EditBox box;
    box.setStyleSheet(QStringLiteral(
        "QLineEdit { color: rgb(1, 2, 3); }"
        "vexa--widgets--EditBox[style=\"lineEdit\"] QLineEdit#editor { color: rgb(9, 8, 7); }"));
    QLineEdit* const editor = box.findChild<QLineEdit*>(QStringLiteral("editor"));
    editor->ensurePolished();
    QCOMPARE(editor->palette().color(QPalette::Text), QColor(1, 2, 3));

    box.setProperty("style", QStringLiteral("lineEdit"));
    QCOMPARE(editor->palette().color(QPalette::Text), QColor(9, 8, 7));
}

void TestEditBox::placeholderGoesToTheEditor()
{
    EditBox box;
    box.setPlaceholderText(QStringLiteral("Please enter"));
    QCOMPARE(box.findChild<QLineEdit*>(QStringLiteral("editor"))->placeholderText(),
             QStringLiteral("Please enter"));
}

void TestEditBox::placeholderIsDimmerThanTheText()
{
    EditBox box;
    box.setPlaceholderText(QStringLiteral("Please enter"));
    box.setStyleSheet(QStringLiteral("QLineEdit { color: rgb(200, 210, 220); }"));
    const QLineEdit* const editor = box.findChild<QLineEdit*>(QStringLiteral("editor"));
    const QPalette palette = editor->palette();
    QCOMPARE(palette.color(QPalette::Text), QColor(200, 210, 220));
    QCOMPARE(palette.color(QPalette::PlaceholderText).rgb(), QColor(200, 210, 220).rgb());
    QVERIFY(palette.color(QPalette::PlaceholderText).alpha() < 255);

    // A placeholder colour chosen on purpose is left alone.
    QPalette own = editor->palette();
    own.setColor(QPalette::PlaceholderText, QColor(90, 90, 90));
    box.findChild<QLineEdit*>(QStringLiteral("editor"))->setPalette(own);
    QCOMPARE(editor->palette().color(QPalette::PlaceholderText), QColor(90, 90, 90));
}

QTEST_MAIN(TestEditBox)
#include "tst_editbox.moc"
