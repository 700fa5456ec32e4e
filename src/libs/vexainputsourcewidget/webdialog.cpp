// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/webdialog.h>

#include "accessiblenames.h"
#include "loadwatch.h"
#include "manageraccess.h"
#include "namenotice.h"
#include "queuedhandoff.h"
#include "relaysubscription.h"
#include "systemmonitor.h"
#include "tabitemwidget.h"
#include "trkey.h"
#include "webinforelay.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>
#include <vexainputsourcewidget/stinputsource.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/imsgcentermgr.h>
#include <quandel/msgcenter/stmessage.h>
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <zqctuils/indexgenerator.h>

#include <QApplication>
#include <QColor>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace vexa::inputsource {

namespace {

using quandel::resource::EnResourceType;

constexpr int dialogWidth = 500;
constexpr int contentMargin = 28;
constexpr int contentSpacing = 8;
constexpr int rowSpacing = 8;
constexpr int labelWidth = 60;
constexpr int nameMaxLength = 20;
constexpr int tabHeaderSpacing = 6;
constexpr int addTabHeight = 20;
constexpr int listWidth = 444;
constexpr int listHeight = 178;
constexpr int buttonHeight = 28;
constexpr int buttonSpacing = 12;
constexpr int buttonTopMargin = 12;
constexpr int tabRowHeight = 36;
constexpr int loadWatchMs = 5000;

constexpr int nativeMode = 0;
constexpr int screenshotMode = 1;
constexpr int screenshotEntry = 1;
// QStandardItemModel keeps an entry's flags under the role below the first user role.
constexpr int itemEnableRole = Qt::UserRole - 1;
constexpr int screenshotWidth = 1600;
constexpr int screenshotHeight = 900;

const char* const unsupportedCaptureText = "current system does not supported WGC!!!";
const char* const managerGoneText = "inputSourceMgr is nullptr";

} // namespace

class WebDialog::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(WebDialog* q);
    ~Impl() override;

    void build();
    void connectWidgets();
    void applyCaptureSupport();

    // Tabs.
    std::vector<TabItemWidget*> rows() const;
    int rowOf(const TabItemWidget* row) const;
    void appendTab(int tabIndex, const QString& name, const QString& address);
    void appendDefaultTab();
    void clearTabs();
    void deleteTab(TabItemWidget* row);
    void updateTabCount();
    void walkFieldsWithTab();
    void markRepeatedTabNames();
    bool hasRepeatedTabNames() const;
    TabItemWidget* currentTab() const;

    void fill(const STWebDescription& description);
    STWebDescription collect() const;
    void postLoadWarning(LoadWatch::Resource resource);

    WebDialog* const q;
    ManagerAccess manager;
    quandel::msgcenter::IMsgCenterMgr* msgCenter = nullptr;
    uint64_t id = 0;
    bool edit = false;
    // The name the dialog was filled with: only a changed name is checked.
    QString openedName;
    int currentTabIndex = 1;
    QString languageCode;
    QString chineseHomePage = QStringLiteral("https://www.baidu.com");
    QString otherHomePage = QStringLiteral("https://www.google.com");

    QLabel* nameLabel = nullptr;
    vexa::widgets::EditBox* nameEdit = nullptr;
    QLabel* modeLabel = nullptr;
    vexa::widgets::ComboBox* modeBox = nullptr;
    QLabel* tabCaption = nullptr;
    QLabel* tabCounter = nullptr;
    vexa::widgets::PushButton* addTabButton = nullptr;
    QListWidget* tabList = nullptr;
    vexa::widgets::PushButton* cancelButton = nullptr;
    vexa::widgets::PushButton* okButton = nullptr;
    QTimer* loadWatchTimer = nullptr;

    // The rows by tab index, and how many there are.
    std::map<int, TabItemWidget*> tabs;
    int tabCount = 0;
    // The highest tab index given since the dialog was filled: new tabs take the next one, so
    // no index is reused within one opening.
    int lastTabIndex = 0;

    // Readings and thresholds arrive from the runtime thread through the relay.
    const std::shared_ptr<LoadWatch> loadWatch = std::make_shared<LoadWatch>();
    RelaySubscription<WebInfoRelay> subscription;
    bool captureWarned = false;

public Q_SLOTS:
    void onOkBtnClicked();
    void onAddTabClicked();
    bool slotTabNameIsRepeated(const QString& name);
    void onLoadWatchTimeout();
    void doWebInfoChanged(const STWebOperation& operation);
    void doSameNativeWebOnPatchs(const STWebOperation& operation);

