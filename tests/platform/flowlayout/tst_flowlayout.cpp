// SPDX-License-Identifier: MIT
#include <XJ/Utils/flowlayout.h>

#include <QPointer>
#include <QProxyStyle>
#include <QSpacerItem>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <vector>

using XJ::Utils::FlowLayout;

namespace {

constexpr int kItemWidth = 30;
constexpr int kItemHeight = 20;
constexpr int kHSpacing = 4;
constexpr int kVSpacing = 3;
// Four different margins, so that a left/right or top/bottom mix-up shows.
const QMargins kMargins(5, 6, 7, 8);

QWidget* addFixed(FlowLayout* layout, int width = kItemWidth, int height = kItemHeight)
{
    auto* widget = new QWidget;
    widget->setFixedSize(width, height);
    layout->addWidget(widget);
    return widget;
}

// A parent that is never shown, so that only the layout moves the widgets.
struct Flow
{
    explicit Flow(int items, int hSpacing = kHSpacing, int vSpacing = kVSpacing)
        : layout(new FlowLayout(&host, 0, hSpacing, vSpacing))
    {
        layout->setContentsMargins(kMargins);
        for (int i = 0; i < items; ++i) {
            widgets.push_back(addFixed(layout));
        }
    }

    QVector<QPoint> positions() const
    {
        QVector<QPoint> result;
        for (const QWidget* widget : widgets) {
            result.append(widget->pos());
        }
        return result;
    }

    // The lowest edge of a shown widget, plus the bottom margin: what heightForWidth promises.
    int usedHeight() const
    {
        int bottom = kMargins.top();
        for (const QWidget* widget : widgets) {
            if (!widget->isHidden()) {
                bottom = qMax(bottom, widget->geometry().bottom() + 1);
            }
        }
        return bottom + kMargins.bottom();
    }

    QWidget host;
    FlowLayout* const layout;
    std::vector<QWidget*> widgets;
};

// Row y positions for the fixed-size items with the margins and spacings above.
constexpr int row(int index)
{
    return 6 + index * (kItemHeight + kVSpacing);
}

// Column x positions likewise.
constexpr int column(int index)
{
    return 5 + index * (kItemWidth + kHSpacing);
}

// The width whose content area holds exactly `items` items in a row.
constexpr int widthFor(int items)
{
    return 5 + 7 + items * kItemWidth + (items - 1) * kHSpacing;
}

constexpr int heightOfRows(int rows)
{
    return 6 + rows * kItemHeight + (rows - 1) * kVSpacing + 8;
}

class SpacingStyle : public QProxyStyle
{
public:
    SpacingStyle(int horizontal, int vertical)
        : QProxyStyle(QStringLiteral("fusion"))
        , horizontalMetric(horizontal)
        , verticalMetric(vertical)
    {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        if (metric == PM_LayoutHorizontalSpacing) {
            return horizontalMetric;
        }
        if (metric == PM_LayoutVerticalSpacing) {
            return verticalMetric;
        }
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    // Buttons next to buttons get 5, anything else side by side 2, rows 9.
    int layoutSpacing(QSizePolicy::ControlType control1, QSizePolicy::ControlType control2,
                      Qt::Orientation orientation, const QStyleOption*,
                      const QWidget*) const override
    {
        if (orientation == Qt::Vertical) {
            return 9;
        }
        return control1 == QSizePolicy::PushButton && control2 == QSizePolicy::PushButton ? 5 : 2;
    }

    const int horizontalMetric;
    const int verticalMetric;
};

class TrackedSpacer : public QSpacerItem
{
public:
    explicit TrackedSpacer(bool* deletedFlag)
        : QSpacerItem(10, 10)
        , deleted(deletedFlag)
    {}
    ~TrackedSpacer() override { *deleted = true; }

    bool* const deleted;
};

class HintedWidget : public QWidget
{
public:
    HintedWidget(QSize size, QSize minimum)
        : hint(size)
    {
        setMinimumSize(minimum);
    }
    QSize sizeHint() const override { return hint; }

