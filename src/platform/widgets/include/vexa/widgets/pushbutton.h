// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

#include <QPushButton>

namespace vexa::widgets {

/// The kit's push button. Style sheets draw it through dynamic properties: "imageBtn" (an icon
/// button: "add", "close", "delete", "display"; checked "display" means preview off),
/// "checkStyle" (a check box: "checked", or "halfChecked" for a partly checked group) and
/// "style" ("general" for the main action, "assist" for the others). It re-polishes itself
/// whenever one of its dynamic properties changes, so callers only set the property. GUI thread
/// only.
class VEXA_WIDGETS_EXPORT PushButton : public QPushButton
{
    Q_OBJECT

public:
    /// A button without text.
    explicit PushButton(QWidget* parent = nullptr);

    /// A button showing `text`.
    explicit PushButton(const QString& text, QWidget* parent = nullptr);

    /// Destroys the button.
    ~PushButton() override;

protected:
    /// Re-polishes on a change of a dynamic property, then does what QPushButton does.
    bool event(QEvent* event) override;
};

} // namespace vexa::widgets