protected:
    // Escape closes the dialog from every field; a tab field taking the focus is scrolled
    // into view.
    bool eventFilter(QObject* watched, QEvent* event) override;
};

WebDialog::Impl::Impl(WebDialog* owner)
    : q(owner)
{
    // Changed descriptions and notices arrive here from the runtime thread.
    QueuedHandoff::watch(this);
}

WebDialog::Impl::~Impl()
{
    subscription.drop();
    // The buttons and the timer outlive this object by a moment: their children go with the
    // dialog's base class.
    loadWatchTimer->stop();
    QObject::disconnect(loadWatchTimer, nullptr, this, nullptr);
    QObject::disconnect(cancelButton, nullptr, q, nullptr);
    QObject::disconnect(okButton, nullptr, this, nullptr);
    QObject::disconnect(addTabButton, nullptr, this, nullptr);
    for (TabItemWidget* const row : rows()) {
        row->blockSignals(true);
    }
}

void WebDialog::Impl::build()
{
    q->setObjectName(QStringLiteral("webDialog"));
    q->setFixedWidth(dialogWidth);
    QWidget* const content = q->dialogWidget();

    nameLabel = new QLabel(content);
    nameLabel->setObjectName(QStringLiteral("webNameLabel"));
    nameLabel->setFixedWidth(labelWidth);
    nameEdit = new vexa::widgets::EditBox(content);
    nameEdit->setObjectName(QStringLiteral("webNameEdit"));
    nameEdit->setProperty("style", QStringLiteral("lineEdit"));
    nameEdit->setMaxLength(nameMaxLength);
    nameEdit->setCanRestoreText(true);
    nameLabel->setBuddy(nameEdit);

    modeLabel = new QLabel(content);
    modeLabel->setObjectName(QStringLiteral("webModeLabel"));
    modeLabel->setFixedWidth(labelWidth);
    modeBox = new vexa::widgets::ComboBox(content);
    modeBox->setObjectName(QStringLiteral("webModeBox"));
    modeBox->addItem(QString(), nativeMode);
    modeBox->addItem(QString(), screenshotMode);
    modeLabel->setBuddy(modeBox);

    tabCaption = new QLabel(content);
    tabCaption->setObjectName(QStringLiteral("webTabCaption"));
    tabCounter = new QLabel(QStringLiteral("(0/%1)").arg(maxTabCount), content);
    tabCounter->setObjectName(QStringLiteral("webTabCounter"));
    addTabButton = new vexa::widgets::PushButton(content);
    addTabButton->setObjectName(QStringLiteral("addTabBtn"));
    addTabButton->setFixedHeight(addTabHeight);
    addTabButton->setProperty("style", QStringLiteral("general"));

    tabList = new QListWidget(content);
    tabList->setObjectName(QStringLiteral("tabListWidget"));
    tabList->setFixedSize(listWidth, listHeight);
    tabList->setSelectionMode(QAbstractItemView::NoSelection);
    tabList->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    // Tab goes through the fields of the rows, not through the list.
    tabList->setFocusPolicy(Qt::NoFocus);

    cancelButton = new vexa::widgets::PushButton(content);
    cancelButton->setObjectName(QStringLiteral("webCancelBtn"));
    cancelButton->setProperty("style", QStringLiteral("assist"));
    cancelButton->setFixedHeight(buttonHeight);
    okButton = new vexa::widgets::PushButton(content);
    okButton->setObjectName(QStringLiteral("webOkBtn"));
    okButton->setProperty("style", QStringLiteral("general"));
    okButton->setFixedHeight(buttonHeight);
    // Enter anywhere in the dialog confirms, unless the focus is on another button.
    okButton->setDefault(true);

    auto* const nameRow = new QHBoxLayout;
    nameRow->setContentsMargins(0, 0, 0, 0);
    nameRow->setSpacing(rowSpacing);
    nameRow->addWidget(nameLabel);
    nameRow->addWidget(nameEdit);

    auto* const modeRow = new QHBoxLayout;
    modeRow->setContentsMargins(0, 0, 0, 0);
    modeRow->setSpacing(rowSpacing);
    modeRow->addWidget(modeLabel);
    modeRow->addWidget(modeBox);

    auto* const tabHeader = new QHBoxLayout;
    tabHeader->setSpacing(tabHeaderSpacing);
    tabHeader->addWidget(tabCaption);
    tabHeader->addWidget(tabCounter);
    tabHeader->addStretch();
    tabHeader->addWidget(addTabButton);

    auto* const buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(0, buttonTopMargin, 0, 0);
    buttonRow->setSpacing(buttonSpacing);
    buttonRow->addStretch();
    buttonRow->addWidget(cancelButton);
    buttonRow->addWidget(okButton);
    buttonRow->addStretch();

    auto* const layout = new QVBoxLayout(content);
    layout->setContentsMargins(contentMargin, contentMargin, contentMargin, contentMargin);
    layout->setSpacing(contentSpacing);
    layout->addLayout(nameRow);
    layout->addLayout(modeRow);
    layout->addLayout(tabHeader);
    layout->addWidget(tabList);
    layout->addLayout(buttonRow);
    layout->addStretch();

    nameEdit->focusProxy()->installEventFilter(this);

    loadWatchTimer = new QTimer(q);
    loadWatchTimer->setObjectName(QStringLiteral("loadWatchTimer"));
    loadWatchTimer->setInterval(loadWatchMs);
}