    const QSize hint;
};

// Widens another widget the first time it is moved while shown, as a tile might that
// reacts to its position.
class GrowingNeighbourWidget : public QWidget
{
public:
    explicit GrowingNeighbourWidget(QWidget* other)
        : neighbour(other)
    {
        setFixedSize(kItemWidth, kItemHeight);
    }

protected:
    void moveEvent(QMoveEvent* event) override
    {
        if (isVisible() && !grown) {
            grown = true;
            neighbour->setFixedSize(2 * kItemWidth, kItemHeight);
        }
        QWidget::moveEvent(event);
    }

private:
    QWidget* const neighbour;
    bool grown = false;
};

} // namespace

class TestFlowLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrapsAtTheRightEdge_data();
    void wrapsAtTheRightEdge();
    void followsTheOriginOfTheRect();
    void rowIsAsTallAsItsTallestItem();
    void itemWiderThanTheRowGetsARowOfItsOwn();
    void emptyLayoutIsOnlyMargins();
    void hiddenWidgetsTakeNoPlace();
    void hiddenWidgetsChangeTheHeight();
    void retainedHiddenWidgetKeepsItsPlace();
    void sizeHintChangeRelayoutsAtTheSameGeometry();
    void rightToLeftMirrorsTheRows();
    void changeDuringRelayoutIsNotLost();
    void changeDuringADirectRelayoutIsReadAgain();
    void countItemAtAndTakeAt();
    void takenItemBelongsToTheCaller();
    void deletedWidgetLeavesTheLayout();
    void destructorDeletesTheItemsButNotTheWidgets();
    void addWidgetAdoptsTheWidget();
    void resizingTheParentRelayouts();
    void inABoxLayoutTheAreaGetsTheHeightOfItsRows();
    void marginArgumentSetsAllFourMargins();
    void negativeMarginKeepsTheStyleMargins();
    void explicitSpacingsAreKept();
    void negativeSpacingTakesTheParentWidgetStyle();
    void negativeSpacingTakesTheParentLayoutSpacing();
    void negativeSpacingWithoutParentIsUnresolved();
    void unresolvedSpacingAsksTheStyleForEachPair();
    void minimumSizeAndSizeHintFollowTheLargestShownItem();
    void expandsHorizontallyWithHeightForWidth();
};

void TestFlowLayout::wrapsAtTheRightEdge_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QVector<QPoint>>("positions");
    QTest::addColumn<int>("height");

    const QVector<QPoint> oneRow{{column(0), row(0)},
                                 {column(1), row(0)},
                                 {column(2), row(0)},
                                 {column(3), row(0)},
                                 {column(4), row(0)}};
    const QVector<QPoint> oneColumn{{column(0), row(0)},
                                    {column(0), row(1)},
                                    {column(0), row(2)},
                                    {column(0), row(3)},
                                    {column(0), row(4)}};
    const QVector<QPoint> fourThenOne{{column(0), row(0)},
                                      {column(1), row(0)},
                                      {column(2), row(0)},
                                      {column(3), row(0)},
                                      {column(0), row(1)}};
    const QVector<QPoint> threePerRow{{column(0), row(0)},
                                      {column(1), row(0)},
                                      {column(2), row(0)},
                                      {column(0), row(1)},
                                      {column(1), row(1)}};
    const QVector<QPoint> twoPerRow{{column(0), row(0)},
                                    {column(1), row(0)},
                                    {column(0), row(1)},
                                    {column(1), row(1)},
                                    {column(0), row(2)}};

    QTest::newRow("wide") << 500 << oneRow << heightOfRows(1);
    QTest::newRow("exactly five") << widthFor(5) << oneRow << heightOfRows(1);
    QTest::newRow("one pixel short of five") << widthFor(5) - 1 << fourThenOne << heightOfRows(2);
    QTest::newRow("exactly four") << widthFor(4) << fourThenOne << heightOfRows(2);
    QTest::newRow("exactly three") << widthFor(3) << threePerRow << heightOfRows(2);
    QTest::newRow("one pixel short of three") << widthFor(3) - 1 << twoPerRow << heightOfRows(3);
    QTest::newRow("exactly two") << widthFor(2) << twoPerRow << heightOfRows(3);
    QTest::newRow("one pixel short of two") << widthFor(2) - 1 << oneColumn << heightOfRows(5);
    QTest::newRow("exactly one") << widthFor(1) << oneColumn << heightOfRows(5);
    QTest::newRow("narrower than one") << 20 << oneColumn << heightOfRows(5);
    QTest::newRow("no width") << 0 << oneColumn << heightOfRows(5);
}

