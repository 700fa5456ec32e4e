// SPDX-License-Identifier: MIT
#include "ndidialog.h"

#include "manageraccess.h"
#include "ndilistitem.h"
#include "ndisourcesrelay.h"
#include "queuedhandoff.h"
#include "relaysubscription.h"
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/style.h>

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QShowEvent>
#include <QTimer>
#include <QVBoxLayout>

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace vexa::inputsource {

// The queued slot spells its parameter type exactly as the relay names it.
using vexa::STResourceRenamedModel;

namespace {

using quandel::resource::EnResourceType;

constexpr int dialogWidth = 760;
constexpr int headerMargin = 8;
constexpr int headerSpacing = 8;
constexpr int checkSide = 20;
constexpr int ipWidth = 130;
constexpr int nameWidth = 190;
constexpr int listHeight = 256;
constexpr int buttonSpacing = 12;
constexpr int buttonHeight = 24;
constexpr int contentMargin = 24;
constexpr int statusSpacing = 20;
constexpr int buttonsSpacing = 4;
constexpr int nameRepeatGuardMs = 200;

// Where Tab stops in a row: the receiver name's line edit, to which its edit box passes the
// focus on.
QWidget* tabStopOf(const NdiListItem& row)
{
    auto* const edit = row.findChild<QWidget*>(QStringLiteral("ndiReceiverEdit"));
    return edit->focusProxy() != nullptr ? edit->focusProxy() : edit;
}

} // namespace

class NdiDialog::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(NdiDialog* q);
    ~Impl() override;

    void build();
    void connectWidgets();
    void setStatus(const char* key, const char* style);
    void updateNDIDeviceInfo();
    void clearRows();
    NdiListItem* rowAt(int index) const;
    std::vector<NdiListItem*> rows() const;
    void walkEditsWithTab(const std::vector<NdiListItem*>& all);
    void applyPendingList();

    NdiDialog* const q;
    ManagerAccess manager;
    vexa::widgets::PushButton* selectAllButton = nullptr;
    QLabel* ipHeader = nullptr;
    QLabel* senderHeader = nullptr;
    QLabel* receiverHeader = nullptr;
    QLabel* stateHeader = nullptr;
    QListWidget* list = nullptr;
    QLabel* statusLabel = nullptr;
    vexa::widgets::PushButton* refreshButton = nullptr;
    vexa::widgets::PushButton* cancelButton = nullptr;
    vexa::widgets::PushButton* confirmButton = nullptr;
    bool nameRepeatGuard = false;
    // The subscription to the manager's sender lists.
    RelaySubscription<NdiSourcesRelay> subscription;
    // A list that arrived while a row's notice was open waits here for the notice to close,
    // so that the row is not destroyed under its own notice.
    std::optional<std::vector<STResourceRenamedModel>> pendingModels;

public Q_SLOTS:
    void onSelectAllChecked(bool isChecked);
    void onRefreshClicked();
    void onConfirmClicked();
    void slotReceiverNameChanged(const QString& ip, const QString& name);
    void slotItemSelectChanged();
    bool slotCheckReceiverNameRepeated(const QString& ip, const QString& name);
    void slotNameRepeate();
    void updateList(const std::vector<STResourceRenamedModel>& models);

protected:
    // Space on the list ticks the current row.
    bool eventFilter(QObject* watched, QEvent* event) override;
};

NdiDialog::Impl::Impl(NdiDialog* owner)
    : q(owner)
{
    // The manager's sender lists arrive here from the runtime thread.
    QueuedHandoff::watch(this);
}

NdiDialog::Impl::~Impl()
{
    subscription.drop();
}

