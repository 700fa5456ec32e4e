// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "languagefiles.h"
#include "streamingdialogparts.h"
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/streamingdialog.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/testing/waituntil.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <vexa/widgets/pushbutton.h>

#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <memory>
#include <thread>
#include <tuple>
#include <vector>

using vexa::inputsource::InputSourceBox;
using vexa::inputsource::STInputSource;
using vexa::inputsource::StreamingBox;
using vexa::inputsource::StreamingDialog;
using vexa::inputsource::trKey;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::ModalAnswerer;
using vexa::testing::WarningRecorder;

namespace {

using Sources = std::vector<STInputSource>;

constexpr int noDialogMs = 300;

// Waits until the modal window takes the keyboard; closes it and fails otherwise, so that the
// test goes on.
bool activate(QWidget* modal)
{
    if (QTest::qWaitForWindowActive(modal)) {
        return true;
    }
    QTest::qFail("the dialog did not become active", __FILE__, __LINE__);
    modal->close();
    return false;
}

// A stream box bound to the double, in English, with the generated name "Stream 1".
struct BoundStreamingBox : BoundBoxOf<StreamingBox>
{
    BoundStreamingBox()
    {
        mgr->setGeneratedStreamingName("Stream 1");
        box.translateLanguage();
    }

    void clickAdd()
    {
        QTest::mouseClick(box.findChild<vexa::widgets::PushButton*>(QStringLiteral("boxAddButton")),
                          Qt::LeftButton);
    }

    // Clicks the add button and runs `operate` with the dialog while it is open. The dialog
    // must be closed when `operate` returns (or the answerer's time-out closes it).
    void withDialog(const std::function<void(StreamingDialogParts&)>& operate)
    {
        ModalAnswerer answerer;
        answerer.whenShown([&operate](QWidget* modal) {
            StreamingDialogParts parts(modal);
            if (!parts.complete()) {
                modal->close();
                return;
            }
            if (activate(modal)) {
                operate(parts);
            }
        });
        clickAdd();
        QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
        QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::inputsource::StreamingDialog"));
    }
};

// Every field of a record, the lists by their size (a default record has none).
auto fields(const STInputSource& s)
{
    return std::make_tuple(
        s.id, s.name, s.address, s.sourceType, s.createdAndChangedAtMs, s.frameRate, s.preview,
        s.userName, s.useHardwareDecoding, s.password, s.devicePath, s.muted, s.colorAdjustments,
        s.audioGainDb, s.transportProtocol, s.captResolutions.size(), s.autoReconnect, s.webName,
        s.channelIndex, s.currentTabIndex, s.webMode, s.webTabs.size(), s.resolutionWidth,
        s.resolutionHeight, s.patchId, s.webWindowWidth, s.webWindowHeight);
}

} // namespace

class TestStreamingBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void isAStreamBoxWithAddButton();
    void slotsAreDeclaredInOrder();
    void addOpensTheDialogWithAGeneratedName();
    void schemes_data();
    void schemes();
    void leavingTheAddressShowsTheErrorAtOnce();
    void cancelSendsNothingAndReopeningIsFresh();
    void repeatedNameTellsAndKeepsTheDialogOpen();
    void addedRecordIsTheDefaultWithNameAddressAndType();
    void managerCallsRunOnTheirThreads();
    void withoutManagerTheAddButtonOnlyLogs();
    void managerGoneWhileTheDialogIsOpen();
    void twentyFirstCharacterCannotBeTyped();
    void languageSwitchRetranslatesTheDialog();
    void dialogIsCreatedOnceWithoutParentAndReused();
    void boxDestroyedWhileItsDialogIsOpen();
    void boxDestroyedWhileTheNameNoticeIsOpen();
};

void TestStreamingBox::initTestCase()
{
    QVERIFY(loadShippedLanguages());
    auto& translator = InputSourceTranslateManager::instance().translator();
    translator.switchLanguage(QStringLiteral("en_US"));
}