void TestFlowLayout::wrapsAtTheRightEdge()
{
    QFETCH(int, width);
    QFETCH(QVector<QPoint>, positions);
    QFETCH(int, height);

    Flow flow(5);
    flow.layout->setGeometry(QRect(0, 0, width, 1000));
    QCOMPARE(flow.positions(), positions);
    for (const QWidget* widget : flow.widgets) {
        QCOMPARE(widget->size(), QSize(kItemWidth, kItemHeight));
    }
    QCOMPARE(flow.layout->heightForWidth(width), height);
    QCOMPARE(flow.layout->heightForWidth(width), flow.usedHeight());
}

void TestFlowLayout::followsTheOriginOfTheRect()
{
    Flow flow(4);
    flow.layout->setGeometry(QRect(100, 50, widthFor(3), 1000));
    const QVector<QPoint> expected{{100 + column(0), 50 + row(0)},
                                   {100 + column(1), 50 + row(0)},
                                   {100 + column(2), 50 + row(0)},
                                   {100 + column(0), 50 + row(1)}};
    QCOMPARE(flow.positions(), expected);
}

void TestFlowLayout::rowIsAsTallAsItsTallestItem()
{
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, kHSpacing, kVSpacing);
    layout->setContentsMargins(kMargins);
    QWidget* first = addFixed(layout, 30, 20);
    QWidget* tall = addFixed(layout, 50, 40);
    QWidget* small = addFixed(layout, 20, 10);
    QWidget* next = addFixed(layout, 60, 15);

    const int width = 5 + 30 + 4 + 50 + 4 + 20 + 7;
    layout->setGeometry(QRect(0, 0, width, 500));
    QCOMPARE(first->geometry(), QRect(5, 6, 30, 20));
    QCOMPARE(tall->geometry(), QRect(39, 6, 50, 40));
    QCOMPARE(small->geometry(), QRect(93, 6, 20, 10));
    QCOMPARE(next->geometry(), QRect(5, 6 + 40 + 3, 60, 15));
    QCOMPARE(layout->heightForWidth(width), 6 + 40 + 3 + 15 + 8);
}

void TestFlowLayout::itemWiderThanTheRowGetsARowOfItsOwn()
{
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, kHSpacing, kVSpacing);
    QWidget* before = addFixed(layout);
    QWidget* wide = addFixed(layout, 200, 20);
    QWidget* after = addFixed(layout);

    layout->setGeometry(QRect(0, 0, 100, 500));
    QCOMPARE(before->pos(), QPoint(0, 0));
    QCOMPARE(wide->geometry(), QRect(0, 23, 200, 20));
    QCOMPARE(after->pos(), QPoint(0, 46));
    QCOMPARE(layout->heightForWidth(100), 66);
}

void TestFlowLayout::emptyLayoutIsOnlyMargins()
{
    Flow flow(0);
    QCOMPARE(flow.layout->heightForWidth(300), kMargins.top() + kMargins.bottom());
    QCOMPARE(flow.layout->minimumSize(), QSize(12, 14));
    QCOMPARE(flow.layout->sizeHint(), QSize(12, 14));
    flow.layout->setGeometry(QRect(0, 0, 300, 300));
}

void TestFlowLayout::hiddenWidgetsTakeNoPlace()
{
    Flow flow(4);
    flow.widgets[1]->hide();
    flow.layout->setGeometry(QRect(0, 0, widthFor(2), 1000));

    QCOMPARE(flow.layout->count(), 4);
    QCOMPARE(flow.layout->itemAt(1)->widget(), flow.widgets[1]);
    QCOMPARE(flow.widgets[0]->pos(), QPoint(column(0), row(0)));
    QCOMPARE(flow.widgets[2]->pos(), QPoint(column(1), row(0)));
    QCOMPARE(flow.widgets[3]->pos(), QPoint(column(0), row(1)));

    flow.widgets[1]->show();
    flow.layout->setGeometry(QRect(0, 0, widthFor(2), 1000));
    QCOMPARE(flow.widgets[1]->pos(), QPoint(column(1), row(0)));
    QCOMPARE(flow.widgets[2]->pos(), QPoint(column(0), row(1)));
    QCOMPARE(flow.widgets[3]->pos(), QPoint(column(1), row(1)));
}

