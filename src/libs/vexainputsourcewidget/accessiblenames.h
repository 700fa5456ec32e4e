// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QString>

namespace vexa::widgets {
class Dialog;
class EditBox;
} // namespace vexa::widgets

namespace vexa::inputsource {

/// Gives a text field what a screen reader says for it: `name` and `description` on the box
/// and on the line edit inside it, which is what takes the focus. GUI thread.
VEXAINPUTSOURCEWIDGET_TEST_EXPORT void nameField(vexa::widgets::EditBox* field, const QString& name,
                                                 const QString& description = QString());

/// Names the title-bar close button of `dialog` ("closeBtn") and gives it the same tool-tip,
/// from the translation of "Close". GUI thread.
VEXAINPUTSOURCEWIDGET_TEST_EXPORT void nameCloseButton(vexa::widgets::Dialog* dialog);

} // namespace vexa::inputsource