void TestStreamingBox::isAStreamBoxWithAddButton()
{
    StreamingBox box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QCOMPARE(box.resourceType(), EnResourceType::NetworkStream);
    QCOMPARE(box.findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text(),
             QStringLiteral("Streaming"));
    QVERIFY(box.findChild<vexa::widgets::PushButton*>(QStringLiteral("boxAddButton"))->isVisible());
    // The dialog is no child of the box.
    QVERIFY(box.findChild<StreamingDialog*>() == nullptr);
}

void TestStreamingBox::slotsAreDeclaredInOrder()
{
    StreamingDialog dialog;
    const QMetaObject* const meta = dialog.metaObject();
    const int confirm = meta->indexOfSignal("signalConfirmClicked(QString,QString)");
    const int repeated = meta->indexOfSignal("signalNameEditIsRepeated(QString)");
    QVERIFY(confirm >= 0);
    QVERIFY(confirm < repeated);
    QCOMPARE(QByteArray(meta->method(repeated).typeName()), QByteArray("bool"));
}

void TestStreamingBox::addOpensTheDialogWithAGeneratedName()
{
    BoundStreamingBox bound;
    bound.withDialog([](StreamingDialogParts& parts) {
        QCOMPARE(parts.nameEditor()->text(), QStringLiteral("Stream 1"));
        QCOMPARE(parts.urlEditor()->text(), QString());
        QCOMPARE(parts.urlStyle(), QString());
        QCOMPARE(parts.hintStyle(), QStringLiteral("grayHint"));
        QCOMPARE(parts.dialog->title(), trKey("AddStreaming"));
        QVERIFY(parts.dialog->parentWidget() == nullptr);
        QVERIFY(parts.dialog->isModal());
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(bound.mgr->callCount("generateStreamingName"), 1);
    QCOMPARE(static_cast<int>(bound.mgr->calls().size()), 1);
}

void TestStreamingBox::schemes_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("rtsp") << QStringLiteral("rtsp://192.168.1.20:554/stream1") << true;
    QTest::newRow("rtmp") << QStringLiteral("rtmp://live.example.org/app/key") << true;
    QTest::newRow("rtmp and a colon only") << QStringLiteral("rtmp:") << true;
    QTest::newRow("Rtsp") << QStringLiteral("Rtsp://192.168.1.20/stream1") << false;
    QTest::newRow("rtsps") << QStringLiteral("rtsps://192.168.1.20/stream1") << false;
    QTest::newRow("leading space") << QStringLiteral(" rtsp://192.168.1.20/stream1") << false;
    QTest::newRow("http") << QStringLiteral("http://example.org/live.m3u8") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestStreamingBox::schemes()
{
    QFETCH(QString, url);
    QFETCH(bool, accepted);
    BoundStreamingBox bound;

    bool stayedOpen = false;
    QString urlStyle;
    QString hintStyle;
    bound.withDialog([&](StreamingDialogParts& parts) {
        StreamingDialogParts::type(parts.urlEditor(), url);
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
        stayedOpen = parts.dialog->isVisible();
        urlStyle = parts.urlStyle();
        hintStyle = parts.hintStyle();
        if (stayedOpen) {
            QTest::mouseClick(parts.cancel, Qt::LeftButton);
        }
    });

    QCOMPARE(stayedOpen, !accepted);
    QCOMPARE(urlStyle, accepted ? QString() : QStringLiteral("editError"));
    QCOMPARE(hintStyle, accepted ? QStringLiteral("grayHint") : QStringLiteral("errorHint"));
    QCOMPARE(bound.mgr->callCount("addInputSources"), accepted ? 1 : 0);
    QCOMPARE(bound.mgr->callCount("isNameRepeated"), accepted ? 1 : 0);
    if (accepted) {
        const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
        QCOMPARE(static_cast<int>(sent.size()), 1);
        QCOMPARE(QString::fromStdString(sent.front().address), url);
    }
}

void TestStreamingBox::leavingTheAddressShowsTheErrorAtOnce()
{
    BoundStreamingBox bound;
    QStringList seen;
    bound.withDialog([&seen](StreamingDialogParts& parts) {
        const auto note = [&] { seen << parts.urlStyle() + QLatin1Char('/') + parts.hintStyle(); };
        // Leaving by a focus change.
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("http://camera"));
        QTest::mouseClick(parts.nameEditor(), Qt::LeftButton);
        note();
        StreamingDialogParts::retype(parts.urlEditor(), QStringLiteral("rtsp://camera"));
        QTest::mouseClick(parts.nameEditor(), Qt::LeftButton);
        note();
        // Leaving by a click on the dialog's surface.
        StreamingDialogParts::retype(parts.urlEditor(), QStringLiteral("rtsps://camera"));
        parts.clickSurface();
        note();
        StreamingDialogParts::retype(parts.urlEditor(), QStringLiteral("rtmp://camera"));
        parts.clickSurface();
        note();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(seen,
             (QStringList{QStringLiteral("editError/errorHint"), QStringLiteral("/grayHint"),
                          QStringLiteral("editError/errorHint"), QStringLiteral("/grayHint")}));
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

void TestStreamingBox::cancelSendsNothingAndReopeningIsFresh()
{
    BoundStreamingBox bound;
    bound.withDialog([](StreamingDialogParts& parts) {
        StreamingDialogParts::retype(parts.nameEditor(), QStringLiteral("Typed name"));
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("Rtsp://camera"));
        parts.clickSurface();
        QCOMPARE(parts.urlStyle(), QStringLiteral("editError"));
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(bound.mgr->callCount("generateStreamingName"), 1);
    QCOMPARE(static_cast<int>(bound.mgr->calls().size()), 1);

    bound.mgr->setGeneratedStreamingName("Stream 2");
    QString name;
    QString url;
    QString urlStyle;
    QString hintStyle;
    bound.withDialog([&](StreamingDialogParts& parts) {
        name = parts.nameEditor()->text();
        url = parts.urlEditor()->text();
        urlStyle = parts.urlStyle();
        hintStyle = parts.hintStyle();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(name, QStringLiteral("Stream 2"));
    QCOMPARE(url, QString());
    QCOMPARE(urlStyle, QString());
    QCOMPARE(hintStyle, QStringLiteral("grayHint"));
    QCOMPARE(bound.mgr->callCount("generateStreamingName"), 2);
    QCOMPARE(static_cast<int>(bound.mgr->calls().size()), 2);
}

void TestStreamingBox::repeatedNameTellsAndKeepsTheDialogOpen()
{
    BoundStreamingBox bound;
    bound.mgr->setRepeatedNames({"Stream 1"});
    QStringList noticeTexts;
    QStringList noticeButtons;
    bool openAfterNotice = false;
    QString nameAfterNotice;
    QString urlAfterNotice;
    bool openAfterSecondConfirm = true;
    bound.withDialog([&](StreamingDialogParts& parts) {
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("rtsp://camera/1"));
        ModalAnswerer notice;
        notice.whenShown([&](QWidget* modal) {
            noticeTexts = notice.labelTexts();
            for (QPushButton* button : modal->findChildren<QPushButton*>()) {
                if (button->isVisible() && !button->text().isEmpty()) {
                    noticeButtons << button->text();
                }
            }
            QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("firstBtn")),
                              Qt::LeftButton);
        });
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
        QVERIFY2(notice.answered(), qPrintable(notice.errorString()));
        QCOMPARE(notice.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));
        openAfterNotice = parts.dialog->isVisible();
        nameAfterNotice = parts.nameEditor()->text();
        urlAfterNotice = parts.urlEditor()->text();

        StreamingDialogParts::retype(parts.nameEditor(), QStringLiteral("Stream 9"));
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
        openAfterSecondConfirm = parts.dialog->isVisible();
    });

    QVERIFY(noticeTexts.contains(trKey("NameAlreadyExists")));
    QCOMPARE(noticeButtons, QStringList{trKey("OK")});
    QVERIFY(openAfterNotice);
    QCOMPARE(nameAfterNotice, QStringLiteral("Stream 1"));
    QCOMPARE(urlAfterNotice, QStringLiteral("rtsp://camera/1"));
    QVERIFY(!openAfterSecondConfirm);

    const auto asked = bound.mgr->callsOf("isNameRepeated");
    QCOMPARE(static_cast<int>(asked.size()), 2);
    QCOMPARE(std::get<0>(std::any_cast<std::tuple<std::string>>(asked[0].arguments)),
             std::string("Stream 1"));
    QCOMPARE(std::get<0>(std::any_cast<std::tuple<std::string>>(asked[1].arguments)),
             std::string("Stream 9"));
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
    QCOMPARE(sent.front().name, std::string("Stream 9"));
}

void TestStreamingBox::addedRecordIsTheDefaultWithNameAddressAndType()
{
    BoundStreamingBox bound;
    bound.mgr->setGeneratedStreamingName("Kamera Süd");
    bound.withDialog([](StreamingDialogParts& parts) {
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("rtmp://server/app/key"));
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
    });

    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
    QCOMPARE(static_cast<int>(sent.size()), 1);
    STInputSource expected;
    expected.name = "Kamera S\xc3\xbc"
                    "d";
    expected.address = "rtmp://server/app/key";
    expected.sourceType = 13;
    QVERIFY(fields(sent.front()) == fields(expected));
    // No tile until the manager reports the source.
    QCOMPARE(bound.box.itemCount(), 0);
}

void TestStreamingBox::managerCallsRunOnTheirThreads()
{
    BoundStreamingBox bound;
    bound.withDialog([](StreamingDialogParts& parts) {
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("rtsp://camera"));
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
    });

    const auto calls = bound.mgr->calls();
    QCOMPARE(static_cast<int>(calls.size()), 3);
    QCOMPARE(calls[0].operation, std::string("generateStreamingName"));
    QCOMPARE(calls[1].operation, std::string("isNameRepeated"));
    QCOMPARE(calls[2].operation, std::string("addInputSources"));
    for (int index : {0, 1}) {
        QCOMPARE(calls[index].thread, std::this_thread::get_id());
        QVERIFY(!calls[index].onRuntimeThread);
    }
    QVERIFY(calls[2].thread != std::this_thread::get_id());
    QVERIFY(calls[2].onRuntimeThread);
}

void TestStreamingBox::withoutManagerTheAddButtonOnlyLogs()
{
    StreamingBox box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    WarningRecorder recorder;
    ModalAnswerer answerer;
    answerer.setTimeout(noDialogMs);
    answerer.closeWhenShown();

    QTest::mouseClick(box.findChild<vexa::widgets::PushButton*>(QStringLiteral("boxAddButton")),
                      Qt::LeftButton);
    QTest::qWait(noDialogMs + 100);

    QVERIFY(!answerer.answered());
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 1);
    // The answerer reports that no window came; the library said one thing only.
    std::vector<vexa::testing::LoggedMessage> own;
    for (const auto& message : ownWarnings(recorder)) {
        if (message.file.contains("src/libs/")) {
            own.push_back(message);
        }
    }
    QCOMPARE(static_cast<int>(own.size()), 1);
    QVERIFY(own.front().file.endsWith("streamingbox.cpp"));
    QVERIFY2(own.front().function.contains("showDialog"), own.front().function.constData());
}