void WebDialog::Impl::connectWidgets()
{
    connect(cancelButton, &QPushButton::clicked, q, &QWidget::close);
    connect(okButton, &QPushButton::clicked, this, &Impl::onOkBtnClicked);
    connect(addTabButton, &QPushButton::clicked, this, &Impl::onAddTabClicked);
    connect(loadWatchTimer, &QTimer::timeout, this, &Impl::onLoadWatchTimeout);
}

void WebDialog::Impl::applyCaptureSupport()
{
    const bool supported = IsSupportedWGC();
    if (!supported && !captureWarned) {
        captureWarned = true;
        VEXA_WARNING(unsupportedCaptureText);
    }
    // Enabling again drops the entry's own flags, so it has the model's default ones.
    modeBox->setItemData(screenshotEntry, supported ? QVariant() : QVariant(0), itemEnableRole);
    modeBox->setItemData(screenshotEntry, supported ? QVariant() : QVariant(trKey("NotUseWGC")),
                         Qt::ToolTipRole);
    modeBox->setItemData(screenshotEntry, supported ? QVariant() : QVariant(QColor(91, 91, 91)),
                         Qt::ForegroundRole);
}

std::vector<TabItemWidget*> WebDialog::Impl::rows() const
{
    std::vector<TabItemWidget*> found;
    found.reserve(static_cast<std::size_t>(tabList->count()));
    for (int index = 0; index < tabList->count(); ++index) {
        if (auto* const row =
                qobject_cast<TabItemWidget*>(tabList->itemWidget(tabList->item(index)))) {
            found.push_back(row);
        }
    }
    return found;
}

int WebDialog::Impl::rowOf(const TabItemWidget* row) const
{
    for (int index = 0; index < tabList->count(); ++index) {
        if (tabList->itemWidget(tabList->item(index)) == row) {
            return index;
        }
    }
    return -1;
}

void WebDialog::Impl::appendTab(int tabIndex, const QString& name, const QString& address)
{
    auto* const item = new QListWidgetItem(tabList);
    auto* const row = new TabItemWidget(tabIndex, name, address, tabList);
    item->setSizeHint(QSize(0, tabRowHeight));
    tabList->setItemWidget(item, row);
    tabs[tabIndex] = row;
    ++tabCount;
    lastTabIndex = std::max(lastTabIndex, tabIndex);

    // Queued: the row is destroyed by the call, and its button is still in its click then.
    connect(
        row, &TabItemWidget::sigDeleteBtnClicked, this,
        [this, row = QPointer<TabItemWidget>(row)] {
            if (!row.isNull()) {
                deleteTab(row);
            }
        },
        Qt::QueuedConnection);
    connect(row, &TabItemWidget::sigNameIsRepeated, this, &Impl::slotTabNameIsRepeated);
    row->nameEditor()->installEventFilter(this);
    row->addressEditor()->installEventFilter(this);
}

void WebDialog::Impl::appendDefaultTab()
{
    QStringList names;
    for (const TabItemWidget* const row : rows()) {
        names << row->name();
    }
    const QString prefix = trKey("WebTab");
    appendTab(lastTabIndex + 1,
              prefix + QString::number(zqctuils::IndexGenerator::generateIndex(names, prefix)),
              q->homePageFor(languageCode));
}

