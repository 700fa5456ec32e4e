// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "languagefiles.h"
#include "loadwatch.h"
#include "textfits.h"
#include "trkey.h"
#include "webdialogparts.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/testing/runtogether.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>
#include <vexainputsourcewidget/webdialog.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>
#include <vexa/widgets/style.h>

#include <QApplication>
#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <tuple>
#include <vector>

using quandel::msgcenter::MsgCenterMgr;
using quandel::msgcenter::PostedMessage;
using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebDescription;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::STWebTab;
using vexa::inputsource::TabItemWidget;
using vexa::inputsource::trKey;
using vexa::inputsource::WebDialog;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::ModalAnswerer;
using vexa::testing::WarningRecorder;

namespace {

using Sources = std::vector<STInputSource>;

void switchLanguage(const QString& code)
{
    InputSourceTranslateManager::instance().translator().switchLanguage(code);
}

STWebDescription description(const std::string& name, std::vector<STWebTab> tabs, int mode = 0,
                             int current = 1)
{
    STWebDescription result;
    result.name = name;
    result.webName = name;
    result.webMode = mode;
    result.currentTabIndex = current;
    result.webTabs = std::move(tabs);
    return result;
}

std::vector<STWebTab> tabsNamed(int count)
{
    std::vector<STWebTab> tabs;
    for (int index = 1; index <= count; ++index) {
        tabs.push_back({"Page " + std::to_string(index),
                        "https://example.org/" + std::to_string(index), index});
    }
    return tabs;
}

// Every field of a record, the lists by their size (the tabs are compared on their own).
auto fields(const STInputSource& s)
{
    return std::make_tuple(
        s.id, s.name, s.address, s.sourceType, s.createdAndChangedAtMs, s.frameRate, s.preview,
        s.userName, s.useHardwareDecoding, s.password, s.devicePath, s.muted, s.colorAdjustments,
        s.audioGainDb, s.transportProtocol, s.captResolutions.size(), s.autoReconnect, s.webName,
        s.channelIndex, s.currentTabIndex, s.webMode, s.webTabs.size(), s.resolutionWidth,
        s.resolutionHeight, s.patchId, s.webWindowWidth, s.webWindowHeight);
}

auto fields(const STWebOperation& o)
{
    return std::make_tuple(o.kind, o.code, o.id, o.webDescription.name, o.webDescription.address,
                           o.webDescription.webName, o.webDescription.currentTabIndex,
                           o.webDescription.webMode, o.webDescription.webTabs, o.loadReadings,
                           o.loadThresholds);
}

// A dialog bound to a manager double on a real runtime thread, with a message centre, shown
// and active, in English.
struct BoundDialog
{
    BoundDialog()
        : mgr(std::make_shared<FakeInputSourceMgr>(&runtime))
        , dialog(std::make_unique<WebDialog>())
        , parts(dialog.get())
    {
        dialog->setInputSourceMgr(mgr, &runtime);
        dialog->setMsgCenterMgr(&centre);
    }
    ~BoundDialog()
    {
        if (dialog != nullptr) {
            dialog->unsetInputSourceMgr();
        }
    }

    void open(uint64_t id, const STWebDescription& contents, bool edit)
    {
        dialog->setWebSource(id, contents, edit);
        dialog->show();
        QApplication::setActiveWindow(dialog.get());
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    }
    void openAdd(int tabs = 1) { open(0, description("Web Page 1", tabsNamed(tabs)), false); }

    // Fires one web notification on the runtime thread and lets the GUI thread handle it.
    void notify(const STWebOperation& operation)
    {
        mgr->fireOnRuntime(
            [&operation](auto& manager) { manager.signalWebInfoChanged(operation); });
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    void sendReadings(double cpu, double gpu, double memory)
    {
        STWebOperation operation;
        operation.code = STWebOperation::LoadReadings;
        operation.loadReadings = {{cpu, gpu, memory}};
        notify(operation);
    }
    void sendThresholds(int cpu, int gpu, int memory)
    {
        STWebOperation operation;
        operation.code = STWebOperation::LoadThresholds;
        operation.loadThresholds = {{cpu, gpu, memory}};
        notify(operation);
    }
    void clickOk() { QTest::mouseClick(parts.ok, Qt::LeftButton); }
    int posted() const { return centre.messages().size(); }

    quandel::ZQRuntime runtime;
    std::shared_ptr<FakeInputSourceMgr> mgr;
    MsgCenterMgr centre;
    std::unique_ptr<WebDialog> dialog;
    WebDialogParts parts;
};

// The request ran on the runtime's thread, not on the GUI thread.
void verifyOnRuntime(const vexa::testing::RecordedCall& call)
{
    QVERIFY2(call.onRuntimeThread, call.operation.c_str());
    QVERIFY2(call.thread != std::this_thread::get_id(), call.operation.c_str());
}

// The one CPU warning that six ticks above the threshold post while PATH is `path` only.
PostedMessage cpuWarningWithPath(const QString& path, MsgCenterMgr& centre)
{
    const QByteArray saved = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(path));
    BoundDialog bound;
    bound.dialog->setMsgCenterMgr(&centre);
    bound.sendThresholds(10, 90, 90);
    bound.sendReadings(50.0, 0.0, 0.0);
    bound.parts.tick(6);
    qputenv("PATH", saved);
    const auto messages = centre.messages();
    return messages.size() == 1 ? messages.front() : PostedMessage();
}

} // namespace

class TestWebDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void layoutFollowsTheFixedNumbers();
    void modeChooserHoldsNativeAndScreenshot();
    void unsupportedCaptureDisablesScreenshotOncePerConstruction();
    void supportedCaptureEnablesScreenshotAgain();
    void oneTabCannotBeDeleted();
    void deletingATabUpdatesTheCounter();
    void thirtyTabsDisableAdding();
    void newTabsAreNumberedWithTheLanguagesHomePage_data();
    void newTabsAreNumberedWithTheLanguagesHomePage();
    void addressRules_data();
    void addressRules();
    void emptiedTabNameComesBackAndRepeatedOnesAreMarked();
    void okInAddModeSendsOneWebSource_data();
    void okInAddModeSendsOneWebSource();
    void okInEditModeSendsOneWebOperation();
    void currentTabIsTheHighestIndexNotAboveTheCurrentOne();
    void nameIsCheckedOnlyWhenChanged();
    void repeatedTabNamesAreRefusedWithTheTip();
    void expiredManagerOnOkClosesWithoutARequest();
    void bindingAnExpiredManagerLogs();
    void changedDescriptionRefreshesOnlyTheEditedSource();
    void samePageOnPatchesIsToldToTheMessageCentre();
    void otherKindsAndCodesAreIgnored();
    void fiveTicksAboveAreQuietTheSixthWarns();
    void noReadingCountsAsZero();
    void aReadingOfMinusOneKeepsTheCurrentOne();
    void withoutMessageCentreNothingIsPosted();
    void goCheckOpensTheSystemMonitor();
    void withoutASystemMonitorThereIsNoButton();
    void readingsFromTheRuntimeWhileTheTimerReads();
    void readingsAndTicksOnPlainThreads();
    void unbindingStopsTheNotifications();
    void enterConfirmsAndEscapeCancels();
    void tabWalksTheFieldsInOrder();
    void accessibleNamesSayWhichTab();
    void noTextIsClipped_data();
    void noTextIsClipped();
    void dialogDestroyedWhileItsTipIsOpen();
};

void TestWebDialog::initTestCase()
{
    QVERIFY(loadShippedLanguages());
    qApp->setStyleSheet(vexa::widgets::defaultStyleSheet());
}

void TestWebDialog::init()
{
    switchLanguage(QStringLiteral("en_US"));
    OverrideSupportedWGC(true);
}

void TestWebDialog::cleanup()
{
    OverrideSupportedWGC(std::nullopt);
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
}

void TestWebDialog::layoutFollowsTheFixedNumbers()
{
    WebDialog dialog;
    WebDialogParts parts(&dialog);
    QVERIFY(parts.complete());
    QCOMPARE(parts.counter->text(), QStringLiteral("(0/30)"));
    QCOMPARE(parts.rowCount(), 0);
    QCOMPARE(parts.timer->interval(), 5000);
    QVERIFY(parts.timer->isActive());

    dialog.setWebSource(0, description("Web Page 1", tabsNamed(1)), false);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.width(), 500);
    QCOMPARE(dialog.minimumWidth(), 500);
    QCOMPARE(dialog.maximumWidth(), 500);
    QCOMPARE(parts.nameLabel->width(), 60);
    QCOMPARE(parts.modeLabel->width(), 60);
    QCOMPARE(parts.name->maxLength(), 20);
    QCOMPARE(parts.name->property("style").toString(), QStringLiteral("lineEdit"));
    QCOMPARE(parts.addTab->height(), 20);
    QCOMPARE(parts.addTab->property("style").toString(), QStringLiteral("general"));
    QCOMPARE(parts.list->size(), QSize(444, 178));
    QCOMPARE(parts.list->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(parts.cancel->height(), 28);
    QCOMPARE(parts.ok->height(), 28);
    QCOMPARE(parts.cancel->property("style").toString(), QStringLiteral("assist"));
    QCOMPARE(parts.ok->property("style").toString(), QStringLiteral("general"));
    QVERIFY(parts.ok->isDefault());
    QVERIFY(parts.cancel->geometry().right() < parts.ok->geometry().left());

    auto* const main = qobject_cast<QVBoxLayout*>(dialog.dialogWidget()->layout());
    QVERIFY(main != nullptr);
    QCOMPARE(main->contentsMargins(), QMargins(28, 28, 28, 28));
    QCOMPARE(main->spacing(), 8);
    QCOMPARE(main->count(), 6);
    for (int row : {0, 1}) {
        QCOMPARE(main->itemAt(row)->layout()->spacing(), 8);
        QCOMPARE(main->itemAt(row)->layout()->contentsMargins(), QMargins(0, 0, 0, 0));
    }
    QCOMPARE(main->itemAt(2)->layout()->spacing(), 6);
    QCOMPARE(main->itemAt(3)->widget(), static_cast<QWidget*>(parts.list));
    QCOMPARE(main->itemAt(4)->layout()->spacing(), 12);
    QCOMPARE(main->itemAt(4)->layout()->contentsMargins(), QMargins(0, 12, 0, 0));
    QVERIFY(main->itemAt(5)->spacerItem() != nullptr);

    TabItemWidget* const row = parts.row(0);
    const auto* const nameEdit =
        row->findChild<vexa::widgets::EditBox*>(QStringLiteral("tabNameEdit"));
    const auto* const urlEdit =
        row->findChild<vexa::widgets::EditBox*>(QStringLiteral("tabUrlEdit"));
    QCOMPARE(nameEdit->property("style").toString(), QStringLiteral("lineEdit"));
    QCOMPARE(urlEdit->property("style").toString(), QStringLiteral("lineEdit"));
    QCOMPARE(WebDialogParts::deleteButton(row)->property("imageBtn").toString(),
             QStringLiteral("delete"));
    // The row spans the list's width and shows its whole height.
    QVERIFY(row->width() >= parts.list->viewport()->width() - 2);
    QCOMPARE(row->height(), 36);
}

void TestWebDialog::modeChooserHoldsNativeAndScreenshot()
{
    WebDialog dialog;
    WebDialogParts parts(&dialog);
    QCOMPARE(parts.mode->count(), 2);
    QCOMPARE(parts.mode->itemData(0).toInt(), 0);
    QCOMPARE(parts.mode->itemData(1).toInt(), 1);
    QCOMPARE(parts.mode->itemText(0), trKey("NativeMode"));
    QCOMPARE(parts.mode->itemText(1), trKey("ScreenshotMode"));
}

