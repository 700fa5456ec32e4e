// SPDX-License-Identifier: MIT
#include "boundbox.h"
#include "diplaywind.h"
#include "languagefiles.h"
#include "trkey.h"

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/inputsourcewidget.h>
#include <vexainputsourcewidget/ndibox.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/streamingdialog.h>
#include <vexainputsourcewidget/testing/framefactory.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>
#include <vexainputsourcewidget/webbox.h>
#include <vexainputsourcewidget/webdialog.h>

#include <quandel/msgcenter/msgcentermgr.h>
#include <vexa/widgets/dialog.h>
#include <vexa/widgets/tipdialog.h>

#include <QAccessible>
#include <QLabel>
#include <QMenu>
#include <QMovie>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>

#include <array>
#include <future>
#include <mutex>

using vexa::inputsource::CaptureCardBox;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceWidget;
using vexa::inputsource::NdiBox;
using vexa::inputsource::StreamingBox;
using vexa::inputsource::trKey;
using vexa::inputsource::WebBox;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::ModalAnswerer;
using vexa::testing::WarningRecorder;

class TestInputSourceWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void buildsTheScrollAreaBoxesAndMenu();
    void selectionIsExclusiveAcrossBoxes();
    void selectionWithoutSenderWarns();
    void clearAllLeftWithoutConfirmingTouchesNothing_data();
    void clearAllLeftWithoutConfirmingTouchesNothing();
    void clearAllWithTheCheckBoxForcesEveryBoxInOrder();
    void theHostsAnswerReachesTheAskingBox();
    void loadLanguageFilesLoadsThemAndSwitchesToSimplifiedChinese();
    void loadLanguageFilesWithNoFileStillSwitchesToSimplifiedChinese();
    void rightClickOnAScrollBarOpensNoMenu();
    void expiredManagerReachesEveryBoxWithOneWarning();
    void bindingFansOutInOrderThenSendsTheStreamingText();
    void unbindingFansOutInOrder();
    void runtimeReachesEveryBox();
    void messageCentreReachesTheCaptureAndWebBoxes();
    void loadingPathReachesEveryBox();
    void recoverPreviewTurnsEveryBoxOffInOrder();
    void framesAreOfferedToEveryBoxInOrder();
    void translateLanguageRunsItsStepsInOrder();
    void translateLanguageWithoutManagerWarns();
    void switchLanguageHandsTheCodeToTheBoxesAfterTranslating();
    void webPageTransNameIsTheTranslatedTabName();
    void styleSheetReachesThePanelAndTheThreeDialogs();
    void menuActionsOpenTheirDialogs_data();
    void menuActionsOpenTheirDialogs();
    void rightClickOpensTheMenuAtTheCursor();
    void keyboardOpensTheMenu_data();
    void keyboardOpensTheMenu();
    void keyboardOutsideThePanelOpensNoMenu();
    void panelDestroyedDuringTheClearDialog();
    void panelDestroyedWhileTheMenuIsOpen();
    void accessibleNamesAreTranslated();
    void tabWalksTheBoxesInTheOrderShown();
};

namespace {

using Resources = std::vector<vexa::inputsource::IInputSourceMgr::ResourcePtr>;

// The four boxes of a panel, found by their object names.
struct Boxes
{
    explicit Boxes(const InputSourceWidget& panel)
        : stream(panel.findChild<StreamingBox*>(QStringLiteral("streamingBox")))
        , capture(panel.findChild<CaptureCardBox*>(QStringLiteral("captureCardBox")))
        , ndi(panel.findChild<NdiBox*>(QStringLiteral("ndiBox")))
        , web(panel.findChild<WebBox*>(QStringLiteral("webBox")))
    {}

    // In the order they are made.
    std::array<InputSourceBox*, 4> all() const { return {stream, capture, ndi, web}; }

    QString nameOf(const QObject* box) const
    {
        if (box == stream) {
            return QStringLiteral("stream");
        }
        if (box == capture) {
            return QStringLiteral("capture");
        }
        if (box == ndi) {
            return QStringLiteral("ndi");
        }
        if (box == web) {
            return QStringLiteral("web");
        }
        return QStringLiteral("other");
    }

    // The box that `widget` is or lies in; null when none.
    InputSourceBox* holding(const QWidget* widget) const
    {
        for (InputSourceBox* const box : all()) {
            if (widget == box || box->isAncestorOf(widget)) {
                return box;
            }
        }
        return nullptr;
    }

    StreamingBox* stream;
    CaptureCardBox* capture;
    NdiBox* ndi;
    WebBox* web;
};

// A panel bound to the manager double on a real runtime thread, shown.
struct BoundPanel
{
    BoundPanel()
        : mgr(std::make_shared<FakeInputSourceMgr>(&runtime))
        , boxes(panel)
    {
        panel.setZQRuntime(&runtime);
        panel.setInputSourceMgr(mgr);
        panel.resize(420, 900);
        panel.show();
        mgr->clearCalls();
    }

    ~BoundPanel() { panel.unsetInputSourceMgr(); }

    // Sources of every kind: the stream box gets 11 and 15, the capture box 12, the NDI box 13
    // and the web box 14.
    void addOneOfEach()
    {
        add({makeSource(11, EnResourceType::NetworkStream),
             makeSource(12, EnResourceType::LocalCaptureDevice),
             makeSource(13, EnResourceType::NdiSource), makeSource(14, EnResourceType::WebPage),
             makeSource(15, EnResourceType::NetworkStream)});
    }

    void add(const Resources& resources)
    {
        known.insert(known.end(), resources.begin(), resources.end());
        mgr->setResources(known);
        mgr->fireOnRuntime(
            [&resources](auto& manager) { manager.signalResourcesAdded(resources, {}); });
        QTRY_VERIFY(tilesShown(resources.size()));
    }

