#include "demowindow.h"

#include "syntheticpreview.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/version.h>

#include <XJ/Utils/flowlayout.h>
#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>
#include <quandel/runtime/zqruntime.h>
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/tipdialog.h>

#include <QDir>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QStatusBar>
#include <QVBoxLayout>

#include <atomic>
#include <sstream>
#include <thread>

namespace demohost {

namespace {

QString threadName(std::thread::id id)
{
    std::ostringstream text;
    text << id;
    return QString::fromStdString(text.str());
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

QString text(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "InputSource", "Widget", key);
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
    {}

    struct Tile
    {
        const char* key;
        QLabel* label;
    };

    QWidget* buildToolbar();
    QWidget* buildSources();
    QWidget* buildMessages();
    void loadLanguages();
    void retranslate();
    void postBurst(int count);
    void askQuestion();
    void addMessage(quint64 id);
    void removeMessage(quint64 id);

    DemoWindow* const q;
    quandel::ZQRuntime runtime;
    quandel::msgcenter::MsgCenterMgr messageCentre;
    QLabel* runtimeState = nullptr;
    QListWidget* messageList = nullptr;
    vexa::widgets::PushButton* askButton = nullptr;
    std::vector<Tile> tiles;
};

void DemoWindow::Impl::loadLanguages()
{
    auto& translator = InputSourceTranslateManager::instance().translator();
    const QDir folder(QStringLiteral(VEXA_DEMO_TRANSLATIONS_DIR));
    for (const QString& file :
         folder.entryList({QStringLiteral("vexainputsourcewidget_*.qm")}, QDir::Files)) {
        translator.load(folder.filePath(file));
    }
    translator.switchLanguage(QStringLiteral("zh_CN"));
}

QWidget* DemoWindow::Impl::buildToolbar()
{
    auto* bar = new QWidget;
    bar->setProperty("style", "BG1");
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(8);

    auto* languages = new vexa::widgets::ComboBox(bar);
    languages->setObjectName(QStringLiteral("languageChooser"));
    languages->addItem(QStringLiteral("简体中文"), QStringLiteral("zh_CN"));
    languages->addItem(QStringLiteral("繁體中文"), QStringLiteral("zh_TW"));
    languages->addItem(QStringLiteral("English"), QStringLiteral("en_US"));
    QObject::connect(languages, QOverload<int>::of(&QComboBox::activated), q,
                     [this, languages](int index) {
                         InputSourceTranslateManager::instance().translator().switchLanguage(
                             languages->itemData(index).toString());
                         retranslate();
                     });

    auto* gate = new vexa::widgets::PushButton(QStringLiteral("Gate open"), bar);
    gate->setCheckable(true);
    gate->setChecked(runtime.isGateOpen());
    gate->setProperty("checkStyle", true);
    QObject::connect(gate, &QPushButton::toggled, q,
                     [this](bool open) { runtime.setGateOpen(open); });

    auto* burst = new vexa::widgets::PushButton(QStringLiteral("Post 10 000 tasks"), bar);
    burst->setProperty("style", "assist");
    QObject::connect(burst, &QPushButton::clicked, q, [this] { postBurst(10000); });

    askButton = new vexa::widgets::PushButton(bar);
    askButton->setProperty("style", "general");
    QObject::connect(askButton, &QPushButton::clicked, q, [this] { askQuestion(); });

    runtimeState =
        caption(QStringLiteral("GUI thread %1").arg(threadName(std::this_thread::get_id())), bar);
    runtimeState->setObjectName(QStringLiteral("runtimeState"));

    layout->addWidget(languages);
    layout->addWidget(gate);
    layout->addWidget(burst);
    layout->addWidget(askButton);
    layout->addWidget(runtimeState, 1);
    return bar;
}

QWidget* DemoWindow::Impl::buildSources()
{
    auto* area = new QWidget;
    area->setProperty("style", "BG3");
    auto* flow = new XJ::Utils::FlowLayout(area, 12, 10, 10);
    const char* keys[] = {"Streaming", "CaptureCard", "LocalCaptureDevice",
                          "WebPage",   "Streaming",   "WebPage"};
    int hue = 0;
    for (const char* key : keys) {
        auto* tile = new QWidget(area);
        tile->setProperty("style", "BG4");
        tile->setAttribute(Qt::WA_StyledBackground);
        auto* column = new QVBoxLayout(tile);
        column->setContentsMargins(1, 1, 1, 6);
        column->setSpacing(4);
        column->addWidget(new SyntheticPreview(168, 88, hue, tile));
        auto* label = new QLabel(tile);
        label->setContentsMargins(6, 0, 6, 0);
        column->addWidget(label);
        flow->addWidget(tile);
        tiles.push_back({key, label});
        hue += 60;
    }
    return area;
}

QWidget* DemoWindow::Impl::buildMessages()
{
    auto* panel = new QWidget;
    panel->setProperty("style", "BG2");
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(12, 8, 12, 12);
    messageList = new QListWidget(panel);
    messageList->setObjectName(QStringLiteral("messageList"));
    messageList->setToolTip(QStringLiteral("Double-click a message to run its action"));

    auto* buttons = new QHBoxLayout;
    auto* notice = new vexa::widgets::PushButton(QStringLiteral("Post a notice"), panel);
    auto* warning =
        new vexa::widgets::PushButton(QStringLiteral("Post a warning with an action"), panel);
    auto* fromRuntime =
        new vexa::widgets::PushButton(QStringLiteral("Post from the runtime thread"), panel);
    for (auto* button : {notice, warning, fromRuntime}) {
        button->setProperty("style", "assist");
        buttons->addWidget(button);
    }
    buttons->addStretch();

    QObject::connect(notice, &QPushButton::clicked, q, [this] {
        messageCentre.postMessage({QStringLiteral("A new NDI sender was found on the network."),
                                   quandel::msgcenter::STMessage::Notice,
                                   5000,
                                   {}});
    });
    QObject::connect(warning, &QPushButton::clicked, q, [this] {
        quandel::msgcenter::STMessage message;
        message.text =
            text("CpuExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%"));
        message.level = quandel::msgcenter::STMessage::Warning;
        message.action = {text("GoCheck"), [this] {
                              messageCentre.postMessage({QStringLiteral("The action ran."),
                                                         quandel::msgcenter::STMessage::Info,
                                                         3000,
                                                         {}});
                          }};
        messageCentre.postMessage(message);
    });
    QObject::connect(fromRuntime, &QPushButton::clicked, q, [this] {
        runtime.post(
            [this] {
                messageCentre.postMessage({QStringLiteral("Posted on runtime thread %1.")
                                               .arg(threadName(std::this_thread::get_id())),
                                           quandel::msgcenter::STMessage::Info,
                                           -1,
                                           {}});
            },
            __FILE__, __LINE__, "postFromRuntime");
    });
    QObject::connect(&messageCentre, &quandel::msgcenter::MsgCenterMgr::messagePosted, q,
                     [this](quint64 id) { addMessage(id); });
    QObject::connect(&messageCentre, &quandel::msgcenter::MsgCenterMgr::messageRemoved, q,
                     [this](quint64 id) { removeMessage(id); });
    QObject::connect(messageList, &QListWidget::itemDoubleClicked, q,
                     [this](QListWidgetItem* item) {
                         messageCentre.triggerAction(item->data(Qt::UserRole).toULongLong());
                     });

