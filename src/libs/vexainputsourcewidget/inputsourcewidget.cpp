// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourcewidget.h>

#include "logcategory.h"
#include "manageraccess.h"
#include "modalloop.h"
#include "trkey.h"

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/ndibox.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/streamingdialog.h>
#include <vexainputsourcewidget/webbox.h>
#include <vexainputsourcewidget/webdialog.h>

#include <vexa/widgets/dialog.h>
#include <vexa/widgets/tipdialog.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace vexa::inputsource {

class InputSourceWidget::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(InputSourceWidget* q);

    void buildWidgets();
    void connectWidgets();

    // The boxes in the order they are shown, which is also the order Tab walks them.
    std::array<InputSourceBox*, 4> shownBoxes() const
    {
        return {captureCardBox, streamingBox, ndiBox, webBox};
    }

    ManagerAccess access() const;

    // Hands the manager the translated "Streaming"; `site` and `tag` name the caller.
    void sendStreamingText(const vexa::diagnostics::CallSite& site, const char* tag) const;

    // Runs the menu at `pos`; false when the panel went while it was open.
    bool openMenu(const QPoint& pos);

    // Where the keyboard opens the menu: over the widget that has the focus.
    QPoint keyboardMenuPos() const;

    bool isOnScrollBar(const QPoint& panelPos) const;

    // The window's Tab stops in order, the panel's among them box by box in the order shown.
    QList<QWidget*> tabStops() const;

    InputSourceWidget* const q;

    StreamingBox* streamingBox = nullptr;
    CaptureCardBox* captureCardBox = nullptr;
    NdiBox* ndiBox = nullptr;
    WebBox* webBox = nullptr;

    QMenu* menu = nullptr;
    QAction* addStreamingAction = nullptr;
    QAction* addNdiAction = nullptr;
    QAction* addWebAction = nullptr;
    QAction* clearAction = nullptr;

    quandel::IZQRuntime* runtime = nullptr;
    std::weak_ptr<IInputSourceMgr> inputSourceMgr;

    QScrollArea* scrollArea = nullptr;

public Q_SLOTS:
    void slotClearInputSource();
    void slotItemSelect();
};

// A child of the panel with an object name, so that a host can reach its slots by name, as the
// capture card box's.
InputSourceWidget::Impl::Impl(InputSourceWidget* owner)
    : QObject(owner)
    , q(owner)
{
    setObjectName(QStringLiteral("inputSourceWidgetImpl"));
}

void InputSourceWidget::Impl::buildWidgets()
{
    scrollArea = new QScrollArea(q);
    scrollArea->setObjectName(QStringLiteral("inputSourceScrollArea"));
    scrollArea->setWidgetResizable(true);
    scrollArea->setFrameShape(QFrame::NoFrame);
    // The boxes take the focus and the area scrolls to them; a stop on the area itself would
    // be a Tab press with nothing to see.
    scrollArea->setFocusPolicy(Qt::NoFocus);
    scrollArea->verticalScrollBar()->setContextMenuPolicy(Qt::NoContextMenu);
    scrollArea->horizontalScrollBar()->setContextMenuPolicy(Qt::NoContextMenu);

    auto* const container = new QWidget(scrollArea);
    container->setObjectName(QStringLiteral("inputSourceContainer"));
    container->setProperty("style", QStringLiteral("transparent"));

    streamingBox = new StreamingBox(container);
    streamingBox->setObjectName(QStringLiteral("streamingBox"));
    captureCardBox = new CaptureCardBox(container);
    captureCardBox->setObjectName(QStringLiteral("captureCardBox"));
    ndiBox = new NdiBox(container);
    ndiBox->setObjectName(QStringLiteral("ndiBox"));
    webBox = new WebBox(container);
    webBox->setObjectName(QStringLiteral("webBox"));

    auto* const containerLayout = new QVBoxLayout(container);
    containerLayout->setContentsMargins(0, 0, 0, 0);
    containerLayout->setSpacing(0);
    for (InputSourceBox* const box : shownBoxes()) {
        containerLayout->addWidget(box);
    }
    containerLayout->addWidget(new QWidget(container), 1);
    scrollArea->setWidget(container);

    // The boxes were made in another order than they are shown; Qt's focus chain follows the
    // making.
    const auto boxes = shownBoxes();
    for (std::size_t index = 1; index < boxes.size(); ++index) {
        QWidget::setTabOrder(boxes[index - 1], boxes[index]);
    }

    auto* const panelLayout = new QVBoxLayout(q);
    panelLayout->setContentsMargins(0, 0, 0, 0);
    panelLayout->setSpacing(0);
    panelLayout->addWidget(scrollArea);

    menu = new QMenu(q);
    menu->setObjectName(QStringLiteral("inputSourceMenu"));
    const auto addAction = [this](const char* name) {
        QAction* const action = menu->addAction(QString::fromLatin1(name));
        action->setObjectName(QLatin1String(name));
        return action;
    };
    addStreamingAction = addAction("addStreamingAction");
    addNdiAction = addAction("addNdiAction");
    addWebAction = addAction("addWebAction");
    clearAction = addAction("clearInputSourceAction");
}