    bool tilesShown(std::size_t atLeast) const
    {
        std::size_t count = 0;
        for (InputSourceBox* const box : boxes.all()) {
            count += static_cast<std::size_t>(box->itemCount());
        }
        return count >= atLeast;
    }

    // Chooses "clear all" and answers its question with `clicks`.
    void clearAll(const QStringList& clicks)
    {
        ModalAnswerer answerer;
        answerer.clickWhenShown(clicks);
        action("clearInputSourceAction")->trigger();
        QTRY_VERIFY(!answerer.isWaiting());
        QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    }

    QAction* action(const char* name) const
    {
        return panel.findChild<QAction*>(QLatin1String(name));
    }

    quandel::ZQRuntime runtime;
    std::shared_ptr<FakeInputSourceMgr> mgr;
    Resources known;
    InputSourceWidget panel;
    Boxes boxes;
};

// The ids of every deleteInputSources request, in the order they arrived.
std::vector<std::vector<uint64_t>> deletions(const FakeInputSourceMgr& mgr)
{
    std::vector<std::vector<uint64_t>> result;
    for (const auto& call : mgr.callsOf("deleteInputSources")) {
        result.push_back(
            std::get<0>(std::any_cast<std::tuple<std::vector<uint64_t>>>(call.arguments)));
    }
    return result;
}

// Watches for popup menus while it lives: each one that shows is remembered with where it
// opened and handed to `onShown`, which closes it unless told otherwise.
class PopupCatcher : public QObject
{
public:
    explicit PopupCatcher(std::function<void(QWidget*)> onShown = {})
        : m_onShown(std::move(onShown))
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            QWidget* const popup = QApplication::activePopupWidget();
            if (popup == nullptr || (!caught.isEmpty() && caught.last() == popup)) {
                return;
            }
            caught.append(popup);
            positions.append(popup->pos());
            if (m_onShown) {
                m_onShown(popup);
            } else {
                popup->close();
            }
        });
        m_timer.start(5);
    }

    QList<QPointer<QWidget>> caught;
    QList<QPoint> positions;

private:
    std::function<void(QWidget*)> m_onShown;
    QTimer m_timer;
};

// A frame that hands out another solid colour every time a reader takes its pixels, so that
// the colour a tile shows tells in which turn it read the frame.
class TurnFrame : public zq::mediacore::IFrame
{
public:
    static QColor colourOf(int turn) { return QColor::fromHsv(turn * 80, 255, 255); }

    TurnFrame()
    {
        for (int turn = 0; turn < static_cast<int>(m_frames.size()); ++turn) {
            const QColor colour = colourOf(turn);
            m_frames[static_cast<std::size_t>(turn)] = vexa::testing::FrameFactory::solid(
                8, 8, static_cast<uint8_t>(colour.red()), static_cast<uint8_t>(colour.green()),
                static_cast<uint8_t>(colour.blue()));
        }
    }

    int getWidth() const override { return 8; }
    int getHeight() const override { return 8; }
    double getFrameRate() const override { return 25.0; }
    std::shared_ptr<zq::mediacore::IFrameBuffer> getBuffer() const override
    {
        const std::size_t turn = std::min<std::size_t>(m_turns++, m_frames.size() - 1);
        return m_frames[turn]->getBuffer();
    }

    int turns() const { return static_cast<int>(m_turns); }

private:
    std::array<std::unique_ptr<zq::mediacore::RgbaFrame>, 4> m_frames;
    mutable std::size_t m_turns = 0;
};

// The turn in which the tile of `id` in `box` read the frame; -1 when its picture is none of
// the turns' colours.
int turnShownBy(InputSourceBox* box, uint64_t id)
{
    auto* const surface = box->findItem(id)->findChild<vexa::inputsource::DiplayWind*>();
    surface->resize(16, 16);
    const QImage shot = surface->grab().toImage();
    const QColor shown = shot.pixelColor(shot.rect().center());
    for (int turn = 0; turn < 4; ++turn) {
        const QColor expected = TurnFrame::colourOf(turn);
        if (qAbs(shown.red() - expected.red()) < 8 && qAbs(shown.green() - expected.green()) < 8 &&
            qAbs(shown.blue() - expected.blue()) < 8) {
            return turn;
        }
    }
    return -1;
}

// Logs, under a lock, what happens on the GUI thread and on the runtime thread.
struct EventLog
{
    void append(const QString& entry)
    {
        const std::lock_guard<std::mutex> guard(lock);
        entries.append(entry);
    }

    QStringList read() const
    {
        const std::lock_guard<std::mutex> guard(lock);
        return entries;
    }

    mutable std::mutex lock;
    QStringList entries;
};

void hookStreamingText(FakeInputSourceMgr& mgr, EventLog& log)
{
    mgr.setCallHook([&log](const vexa::testing::RecordedCall& call) {
        if (call.operation == "setStreamingText") {
            log.append(QStringLiteral("setStreamingText"));
        }
    });
}

bool sameManager(const std::weak_ptr<vexa::inputsource::IInputSourceMgr>& a,
                 const std::weak_ptr<vexa::inputsource::IInputSourceMgr>& b)
{
    return !a.owner_before(b) && !b.owner_before(a);
}

} // namespace

void TestInputSourceWidget::initTestCase()
{
    QVERIFY(loadShippedLanguages());
}

void TestInputSourceWidget::init()
{
    // Every test starts in Simplified Chinese, where each text differs from its key.
    InputSourceTranslateManager::instance().translator().switchLanguage(QStringLiteral("zh_CN"));
}

