// SPDX-License-Identifier: MIT
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/tipdialog.h>

#include <vexainputsourcewidget/testing/modalanswerer.h>

#include <QCheckBox>
#include <QLabel>
#include <QTest>

using vexa::testing::ModalAnswerer;
using vexa::widgets::PromptBoxTriggerInfo;
using vexa::widgets::PushButton;
using vexa::widgets::TipDialog;

namespace {

// The delete confirmation as the panel asks it.
void askToDelete(TipDialog& tip)
{
    tip.setTipText(QStringLiteral("The source is in use. Delete it anyway?"));
    tip.setBtnText(QStringLiteral("OK"), QStringLiteral("Cancel"), QString());
}

PushButton* button(const TipDialog& tip, const char* name)
{
    return tip.findChild<PushButton*>(QLatin1String(name));
}

} // namespace

class TestTipDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resultCodesAreTheDocumentedValues();
    void firstButtonGivesOne();
    void eachButtonGivesItsOwnCode_data();
    void eachButtonGivesItsOwnCode();
    void tickedCheckBoxIsReported();
    void checkBoxIsHiddenUnlessAsked();
    void closeButtonGivesZero();
    void escapeGivesZero();
    void windowCloseGivesZero();
    void enterConfirms();
    void emptyButtonTextHidesTheButton();
    void hiddenButtonCannotBeClicked();
    void showsTheTipAndATitleAfterItsType();
    void tipTextIsPlainText();
    void runsAgainForAnotherAnswer();
    void worksWithAParent();
};

void TestTipDialog::resultCodesAreTheDocumentedValues()
{
    QCOMPARE(int(TipDialog::Closed), 0);
    QCOMPARE(int(TipDialog::FirstButton), 1);
    QCOMPARE(int(TipDialog::SecondButton), 2);
    QCOMPARE(int(TipDialog::ThirdButton), 3);
    QCOMPARE(int(TipDialog::Notice), 0);
    QCOMPARE(int(TipDialog::Warning), 1);
}

void TestTipDialog::firstButtonGivesOne()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    askToDelete(tip);
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    const PromptBoxTriggerInfo info = tip.run();
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(info.result, 1);
    QCOMPARE(info.checked, false);
    QVERIFY(!tip.isVisible());
}

void TestTipDialog::eachButtonGivesItsOwnCode_data()
{
    QTest::addColumn<QString>("clicked");
    QTest::addColumn<int>("expected");
    QTest::newRow("first by text") << QStringLiteral("Keep") << 1;
    QTest::newRow("second") << QStringLiteral("secondBtn") << 2;
    QTest::newRow("third") << QStringLiteral("thirdBtn") << 3;
}

void TestTipDialog::eachButtonGivesItsOwnCode()
{
    QFETCH(QString, clicked);
    QFETCH(int, expected);
    TipDialog tip(TipDialog::Warning, nullptr);
    tip.setTipText(QStringLiteral("Save the changes?"));
    tip.setBtnText(QStringLiteral("Keep"), QStringLiteral("Discard"), QStringLiteral("Back"));
    ModalAnswerer answerer;
    answerer.clickWhenShown(clicked);
    QCOMPARE(tip.run().result, expected);
    QVERIFY(answerer.answered());
}

void TestTipDialog::tickedCheckBoxIsReported()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    tip.setTipText(QStringLiteral("Clear every input source?"));
    tip.setCheckText(QStringLiteral("Also clear sources in use"), true);
    tip.setBtnText(QStringLiteral("OK"), QStringLiteral("Cancel"), QString());
    ModalAnswerer answerer;
    answerer.clickWhenShown({QStringLiteral("checkBox"), QStringLiteral("firstBtn")});
    const auto [result, checked] = tip.run();
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(result, 1);
    QCOMPARE(checked, true);
}

void TestTipDialog::checkBoxIsHiddenUnlessAsked()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    askToDelete(tip);
    const QCheckBox* const box = tip.findChild<QCheckBox*>(QStringLiteral("checkBox"));
    QVERIFY(!box->isVisibleTo(&tip));
    tip.setCheckText(QStringLiteral("Also clear sources in use"), false);
    QVERIFY(!box->isVisibleTo(&tip));
    QCOMPARE(box->text(), QStringLiteral("Also clear sources in use"));
    tip.setCheckText(QStringLiteral("Also clear sources in use"), true);
    QVERIFY(box->isVisibleTo(&tip));
}

void TestTipDialog::closeButtonGivesZero()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    askToDelete(tip);
    tip.setCheckText(QStringLiteral("Also clear sources in use"), true);
    ModalAnswerer answerer;
    answerer.clickWhenShown({QStringLiteral("checkBox"), QStringLiteral("closeBtn")});
    const PromptBoxTriggerInfo info = tip.run();
    QVERIFY(answerer.answered());
    QCOMPARE(info.result, 0);
    // The box's state is reported whichever way the dialog was left.
    QCOMPARE(info.checked, true);
}

