// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

#include <QComboBox>

class QAbstractItemView;

namespace vexa::widgets {

/// The kit's combo box: a QComboBox (addItem(text), addItem(text, data), findText(text, flags)
/// and the signal textActivated(QString), which fires when the operator picks an entry, are
/// QComboBox's own) whose popup list follows the box's "fontSize" property ("S", "M", "L"):
/// setting it on the box sets it on the popup view too, and both are re-polished on every
/// change of a dynamic property. The popup draws its entries with a QStyledItemDelegate, so
/// style sheet rules on the items apply.
///
/// The popup list and its window are built when first asked for (view(), or the popup shown),
/// not with the box: a box that is never opened, as most boxes of a large panel, costs no
/// popup. The list carries the box's "fontSize" from the moment it exists; the styled delegate
/// is installed when the popup is first shown. GUI thread only.
class VEXA_WIDGETS_EXPORT ComboBox : public QComboBox
{
    Q_OBJECT

public:
    /// An empty combo box.
    explicit ComboBox(QWidget* parent = nullptr);

    /// Destroys the box and its popup.
    ~ComboBox() override;

    /// Gives the popup view the styled delegate and the box's "fontSize", then shows it.
    void showPopup() override;

protected:
    /// Passes "fontSize" on to the popup view and re-polishes on a change of a dynamic
    /// property, then does what QComboBox does.
    bool event(QEvent* event) override;

    /// Hands "fontSize" to the popup list as the popup window adopts it.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void carryFontSize(QAbstractItemView* popup);
};

} // namespace vexa::widgets