void WebDialog::Impl::clearTabs()
{
    const std::vector<TabItemWidget*> all = rows();
    for (TabItemWidget* const row : all) {
        // Its fields may not finish an edit as they go.
        row->blockSignals(true);
    }
    tabList->clear();
    for (TabItemWidget* const row : all) {
        delete row;
    }
    tabs.clear();
    tabCount = 0;
    lastTabIndex = 0;
}

void WebDialog::Impl::deleteTab(TabItemWidget* row)
{
    // The last tab cannot go, also when several delete clicks were queued at once.
    if (tabCount <= 1) {
        return;
    }
    const int position = rowOf(row);
    if (position < 0) {
        return;
    }
    // An edit under way in the row ends while the row is whole.
    if (row->isAncestorOf(QApplication::focusWidget())) {
        q->setFocus(Qt::OtherFocusReason);
    }
    row->blockSignals(true);
    QListWidgetItem* const item = tabList->takeItem(position);
    tabs.erase(row->tabIndex());
    delete row;
    delete item;
    --tabCount;
    updateTabCount();
    walkFieldsWithTab();
    markRepeatedTabNames();
}

void WebDialog::Impl::updateTabCount()
{
    if (tabCount == 0) {
        return;
    }
    for (TabItemWidget* const row : rows()) {
        row->setDeleteEnabled(tabCount > 1);
    }
    addTabButton->setEnabled(tabCount < maxTabCount);
    tabCounter->setText(QStringLiteral("(%1/%2)").arg(tabCount).arg(maxTabCount));
}

void WebDialog::Impl::walkFieldsWithTab()
{
    // New rows join the end of the window's focus chain; Tab goes from the name and the mode
    // through each tab's name and address in list order, then to the buttons.
    QWidget* previous = modeBox;
    QWidget::setTabOrder(nameEdit->focusProxy(), modeBox);
    int position = 0;
    for (TabItemWidget* const row : rows()) {
        row->setPosition(++position);
        QWidget::setTabOrder(previous, row->nameEditor());
        QWidget::setTabOrder(row->nameEditor(), row->addressEditor());
        previous = row->addressEditor();
    }
    QWidget::setTabOrder(previous, addTabButton);
    QWidget::setTabOrder(addTabButton, cancelButton);
    QWidget::setTabOrder(cancelButton, okButton);
}

void WebDialog::Impl::markRepeatedTabNames()
{
    std::map<QString, int> uses;
    const std::vector<TabItemWidget*> all = rows();
    for (const TabItemWidget* const row : all) {
        ++uses[row->name()];
    }
    for (TabItemWidget* const row : all) {
        row->setNameRepeated(uses[row->name()] > 1);
    }
}

bool WebDialog::Impl::hasRepeatedTabNames() const
{
    std::set<QString> seen;
    for (const TabItemWidget* const row : rows()) {
        if (!seen.insert(row->name()).second) {
            return true;
        }
    }
    return false;
}

TabItemWidget* WebDialog::Impl::currentTab() const
{
    // The tab with the highest index not above the current one, else the first row.
    const auto above = tabs.upper_bound(currentTabIndex);
    if (above != tabs.begin()) {
        return std::prev(above)->second;
    }
    const std::vector<TabItemWidget*> all = rows();
    return all.empty() ? nullptr : all.front();
}

void WebDialog::Impl::fill(const STWebDescription& description)
{
    openedName = QString::fromStdString(description.name);
    nameEdit->setText(openedName);
    modeBox->setCurrentIndex(std::max(0, modeBox->findData(description.webMode)));
    clearTabs();
    for (const STWebTab& tab : description.webTabs) {
        // A record whose index is missing or repeated still becomes a tab of its own.
        const int index =
            tab.tabIndex > 0 && tabs.count(tab.tabIndex) == 0 ? tab.tabIndex : lastTabIndex + 1;
        appendTab(index, QString::fromStdString(tab.name), QString::fromStdString(tab.url));
    }
    if (tabCount == 0) {
        appendDefaultTab();
    }
    currentTabIndex = description.currentTabIndex;
    updateTabCount();
    walkFieldsWithTab();
    markRepeatedTabNames();
    tabList->scrollToTop();
}