void TestFlowLayout::hiddenWidgetsChangeTheHeight()
{
    Flow flow(3);
    QCOMPARE(flow.layout->heightForWidth(widthFor(2)), heightOfRows(2));

    flow.widgets[2]->hide();
    QCOMPARE(flow.layout->heightForWidth(widthFor(2)), heightOfRows(1));

    for (QWidget* widget : flow.widgets) {
        widget->hide();
    }
    QCOMPARE(flow.layout->heightForWidth(widthFor(2)), kMargins.top() + kMargins.bottom());
    QCOMPARE(flow.layout->sizeHint(), QSize(12, 14));
}

void TestFlowLayout::retainedHiddenWidgetKeepsItsPlace()
{
    Flow flow(3);
    QSizePolicy policy = flow.widgets[1]->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    flow.widgets[1]->setSizePolicy(policy);
    flow.widgets[1]->hide();

    flow.layout->setGeometry(QRect(0, 0, widthFor(3), 1000));
    QCOMPARE(flow.widgets[2]->pos(), QPoint(column(2), row(0)));
}

void TestFlowLayout::sizeHintChangeRelayoutsAtTheSameGeometry()
{
    Flow flow(3);
    const QRect rect(0, 0, widthFor(3), 1000);
    flow.layout->setGeometry(rect);
    QCOMPARE(flow.widgets[2]->pos(), QPoint(column(2), row(0)));

    flow.widgets[0]->setFixedSize(kItemWidth * 2, kItemHeight);
    flow.layout->setGeometry(rect);
    QCOMPARE(flow.widgets[1]->pos(), QPoint(5 + 2 * kItemWidth + kHSpacing, row(0)));
    QCOMPARE(flow.widgets[2]->pos(), QPoint(column(0), row(1)));
    QCOMPARE(flow.layout->heightForWidth(rect.width()), heightOfRows(2));
}

void TestFlowLayout::rightToLeftMirrorsTheRows()
{
    Flow flow(5);
    flow.host.setLayoutDirection(Qt::RightToLeft);
    const QRect rect(0, 0, widthFor(3), 1000);
    flow.layout->setGeometry(rect);
    // Mirrored inside the content area, which runs from x 5 to x 102.
    const QVector<QPoint> mirrored{{column(2), row(0)},
                                   {column(1), row(0)},
                                   {column(0), row(0)},
                                   {column(2), row(1)},
                                   {column(1), row(1)}};
    QCOMPARE(flow.positions(), mirrored);

    flow.host.setLayoutDirection(Qt::LeftToRight);
    flow.layout->setGeometry(rect);
    QCOMPARE(flow.widgets[0]->pos(), QPoint(column(0), row(0)));
    QCOMPARE(flow.widgets[4]->pos(), QPoint(column(1), row(1)));
}

void TestFlowLayout::changeDuringRelayoutIsNotLost()
{
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, kHSpacing, kVSpacing);
    QWidget* first = addFixed(layout);
    QWidget* second = addFixed(layout);
    QWidget* third = addFixed(layout);
    auto* mover = new GrowingNeighbourWidget(first);
    layout->addWidget(mover);
    host.resize(500, 200);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));
    QTRY_COMPARE(mover->pos(), QPoint(3 * (kItemWidth + kHSpacing), 0));

    // Three per row: the mover wraps, widens the first widget, and the rows must follow that.
    host.resize(3 * kItemWidth + 2 * kHSpacing, 200);
    QTRY_COMPARE(first->width(), 2 * kItemWidth);
    QTRY_COMPARE(second->pos(), QPoint(2 * kItemWidth + kHSpacing, 0));
    QCOMPARE(third->pos(), QPoint(0, kItemHeight + kVSpacing));
    QCOMPARE(mover->pos(), QPoint(kItemWidth + kHSpacing, kItemHeight + kVSpacing));
}