void TestStreamingBox::managerGoneWhileTheDialogIsOpen()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    const std::weak_ptr<FakeInputSourceMgr> weak = mgr;
    StreamingBox box;
    box.setZQRuntime(&runtime);
    box.setInputSourceMgr(mgr);
    box.show();
    WarningRecorder recorder;
    bool stayedOpen = false;

    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget* modal) {
        StreamingDialogParts parts(modal);
        if (!activate(modal)) {
            return;
        }
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("rtsp://camera"));
        mgr.reset();
        vexa::testing::waitUntil([&weak] { return weak.expired(); }, std::chrono::seconds(5));
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
        stayedOpen = parts.dialog->isVisible();
    });
    box.showDialog();

    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(weak.expired());
    // The name check finds no manager (not repeated), then the add finds none either.
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 2);
    QVERIFY(!stayedOpen);
}

void TestStreamingBox::twentyFirstCharacterCannotBeTyped()
{
    BoundStreamingBox bound;
    QString typed;
    bound.withDialog([&typed](StreamingDialogParts& parts) {
        StreamingDialogParts::retype(parts.nameEditor(), QStringLiteral("123456789012345678901"));
        typed = parts.nameEditor()->text();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(typed, QStringLiteral("12345678901234567890"));
}

void TestStreamingBox::languageSwitchRetranslatesTheDialog()
{
    BoundStreamingBox bound;
    auto& translator = InputSourceTranslateManager::instance().translator();
    translator.switchLanguage(QStringLiteral("zh_CN"));
    bound.box.translateLanguage();
    translator.switchLanguage(QStringLiteral("en_US"));
    QString title;
    QString confirm;
    QString accessible;
    bound.withDialog([&](StreamingDialogParts& parts) {
        title = parts.dialog->title();
        confirm = parts.confirm->text();
        accessible = parts.urlEditor()->accessibleName();
        QTest::keyClick(parts.nameEditor(), Qt::Key_Escape);
    });
    QCOMPARE(title, QStringLiteral("添加网络流"));
    QCOMPARE(confirm, QStringLiteral("确定"));
    QCOMPARE(accessible, QStringLiteral("地址"));
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

void TestStreamingBox::dialogIsCreatedOnceWithoutParentAndReused()
{
    BoundStreamingBox bound;
    QPointer<QWidget> first;
    QPointer<QWidget> second;
    bound.withDialog([&first](StreamingDialogParts& parts) {
        first = parts.dialog;
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    bound.withDialog([&second](StreamingDialogParts& parts) {
        second = parts.dialog;
        QTest::keyClick(parts.urlEditor(), Qt::Key_Escape);
    });
    QVERIFY(!first.isNull());
    QCOMPARE(first.data(), second.data());
    QVERIFY(first->parentWidget() == nullptr);
}

void TestStreamingBox::boxDestroyedWhileItsDialogIsOpen()
{
    auto bound = std::make_unique<BoundStreamingBox>();
    QPointer<StreamingDialog> dialog;
    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget* modal) {
        dialog = qobject_cast<StreamingDialog*>(modal);
        bound->box.unsetInputSourceMgr();
        bound.reset();
    });
    bound->box.showDialog();

    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound == nullptr);
    // Closed, not destroyed: its lifetime is the application's.
    QVERIFY(!dialog.isNull());
    QTRY_VERIFY(!dialog->isVisible());
    // Confirming the orphaned dialog reaches nothing.
    dialog->show();
    StreamingDialogParts parts(dialog);
    parts.urlEditor()->setText(QStringLiteral("rtsp://camera"));
    QTest::mouseClick(parts.confirm, Qt::LeftButton);
    QVERIFY(!dialog->isVisible());
}

void TestStreamingBox::boxDestroyedWhileTheNameNoticeIsOpen()
{
    auto bound = std::make_unique<BoundStreamingBox>();
    bound->mgr->setRepeatedNames({"Stream 1"});
    auto mgr = bound->mgr;
    QPointer<StreamingDialog> dialog;
    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget* modal) {
        StreamingDialogParts parts(modal);
        dialog = parts.dialog;
        if (!activate(modal)) {
            return;
        }
        StreamingDialogParts::type(parts.urlEditor(), QStringLiteral("rtsp://camera"));
        ModalAnswerer notice;
        notice.whenShown([&bound](QWidget*) {
            bound->box.unsetInputSourceMgr();
            bound.reset();
        });
        QTest::mouseClick(parts.confirm, Qt::LeftButton);
        QVERIFY2(notice.answered(), qPrintable(notice.errorString()));
    });
    bound->box.showDialog();

    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound == nullptr);
    QVERIFY(!dialog.isNull());
    QTRY_VERIFY(!dialog->isVisible());
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(mgr->callCount("addInputSources"), 0);
}

QTEST_MAIN(TestStreamingBox)
#include "tst_streamingbox.moc"
