// SPDX-License-Identifier: MIT
#include <XJ/Utils/flowlayout.h>

#include <QApplication>
#include <QStyle>
#include <QWidget>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace XJ::Utils {

namespace {

// What the arrangement needs of a shown item, read once per invalidate().
struct ShownItem
{
    QLayoutItem* item;
    QSize sizeHint;
    QSize minimumSize;
    QSizePolicy::ControlTypes controls;
};

} // namespace

struct FlowLayout::Impl
{
    Impl(FlowLayout* owner, int horizontal, int vertical)
        : q(owner)
        , hSpacing(horizontal)
        , vSpacing(vertical)
    {}

    // The items' widgets lie scattered in memory, and with thousands of tiles reading them
    // for every width Qt tries would cost more per tile the more tiles there are. Like
    // QBoxLayout, the layout reads them once after each invalidate(), which Qt calls whenever
    // a widget is shown, hidden or changes its size hint or policy. The first pass after that
    // reads each item just before handing it on, while its widget is still in the cache.
    // Items are handed on by value and the list is walked by index: moving a widget may make
    // it call back into the layout, which invalidates it and may rebuild the list meanwhile.
    template <typename Visit>
    void forEachShown(Visit&& visit) const
    {
        if (shownValid) {
            for (std::size_t i = 0; i < shown.size(); ++i) {
                visit(ShownItem(shown[i]));
            }
            return;
        }
        const std::uint64_t startGeneration = generation;
        shown.clear();
        for (QLayoutItem* const item : items) {
            if (!item->isEmpty()) {
                const ShownItem shownItem{item, item->sizeHint(), item->minimumSize(),
                                          item->controlTypes()};
                shown.push_back(shownItem);
                visit(shownItem);
            }
        }
        shownValid = generation == startGeneration;
    }

    void forgetArrangement()
    {
        ++generation;
        shownValid = false;
        heightAtWidth.reset();
    }

    // The fallback every Qt layout applies to an unset spacing: a nested layout takes its
    // parent layout's, a top-level one its widget's style metric.
    int inheritedSpacing(QStyle::PixelMetric metric) const
    {
        QObject* const parent = q->parent();
        if (parent == nullptr) {
            return -1;
        }
        if (parent->isWidgetType()) {
            auto* const widget = static_cast<QWidget*>(parent);
            return widget->style()->pixelMetric(metric, nullptr, widget);
        }
        return static_cast<QLayout*>(parent)->spacing();
    }

    // Styles that answer -1 to the spacing metrics make the gap depend on what kind of
    // controls meet, as QBoxLayout and QGridLayout do.
    int styleGap(QSizePolicy::ControlTypes before, QSizePolicy::ControlTypes after,
                 Qt::Orientation orientation) const
    {
        QWidget* const widget = q->parentWidget();
        const QStyle* const style = widget != nullptr ? widget->style() : QApplication::style();
        return qMax(0, style->combinedLayoutSpacing(before, after, orientation, nullptr, widget));
    }

    // Any width that holds the largest shown item holds them all, one row each at worst.
    QSize largestShown(QSize ShownItem::*measure) const
    {
        QSize size(0, 0);
        forEachShown([&size, measure](const ShownItem& shownItem) {
            size = size.expandedTo(shownItem.*measure);
        });
        return size.grownBy(q->contentsMargins());
    }

