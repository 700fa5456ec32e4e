// SPDX-License-Identifier: MIT
#include "ndirows.h"
#include "trkey.h"

#include <vexainputsourcewidget/testing/modalanswerer.h>

#include <QHBoxLayout>
#include <QSignalSpy>
#include <QtTest>

using vexa::inputsource::NdiListItem;
using vexa::inputsource::trKey;
using vexa::testing::ModalAnswerer;

class TestNdiListItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layoutNumbers();
    void fillsANotAddedRow();
    void addedRowIsTickedAndDisabled();
    void receiverNameDefaultsToTheSenderName();
    void senderNameIsElidedToTheLabel();
    void longDefaultNameStaysWholeAndEditable();
    void shortNameIsHeldToTwentyCharacters();
    void checkClickEmitsSelectChangedOnly();
    void emptyNameRestoresTheAcceptedOne();
    void unchangedNameSendsNothing();
    void acceptedNameIsAnnounced();
    void refusedNameIsPutBackAndTold();
    void retranslationAlwaysReadsNotAdded();
    void accessibleNameCarriesSenderAndState();
    void retiredRowStaysSilent();
};

namespace {

// A row shown in a window of its own and active, so that its edit can take the focus.
struct ShownRow
{
    ShownRow()
    {
        row.resize(700, 36);
        row.show();
        QApplication::setActiveWindow(&row);
    }
    void type(const QString& text)
    {
        QLineEdit* const editor = receiverEditorOf(row);
        editor->setFocus();
        editor->selectAll();
        QTest::keyClicks(editor, text);
    }
    // Ends the edit as leaving the field does.
    void leave()
    {
        receiverEditorOf(row)->clearFocus();
        QCoreApplication::processEvents();
    }
    NdiListItem row;
};

} // namespace

void TestNdiListItem::layoutNumbers()
{
    NdiListItem row;
    QCOMPARE(row.minimumHeight(), 36);
    QCOMPARE(row.maximumHeight(), 36);
    const auto* layout = qobject_cast<QHBoxLayout*>(row.layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->contentsMargins(), QMargins(8, 0, 6, 0));
    QCOMPARE(layout->spacing(), 8);
    QCOMPARE(layout->count(), 5);
    QCOMPARE(checkButtonOf(row)->size(), QSize(20, 20));
    QVERIFY(checkButtonOf(row)->isCheckable());
    QCOMPARE(checkButtonOf(row)->property("checkStyle").toString(), QStringLiteral("checked"));
    QCOMPARE(labelOf(row, "ndiIpLabel")->maximumWidth(), 130);
    QCOMPARE(labelOf(row, "ndiSenderLabel")->maximumWidth(), 190);
    QCOMPARE(row.findChild<QWidget*>(QStringLiteral("ndiReceiverEdit"))->maximumWidth(), 190);
    QCOMPARE(labelOf(row, "ndiStateLabel")->alignment(), Qt::AlignCenter);
    QCOMPARE(labelOf(row, "ndiStateLabel")->property("style").toString(),
             QStringLiteral("yellowHint"));
}

void TestNdiListItem::fillsANotAddedRow()
{
    NdiListItem row;
    row.setRenamedModel(ndiSender("10.0.0.5", "CAM-1 (Stage)", "Stage"));
    QCOMPARE(row.ipAddress(), QStringLiteral("10.0.0.5"));
    QCOMPARE(row.receiverName(), QStringLiteral("Stage"));
    QVERIFY(!row.isAdded());
    QVERIFY(!row.isChecked());
    QVERIFY(checkButtonOf(row)->isEnabled());
    QCOMPARE(labelOf(row, "ndiStateLabel")->text(), trKey("NotAdded"));
    QCOMPARE(labelOf(row, "ndiStateLabel")->property("style").toString(),
             QStringLiteral("yellowHint"));
}

void TestNdiListItem::addedRowIsTickedAndDisabled()
{
    NdiListItem row;
    row.setRenamedModel(ndiSender("10.0.0.6", "CAM-2", "", true));
    QVERIFY(row.isAdded());
    QVERIFY(row.isChecked());
    QVERIFY(!checkButtonOf(row)->isEnabled());
    QVERIFY(!labelOf(row, "ndiIpLabel")->isEnabled());
    QCOMPARE(labelOf(row, "ndiStateLabel")->text(), trKey("Added"));
    QCOMPARE(labelOf(row, "ndiStateLabel")->property("style").toString(),
             QStringLiteral("grayHint"));
}

void TestNdiListItem::receiverNameDefaultsToTheSenderName()
{
    NdiListItem row;
    row.setRenamedModel(ndiSender("10.0.0.7", "REPLAY"));
    QCOMPARE(row.receiverName(), QStringLiteral("REPLAY"));
}

void TestNdiListItem::senderNameIsElidedToTheLabel()
{
    NdiListItem row;
    const QString longName = QStringLiteral("A very long sender name that cannot fit in the label");
    row.setRenamedModel(ndiSender("10.0.0.8", longName.toStdString()));
    QLabel* const label = labelOf(row, "ndiSenderLabel");
    QCOMPARE(label->text(),
             label->fontMetrics().elidedText(longName, Qt::ElideRight, label->width() - 20));
    QVERIFY(label->text() != longName);
    QCOMPARE(label->toolTip(), longName);
}