void TestFlowLayout::changeDuringADirectRelayoutIsReadAgain()
{
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, kHSpacing, kVSpacing);
    QWidget* first = addFixed(layout);
    QWidget* second = addFixed(layout);
    addFixed(layout);
    auto* mover = new GrowingNeighbourWidget(first);
    layout->addWidget(mover);
    host.resize(500, 200);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));

    // No events run between the calls: the second one alone must see the wider first widget,
    // which grew while the first call was reading the items.
    const QRect threePerRow(0, 0, 3 * kItemWidth + 2 * kHSpacing, 200);
    layout->invalidate();
    layout->setGeometry(threePerRow);
    QCOMPARE(first->width(), 2 * kItemWidth);
    layout->setGeometry(threePerRow);
    QCOMPARE(second->pos(), QPoint(2 * kItemWidth + kHSpacing, 0));
    QCOMPARE(mover->pos(), QPoint(kItemWidth + kHSpacing, kItemHeight + kVSpacing));
}

void TestFlowLayout::countItemAtAndTakeAt()
{
    Flow flow(0);
    QCOMPARE(flow.layout->count(), 0);
    QCOMPARE(flow.layout->itemAt(0), nullptr);
    QCOMPARE(flow.layout->takeAt(0), nullptr);

    QWidget* a = addFixed(flow.layout);
    QWidget* b = addFixed(flow.layout);
    QWidget* c = addFixed(flow.layout);
    QCOMPARE(flow.layout->count(), 3);
    QCOMPARE(flow.layout->itemAt(0)->widget(), a);
    QCOMPARE(flow.layout->itemAt(1)->widget(), b);
    QCOMPARE(flow.layout->itemAt(2)->widget(), c);
    QCOMPARE(flow.layout->itemAt(3), nullptr);
    QCOMPARE(flow.layout->itemAt(-1), nullptr);
    QCOMPARE(flow.layout->takeAt(3), nullptr);
    QCOMPARE(flow.layout->takeAt(-1), nullptr);
    QCOMPARE(flow.layout->count(), 3);
    QCOMPARE(flow.layout->indexOf(c), 2);

    QLayoutItem* taken = flow.layout->takeAt(1);
    QVERIFY(taken != nullptr);
    QCOMPARE(taken->widget(), b);
    delete taken;
    QCOMPARE(flow.layout->count(), 2);
    QCOMPARE(flow.layout->itemAt(0)->widget(), a);
    QCOMPARE(flow.layout->itemAt(1)->widget(), c);
    QCOMPARE(flow.layout->indexOf(c), 1);
    QCOMPARE(flow.layout->indexOf(b), -1);

    flow.layout->setGeometry(QRect(0, 0, 500, 500));
    QCOMPARE(a->pos(), QPoint(column(0), row(0)));
    QCOMPARE(c->pos(), QPoint(column(1), row(0)));

    delete flow.layout->takeAt(1);
    delete flow.layout->takeAt(0);
    QCOMPARE(flow.layout->count(), 0);
    QCOMPARE(flow.layout->itemAt(0), nullptr);
}

void TestFlowLayout::takenItemBelongsToTheCaller()
{
    bool deleted = false;
    QLayoutItem* taken = nullptr;
    {
        FlowLayout layout;
        layout.addItem(new TrackedSpacer(&deleted));
        taken = layout.takeAt(0);
    }
    QVERIFY(!deleted);
    delete taken;
    QVERIFY(deleted);
}

void TestFlowLayout::deletedWidgetLeavesTheLayout()
{
    Flow flow(3);
    delete flow.widgets[1];
    flow.widgets.erase(flow.widgets.begin() + 1);

    QCOMPARE(flow.layout->count(), 2);
    flow.layout->setGeometry(QRect(0, 0, 500, 500));
    QCOMPARE(flow.positions(), (QVector<QPoint>{{column(0), row(0)}, {column(1), row(0)}}));
}

