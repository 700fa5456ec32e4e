// SPDX-License-Identifier: MIT
#include <vexa/widgets/combobox.h>

#include <QAbstractItemView>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>

using vexa::widgets::ComboBox;

namespace {

// Pixel sizes no platform picks by itself, so a match shows the rule was applied.
const QString sheet = QStringLiteral(R"(
    QAbstractItemView[fontSize="S"] { font-size: 9px; }
    QAbstractItemView[fontSize="L"] { font-size: 17px; }
)");

void fill(ComboBox& box)
{
    box.addItem(QStringLiteral("1920*1080@60.00,NV12"));
    box.addItem(QStringLiteral("1280*720@30.00,YUY2"), 720);
    box.addItem(QStringLiteral("640*480@25.00,MJPG"), 480);
}

} // namespace

class TestComboBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addsAndFindsItems();
    void textActivatedFiresWhenTheOperatorStepsWithTheKeyboard();
    void textActivatedFiresWhenPickedInThePopup();
    void popupViewCarriesFontSize();
    void popupBuiltLaterTakesFontSize();
    void popupViewIsRepolishedOnChange();
    void itemsAreDrawnByAStyledDelegate();
    void aBoxNeverOpenedBuildsNoPopup();
};

void TestComboBox::addsAndFindsItems()
{
    ComboBox box;
    fill(box);
    QCOMPARE(box.count(), 3);
    QCOMPARE(box.findText(QStringLiteral("1280*720@30.00,YUY2")), 1);
    QCOMPARE(box.itemData(1).toInt(), 720);
    QVERIFY(!box.itemData(0).isValid());
    QCOMPARE(box.findText(QStringLiteral("1280*720@30.00,yuy2"), Qt::MatchExactly), -1);
    QCOMPARE(box.findText(QStringLiteral("640*480"), Qt::MatchStartsWith), 2);
}

void TestComboBox::textActivatedFiresWhenTheOperatorStepsWithTheKeyboard()
{
    ComboBox box;
    fill(box);
    QSignalSpy activated(&box, &ComboBox::textActivated);
    box.show();
    QVERIFY(QTest::qWaitForWindowActive(&box));

    box.setCurrentIndex(1);
    QCOMPARE(activated.count(), 0);

    QTest::keyClick(&box, Qt::Key_Down);
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), QStringLiteral("640*480@25.00,MJPG"));
}

void TestComboBox::textActivatedFiresWhenPickedInThePopup()
{
    ComboBox box;
    fill(box);
    QSignalSpy activated(&box, &ComboBox::textActivated);
    box.show();
    QVERIFY(QTest::qWaitForWindowActive(&box));

    QTest::mouseClick(&box, Qt::LeftButton);
    QTRY_VERIFY(box.view()->isVisible());
    QTest::keyClick(box.view(), Qt::Key_Down);
    QTest::keyClick(box.view(), Qt::Key_Return);
    QTRY_VERIFY(!box.view()->isVisible());
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), QStringLiteral("1280*720@30.00,YUY2"));
    QCOMPARE(box.currentIndex(), 1);
}

void TestComboBox::popupViewCarriesFontSize()
{
    ComboBox box;
    QVERIFY(!box.view()->property("fontSize").isValid());
    box.setProperty("fontSize", QStringLiteral("S"));
    QCOMPARE(box.view()->property("fontSize").toString(), QStringLiteral("S"));
    box.setProperty("fontSize", QStringLiteral("M"));
    QCOMPARE(box.view()->property("fontSize").toString(), QStringLiteral("M"));
}

void TestComboBox::popupBuiltLaterTakesFontSize()
{
    ComboBox box;
    fill(box);
    box.setProperty("fontSize", QStringLiteral("S"));
    QVERIFY(box.findChild<QAbstractItemView*>() == nullptr);
    QCOMPARE(box.view()->property("fontSize").toString(), QStringLiteral("S"));

    ComboBox opened;
    fill(opened);
    opened.setProperty("fontSize", QStringLiteral("L"));
    opened.show();
    QVERIFY(QTest::qWaitForWindowExposed(&opened));
    opened.showPopup();
    QCOMPARE(opened.view()->property("fontSize").toString(), QStringLiteral("L"));
    opened.hidePopup();
}

void TestComboBox::popupViewIsRepolishedOnChange()
{
    ComboBox box;
    box.setStyleSheet(sheet);
    fill(box);
    box.ensurePolished();
    box.view()->ensurePolished();
    QVERIFY(box.view()->font().pixelSize() != 9);

    box.setProperty("fontSize", QStringLiteral("S"));
    QCOMPARE(box.view()->font().pixelSize(), 9);

    box.setProperty("fontSize", QStringLiteral("L"));
    QCOMPARE(box.view()->font().pixelSize(), 17);
}

void TestComboBox::itemsAreDrawnByAStyledDelegate()
{
    ComboBox box;
    fill(box);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    box.showPopup();
    QVERIFY(qobject_cast<QStyledItemDelegate*>(box.itemDelegate()) != nullptr);
    box.hidePopup();
}

void TestComboBox::aBoxNeverOpenedBuildsNoPopup()
{
    ComboBox box;
    fill(box);
    box.setProperty("fontSize", QStringLiteral("S"));
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QVERIFY(box.findChild<QAbstractItemView*>() == nullptr);
}

QTEST_MAIN(TestComboBox)
#include "tst_combobox.moc"
