// SPDX-License-Identifier: MIT
#include "demowindow.h"

#include "simulatedinputsourcemgr.h"
#include "themeloader.h"

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/ndibox.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/stweboperation.h>
#include <vexainputsourcewidget/version.h>
#include <vexainputsourcewidget/webbox.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>
#include <quandel/runtime/zqruntime.h>
#include <vexa/diagnostics/warning.h>
#include <vexa/widgets/combobox.h>

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

namespace demohost {

namespace {

using quandel::resource::EnResourceType;
using vexa::inputsource::CaptureCardBox;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::NdiBox;
using vexa::inputsource::StreamingBox;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::WebBox;

// The panel's categories, top to bottom. A category without a key has a fixed title that no
// language translates.
struct Category
{
    EnResourceType type;
    const char* titleKey;
    const char* fixedTitle;
};

constexpr Category categories[] = {
    {EnResourceType::LocalCaptureDevice, "CaptureCard", nullptr},
    {EnResourceType::NetworkStream, "Streaming", nullptr},
    {EnResourceType::NdiSource, nullptr, "NDI"},
    {EnResourceType::WebPage, nullptr, "Web"},
};

constexpr int panelWidth = 742;
constexpr int statusIntervalMs = 1000;
constexpr auto deviceArrivalInterval = std::chrono::seconds(20);
// The load warning's thresholds the toolbar offers: the usual one, and lower ones under which
// an ordinary machine's load shows the warning.
constexpr int loadThresholds[] = {SimulatedInputSourceMgr::defaultLoadThreshold, 50, 10, 1};

// Every kind has a box of its own, with its own way of adding.
InputSourceBox* createBox(EnResourceType type, QWidget* parent)
{
    switch (type) {
    case EnResourceType::LocalCaptureDevice:
        return new CaptureCardBox(parent);
    case EnResourceType::NetworkStream:
        return new StreamingBox(parent);
    case EnResourceType::NdiSource:
        return new NdiBox(parent);
    case EnResourceType::WebPage:
    default:
        return new WebBox(parent);
    }
}

QString text(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "InputSource", "Widget", key);
}

// The window's own texts, which the library's language files do not have.
QString windowText(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "DemoHost", "Window", key);
}

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
    label->setProperty("style", QStringLiteral("grayHint"));
    return label;
}

} // namespace

struct DemoWindow::Impl
{
    explicit Impl(DemoWindow* owner)
        : q(owner)
        , manager(std::make_shared<SimulatedInputSourceMgr>(&runtime))
    {}

    QWidget* buildToolbar();
    QWidget* buildPanel();
    QWidget* buildMessages();
    void bindBoxes();
    void reportManagerEvents();
    void loadLanguages();
    void retranslate();
    void chooseLoadThreshold(int percent);
    void refreshStatus();
    void addMessage(quint64 id);
    void removeMessage(quint64 id);

    DemoWindow* const q;
    // Declared first, destroyed last: everything below may still post to it.
    quandel::ZQRuntime runtime;
    quandel::msgcenter::MsgCenterMgr messageCentre;
    std::shared_ptr<SimulatedInputSourceMgr> const manager;
    std::vector<InputSourceBox*> boxes;
    std::vector<sigslot::scoped_connection> managerEvents;
    QListWidget* messageList = nullptr;
    QLabel* status = nullptr;
    QLabel* title = nullptr;
    QLabel* messagesCaption = nullptr;
    QLabel* loadThresholdLabel = nullptr;
    vexa::widgets::ComboBox* loadThresholdChooser = nullptr;
    uint64_t framesAtLastStatus = 0;
};

void DemoWindow::Impl::loadLanguages()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    const QDir folder(QStringLiteral(VEXA_DEMO_TRANSLATIONS_DIR));
    for (const QString& file :
         folder.entryList({QStringLiteral("vexainputsourcewidget_*.qm")}, QDir::Files)) {
        translator.load(folder.filePath(file));
    }
    const QDir own(QStringLiteral(VEXA_DEMO_OWN_TRANSLATIONS_DIR));
    for (const QString& file : own.entryList({QStringLiteral("demohost_*.qm")}, QDir::Files)) {
        translator.load(own.filePath(file));
    }
    translator.switchLanguage(QStringLiteral("zh_CN"));
}

