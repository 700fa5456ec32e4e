// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/modalanswerer.h>

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

using vexa::testing::ModalAnswerer;

namespace {

// A small question window as an application would build it: a text, a check box and two
// buttons, which end it with 1 and 2.
class Question : public QDialog
{
public:
    explicit Question(QWidget* parent = nullptr)
        : QDialog(parent)
        , text(new QLabel(QStringLiteral("Delete the source?"), this))
        , remember(new QCheckBox(QStringLiteral("Do not ask again"), this))
        , yes(new QPushButton(QStringLiteral("&Yes"), this))
        , no(new QPushButton(QStringLiteral("No"), this))
    {
        setWindowTitle(QStringLiteral("Question"));
        yes->setObjectName(QStringLiteral("yesBtn"));
        no->setObjectName(QStringLiteral("noBtn"));
        auto* const layout = new QVBoxLayout(this);
        layout->addWidget(text);
        layout->addWidget(remember);
        layout->addWidget(yes);
        layout->addWidget(no);
        connect(yes, &QPushButton::clicked, this, [this] { done(1); });
        connect(no, &QPushButton::clicked, this, [this] { done(2); });
    }

    int closeRequests = 0;
    bool lastCloseWasSpontaneous = false;
    QLabel* const text;
    QCheckBox* const remember;
    QPushButton* const yes;
    QPushButton* const no;

protected:
    void closeEvent(QCloseEvent* event) override
    {
        ++closeRequests;
        lastCloseWasSpontaneous = event->spontaneous();
        QDialog::closeEvent(event);
    }
};

// A modal window that is not a dialog and will not be closed.
class RefusingWindow : public QWidget
{
public:
    int closeRequests = 0;

protected:
    void closeEvent(QCloseEvent* event) override
    {
        ++closeRequests;
        event->ignore();
    }
};

} // namespace

class TestModalAnswerer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clicksTheButtonNamed();
    void clicksTheButtonShowingTheText();
    void clicksSeveralButtonsInOrder();
    void ticksACheckBoxByItsIndicator();
    void pressesAKeyOnTheFocusWidget();
    void closesLikeTheDesktop();
    void runsACustomAction();
    void recordsWhatTheWindowShowed();
    void timesOutAndClosesWhenTheButtonIsMissing();
    void neverClicksAHiddenButton();
    void timesOutWithoutAnyWindow();
    void hidesAWindowThatRefusesToCloseOnTimeOut();
    void answersTheNestedWindowNotTheOneAlreadyOpen();
    void answersAReusedWindowWhenItShowsAgain();
    void answersOnlyOnce();
};

void TestModalAnswerer::clicksTheButtonNamed()
{
    Question question;
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("noBtn"));
    QVERIFY(answerer.isWaiting());
    QCOMPARE(question.exec(), 2);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(!answerer.isWaiting());
    QVERIFY(!answerer.timedOut());
    QVERIFY(answerer.errorString().isEmpty());
}

void TestModalAnswerer::clicksTheButtonShowingTheText()
{
    Question question;
    ModalAnswerer answerer;
    // "&Yes" shows as "Yes".
    answerer.clickWhenShown(QStringLiteral("Yes"));
    QCOMPARE(question.exec(), 1);
    QVERIFY(answerer.answered());
}

void TestModalAnswerer::clicksSeveralButtonsInOrder()
{
    Question question;
    ModalAnswerer answerer;
    answerer.clickWhenShown({QStringLiteral("Do not ask again"), QStringLiteral("yesBtn")});
    QCOMPARE(question.exec(), 1);
    QVERIFY(answerer.answered());
    QVERIFY(question.remember->isChecked());
}

void TestModalAnswerer::ticksACheckBoxByItsIndicator()
{
    // Far wider than its text: a click in the middle would miss it.
    Question question;
    question.remember->setMinimumWidth(600);
    QSignalSpy toggled(question.remember, &QCheckBox::toggled);
    ModalAnswerer answerer;
    answerer.clickWhenShown({QStringLiteral("Do not ask again"), QStringLiteral("noBtn")});
    QCOMPARE(question.exec(), 2);
    QVERIFY(answerer.answered());
    QCOMPARE(toggled.count(), 1);
    QVERIFY(question.remember->isChecked());
}

void TestModalAnswerer::pressesAKeyOnTheFocusWidget()
{
    Question question;
    ModalAnswerer answerer;
    answerer.pressKeyWhenShown(Qt::Key_Escape);
    QCOMPARE(question.exec(), int(QDialog::Rejected));
    QVERIFY(answerer.answered());
}

void TestModalAnswerer::closesLikeTheDesktop()
{
    Question question;
    ModalAnswerer answerer;
    answerer.closeWhenShown();
    QCOMPARE(question.exec(), int(QDialog::Rejected));
    QVERIFY(answerer.answered());
    QCOMPARE(question.closeRequests, 1);
    QVERIFY(question.lastCloseWasSpontaneous);
}