void TestWebDialog::unsupportedCaptureDisablesScreenshotOncePerConstruction()
{
    OverrideSupportedWGC(false);
    WarningRecorder recorder;
    WebDialog dialog;
    WebDialogParts parts(&dialog);
    QCOMPARE(parts.mode->itemData(1, Qt::UserRole - 1), QVariant(0));
    QCOMPARE(parts.mode->itemData(1, Qt::ToolTipRole).toString(), trKey("NotUseWGC"));
    QCOMPARE(parts.mode->itemData(1, Qt::ForegroundRole).value<QColor>(), QColor(91, 91, 91));
    const auto* const model = qobject_cast<QStandardItemModel*>(parts.mode->model());
    QVERIFY(!model->item(1)->isEnabled());
    QVERIFY(model->item(0)->isEnabled());
    const QString text = QStringLiteral("current system does not supported WGC!!!");
    QCOMPARE(recorder.count(text), 1);
    const auto warning = recorder.find(text);
    QVERIFY(warning->file.endsWith("webdialog.cpp"));
    QVERIFY(warning->line > 0);

    // A language switch probes again, keeps the entry disabled and does not log again.
    switchLanguage(QStringLiteral("zh_CN"));
    dialog.translateLanguage();
    QCOMPARE(parts.mode->itemData(1, Qt::UserRole - 1), QVariant(0));
    QCOMPARE(parts.mode->itemData(1, Qt::ToolTipRole).toString(), trKey("NotUseWGC"));
    QCOMPARE(recorder.count(text), 1);

    WebDialog another;
    QCOMPARE(recorder.count(text), 2);
}

void TestWebDialog::supportedCaptureEnablesScreenshotAgain()
{
    OverrideSupportedWGC(false);
    WarningRecorder recorder;
    WebDialog dialog;
    WebDialogParts parts(&dialog);
    OverrideSupportedWGC(true);
    dialog.translateLanguage();
    const auto* const model = qobject_cast<QStandardItemModel*>(parts.mode->model());
    QVERIFY(model->item(1)->isEnabled());
    QVERIFY(model->item(1)->isSelectable());
    QVERIFY(!parts.mode->itemData(1, Qt::ToolTipRole).isValid());
    QVERIFY(!parts.mode->itemData(1, Qt::ForegroundRole).isValid());

    recorder.clear();
    WebDialog supported;
    WebDialogParts fresh(&supported);
    QCOMPARE(recorder.count(QStringLiteral("current system does not supported WGC!!!")), 0);
    QVERIFY(qobject_cast<QStandardItemModel*>(fresh.mode->model())->item(1)->isEnabled());
}

void TestWebDialog::oneTabCannotBeDeleted()
{
    BoundDialog bound;
    bound.openAdd(1);
    QCOMPARE(bound.parts.rowCount(), 1);
    QVERIFY(!WebDialogParts::deleteButton(bound.parts.row(0))->isEnabled());
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(1/30)"));
    QTest::mouseClick(WebDialogParts::deleteButton(bound.parts.row(0)), Qt::LeftButton);
    QTest::qWait(50);
    QCOMPARE(bound.parts.rowCount(), 1);

    QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
    QCOMPARE(bound.parts.rowCount(), 2);
    QVERIFY(WebDialogParts::deleteButton(bound.parts.row(0))->isEnabled());
    QVERIFY(WebDialogParts::deleteButton(bound.parts.row(1))->isEnabled());
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(2/30)"));
}

void TestWebDialog::deletingATabUpdatesTheCounter()
{
    BoundDialog bound;
    bound.openAdd(3);
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(3/30)"));
    QPointer<TabItemWidget> second = bound.parts.row(1);
    QTest::mouseClick(WebDialogParts::deleteButton(second), Qt::LeftButton);
    QTRY_COMPARE(bound.parts.rowCount(), 2);
    QVERIFY(second.isNull());
    QCOMPARE(bound.parts.row(0)->name(), QStringLiteral("Page 1"));
    QCOMPARE(bound.parts.row(1)->name(), QStringLiteral("Page 3"));
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(2/30)"));

    // Two delete clicks queued at once still leave the last tab.
    QTest::mouseClick(WebDialogParts::deleteButton(bound.parts.row(0)), Qt::LeftButton);
    QTest::mouseClick(WebDialogParts::deleteButton(bound.parts.row(1)), Qt::LeftButton);
    QTRY_COMPARE(bound.parts.rowCount(), 1);
    QTest::qWait(50);
    QCOMPARE(bound.parts.rowCount(), 1);
    QVERIFY(!WebDialogParts::deleteButton(bound.parts.row(0))->isEnabled());
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(1/30)"));
}

void TestWebDialog::thirtyTabsDisableAdding()
{
    BoundDialog bound;
    bound.openAdd(1);
    for (int count = 2; count <= 30; ++count) {
        QVERIFY(bound.parts.addTab->isEnabled());
        QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
        QCOMPARE(bound.parts.rowCount(), count);
    }
    QVERIFY(!bound.parts.addTab->isEnabled());
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(30/30)"));
    QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
    QCOMPARE(bound.parts.rowCount(), 30);

    // One less, and adding works again.
    QTest::mouseClick(WebDialogParts::deleteButton(bound.parts.row(29)), Qt::LeftButton);
    QTRY_COMPARE(bound.parts.rowCount(), 29);
    QVERIFY(bound.parts.addTab->isEnabled());
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(29/30)"));
}

void TestWebDialog::newTabsAreNumberedWithTheLanguagesHomePage_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("homePage");
    QTest::newRow("zh_CN") << QStringLiteral("zh_CN") << QStringLiteral("https://www.baidu.com");
    QTest::newRow("zh_TW") << QStringLiteral("zh_TW") << QStringLiteral("https://www.google.com");
    QTest::newRow("en_US") << QStringLiteral("en_US") << QStringLiteral("https://www.google.com");
    QTest::newRow("empty") << QString() << QStringLiteral("https://www.google.com");
}

