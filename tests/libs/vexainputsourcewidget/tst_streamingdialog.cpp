// SPDX-License-Identifier: MIT
#include "languagefiles.h"
#include "streamingdialogparts.h"
#include "textfits.h"
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/streamingdialog.h>

#include <vexa/widgets/style.h>

#include <QApplication>
#include <QGridLayout>
#include <QSignalSpy>
#include <QtTest>

using vexa::inputsource::StreamingDialog;
using vexa::inputsource::trKey;

namespace {

void switchLanguage(const char* code)
{
    InputSourceTranslateManager::instance().translator().switchLanguage(QLatin1String(code));
}

} // namespace

class TestStreamingDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void layoutFollowsTheFixedNumbers();
    void textsComeFromTranslateLanguage();
    void accessibleNamesFollowTheLanguage();
    void addressCheck_data();
    void addressCheck();
    void leavingByFocusChangeShowsTheErrorAtOnce();
    void clickOnTheSurfaceFinishesTheEdit();
    void confirmWithARefusedAddressStaysOpen();
    void confirmAsksTheNameAndEmitsUntrimmedTexts();
    void repeatedNameKeepsTheDialogOpen();
    void emptyNameIsPassedOn();
    void cancelEmitsNothing();
    void enterConfirms();
    void escapeCancelsAlsoWhileTyping();
    void twentyFirstCharacterCannotBeTyped();
    void showingResetsTheAddressButKeepsTheName();
    void noTextIsClipped_data();
    void noTextIsClipped();

private:
    // Opens a fresh dialog in English, active, with the name "Stream 1".
    void open();

    std::unique_ptr<StreamingDialog> dialog;
    std::unique_ptr<StreamingDialogParts> parts;
};

void TestStreamingDialog::initTestCase()
{
    QVERIFY(loadShippedLanguages());
    qApp->setStyleSheet(vexa::widgets::defaultStyleSheet());
}

void TestStreamingDialog::init()
{
    switchLanguage("en_US");
}

void TestStreamingDialog::cleanup()
{
    parts.reset();
    dialog.reset();
}

void TestStreamingDialog::open()
{
    dialog = std::make_unique<StreamingDialog>();
    dialog->translateLanguage();
    dialog->setMediaName(QStringLiteral("Stream 1"));
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    parts = std::make_unique<StreamingDialogParts>(dialog.get());
    QVERIFY(parts->complete());
}