STWebDescription WebDialog::Impl::collect() const
{
    STWebDescription description;
    description.name = nameEdit->text().toStdString();
    description.webName = description.name;
    description.webMode = modeBox->currentData().toInt();
    for (const TabItemWidget* const row : rows()) {
        description.webTabs.push_back(row->tab());
    }
    if (const TabItemWidget* const current = currentTab()) {
        description.currentTabIndex = current->tabIndex();
        description.address = current->address().toStdString();
    }
    return description;
}

void WebDialog::Impl::onOkBtnClicked()
{
    // An edit being typed in ends first.
    q->setFocus(Qt::OtherFocusReason);
    const QString name = nameEdit->text();
    if (name != openedName) {
        const QPointer<WebDialog> alive(q);
        const bool repeated = Q_EMIT q->signalNameEditIsRepeated(name);
        // The answer may have run a notice, in which anything could have happened.
        if (repeated || alive.isNull() || !q->isVisible()) {
            return;
        }
    }
    if (hasRepeatedTabNames()) {
        NameNotice::show(this, vexa::widgets::TipDialog::Warning);
        return;
    }
    const std::shared_ptr<IInputSourceMgr> mgr = manager.lock(VEXA_HERE, managerGoneText);
    if (mgr == nullptr) {
        q->close();
        return;
    }
    const STWebDescription description = collect();
    if (edit) {
        STWebOperation operation;
        operation.kind = 1;
        operation.code = STWebOperation::WebDescriptionChanged;
        operation.id = id;
        operation.webDescription = description;
        manager.call(VEXA_HERE, "onOkBtnClicked",
                     [mgr, operation = std::move(operation)] { mgr->webOperation(operation); });
    } else {
        STInputSource source;
        source.sourceType = quandel::resource::toCode(EnResourceType::WebPage);
        source.name = description.name;
        source.webName = description.webName;
        source.address = description.address;
        source.currentTabIndex = description.currentTabIndex;
        source.webMode = description.webMode;
        source.webTabs = description.webTabs;
        if (description.webMode == screenshotMode) {
            source.resolutionWidth = screenshotWidth;
            source.resolutionHeight = screenshotHeight;
        }
        manager.call(VEXA_HERE, "onOkBtnClicked",
                     [mgr, sources = std::vector<STInputSource>{std::move(source)}] {
                         mgr->addInputSources(sources);
                     });
    }
    q->close();
}

void WebDialog::Impl::onAddTabClicked()
{
    if (tabCount >= maxTabCount) {
        return;
    }
    appendDefaultTab();
    updateTabCount();
    walkFieldsWithTab();
    markRepeatedTabNames();
    tabList->scrollToBottom();
}

bool WebDialog::Impl::slotTabNameIsRepeated(const QString& name)
{
    markRepeatedTabNames();
    const std::vector<TabItemWidget*> all = rows();
    return std::count_if(all.begin(), all.end(),
                         [&name](const TabItemWidget* row) { return row->name() == name; }) > 1;
}

void WebDialog::Impl::onLoadWatchTimeout()
{
    for (const LoadWatch::Resource resource : loadWatch->tick()) {
        postLoadWarning(resource);
    }
}

void WebDialog::Impl::postLoadWarning(LoadWatch::Resource resource)
{
    if (msgCenter == nullptr) {
        return;
    }
    QString text;
    switch (resource) {
    case LoadWatch::Cpu:
        text = trKey("CpuExceedsTheThreshold");
        break;
    case LoadWatch::Gpu:
        text = trKey("GpuExceedsTheThreshold");
        break;
    case LoadWatch::Memory:
        text = trKey("MemoryExceedsTheThreshold");
        break;
    }
    quandel::msgcenter::STMessage message;
    // Fixed figures, whatever the thresholds: six ticks of five seconds, the usual limit.
    message.text = text.arg(QStringLiteral("30"), QStringLiteral("85%"));
    message.level = quandel::msgcenter::STMessage::Warning;
    // Until the next tick, which posts again while the load stays high.
    message.displayMs = loadWatchTimer->interval();
    const QStringList monitor = SystemMonitor::command();
    // No button that would do nothing.
    if (!monitor.isEmpty()) {
        message.action.label = trKey("GoCheck");
        message.action.callback = [monitor] { SystemMonitor::start(monitor); };
    }
    msgCenter->postMessage(message);
}

void WebDialog::Impl::doWebInfoChanged(const STWebOperation& operation)
{
    // The dialog may have been filled for another source since the notification was queued.
    if (!edit || operation.id != id) {
        return;
    }
    fill(operation.webDescription);
}