void InputSourceWidget::Impl::connectWidgets()
{
    // Queued: the dialogs open once the menu's own loop is over, so no dialog runs inside it
    // and a panel destroyed from a dialog leaves no menu code waiting to resume.
    connect(addStreamingAction, &QAction::triggered, streamingBox, &StreamingBox::showDialog,
            Qt::QueuedConnection);
    connect(addNdiAction, &QAction::triggered, ndiBox, &NdiBox::showDialog, Qt::QueuedConnection);
    connect(
        addWebAction, &QAction::triggered, webBox,
        [box = webBox] { box->showDialog(WebBox::Add, 0); }, Qt::QueuedConnection);
    connect(clearAction, &QAction::triggered, this, &Impl::slotClearInputSource,
            Qt::QueuedConnection);

    for (InputSourceBox* const box :
         {static_cast<InputSourceBox*>(streamingBox), static_cast<InputSourceBox*>(captureCardBox),
          static_cast<InputSourceBox*>(ndiBox), static_cast<InputSourceBox*>(webBox)}) {
        // Direct, so that the host's answer returns to the asking box.
        connect(box, &InputSourceBox::signalCheckInputSourceBeUsed, q,
                &InputSourceWidget::signalCheckInputSourceBeUsed, Qt::DirectConnection);
        connect(box, &InputSourceBox::signalItemSelect, this, &Impl::slotItemSelect);
    }

    // Not in the menu: a keyboard user's way to it, while the focus is anywhere in the panel.
    auto* const menuKey = new QAction(q);
    menuKey->setObjectName(QStringLiteral("inputSourceMenuKey"));
    menuKey->setShortcuts({QKeySequence(Qt::Key_Menu), QKeySequence(Qt::SHIFT + Qt::Key_F10)});
    menuKey->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    q->addAction(menuKey);
    connect(menuKey, &QAction::triggered, this, [this] { openMenu(keyboardMenuPos()); });
}

ManagerAccess InputSourceWidget::Impl::access() const
{
    ManagerAccess access;
    access.setManager(inputSourceMgr);
    access.setRuntime(runtime);
    return access;
}

void InputSourceWidget::Impl::sendStreamingText(const vexa::diagnostics::CallSite& site,
                                                const char* tag) const
{
    access().send(site, tag, [text = trKey("Streaming").toStdString()](IInputSourceMgr& mgr) {
        mgr.setStreamingText(text);
    });
}

bool InputSourceWidget::Impl::openMenu(const QPoint& pos)
{
    // The panel is the owner: a host may destroy it while the operator is choosing.
    return ModalLoop::run(
        q, [menu = menu, pos] { menu->exec(pos); }, menu);
}

QPoint InputSourceWidget::Impl::keyboardMenuPos() const
{
    QWidget* const focus = q->focusWidget();
    QWidget* const anchor = focus != nullptr && q->isAncestorOf(focus) ? focus : scrollArea;
    // Only the part on screen: a tall box may reach far beyond the scroll area.
    QRect visible = anchor->visibleRegion().boundingRect();
    if (visible.isEmpty()) {
        visible = anchor->rect();
    }
    return anchor->mapToGlobal(visible.center());
}

bool InputSourceWidget::Impl::isOnScrollBar(const QPoint& panelPos) const
{
    for (QWidget* child = q->childAt(panelPos); child != nullptr && child != q;
         child = child->parentWidget()) {
        if (qobject_cast<QScrollBar*>(child) != nullptr) {
            return true;
        }
    }
    return false;
}