void TestInputSourceWidget::buildsTheScrollAreaBoxesAndMenu()
{
    InputSourceWidget panel;
    QCOMPARE(panel.id(), QStringLiteral("vexa.inputsourcewidget"));
    QCOMPARE(panel.titleText(), QStringLiteral("InputSource"));

    auto* const area = panel.findChild<QScrollArea*>();
    QVERIFY(area != nullptr);
    QVERIFY(area->widgetResizable());
    QCOMPARE(area->verticalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    QCOMPARE(area->horizontalScrollBar()->contextMenuPolicy(), Qt::NoContextMenu);
    auto* const panelLayout = qobject_cast<QVBoxLayout*>(panel.layout());
    QVERIFY(panelLayout != nullptr);
    QCOMPARE(panelLayout->count(), 1);
    QCOMPARE(panelLayout->itemAt(0)->widget(), area);
    QCOMPARE(panelLayout->contentsMargins(), QMargins());
    QCOMPARE(panelLayout->spacing(), 0);

    QWidget* const container = area->widget();
    QCOMPARE(container->property("style").toString(), QStringLiteral("transparent"));
    const Boxes boxes(panel);
    // Children list in the order they were made.
    QStringList made;
    for (QObject* const child : container->children()) {
        if (qobject_cast<InputSourceBox*>(child) != nullptr) {
            made << boxes.nameOf(child);
        }
    }
    QCOMPARE(made, (QStringList{QStringLiteral("stream"), QStringLiteral("capture"),
                                QStringLiteral("ndi"), QStringLiteral("web")}));

    auto* const layout = qobject_cast<QVBoxLayout*>(container->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->count(), 5);
    QStringList shown;
    for (int index = 0; index < 4; ++index) {
        shown << boxes.nameOf(layout->itemAt(index)->widget());
    }
    QCOMPARE(shown, (QStringList{QStringLiteral("capture"), QStringLiteral("stream"),
                                 QStringLiteral("ndi"), QStringLiteral("web")}));
    QWidget* const stretch = layout->itemAt(4)->widget();
    QVERIFY(stretch != nullptr);
    QVERIFY(qobject_cast<InputSourceBox*>(stretch) == nullptr);
    QCOMPARE(layout->stretch(4), 1);

    auto* const menu = panel.findChild<QMenu*>(QStringLiteral("inputSourceMenu"));
    QVERIFY(menu != nullptr);
    QCOMPARE(menu->parent(), &panel);
    QStringList actions;
    for (QAction* const action : menu->actions()) {
        actions << action->objectName();
    }
    QCOMPARE(actions, (QStringList{QStringLiteral("addStreamingAction"),
                                   QStringLiteral("addNdiAction"), QStringLiteral("addWebAction"),
                                   QStringLiteral("clearInputSourceAction")}));
}

void TestInputSourceWidget::selectionIsExclusiveAcrossBoxes()
{
    BoundPanel bound;
    bound.addOneOfEach();
    const Boxes& boxes = bound.boxes;
    QTest::mouseClick(boxes.ndi->findItem(13), Qt::LeftButton);
    QTest::mouseClick(boxes.web->findItem(14), Qt::LeftButton);
    QCOMPARE(boxes.web->selectedIds(), std::vector<uint64_t>{14});
    QVERIFY(boxes.ndi->selectedIds().empty());
    QVERIFY(!boxes.ndi->findItem(13)->isSelected());

    // Two tiles of one box: its own signal leaves its selection alone.
    QTest::mouseClick(boxes.stream->findItem(11), Qt::LeftButton);
    QTest::mouseClick(boxes.stream->findItem(15), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(boxes.stream->selectedIds(), (std::vector<uint64_t>{11, 15}));
    QVERIFY(boxes.stream->findItem(11)->isSelected());
    QVERIFY(boxes.stream->findItem(15)->isSelected());
    QVERIFY(boxes.web->selectedIds().empty());
    QVERIFY(!boxes.web->findItem(14)->isSelected());

    QTest::mouseClick(boxes.capture->findItem(12), Qt::LeftButton);
    QCOMPARE(boxes.capture->selectedIds(), std::vector<uint64_t>{12});
    QVERIFY(boxes.stream->selectedIds().empty());
    QVERIFY(!boxes.stream->findItem(11)->isSelected());
    QVERIFY(!boxes.stream->findItem(15)->isSelected());
}

void TestInputSourceWidget::selectionWithoutSenderWarns()
{
    BoundPanel bound;
    bound.addOneOfEach();
    QTest::mouseClick(bound.boxes.ndi->findItem(13), Qt::LeftButton);
    QObject* const impl = bound.panel.findChild<QObject*>(QStringLiteral("inputSourceWidgetImpl"));
    QVERIFY(impl != nullptr);
    WarningRecorder recorder;
    QVERIFY(QMetaObject::invokeMethod(impl, "slotItemSelect"));
    QCOMPARE(recorder.count(QStringLiteral("nullptr == obj")), 1);
    QVERIFY(recorder.find(QStringLiteral("nullptr == obj"))->function.contains("slotItemSelect"));
    QCOMPARE(bound.boxes.ndi->selectedIds(), std::vector<uint64_t>{13});
}

void TestInputSourceWidget::clearAllLeftWithoutConfirmingTouchesNothing_data()
{
    QTest::addColumn<QStringList>("answer");
    QTest::newRow("cancel") << QStringList{QStringLiteral("secondBtn")};
    QTest::newRow("cancel with the check box")
        << QStringList{QStringLiteral("checkBox"), QStringLiteral("secondBtn")};
    QTest::newRow("closed") << QStringList{QStringLiteral("closeBtn")};
}

void TestInputSourceWidget::clearAllLeftWithoutConfirmingTouchesNothing()
{
    QFETCH(QStringList, answer);
    BoundPanel bound;
    bound.addOneOfEach();
    QTest::mouseClick(bound.boxes.web->findItem(14), Qt::LeftButton);
    ModalAnswerer answerer;
    answerer.clickWhenShown(answer);
    bound.action("clearInputSourceAction")->trigger();
    QTRY_VERIFY(!answerer.isWaiting());
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));
    QVERIFY(answerer.labelTexts().contains(trKey("ClearText")));
    QTest::qWait(20);
    QCOMPARE(bound.mgr->callCount("deleteInputSources"), 0);
    QCOMPARE(bound.mgr->calls().size(), std::size_t{0});
    for (InputSourceBox* const box : bound.boxes.all()) {
        QVERIFY(box->itemCount() > 0);
    }
    QCOMPARE(bound.boxes.web->selectedIds(), std::vector<uint64_t>{14});
}