void TestStreamingDialog::layoutFollowsTheFixedNumbers()
{
    open();
    QCOMPARE(dialog->width(), 520);
    QCOMPARE(dialog->minimumWidth(), 520);
    QCOMPARE(dialog->maximumWidth(), 520);
    QCOMPARE(parts->nameLabel->width(), 60);
    QCOMPARE(parts->name->maxLength(), 20);
    QCOMPARE(parts->url->maxLength(), 32767);
    QCOMPARE(parts->cancel->height(), 24);
    QCOMPARE(parts->confirm->height(), 24);
    QCOMPARE(parts->cancel->property("style").toString(), QStringLiteral("assist"));
    QCOMPARE(parts->confirm->property("style").toString(), QStringLiteral("general"));
    QVERIFY(parts->confirm->isDefault());
    QVERIFY(parts->cancel->geometry().right() < parts->confirm->geometry().left());

    auto* const content = dialog->dialogWidget()->layout();
    QCOMPARE(content->spacing(), 20);
    QCOMPARE(content->contentsMargins(), QMargins(28, 28, 28, 28));
    auto* const grid = qobject_cast<QGridLayout*>(content->itemAt(0)->layout());
    QVERIFY(grid != nullptr);
    QCOMPARE(grid->horizontalSpacing(), 8);
    QCOMPARE(grid->verticalSpacing(), 8);
    int row = -1;
    int column = -1;
    int rowSpan = 0;
    int columnSpan = 0;
    grid->getItemPosition(grid->indexOf(parts->hint), &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(row, 2);
    QCOMPARE(column, 1);
    QCOMPARE(grid->itemAt(grid->indexOf(parts->hint))->alignment(), Qt::AlignRight);
    QCOMPARE(content->itemAt(1)->layout()->spacing(), 12);
    // The buttons sit centred under the fields.
    const int left = parts->cancel->geometry().left();
    const int right = dialog->dialogWidget()->width() - parts->confirm->geometry().right();
    QVERIFY2(qAbs(left - right) <= 2, qPrintable(QStringLiteral("%1 %2").arg(left).arg(right)));
}

void TestStreamingDialog::textsComeFromTranslateLanguage()
{
    StreamingDialog fresh;
    StreamingDialogParts untranslated(&fresh);
    QVERIFY(untranslated.nameLabel->text().isEmpty());
    QVERIFY(untranslated.confirm->text().isEmpty());

    open();
    QCOMPARE(dialog->title(), trKey("AddStreaming"));
    QCOMPARE(dialog->title(), QStringLiteral("Add Network Stream"));
    QCOMPARE(parts->nameLabel->text(), trKey("MediaName"));
    QCOMPARE(parts->urlLabel->text(), trKey("WebUrl"));
    QCOMPARE(parts->hint->text(), trKey("SupportAddingFormats"));
    QCOMPARE(parts->urlEditor()->placeholderText(), trKey("PleaseEnter"));
    QVERIFY(parts->nameEditor()->placeholderText().isEmpty());
    QCOMPARE(parts->cancel->text(), trKey("Cancel"));
    QCOMPARE(parts->confirm->text(), trKey("OK"));
    QCOMPARE(parts->hint->property("style").toString(), QStringLiteral("grayHint"));

    switchLanguage("zh_CN");
    dialog->translateLanguage();
    QCOMPARE(dialog->title(), QStringLiteral("添加网络流"));
    QCOMPARE(parts->confirm->text(), QStringLiteral("确定"));
}

void TestStreamingDialog::accessibleNamesFollowTheLanguage()
{
    open();
    auto* const close = dialog->findChild<QPushButton*>(QStringLiteral("closeBtn"));
    QVERIFY(close != nullptr);
    const auto check = [&] {
        QCOMPARE(parts->nameEditor()->accessibleName(), trKey("MediaName"));
        QCOMPARE(parts->name->accessibleName(), trKey("MediaName"));
        QCOMPARE(parts->urlEditor()->accessibleName(), trKey("WebUrl"));
        QCOMPARE(parts->urlEditor()->accessibleDescription(), trKey("SupportAddingFormats"));
        QCOMPARE(parts->cancel->accessibleName(), trKey("Cancel"));
        QCOMPARE(parts->confirm->accessibleName(), trKey("OK"));
        QCOMPARE(close->accessibleName(), trKey("Close"));
    };
    check();
    QCOMPARE(parts->urlEditor()->accessibleName(), QStringLiteral("URL"));
    switchLanguage("zh_TW");
    dialog->translateLanguage();
    check();
    QCOMPARE(close->accessibleName(), QStringLiteral("關閉"));
}

void TestStreamingDialog::addressCheck_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("rtsp address") << QStringLiteral("rtsp://10.0.0.5:554/live") << true;
    QTest::newRow("rtmp address") << QStringLiteral("rtmp://live.example.org/app/key") << true;
    QTest::newRow("only the scheme and a colon") << QStringLiteral("rtmp:") << true;
    QTest::newRow("scheme without slashes") << QStringLiteral("rtsp:anything") << true;
    QTest::newRow("mixed case") << QStringLiteral("Rtsp://10.0.0.5/live") << false;
    QTest::newRow("capitals") << QStringLiteral("RTMP://10.0.0.5/live") << false;
    QTest::newRow("rtsps") << QStringLiteral("rtsps://10.0.0.5/live") << false;
    QTest::newRow("leading space") << QStringLiteral(" rtsp://10.0.0.5/live") << false;
    QTest::newRow("http") << QStringLiteral("http://example.org/live.m3u8") << false;
    // Without a colon the whole text is the scheme.
    QTest::newRow("only the scheme") << QStringLiteral("rtsp") << true;
    QTest::newRow("other word without colon") << QStringLiteral("camera") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestStreamingDialog::addressCheck()
{
    QFETCH(QString, url);
    QFETCH(bool, accepted);
    open();

    StreamingDialogParts::type(parts->urlEditor(), url);
    QTest::mouseClick(parts->nameEditor(), Qt::LeftButton);

    QCOMPARE(parts->urlEditor()->text(), url);
    QCOMPARE(parts->urlStyle(), accepted ? QString() : QStringLiteral("editError"));
    QCOMPARE(parts->hintStyle(),
             accepted ? QStringLiteral("grayHint") : QStringLiteral("errorHint"));
    // The hint keeps its text; only its look tells the refusal.
    QCOMPARE(parts->hint->text(), trKey("SupportAddingFormats"));
}

void TestStreamingDialog::leavingByFocusChangeShowsTheErrorAtOnce()
{
    open();
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("http://camera/live"));
    QCOMPARE(parts->urlStyle(), QString());

    QTest::mouseClick(parts->nameEditor(), Qt::LeftButton);
    QCOMPARE(parts->urlStyle(), QStringLiteral("editError"));
    QCOMPARE(parts->hintStyle(), QStringLiteral("errorHint"));
    const QColor refused = parts->hint->palette().color(QPalette::WindowText);

    StreamingDialogParts::retype(parts->urlEditor(), QStringLiteral("rtsp://camera/live"));
    QTest::mouseClick(parts->nameEditor(), Qt::LeftButton);
    QCOMPARE(parts->urlStyle(), QString());
    QCOMPARE(parts->hintStyle(), QStringLiteral("grayHint"));
    // The style sheet followed the property.
    QVERIFY(parts->hint->palette().color(QPalette::WindowText) != refused);
}

