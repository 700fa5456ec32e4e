// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <memory>

namespace vexa::inputsource {

/// The category of local capture devices. Its tiles, their selection, preview and manager
/// binding are InputSourceBox's; this box only fixes the kind (8), titles itself "CaptureCard"
/// (the untranslated key: the panel sets the translated title) and has no add button, since
/// devices come from the hardware and not from the operator.
///
/// Device changes: the box carries a private object named "captureCardBoxImpl" (find it with
/// findChild<QObject*>()) whose slot slotUpdateDevice(bool isArrival) the host wires to its
/// device-change notification by name, through the meta-object system (docs/integration.md).
/// On an arrival the slot asks the manager to look at the devices again (refreshCaptureDevices,
/// called directly on the GUI thread); a removal asks nothing, since the manager's own removal
/// notification removes the tile.
///
/// Threads: every member runs on the GUI thread, except what InputSourceBox allows elsewhere.
class VEXAINPUTSOURCEWIDGET_EXPORT CaptureCardBox : public InputSourceBox
{
    Q_OBJECT

public:
    /// An empty capture-device box without add button.
    explicit CaptureCardBox(QWidget* parent = nullptr);

    /// Destroys the box and its tiles (InputSourceBox).
    ~CaptureCardBox() override;

    /// The runtime of the binding (InputSourceBox::setZQRuntime); not owned.
    void setZQRuntime(quandel::IZQRuntime* runtime) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