void TestInputSourceWidget::clearAllWithTheCheckBoxForcesEveryBoxInOrder()
{
    BoundPanel bound;
    bound.addOneOfEach();
    // Everything is in use: only the check box lets the boxes delete it.
    QList<uint64_t> asked;
    connect(
        &bound.panel, &InputSourceWidget::signalCheckInputSourceBeUsed, this,
        [&asked](uint64_t id) {
            asked << id;
            return true;
        },
        Qt::DirectConnection);
    ModalAnswerer answerer;
    answerer.whenShown([](QWidget* modal) {
        auto* const check = modal->findChild<QAbstractButton*>(QStringLiteral("checkBox"));
        QVERIFY(check != nullptr && check->isVisible());
        QCOMPARE(check->text(), trKey("ClearCheckText"));
        QCOMPARE(modal->findChild<QAbstractButton*>(QStringLiteral("firstBtn"))->text(),
                 trKey("OK"));
        QCOMPARE(modal->findChild<QAbstractButton*>(QStringLiteral("secondBtn"))->text(),
                 trKey("Cancel"));
        QVERIFY(!modal->findChild<QAbstractButton*>(QStringLiteral("thirdBtn"))->isVisible());
        auto* const tip = qobject_cast<vexa::widgets::TipDialog*>(modal);
        QVERIFY(tip != nullptr && tip->tipType() == vexa::widgets::TipDialog::Warning);
        QVERIFY(tip->parentWidget() == nullptr);
        check->click();
        modal->findChild<QAbstractButton*>(QStringLiteral("firstBtn"))->click();
    });
    bound.action("clearInputSourceAction")->trigger();
    QTRY_VERIFY(!answerer.isWaiting());
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(bound.mgr->waitForCalls("deleteInputSources", 4));
    // Stream, capture card (whose devices are never deleted), web, NDI.
    QCOMPARE(deletions(*bound.mgr), (std::vector<std::vector<uint64_t>>{{11, 15}, {}, {14}, {13}}));
    QVERIFY(asked.isEmpty());
    for (const auto& call : bound.mgr->calls()) {
        QVERIFY(call.onRuntimeThread);
    }
}

void TestInputSourceWidget::theHostsAnswerReachesTheAskingBox()
{
    BoundPanel bound;
    bound.addOneOfEach();
    connect(
        &bound.panel, &InputSourceWidget::signalCheckInputSourceBeUsed, this,
        [](uint64_t id) { return id == 15 || id == 13; }, Qt::DirectConnection);
    bound.clearAll({QStringLiteral("firstBtn")});
    QVERIFY(bound.mgr->waitForCalls("deleteInputSources", 4));
    QCOMPARE(deletions(*bound.mgr), (std::vector<std::vector<uint64_t>>{{11}, {}, {14}, {}}));
}

void TestInputSourceWidget::loadLanguageFilesLoadsThemAndSwitchesToSimplifiedChinese()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    translator.switchLanguage(QStringLiteral("en_US"));
    InputSourceWidget panel;
    panel.loadLanguageFiles({languageFile("en_US"), languageFile("zh_TW"), languageFile("zh_CN")});
    QCOMPARE(translator.currentLanguage(), QStringLiteral("zh_CN"));
    QVERIFY(translator.languages().contains(QStringLiteral("zh_TW")));
    QCOMPARE(panel.titleText(), trKey("InputSource"));
    QVERIFY(panel.titleText() != QStringLiteral("InputSource"));
}

void TestInputSourceWidget::loadLanguageFilesWithNoFileStillSwitchesToSimplifiedChinese()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    translator.switchLanguage(QStringLiteral("en_US"));
    InputSourceWidget panel;
    const QString english = trKey("AddStreaming");
    panel.loadLanguageFiles({});
    QCOMPARE(translator.currentLanguage(), QStringLiteral("zh_CN"));
    const QString chinese = panel.findChild<QAction*>(QStringLiteral("addStreamingAction"))->text();
    QCOMPARE(chinese, trKey("AddStreaming"));
    QVERIFY(chinese != english);
    QCOMPARE(panel.findChild<WebBox*>()->languageCode(), QStringLiteral("zh_CN"));
}