void TestStreamingDialog::clickOnTheSurfaceFinishesTheEdit()
{
    open();
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtsps://camera"));
    QVERIFY(parts->urlEditor()->hasFocus());

    parts->clickSurface();
    QVERIFY(!parts->urlEditor()->hasFocus());
    QCOMPARE(parts->urlStyle(), QStringLiteral("editError"));
    QCOMPARE(parts->hintStyle(), QStringLiteral("errorHint"));

    StreamingDialogParts::retype(parts->urlEditor(), QStringLiteral("rtmp:"));
    parts->clickSurface();
    QCOMPARE(parts->urlStyle(), QString());
    QCOMPARE(parts->hintStyle(), QStringLiteral("grayHint"));
}

void TestStreamingDialog::confirmWithARefusedAddressStaysOpen()
{
    open();
    QSignalSpy asked(dialog.get(), &StreamingDialog::signalNameEditIsRepeated);
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("Rtsp://camera"));

    QTest::mouseClick(parts->confirm, Qt::LeftButton);

    QVERIFY(dialog->isVisible());
    QCOMPARE(asked.count(), 0);
    QCOMPARE(confirmed.count(), 0);
    QCOMPARE(parts->urlStyle(), QStringLiteral("editError"));
    QCOMPARE(parts->hintStyle(), QStringLiteral("errorHint"));
}

void TestStreamingDialog::confirmAsksTheNameAndEmitsUntrimmedTexts()
{
    open();
    QStringList askedNames;
    connect(
        dialog.get(), &StreamingDialog::signalNameEditIsRepeated, this,
        [&askedNames](const QString& name) {
            askedNames.append(name);
            return false;
        },
        Qt::DirectConnection);
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    StreamingDialogParts::retype(parts->nameEditor(), QStringLiteral(" Main cam "));
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtsp://camera/live "));

    QTest::mouseClick(parts->confirm, Qt::LeftButton);

    QCOMPARE(askedNames, QStringList{QStringLiteral(" Main cam ")});
    QCOMPARE(confirmed.count(), 1);
    QCOMPARE(confirmed.front().at(0).toString(), QStringLiteral(" Main cam "));
    QCOMPARE(confirmed.front().at(1).toString(), QStringLiteral("rtsp://camera/live "));
    QVERIFY(!dialog->isVisible());
}

void TestStreamingDialog::repeatedNameKeepsTheDialogOpen()
{
    open();
    connect(
        dialog.get(), &StreamingDialog::signalNameEditIsRepeated, this,
        [](const QString& name) { return name == QStringLiteral("Stream 1"); },
        Qt::DirectConnection);
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtmp://server/app"));

    QTest::mouseClick(parts->confirm, Qt::LeftButton);
    QVERIFY(dialog->isVisible());
    QCOMPARE(confirmed.count(), 0);
    QCOMPARE(parts->nameEditor()->text(), QStringLiteral("Stream 1"));
    QCOMPARE(parts->urlEditor()->text(), QStringLiteral("rtmp://server/app"));

    StreamingDialogParts::retype(parts->nameEditor(), QStringLiteral("Stream 2"));
    QTest::mouseClick(parts->confirm, Qt::LeftButton);
    QCOMPARE(confirmed.count(), 1);
    QVERIFY(!dialog->isVisible());
}

void TestStreamingDialog::emptyNameIsPassedOn()
{
    open();
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    dialog->setMediaName(QString());
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtsp://camera"));

    QTest::mouseClick(parts->confirm, Qt::LeftButton);

    QCOMPARE(confirmed.count(), 1);
    QCOMPARE(confirmed.front().at(0).toString(), QString());
}

