// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <memory>

namespace vexa::widgets {
class Dialog;
} // namespace vexa::widgets

namespace vexa::inputsource {

/// The panel's category of NDI sources: an InputSourceBox titled "NDI" for resource type 7,
/// whose add button opens the NDI dialog. The dialog lists the NDI senders the manager
/// discovers on the network; the operator ticks the senders to add, may name their receivers,
/// and confirms, which asks the manager to add the sources. Their tiles appear when the manager
/// reports them, as in every box.
///
/// The dialog ("ndiDialog") is a window of its own, created with the box and reused for every
/// opening. It follows the box's manager: setInputSourceMgr() and unsetInputSourceMgr() bind
/// and unbind it too, and translateLanguage() translates it. A box destroyed while its dialog
/// is open leaves the dialog open; the dialog goes once the operator closes it (or when the
/// application quits). GUI thread only, as the base box.
class VEXAINPUTSOURCEWIDGET_EXPORT NdiBox : public InputSourceBox
{
    Q_OBJECT

public:
    /// An empty, unbound NDI box and its closed dialog.
    explicit NdiBox(QWidget* parent = nullptr);
    /// Destroys the dialog, or, while it is open, lets it go once it closes.
    ~NdiBox() override;

    /// Opens the dialog and returns when it closes (modal). The add button calls it.
    void showDialog();

    /// The box's dialog, for hosts that style it. Owned by the application while open after
    /// the box went; by the box otherwise.
    vexa::widgets::Dialog* dialog() const;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