void TestFlowLayout::destructorDeletesTheItemsButNotTheWidgets()
{
    bool deleted = false;
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, 0, 0);
    QPointer<QWidget> widget = addFixed(layout);
    layout->addItem(new TrackedSpacer(&deleted));

    delete layout;
    QVERIFY(deleted);
    QVERIFY(!widget.isNull());
    QCOMPARE(widget->parentWidget(), &host);
    QCOMPARE(host.layout(), nullptr);
}

void TestFlowLayout::addWidgetAdoptsTheWidget()
{
    QWidget host;
    auto* layout = new FlowLayout(&host);
    QCOMPARE(host.layout(), layout);
    auto* widget = new QWidget;
    layout->addWidget(widget);
    QCOMPARE(widget->parentWidget(), &host);
    QCOMPARE(layout->indexOf(widget), 0);
}

void TestFlowLayout::resizingTheParentRelayouts()
{
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, kHSpacing, kVSpacing);
    std::vector<QWidget*> widgets;
    for (int i = 0; i < 5; ++i) {
        widgets.push_back(addFixed(layout));
    }
    const int threeWide = 3 * kItemWidth + 2 * kHSpacing;
    host.resize(threeWide, 200);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));

    QTRY_COMPARE(widgets[2]->pos(), QPoint(68, 0));
    QCOMPARE(widgets[3]->pos(), QPoint(0, 23));

    host.resize(threeWide - 1, 200);
    QTRY_COMPARE(widgets[2]->pos(), QPoint(0, 23));
    QCOMPARE(widgets[4]->pos(), QPoint(0, 46));

    host.resize(500, 200);
    QTRY_COMPARE(widgets[4]->pos(), QPoint(136, 0));
}

void TestFlowLayout::inABoxLayoutTheAreaGetsTheHeightOfItsRows()
{
    QWidget host;
    auto* column = new QVBoxLayout(&host);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* area = new QWidget;
    auto* layout = new FlowLayout(area, 0, 8, 8);
    for (int i = 0; i < 6; ++i) {
        addFixed(layout, 100, 50);
    }
    column->addWidget(area);
    column->addStretch(1);

    host.resize(3 * 100 + 2 * 8, 600);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));
    QTRY_COMPARE(area->height(), 2 * 50 + 8);
    QCOMPARE(area->height(), layout->heightForWidth(area->width()));

    host.resize(3 * 100 + 2 * 8 - 1, 600);
    QTRY_COMPARE(area->height(), 3 * 50 + 2 * 8);
    QCOMPARE(layout->itemAt(5)->widget()->pos(), QPoint(108, 116));
}

void TestFlowLayout::marginArgumentSetsAllFourMargins()
{
    QWidget host;
    const FlowLayout* layout = new FlowLayout(&host, 5, 0, 0);
    QCOMPARE(layout->contentsMargins(), QMargins(5, 5, 5, 5));

    const FlowLayout zero(0, 0, 0);
    QCOMPARE(zero.contentsMargins(), QMargins(0, 0, 0, 0));
}

void TestFlowLayout::negativeMarginKeepsTheStyleMargins()
{
    QWidget host;
    const FlowLayout* layout = new FlowLayout(&host, -1, 0, 0);
    QWidget other;
    const QVBoxLayout* reference = new QVBoxLayout(&other);
    QCOMPARE(layout->contentsMargins(), reference->contentsMargins());
}

void TestFlowLayout::explicitSpacingsAreKept()
{
    QWidget host;
    const FlowLayout* layout = new FlowLayout(&host, 0, 8, 3);
    QCOMPARE(layout->horizontalSpacing(), 8);
    QCOMPARE(layout->verticalSpacing(), 3);

    const FlowLayout zero(0, 0, 0);
    QCOMPARE(zero.horizontalSpacing(), 0);
    QCOMPARE(zero.verticalSpacing(), 0);
}

