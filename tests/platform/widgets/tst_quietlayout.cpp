// SPDX-License-Identifier: MIT
#include <vexa/widgets/quietlayout.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedLayout>
#include <QTest>
#include <QVBoxLayout>

using vexa::widgets::installQuietly;
using vexa::widgets::settleLayouts;

namespace {

// Counts the relayout requests that reach the widgets it watches, posted or sent.
class RelayoutCounter : public QObject
{
public:
    void watch(QWidget* widget) { widget->installEventFilter(this); }
    int count() const { return requests; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::LayoutRequest) {
            ++requests;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    int requests = 0;
};

// A tile-like widget: a column with two rows of labels inside a frame inside the root.
struct Nested
{
    // Installs the layouts before filling them, the order in which a plain setLayout() posts
    // a request.
    explicit Nested(bool quietly)
    {
        auto* const outer = new QHBoxLayout;
        auto* const column = new QVBoxLayout;
        frame = new QWidget(&root);
        if (quietly) {
            installQuietly(&root, outer);
            installQuietly(frame, column);
        } else {
            root.setLayout(outer);
            frame->setLayout(column);
        }
        outer->addWidget(frame);
        first = new QLabel(QStringLiteral("first line"), frame);
        second = new QLabel(QStringLiteral("a second, longer line"), frame);
        column->addWidget(first);
        column->addWidget(second);
        counter.watch(&root);
        counter.watch(frame);
    }

    QWidget root;
    QWidget* frame = nullptr;
    QLabel* first = nullptr;
    QLabel* second = nullptr;
    RelayoutCounter counter;
};

} // namespace

class TestQuietLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installingQuietlyPostsNoRelayoutRequest();
    void aStackInstalledQuietlyStillShowsItsFirstPage();
    void settledWidgetsAreLaidOutBeforeTheyShow();
    void showingASettledWidgetAsksForNoRelayout();
};

void TestQuietLayout::installingQuietlyPostsNoRelayoutRequest()
{
    Nested loud(false);
    QCoreApplication::sendPostedEvents();
    QVERIFY(loud.counter.count() > 0);

    Nested quiet(true);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(quiet.counter.count(), 0);
}

void TestQuietLayout::aStackInstalledQuietlyStillShowsItsFirstPage()
{
    QWidget owner;
    auto* const stack = new QStackedLayout;
    installQuietly(&owner, stack);
    auto* const page = new QLabel(QStringLiteral("page"), &owner);
    stack->addWidget(page);
    stack->addWidget(new QLabel(QStringLiteral("other"), &owner));
    QCOMPARE(owner.layout(), stack);
    QCOMPARE(stack->currentWidget(), page);
    owner.show();
    QVERIFY(QTest::qWaitForWindowExposed(&owner));
    QVERIFY(page->isVisible());
}

void TestQuietLayout::settledWidgetsAreLaidOutBeforeTheyShow()
{
    Nested quiet(true);
    quiet.root.resize(300, 120);
    settleLayouts(&quiet.root);
    QVERIFY(!quiet.root.isVisible());
    // Laid out: the rows stand one below the other inside the frame, which fills the root.
    QVERIFY(quiet.frame->width() > 200);
    QVERIFY(quiet.second->y() > quiet.first->y());
    QVERIFY(quiet.second->width() > 0);
}

void TestQuietLayout::showingASettledWidgetAsksForNoRelayout()
{
    Nested quiet(true);
    quiet.root.resize(300, 120);
    settleLayouts(&quiet.root);
    QCoreApplication::sendPostedEvents();
    const int before = quiet.counter.count();
    quiet.root.show();
    QVERIFY(QTest::qWaitForWindowExposed(&quiet.root));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(quiet.counter.count(), before);

    // Unsettled, the same widget asks for relayouts as it shows.
    Nested unsettled(true);
    unsettled.root.resize(300, 120);
    unsettled.root.show();
    QVERIFY(QTest::qWaitForWindowExposed(&unsettled.root));
    QCoreApplication::sendPostedEvents();
    QVERIFY(unsettled.counter.count() > 0);
}

QTEST_MAIN(TestQuietLayout)
#include "tst_quietlayout.moc"