void TestInputSourceWidget::rightClickOnAScrollBarOpensNoMenu()
{
    InputSourceWidget panel;
    panel.resize(300, 90);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QScrollBar* const bar = panel.findChild<QScrollArea*>()->verticalScrollBar();
    QTRY_VERIFY(bar->isVisible());

    PopupCatcher catcher;
    const QPoint onBar = bar->mapTo(&panel, bar->rect().center());
    QTest::mouseClick(panel.windowHandle(), Qt::RightButton, Qt::NoModifier, onBar);
    QTest::qWait(50);
    QVERIFY(catcher.caught.isEmpty());

    // The same click beside the bar opens the menu, so the click itself does reach the panel.
    QWidget* const container = panel.findChild<QScrollArea*>()->widget();
    const QPoint beside = container->mapTo(&panel, QPoint(10, 10));
    QTest::mouseClick(panel.windowHandle(), Qt::RightButton, Qt::NoModifier, beside);
    QTRY_COMPARE(catcher.caught.size(), 1);
    QCOMPARE(catcher.caught.first().data(), panel.findChild<QMenu*>());
}

void TestInputSourceWidget::expiredManagerReachesEveryBoxWithOneWarning()
{
    quandel::ZQRuntime runtime;
    std::weak_ptr<vexa::inputsource::IInputSourceMgr> expired;
    {
        auto gone = std::make_shared<FakeInputSourceMgr>(&runtime);
        expired = gone;
    }
    InputSourceWidget panel;
    panel.setZQRuntime(&runtime);
    WarningRecorder recorder;
    panel.setInputSourceMgr(expired);
    for (InputSourceBox* const box : Boxes(panel).all()) {
        QVERIFY(sameManager(box->inputSourceMgr(), expired));
    }
    int panelWarnings = 0;
    for (const auto& message : recorder.messages()) {
        if (message.text == QStringLiteral("nullptr == inputSourceMgr") &&
            message.function.contains("InputSourceWidget::setInputSourceMgr")) {
            ++panelWarnings;
        }
    }
    QCOMPARE(panelWarnings, 1);
    // Each box tells of its own refusal as well.
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 5);
}

void TestInputSourceWidget::bindingFansOutInOrderThenSendsTheStreamingText()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    InputSourceWidget panel;
    panel.setZQRuntime(&runtime);
    const Boxes boxes(panel);
    EventLog log;
    for (InputSourceBox* const box : boxes.all()) {
        connect(box, &InputSourceBox::signalMgrSettingFinished, this,
                [&log, name = boxes.nameOf(box)] { log.append(name); });
    }
    hookStreamingText(*mgr, log);
    panel.setInputSourceMgr(mgr);
    QCOMPARE(log.read(), (QStringList{QStringLiteral("ndi"), QStringLiteral("capture"),
                                      QStringLiteral("stream"), QStringLiteral("web"),
                                      QStringLiteral("setStreamingText")}));

    const auto calls = mgr->callsOf("setStreamingText");
    QCOMPARE(calls.size(), std::size_t{1});
    QVERIFY(calls.front().onRuntimeThread);
    QVERIFY(calls.front().thread != std::this_thread::get_id());
    QVERIFY(trKey("Streaming") != QStringLiteral("Streaming"));
    QCOMPARE(std::get<0>(mgr->lastArguments<std::string>("setStreamingText")),
             trKey("Streaming").toStdString());
    mgr->setCallHook({});
    panel.unsetInputSourceMgr();
}

void TestInputSourceWidget::unbindingFansOutInOrder()
{
    BoundPanel bound;
    QStringList log;
    for (InputSourceBox* const box : bound.boxes.all()) {
        connect(box, &InputSourceBox::signalMgrUnsettingFinished, this,
                [&log, name = bound.boxes.nameOf(box)] { log << name; });
    }
    bound.panel.unsetInputSourceMgr();
    QCOMPARE(log, (QStringList{QStringLiteral("ndi"), QStringLiteral("capture"),
                               QStringLiteral("stream"), QStringLiteral("web")}));
    for (InputSourceBox* const box : bound.boxes.all()) {
        QVERIFY(box->inputSourceMgr().expired());
    }
}

void TestInputSourceWidget::runtimeReachesEveryBox()
{
    // Every box sends its clear request on the runtime the panel was given, and on no other.
    BoundPanel bound;
    bound.addOneOfEach();
    quandel::ZQRuntime other;
    bound.panel.setZQRuntime(&other);
    std::promise<std::thread::id> otherThread;
    other.post([&otherThread] { otherThread.set_value(std::this_thread::get_id()); }, __FILE__,
               __LINE__, "runtimeReachesEveryBox");
    const std::thread::id expected = otherThread.get_future().get();
    bound.clearAll({QStringLiteral("checkBox"), QStringLiteral("firstBtn")});
    QVERIFY(bound.mgr->waitForCalls("deleteInputSources", 4));
    for (const auto& call : bound.mgr->callsOf("deleteInputSources")) {
        QVERIFY(call.thread == expected);
    }
    bound.panel.setZQRuntime(&bound.runtime);
}

void TestInputSourceWidget::messageCentreReachesTheCaptureAndWebBoxes()
{
    BoundPanel bound;
    quandel::msgcenter::MsgCenterMgr centre;
    bound.panel.setMsgCenterMgr(&centre);
    const quandel::CaptResolutionsInfo refused{1920, 1080, 50.0F, "NV12"};
    bound.mgr->fireOnRuntime([&refused](auto& mgr) { mgr.signalResolutionError(refused); });
    // Every box hears of the refusal; the capture card and web boxes, which have the centre,
    // tell it, and the other two cannot.
    QTRY_COMPARE(centre.messages().size(), std::size_t{2});
    QTest::qWait(20);
    QCOMPARE(centre.messages().size(), std::size_t{2});
    // The web box handed it on to its dialog.
    vexa::inputsource::STWebOperation notice;
    notice.code = vexa::inputsource::STWebOperation::SameNativePageOnPatches;
    bound.mgr->fireOnRuntime([&notice](auto& mgr) { mgr.signalWebInfoChanged(notice); });
    QTRY_COMPARE(centre.messages().size(), std::size_t{3});
    QCOMPARE(centre.messages().back().message.text, trKey("SameNativeWebOnPatchs"));
}

