#include "demowindow.h"

#include "syntheticpreview.h"

#include <vexainputsourcewidget/version.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>
#include <quandel/runtime/zqruntime.h>

#include <QCheckBox>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
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

} // namespace

struct DemoWindow::Impl
{
    explicit Impl(DemoWindow* owner)
        : q(owner)
    {}

    QWidget* buildPreviews();
    QWidget* buildRuntime();
    QWidget* buildMessages();
    void postBurst(int count);
    void addMessage(quint64 id);
    void removeMessage(quint64 id);

    DemoWindow* const q;
    quandel::ZQRuntime runtime;
    quandel::msgcenter::MsgCenterMgr messageCentre;
    QLabel* runtimeState = nullptr;
    QListWidget* messageList = nullptr;
};

QWidget* DemoWindow::Impl::buildPreviews()
{
    auto* box = new QGroupBox(QStringLiteral("Synthetic sources"));
    auto* layout = new QGridLayout(box);
    const QStringList names = {QStringLiteral("Stream 1"), QStringLiteral("Capture card"),
                               QStringLiteral("NDI sender"), QStringLiteral("Web page")};
    for (int i = 0; i < names.size(); ++i) {
        auto* tile = new QVBoxLayout;
        tile->addWidget(new SyntheticPreview(168, 88, i * 90, box));
        tile->addWidget(new QLabel(names.at(i), box));
        layout->addLayout(tile, i / 2, i % 2);
    }
    return box;
}

QWidget* DemoWindow::Impl::buildRuntime()
{
    auto* box = new QGroupBox(QStringLiteral("Runtime thread"));
    auto* layout = new QVBoxLayout(box);
    runtimeState = new QLabel(box);
    runtimeState->setObjectName(QStringLiteral("runtimeState"));
    runtimeState->setWordWrap(true);
    runtimeState->setText(QStringLiteral("GUI thread %1. Post a burst of tasks to the runtime.")
                              .arg(threadName(std::this_thread::get_id())));

    auto* gate = new QCheckBox(QStringLiteral("Gate open (checkCall answers true)"), box);
    gate->setChecked(runtime.isGateOpen());
    QObject::connect(gate, &QCheckBox::toggled, q,
                     [this](bool open) { runtime.setGateOpen(open); });

    auto* burst = new QPushButton(QStringLiteral("Post 10 000 tasks"), box);
    QObject::connect(burst, &QPushButton::clicked, q, [this] { postBurst(10000); });

    layout->addWidget(runtimeState);
    layout->addWidget(gate);
    layout->addWidget(burst);
    layout->addStretch();
    return box;
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
                const QString text =
                    QStringLiteral("%1 tasks ran in order on runtime thread %2 in %3 ms.")
                        .arg(count)
                        .arg(threadName(std::this_thread::get_id()))
                        .arg(clock->elapsed());
                QMetaObject::invokeMethod(q, [label, text] {
                    if (label) {
                        label->setText(text);
                    }
                });
            },
            __FILE__, __LINE__, "postBurst");
    }
}

QWidget* DemoWindow::Impl::buildMessages()
{
    auto* box = new QGroupBox(QStringLiteral("Message centre"));
    auto* layout = new QVBoxLayout(box);
    messageList = new QListWidget(box);
    messageList->setObjectName(QStringLiteral("messageList"));
    messageList->setToolTip(QStringLiteral("Double-click a message to run its action"));

    auto* buttons = new QHBoxLayout;
    auto* notice = new QPushButton(QStringLiteral("Post a notice"), box);
    auto* warning = new QPushButton(QStringLiteral("Post a warning with an action"), box);
    auto* fromRuntime = new QPushButton(QStringLiteral("Post from the runtime thread"), box);
    buttons->addWidget(notice);
    buttons->addWidget(warning);
    buttons->addWidget(fromRuntime);

    QObject::connect(notice, &QPushButton::clicked, q, [this] {
        messageCentre.postMessage({QStringLiteral("A new NDI sender was found on the network."),
                                   quandel::msgcenter::STMessage::Notice,
                                   5000,
                                   {}});
    });
    QObject::connect(warning, &QPushButton::clicked, q, [this] {
        quandel::msgcenter::STMessage message;
        message.text = QStringLiteral("CPU usage stayed above 85% for 30 seconds.");
        message.level = quandel::msgcenter::STMessage::Warning;
        message.action = {QStringLiteral("Go check"), [this] {
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

    layout->addWidget(messageList);
    layout->addLayout(buttons);
    return box;
}

void DemoWindow::Impl::addMessage(quint64 id)
{
    const auto posted = messageCentre.message(id);
    if (!posted) {
        return;
    }
    QString text = QStringLiteral("%1  [%2]  %3")
                       .arg(posted->postedAt.toString(QStringLiteral("HH:mm:ss")),
                            levelName(posted->message.level), posted->message.text);
    if (!posted->message.action.label.isEmpty()) {
        text += QStringLiteral("   (%1)").arg(posted->message.action.label);
    }
    auto* item = new QListWidgetItem(text, messageList);
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
    auto* central = new QWidget(this);
    auto* layout = new QGridLayout(central);
    layout->addWidget(d->buildPreviews(), 0, 0);
    layout->addWidget(d->buildRuntime(), 0, 1);
    layout->addWidget(d->buildMessages(), 1, 0, 1, 2);
    setCentralWidget(central);

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
    // Tasks still queued reach into this window; run them before its members go.
    d->runtime.stop(quandel::ZQRuntime::StopMode::DiscardQueued);
}

} // namespace demohost