QWidget* DemoWindow::Impl::buildToolbar()
{
    auto* bar = new QWidget;
    bar->setObjectName(QStringLiteral("toolbar"));
    bar->setProperty("style", QStringLiteral("BG1"));
    bar->setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(14, 8, 12, 8);
    layout->setSpacing(12);

    title = new QLabel(bar);
    title->setObjectName(QStringLiteral("windowTitle"));
    title->setProperty("fontSize", QStringLiteral("L"));
    title->setStyleSheet(QStringLiteral("font-weight: 600;"));

    status = caption(QString(), bar);
    status->setObjectName(QStringLiteral("sourceStatus"));

    auto* languages = new vexa::widgets::ComboBox(bar);
    languages->setObjectName(QStringLiteral("languageChooser"));
    languages->addItem(QStringLiteral("简体中文"), QStringLiteral("zh_CN"));
    languages->addItem(QStringLiteral("繁體中文"), QStringLiteral("zh_TW"));
    languages->addItem(QStringLiteral("English"), QStringLiteral("en_US"));
    QObject::connect(
        languages, QOverload<int>::of(&QComboBox::activated), q,
        [this, languages](int index) { q->switchLanguage(languages->itemData(index).toString()); });

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
    layout->addWidget(languages);
    return bar;
}

QWidget* DemoWindow::Impl::buildPanel()
{
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("inputSourcePanel"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(panelWidth);

    auto* column = new QWidget;
    column->setProperty("style", QStringLiteral("BG3"));
    column->setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 4, 0, 8);
    layout->setSpacing(0);
    const QString loading = ThemeLoader::loadingAnimation(ThemeLoader::themesDir());
    for (const Category& category : categories) {
        auto* box = createBox(category.type, column);
        box->setObjectName(QStringLiteral("box%1").arg(quandel::resource::toCode(category.type)));
        box->setZQRuntime(&runtime);
        box->setLoadingPath(loading);
        box->setMsgCenterMgr(&messageCentre);
        layout->addWidget(box);
        boxes.push_back(box);
    }
    layout->addStretch(1);
    scroll->setWidget(column);
    return scroll;
}

QWidget* DemoWindow::Impl::buildMessages()
{
    auto* panel = new QWidget;
    panel->setObjectName(QStringLiteral("messagePanel"));
    panel->setProperty("style", QStringLiteral("BG2"));
    panel->setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(12, 10, 12, 12);
    layout->setSpacing(6);
    messageList = new QListWidget(panel);
    messageList->setObjectName(QStringLiteral("messageList"));
    messageList->setWordWrap(true);
    messageList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    messageList->setToolTip(QStringLiteral("Double-click a message to run its action"));

    QObject::connect(&messageCentre, &quandel::msgcenter::MsgCenterMgr::messagePosted, q,
                     [this](quint64 id) { addMessage(id); });
    QObject::connect(&messageCentre, &quandel::msgcenter::MsgCenterMgr::messageRemoved, q,
                     [this](quint64 id) { removeMessage(id); });
    QObject::connect(messageList, &QListWidget::itemDoubleClicked, q,
                     [this](QListWidgetItem* item) {
                         messageCentre.triggerAction(item->data(Qt::UserRole).toULongLong());
                     });

    messagesCaption = caption(QString(), panel);
    layout->addWidget(messagesCaption);
    layout->addWidget(messageList, 1);
    return panel;
}