namespace {

bool isTabStop(const QWidget* widget)
{
    return (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget->isVisible() &&
           widget->isEnabled() && widget->focusProxy() == nullptr;
}

} // namespace

QList<QWidget*> InputSourceWidget::Impl::tabStops() const
{
    // Qt's chain follows the order widgets were made in, and tiles are made long after their
    // boxes, so the panel's part of the chain is rebuilt box by box.
    QList<QWidget*> panelStops;
    for (InputSourceBox* const box : shownBoxes()) {
        QWidget* widget = box;
        do {
            if ((widget == box || box->isAncestorOf(widget)) && isTabStop(widget)) {
                panelStops.append(widget);
            }
            widget = widget->nextInFocusChain();
        } while (widget != box);
    }
    QList<QWidget*> stops;
    bool panelPlaced = false;
    QWidget* const window = q->window();
    for (QWidget* widget = window->nextInFocusChain(); widget != window;
         widget = widget->nextInFocusChain()) {
        if (q->isAncestorOf(widget)) {
            if (!panelPlaced) {
                stops.append(panelStops);
                panelPlaced = true;
            }
        } else if (isTabStop(widget)) {
            stops.append(widget);
        }
    }
    if (!panelPlaced) {
        stops.append(panelStops);
    }
    return stops;
}

void InputSourceWidget::Impl::slotClearInputSource()
{
    vexa::widgets::TipDialog tip(vexa::widgets::TipDialog::Warning);
    tip.setTipText(trKey("ClearText"));
    tip.setCheckText(trKey("ClearCheckText"), true);
    tip.setBtnText(trKey("OK"), trKey("Cancel"), QString());
    vexa::widgets::PromptBoxTriggerInfo info;
    if (!ModalLoop::run(
            q, [&tip, &info] { info = tip.run(); }, &tip)) {
        return;
    }
    if (info.result != vexa::widgets::TipDialog::FirstButton) {
        return;
    }
    streamingBox->clearItem(info.checked);
    captureCardBox->clearItem(info.checked);
    webBox->clearItem(info.checked);
    ndiBox->clearItem(info.checked);
}

void InputSourceWidget::Impl::slotItemSelect()
{
    QObject* const obj = sender();
    if (obj == nullptr) {
        VEXA_WARNING("nullptr == obj");
        return;
    }
    for (InputSourceBox* const box : q->findChildren<InputSourceBox*>()) {
        if (box != obj) {
            box->clearItemSelect();
        }
    }
}

InputSourceWidget::InputSourceWidget(QWidget* parent)
    : FloatingItemWidget(QStringLiteral("vexa.inputsourcewidget"), parent)
    , d(std::make_unique<Impl>(this))
{
    setTitleText(QStringLiteral("InputSource"));
    setAccessibleName(titleText());
    d->buildWidgets();
    d->connectWidgets();
}

InputSourceWidget::~InputSourceWidget() = default;

void InputSourceWidget::setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr)
{
    d->ndiBox->setInputSourceMgr(mgr);
    d->captureCardBox->setInputSourceMgr(mgr);
    d->streamingBox->setInputSourceMgr(mgr);
    d->webBox->setInputSourceMgr(mgr);
    d->inputSourceMgr = std::move(mgr);
    d->sendStreamingText(VEXA_HERE, "setInputSourceMgr");
}

void InputSourceWidget::unsetInputSourceMgr()
{
    d->ndiBox->unsetInputSourceMgr();
    d->captureCardBox->unsetInputSourceMgr();
    d->streamingBox->unsetInputSourceMgr();
    d->webBox->unsetInputSourceMgr();
}

void InputSourceWidget::setZQRuntime(quandel::IZQRuntime* runtime)
{
    d->runtime = runtime;
    d->captureCardBox->setZQRuntime(runtime);
    d->ndiBox->setZQRuntime(runtime);
    // Told twice, as the panel always has; the second time changes nothing.
    d->captureCardBox->setZQRuntime(runtime);
    d->streamingBox->setZQRuntime(runtime);
    d->webBox->setZQRuntime(runtime);
}