void NdiDialog::Impl::build()
{
    q->setObjectName(QStringLiteral("ndiDialog"));
    q->setFixedWidth(dialogWidth);
    QWidget* const content = q->dialogWidget();

    selectAllButton = new vexa::widgets::PushButton(content);
    selectAllButton->setObjectName(QStringLiteral("ndiSelectAllBtn"));
    selectAllButton->setFixedSize(checkSide, checkSide);
    selectAllButton->setCheckable(true);
    selectAllButton->setAutoDefault(false);
    selectAllButton->setProperty("checkStyle", QStringLiteral("checked"));

    ipHeader = new QLabel(content);
    ipHeader->setObjectName(QStringLiteral("ndiIpHeader"));
    ipHeader->setFixedWidth(ipWidth);
    senderHeader = new QLabel(content);
    senderHeader->setObjectName(QStringLiteral("ndiSenderHeader"));
    senderHeader->setFixedWidth(nameWidth);
    senderHeader->setAlignment(Qt::AlignCenter);
    receiverHeader = new QLabel(content);
    receiverHeader->setObjectName(QStringLiteral("ndiReceiverHeader"));
    receiverHeader->setFixedWidth(nameWidth);
    receiverHeader->setAlignment(Qt::AlignCenter);
    stateHeader = new QLabel(content);
    stateHeader->setObjectName(QStringLiteral("ndiStateHeader"));
    stateHeader->setAlignment(Qt::AlignCenter);
    stateHeader->setProperty("fontSize", QStringLiteral("M"));

    auto* const headerRow = new QHBoxLayout;
    headerRow->setContentsMargins(headerMargin, headerMargin, headerMargin, headerMargin);
    headerRow->setSpacing(headerSpacing);
    headerRow->addWidget(selectAllButton);
    headerRow->addWidget(ipHeader);
    headerRow->addWidget(senderHeader);
    headerRow->addWidget(receiverHeader);
    headerRow->addWidget(stateHeader);

    list = new QListWidget(content);
    list->setObjectName(QStringLiteral("ndiList"));
    list->setFixedHeight(listHeight);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->installEventFilter(this);

    statusLabel = new QLabel(content);
    statusLabel->setObjectName(QStringLiteral("ndiStatusLabel"));
    statusLabel->setAlignment(Qt::AlignCenter);
    statusLabel->setProperty("style", QStringLiteral("grayHint"));

    const auto makeButton = [content](const char* name, const char* style) {
        auto* const button = new vexa::widgets::PushButton(content);
        button->setObjectName(QLatin1String(name));
        button->setProperty("style", QLatin1String(style));
        button->setFixedHeight(buttonHeight);
        button->setAutoDefault(false);
        return button;
    };
    refreshButton = makeButton("ndiRefreshBtn", "assist");
    cancelButton = makeButton("ndiCancelBtn", "assist");
    confirmButton = makeButton("ndiConfirmBtn", "general");
    // Enter confirms, wherever the focus is.
    confirmButton->setDefault(true);

    auto* const buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(0, 0, 0, 0);
    buttonRow->setSpacing(buttonSpacing);
    buttonRow->addStretch();
    buttonRow->addWidget(refreshButton);
    buttonRow->addWidget(cancelButton);
    buttonRow->addWidget(confirmButton);
    buttonRow->addStretch();

    auto* const mainLayout = new QVBoxLayout(content);
    mainLayout->setContentsMargins(contentMargin, contentMargin, contentMargin, contentMargin);
    mainLayout->setSpacing(0);
    mainLayout->addLayout(headerRow);
    mainLayout->addWidget(list);
    mainLayout->addSpacing(statusSpacing);
    mainLayout->addWidget(statusLabel);
    mainLayout->addSpacing(buttonsSpacing);
    mainLayout->addLayout(buttonRow);
}

void NdiDialog::Impl::connectWidgets()
{
    connect(selectAllButton, &QPushButton::clicked, this, &Impl::onSelectAllChecked);
    connect(refreshButton, &QPushButton::clicked, this, &Impl::onRefreshClicked);
    connect(cancelButton, &QPushButton::clicked, q, &QWidget::close);
    connect(confirmButton, &QPushButton::clicked, this, &Impl::onConfirmClicked);
}