void TestInputSourceWidget::loadingPathReachesEveryBox()
{
    BoundPanel bound;
    const QString path = QFINDTESTDATA("../../../themes/loading.gif");
    QVERIFY(!path.isEmpty());
    bound.panel.setLoadingPath(path);
    bound.addOneOfEach();
    for (const auto& [box, id] :
         std::vector<std::pair<InputSourceBox*, uint64_t>>{{bound.boxes.stream, 11},
                                                           {bound.boxes.capture, 12},
                                                           {bound.boxes.ndi, 13},
                                                           {bound.boxes.web, 14}}) {
        auto* const loading = box->findItem(id)->findChild<QLabel*>(QStringLiteral("loadingLabel"));
        QVERIFY(loading != nullptr);
        QVERIFY(loading->movie() != nullptr);
        QCOMPARE(loading->movie()->fileName(), path);
    }
}

void TestInputSourceWidget::recoverPreviewTurnsEveryBoxOffInOrder()
{
    BoundPanel bound;
    QStringList log;
    for (InputSourceBox* const box : bound.boxes.all()) {
        box->setPreviewState(true);
        auto* const button = box->findChild<QPushButton*>(QStringLiteral("boxPreviewButton"));
        QVERIFY(!button->isChecked());
        connect(button, &QPushButton::toggled, this,
                [&log, name = bound.boxes.nameOf(box)] { log << name; });
    }
    bound.panel.recoverPreview();
    QCOMPARE(log, (QStringList{QStringLiteral("stream"), QStringLiteral("capture"),
                               QStringLiteral("web"), QStringLiteral("ndi")}));
    for (InputSourceBox* const box : bound.boxes.all()) {
        QVERIFY(box->findChild<QPushButton*>(QStringLiteral("boxPreviewButton"))->isChecked());
    }
    QCOMPARE(bound.mgr->calls().size(), std::size_t{0});
}

void TestInputSourceWidget::framesAreOfferedToEveryBoxInOrder()
{
    BoundPanel bound;
    // One id in every box: the frame reaches all four tiles, each in its turn.
    bound.add({makeSource(7, EnResourceType::NetworkStream),
               makeSource(7, EnResourceType::LocalCaptureDevice),
               makeSource(7, EnResourceType::NdiSource), makeSource(7, EnResourceType::WebPage)});
    TurnFrame frame;
    bound.panel.updateFrame(7, &frame);
    bound.panel.updateFrame(8, &frame);
    QCOMPARE(frame.turns(), 4);
    QCOMPARE(turnShownBy(bound.boxes.stream, 7), 0);
    QCOMPARE(turnShownBy(bound.boxes.capture, 7), 1);
    QCOMPARE(turnShownBy(bound.boxes.web, 7), 2);
    QCOMPARE(turnShownBy(bound.boxes.ndi, 7), 3);
}

void TestInputSourceWidget::translateLanguageRunsItsStepsInOrder()
{
    BoundPanel bound;
    InputSourceTranslateManager::instance().translator().switchLanguage(QStringLiteral("zh_TW"));
    const Boxes& boxes = bound.boxes;
    const auto titleOf = [](InputSourceBox* box) {
        return box->findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text();
    };
    EventLog log;
    for (InputSourceBox* const box : boxes.all()) {
        connect(box, &InputSourceBox::signalTranslateLanguage, this, [&, box] {
            QString entry = boxes.nameOf(box);
            // What the earlier steps left: the panel's title and menu, the two titles before
            // the boxes translate, the web title after its box.
            if (bound.panel.titleText() == trKey("InputSource") &&
                bound.action("clearInputSourceAction")->text() == trKey("ClearInputSource") &&
                titleOf(boxes.stream) == trKey("Streaming") &&
                titleOf(boxes.capture) == trKey("CaptureCard")) {
                entry += QStringLiteral("+");
            }
            if (titleOf(boxes.web) == trKey("WebPage")) {
                entry += QStringLiteral("+web");
            }
            log.append(entry);
        });
    }
    hookStreamingText(*bound.mgr, log);
    bound.panel.translateLanguage();
    QCOMPARE(log.read(), (QStringList{QStringLiteral("stream+"), QStringLiteral("capture+"),
                                      QStringLiteral("web+"), QStringLiteral("ndi++web"),
                                      QStringLiteral("setStreamingText")}));
    QCOMPARE(std::get<0>(bound.mgr->lastArguments<std::string>("setStreamingText")),
             trKey("Streaming").toStdString());
    QVERIFY(bound.mgr->callsOf("setStreamingText").back().onRuntimeThread);
    bound.mgr->setCallHook({});

    QCOMPARE(bound.action("addStreamingAction")->text(), trKey("AddStreaming"));
    QCOMPARE(bound.action("addNdiAction")->text(), trKey("AddNdiMedia"));
    QCOMPARE(bound.action("addWebAction")->text(), trKey("AddWebMedia"));
    QCOMPARE(titleOf(boxes.ndi), QStringLiteral("NDI"));
    // The stream box's translation reached its dialog.
    QCOMPARE(boxes.stream->dialog()->title(), trKey("AddStreaming"));
}

void TestInputSourceWidget::translateLanguageWithoutManagerWarns()
{
    InputSourceWidget panel;
    WarningRecorder recorder;
    panel.translateLanguage();
    QCOMPARE(recorder.count(QStringLiteral("nullptr == inputSourceMgr")), 1);
    QVERIFY(recorder.find(QStringLiteral("nullptr == inputSourceMgr"))
                ->function.contains("InputSourceWidget::translateLanguage"));
    QCOMPARE(panel.titleText(), trKey("InputSource"));
}