void TestTipDialog::escapeGivesZero()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    askToDelete(tip);
    ModalAnswerer answerer;
    answerer.pressKeyWhenShown(Qt::Key_Escape);
    QCOMPARE(tip.run().result, 0);
    QVERIFY(answerer.answered());
}

void TestTipDialog::windowCloseGivesZero()
{
    TipDialog tip(TipDialog::Notice, nullptr);
    askToDelete(tip);
    ModalAnswerer answerer;
    answerer.closeWhenShown();
    QCOMPARE(tip.run().result, 0);
    QVERIFY(answerer.answered());
}

void TestTipDialog::enterConfirms()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    askToDelete(tip);
    QVERIFY(button(tip, "firstBtn")->isDefault());
    ModalAnswerer answerer;
    answerer.pressKeyWhenShown(Qt::Key_Return);
    QCOMPARE(tip.run().result, 1);
    QVERIFY(answerer.answered());
}

void TestTipDialog::emptyButtonTextHidesTheButton()
{
    TipDialog tip(TipDialog::Notice, nullptr);
    tip.setTipText(QStringLiteral("The name already exists."));
    tip.setBtnText(QStringLiteral("OK"), QString(), QString());
    ModalAnswerer answerer;
    bool firstShown = false;
    bool secondShown = true;
    bool thirdShown = true;
    answerer.whenShown([&](QWidget*) {
        firstShown = button(tip, "firstBtn")->isVisible();
        secondShown = button(tip, "secondBtn")->isVisible();
        thirdShown = button(tip, "thirdBtn")->isVisible();
        QTest::mouseClick(button(tip, "firstBtn"), Qt::LeftButton);
    });
    QCOMPARE(tip.run().result, 1);
    QVERIFY(firstShown);
    QVERIFY(!secondShown);
    QVERIFY(!thirdShown);

    // Texts given again bring the buttons back.
    tip.setBtnText(QStringLiteral("OK"), QStringLiteral("Cancel"), QStringLiteral("Later"));
    QVERIFY(button(tip, "secondBtn")->isVisibleTo(&tip));
    QVERIFY(button(tip, "thirdBtn")->isVisibleTo(&tip));
}

void TestTipDialog::hiddenButtonCannotBeClicked()
{
    TipDialog tip(TipDialog::Notice, nullptr);
    tip.setBtnText(QStringLiteral("OK"), QString(), QString());
    ModalAnswerer answerer;
    answerer.setTimeout(200);
    answerer.clickWhenShown(QStringLiteral("secondBtn"));
    QCOMPARE(tip.run().result, 0);
    QVERIFY(answerer.timedOut());
}

void TestTipDialog::showsTheTipAndATitleAfterItsType()
{
    TipDialog notice(TipDialog::Notice, nullptr);
    QCOMPARE(notice.tipType(), TipDialog::Notice);
    notice.setTipText(QStringLiteral("The name already exists."));
    QCOMPARE(notice.title(), QStringLiteral("Notice"));
    QCOMPARE(notice.findChild<QLabel*>(QStringLiteral("tipIcon"))->property("tipType"),
             QVariant(QStringLiteral("notice")));
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("OK"));
    notice.run();
    QVERIFY(answerer.labelTexts().contains(QStringLiteral("The name already exists.")));
    QCOMPARE(answerer.modalTitle(), QStringLiteral("Notice"));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));

    TipDialog warning(TipDialog::Warning, nullptr);
    QCOMPARE(warning.tipType(), TipDialog::Warning);
    QCOMPARE(warning.title(), QStringLiteral("Warning"));
    QCOMPARE(warning.findChild<QLabel*>(QStringLiteral("tipIcon"))->property("tipType"),
             QVariant(QStringLiteral("warning")));
}

void TestTipDialog::tipTextIsPlainText()
{
    TipDialog tip(TipDialog::Notice, nullptr);
    tip.setTipText(QStringLiteral("<b>Cam</b> exists"));
    const QLabel* const text = tip.findChild<QLabel*>(QStringLiteral("tipText"));
    QCOMPARE(text->textFormat(), Qt::PlainText);
    QCOMPARE(text->text(), QStringLiteral("<b>Cam</b> exists"));
    QVERIFY(text->wordWrap());
}

void TestTipDialog::runsAgainForAnotherAnswer()
{
    TipDialog tip(TipDialog::Warning, nullptr);
    askToDelete(tip);
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("secondBtn"));
    QCOMPARE(tip.run().result, 2);
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    QCOMPARE(tip.run().result, 1);
    answerer.pressKeyWhenShown(Qt::Key_Escape);
    QCOMPARE(tip.run().result, 0);
}

void TestTipDialog::worksWithAParent()
{
    QWidget host;
    host.resize(400, 300);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));
    auto* const tip = new TipDialog(TipDialog::Warning, &host);
    askToDelete(*tip);
    QVERIFY(tip->isWindow());
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    QCOMPARE(tip->run().result, 1);
}

QTEST_MAIN(TestTipDialog)
#include "tst_tipdialog.moc"