void NdiDialog::Impl::setStatus(const char* key, const char* style)
{
    vexa::widgets::setStyleProperty(statusLabel, "style", QLatin1String(style));
    statusLabel->setText(trKey(key));
}

void NdiDialog::Impl::updateNDIDeviceInfo()
{
    manager.send(VEXA_HERE, "updateNDIDeviceInfo",
                 [](IInputSourceMgr& mgr) { mgr.refreshNdiSources(); });
}

NdiListItem* NdiDialog::Impl::rowAt(int index) const
{
    return qobject_cast<NdiListItem*>(list->itemWidget(list->item(index)));
}

std::vector<NdiListItem*> NdiDialog::Impl::rows() const
{
    std::vector<NdiListItem*> found;
    found.reserve(static_cast<std::size_t>(list->count()));
    for (int index = 0; index < list->count(); ++index) {
        if (NdiListItem* const row = rowAt(index)) {
            found.push_back(row);
        }
    }
    return found;
}

void NdiDialog::Impl::clearRows()
{
    // A row's edit that loses the focus as the row goes must not rename or ask anything.
    for (NdiListItem* const row : rows()) {
        row->retire();
    }
    list->clear();
}

void NdiDialog::Impl::walkEditsWithTab(const std::vector<NdiListItem*>& all)
{
    // New rows join the end of the window's focus chain, in list order; Tab goes from the list
    // through the receiver names, then to the buttons. Only the ends are moved: moving every
    // name would leave the rest of its row behind, and Qt walks past all of that (widgets
    // taking no focus) for each name moved after it.
    QWidget* last = list;
    if (!all.empty()) {
        QWidget::setTabOrder(list, tabStopOf(*all.front()));
        last = tabStopOf(*all.back());
    }
    QWidget::setTabOrder(last, refreshButton);
    QWidget::setTabOrder(refreshButton, cancelButton);
    QWidget::setTabOrder(cancelButton, confirmButton);
}

void NdiDialog::Impl::onSelectAllChecked(bool isChecked)
{
    vexa::widgets::setStyleProperty(selectAllButton, "checkStyle", QStringLiteral("checked"));
    for (NdiListItem* const row : rows()) {
        if (!row->isAdded()) {
            row->setChecked(isChecked);
        }
    }
}

void NdiDialog::Impl::onRefreshClicked()
{
    updateNDIDeviceInfo();
    setStatus("NDIRefreshing", "grayHint");
    statusLabel->show();
}

void NdiDialog::Impl::onConfirmClicked()
{
    // An edit being typed in ends first, and may be refused.
    q->setFocus(Qt::OtherFocusReason);
    if (nameRepeatGuard) {
        return;
    }
    const std::shared_ptr<IInputSourceMgr> mgr = manager.lock(VEXA_HERE);
    if (mgr == nullptr) {
        return;
    }
    std::vector<STInputSource> sources;
    for (NdiListItem* const row : rows()) {
        if (row->isAdded() || !row->isChecked()) {
            continue;
        }
        STInputSource source;
        source.sourceType = quandel::resource::toCode(EnResourceType::NdiSource);
        source.name = row->receiverName().toStdString();
        source.address = row->ipAddress().toStdString();
        sources.push_back(std::move(source));
    }
    manager.call(VEXA_HERE, "onConfirmClicked",
                 [mgr, sources = std::move(sources)] { mgr->addInputSources(sources); });
    q->close();
}

void NdiDialog::Impl::slotReceiverNameChanged(const QString& ip, const QString& name)
{
    STResourceRenamedModel model;
    model.ipAddress = ip.toStdString();
    model.name = name.toStdString();
    manager.send(
        VEXA_HERE, "slotReceiverNameChanged",
        [model = std::move(model)](IInputSourceMgr& mgr) { mgr.renameNdiReceiver(model); });
}

