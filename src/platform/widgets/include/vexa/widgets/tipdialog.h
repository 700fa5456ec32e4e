// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/dialog.h>
#include <vexa/widgets/vexa_widgets_export.h>

#include <memory>

namespace vexa::widgets {

/// What TipDialog::run() answers: which way the operator left the dialog and the state of its
/// check box. An aggregate, so `auto [result, checked] = tip.run();` works.
struct PromptBoxTriggerInfo
{
    /// TipDialog::Result: 1, 2, 3 for the first, second, third button; 0 when the dialog was
    /// closed without a button (title-bar close button, Escape, the window's close request).
    int result = 0;

    /// Whether the check box was ticked when the dialog closed (also when it was hidden).
    bool checked = false;
};

/// A modal notice or question to the operator: an icon after the tip type, the tip text, an
/// optional check box ("checkBox") and up to three buttons. The buttons sit centred in the
/// order third, second, first, so the first (the confirming one, "firstBtn", style "general")
/// is on the right and the default for Enter; "secondBtn" and "thirdBtn" have style "assist".
/// Object names for tests and style sheets: "tipIcon" (with the property "tipType": "notice" or
/// "warning"), "tipText", "checkBox", "firstBtn", "secondBtn", "thirdBtn", plus those of Dialog.
/// GUI thread only.
class VEXA_WIDGETS_EXPORT TipDialog : public Dialog
{
    Q_OBJECT

public:
    /// What the dialog tells the operator; decides its icon and default title.
    enum EnumTipType
    {
        Notice = 0,  ///< information to acknowledge, such as a name that already exists
        Warning = 1, ///< a question or warning to confirm, such as deleting sources
    };
    Q_ENUM(EnumTipType)

    /// The result codes of run(), as PromptBoxTriggerInfo::result.
    enum Result
    {
        Closed = 0,       ///< closed without a button: close button, Escape or window close
        FirstButton = 1,  ///< the first button (the confirming one)
        SecondButton = 2, ///< the second button
        ThirdButton = 3,  ///< the third button
    };
    Q_ENUM(Result)

    /// A dialog of `type` with the title "Notice" or "Warning", no text, the check box hidden
    /// and the buttons "OK" and "Cancel"; `parent` may be null (a window of its own).
    explicit TipDialog(EnumTipType type, QWidget* parent = nullptr);

    /// Destroys the dialog.
    ~TipDialog() override;

    /// The type given at construction.
    EnumTipType tipType() const;

    /// Sets the message, shown as plain text and wrapped.
    void setTipText(const QString& text);

    /// Sets the check box's text and shows the box when `show` is true, hides it otherwise.
    void setCheckText(const QString& text, bool show);

    /// Sets the texts of the three buttons; a button whose text is empty is hidden.
    void setBtnText(const QString& first, const QString& second, const QString& third);

    /// Shows the dialog modally and returns, when it closes, how it was left and the check
    /// box's state. May be called again for another answer.
    PromptBoxTriggerInfo run();

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::widgets
