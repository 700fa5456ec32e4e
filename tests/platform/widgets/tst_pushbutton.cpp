// SPDX-License-Identifier: MIT
#include <vexa/widgets/pushbutton.h>

#include <QApplication>
#include <QProxyStyle>
#include <QTest>

using vexa::widgets::PushButton;

namespace {

const QColor plainColour(10, 20, 30);
const QColor addColour(200, 100, 50);
const QColor checkedColour(40, 160, 90);

// The colours tell which rule the style sheet applied last; the widths show that rules which
// set a minimum size (and with it Qt's own bookkeeping properties) settle too.
const QString sheet = QStringLiteral(R"(
    QPushButton { color: rgb(10, 20, 30); }
    vexa--widgets--PushButton[imageBtn="add"] { color: rgb(200, 100, 50); min-width: 77px; }
    vexa--widgets--PushButton[checkStyle="checked"] { color: rgb(40, 160, 90); }
)");

QColor textColour(const QWidget& widget)
{
    return widget.palette().color(QPalette::ButtonText);
}

// A host's style that marks every widget it polishes with a dynamic property of its own.
class MarkingStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;

    void polish(QWidget* widget) override
    {
        QProxyStyle::polish(widget);
        widget->setProperty("polishCount", ++polishes);
    }

    int polishes = 0;
};

} // namespace

class TestPushButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsItsText();
    void repolishesWhenImageBtnChanges();
    void repolishesWhenCheckStyleChanges();
    void aPlainButtonWouldNotFollow();
    void aStyleThatSetsPropertiesWhilePolishingDoesNotLoop();
};

void TestPushButton::keepsItsText()
{
    PushButton button(QStringLiteral("OK"));
    QCOMPARE(button.text(), QStringLiteral("OK"));
    QVERIFY(qobject_cast<QPushButton*>(&button) != nullptr);
}

void TestPushButton::repolishesWhenImageBtnChanges()
{
    PushButton button;
    button.setStyleSheet(sheet);
    button.ensurePolished();
    QCOMPARE(textColour(button), plainColour);
    QVERIFY(button.minimumWidth() < 77);

    button.setProperty("imageBtn", QStringLiteral("add"));
    QCOMPARE(textColour(button), addColour);
    QVERIFY2(button.minimumWidth() >= 77, qPrintable(QString::number(button.minimumWidth())));

    button.setProperty("imageBtn", QStringLiteral("close"));
    QCOMPARE(textColour(button), plainColour);
}

void TestPushButton::repolishesWhenCheckStyleChanges()
{
    PushButton button;
    button.setCheckable(true);
    button.setStyleSheet(sheet);
    button.ensurePolished();
    QCOMPARE(textColour(button), plainColour);

    button.setProperty("checkStyle", QStringLiteral("checked"));
    QCOMPARE(textColour(button), checkedColour);

    button.setProperty("checkStyle", QStringLiteral("halfChecked"));
    QCOMPARE(textColour(button), plainColour);
}

void TestPushButton::aPlainButtonWouldNotFollow()
{
    // What the tests above rely on: Qt itself does not re-evaluate a style sheet when a dynamic
    // property changes, so only the kit's re-polish makes the colour follow.
    QPushButton plain;
    plain.setStyleSheet(
        QStringLiteral("QPushButton { color: rgb(10, 20, 30); }"
                       "QPushButton[imageBtn=\"add\"] { color: rgb(200, 100, 50); }"));
    plain.ensurePolished();
    plain.setProperty("imageBtn", QStringLiteral("add"));
    QCOMPARE(textColour(plain), plainColour);
}

void TestPushButton::aStyleThatSetsPropertiesWhilePolishingDoesNotLoop()
{
    MarkingStyle style;
    PushButton button;
    button.setStyle(&style);
    const int before = style.polishes;
    button.setProperty("imageBtn", QStringLiteral("add"));
    // One re-polish for the change; the style's own property does not start another round.
    QCOMPARE(style.polishes, before + 1);
    QCOMPARE(button.property("polishCount").toInt(), style.polishes);
}

QTEST_MAIN(TestPushButton)
#include "tst_pushbutton.moc"