void TestNdiListItem::longDefaultNameStaysWholeAndEditable()
{
    ShownRow shown;
    const QString longName = QStringLiteral("Main stage camera north"); // 23 characters
    shown.row.setRenamedModel(ndiSender("10.0.0.9", longName.toStdString()));
    QCOMPARE(shown.row.receiverName(), longName);
    QLineEdit* const editor = receiverEditorOf(shown.row);
    editor->setFocus();
    editor->end(false);
    QTest::keyClicks(editor, QStringLiteral(" 2"));
    QCOMPARE(shown.row.receiverName(), longName + QStringLiteral(" 2"));
}

void TestNdiListItem::shortNameIsHeldToTwentyCharacters()
{
    ShownRow shown;
    shown.row.setRenamedModel(ndiSender("10.0.0.10", "CAM"));
    shown.type(QStringLiteral("abcdefghijklmnopqrstuvwxyz"));
    QCOMPARE(shown.row.receiverName(), QStringLiteral("abcdefghijklmnopqrst"));
}

void TestNdiListItem::checkClickEmitsSelectChangedOnly()
{
    NdiListItem row;
    row.setRenamedModel(ndiSender("10.0.0.11", "CAM"));
    QSignalSpy selected(&row, &NdiListItem::signalSelectChanged);
    QTest::mouseClick(checkButtonOf(row), Qt::LeftButton);
    QCOMPARE(selected.count(), 1);
    QVERIFY(row.isChecked());
    row.setChecked(false);
    QCOMPARE(selected.count(), 1);
}

void TestNdiListItem::emptyNameRestoresTheAcceptedOne()
{
    ShownRow shown;
    shown.row.setRenamedModel(ndiSender("10.0.0.12", "CAM", "Stage"));
    QSignalSpy changed(&shown.row, &NdiListItem::signalReceiverNameChanged);
    QSignalSpy asked(&shown.row, &NdiListItem::signalReceiverNameIsRepeated);
    shown.type(QStringLiteral("x"));
    QTest::keyClick(receiverEditorOf(shown.row), Qt::Key_Backspace);
    shown.leave();
    QCOMPARE(shown.row.receiverName(), QStringLiteral("Stage"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(asked.count(), 0);
}

void TestNdiListItem::unchangedNameSendsNothing()
{
    ShownRow shown;
    shown.row.setRenamedModel(ndiSender("10.0.0.13", "CAM", "Stage"));
    QSignalSpy changed(&shown.row, &NdiListItem::signalReceiverNameChanged);
    QSignalSpy asked(&shown.row, &NdiListItem::signalReceiverNameIsRepeated);
    shown.type(QStringLiteral("Stage"));
    shown.leave();
    QCOMPARE(changed.count(), 0);
    QCOMPARE(asked.count(), 0);
}

void TestNdiListItem::acceptedNameIsAnnounced()
{
    ShownRow shown;
    shown.row.setRenamedModel(ndiSender("10.0.0.14", "CAM", "Stage"));
    QSignalSpy changed(&shown.row, &NdiListItem::signalReceiverNameChanged);
    QSignalSpy asked(&shown.row, &NdiListItem::signalReceiverNameIsRepeated);
    shown.type(QStringLiteral("Pit lane"));
    shown.leave();
    QCOMPARE(asked.count(), 1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toString(), QStringLiteral("10.0.0.14"));
    QCOMPARE(changed.at(0).at(1).toString(), QStringLiteral("Pit lane"));
    QCOMPARE(shown.row.operatorState().acceptedName, QStringLiteral("Pit lane"));
}

void TestNdiListItem::refusedNameIsPutBackAndTold()
{
    ShownRow shown;
    shown.row.setRenamedModel(ndiSender("10.0.0.15", "CAM", "Stage"));
    connect(
        &shown.row, &NdiListItem::signalReceiverNameIsRepeated, this,
        [](const QString&, const QString& name) { return name == QLatin1String("Taken"); },
        Qt::DirectConnection);
    QSignalSpy changed(&shown.row, &NdiListItem::signalReceiverNameChanged);
    QSignalSpy told(&shown.row, &NdiListItem::signalNameRepeate);
    ModalAnswerer answerer;
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    shown.type(QStringLiteral("Taken"));
    shown.leave();
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(answerer.labelTexts().contains(trKey("NameAlreadyExists")));
    QCOMPARE(shown.row.receiverName(), QStringLiteral("Stage"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(told.count(), 1);
}

void TestNdiListItem::retranslationAlwaysReadsNotAdded()
{
    NdiListItem row;
    row.setRenamedModel(ndiSender("10.0.0.16", "CAM", "", true));
    row.translateLanguage();
    QCOMPARE(labelOf(row, "ndiStateLabel")->text(), trKey("NotAdded"));
    QVERIFY(row.isAdded());
}

void TestNdiListItem::accessibleNameCarriesSenderAndState()
{
    NdiListItem row;
    row.setRenamedModel(ndiSender("10.0.0.17", "CAM-9", "", true));
    QCOMPARE(checkButtonOf(row)->accessibleName(), QStringLiteral("CAM-9, ") + trKey("Added"));
    QCOMPARE(row.accessibleName(), checkButtonOf(row)->accessibleName());
}

void TestNdiListItem::retiredRowStaysSilent()
{
    ShownRow shown;
    shown.row.setRenamedModel(ndiSender("10.0.0.18", "CAM", "Stage"));
    QSignalSpy asked(&shown.row, &NdiListItem::signalReceiverNameIsRepeated);
    shown.type(QStringLiteral("Other"));
    shown.row.retire();
    shown.leave();
    QCOMPARE(asked.count(), 0);
}

QTEST_MAIN(TestNdiListItem)
#include "tst_ndilistitem.moc"