void InputSourceWidget::setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter)
{
    d->captureCardBox->setMsgCenterMgr(msgCenter);
    d->webBox->setMsgCenterMgr(msgCenter);
}

void InputSourceWidget::setLoadingPath(const QString& path)
{
    d->streamingBox->setLoadingPath(path);
    d->captureCardBox->setLoadingPath(path);
    d->webBox->setLoadingPath(path);
    d->ndiBox->setLoadingPath(path);
}

void InputSourceWidget::setInputSourceStyleSheet(const QString& styleSheet)
{
    setStyleSheet(styleSheet);
    d->streamingBox->dialog()->setStyleSheet(styleSheet);
    d->webBox->dialog()->setStyleSheet(styleSheet);
    d->ndiBox->dialog()->setStyleSheet(styleSheet);
}

void InputSourceWidget::updateFrame(uint64_t id, const zq::mediacore::IFrame* frame)
{
    // The boxes are fixed at construction, so reading the pointers races with nothing.
    d->streamingBox->updateFrame(id, frame);
    d->captureCardBox->updateFrame(id, frame);
    d->webBox->updateFrame(id, frame);
    d->ndiBox->updateFrame(id, frame);
}

void InputSourceWidget::recoverPreview()
{
    d->streamingBox->setPreviewState(false);
    d->captureCardBox->setPreviewState(false);
    d->webBox->setPreviewState(false);
    d->ndiBox->setPreviewState(false);
}

void InputSourceWidget::loadLanguageFiles(const QStringList& files)
{
    quandel::trans::Translator& translator = InputSourceTranslateManager::instance().translator();
    for (const QString& file : files) {
        // The translator says why it refused; the other files still count.
        translator.load(file);
    }
    switchLanguage(QStringLiteral("zh_CN"));
}

void InputSourceWidget::switchLanguage(const QString& code)
{
    InputSourceTranslateManager::instance().translator().switchLanguage(code);
    translateLanguage();
    d->streamingBox->setLanguageCode(code);
    d->captureCardBox->setLanguageCode(code);
    d->webBox->setLanguageCode(code);
    d->ndiBox->setLanguageCode(code);
}

void InputSourceWidget::translateLanguage()
{
    setTitleText(trKey("InputSource"));
    setAccessibleName(titleText());

    d->addStreamingAction->setText(trKey("AddStreaming"));
    d->addNdiAction->setText(trKey("AddNdiMedia"));
    d->addWebAction->setText(trKey("AddWebMedia"));
    d->clearAction->setText(trKey("ClearInputSource"));
    d->menu->setAccessibleName(titleText());

    d->streamingBox->setTitle(trKey("Streaming"));
    d->captureCardBox->setTitle(trKey("CaptureCard"));

    d->streamingBox->translateLanguage();
    d->captureCardBox->translateLanguage();
    d->webBox->translateLanguage();

    d->webBox->setTitle(trKey("WebPage"));

    FloatingItemWidget::translateLanguage();

    d->ndiBox->translateLanguage();

    d->sendStreamingText(VEXA_HERE, "translateLanguage");
}

std::string InputSourceWidget::webPageTransName() const
{
    return trKey("WebTab").toStdString();
}

void InputSourceWidget::contextMenuEvent(QContextMenuEvent* event)
{
    // A scroll bar defers its menu to its parents; a right click there is about scrolling.
    if (event->reason() == QContextMenuEvent::Mouse && d->isOnScrollBar(event->pos())) {
        event->accept();
        return;
    }
    if (!d->openMenu(QCursor::pos())) {
        return;
    }
    FloatingItemWidget::contextMenuEvent(event);
}

bool InputSourceWidget::focusNextPrevChild(bool next)
{
    QWidget* const focus = QApplication::focusWidget();
    if (focus == nullptr || !isAncestorOf(focus)) {
        return FloatingItemWidget::focusNextPrevChild(next);
    }
    const QList<QWidget*> stops = d->tabStops();
    const int at = stops.indexOf(focus);
    if (at < 0) {
        return FloatingItemWidget::focusNextPrevChild(next);
    }
    // Round the window, as Qt's own walk goes.
    const int to = (at + (next ? 1 : stops.size() - 1)) % stops.size();
    stops.at(to)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

} // namespace vexa::inputsource

#include "inputsourcewidget.moc"