void TestWebDialog::newTabsAreNumberedWithTheLanguagesHomePage()
{
    QFETCH(QString, code);
    QFETCH(QString, homePage);
    BoundDialog bound;
    bound.dialog->setLanguageCode(code);
    QCOMPARE(bound.dialog->languageCode(), code);
    const std::string tab = trKey("WebTab").toStdString();
    bound.open(0,
               description("Web Page 1", {{tab + "1", "https://a.example", 1},
                                          {tab + "3", "https://b.example", 3}}),
               false);
    QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
    QCOMPARE(bound.parts.rowCount(), 3);
    TabItemWidget* const added = bound.parts.row(2);
    // The first free number, at the next index.
    QCOMPARE(added->name(), trKey("WebTab") + QStringLiteral("2"));
    QCOMPARE(QString::fromUtf8(added->address()), homePage);
    QCOMPARE(added->tabIndex(), 4);
    QCOMPARE(added->addressEditor()->text(), homePage);

    bound.dialog->setHomePages(QStringLiteral("https://cn.example"),
                               QStringLiteral("https://other.example"));
    QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
    QCOMPARE(QString::fromUtf8(bound.parts.row(3)->address()),
             code == QLatin1String("zh_CN") ? QStringLiteral("https://cn.example")
                                            : QStringLiteral("https://other.example"));
    QCOMPARE(bound.parts.row(3)->name(), trKey("WebTab") + QStringLiteral("4"));
    QCOMPARE(bound.parts.row(3)->tabIndex(), 5);
}

void TestWebDialog::addressRules_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("accepted");
    const QString previous = QStringLiteral("https://example.org/1");
    QTest::newRow("no scheme") << QStringLiteral("example.com")
                               << QStringLiteral("https://example.com");
    QTest::newRow("www") << QStringLiteral("www.example.com/a?b=c")
                         << QStringLiteral("https://www.example.com/a?b=c");
    QTest::newRow("leading space") << QStringLiteral(" example.com") << previous;
    QTest::newRow("space only") << QStringLiteral(" ") << previous;
    QTest::newRow("empty") << QString() << previous;
    QTest::newRow("http") << QStringLiteral("http://example.com")
                          << QStringLiteral("http://example.com");
    QTest::newRow("https") << QStringLiteral("https://example.com")
                           << QStringLiteral("https://example.com");
    QTest::newRow("file") << QStringLiteral("file:///home/op/page.html")
                          << QStringLiteral("file:///home/op/page.html");
    QTest::newRow("http behind another scheme") << QStringLiteral("ftp://host/http://example.com")
                                                << QStringLiteral("ftp://host/http://example.com");
    QTest::newRow("https in the middle")
        << QStringLiteral("go https://x") << QStringLiteral("go https://x");
    QTest::newRow("capital scheme")
        << QStringLiteral("HTTP://example.com") << QStringLiteral("https://HTTP://example.com");
    QTest::newRow("trailing space")
        << QStringLiteral("example.com ") << QStringLiteral("https://example.com ");
}

void TestWebDialog::addressRules()
{
    QFETCH(QString, typed);
    QFETCH(QString, accepted);
    BoundDialog bound;
    bound.openAdd(2);
    TabItemWidget* const row = bound.parts.row(0);
    WebDialogParts::enter(row->addressEditor(), typed);
    QCOMPARE(row->addressEditor()->text(), accepted);
    QCOMPARE(QString::fromUtf8(row->address()), accepted);

    bound.clickOk();
    const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
    QCOMPARE(QString::fromStdString(sent.at(0).webTabs.at(0).url), accepted);
}

void TestWebDialog::emptiedTabNameComesBackAndRepeatedOnesAreMarked()
{
    BoundDialog bound;
    bound.openAdd(2);
    TabItemWidget* const first = bound.parts.row(0);
    TabItemWidget* const second = bound.parts.row(1);
    WebDialogParts::enter(first->nameEditor(), QString());
    QCOMPARE(first->nameEditor()->text(), QStringLiteral("Page 1"));
    QCOMPARE(first->name(), QStringLiteral("Page 1"));

    WebDialogParts::enter(second->nameEditor(), QStringLiteral("Page 1"));
    QVERIFY(first->isNameRepeated());
    QVERIFY(second->isNameRepeated());
    QCOMPARE(second->nameEditor()->property("style").toString(), QStringLiteral("editError"));

    WebDialogParts::enter(first->nameEditor(), QStringLiteral("News"));
    QVERIFY(!first->isNameRepeated());
    QVERIFY(!second->isNameRepeated());
    QCOMPARE(second->nameEditor()->property("style").toString(), QString());
}

void TestWebDialog::okInAddModeSendsOneWebSource_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("native") << 0 << 1920 << 1080;
    QTest::newRow("screenshot") << 1 << 1600 << 900;
}