void TestFlowLayout::negativeSpacingTakesTheParentWidgetStyle()
{
    SpacingStyle style(9, 13);
    QWidget host;
    host.setStyle(&style);
    auto* layout = new FlowLayout(&host, 0, -1, -1);
    QCOMPARE(layout->horizontalSpacing(), 9);
    QCOMPARE(layout->verticalSpacing(), 13);

    QWidget* a = addFixed(layout);
    QWidget* b = addFixed(layout);
    QWidget* c = addFixed(layout);
    layout->setGeometry(QRect(0, 0, 2 * kItemWidth + 9, 500));
    QCOMPARE(a->pos(), QPoint(0, 0));
    QCOMPARE(b->pos(), QPoint(kItemWidth + 9, 0));
    QCOMPARE(c->pos(), QPoint(0, kItemHeight + 13));

    QWidget plain;
    const FlowLayout* defaults = new FlowLayout(&plain, 0, -1, -1);
    QCOMPARE(defaults->horizontalSpacing(),
             plain.style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr, &plain));
    QCOMPARE(defaults->verticalSpacing(),
             plain.style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing, nullptr, &plain));
}

void TestFlowLayout::negativeSpacingTakesTheParentLayoutSpacing()
{
    QWidget host;
    auto* column = new QVBoxLayout(&host);
    column->setSpacing(11);
    auto* layout = new FlowLayout(0, -1, 2);
    column->addLayout(layout);
    QCOMPARE(layout->horizontalSpacing(), 11);
    QCOMPARE(layout->verticalSpacing(), 2);
}

void TestFlowLayout::negativeSpacingWithoutParentIsUnresolved()
{
    const FlowLayout layout;
    QCOMPARE(layout.horizontalSpacing(), -1);
    QCOMPARE(layout.verticalSpacing(), -1);
}

void TestFlowLayout::unresolvedSpacingAsksTheStyleForEachPair()
{
    SpacingStyle style(-1, -1);
    QWidget host;
    host.setStyle(&style);
    auto* layout = new FlowLayout(&host, 0, -1, -1);
    QCOMPARE(layout->horizontalSpacing(), -1);
    QCOMPARE(layout->verticalSpacing(), -1);

    QWidget* first = addFixed(layout);
    QWidget* second = addFixed(layout);
    QWidget* third = addFixed(layout);
    for (QWidget* button : {first, second}) {
        QSizePolicy policy = button->sizePolicy();
        policy.setControlType(QSizePolicy::PushButton);
        button->setSizePolicy(policy);
    }
    QSizePolicy policy = third->sizePolicy();
    policy.setControlType(QSizePolicy::CheckBox);
    third->setSizePolicy(policy);

    layout->setGeometry(QRect(0, 0, 500, 500));
    QCOMPARE(second->pos(), QPoint(kItemWidth + 5, 0));
    QCOMPARE(third->pos(), QPoint(2 * kItemWidth + 5 + 2, 0));

    const int twoButtons = 2 * kItemWidth + 5;
    layout->setGeometry(QRect(0, 0, twoButtons, 500));
    QCOMPARE(second->pos(), QPoint(kItemWidth + 5, 0));
    QCOMPARE(third->pos(), QPoint(0, kItemHeight + 9));
    QCOMPARE(layout->heightForWidth(twoButtons), 2 * kItemHeight + 9);
}

void TestFlowLayout::minimumSizeAndSizeHintFollowTheLargestShownItem()
{
    QWidget host;
    auto* layout = new FlowLayout(&host, 0, kHSpacing, kVSpacing);
    layout->setContentsMargins(kMargins);
    layout->addWidget(new HintedWidget(QSize(40, 25), QSize(20, 22)));
    layout->addWidget(new HintedWidget(QSize(35, 30), QSize(25, 10)));
    auto* hidden = new HintedWidget(QSize(400, 300), QSize(200, 100));
    layout->addWidget(hidden);
    hidden->hide();

    QCOMPARE(layout->minimumSize(), QSize(25 + 12, 22 + 14));
    QCOMPARE(layout->sizeHint(), QSize(40 + 12, 30 + 14));

    hidden->show();
    QCOMPARE(layout->minimumSize(), QSize(200 + 12, 100 + 14));
    QCOMPARE(layout->sizeHint(), QSize(400 + 12, 300 + 14));
}

void TestFlowLayout::expandsHorizontallyWithHeightForWidth()
{
    const FlowLayout layout;
    QCOMPARE(layout.expandingDirections(), Qt::Orientations(Qt::Horizontal));
    QVERIFY(layout.hasHeightForWidth());
}

QTEST_MAIN(TestFlowLayout)
#include "tst_flowlayout.moc"
