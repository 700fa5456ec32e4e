// SPDX-License-Identifier: MIT
#include <vexa/widgets/elidinglabel.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

using vexa::widgets::ElidingLabel;

namespace {

const QString longText = QStringLiteral("Screenshot mode 3840*2160 of a very long page name");

// What the label put on screen, as pixels.
QImage rendered(QWidget& widget)
{
    return widget.grab().toImage();
}

// Shows the label and hovers over it as the platform would; true when the label took the event.
bool askForToolTip(ElidingLabel& label)
{
    label.show();
    if (!QTest::qWaitForWindowExposed(&label)) {
        return false;
    }
    QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), label.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&label, &help);
    return help.isAccepted();
}

} // namespace

class TestElidingLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheWholeText();
    void elidesOnlyWhenNarrower();
    void paintsTheElidedText();
    void asksForNoWidth();
    void showsTheWholeTextAsToolTipWhenElided();
    void showsNoToolTipWhenWhole();
    void anExplicitToolTipWins();
};

void TestElidingLabel::keepsTheWholeText()
{
    ElidingLabel label(longText);
    label.resize(40, 20);
    QCOMPARE(label.text(), longText);
}

void TestElidingLabel::elidesOnlyWhenNarrower()
{
    ElidingLabel label(longText);
    label.resize(label.fontMetrics().horizontalAdvance(longText) + 10, 20);
    QVERIFY(!label.isElided());
    label.resize(40, 20);
    QVERIFY(label.isElided());
}

void TestElidingLabel::paintsTheElidedText()
{
    ElidingLabel label(longText);
    label.resize(60, 20);
    QLabel reference(label.fontMetrics().elidedText(longText, Qt::ElideRight, 60));
    reference.resize(60, 20);
    reference.setAlignment(label.alignment());
    QCOMPARE(rendered(label), rendered(reference));
}

void TestElidingLabel::asksForNoWidth()
{
    ElidingLabel label(longText);
    QCOMPARE(label.minimumSizeHint().width(), 0);
    QVERIFY(label.minimumSizeHint().height() > 0);

    // In a fixed-width row the label gives way rather than widening the row.
    QWidget row;
    row.setFixedWidth(80);
    auto* const layout = new QHBoxLayout(&row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const inRow = new ElidingLabel(longText, &row);
    layout->addWidget(inRow);
    row.show();
    QVERIFY(QTest::qWaitForWindowExposed(&row));
    QVERIFY(inRow->width() <= 80);
    QVERIFY(inRow->isElided());
}

void TestElidingLabel::showsTheWholeTextAsToolTipWhenElided()
{
    ElidingLabel label(longText);
    label.resize(40, 20);
    askForToolTip(label);
    QTRY_VERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), longText);
    QToolTip::hideText();
}

void TestElidingLabel::showsNoToolTipWhenWhole()
{
    QToolTip::hideText();
    ElidingLabel label(QStringLiteral("Short"));
    label.resize(200, 20);
    const bool accepted = askForToolTip(label);
    QVERIFY(!accepted);
    QVERIFY(QToolTip::text().isEmpty() || !QToolTip::isVisible());
}

void TestElidingLabel::anExplicitToolTipWins()
{
    ElidingLabel label(longText);
    label.setToolTip(QStringLiteral("explicit"));
    label.resize(40, 20);
    askForToolTip(label);
    QTRY_VERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), QStringLiteral("explicit"));
    QToolTip::hideText();
}

QTEST_MAIN(TestElidingLabel)
#include "tst_elidinglabel.moc"