void TestWebDialog::okInAddModeSendsOneWebSource()
{
    QFETCH(int, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    BoundDialog bound;
    bound.openAdd(1);
    QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
    WebDialogParts::enter(bound.parts.row(1)->addressEditor(), QStringLiteral("news.example"));
    WebDialogParts::enter(bound.parts.nameEditor(), QStringLiteral("Scores"));
    bound.parts.mode->setCurrentIndex(mode);
    bound.clickOk();

    QVERIFY(!bound.dialog->isVisible());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
    QCOMPARE(bound.mgr->callCount("webOperation"), 0);
    verifyOnRuntime(bound.mgr->callsOf("addInputSources").front());
    const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
    QCOMPARE(static_cast<int>(sent.size()), 1);
    STInputSource expected;
    expected.name = "Scores";
    expected.webName = "Scores";
    expected.sourceType = 9;
    expected.address = "https://example.org/1";
    expected.currentTabIndex = 1;
    expected.webMode = mode;
    expected.webTabs = {{"Page 1", "https://example.org/1", 1},
                        {trKey("WebTab").toStdString() + "1", "https://news.example", 2}};
    expected.resolutionWidth = width;
    expected.resolutionHeight = height;
    QVERIFY(fields(sent.front()) == fields(expected));
    QVERIFY(sent.front().webTabs == expected.webTabs);
}

void TestWebDialog::okInEditModeSendsOneWebOperation()
{
    BoundDialog bound;
    bound.open(
        42,
        description("Scores",
                    {{"Live", "https://live.example", 2}, {"Table", "https://table.example", 5}}, 1,
                    5),
        true);
    QCOMPARE(bound.parts.nameEditor()->text(), QStringLiteral("Scores"));
    QCOMPARE(bound.parts.mode->currentData().toInt(), 1);
    WebDialogParts::enter(bound.parts.row(0)->addressEditor(), QStringLiteral("live2.example"));
    bound.parts.mode->setCurrentIndex(0);
    bound.clickOk();

    QVERIFY(!bound.dialog->isVisible());
    QCOMPARE(bound.mgr->callCount("webOperation"), 1);
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
    // The name was not changed: nobody was asked.
    QCOMPARE(bound.mgr->callCount("isNameRepeated"), 0);
    verifyOnRuntime(bound.mgr->callsOf("webOperation").front());
    const STWebOperation sent =
        std::get<0>(bound.mgr->lastArguments<STWebOperation>("webOperation"));
    STWebOperation expected;
    expected.kind = 1;
    expected.code = 14;
    expected.id = 42;
    expected.webDescription = description(
        "Scores", {{"Live", "https://live2.example", 2}, {"Table", "https://table.example", 5}}, 0,
        5);
    expected.webDescription.address = "https://table.example";
    QVERIFY(fields(sent) == fields(expected));
}

void TestWebDialog::currentTabIsTheHighestIndexNotAboveTheCurrentOne()
{
    const auto sentCurrent = [](int current) {
        BoundDialog bound;
        bound.open(7,
                   description("Scores",
                               {{"A", "https://a.example", 2},
                                {"B", "https://b.example", 4},
                                {"C", "https://c.example", 6}},
                               0, current),
                   true);
        bound.clickOk();
        const STWebOperation sent =
            std::get<0>(bound.mgr->lastArguments<STWebOperation>("webOperation"));
        return std::make_pair(sent.webDescription.currentTabIndex, sent.webDescription.address);
    };
    QCOMPARE(sentCurrent(4), std::make_pair(4, std::string("https://b.example")));
    QCOMPARE(sentCurrent(5), std::make_pair(4, std::string("https://b.example")));
    QCOMPARE(sentCurrent(9), std::make_pair(6, std::string("https://c.example")));
    // Below every index: the first row.
    QCOMPARE(sentCurrent(1), std::make_pair(2, std::string("https://a.example")));
}

void TestWebDialog::nameIsCheckedOnlyWhenChanged()
{
    BoundDialog bound;
    QStringList asked;
    bool answer = true;
    QObject::connect(
        bound.dialog.get(), &WebDialog::signalNameEditIsRepeated, bound.dialog.get(),
        [&](const QString& name) {
            asked << name;
            return answer;
        },
        Qt::DirectConnection);
    bound.openAdd(1);
    WebDialogParts::enter(bound.parts.nameEditor(), QStringLiteral("Taken"));
    bound.clickOk();
    QCOMPARE(asked, QStringList{QStringLiteral("Taken")});
    QVERIFY(bound.dialog->isVisible());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);

    answer = false;
    bound.clickOk();
    QCOMPARE(asked.size(), 2);
    QVERIFY(!bound.dialog->isVisible());
    QCOMPARE(bound.mgr->callCount("addInputSources"), 1);

    // Unchanged: not asked.
    bound.open(3, description("Same", tabsNamed(1)), true);
    bound.clickOk();
    QCOMPARE(asked.size(), 2);
    QCOMPARE(bound.mgr->callCount("webOperation"), 1);
}

void TestWebDialog::repeatedTabNamesAreRefusedWithTheTip()
{
    BoundDialog bound;
    bound.openAdd(2);
    WebDialogParts::enter(bound.parts.row(1)->nameEditor(), QStringLiteral("Page 1"));
    ModalAnswerer answerer;
    QString tipType;
    QStringList buttons;
    answerer.whenShown([&](QWidget* modal) {
        tipType =
            modal->findChild<QWidget*>(QStringLiteral("tipIcon"))->property("tipType").toString();
        for (QPushButton* button : modal->findChildren<QPushButton*>()) {
            if (button->isVisible() && !button->text().isEmpty()) {
                buttons << button->text();
            }
        }
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("firstBtn")),
                          Qt::LeftButton);
    });
    bound.clickOk();
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));
    QVERIFY(answerer.labelTexts().contains(trKey("NameAlreadyExists")));
    QCOMPARE(tipType, QStringLiteral("warning"));
    QCOMPARE(buttons, QStringList{trKey("OK")});
    QVERIFY(bound.dialog->isVisible());
    QCOMPARE(bound.parts.rowCount(), 2);
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

void TestWebDialog::expiredManagerOnOkClosesWithoutARequest()
{
    BoundDialog bound;
    bound.openAdd(1);
    const std::weak_ptr<FakeInputSourceMgr> weak = bound.mgr;
    bound.mgr.reset();
    QVERIFY(weak.expired());
    WarningRecorder recorder;
    bound.clickOk();
    QVERIFY(!bound.dialog->isVisible());
    QCOMPARE(recorder.count(QStringLiteral("inputSourceMgr is nullptr")), 1);
    QVERIFY(recorder.find(QStringLiteral("inputSourceMgr is nullptr"))
                ->function.contains("onOkBtnClicked"));
}

void TestWebDialog::bindingAnExpiredManagerLogs()
{
    WarningRecorder recorder;
    WebDialog dialog;
    quandel::ZQRuntime runtime;
    dialog.setInputSourceMgr(std::weak_ptr<vexa::inputsource::IInputSourceMgr>(), &runtime);
    QCOMPARE(recorder.count(QStringLiteral("inputSourceMgr is nullptr")), 1);
    QVERIFY(recorder.find(QStringLiteral("inputSourceMgr is nullptr"))
                ->function.contains("setInputSourceMgr"));
}

