// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

class QWidget;

namespace vexa::inputsource {

/// Keeps the dialogs that the source-kind boxes create without a parent. Such a dialog may
/// outlive the box that opened it (the operator may still be answering it), so no box owns it:
/// the process collects them, and every one still alive is destroyed while the application
/// object is destroyed (a Qt post routine), when widgets may still be destroyed. A dialog
/// destroyed earlier, by a host say, leaves nothing behind. GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT ParentlessDialogs
{
public:
    /// Takes `dialog` (parentless) into the collection and returns it.
    template <typename Dialog>
    static Dialog* adopt(Dialog* dialog)
    {
        adoptWidget(dialog);
        return dialog;
    }

private:
    static void adoptWidget(QWidget* dialog);
};

} // namespace vexa::inputsource
