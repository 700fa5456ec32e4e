// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace vexa::inputsource {

/// The one way library code runs a nested event loop (a dialog's run() or exec(), a menu's or a
/// drag's exec()) on behalf of an object that the loop may see destroyed: the host may delete a
/// box while its question is open, the manager may remove a source while its tile's menu is.
///
/// Every such loop goes through run(), which says afterwards whether the caller may go on.
/// Objects that must go while one of their loops runs go through destroy(), which waits for
/// the loop to return when the object's own handler is still on the stack. GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT ModalLoop
{
public:
    /// Runs `loop` for `owner`. When `window` is given it is closed should the owner be
    /// destroyed meanwhile, so the operator is not left answering a question nobody asks any
    /// more. Returns true when the caller may go on using the owner; false when the owner was
    /// destroyed during the loop or is to be destroyed now that its loops are over: the caller
    /// must then return without touching it.
    static bool run(QObject* owner, const std::function<void()>& loop, QWidget* window = nullptr);

    /// Whether `object` is inside run().
    static bool isRunning(const QObject* object);

    /// Destroys `object` at once, or, while it is inside run(), hides it (a widget also leaves
    /// its parent, so the parent's destruction does not take it along), closes the windows of
    /// its loops and destroys it once its outermost loop has returned.
    static void destroy(QObject* object);
};

} // namespace vexa::inputsource