void WebDialog::Impl::doSameNativeWebOnPatchs(const STWebOperation&)
{
    if (msgCenter == nullptr) {
        return;
    }
    quandel::msgcenter::STMessage message;
    message.text = trKey("SameNativeWebOnPatchs");
    message.level = quandel::msgcenter::STMessage::Notice;
    message.displayMs = -1;
    msgCenter->postMessage(message);
}

bool WebDialog::Impl::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        // At once, also from a field whose typing the edit box would otherwise undo first: the
        // next opening starts afresh anyway.
        q->close();
        return true;
    }
    if (event->type() == QEvent::FocusIn) {
        for (int index = 0; index < tabList->count(); ++index) {
            QWidget* const row = tabList->itemWidget(tabList->item(index));
            if (row != nullptr && row->isAncestorOf(qobject_cast<QWidget*>(watched))) {
                tabList->scrollToItem(tabList->item(index));
                break;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

WebDialog::WebDialog(QWidget* parent)
    : vexa::widgets::Dialog(parent)
    , d(std::make_unique<Impl>(this))
{
    registerMetaTypes();
    d->build();
    d->connectWidgets();
    translateLanguage();
    d->loadWatchTimer->start();
}

WebDialog::~WebDialog() = default;

void WebDialog::setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr, quandel::IZQRuntime* runtime)
{
    // Whatever comes of the new binding, the previous manager is followed no longer.
    d->subscription.drop();
    d->manager.setManager(std::move(mgr));
    d->manager.setRuntime(runtime);
    std::shared_ptr<IInputSourceMgr> locked = d->manager.lock(VEXA_HERE, managerGoneText);
    if (locked == nullptr) {
        return;
    }
    auto relay = std::make_shared<WebInfoRelay>(d.get(), d->loadWatch);
    relay->setEditedId(d->edit ? d->id : 0);
    d->subscription.subscribe(d->manager, VEXA_HERE, std::move(locked), std::move(relay));
}

void WebDialog::unsetInputSourceMgr()
{
    d->subscription.drop();
    d->manager.reset();
}

void WebDialog::setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter)
{
    d->msgCenter = msgCenter;
}

void WebDialog::setLanguageCode(const QString& code)
{
    d->languageCode = code;
}

QString WebDialog::languageCode() const
{
    return d->languageCode;
}

void WebDialog::setHomePages(const QString& simplifiedChinese, const QString& other)
{
    d->chineseHomePage = simplifiedChinese;
    d->otherHomePage = other;
}

QString WebDialog::homePageFor(const QString& code) const
{
    return code == QLatin1String("zh_CN") ? d->chineseHomePage : d->otherHomePage;
}

void WebDialog::setWebSource(uint64_t id, const STWebDescription& description, bool edit)
{
    d->id = id;
    d->edit = edit;
    if (WebInfoRelay* const relay = d->subscription.relay()) {
        relay->setEditedId(edit ? id : 0);
    }
    d->fill(description);
}

void WebDialog::translateLanguage()
{
    setTitle(trKey("EditWebsiteAddress"));
    d->nameLabel->setText(trKey("WebResourceName"));
    d->nameEdit->setPlaceholderText(trKey("WebName"));
    d->modeLabel->setText(trKey("WebMode"));
    d->modeBox->setItemText(nativeMode, trKey("NativeMode"));
    d->modeBox->setItemText(screenshotEntry, trKey("ScreenshotMode"));
    d->tabCaption->setText(trKey("WebTabs"));
    d->addTabButton->setText(trKey("AddWebTab"));
    d->cancelButton->setText(trKey("Cancel"));
    d->okButton->setText(trKey("OK"));

    // What a screen reader says for each control, in the same language.
    nameField(d->nameEdit, trKey("WebResourceName"));
    d->modeBox->setAccessibleName(trKey("WebMode"));
    d->tabList->setAccessibleName(trKey("WebTabs"));
    d->addTabButton->setAccessibleName(trKey("AddWebTab"));
    d->cancelButton->setAccessibleName(trKey("Cancel"));
    d->okButton->setAccessibleName(trKey("OK"));
    nameCloseButton(this);
    d->walkFieldsWithTab();

    d->applyCaptureSupport();
}

void WebDialog::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::OtherFocusReason);
    vexa::widgets::Dialog::mousePressEvent(event);
}

} // namespace vexa::inputsource

#include "webdialog.moc"