void NdiDialog::Impl::slotItemSelectChanged()
{
    bool some = false;
    bool all = true;
    for (NdiListItem* const row : rows()) {
        if (row->isAdded()) {
            continue;
        }
        some = some || row->isChecked();
        all = all && row->isChecked();
    }
    if (!all && some) {
        vexa::widgets::setStyleProperty(selectAllButton, "checkStyle",
                                        QStringLiteral("halfChecked"));
        selectAllButton->setChecked(true);
    } else if (!all) {
        selectAllButton->setChecked(false);
    } else {
        vexa::widgets::setStyleProperty(selectAllButton, "checkStyle", QStringLiteral("checked"));
        // Without a selectable row there is nothing to show as ticked.
        selectAllButton->setChecked(some);
    }
    vexa::widgets::repolish(selectAllButton);
}

bool NdiDialog::Impl::slotCheckReceiverNameRepeated(const QString& ip, const QString& name)
{
    for (NdiListItem* const row : rows()) {
        if (row->ipAddress() != ip && row->receiverName() == name) {
            return true;
        }
    }
    const std::shared_ptr<IInputSourceMgr> mgr = manager.lock(VEXA_HERE);
    if (mgr == nullptr) {
        return false;
    }
    return manager.call(VEXA_HERE, "slotCheckReceiverNameRepeated",
                        [mgr, wanted = name.toStdString()] { return mgr->isNameRepeated(wanted); });
}

void NdiDialog::Impl::slotNameRepeate()
{
    nameRepeatGuard = true;
    QTimer::singleShot(nameRepeatGuardMs, this, [this] { nameRepeatGuard = false; });
    if (pendingModels.has_value()) {
        // Later than now: the row that told the operator is still on the stack.
        QTimer::singleShot(0, this, [this] { applyPendingList(); });
    }
}

void NdiDialog::Impl::applyPendingList()
{
    if (!pendingModels.has_value()) {
        return;
    }
    std::vector<STResourceRenamedModel> models = std::move(*pendingModels);
    pendingModels.reset();
    updateList(models);
}

void NdiDialog::Impl::updateList(const std::vector<STResourceRenamedModel>& models)
{
    const std::vector<NdiListItem*> previous = rows();
    for (NdiListItem* const row : previous) {
        if (row->isNoticeOpen()) {
            pendingModels = models;
            return;
        }
    }
    // Discovery goes on while the dialog is open: what the operator ticked, named or is typing
    // survives a new list of the same senders.
    std::map<QString, NdiListItem::OperatorState> kept;
    for (NdiListItem* const row : previous) {
        kept.emplace(row->ipAddress(), row->operatorState());
    }
    clearRows();
    selectAllButton->setChecked(false);

    // Every item is in the list before any has its row: once items have widgets, each item the
    // shown list gains has it lay out all items and place all their widgets again.
    for (std::size_t index = 0; index < models.size(); ++index) {
        new QListWidgetItem(list);
    }
    std::vector<NdiListItem*> created;
    created.reserve(models.size());
    bool anyTicked = false;
    NdiListItem* resumed = nullptr;
    const NdiListItem::OperatorState* resumedState = nullptr;
    for (const STResourceRenamedModel& model : models) {
        QListWidgetItem* const item = list->item(static_cast<int>(created.size()));
        auto* const row = new NdiListItem(list);
        row->setRenamedModel(model);
        const auto found = kept.find(row->ipAddress());
        if (found != kept.end()) {
            row->adoptOperatorState(found->second);
            anyTicked = anyTicked || (row->isChecked() && !row->isAdded());
            if (found->second.editing) {
                resumed = row;
                resumedState = &found->second;
            }
        }
        // The row's layout asks for less than its fixed height of 36.
        item->setSizeHint(
            row->sizeHint().expandedTo(row->minimumSize()).boundedTo(row->maximumSize()));
        list->setItemWidget(item, row);
        connect(row, &NdiListItem::signalReceiverNameChanged, this, &Impl::slotReceiverNameChanged);
        connect(row, &NdiListItem::signalSelectChanged, this, &Impl::slotItemSelectChanged);
        connect(row, &NdiListItem::signalReceiverNameIsRepeated, this,
                &Impl::slotCheckReceiverNameRepeated);
        connect(row, &NdiListItem::signalNameRepeate, this, &Impl::slotNameRepeate);
        created.push_back(row);
    }
    // Placed now rather than on the list's next turn: until then every new row sits at the top,
    // over all the others, and painting them there costs each row all the rows after it.
    list->doItemsLayout();
    if (anyTicked) {
        slotItemSelectChanged();
    }
    walkEditsWithTab(created);
    if (resumed != nullptr) {
        list->scrollToItem(list->item(static_cast<int>(
            std::find(created.begin(), created.end(), resumed) - created.begin())));
        resumed->resumeEdit(*resumedState);
    }
    setStatus("NDIRefreshed", "greenHint");
}

