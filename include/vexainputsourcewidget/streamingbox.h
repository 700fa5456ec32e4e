// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <memory>

namespace vexa::inputsource {

class StreamingDialog;

/// The category of network streams (kind 13), titled "Streaming" (the untranslated key: the
/// panel sets the translated title). Its tiles and their binding are InputSourceBox's; the box
/// adds the way a stream is added: its add button opens a StreamingDialog (showDialog()), and
/// a confirmed dialog becomes one addInputSources request. The tile appears when the manager
/// reports the new source.
///
/// Manager use: generateStreamingName() (the name the dialog proposes) and isNameRepeated()
/// (asked when the operator confirms) are called directly on the GUI thread, the manager held
/// for the call; addInputSources() runs on the runtime thread while the GUI thread waits.
/// Without a manager each of them only logs "nullptr == inputSourceMgr".
///
/// The dialog is created once, without a parent, and reused. It is not the box's child: a box
/// destroyed while its dialog is open closes the dialog and returns from showDialog() without
/// touching anything, and the dialog itself is destroyed when the application object goes.
///
/// Threads: every member runs on the GUI thread, except what InputSourceBox allows elsewhere.
class VEXAINPUTSOURCEWIDGET_EXPORT StreamingBox : public InputSourceBox
{
    Q_OBJECT

public:
    /// An empty stream box with its (hidden) dialog.
    explicit StreamingBox(QWidget* parent = nullptr);

    /// Destroys the box and its tiles; an open dialog is closed, not destroyed.
    ~StreamingBox() override;

    /// The runtime of the binding (InputSourceBox::setZQRuntime); not owned.
    void setZQRuntime(quandel::IZQRuntime* runtime) override;

    /// Opens the dialog with a name the manager proposes and an empty address, and returns when
    /// it closes (modal). Without a manager it logs and opens nothing. The add button calls it.
    void showDialog();

    /// The box's dialog, for hosts that style or inspect it. Owned by the application.
    StreamingDialog* dialog() const;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