void DemoWindow::Impl::bindBoxes()
{
    for (InputSourceBox* box : boxes) {
        QObject::connect(
            box, &InputSourceBox::signalCheckInputSourceBeUsed, q,
            [mgr = manager.get()](uint64_t id) { return mgr->isInUse(id); }, Qt::DirectConnection);
        box->setInputSourceMgr(manager);
        // The host's device watcher: the simulated manager plays it, on its timer thread.
        if (auto* capture = qobject_cast<CaptureCardBox*>(box)) {
            QObject* const receiver =
                capture->findChild<QObject*>(QStringLiteral("captureCardBoxImpl"));
            manager->setDeviceSink(
                [receiver](bool isArrival) {
                    QMetaObject::invokeMethod(receiver, "slotUpdateDevice", Qt::QueuedConnection,
                                              Q_ARG(bool, isArrival));
                },
                deviceArrivalInterval);
        }
    }
    // The frame thread calls this; the list of boxes is fixed from here on, and the sink is
    // removed before the boxes go.
    manager->setFrameSink([boxes = boxes](uint64_t id, const zq::mediacore::IFrame* frame) {
        for (InputSourceBox* box : boxes) {
            box->updateFrame(id, frame);
        }
    });
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
        [post](const vexa::STResourceRenamedModel& model, bool&) {
            if (model.flag != 0) {
                post(QStringLiteral("The name is taken; the source keeps \"%1\".")
                         .arg(QString::fromStdString(model.name)),
                     quandel::msgcenter::STMessage::Notice);
                return;
            }
            post(QStringLiteral("Renamed to \"%1\".").arg(QString::fromStdString(model.name)),
                 quandel::msgcenter::STMessage::Info);
        }));
    managerEvents.emplace_back(
        manager->signalResourcesDeleted.connect([post](const std::vector<uint64_t>& ids) {
            post(QStringLiteral("Deleted %1 source(s).").arg(ids.size()),
                 quandel::msgcenter::STMessage::Info);
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
    title->setText(windowText("InputSources"));
    messagesCaption->setText(windowText("MessageCentre"));
    loadThresholdLabel->setText(windowText("LoadWarningAbove"));
    // The web box chooses the home page of new tabs by the code, so it comes first.
    const QString code = InputSourceTranslateManager::instance().translator().currentLanguage();
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const Category& category = categories[i];
        boxes[i]->setTitle(category.titleKey != nullptr ? text(category.titleKey)
                                                        : QLatin1String(category.fixedTitle));
        boxes[i]->setLanguageCode(code);
        boxes[i]->translateLanguage();
    }
    // New streams are named in the operator's language.
    runtime.post(
        [weak = std::weak_ptr<SimulatedInputSourceMgr>(manager),
         word = text("Streaming").toStdString()] {
            if (const auto mgr = weak.lock()) {
                mgr->setStreamingText(word);
            }
        },
        __FILE__, __LINE__, "DemoWindow::retranslate");
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
    const double perSecond =
        static_cast<double>(frames - framesAtLastStatus) * 1000.0 / statusIntervalMs;
    framesAtLastStatus = frames;
    status->setText(QStringLiteral("%1 sources  ·  %2 previewed  ·  %3 frames/s")
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

DemoWindow::DemoWindow(QWidget* parent)
    : QMainWindow(parent)
    , d(std::make_unique<Impl>(this))
{
    setWindowTitle(QStringLiteral("Input sources demo host"));
    d->loadLanguages();

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(d->buildToolbar());
    auto* body = new QHBoxLayout;
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(0);
    body->addWidget(d->buildPanel(), 3);
    body->addWidget(d->buildMessages(), 1);
    layout->addLayout(body, 1);
    setCentralWidget(central);

    d->reportManagerEvents();
    d->bindBoxes();
    d->retranslate();
    d->manager->seedDemoSources();
    d->manager->startLoadReadings();

    auto* statusTimer = new QTimer(this);
    connect(statusTimer, &QTimer::timeout, this, [this] { d->refreshStatus(); });
    statusTimer->start(statusIntervalMs);
    d->refreshStatus();

    statusBar()->showMessage(
        QStringLiteral("vexainputsourcewidget %1   |   window capture (WGC) %2")
            .arg(QString::fromLatin1(vexa::inputsource::libraryVersion()),
                 IsSupportedWGC() ? QStringLiteral("available")
                                  : QStringLiteral("not available on this system")));
    d->messageCentre.postMessage(
        {QStringLiteral("Demo host started."), quandel::msgcenter::STMessage::Info, 3000, {}});
}

DemoWindow::~DemoWindow()
{
    // The frame thread stops reaching into the boxes, the boxes stop listening, the manager's
    // threads end, and only then the runtime: nothing is left to post to it.
    d->managerEvents.clear();
    d->manager->setFrameSink({});
    d->manager->setDeviceSink({}, {});
    for (InputSourceBox* box : d->boxes) {
        box->unsetInputSourceMgr();
    }
    d->manager->shutdown();
    d->runtime.stop(quandel::ZQRuntime::StopMode::DiscardQueued);
    // The boxes hold raw pointers to the runtime and the message centre, which go with d.
    delete takeCentralWidget();
}

void DemoWindow::switchLanguage(const QString& code)
{
    InputSourceTranslateManager::instance().translator().switchLanguage(code);
    if (auto* chooser = findChild<vexa::widgets::ComboBox*>(QStringLiteral("languageChooser"))) {
        chooser->setCurrentIndex(chooser->findData(code));
    }
    d->retranslate();
}

void DemoWindow::setLoadThreshold(int percent)
{
    d->chooseLoadThreshold(percent);
    d->manager->setLoadThresholds({{percent, percent, percent}});
}

std::vector<InputSourceBox*> DemoWindow::boxes() const
{
    return d->boxes;
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
