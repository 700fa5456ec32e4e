// SPDX-License-Identifier: MIT
#pragma once

#include "ndidialog.h"
#include "ndilistitem.h"

#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>

#include <quandel/runtime/zqruntime.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

#include <memory>
#include <string>
#include <vector>

/// One sender of a manager's NDI list.
inline vexa::STResourceRenamedModel ndiSender(const std::string& ip, const std::string& senderName,
                                              const std::string& receiverName = {},
                                              bool added = false)
{
    vexa::STResourceRenamedModel model;
    model.ipAddress = ip;
    model.senderName = senderName;
    model.name = receiverName;
    model.flag = added ? 1 : 0;
    return model;
}

inline QListWidget* ndiList(const QWidget& dialog)
{
    return dialog.findChild<QListWidget*>(QStringLiteral("ndiList"));
}

/// The rows of the dialog's list, top to bottom.
inline std::vector<vexa::inputsource::NdiListItem*> ndiRows(const QWidget& dialog)
{
    std::vector<vexa::inputsource::NdiListItem*> rows;
    QListWidget* const list = ndiList(dialog);
    for (int index = 0; index < list->count(); ++index) {
        rows.push_back(
            qobject_cast<vexa::inputsource::NdiListItem*>(list->itemWidget(list->item(index))));
    }
    return rows;
}

inline vexa::widgets::PushButton* checkButtonOf(const QWidget& row)
{
    return row.findChild<vexa::widgets::PushButton*>(QStringLiteral("ndiCheckBtn"));
}

inline QLineEdit* receiverEditorOf(const QWidget& row)
{
    return row.findChild<vexa::widgets::EditBox*>(QStringLiteral("ndiReceiverEdit"))
        ->findChild<QLineEdit*>(QStringLiteral("editor"));
}

inline QLabel* labelOf(const QWidget& widget, const char* name)
{
    return widget.findChild<QLabel*>(QLatin1String(name));
}

/// Fires the manager's NDI list on the runtime thread and lets the GUI thread handle it.
inline void answerNdiList(vexa::testing::FakeInputSourceMgr& mgr,
                          const std::vector<vexa::STResourceRenamedModel>& models)
{
    mgr.fireOnRuntime([&models](auto& manager) { manager.signalNdiSourcesUpdated(models); });
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}
