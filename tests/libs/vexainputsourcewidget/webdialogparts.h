// SPDX-License-Identifier: MIT
#pragma once

#include "tabitemwidget.h"

#include <vexainputsourcewidget/webdialog.h>

#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QString>
#include <QTest>
#include <QTimer>

#include <vector>

/// The controls of a web dialog, found as a test or a style sheet finds them, and what an
/// operator does with them.
struct WebDialogParts
{
    explicit WebDialogParts(QWidget* window)
        : dialog(qobject_cast<vexa::inputsource::WebDialog*>(window))
    {
        if (dialog == nullptr) {
            return;
        }
        nameLabel = dialog->findChild<QLabel*>(QStringLiteral("webNameLabel"));
        name = dialog->findChild<vexa::widgets::EditBox*>(QStringLiteral("webNameEdit"));
        modeLabel = dialog->findChild<QLabel*>(QStringLiteral("webModeLabel"));
        mode = dialog->findChild<vexa::widgets::ComboBox*>(QStringLiteral("webModeBox"));
        caption = dialog->findChild<QLabel*>(QStringLiteral("webTabCaption"));
        counter = dialog->findChild<QLabel*>(QStringLiteral("webTabCounter"));
        addTab = dialog->findChild<vexa::widgets::PushButton*>(QStringLiteral("addTabBtn"));
        list = dialog->findChild<QListWidget*>(QStringLiteral("tabListWidget"));
        cancel = dialog->findChild<vexa::widgets::PushButton*>(QStringLiteral("webCancelBtn"));
        ok = dialog->findChild<vexa::widgets::PushButton*>(QStringLiteral("webOkBtn"));
        timer = dialog->findChild<QTimer*>(QStringLiteral("loadWatchTimer"));
    }

    bool complete() const
    {
        return dialog != nullptr && nameLabel != nullptr && name != nullptr &&
               modeLabel != nullptr && mode != nullptr && caption != nullptr &&
               counter != nullptr && addTab != nullptr && list != nullptr && cancel != nullptr &&
               ok != nullptr && timer != nullptr;
    }

    QLineEdit* nameEditor() const { return qobject_cast<QLineEdit*>(name->focusProxy()); }

    /// The tab rows in list order.
    std::vector<vexa::inputsource::TabItemWidget*> rows() const
    {
        std::vector<vexa::inputsource::TabItemWidget*> found;
        for (int index = 0; index < list->count(); ++index) {
            found.push_back(qobject_cast<vexa::inputsource::TabItemWidget*>(
                list->itemWidget(list->item(index))));
        }
        return found;
    }
    int rowCount() const { return list->count(); }
    vexa::inputsource::TabItemWidget* row(int index) const { return rows().at(index); }

    /// The delete button of a row.
    static vexa::widgets::PushButton* deleteButton(const vexa::inputsource::TabItemWidget* row)
    {
        return row->findChild<vexa::widgets::PushButton*>(QStringLiteral("tabDeleteBtn"));
    }

    /// Replaces a field's text by typing, without ending the edit.
    static void retype(QLineEdit* editor, const QString& text)
    {
        editor->setFocus(Qt::OtherFocusReason);
        editor->selectAll();
        QTest::keyClick(editor, Qt::Key_Backspace);
        QTest::keyClicks(editor, text);
    }

    /// Replaces a field's text and ends the edit by moving on with Tab (Enter would confirm
    /// the dialog as well).
    static void enter(QLineEdit* editor, const QString& text)
    {
        retype(editor, text);
        QTest::keyClick(editor, Qt::Key_Tab);
    }

    /// Emits the load watch's tick `count` times, at once.
    void tick(int count = 1) const
    {
        for (int i = 0; i < count; ++i) {
            QMetaObject::invokeMethod(timer, "timeout");
        }
    }

    vexa::inputsource::WebDialog* dialog = nullptr;
    QLabel* nameLabel = nullptr;
    vexa::widgets::EditBox* name = nullptr;
    QLabel* modeLabel = nullptr;
    vexa::widgets::ComboBox* mode = nullptr;
    QLabel* caption = nullptr;
    QLabel* counter = nullptr;
    vexa::widgets::PushButton* addTab = nullptr;
    QListWidget* list = nullptr;
    vexa::widgets::PushButton* cancel = nullptr;
    vexa::widgets::PushButton* ok = nullptr;
    QTimer* timer = nullptr;
};
