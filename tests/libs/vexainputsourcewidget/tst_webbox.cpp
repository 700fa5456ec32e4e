// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "languagefiles.h"
#include "trkey.h"
#include "webdialogparts.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>
#include <vexainputsourcewidget/webbox.h>
#include <vexainputsourcewidget/webdialog.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>

#include <QLabel>
#include <QPointer>
#include <QtTest>

#include <functional>
#include <memory>
#include <thread>
#include <tuple>
#include <vector>

using quandel::msgcenter::MsgCenterMgr;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::STWebTab;
using vexa::inputsource::trKey;
using vexa::inputsource::WebBox;
using vexa::inputsource::WebDialog;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::ModalAnswerer;
using vexa::testing::WarningRecorder;

namespace {

using Sources = std::vector<STInputSource>;

constexpr int noDialogMs = 300;

// A web page as the host keeps it: a resource with a media description of its tabs.
std::shared_ptr<quandel::resource::ValueResource>
makeWebPage(uint64_t id, const std::string& name, std::vector<zq::mediacore::WebTab> tabs,
            int mode = 0, int current = 1)
{
    zq::mediacore::MetaValues values;
    values.name = name;
    values.webTabs = std::move(tabs);
    values.webMode = mode;
    values.webCurrentTabIndex = current;
    for (const auto& tab : values.webTabs) {
        if (tab.index == current) {
            values.address = tab.url;
        }
    }
    return makeSource(id, EnResourceType::WebPage, values);
}

// A web box bound to the double, in English, with a message centre.
struct BoundWebBox : BoundBoxOf<WebBox>
{
    BoundWebBox()
    {
        box.setMsgCenterMgr(&centre);
        box.translateLanguage();
    }

    // Opens the dialog with `open` and runs `operate` with it while it is open. The dialog
    // must be closed when `operate` returns (or the answerer's time-out closes it).
    void withDialog(const std::function<void()>& open,
                    const std::function<void(WebDialogParts&)>& operate)
    {
        ModalAnswerer answerer;
        answerer.whenShown([&operate](QWidget* modal) {
            WebDialogParts parts(modal);
            if (!parts.complete() || !QTest::qWaitForWindowActive(modal)) {
                QTest::qFail("no active web dialog", __FILE__, __LINE__);
                modal->close();
                return;
            }
            operate(parts);
        });
        open();
        QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
        QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::inputsource::WebDialog"));
    }

    void withAddDialog(const std::function<void(WebDialogParts&)>& operate)
    {
        withDialog(
            [this] {
                QTest::mouseClick(box.findChild<QPushButton*>(QStringLiteral("boxAddButton")),
                                  Qt::LeftButton);
            },
            operate);
    }

    void withEditDialog(uint64_t id, const std::function<void(WebDialogParts&)>& operate)
    {
        withDialog([this, id] { Q_EMIT box.signalItemEdit(id); }, operate);
    }

    MsgCenterMgr centre;
};

void verifyOnGuiThread(const vexa::testing::RecordedCall& call)
{
    QVERIFY2(call.thread == std::this_thread::get_id(), call.operation.c_str());
    QVERIFY2(!call.onRuntimeThread, call.operation.c_str());
}

void verifyOnRuntime(const vexa::testing::RecordedCall& call)
{
    QVERIFY2(call.thread != std::this_thread::get_id(), call.operation.c_str());
    QVERIFY2(call.onRuntimeThread, call.operation.c_str());
}

} // namespace

class TestWebBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void titleTypeAndDialog();
    void addProposesTheFirstNameWithNoSources();
    void addNumbersAmongAllSources();
    void homePageByLanguage_data();
    void homePageByLanguage();
    void hostsSetTheHomePages();
    void addSendsOneWebSourceFromTheRuntimeThread();
    void editFillsTheDialogFromTheSource();
    void editingAnUnknownSourceOpensNothing();
    void repeatedNameTellsAndAnswersTrue();
    void aFreeNameAnswersFalseSilently();
    void doubleClickSendsAWebOperation();
    void withoutManagerEveryPathLogs();
    void theDialogFollowsTheBinding();
    void messageCentreAndLanguageReachTheDialog();
    void translationReachesTheDialog();
    void theDialogIsCreatedOnceAndReused();
    void boxDestroyedWhileItsDialogIsOpen();
    void boxDestroyedWhileTheNameNoticeIsOpen();
    void boxDestroyedWhileTheDialogsTipIsOpen();
};

