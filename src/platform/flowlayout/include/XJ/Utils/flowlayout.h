// SPDX-License-Identifier: MIT
#pragma once

#include <XJ/Utils/xj_flowlayout_export.h>

#include <QLayout>

#include <memory>

namespace XJ::Utils {

/// A layout that places its items left to right, each at its size hint, and starts a new row
/// below when the next item would cross the right edge. A row is as tall as its tallest item
/// and its items share its top edge; an item wider than the row gets a row of its own. Hidden
/// widgets take no place; right-to-left parents get the mirrored arrangement.
///
/// An unset (negative) spacing is inherited as in Qt's own layouts: from the parent layout,
/// or else from the parent widget's style (`PM_LayoutHorizontalSpacing`,
/// `PM_LayoutVerticalSpacing`); when that still gives -1, the style's layout spacing for the
/// control types that meet decides each gap.
///
/// Item sizes are read once after each invalidate(), which Qt calls when a managed widget is
/// shown, hidden or changes its size hint or policy; an item of another kind whose size
/// changes needs it called. A relayout costs time linear in the number of items.
///
/// Every member: GUI thread only.
class XJ_FLOWLAYOUT_EXPORT FlowLayout : public QLayout
{
    Q_OBJECT

public:
    /// Installs the layout on `parent`; a `margin` of 0 or more sets all four contents margins.
    explicit FlowLayout(QWidget* parent, int margin = -1, int hSpacing = -1, int vSpacing = -1);

    /// Creates the layout without parent, to be set on a widget or nested in another layout.
    explicit FlowLayout(int margin = -1, int hSpacing = -1, int vSpacing = -1);

    /// Deletes the layout items; the widgets they manage stay with their parent widget.
    ~FlowLayout() override;

    /// Appends `item` after the others and takes ownership of it.
    void addItem(QLayoutItem* item) override;

    /// How many items the layout holds, hidden widgets included.
    int count() const override;

    /// The item at `index` in insertion order, or null when `index` is out of range.
    QLayoutItem* itemAt(int index) const override;

    /// Removes the item at `index` and hands it over with its ownership; null when out of range.
    QLayoutItem* takeAt(int index) override;

    /// Horizontal: more width means fewer rows; the items themselves are never stretched.
    Qt::Orientations expandingDirections() const override;

    /// Always true: the height depends on how many rows the width allows.
    bool hasHeightForWidth() const override;

    /// The height the rows take at `width`, contents margins included.
    int heightForWidth(int width) const override;

    /// The largest minimum size among the shown items, plus the contents margins.
    QSize minimumSize() const override;

    /// The largest size hint among the shown items, plus the contents margins.
    QSize sizeHint() const override;

    /// Places the shown items in rows inside `rect` less the contents margins.
    void setGeometry(const QRect& rect) override;

    /// Forgets the item sizes read so far, so that the next query or placement reads them again.
    void invalidate() override;

    /// The gap between neighbours in a row, as given or inherited; -1 when there is none.
    int horizontalSpacing() const;

    /// The gap between rows, as given or inherited; -1 when there is none.
    int verticalSpacing() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace XJ::Utils