void TestInputSourceWidget::switchLanguageHandsTheCodeToTheBoxesAfterTranslating()
{
    BoundPanel bound;
    QStringList seen;
    connect(bound.boxes.web, &InputSourceBox::signalTranslateLanguage, this,
            [&] { seen << bound.boxes.web->languageCode(); });
    bound.panel.switchLanguage(QStringLiteral("en_US"));
    QCOMPARE(InputSourceTranslateManager::instance().translator().currentLanguage(),
             QStringLiteral("en_US"));
    QCOMPARE(seen, QStringList{QString()});
    QCOMPARE(bound.boxes.web->languageCode(), QStringLiteral("en_US"));
    QCOMPARE(bound.boxes.web->dialog()->languageCode(), QStringLiteral("en_US"));
    QCOMPARE(bound.panel.titleText(), trKey("InputSource"));
    bound.panel.switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(seen, (QStringList{QString(), QStringLiteral("en_US")}));
}

void TestInputSourceWidget::webPageTransNameIsTheTranslatedTabName()
{
    InputSourceWidget panel;
    QVERIFY(trKey("WebTab") != QStringLiteral("WebTab"));
    QCOMPARE(panel.webPageTransName(), trKey("WebTab").toStdString());
    InputSourceTranslateManager::instance().translator().switchLanguage(QStringLiteral("zh_TW"));
    QCOMPARE(QString::fromStdString(panel.webPageTransName()), trKey("WebTab"));
}

void TestInputSourceWidget::styleSheetReachesThePanelAndTheThreeDialogs()
{
    InputSourceWidget panel;
    const Boxes boxes(panel);
    const QString sheet = QStringLiteral("QWidget[style=\"transparent\"] { background: red; }");
    panel.setInputSourceStyleSheet(sheet);
    QCOMPARE(panel.styleSheet(), sheet);
    QCOMPARE(boxes.stream->dialog()->styleSheet(), sheet);
    QCOMPARE(boxes.web->dialog()->styleSheet(), sheet);
    QCOMPARE(boxes.ndi->dialog()->styleSheet(), sheet);
    QCOMPARE(boxes.ndi->dialog()->objectName(), QStringLiteral("ndiDialog"));
}

void TestInputSourceWidget::menuActionsOpenTheirDialogs_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("dialog");
    QTest::newRow("stream") << "addStreamingAction"
                            << "vexa::inputsource::StreamingDialog";
    QTest::newRow("NDI") << "addNdiAction"
                         << "vexa::inputsource::NdiDialog";
    QTest::newRow("web") << "addWebAction"
                         << "vexa::inputsource::WebDialog";
    QTest::newRow("clear") << "clearInputSourceAction"
                           << "vexa::widgets::TipDialog";
}

void TestInputSourceWidget::menuActionsOpenTheirDialogs()
{
    QFETCH(QString, action);
    QFETCH(QString, dialog);
    BoundPanel bound;
    bound.panel.switchLanguage(QStringLiteral("en_US"));
    bound.mgr->clearCalls();
    bound.mgr->setGeneratedStreamingName("Stream 9");
    QString title;
    ModalAnswerer answerer;
    answerer.whenShown([&title](QWidget* modal) {
        if (auto* const shown = qobject_cast<vexa::widgets::Dialog*>(modal)) {
            title = shown->title();
        }
        modal->close();
    });
    // Through the menu, as the operator chooses.
    auto* const menu = bound.panel.findChild<QMenu*>();
    PopupCatcher catcher([menu, &action](QWidget* popup) {
        QCOMPARE(popup, menu);
        QAction* const chosen = menu->findChild<QAction*>(action);
        menu->setActiveAction(chosen);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5),
                            bound.panel.mapToGlobal({5, 5}));
    QApplication::sendEvent(&bound.panel, &event);
    QTRY_VERIFY(!answerer.isWaiting());
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), dialog);
    if (action == QStringLiteral("addStreamingAction")) {
        QCOMPARE(title, trKey("AddStreaming"));
        QCOMPARE(bound.mgr->callCount("generateStreamingName"), 1);
    } else if (action == QStringLiteral("addNdiAction")) {
        QVERIFY(bound.mgr->waitForCalls("refreshNdiSources", 1));
    } else if (action == QStringLiteral("addWebAction")) {
        // Added, not edited: no source was looked up.
        QCOMPARE(bound.mgr->callCount("getResourceById"), 0);
        QVERIFY(bound.mgr->callCount("getResources") >= 1);
    } else {
        QVERIFY(answerer.labelTexts().contains(trKey("ClearText")));
    }
}

void TestInputSourceWidget::rightClickOpensTheMenuAtTheCursor()
{
    InputSourceWidget panel;
    panel.resize(300, 400);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    const QPoint cursor = panel.mapToGlobal(QPoint(40, 50));
    QCursor::setPos(cursor);
    PopupCatcher catcher;
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(40, 50), cursor);
    QApplication::sendEvent(&panel, &event);
    QCOMPARE(catcher.caught.size(), 1);
    QCOMPARE(catcher.positions.first(), QCursor::pos());
}

void TestInputSourceWidget::keyboardOpensTheMenu_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Menu") << int(Qt::Key_Menu) << int(Qt::NoModifier);
    QTest::newRow("Shift+F10") << int(Qt::Key_F10) << int(Qt::ShiftModifier);
}

