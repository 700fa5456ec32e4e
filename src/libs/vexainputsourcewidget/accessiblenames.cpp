// SPDX-License-Identifier: MIT
#include "accessiblenames.h"

#include "trkey.h"

#include <vexa/widgets/dialog.h>
#include <vexa/widgets/editbox.h>

#include <QPushButton>

namespace vexa::inputsource {

void nameField(vexa::widgets::EditBox* field, const QString& name, const QString& description)
{
    for (QWidget* const widget : {static_cast<QWidget*>(field), field->focusProxy()}) {
        if (widget != nullptr) {
            widget->setAccessibleName(name);
            widget->setAccessibleDescription(description);
        }
    }
}

void nameCloseButton(vexa::widgets::Dialog* dialog)
{
    if (auto* const closeButton = dialog->findChild<QPushButton*>(QStringLiteral("closeBtn"))) {
        closeButton->setAccessibleName(trKey("Close"));
        closeButton->setToolTip(trKey("Close"));
    }
}

} // namespace vexa::inputsource