void TestWebBox::initTestCase()
{
    QVERIFY(loadShippedLanguages());
}

void TestWebBox::init()
{
    InputSourceTranslateManager::instance().translator().switchLanguage(QStringLiteral("en_US"));
    OverrideSupportedWGC(true);
}

void TestWebBox::cleanup()
{
    OverrideSupportedWGC(std::nullopt);
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
}

void TestWebBox::titleTypeAndDialog()
{
    WebBox box;
    QCOMPARE(box.findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text(),
             QStringLiteral("Web"));
    QCOMPARE(box.resourceType(), EnResourceType::WebPage);
    QVERIFY(box.dialog() != nullptr);
    QVERIFY(box.dialog()->parentWidget() == nullptr);
    QVERIFY(box.findChild<WebDialog*>() == nullptr);
    QCOMPARE(box.languageCode(), QString());
    QCOMPARE(static_cast<int>(WebBox::Add), 0);
    QCOMPARE(static_cast<int>(WebBox::Edit), 1);
}

void TestWebBox::addProposesTheFirstNameWithNoSources()
{
    BoundWebBox bound;
    QString name;
    std::vector<STWebTab> tabs;
    QString counter;
    bool modal = false;
    bound.withAddDialog([&](WebDialogParts& parts) {
        name = parts.nameEditor()->text();
        for (const auto* row : parts.rows()) {
            tabs.push_back(row->tab());
        }
        counter = parts.counter->text();
        modal = parts.dialog->isModal();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(name, trKey("WebPage") + QStringLiteral("1"));
    QCOMPARE(tabs.size(), std::size_t{1});
    QCOMPARE(QString::fromStdString(tabs[0].name), trKey("WebTab") + QStringLiteral("1"));
    QCOMPARE(tabs[0].url, std::string("https://www.google.com"));
    QCOMPARE(tabs[0].tabIndex, 1);
    QCOMPARE(counter, QStringLiteral("(1/30)"));
    QVERIFY(modal);
    QCOMPARE(bound.mgr->callCount("getResources"), 1);
    verifyOnGuiThread(bound.mgr->callsOf("getResources").front());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

void TestWebBox::addNumbersAmongAllSources()
{
    BoundWebBox bound;
    const std::string prefix = trKey("WebPage").toStdString();
    zq::mediacore::MetaValues stream;
    stream.name = prefix + "2";
    bound.mgr->setResources({makeWebPage(1, prefix + "1", {}),
                             makeSource(2, EnResourceType::NetworkStream, stream),
                             makeWebPage(3, prefix + "4", {}), makeWebPage(4, "Scores", {})});
    QString name;
    bound.withAddDialog([&](WebDialogParts& parts) {
        name = parts.nameEditor()->text();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    // The stream's name takes part: a name must be free among all sources.
    QCOMPARE(name, trKey("WebPage") + QStringLiteral("3"));
}

void TestWebBox::homePageByLanguage_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("homePage");
    QTest::newRow("zh_CN") << QStringLiteral("zh_CN") << QStringLiteral("https://www.baidu.com");
    QTest::newRow("zh_TW") << QStringLiteral("zh_TW") << QStringLiteral("https://www.google.com");
    QTest::newRow("en_US") << QStringLiteral("en_US") << QStringLiteral("https://www.google.com");
    QTest::newRow("zh_cn") << QStringLiteral("zh_cn") << QStringLiteral("https://www.google.com");
    QTest::newRow("empty") << QString() << QStringLiteral("https://www.google.com");
}

void TestWebBox::homePageByLanguage()
{
    QFETCH(QString, code);
    QFETCH(QString, homePage);
    BoundWebBox bound;
    // As the panel hands it to every box.
    static_cast<InputSourceBox&>(bound.box).setLanguageCode(code);
    QCOMPARE(bound.box.languageCode(), code);
    QCOMPARE(bound.box.dialog()->languageCode(), code);
    QString url;
    QString added;
    bound.withAddDialog([&](WebDialogParts& parts) {
        url = parts.row(0)->addressEditor()->text();
        QTest::mouseClick(parts.addTab, Qt::LeftButton);
        added = QString::fromUtf8(parts.row(1)->address());
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(url, homePage);
    QCOMPARE(added, homePage);
}

void TestWebBox::hostsSetTheHomePages()
{
    BoundWebBox bound;
    bound.box.setHomePages(QStringLiteral("https://cn.example"),
                           QStringLiteral("https://en.example"));
    bound.box.setLanguageCode(QStringLiteral("zh_CN"));
    QString url;
    bound.withAddDialog([&](WebDialogParts& parts) {
        url = parts.row(0)->addressEditor()->text();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(url, QStringLiteral("https://cn.example"));
    bound.box.setLanguageCode(QStringLiteral("en_US"));
    bound.withAddDialog([&](WebDialogParts& parts) {
        url = parts.row(0)->addressEditor()->text();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QCOMPARE(url, QStringLiteral("https://en.example"));
}

void TestWebBox::addSendsOneWebSourceFromTheRuntimeThread()
{
    BoundWebBox bound;
    bound.withAddDialog([](WebDialogParts& parts) {
        WebDialogParts::enter(parts.row(0)->addressEditor(), QStringLiteral("scores.example"));
        QTest::mouseClick(parts.ok, Qt::LeftButton);
    });
    const auto calls = bound.mgr->calls();
    QCOMPARE(static_cast<int>(calls.size()), 2);
    QCOMPARE(calls[0].operation, std::string("getResources"));
    verifyOnGuiThread(calls[0]);
    QCOMPARE(calls[1].operation, std::string("addInputSources"));
    verifyOnRuntime(calls[1]);
    const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
    QCOMPARE(static_cast<int>(sent.size()), 1);
    const STInputSource& source = sent.front();
    QCOMPARE(source.sourceType, 9);
    QCOMPARE(QString::fromStdString(source.name), trKey("WebPage") + QStringLiteral("1"));
    QCOMPARE(source.webName, source.name);
    QCOMPARE(source.address, std::string("https://scores.example"));
    QCOMPARE(source.currentTabIndex, 1);
    QCOMPARE(source.webMode, 0);
    QCOMPARE(source.webTabs.size(), std::size_t{1});
    QCOMPARE(source.resolutionWidth, 1920);
    // No tile until the manager reports the source.
    QCOMPARE(bound.box.itemCount(), 0);
}

void TestWebBox::editFillsTheDialogFromTheSource()
{
    BoundWebBox bound;
    bound.mgr->setResources({makeWebPage(
        7, "Scores", {{"Live", "https://live.example", 1}, {"Table", "https://table.example", 3}},
        1, 3)});
    QString name;
    int mode = -1;
    std::vector<STWebTab> tabs;
    bound.withEditDialog(7, [&](WebDialogParts& parts) {
        name = parts.nameEditor()->text();
        mode = parts.mode->currentData().toInt();
        for (const auto* row : parts.rows()) {
            tabs.push_back(row->tab());
        }
        WebDialogParts::enter(parts.row(1)->nameEditor(), QStringLiteral("Standings"));
        QTest::mouseClick(parts.ok, Qt::LeftButton);
    });
    QCOMPARE(name, QStringLiteral("Scores"));
    QCOMPARE(mode, 1);
    QCOMPARE(tabs, (std::vector<STWebTab>{{"Live", "https://live.example", 1},
                                          {"Table", "https://table.example", 3}}));

    const auto calls = bound.mgr->calls();
    QCOMPARE(static_cast<int>(calls.size()), 2);
    QCOMPARE(calls[0].operation, std::string("getResourceById"));
    QCOMPARE(std::get<0>(std::any_cast<std::tuple<uint64_t>>(calls[0].arguments)), uint64_t{7});
    verifyOnGuiThread(calls[0]);
    QCOMPARE(calls[1].operation, std::string("webOperation"));
    verifyOnRuntime(calls[1]);
    const STWebOperation sent =
        std::get<0>(bound.mgr->lastArguments<STWebOperation>("webOperation"));
    QCOMPARE(sent.kind, 1);
    QCOMPARE(sent.code, 14);
    QCOMPARE(sent.id, uint64_t{7});
    QCOMPARE(sent.webDescription.name, std::string("Scores"));
    QCOMPARE(sent.webDescription.webMode, 1);
    QCOMPARE(sent.webDescription.currentTabIndex, 3);
    QCOMPARE(sent.webDescription.address, std::string("https://table.example"));
    QCOMPARE(sent.webDescription.webTabs,
             (std::vector<STWebTab>{{"Live", "https://live.example", 1},
                                    {"Standings", "https://table.example", 3}}));
}

void TestWebBox::editingAnUnknownSourceOpensNothing()
{
    BoundWebBox bound;
    WarningRecorder recorder;
    ModalAnswerer answerer;
    answerer.setTimeout(noDialogMs);
    answerer.closeWhenShown();
    Q_EMIT bound.box.signalItemEdit(99);
    QTest::qWait(noDialogMs + 100);
    QVERIFY(!answerer.answered());
    QCOMPARE(recorder.count(QStringLiteral("nullptr == webResource")), 1);
    const auto warning = recorder.find(QStringLiteral("nullptr == webResource"));
    QVERIFY(warning->file.endsWith("webbox.cpp"));
    QVERIFY2(warning->function.contains("showDialog"), warning->function.constData());
    QCOMPARE(bound.mgr->callCount("getResourceById"), 1);
    QCOMPARE(static_cast<int>(bound.mgr->calls().size()), 1);
}

void TestWebBox::repeatedNameTellsAndAnswersTrue()
{
    BoundWebBox bound;
    bound.mgr->setRepeatedNames({"Taken"});
    QStringList noticeTexts;
    QStringList noticeButtons;
    bool openAfterNotice = false;
    bound.withAddDialog([&](WebDialogParts& parts) {
        WebDialogParts::enter(parts.nameEditor(), QStringLiteral("Taken"));
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
        QTest::mouseClick(parts.ok, Qt::LeftButton);
        QVERIFY2(notice.answered(), qPrintable(notice.errorString()));
        QCOMPARE(notice.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));
        openAfterNotice = parts.dialog->isVisible();

        // Asked directly, the box answers true and tells the operator again.
        ModalAnswerer again;
        again.clickWhenShown(QStringLiteral("firstBtn"));
        QVERIFY(Q_EMIT parts.dialog->signalNameEditIsRepeated(QStringLiteral("Taken")));
        QVERIFY2(again.answered(), qPrintable(again.errorString()));

        WebDialogParts::enter(parts.nameEditor(), QStringLiteral("Free"));
        QTest::mouseClick(parts.ok, Qt::LeftButton);
    });
    QVERIFY(noticeTexts.contains(trKey("NameAlreadyExists")));
    QCOMPARE(noticeButtons, QStringList{trKey("OK")});
    QVERIFY(openAfterNotice);
    const auto asked = bound.mgr->callsOf("isNameRepeated");
    QCOMPARE(static_cast<int>(asked.size()), 3);
    for (const auto& call : asked) {
        verifyOnGuiThread(call);
    }
    QCOMPARE(std::get<0>(std::any_cast<std::tuple<std::string>>(asked[2].arguments)),
             std::string("Free"));
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    QCOMPARE(std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources")).front().name,
             std::string("Free"));
}

void TestWebBox::aFreeNameAnswersFalseSilently()
{
    BoundWebBox bound;
    ModalAnswerer answerer;
    answerer.setTimeout(noDialogMs);
    answerer.closeWhenShown();
    QVERIFY(!Q_EMIT bound.box.dialog()->signalNameEditIsRepeated(QStringLiteral("Free")));
    QTest::qWait(noDialogMs + 100);
    QVERIFY(!answerer.answered());
    QCOMPARE(bound.mgr->callCount("isNameRepeated"), 1);
}

void TestWebBox::doubleClickSendsAWebOperation()
{
    BoundWebBox bound;
    Q_EMIT bound.box.signalDoubleClicked(31);
    QCOMPARE(bound.mgr->callCount("webOperation"), 1);
    verifyOnRuntime(bound.mgr->callsOf("webOperation").front());
    const STWebOperation sent =
        std::get<0>(bound.mgr->lastArguments<STWebOperation>("webOperation"));
    STWebOperation expected;
    expected.kind = 1;
    expected.id = 31;
    QCOMPARE(sent.kind, expected.kind);
    QCOMPARE(sent.code, expected.code);
    QCOMPARE(sent.id, expected.id);
    QCOMPARE(sent.webDescription.webTabs.size(), std::size_t{0});
    QCOMPARE(sent.webDescription.name, std::string());

    // From a tile, as the operator does it.
    bound.known.push_back(makeWebPage(5, "Scores", {{"Live", "https://live.example", 1}}));
    bound.mgr->setResources(bound.known);
    bound.add({bound.known.back()});
    QTRY_VERIFY(bound.tile(5) != nullptr);
    QTest::mouseDClick(bound.tile(5), Qt::LeftButton);
    QCOMPARE(bound.mgr->callCount("webOperation"), 2);
    QCOMPARE(std::get<0>(bound.mgr->lastArguments<STWebOperation>("webOperation")).id, uint64_t{5});
}

void TestWebBox::withoutManagerEveryPathLogs()
{
    WebBox box;
    box.show();
    WarningRecorder recorder;
    ModalAnswerer answerer;
    answerer.setTimeout(noDialogMs);
    answerer.closeWhenShown();
    QTest::mouseClick(box.findChild<QPushButton*>(QStringLiteral("boxAddButton")), Qt::LeftButton);
    box.showDialog(WebBox::Edit, 3);
    Q_EMIT box.signalDoubleClicked(3);
    QVERIFY(!Q_EMIT box.dialog()->signalNameEditIsRepeated(QStringLiteral("x")));
    QTest::qWait(noDialogMs + 100);
    QVERIFY(!answerer.answered());
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 3);
    QCOMPARE(recorder.count(QStringLiteral("nullptr == webResource")), 1);
    QVERIFY2(recorder.find(QStringLiteral("nullptr == webResource"))
                 ->function.contains("slotDoubleClicked"),
             recorder.find(QStringLiteral("nullptr == webResource"))->function.constData());
}

void TestWebBox::theDialogFollowsTheBinding()
{
    BoundWebBox bound;
    STWebOperation notice;
    notice.code = STWebOperation::SameNativePageOnPatches;
    bound.mgr->fireOnRuntime([&notice](auto& manager) { manager.signalWebInfoChanged(notice); });
    QTRY_COMPARE(bound.centre.messages().size(), 1);
    QCOMPARE(bound.centre.messages().front().message.text, trKey("SameNativeWebOnPatchs"));

    bound.box.unsetInputSourceMgr();
    bound.mgr->fireOnRuntime([&notice](auto& manager) { manager.signalWebInfoChanged(notice); });
    QTest::qWait(50);
    QCOMPARE(bound.centre.messages().size(), 1);

    // Bound again, the dialog follows the new binding.
    bound.box.setInputSourceMgr(bound.mgr);
    bound.mgr->fireOnRuntime([&notice](auto& manager) { manager.signalWebInfoChanged(notice); });
    QTRY_COMPARE(bound.centre.messages().size(), 2);
}

void TestWebBox::messageCentreAndLanguageReachTheDialog()
{
    BoundWebBox bound;
    MsgCenterMgr other;
    // Through the base class, as the panel calls them on every box.
    InputSourceBox& base = bound.box;
    base.setMsgCenterMgr(&other);
    base.setLanguageCode(QStringLiteral("zh_CN"));
    QCOMPARE(bound.box.dialog()->languageCode(), QStringLiteral("zh_CN"));
    STWebOperation notice;
    notice.code = STWebOperation::SameNativePageOnPatches;
    bound.mgr->fireOnRuntime([&notice](auto& manager) { manager.signalWebInfoChanged(notice); });
    QTRY_COMPARE(other.messages().size(), 1);
    QCOMPARE(bound.centre.messages().size(), 0);

    InputSourceBox plain;
    // The base box keeps nothing of the code; it must accept it all the same.
    plain.setLanguageCode(QStringLiteral("en_US"));
}

void TestWebBox::translationReachesTheDialog()
{
    WebBox box;
    WebDialog* const dialog = box.dialog();
    dialog->setTitle(QString());
    InputSourceTranslateManager::instance().translator().switchLanguage(QStringLiteral("zh_CN"));
    box.translateLanguage();
    QCOMPARE(dialog->title(), QStringLiteral("编辑网址"));
    WebDialogParts parts(dialog);
    QCOMPARE(parts.addTab->text(), QStringLiteral("添加标签页"));
}

void TestWebBox::theDialogIsCreatedOnceAndReused()
{
    BoundWebBox bound;
    bound.mgr->setResources({makeWebPage(7, "Scores", {{"Live", "https://live.example", 1}})});
    QPointer<QWidget> first;
    QPointer<QWidget> second;
    bound.withAddDialog([&first](WebDialogParts& parts) {
        first = parts.dialog;
        QTest::mouseClick(parts.addTab, Qt::LeftButton);
        QTest::keyClick(parts.nameEditor(), Qt::Key_Escape);
    });
    int rows = 0;
    bound.withEditDialog(7, [&](WebDialogParts& parts) {
        second = parts.dialog;
        rows = parts.rowCount();
        QTest::mouseClick(parts.cancel, Qt::LeftButton);
    });
    QVERIFY(!first.isNull());
    QCOMPARE(first.data(), second.data());
    QCOMPARE(first.data(), static_cast<QWidget*>(bound.box.dialog()));
    // Each opening starts from what the box hands in.
    QCOMPARE(rows, 1);
}

void TestWebBox::boxDestroyedWhileItsDialogIsOpen()
{
    auto bound = std::make_unique<BoundWebBox>();
    auto mgr = bound->mgr;
    QPointer<WebDialog> dialog = bound->box.dialog();
    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget*) { bound.reset(); });
    bound->box.showDialog(WebBox::Add, 0);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound == nullptr);
    // Closed, not destroyed: its lifetime is the application's.
    QVERIFY(!dialog.isNull());
    QTRY_VERIFY(!dialog->isVisible());

    // Unbound: nothing of the manager reaches it, and confirming reaches no manager.
    WarningRecorder recorder;
    dialog->show();
    WebDialogParts parts(dialog);
    QTest::mouseClick(parts.ok, Qt::LeftButton);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(recorder.count(QStringLiteral("inputSourceMgr is nullptr")), 1);
    QCOMPARE(mgr->callCount("addInputSources"), 0);
}

void TestWebBox::boxDestroyedWhileTheNameNoticeIsOpen()
{
    auto bound = std::make_unique<BoundWebBox>();
    bound->mgr->setRepeatedNames({"Taken"});
    auto mgr = bound->mgr;
    QPointer<WebDialog> dialog;
    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget* modal) {
        WebDialogParts parts(modal);
        dialog = parts.dialog;
        QVERIFY(QTest::qWaitForWindowActive(modal));
        WebDialogParts::enter(parts.nameEditor(), QStringLiteral("Taken"));
        ModalAnswerer notice;
        notice.whenShown([&bound](QWidget*) { bound.reset(); });
        QTest::mouseClick(parts.ok, Qt::LeftButton);
        QVERIFY2(notice.answered(), qPrintable(notice.errorString()));
    });
    bound->box.showDialog(WebBox::Add, 0);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound == nullptr);
    QVERIFY(!dialog.isNull());
    QTRY_VERIFY(!dialog->isVisible());
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(mgr->callCount("addInputSources"), 0);
}

void TestWebBox::boxDestroyedWhileTheDialogsTipIsOpen()
{
    auto bound = std::make_unique<BoundWebBox>();
    auto mgr = bound->mgr;
    QPointer<WebDialog> dialog;
    bool tipClosed = false;
    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget* modal) {
        WebDialogParts parts(modal);
        dialog = parts.dialog;
        QVERIFY(QTest::qWaitForWindowActive(modal));
        QTest::mouseClick(parts.addTab, Qt::LeftButton);
        WebDialogParts::enter(parts.row(1)->nameEditor(), parts.row(0)->name());
        ModalAnswerer tip;
        tip.whenShown([&](QWidget* tipWindow) {
            bound.reset();
            // The box's loop has closed the dialog; the operator still closes the tip.
            QVERIFY(!dialog->isVisible());
            tipWindow->close();
            tipClosed = true;
        });
        QTest::mouseClick(parts.ok, Qt::LeftButton);
        QVERIFY2(tip.answered(), qPrintable(tip.errorString()));
    });
    bound->box.showDialog(WebBox::Add, 0);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(tipClosed);
    QVERIFY(bound == nullptr);
    QVERIFY(!dialog.isNull());
    QTRY_VERIFY(!dialog->isVisible());
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(mgr->callCount("addInputSources"), 0);
}

QTEST_MAIN(TestWebBox)
#include "tst_webbox.moc"