void TestInputSourceWidget::keyboardOpensTheMenu()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    InputSourceWidget panel;
    panel.resize(300, 400);
    panel.show();
    QApplication::setActiveWindow(&panel);
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    auto* const box = panel.findChild<WebBox*>();
    box->setFocus();
    QTRY_VERIFY(box->hasFocus());
    PopupCatcher catcher;
    QTest::keyClick(box, static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
    QTRY_COMPARE(catcher.caught.size(), 1);
    QCOMPARE(catcher.caught.first().data(), panel.findChild<QMenu*>());
    // Over the focused box, not wherever the mouse was left.
    QVERIFY(box->rect().contains(box->mapFromGlobal(catcher.positions.first())));
}

void TestInputSourceWidget::keyboardOutsideThePanelOpensNoMenu()
{
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const outside = new QPushButton(QStringLiteral("outside"), &window);
    auto* const panel = new InputSourceWidget(&window);
    layout->addWidget(outside);
    layout->addWidget(panel);
    window.resize(300, 500);
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    outside->setFocus();
    QTRY_VERIFY(outside->hasFocus());
    PopupCatcher catcher;
    QTest::keyClick(outside, Qt::Key_Menu);
    QTest::qWait(50);
    QVERIFY(catcher.caught.isEmpty());
    panel->findChild<NdiBox*>()->setFocus();
    QTest::keyClick(panel->findChild<NdiBox*>(), Qt::Key_Menu);
    QTRY_COMPARE(catcher.caught.size(), 1);
}

void TestInputSourceWidget::panelDestroyedDuringTheClearDialog()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QPointer<InputSourceWidget> panel = new InputSourceWidget;
    panel->setZQRuntime(&runtime);
    panel->setInputSourceMgr(mgr);
    panel->show();
    QPointer<QWidget> tip;
    ModalAnswerer answerer;
    answerer.whenShown([&](QWidget* modal) {
        tip = modal;
        // The host goes away with the panel while the question is open.
        panel->unsetInputSourceMgr();
        delete panel;
    });
    QMetaObject::invokeMethod(panel->findChild<QObject*>(QStringLiteral("inputSourceWidgetImpl")),
                              "slotClearInputSource");
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(panel.isNull());
    // The question closed with its panel and nothing was asked of the manager.
    QVERIFY(tip.isNull() || !tip->isVisible());
    QCOMPARE(mgr->callCount("deleteInputSources"), 0);
}

void TestInputSourceWidget::panelDestroyedWhileTheMenuIsOpen()
{
    QPointer<InputSourceWidget> panel = new InputSourceWidget;
    panel->resize(300, 400);
    panel->show();
    QPointer<QWidget> menu;
    PopupCatcher catcher([&](QWidget* popup) {
        menu = popup;
        delete panel;
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
    QApplication::sendEvent(panel, &event);
    QCOMPARE(catcher.caught.size(), 1);
    QVERIFY(panel.isNull());
    QVERIFY(menu.isNull());
    QVERIFY(QApplication::activePopupWidget() == nullptr);
}

void TestInputSourceWidget::accessibleNamesAreTranslated()
{
    InputSourceWidget panel;
    panel.switchLanguage(QStringLiteral("zh_TW"));
    QCOMPARE(panel.accessibleName(), trKey("InputSource"));
    QVERIFY(panel.accessibleName() != QStringLiteral("InputSource"));
    const Boxes boxes(panel);
    QCOMPARE(boxes.capture->accessibleName(), trKey("CaptureCard"));
    QCOMPARE(boxes.stream->accessibleName(), trKey("Streaming"));
    QCOMPARE(boxes.web->accessibleName(), trKey("WebPage"));
    QCOMPARE(boxes.ndi->accessibleName(), QStringLiteral("NDI"));

    auto* const menu = panel.findChild<QMenu*>();
    QAccessibleInterface* const menuInterface = QAccessible::queryAccessibleInterface(menu);
    QVERIFY(menuInterface != nullptr);
    QStringList names;
    for (int index = 0; index < menuInterface->childCount(); ++index) {
        names << menuInterface->child(index)->text(QAccessible::Name);
    }
    QCOMPARE(names, (QStringList{trKey("AddStreaming"), trKey("AddNdiMedia"), trKey("AddWebMedia"),
                                 trKey("ClearInputSource")}));
    QCOMPARE(menuInterface->text(QAccessible::Name), trKey("InputSource"));
}

void TestInputSourceWidget::tabWalksTheBoxesInTheOrderShown()
{
    BoundPanel bound;
    // Tiles come long after their boxes; each is walked with its box all the same.
    bound.addOneOfEach();
    QApplication::setActiveWindow(&bound.panel);
    QVERIFY(QTest::qWaitForWindowActive(&bound.panel));
    const Boxes& boxes = bound.boxes;
    boxes.capture->setFocus();
    QTRY_VERIFY(boxes.capture->hasFocus());

    const auto walk = [&boxes](Qt::Key key) {
        QStringList visited;
        for (int press = 0; press < 200; ++press) {
            QWidget* const focus = QApplication::focusWidget();
            const QString name = boxes.nameOf(boxes.holding(focus));
            if (visited.isEmpty() || visited.last() != name) {
                visited << name;
            }
            QTest::keyClick(focus, key);
            if (QApplication::focusWidget() == boxes.capture) {
                break;
            }
        }
        return visited;
    };
    QCOMPARE(walk(Qt::Key_Tab), (QStringList{QStringLiteral("capture"), QStringLiteral("stream"),
                                             QStringLiteral("ndi"), QStringLiteral("web")}));
    QCOMPARE(walk(Qt::Key_Backtab),
             (QStringList{QStringLiteral("capture"), QStringLiteral("web"), QStringLiteral("ndi"),
                          QStringLiteral("stream"), QStringLiteral("capture")}));
}

QTEST_MAIN(TestInputSourceWidget)
#include "tst_inputsourcewidget.moc"