bool NdiDialog::Impl::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == list && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
        NdiListItem* const row = rowAt(list->currentRow());
        auto* const check =
            row == nullptr
                ? nullptr
                : row->findChild<vexa::widgets::PushButton*>(QStringLiteral("ndiCheckBtn"));
        if (check != nullptr && check->isEnabled()) {
            // As a click: the select-all button follows.
            check->click();
        }
        return true;
    }
    return QObject::eventFilter(watched, event);
}

NdiDialog::NdiDialog(QWidget* parent)
    : vexa::widgets::Dialog(parent)
    , d(std::make_unique<Impl>(this))
{
    registerMetaTypes();
    d->build();
    d->connectWidgets();
    translateLanguage();
}

NdiDialog::~NdiDialog() = default;

void NdiDialog::setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr, quandel::IZQRuntime* runtime)
{
    // Whatever comes of the new binding, the previous manager's lists are followed no longer.
    d->subscription.drop();
    d->manager.setManager(std::move(mgr));
    d->manager.setRuntime(runtime);
    std::shared_ptr<IInputSourceMgr> locked = d->manager.lock(VEXA_HERE);
    if (locked == nullptr) {
        return;
    }
    d->subscription.subscribe(d->manager, VEXA_HERE, std::move(locked),
                              std::make_shared<NdiSourcesRelay>(d.get()));
}

void NdiDialog::unsetInputSourceMgr()
{
    std::shared_ptr<IInputSourceMgr> locked = d->manager.lock(VEXA_HERE);
    if (locked != nullptr) {
        d->manager.call(VEXA_HERE, "unsetInputSourceMgr",
                        [connection = d->subscription.takeConnection(),
                         locked = std::move(locked)]() mutable { connection.disconnect(); });
    }
    d->subscription.drop();
    d->manager.reset();
}

void NdiDialog::translateLanguage()
{
    setTitle(trKey("AddNdiMedia"));
    d->ipHeader->setText(trKey("IPAddress"));
    d->senderHeader->setText(trKey("NdiSenderName"));
    d->receiverHeader->setText(trKey("ReceiverName"));
    d->stateHeader->setText(trKey("State"));
    d->statusLabel->setText(trKey("NDIRefreshed"));
    d->refreshButton->setText(trKey("Refresh"));
    d->cancelButton->setText(trKey("Cancel"));
    d->confirmButton->setText(trKey("OK"));
    d->selectAllButton->setAccessibleName(trKey("SelectAll"));
    for (NdiListItem* const row : d->rows()) {
        row->translateLanguage();
    }
}

void NdiDialog::showEvent(QShowEvent* event)
{
    d->pendingModels.reset();
    d->clearRows();
    d->setStatus("NDIRefreshing", "grayHint");
    d->updateNDIDeviceInfo();
    d->selectAllButton->setChecked(false);
    vexa::widgets::Dialog::showEvent(event);
}

void NdiDialog::closeEvent(QCloseEvent* event)
{
    setFocus(Qt::OtherFocusReason);
    if (d->nameRepeatGuard) {
        event->ignore();
        return;
    }
    vexa::widgets::Dialog::closeEvent(event);
}

} // namespace vexa::inputsource

#include "ndidialog.moc"