void TestWebDialog::changedDescriptionRefreshesOnlyTheEditedSource()
{
    BoundDialog bound;
    bound.open(42, description("Scores", tabsNamed(2)), true);
    STWebOperation other;
    other.code = STWebOperation::WebDescriptionChanged;
    other.id = 43;
    other.webDescription = description("Elsewhere", tabsNamed(5));
    bound.notify(other);
    QCOMPARE(bound.parts.rowCount(), 2);
    QCOMPARE(bound.parts.nameEditor()->text(), QStringLiteral("Scores"));

    STWebOperation mine = other;
    mine.id = 42;
    mine.webDescription = description("Renamed", {{"Only", "https://only.example", 3}}, 1, 3);
    bound.notify(mine);
    QCOMPARE(bound.parts.rowCount(), 1);
    QCOMPARE(bound.parts.nameEditor()->text(), QStringLiteral("Renamed"));
    QCOMPARE(bound.parts.mode->currentData().toInt(), 1);
    QCOMPARE(bound.parts.row(0)->tab(), (STWebTab{"Only", "https://only.example", 3}));
    QCOMPARE(bound.parts.counter->text(), QStringLiteral("(1/30)"));

    // The new name is the source's own: OK asks nobody.
    int asked = 0;
    QObject::connect(bound.dialog.get(), &WebDialog::signalNameEditIsRepeated, bound.dialog.get(),
                     [&asked](const QString&) { return ++asked > 0; });
    bound.clickOk();
    QCOMPARE(asked, 0);
    QCOMPARE(bound.mgr->callCount("webOperation"), 1);

    // In add mode no description applies, not even one for id 0.
    bound.openAdd(2);
    mine.id = 0;
    bound.notify(mine);
    QCOMPARE(bound.parts.rowCount(), 2);
}

void TestWebDialog::samePageOnPatchesIsToldToTheMessageCentre()
{
    BoundDialog bound;
    STWebOperation operation;
    operation.code = STWebOperation::SameNativePageOnPatches;
    bound.notify(operation);
    QCOMPARE(bound.posted(), 1);
    const PostedMessage message = bound.centre.messages().front();
    QCOMPARE(message.message.text, trKey("SameNativeWebOnPatchs"));
    QCOMPARE(message.message.level, 1);
    QVERIFY(message.message.action.label.isEmpty());

    bound.dialog->setMsgCenterMgr(nullptr);
    bound.notify(operation);
    QCOMPARE(bound.posted(), 1);
}

void TestWebDialog::otherKindsAndCodesAreIgnored()
{
    BoundDialog bound;
    bound.open(42, description("Scores", tabsNamed(2)), true);
    bound.sendThresholds(10, 10, 10);
    STWebOperation operation;
    operation.kind = 2;
    for (const int code : {14, 15, 16, 17}) {
        operation.code = code;
        operation.id = 42;
        operation.webDescription = description("Other", tabsNamed(4));
        operation.loadReadings = {{99.0, 99.0, 99.0}};
        operation.loadThresholds = {{1, 1, 1}};
        bound.notify(operation);
    }
    operation.kind = 1;
    for (const int code : {0, 13, 18, -1}) {
        operation.code = code;
        bound.notify(operation);
    }
    QCOMPARE(bound.parts.rowCount(), 2);
    QCOMPARE(bound.parts.nameEditor()->text(), QStringLiteral("Scores"));
    QCOMPARE(bound.posted(), 0);
    bound.parts.tick(6);
    // No reading arrived, the thresholds stayed at 10: nothing to warn about.
    QCOMPARE(bound.posted(), 0);
}

void TestWebDialog::fiveTicksAboveAreQuietTheSixthWarns()
{
    BoundDialog bound;
    bound.sendThresholds(80, 70, 60);
    bound.sendReadings(90.0, 10.0, 10.0);
    bound.parts.tick(5);
    QCOMPARE(bound.posted(), 0);
    bound.parts.tick();
    QCOMPARE(bound.posted(), 1);
    const PostedMessage first = bound.centre.messages().front();
    QCOMPARE(first.message.text,
             trKey("CpuExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%")));
    QVERIFY(first.message.text.contains(QLatin1String("30")));
    QVERIFY(first.message.text.contains(QLatin1String("85%")));
    QCOMPARE(first.message.level, 2);
    bound.parts.tick();
    bound.parts.tick();
    QCOMPARE(bound.posted(), 3);

    // A reading at the threshold is not above it: the next six ticks must all be above again.
    bound.sendReadings(80.0, -1.0, -1.0);
    bound.parts.tick();
    QCOMPARE(bound.posted(), 3);
    bound.sendReadings(95.0, 75.0, 65.0);
    bound.parts.tick(5);
    // GPU and memory had five quiet samples before; CPU has one at its threshold.
    QCOMPARE(bound.posted(), 3);
    bound.parts.tick();
    const auto messages = bound.centre.messages();
    QCOMPARE(messages.size(), 6);
    QCOMPARE(messages[3].message.text,
             trKey("CpuExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%")));
    QCOMPARE(messages[4].message.text,
             trKey("GpuExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%")));
    QCOMPARE(messages[5].message.text,
             trKey("MemoryExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%")));
}

void TestWebDialog::noReadingCountsAsZero()
{
    BoundDialog bound;
    // No reading at all: each sample is 0, which is above -1 and not above 0.
    bound.sendThresholds(-1, 0, -1);
    bound.parts.tick(6);
    const auto messages = bound.centre.messages();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(messages[0].message.text,
             trKey("CpuExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%")));
    QCOMPARE(messages[1].message.text,
             trKey("MemoryExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%")));
}

void TestWebDialog::aReadingOfMinusOneKeepsTheCurrentOne()
{
    vexa::inputsource::LoadWatch watch;
    QCOMPARE(watch.reading(vexa::inputsource::LoadWatch::Cpu), -1.0);
    QCOMPARE(watch.threshold(vexa::inputsource::LoadWatch::Gpu), 85.0);
    watch.setReadings({{40.0, 50.0, 60.0}});
    watch.setReadings({{-1.0, 55.0, -1.0}});
    QCOMPARE(watch.reading(vexa::inputsource::LoadWatch::Cpu), 40.0);
    QCOMPARE(watch.reading(vexa::inputsource::LoadWatch::Gpu), 55.0);
    QCOMPARE(watch.reading(vexa::inputsource::LoadWatch::Memory), 60.0);
    watch.tick();
    QCOMPARE(watch.samples(vexa::inputsource::LoadWatch::Cpu), std::deque<double>{40.0});
    for (int i = 0; i < 8; ++i) {
        watch.tick();
    }
    QCOMPARE(static_cast<int>(watch.samples(vexa::inputsource::LoadWatch::Memory).size()), 6);

    // Through the dialog: a -1 reading after 90 keeps 90, so the warning still comes.
    BoundDialog bound;
    bound.sendThresholds(50, 50, 50);
    bound.sendReadings(90.0, -1.0, -1.0);
    bound.parts.tick(3);
    bound.sendReadings(-1.0, -1.0, -1.0);
    bound.parts.tick(3);
    QCOMPARE(bound.posted(), 1);
}

