#include "demowindow.h"

#include "programmonitor.h"
#include "simulatedinputsourcemgr.h"
#include "themeloader.h"
#include "windowtext.h"

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourcewidget.h>
#include <vexainputsourcewidget/stweboperation.h>
#include <vexainputsourcewidget/version.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>
#include <quandel/runtime/zqruntime.h>
#include <vexa/diagnostics/warning.h>
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/style.h>

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QTranslator>
#include <QVBoxLayout>

#include <algorithm>

namespace demohost {

namespace {

using vexa::inputsource::CaptureCardBox;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceWidget;
using vexa::inputsource::STWebOperation;

// The panel's boxes by object name, in the order it shows them.
constexpr const char* boxNames[] = {"captureCardBox", "streamingBox", "ndiBox", "webBox"};

constexpr int panelWidth = 742;
constexpr int statusIntervalMs = 1000;
constexpr auto deviceArrivalInterval = std::chrono::seconds(20);
// The load warning's thresholds the toolbar offers: the usual one, and lower ones under which
// an ordinary machine's load shows the warning.
constexpr int loadThresholds[] = {SimulatedInputSourceMgr::defaultLoadThreshold, 50, 10, 1};

// The window's own chrome, which neither the widget kit's sheet nor the panel's theme styles:
// without it the menu bar is pale on pale and the panel's dock shows a light floor below the
// boxes.
constexpr char chromeStyleSheet[] = R"(
QMenuBar { background-color: #121317; color: #d8dade; }
QMenuBar::item:selected { background-color: #333843; }
QToolBar { background-color: #121317; border: none; spacing: 0; }
QDockWidget { color: #d8dade; }
QDockWidget::title { background-color: #121317; padding: 5px 10px; }
#inputSourceScrollArea, #inputSourceContainer { background-color: #1c1e23; }
)";

QString percentText(int percent)
{
    return QStringLiteral("%1 %").arg(percent);
}

QString levelName(int level)
{
    switch (level) {
    case quandel::msgcenter::STMessage::Notice:
        return QStringLiteral("Notice");
    case quandel::msgcenter::STMessage::Warning:
        return QStringLiteral("Warning");
    case quandel::msgcenter::STMessage::Error:
        return QStringLiteral("Error");
    default:
        return QStringLiteral("Info");
    }
}

QLabel* caption(const QString& words, QWidget* parent)
{
    auto* label = new QLabel(words, parent);
    label->setProperty("style", "grayHint");
    return label;
}

} // namespace

struct DemoWindow::Impl
{
    explicit Impl(DemoWindow* owner)
        : q(owner)
        , manager(std::make_shared<SimulatedInputSourceMgr>(&runtime))
    {}

    void buildToolbar();
    void buildPanel();
    void buildMessages();
    void buildMenus();
    void setTabOrder();
    void bindPanel();
    void reportManagerEvents();
    QStringList languageFiles() const;
    void retranslate();
    void retranslateDockButtons();
    void switchKitLanguage(const QString& code);
    void chooseLoadThreshold(int percent);
    void refreshStatus();
    void addMessage(quint64 id);
    void removeMessage(quint64 id);
    uint64_t selectedSource() const;
    void showProgram(uint64_t id);

    DemoWindow* const q;
    // Declared first, destroyed last: everything below may still post to it.
    quandel::ZQRuntime runtime;
    quandel::msgcenter::MsgCenterMgr messageCentre;
    std::shared_ptr<SimulatedInputSourceMgr> const manager;
    std::vector<sigslot::scoped_connection> managerEvents;
    InputSourceWidget* panel = nullptr;
    std::vector<InputSourceBox*> boxes;
    ProgramMonitor* monitor = nullptr;
    QDockWidget* panelDock = nullptr;
    QDockWidget* messageDock = nullptr;
    QToolBar* toolbar = nullptr;
    QListWidget* messageList = nullptr;
    QLabel* status = nullptr;
    QLabel* title = nullptr;
    QLabel* loadThresholdLabel = nullptr;
    QLabel* libraryStatus = nullptr;
    vexa::widgets::ComboBox* loadThresholdChooser = nullptr;
    vexa::widgets::ComboBox* languageChooser = nullptr;
    QMenu* programMenu = nullptr;
    QMenu* viewMenu = nullptr;
    QAction* putOnProgramAction = nullptr;
    QAction* takeOffProgramAction = nullptr;
    uint64_t framesAtLastStatus = 0;
    QElapsedTimer sinceLastStatus;
};

void DemoWindow::Impl::switchKitLanguage(const QString& code)
{
    // The widget kit names its dialogs' titles and buttons with Qt's tr(); the library's
    // translator does not reach them. A dialog made from now on takes the new words. The
    // translator belongs to the application, which outlives the window and the library's
    // parentless dialogs: removed earlier, at the window's end, Qt's offscreen platform was
    // seen to leak its screen.
    auto* const next = new QTranslator(QCoreApplication::instance());
    if (!next->load(QStringLiteral("widgetkit_%1").arg(code),
                    QStringLiteral(VEXA_DEMO_OWN_TRANSLATIONS_DIR))) {
        VEXA_WARNING("widget kit translation not loaded");
        delete next;
        return;
    }
    for (QTranslator* old : QCoreApplication::instance()->findChildren<QTranslator*>(
             QStringLiteral("widgetKitTranslator"), Qt::FindDirectChildrenOnly)) {
        QCoreApplication::removeTranslator(old);
        old->deleteLater();
    }
    next->setObjectName(QStringLiteral("widgetKitTranslator"));
    QCoreApplication::installTranslator(next);
}

QStringList DemoWindow::Impl::languageFiles() const
{
    // The window's own files go to the same translator as the library's: one switch changes
    // both.
    QStringList files;
    const QDir folder(QStringLiteral(VEXA_DEMO_TRANSLATIONS_DIR));
    for (const QString& file :
         folder.entryList({QStringLiteral("vexainputsourcewidget_*.qm")}, QDir::Files)) {
        files << folder.filePath(file);
    }
    const QDir own(QStringLiteral(VEXA_DEMO_OWN_TRANSLATIONS_DIR));
    for (const QString& file : own.entryList({QStringLiteral("demohost_*.qm")}, QDir::Files)) {
        files << own.filePath(file);
    }
    return files;
}

void DemoWindow::Impl::buildToolbar()
{
    auto* bar = new QWidget;
    bar->setObjectName(QStringLiteral("toolbar"));
    bar->setProperty("style", "BG1");
    bar->setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(14, 8, 12, 8);
    layout->setSpacing(12);

    title = new QLabel(bar);
    title->setObjectName(QStringLiteral("windowTitle"));
    title->setProperty("fontSize", "L");
    title->setStyleSheet(QStringLiteral("font-weight: 600;"));

    status = caption(QString(), bar);
    status->setObjectName(QStringLiteral("sourceStatus"));

    languageChooser = new vexa::widgets::ComboBox(bar);
    languageChooser->setObjectName(QStringLiteral("languageChooser"));
    languageChooser->addItem(QStringLiteral("简体中文"), QStringLiteral("zh_CN"));
    languageChooser->addItem(QStringLiteral("繁體中文"), QStringLiteral("zh_TW"));
    languageChooser->addItem(QStringLiteral("English"), QStringLiteral("en_US"));
    QObject::connect(
        languageChooser, QOverload<int>::of(&QComboBox::activated), q,
        [this](int index) { q->switchLanguage(languageChooser->itemData(index).toString()); });

    loadThresholdLabel = caption(QString(), bar);
    loadThresholdLabel->setObjectName(QStringLiteral("loadThresholdLabel"));
    loadThresholdChooser = new vexa::widgets::ComboBox(bar);
    loadThresholdChooser->setObjectName(QStringLiteral("loadThresholdChooser"));
    for (const int percent : loadThresholds) {
        loadThresholdChooser->addItem(percentText(percent), percent);
    }
    loadThresholdLabel->setBuddy(loadThresholdChooser);
    QObject::connect(
        loadThresholdChooser, QOverload<int>::of(&QComboBox::activated), q,
        [this](int index) { q->setLoadThreshold(loadThresholdChooser->itemData(index).toInt()); });

    layout->addWidget(title);
    layout->addWidget(status, 1);
    layout->addWidget(loadThresholdLabel);
    layout->addWidget(loadThresholdChooser);
    layout->addSpacing(12);
    layout->addWidget(languageChooser);

    toolbar = new QToolBar(q);
    toolbar->setObjectName(QStringLiteral("mainToolBar"));
    toolbar->setMovable(false);
    toolbar->addWidget(bar);
    q->addToolBar(Qt::TopToolBarArea, toolbar);
}

void DemoWindow::Impl::buildPanel()
{
    panelDock = new QDockWidget(q);
    panelDock->setObjectName(QStringLiteral("inputSourceDock"));
    // Not closable: the demo has nothing else to add sources with.
    panelDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    panelDock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    panel = new InputSourceWidget(panelDock);
    panel->setMinimumWidth(panelWidth);
    // The dock follows the panel's translated title by itself.
    panelDock->setWidget(panel);
    q->addDockWidget(Qt::LeftDockWidgetArea, panelDock);
    for (const char* name : boxNames) {
        boxes.push_back(panel->findChild<InputSourceBox*>(QLatin1String(name)));
    }

    // The order the integration guide gives: everything but the manager, which comes last
    // (bindPanel()).
    const QString themes = ThemeLoader::themesDir();
    panel->setZQRuntime(&runtime);
    panel->setMsgCenterMgr(&messageCentre);
    panel->setLoadingPath(ThemeLoader::loadingAnimation(themes));
    panel->setInputSourceStyleSheet(vexa::widgets::defaultStyleSheet() +
                                    ThemeLoader::styleSheet(themes));
    panel->loadLanguageFiles(languageFiles());
}

void DemoWindow::Impl::buildMessages()
{
    auto* box = new QWidget;
    box->setObjectName(QStringLiteral("messagePanel"));
    box->setProperty("style", "BG2");
    box->setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(12, 8, 12, 10);
    messageList = new QListWidget(box);
    messageList->setObjectName(QStringLiteral("messageList"));
    messageList->setWordWrap(true);
    messageList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(messageList, 1);

    QObject::connect(&messageCentre, &quandel::msgcenter::MsgCenterMgr::messagePosted, q,
                     [this](quint64 id) { addMessage(id); });
    QObject::connect(&messageCentre, &quandel::msgcenter::MsgCenterMgr::messageRemoved, q,
                     [this](quint64 id) { removeMessage(id); });
    // A double click, or Enter for a keyboard user, runs the message's action.
    QObject::connect(messageList, &QListWidget::itemActivated, q, [this](QListWidgetItem* item) {
        messageCentre.triggerAction(item->data(Qt::UserRole).toULongLong());
    });

    messageDock = new QDockWidget(q);
    messageDock->setObjectName(QStringLiteral("messageDock"));
    messageDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable |
                             QDockWidget::DockWidgetClosable);
    messageDock->setWidget(box);
    // The panel keeps the whole height of its side; the messages sit under the monitor.
    q->setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    q->setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    q->addDockWidget(Qt::BottomDockWidgetArea, messageDock);
    for (QDockWidget* dock : {panelDock, messageDock}) {
        QObject::connect(dock, &QDockWidget::topLevelChanged, q,
                         [this] { retranslateDockButtons(); });
    }
}

void DemoWindow::Impl::buildMenus()
{
    programMenu = q->menuBar()->addMenu(QString());
    programMenu->setObjectName(QStringLiteral("programMenu"));
    putOnProgramAction = programMenu->addAction(QString());
    putOnProgramAction->setObjectName(QStringLiteral("putOnProgramAction"));
    putOnProgramAction->setShortcuts(
        {QKeySequence(Qt::CTRL + Qt::Key_Return), QKeySequence(Qt::CTRL + Qt::Key_Enter)});
    // Window-wide: the selection is in the panel's dock, the monitor elsewhere.
    putOnProgramAction->setShortcutContext(Qt::WindowShortcut);
    QObject::connect(putOnProgramAction, &QAction::triggered, q,
                     [this] { q->putSelectedOnProgram(); });
    takeOffProgramAction = programMenu->addAction(QString());
    takeOffProgramAction->setObjectName(QStringLiteral("takeOffProgramAction"));
    takeOffProgramAction->setShortcut(QKeySequence(Qt::CTRL + Qt::Key_Backspace));
    QObject::connect(takeOffProgramAction, &QAction::triggered, monitor,
                     &ProgramMonitor::clearProgram);

    viewMenu = q->menuBar()->addMenu(QString());
    viewMenu->setObjectName(QStringLiteral("viewMenu"));
    viewMenu->addAction(panelDock->toggleViewAction());
    viewMenu->addAction(messageDock->toggleViewAction());
    viewMenu->addAction(toolbar->toggleViewAction());
}

void DemoWindow::Impl::setTabOrder()
{
    // Toolbar, panel, monitor, messages: left to right and top to bottom as the window shows
    // them. The panel walks its own part box by box.
    QWidget::setTabOrder(loadThresholdChooser, languageChooser);
    QWidget::setTabOrder(languageChooser, boxes.front());
    QWidget::setTabOrder(boxes.back(), monitor);
    QWidget::setTabOrder(monitor, messageList);
}

void DemoWindow::Impl::bindPanel()
{
    // Direct, so that the answer returns to the asking box.
    QObject::connect(
        panel, &InputSourceWidget::signalCheckInputSourceBeUsed, q,
        [this](uint64_t id) { return q->isInUse(id); }, Qt::DirectConnection);
    // The host's device watcher: the simulated manager plays it, on its timer thread.
    QObject* const receiver =
        boxes.front()->findChild<QObject*>(QStringLiteral("captureCardBoxImpl"));
    manager->setDeviceSink(
        [receiver](bool isArrival) {
            QMetaObject::invokeMethod(receiver, "slotUpdateDevice", Qt::QueuedConnection,
                                      Q_ARG(bool, isArrival));
        },
        deviceArrivalInterval);
    // The frame thread calls this; the sink is removed before the panel and the monitor go.
    manager->setFrameSink(
        [panel = panel, monitor = monitor](uint64_t id, const zq::mediacore::IFrame* frame) {
            panel->updateFrame(id, frame);
            monitor->offerFrame(id, frame);
        });
    QObject::connect(monitor, &ProgramMonitor::programChanged, q,
                     [this](uint64_t id) { showProgram(id); });
    panel->setInputSourceMgr(manager);
}

void DemoWindow::Impl::showProgram(uint64_t id)
{
    manager->setProgramSource(id);
    const QString name = monitor->programName();
    messageCentre.postMessage({id == 0 ? QStringLiteral("Nothing on program.")
                                       : QStringLiteral("%1 is on program.").arg(name),
                               quandel::msgcenter::STMessage::Info,
                               5000,
                               {}});
}

uint64_t DemoWindow::Impl::selectedSource() const
{
    // Selection is exclusive across the boxes: at most one box has any.
    for (InputSourceBox* box : boxes) {
        const std::vector<uint64_t> selected = box->selectedIds();
        if (!selected.empty()) {
            return selected.front();
        }
    }
    return 0;
}

void DemoWindow::Impl::reportManagerEvents()
{
    // Runs on the runtime thread; the message centre takes posts from any thread.
    const auto post = [this](QString words, quandel::msgcenter::STMessage::Level level) {
        messageCentre.postMessage({std::move(words), level, 5000, {}});
    };
    const auto nameOf = [this](uint64_t id) {
        const auto resource = manager->getResourceById(id);
        return resource == nullptr ? QString::number(id)
                                   : QString::fromStdString(resource->getName());
    };
    managerEvents.emplace_back(manager->signalResourcesAdded.connect(
        [post](const std::vector<SimulatedInputSourceMgr::ResourcePtr>& resources,
               const std::vector<vexa::inputsource::STInputSource>&) {
            QStringList names;
            for (const auto& resource : resources) {
                names.append(QString::fromStdString(resource->getName()));
            }
            post(QStringLiteral("Added %1.").arg(names.join(QStringLiteral(", "))),
                 quandel::msgcenter::STMessage::Info);
        }));
    managerEvents.emplace_back(manager->signalOnlineStatusChanged.connect(
        [post, nameOf](const std::map<uint64_t, bool>& states, int) {
            for (const auto& [id, online] : states) {
                post(QStringLiteral("%1 is %2.")
                         .arg(nameOf(id),
                              online ? QStringLiteral("online") : QStringLiteral("offline")),
                     quandel::msgcenter::STMessage::Info);
            }
        }));
    managerEvents.emplace_back(manager->signalResourceExtractFailed.connect(
        [post](const SimulatedInputSourceMgr::ResourcePtr& resource,
               const quandel::resource::STResouceExtracted& report) {
            post(QStringLiteral("%1: %2.").arg(QString::fromStdString(resource->getName()),
                                               QString::fromStdString(report.errorText)),
                 quandel::msgcenter::STMessage::Warning);
        }));
    managerEvents.emplace_back(manager->signalResourceRenamed.connect(
        [this, post](const vexa::STResourceRenamedModel& model, bool&) {
            if (model.flag != 0) {
                post(QStringLiteral("The name is taken; the source keeps \"%1\".")
                         .arg(QString::fromStdString(model.name)),
                     quandel::msgcenter::STMessage::Notice);
                return;
            }
            post(QStringLiteral("Renamed to \"%1\".").arg(QString::fromStdString(model.name)),
                 quandel::msgcenter::STMessage::Info);
            QMetaObject::invokeMethod(
                monitor,
                [monitor = monitor, id = model.id, name = QString::fromStdString(model.name)] {
                    monitor->renameSource(id, name);
                },
                Qt::QueuedConnection);
        }));
    managerEvents.emplace_back(
        manager->signalResourcesDeleted.connect([this, post](const std::vector<uint64_t>& ids) {
            post(QStringLiteral("Deleted %1 source(s).").arg(ids.size()),
                 quandel::msgcenter::STMessage::Info);
            // A source that is gone cannot stay on air. The monitor's id may change meanwhile,
            // so the GUI thread decides.
            QMetaObject::invokeMethod(
                monitor,
                [monitor = monitor, ids] {
                    if (std::find(ids.begin(), ids.end(), monitor->programId()) != ids.end()) {
                        monitor->clearProgram();
                    }
                },
                Qt::QueuedConnection);
        }));
    managerEvents.emplace_back(
        manager->signalWebInfoChanged.connect([post](const STWebOperation& operation) {
            // Readings and thresholds come every second; they are the web dialog's.
            if (operation.code != STWebOperation::WebDescriptionChanged) {
                return;
            }
            const auto& page = operation.webDescription;
            post(QStringLiteral("%1 shows %2 (%3 tabs).")
                     .arg(QString::fromStdString(page.name), QString::fromStdString(page.address))
                     .arg(page.webTabs.size()),
                 quandel::msgcenter::STMessage::Info);
        }));
    managerEvents.emplace_back(manager->signalWebPageReloaded.connect(
        [post, nameOf](uint64_t id, const std::string& address) {
            post(
                QStringLiteral("Reloading %1: %2").arg(nameOf(id), QString::fromStdString(address)),
                quandel::msgcenter::STMessage::Notice);
        }));
}

void DemoWindow::Impl::retranslate()
{
    q->setWindowTitle(windowText("WindowTitle"));
    title->setText(windowText("InputSources"));
    toolbar->setWindowTitle(windowText("Toolbar"));
    loadThresholdLabel->setText(windowText("LoadWarningAbove"));
    loadThresholdChooser->setAccessibleName(windowText("LoadWarningAbove"));
    languageChooser->setAccessibleName(windowText("Language"));
    languageChooser->setToolTip(windowText("Language"));
    status->setAccessibleName(windowText("SourceStatus"));
    messageDock->setWindowTitle(windowText("MessageCentre"));
    messageList->setAccessibleName(windowText("MessageCentre"));
    messageList->setToolTip(windowText("MessageHint"));
    panelDock->setAccessibleName(panel->titleText());
    programMenu->setTitle(windowText("ProgramMenu"));
    putOnProgramAction->setText(windowText("PutOnProgram"));
    takeOffProgramAction->setText(windowText("TakeOffProgram"));
    viewMenu->setTitle(windowText("ViewMenu"));
    monitor->retranslate();
    retranslateDockButtons();
    libraryStatus->setText(
        windowText("LibraryStatus")
            .arg(QString::fromLatin1(vexa::inputsource::libraryVersion()),
                 IsSupportedWGC() ? windowText("Available") : windowText("NotAvailable")));
    refreshStatus();
}

void DemoWindow::Impl::retranslateDockButtons()
{
    // Qt names the docks' title buttons in English, and no host translation of Qt's own texts
    // is installed: the window names them in the operator's language.
    for (QDockWidget* dock : {panelDock, messageDock}) {
        for (auto* button : dock->findChildren<QAbstractButton*>()) {
            const char* key = nullptr;
            if (button->objectName() == QLatin1String("qt_dockwidget_floatbutton")) {
                key = "FloatDock";
            } else if (button->objectName() == QLatin1String("qt_dockwidget_closebutton")) {
                key = "CloseDock";
            }
            if (key != nullptr) {
                button->setAccessibleName(windowText(key));
                button->setToolTip(windowText(key));
            }
        }
    }
}

void DemoWindow::Impl::chooseLoadThreshold(int percent)
{
    int index = loadThresholdChooser->findData(percent);
    if (index < 0) {
        // A figure asked for on the command line: offered with the others, in their order.
        index = 0;
        while (index < loadThresholdChooser->count() &&
               loadThresholdChooser->itemData(index).toInt() > percent) {
            ++index;
        }
        loadThresholdChooser->insertItem(index, percentText(percent), percent);
    }
    loadThresholdChooser->setCurrentIndex(index);
}

void DemoWindow::Impl::refreshStatus()
{
    const uint64_t frames = manager->deliveredFrames();
    // Measured, not assumed: a busy GUI thread (hundreds of tiles arriving) fires the timer late.
    const qint64 elapsedMs = sinceLastStatus.isValid() ? sinceLastStatus.restart() : 0;
    if (!sinceLastStatus.isValid()) {
        sinceLastStatus.start();
    }
    const double perSecond =
        elapsedMs > 0 ? static_cast<double>(frames - framesAtLastStatus) * 1000.0 / elapsedMs : 0.0;
    framesAtLastStatus = frames;
    status->setText(windowText("StatusLine")
                        .arg(manager->getResources().size())
                        .arg(manager->previewedIds().size())
                        .arg(perSecond, 0, 'f', 0));
}

void DemoWindow::Impl::addMessage(quint64 id)
{
    const auto posted = messageCentre.message(id);
    if (!posted) {
        return;
    }
    QString line = QStringLiteral("%1  [%2]  %3")
                       .arg(posted->postedAt.toString(QStringLiteral("HH:mm:ss")),
                            levelName(posted->message.level), posted->message.text);
    if (!posted->message.action.label.isEmpty()) {
        line += QStringLiteral("   (%1)").arg(posted->message.action.label);
    }
    auto* item = new QListWidgetItem(line, messageList);
    item->setData(Qt::UserRole, id);
    messageList->scrollToItem(item);
}

void DemoWindow::Impl::removeMessage(quint64 id)
{
    for (int row = 0; row < messageList->count(); ++row) {
        if (messageList->item(row)->data(Qt::UserRole).toULongLong() == id) {
            delete messageList->takeItem(row);
            return;
        }
    }
}

DemoWindow::DemoWindow(QWidget* parent, int sourceCount)
    : QMainWindow(parent)
    , d(std::make_unique<Impl>(this))
{
    setObjectName(QStringLiteral("demoWindow"));
    setStyleSheet(QLatin1String(chromeStyleSheet));
    d->buildToolbar();
    d->monitor = new ProgramMonitor(this);
    setCentralWidget(d->monitor);
    // Before the panel, whose dialogs are made with it: they start in its first language.
    d->switchKitLanguage(QStringLiteral("zh_CN"));
    d->buildPanel();
    d->buildMessages();
    d->buildMenus();
    d->setTabOrder();
    // Permanent, so that a passing notice in the status bar does not wipe it.
    d->libraryStatus = new QLabel(this);
    d->libraryStatus->setObjectName(QStringLiteral("libraryStatus"));
    statusBar()->addPermanentWidget(d->libraryStatus);

    d->reportManagerEvents();
    d->bindPanel();
    d->retranslate();
    if (sourceCount >= 0) {
        d->manager->seedSources(sourceCount);
    } else {
        d->manager->seedDemoSources();
    }
    d->manager->startLoadReadings();

    auto* statusTimer = new QTimer(this);
    connect(statusTimer, &QTimer::timeout, this, [this] { d->refreshStatus(); });
    statusTimer->start(statusIntervalMs);

    d->messageCentre.postMessage(
        {QStringLiteral("Demo host started."), quandel::msgcenter::STMessage::Info, 3000, {}});
}

DemoWindow::~DemoWindow()
{
    // In the order the threads need: no frame reaches the panel or the monitor any more, the
    // panel stops listening, the manager's threads end, and only then the runtime, when nothing
    // is left to post to it.
    d->managerEvents.clear();
    d->manager->setFrameSink({});
    d->manager->setDeviceSink({}, {});
    d->panel->unsetInputSourceMgr();
    d->manager->shutdown();
    d->runtime.stop(quandel::ZQRuntime::StopMode::DiscardQueued);
    // The panel holds raw pointers to the runtime and the message centre, which go with d.
    delete d->panelDock;
    delete takeCentralWidget();
}

InputSourceWidget* DemoWindow::panel() const
{
    return d->panel;
}

std::vector<InputSourceBox*> DemoWindow::boxes() const
{
    return d->boxes;
}

ProgramMonitor* DemoWindow::programMonitor() const
{
    return d->monitor;
}

bool DemoWindow::putSelectedOnProgram()
{
    const uint64_t id = d->selectedSource();
    if (id == 0) {
        statusBar()->showMessage(windowText("NoSourceSelected"), 4000);
        return false;
    }
    const auto resource = d->manager->getResourceById(id);
    d->monitor->setProgram(id, resource == nullptr ? QString::number(id)
                                                   : QString::fromStdString(resource->getName()));
    return true;
}

bool DemoWindow::isInUse(uint64_t id) const
{
    return id != 0 && (id == d->monitor->programId() || d->manager->isInUse(id));
}

void DemoWindow::switchLanguage(const QString& code)
{
    d->switchKitLanguage(code);
    // The panel switches the translator, which holds the window's texts too.
    d->panel->switchLanguage(code);
    d->languageChooser->setCurrentIndex(d->languageChooser->findData(code));
    d->retranslate();
}

void DemoWindow::setLoadThreshold(int percent)
{
    d->chooseLoadThreshold(percent);
    d->manager->setLoadThresholds({{percent, percent, percent}});
}

std::shared_ptr<SimulatedInputSourceMgr> DemoWindow::manager() const
{
    return d->manager;
}

quandel::ZQRuntime& DemoWindow::runtime() const
{
    return d->runtime;
}

} // namespace demohost