    // One pass over the items, so that a relayout costs time linear in their number. Returns
    // the height the rows take, margins included; moves the items only when `place` is set.
    int arrange(const QRect& rect, bool place) const
    {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        q->getContentsMargins(&left, &top, &right, &bottom);
        const QRect area = rect.adjusted(left, top, -right, -bottom);
        const int areaEnd = area.x() + area.width();
        const int hSpace = q->horizontalSpacing();
        const int vSpace = q->verticalSpacing();
        QWidget* const widget = q->parentWidget();
        const Qt::LayoutDirection direction =
            widget != nullptr ? widget->layoutDirection() : QGuiApplication::layoutDirection();

        int x = area.x();
        int y = area.y();
        int rowHeight = 0;
        bool rowStarted = false;
        QSizePolicy::ControlTypes previousControls;
        QSizePolicy::ControlTypes rowControls;
        forEachShown([&](const ShownItem& shownItem) {
            const QSize size = shownItem.sizeHint;
            if (rowStarted) {
                const int gap =
                    hSpace >= 0 ? hSpace
                                : styleGap(previousControls, shownItem.controls, Qt::Horizontal);
                if (x + gap + size.width() > areaEnd) {
                    y += rowHeight +
                         (vSpace >= 0 ? vSpace
                                      : styleGap(rowControls, shownItem.controls, Qt::Vertical));
                    x = area.x();
                    rowHeight = 0;
                    rowControls = {};
                } else {
                    x += gap;
                }
            }
            if (place) {
                shownItem.item->setGeometry(
                    QStyle::visualRect(direction, area, QRect(QPoint(x, y), size)));
            }
            x += size.width();
            rowHeight = qMax(rowHeight, size.height());
            rowControls |= shownItem.controls;
            previousControls = shownItem.controls;
            rowStarted = true;
        });
        return y + rowHeight - rect.y() + bottom;
    }

    FlowLayout* const q;
    std::vector<QLayoutItem*> items;
    const int hSpacing;
    const int vSpacing;
    mutable std::vector<ShownItem> shown;
    mutable bool shownValid = false;
    // Counts invalidate() calls, so that a result computed while one came in is not kept.
    std::uint64_t generation = 0;
    // Qt asks for the height at the same width several times per relayout.
    mutable std::optional<std::pair<int, int>> heightAtWidth;
};

FlowLayout::FlowLayout(QWidget* parent, int margin, int hSpacing, int vSpacing)
    : QLayout(parent)
    , d(std::make_unique<Impl>(this, hSpacing, vSpacing))
{
    if (margin >= 0) {
        setContentsMargins(margin, margin, margin, margin);
    }
}

FlowLayout::FlowLayout(int margin, int hSpacing, int vSpacing)
    : FlowLayout(nullptr, margin, hSpacing, vSpacing)
{}

FlowLayout::~FlowLayout()
{
    for (QLayoutItem* const item : d->items) {
        delete item;
    }
}

void FlowLayout::addItem(QLayoutItem* item)
{
    d->items.push_back(item);
    invalidate();
}

int FlowLayout::count() const
{
    return static_cast<int>(d->items.size());
}

QLayoutItem* FlowLayout::itemAt(int index) const
{
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    return d->items[static_cast<std::size_t>(index)];
}

QLayoutItem* FlowLayout::takeAt(int index)
{
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    const auto position = d->items.begin() + index;
    QLayoutItem* const item = *position;
    d->items.erase(position);
    invalidate();
    return item;
}

Qt::Orientations FlowLayout::expandingDirections() const
{
    return Qt::Horizontal;
}

bool FlowLayout::hasHeightForWidth() const
{
    return true;
}

int FlowLayout::heightForWidth(int width) const
{
    if (d->heightAtWidth && d->heightAtWidth->first == width) {
        return d->heightAtWidth->second;
    }
    const std::uint64_t generation = d->generation;
    const int height = d->arrange(QRect(0, 0, width, 0), false);
    if (generation == d->generation) {
        d->heightAtWidth = std::make_pair(width, height);
    }
    return height;
}

QSize FlowLayout::minimumSize() const
{
    return d->largestShown(&ShownItem::minimumSize);
}

QSize FlowLayout::sizeHint() const
{
    return d->largestShown(&ShownItem::sizeHint);
}

void FlowLayout::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    d->arrange(rect, true);
}

void FlowLayout::invalidate()
{
    d->forgetArrangement();
    QLayout::invalidate();
}

int FlowLayout::horizontalSpacing() const
{
    return d->hSpacing >= 0 ? d->hSpacing : d->inheritedSpacing(QStyle::PM_LayoutHorizontalSpacing);
}

int FlowLayout::verticalSpacing() const
{
    return d->vSpacing >= 0 ? d->vSpacing : d->inheritedSpacing(QStyle::PM_LayoutVerticalSpacing);
}

} // namespace XJ::Utils