void TestWebDialog::withoutMessageCentreNothingIsPosted()
{
    BoundDialog bound;
    bound.dialog->setMsgCenterMgr(nullptr);
    bound.sendThresholds(10, 10, 10);
    bound.sendReadings(90.0, 90.0, 90.0);
    bound.parts.tick(8);
    QCOMPARE(bound.posted(), 0);
    // The samples went on all the same: the next tick with the centre back warns at once.
    bound.dialog->setMsgCenterMgr(&bound.centre);
    bound.parts.tick();
    QCOMPARE(bound.posted(), 3);
}

void TestWebDialog::goCheckOpensTheSystemMonitor()
{
#if defined(Q_OS_LINUX)
    QTemporaryDir bin;
    QVERIFY(bin.isValid());
    const QString started = bin.filePath(QStringLiteral("started"));
    QFile script(bin.filePath(QStringLiteral("xfce4-taskmanager")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(QStringLiteral("#!/bin/sh\ntouch '%1'\n").arg(started).toUtf8());
    script.close();
    QVERIFY(script.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                  QFileDevice::ExeOwner));
    MsgCenterMgr centre;
    const PostedMessage message = cpuWarningWithPath(bin.path(), centre);
    QCOMPARE(message.message.action.label, trKey("GoCheck"));
    QVERIFY(centre.triggerAction(message.id));
    QTRY_VERIFY(QFileInfo::exists(started));
#else
    QSKIP("the monitor is looked up on PATH on Linux only");
#endif
}

void TestWebDialog::withoutASystemMonitorThereIsNoButton()
{
#if defined(Q_OS_LINUX)
    QTemporaryDir empty;
    QVERIFY(empty.isValid());
    MsgCenterMgr centre;
    const PostedMessage message = cpuWarningWithPath(empty.path(), centre);
    QVERIFY(message.message.action.label.isEmpty());
    QVERIFY(!message.message.action.callback);
    QVERIFY(!centre.triggerAction(message.id));
#else
    QSKIP("other systems always have their task manager");
#endif
}

void TestWebDialog::readingsFromTheRuntimeWhileTheTimerReads()
{
    BoundDialog bound;
    bound.sendThresholds(50, 50, 50);
    bound.parts.timer->setInterval(2);
    std::atomic<bool> stop{false};
    std::atomic<int> rounds{0};
    // The manager keeps sending while the timer keeps sampling, as a host does every second.
    std::thread writer([&] {
        while (!stop.load()) {
            const double value = 60.0 + rounds.fetch_add(1) % 30;
            bound.mgr->fireOnRuntime([value](auto& manager) {
                STWebOperation operation;
                operation.code = STWebOperation::LoadReadings;
                operation.loadReadings = {{value, value, value}};
                manager.signalWebInfoChanged(operation);
                operation.code = STWebOperation::LoadThresholds;
                operation.loadThresholds = {{50, 50, 50}};
                manager.signalWebInfoChanged(operation);
            });
        }
    });
    // Every reading is above 50: once six ticks have passed, each tick warns about all three.
    QTRY_VERIFY_WITH_TIMEOUT(bound.posted() >= 30 && rounds.load() > 100, 30000);
    stop = true;
    writer.join();
    bound.parts.timer->setInterval(5000);
}

void TestWebDialog::readingsAndTicksOnPlainThreads()
{
    // The same exchange without Qt on either stack: the sanitizer's suppressions for Qt's
    // libraries cannot hide a race here.
    vexa::inputsource::LoadWatch watch;
    watch.setThresholds({{50, 50, 50}});
    std::atomic<int> warnings{0};
    vexa::testing::runTogether({[&watch] {
                                    for (int round = 0; round < 20000; ++round) {
                                        const double value = 60.0 + round % 30;
                                        watch.setReadings({{value, -1.0, value}});
                                        watch.setThresholds({{50, 50, 50}});
                                    }
                                },
                                [&watch, &warnings] {
                                    for (int round = 0; round < 20000; ++round) {
                                        warnings += static_cast<int>(watch.tick().size());
                                    }
                                }});
    QVERIFY(watch.reading(vexa::inputsource::LoadWatch::Cpu) >= 60.0);
    // The GPU never had a reading: it counts as 0 and never warns.
    QCOMPARE(watch.reading(vexa::inputsource::LoadWatch::Gpu), -1.0);
    QVERIFY(warnings.load() >= 0);
}

void TestWebDialog::unbindingStopsTheNotifications()
{
    BoundDialog bound;
    bound.dialog->unsetInputSourceMgr();
    STWebOperation operation;
    operation.code = STWebOperation::SameNativePageOnPatches;
    bound.notify(operation);
    QCOMPARE(bound.posted(), 0);
    bound.openAdd(1);
    WarningRecorder recorder;
    bound.clickOk();
    QCOMPARE(recorder.count(QStringLiteral("inputSourceMgr is nullptr")), 1);
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

void TestWebDialog::enterConfirmsAndEscapeCancels()
{
    {
        BoundDialog bound;
        bound.openAdd(1);
        WebDialogParts::retype(bound.parts.row(0)->addressEditor(),
                               QStringLiteral("typed.example"));
        QTest::keyClick(bound.parts.row(0)->addressEditor(), Qt::Key_Return);
        QVERIFY(!bound.dialog->isVisible());
        QCOMPARE(bound.mgr->callCount("addInputSources"), 1);
        const Sources sent = std::get<0>(bound.mgr->lastArguments<Sources>("addInputSources"));
        // The edit ended before the dialog confirmed.
        QCOMPARE(sent.at(0).webTabs.at(0).url, std::string("https://typed.example"));
    }
    {
        BoundDialog bound;
        bound.openAdd(1);
        WebDialogParts::retype(bound.parts.nameEditor(), QStringLiteral("Typing"));
        QTest::keyClick(bound.parts.nameEditor(), Qt::Key_Escape);
        QVERIFY(!bound.dialog->isVisible());
        bound.openAdd(1);
        WebDialogParts::retype(bound.parts.row(0)->nameEditor(), QStringLiteral("Typing"));
        QTest::keyClick(bound.parts.row(0)->nameEditor(), Qt::Key_Escape);
        QVERIFY(!bound.dialog->isVisible());
        QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
    }
}

void TestWebDialog::tabWalksTheFieldsInOrder()
{
    BoundDialog bound;
    bound.openAdd(2);
    QTest::mouseClick(bound.parts.addTab, Qt::LeftButton);
    const auto rows = bound.parts.rows();
    const std::vector<QWidget*> expected = {bound.parts.nameEditor(),
                                            bound.parts.mode,
                                            rows[0]->nameEditor(),
                                            rows[0]->addressEditor(),
                                            rows[1]->nameEditor(),
                                            rows[1]->addressEditor(),
                                            rows[2]->nameEditor(),
                                            rows[2]->addressEditor(),
                                            bound.parts.addTab,
                                            bound.parts.cancel,
                                            bound.parts.ok};
    bound.parts.nameEditor()->setFocus(Qt::TabFocusReason);
    QTRY_COMPARE(QApplication::focusWidget(), expected.front());
    for (std::size_t index = 1; index < expected.size(); ++index) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), expected[index]);
    }
}