    layout->addWidget(caption(QStringLiteral("Message centre"), panel));
    layout->addWidget(messageList);
    layout->addLayout(buttons);
    return panel;
}

void DemoWindow::Impl::retranslate()
{
    int number = 1;
    for (const Tile& tile : tiles) {
        tile.label->setText(QStringLiteral("%1 %2").arg(text(tile.key)).arg(number++));
    }
    askButton->setText(text("Delete"));
}

void DemoWindow::Impl::postBurst(int count)
{
    if (!runtime.checkCall(__FILE__, __LINE__, "postBurst")) {
        runtimeState->setText(QStringLiteral("The gate is closed: nothing was posted."));
        return;
    }
    auto done = std::make_shared<std::atomic<int>>(0);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    QPointer<QLabel> label = runtimeState;
    for (int i = 0; i < count; ++i) {
        runtime.post(
            [this, done, clock, count, label] {
                if (done->fetch_add(1) + 1 != count) {
                    return;
                }
                const QString report =
                    QStringLiteral("%1 tasks ran in order on runtime thread %2 in %3 ms.")
                        .arg(count)
                        .arg(threadName(std::this_thread::get_id()))
                        .arg(clock->elapsed());
                QMetaObject::invokeMethod(q, [label, report] {
                    if (label) {
                        label->setText(report);
                    }
                });
            },
            __FILE__, __LINE__, "postBurst");
    }
}

void DemoWindow::Impl::askQuestion()
{
    vexa::widgets::TipDialog tip(vexa::widgets::TipDialog::Warning, q);
    tip.setTipText(text("DeleteText"));
    tip.setBtnText(text("OK"), text("Cancel"), QString());
    const auto [result, checked] = tip.run();
    Q_UNUSED(checked)
    messageCentre.postMessage(
        {QStringLiteral("The question was answered with code %1.").arg(result),
         quandel::msgcenter::STMessage::Info,
         3000,
         {}});
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
    layout->addWidget(d->buildSources(), 3);
    layout->addWidget(d->buildMessages(), 2);
    setCentralWidget(central);
    d->retranslate();

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
    // Tasks still queued reach into this window; drop them before its members go.
    d->runtime.stop(quandel::ZQRuntime::StopMode::DiscardQueued);
}

} // namespace demohost
