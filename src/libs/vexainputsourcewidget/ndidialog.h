// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <vexa/widgets/dialog.h>

#include <memory>

namespace quandel {
class IZQRuntime;
} // namespace quandel

namespace vexa::inputsource {

/// The modal list of the NDI senders the manager discovered: the operator ticks the senders to
/// add, may name their receivers (a rename reaches the manager at once), refreshes the
/// discovery and confirms, which asks the manager to add one NDI source per ticked sender.
///
/// Showing the dialog empties the list and asks the manager for a refresh; each list the
/// manager sends back replaces the rows, keeping what the operator ticked and typed.
///
/// Object names: "ndiDialog", "ndiSelectAllBtn", "ndiIpHeader", "ndiSenderHeader",
/// "ndiReceiverHeader", "ndiStateHeader", "ndiList", "ndiStatusLabel", "ndiRefreshBtn",
/// "ndiCancelBtn", "ndiConfirmBtn". GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT NdiDialog : public vexa::widgets::Dialog
{
    Q_OBJECT

public:
    /// An unbound dialog, 760 pixels wide; created without a parent and reused for every
    /// opening.
    explicit NdiDialog(QWidget* parent = nullptr);
    /// Drops the manager's sender lists, also one already under way.
    ~NdiDialog() override;

    /// Binds the dialog to `mgr`, whose requests run on `runtime`'s thread (not owned), and
    /// subscribes to its sender lists there. An expired manager logs
    /// "nullptr == inputSourceMgr" and subscribes nothing.
    void setInputSourceMgr(std::weak_ptr<vexa::inputsource::IInputSourceMgr> mgr,
                           quandel::IZQRuntime* runtime);

    /// Drops the subscription on the runtime thread and forgets the manager. Logs
    /// "nullptr == inputSourceMgr" when the manager has gone.
    void unsetInputSourceMgr();

    /// Sets every text in the current language. The rows' states then read "NotAdded" until
    /// the next list arrives.
    void translateLanguage();

protected:
    /// Empties the list, shows "NDIRefreshing" and asks the manager for its senders.
    void showEvent(QShowEvent* event) override;
    /// Ignored for 200 ms after a refused receiver name, so the click that ended the edit does
    /// not close the dialog.
    void closeEvent(QCloseEvent* event) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