void TestWebDialog::accessibleNamesSayWhichTab()
{
    BoundDialog bound;
    bound.openAdd(3);
    TabItemWidget* const second = bound.parts.row(1);
    QCOMPARE(second->nameEditor()->accessibleName(), QStringLiteral("Tab 2 name"));
    QCOMPARE(second->addressEditor()->accessibleName(), QStringLiteral("Tab 2 address"));
    QCOMPARE(WebDialogParts::deleteButton(second)->accessibleName(),
             QStringLiteral("Delete tab 2"));
    QCOMPARE(bound.parts.nameEditor()->accessibleName(), trKey("WebResourceName"));
    QCOMPARE(bound.parts.mode->accessibleName(), trKey("WebMode"));
    QCOMPARE(bound.parts.addTab->accessibleName(), trKey("AddWebTab"));
    QCOMPARE(bound.dialog->findChild<QPushButton*>(QStringLiteral("closeBtn"))->accessibleName(),
             trKey("Close"));

    // Positions follow a deletion, and the language.
    QTest::mouseClick(WebDialogParts::deleteButton(bound.parts.row(0)), Qt::LeftButton);
    QTRY_COMPARE(bound.parts.rowCount(), 2);
    QCOMPARE(second->nameEditor()->accessibleName(), QStringLiteral("Tab 1 name"));
    switchLanguage(QStringLiteral("zh_CN"));
    bound.dialog->translateLanguage();
    QCOMPARE(second->addressEditor()->accessibleName(), QStringLiteral("标签页 1 地址"));
    QCOMPARE(bound.parts.row(1)->nameEditor()->accessibleName(), QStringLiteral("标签页 2 名称"));
}

void TestWebDialog::noTextIsClipped_data()
{
    addLanguageRows();
}

void TestWebDialog::noTextIsClipped()
{
    QFETCH(QString, language);
    BoundDialog bound;
    switchLanguage(language);
    bound.dialog->translateLanguage();
    bound.openAdd(5);
    bound.dialog->layout()->activate();

    for (const QLabel* label :
         {bound.parts.nameLabel, bound.parts.modeLabel, bound.parts.caption, bound.parts.counter,
          bound.dialog->findChild<QLabel*>(QStringLiteral("titleLabel"))}) {
        QVERIFY(label != nullptr);
        const auto [ok, why] = fits(label, label->text(), label->contentsRect().width());
        QVERIFY2(ok, qPrintable(why));
    }
    for (const QPushButton* button :
         {static_cast<QPushButton*>(bound.parts.cancel), static_cast<QPushButton*>(bound.parts.ok),
          static_cast<QPushButton*>(bound.parts.addTab)}) {
        QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->text()));
    }
    for (int entry = 0; entry < bound.parts.mode->count(); ++entry) {
        const auto [ok, why] = fits(bound.parts.mode, bound.parts.mode->itemText(entry),
                                    bound.parts.mode->width() - 40);
        QVERIFY2(ok, qPrintable(why));
    }
    QLineEdit* const name = bound.parts.nameEditor();
    QVERIFY2(name->width() > name->fontMetrics().horizontalAdvance(trKey("WebName")) + 8,
             qPrintable(trKey("WebName")));
    // Default tab names fit their field.
    QLineEdit* const tabName = bound.parts.row(0)->nameEditor();
    QVERIFY(tabName->width() >
            tabName->fontMetrics().horizontalAdvance(trKey("WebTab") + QStringLiteral("30")) + 8);
    QCOMPARE(bound.dialog->width(), 500);
}

void TestWebDialog::dialogDestroyedWhileItsTipIsOpen()
{
    BoundDialog bound;
    bound.openAdd(2);
    WebDialogParts::enter(bound.parts.row(1)->nameEditor(), QStringLiteral("Page 1"));
    ModalAnswerer answerer;
    answerer.whenShown([&bound](QWidget*) { bound.dialog.reset(); });
    // Queued, so that the click is not on the stack of the button that goes with the dialog.
    QMetaObject::invokeMethod(bound.parts.ok, "click", Qt::QueuedConnection);
    QTRY_VERIFY(bound.dialog == nullptr);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(bound.mgr->callCount("addInputSources"), 0);
}

QTEST_MAIN(TestWebDialog)
#include "tst_webdialog.moc"