void TestStreamingDialog::cancelEmitsNothing()
{
    open();
    QSignalSpy asked(dialog.get(), &StreamingDialog::signalNameEditIsRepeated);
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtsp://camera"));

    QTest::mouseClick(parts->cancel, Qt::LeftButton);

    QVERIFY(!dialog->isVisible());
    QCOMPARE(asked.count(), 0);
    QCOMPARE(confirmed.count(), 0);
}

void TestStreamingDialog::enterConfirms()
{
    open();
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtsp://camera"));

    QTest::keyClick(parts->urlEditor(), Qt::Key_Return);

    QCOMPARE(confirmed.count(), 1);
    QVERIFY(!dialog->isVisible());

    // From the name field as well, and a refused address keeps the dialog open.
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("udp://camera"));
    StreamingDialogParts::type(parts->nameEditor(), QStringLiteral("x"));
    QTest::keyClick(parts->nameEditor(), Qt::Key_Enter);
    QCOMPARE(confirmed.count(), 1);
    QVERIFY(dialog->isVisible());
    QCOMPARE(parts->urlStyle(), QStringLiteral("editError"));
}

void TestStreamingDialog::escapeCancelsAlsoWhileTyping()
{
    open();
    QSignalSpy confirmed(dialog.get(), &StreamingDialog::signalConfirmClicked);
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("rtsp://camera"));

    QTest::keyClick(parts->urlEditor(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());

    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    StreamingDialogParts::type(parts->nameEditor(), QStringLiteral("abc"));
    QTest::keyClick(parts->nameEditor(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(confirmed.count(), 0);
}

void TestStreamingDialog::twentyFirstCharacterCannotBeTyped()
{
    open();
    StreamingDialogParts::retype(parts->nameEditor(), QStringLiteral("abcdefghijklmnopqrstuvwxyz"));
    QCOMPARE(parts->nameEditor()->text(), QStringLiteral("abcdefghijklmnopqrst"));

    // The address has no such limit.
    const QString longUrl = QStringLiteral("rtsp://") + QString(60, QLatin1Char('a'));
    StreamingDialogParts::type(parts->urlEditor(), longUrl);
    QCOMPARE(parts->urlEditor()->text(), longUrl);
}

void TestStreamingDialog::showingResetsTheAddressButKeepsTheName()
{
    open();
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("http://bad"));
    parts->clickSurface();
    QCOMPARE(parts->urlStyle(), QStringLiteral("editError"));
    dialog->hide();

    dialog->setMediaName(QStringLiteral("Stream 7"));
    dialog->show();
    QCOMPARE(parts->urlEditor()->text(), QString());
    QCOMPARE(parts->urlStyle(), QString());
    QCOMPARE(parts->hintStyle(), QStringLiteral("grayHint"));
    QCOMPARE(parts->nameEditor()->text(), QStringLiteral("Stream 7"));
}

void TestStreamingDialog::noTextIsClipped_data()
{
    addLanguageRows();
}

void TestStreamingDialog::noTextIsClipped()
{
    QFETCH(QString, language);
    open();
    InputSourceTranslateManager::instance().translator().switchLanguage(language);
    dialog->translateLanguage();
    StreamingDialogParts::type(parts->urlEditor(), QStringLiteral("http://refused"));
    parts->clickSurface();
    QVERIFY(dialog->layout() != nullptr);
    dialog->layout()->activate();

    for (const QLabel* label : {parts->nameLabel, parts->urlLabel, parts->hint,
                                dialog->findChild<QLabel*>(QStringLiteral("titleLabel"))}) {
        QVERIFY(label != nullptr);
        const auto [ok, why] = fits(label, label->text(), label->contentsRect().width());
        QVERIFY2(ok, qPrintable(why));
    }
    for (const QPushButton* button :
         {static_cast<QPushButton*>(parts->cancel), static_cast<QPushButton*>(parts->confirm)}) {
        QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
    }
    const QLineEdit* const url = parts->urlEditor();
    QVERIFY2(url->width() > url->fontMetrics().horizontalAdvance(trKey("PleaseEnter")) + 8,
             qPrintable(trKey("PleaseEnter")));
    // The dialog keeps its width whatever the language.
    QCOMPARE(dialog->width(), 520);
}

QTEST_MAIN(TestStreamingDialog)
#include "tst_streamingdialog.moc"
