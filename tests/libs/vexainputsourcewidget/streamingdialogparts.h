// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/streamingdialog.h>

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>

#include <QLabel>
#include <QLineEdit>
#include <QString>
#include <QTest>
#include <QVariant>

/// The controls of a stream dialog, found as a test or a style sheet finds them, and what an
/// operator does with them.
struct StreamingDialogParts
{
    explicit StreamingDialogParts(QWidget* window)
        : dialog(qobject_cast<vexa::inputsource::StreamingDialog*>(window))
    {
        if (dialog == nullptr) {
            return;
        }
        nameLabel = dialog->findChild<QLabel*>(QStringLiteral("nameLabel"));
        name = dialog->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"));
        urlLabel = dialog->findChild<QLabel*>(QStringLiteral("urlLabel"));
        url = dialog->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"));
        hint = dialog->findChild<QLabel*>(QStringLiteral("hintLabel"));
        cancel = dialog->findChild<vexa::widgets::PushButton*>(QStringLiteral("cancelBtn"));
        confirm = dialog->findChild<vexa::widgets::PushButton*>(QStringLiteral("confirmBtn"));
    }

    bool complete() const
    {
        return dialog != nullptr && nameLabel != nullptr && name != nullptr &&
               urlLabel != nullptr && url != nullptr && hint != nullptr && cancel != nullptr &&
               confirm != nullptr;
    }

    QLineEdit* nameEditor() const { return qobject_cast<QLineEdit*>(name->focusProxy()); }
    QLineEdit* urlEditor() const { return qobject_cast<QLineEdit*>(url->focusProxy()); }

    /// The address field's "style" ("" or "editError").
    QString urlStyle() const { return urlEditor()->property("style").toString(); }
    /// The hint's "style" ("grayHint" or "errorHint").
    QString hintStyle() const { return hint->property("style").toString(); }

    /// Clicks into a field and types `text` after what it holds.
    static void type(QLineEdit* editor, const QString& text)
    {
        QTest::mouseClick(editor, Qt::LeftButton);
        QTest::keyClicks(editor, text);
    }

    /// Replaces a field's text by typing.
    static void retype(QLineEdit* editor, const QString& text)
    {
        QTest::mouseClick(editor, Qt::LeftButton);
        editor->selectAll();
        QTest::keyClick(editor, Qt::Key_Backspace);
        QTest::keyClicks(editor, text);
    }

    /// Clicks an empty spot of the dialog's content, between the fields and the buttons.
    void clickSurface() const
    {
        QWidget* const content = dialog->dialogWidget();
        const QPoint spot(4, content->height() - 4);
        QTest::mouseClick(content, Qt::LeftButton, Qt::NoModifier, spot);
    }

    vexa::inputsource::StreamingDialog* dialog = nullptr;
    QLabel* nameLabel = nullptr;
    vexa::widgets::EditBox* name = nullptr;
    QLabel* urlLabel = nullptr;
    vexa::widgets::EditBox* url = nullptr;
    QLabel* hint = nullptr;
    vexa::widgets::PushButton* cancel = nullptr;
    vexa::widgets::PushButton* confirm = nullptr;
};