void TestModalAnswerer::runsACustomAction()
{
    Question question;
    ModalAnswerer answerer;
    QWidget* seen = nullptr;
    answerer.whenShown([&seen](QWidget* modal) {
        seen = modal;
        static_cast<QDialog*>(modal)->done(7);
    });
    QCOMPARE(question.exec(), 7);
    QCOMPARE(seen, &question);
    QVERIFY(answerer.answered());
}

void TestModalAnswerer::recordsWhatTheWindowShowed()
{
    Question question;
    ModalAnswerer answerer;
    QSignalSpy finished(&answerer, &ModalAnswerer::finished);
    answerer.clickWhenShown(QStringLiteral("yesBtn"));
    question.exec();
    QCOMPARE(answerer.modalClassName(), QStringLiteral("QDialog"));
    QCOMPARE(answerer.modalTitle(), QStringLiteral("Question"));
    QCOMPARE(answerer.labelTexts(), QStringList{QStringLiteral("Delete the source?")});
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toBool(), true);
}

void TestModalAnswerer::timesOutAndClosesWhenTheButtonIsMissing()
{
    Question question;
    ModalAnswerer answerer;
    answerer.setTimeout(200);
    QCOMPARE(answerer.timeout(), 200);
    QSignalSpy finished(&answerer, &ModalAnswerer::finished);
    answerer.clickWhenShown(QStringLiteral("maybeBtn"));
    QCOMPARE(question.exec(), int(QDialog::Rejected));
    QVERIFY(!answerer.answered());
    QVERIFY(answerer.timedOut());
    QVERIFY2(answerer.errorString().contains(QStringLiteral("maybeBtn")),
             qPrintable(answerer.errorString()));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toBool(), false);
}

void TestModalAnswerer::neverClicksAHiddenButton()
{
    Question question;
    question.no->hide();
    QSignalSpy clicked(question.no, &QPushButton::clicked);
    ModalAnswerer answerer;
    answerer.setTimeout(200);
    answerer.clickWhenShown(QStringLiteral("noBtn"));
    QCOMPARE(question.exec(), int(QDialog::Rejected));
    QVERIFY(answerer.timedOut());
    QCOMPARE(clicked.count(), 0);
}

void TestModalAnswerer::timesOutWithoutAnyWindow()
{
    ModalAnswerer answerer;
    answerer.setTimeout(100);
    QSignalSpy finished(&answerer, &ModalAnswerer::finished);
    answerer.clickWhenShown(QStringLiteral("yesBtn"));
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(answerer.timedOut());
    QVERIFY(!answerer.answered());
    QVERIFY(answerer.modalClassName().isEmpty());
}

void TestModalAnswerer::hidesAWindowThatRefusesToCloseOnTimeOut()
{
    RefusingWindow window;
    window.setWindowModality(Qt::ApplicationModal);
    ModalAnswerer answerer;
    answerer.setTimeout(100);
    answerer.clickWhenShown(QStringLiteral("yesBtn"));
    window.show();
    QTRY_VERIFY(answerer.timedOut());
    QVERIFY(window.closeRequests > 0);
    QVERIFY(!window.isVisible());
}

void TestModalAnswerer::answersTheNestedWindowNotTheOneAlreadyOpen()
{
    Question outer;
    Question inner(&outer);
    inner.setWindowTitle(QStringLiteral("Inner"));
    ModalAnswerer forInner;
    int innerResult = -1;
    QObject::connect(outer.yes, &QPushButton::clicked, &outer, [&] {
        // Armed while the outer window is up: the inner one is the next.
        forInner.clickWhenShown(QStringLiteral("noBtn"));
        innerResult = inner.exec();
    });
    ModalAnswerer forOuter;
    forOuter.clickWhenShown(QStringLiteral("yesBtn"));
    QCOMPARE(outer.exec(), 1);
    QVERIFY(forOuter.answered());
    QVERIFY(forInner.answered());
    QCOMPARE(forInner.modalTitle(), QStringLiteral("Inner"));
    QCOMPARE(innerResult, 2);
}

void TestModalAnswerer::answersAReusedWindowWhenItShowsAgain()
{
    Question question;
    ModalAnswerer first;
    ModalAnswerer second;
    first.whenShown([&second](QWidget* modal) {
        // Armed while the window is up; meant for its next showing.
        second.clickWhenShown(QStringLiteral("noBtn"));
        static_cast<QDialog*>(modal)->done(1);
    });
    QCOMPARE(question.exec(), 1);
    QVERIFY(second.isWaiting());
    QCOMPARE(question.exec(), 2);
    QVERIFY(second.answered());
}

void TestModalAnswerer::answersOnlyOnce()
{
    Question question;
    ModalAnswerer answerer;
    answerer.setTimeout(100);
    answerer.clickWhenShown(QStringLiteral("yesBtn"));
    QCOMPARE(question.exec(), 1);
    QVERIFY(!answerer.isWaiting());
    // Nobody answers the second showing, so only a person (here: a timer) can end it.
    QTimer::singleShot(300, &question, [&question] { question.done(5); });
    QCOMPARE(question.exec(), 5);
    QVERIFY(answerer.answered());
}

QTEST_MAIN(TestModalAnswerer)
#include "tst_modalanswerer.moc"
