// SPDX-License-Identifier: MIT
#include "inputsourcebox_p.h"

#include "managerrelay.h"
#include "modalloop.h"
#include "queuedhandoff.h"
#include "trkey.h"

#include <XJ/Utils/flowlayout.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/quietlayout.h>
#include <vexa/widgets/style.h>
#include <zq/mediacore/imeta.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMovie>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace vexa::inputsource {

namespace {

using quandel::resource::EnResourceType;

constexpr int headerHeight = 32;
constexpr int headerButtonHeight = 20;
constexpr int iconSide = 20;
constexpr int tileSpacing = 8;
constexpr int sideMargin = 8;

// The selection may hold an id more than once; one removal takes away one copy.
void eraseFirst(std::vector<uint64_t>& ids, uint64_t id)
{
    const auto found = std::find(ids.begin(), ids.end(), id);
    if (found != ids.end()) {
        ids.erase(found);
    }
}

} // namespace

InputSourceBox::Impl::Impl(InputSourceBox* owner)
    : q(owner)
{
    // The manager's notifications arrive here from the runtime thread.
    QueuedHandoff::watch(this);
}

InputSourceBox::Impl::~Impl()
{
    unbind();
}

void InputSourceBox::Impl::buildFrame()
{
    q->setAttribute(Qt::WA_StyledBackground, true);
    q->setProperty("style", QStringLiteral("BG3"));
    q->setFocusPolicy(Qt::StrongFocus);

    header = new QWidget(q);
    header->setObjectName(QStringLiteral("boxHeader"));
    header->setFixedHeight(headerHeight);

    titleButton = new QPushButton(header);
    titleButton->setObjectName(QStringLiteral("boxHeaderButton"));
    titleButton->setFixedHeight(headerButtonHeight);
    titleButton->setCheckable(true);
    titleButton->setChecked(false);

    arrowLabel = new QLabel(titleButton);
    arrowLabel->setObjectName(QStringLiteral("boxArrowLabel"));
    arrowLabel->setFixedSize(iconSide, iconSide);
    arrowLabel->setProperty("labelImage", QStringLiteral("right"));

    titleLabel = new QLabel(titleButton);
    titleLabel->setObjectName(QStringLiteral("boxTitleLabel"));

    previewButton = new vexa::widgets::PushButton(titleButton);
    previewButton->setObjectName(QStringLiteral("boxPreviewButton"));
    previewButton->setFixedSize(iconSide, iconSide);
    previewButton->setProperty("imageBtn", QStringLiteral("display"));
    previewButton->setCheckable(true);
    previewButton->setChecked(true);

    addButton = new vexa::widgets::PushButton(titleButton);
    addButton->setObjectName(QStringLiteral("boxAddButton"));
    addButton->setFixedSize(iconSide, iconSide);
    addButton->setProperty("imageBtn", QStringLiteral("add"));

    auto* const buttonLayout = new QHBoxLayout(titleButton);
    buttonLayout->setContentsMargins(0, 0, 0, 0);
    buttonLayout->addWidget(arrowLabel);
    buttonLayout->addWidget(titleLabel);
    buttonLayout->addWidget(previewButton);
    buttonLayout->addWidget(addButton);

    auto* const headerLayout = new QHBoxLayout(header);
    headerLayout->setContentsMargins(0, 0, 0, 0);
    headerLayout->addWidget(titleButton);

    itemArea = new QWidget(q);
    itemArea->setObjectName(QStringLiteral("boxItemArea"));
    flowLayout = new XJ::Utils::FlowLayout(itemArea, 0, tileSpacing, tileSpacing);
    itemArea->hide();

    boxLayout = new QVBoxLayout(q);
    boxLayout->setSpacing(0);
    boxLayout->setContentsMargins(sideMargin, 0, sideMargin, 0);
    boxLayout->addWidget(header);
    boxLayout->addWidget(itemArea);
    q->adjustSize();
}

void InputSourceBox::Impl::connectFrame()
{
    connect(titleButton, &QPushButton::toggled, this, &Impl::slotTitleToggled);
    connect(previewButton, &QPushButton::clicked, this, &Impl::slotPreviewClicked);
    connect(addButton, &QPushButton::clicked, q, &InputSourceBox::signalAddClicked);
}

std::vector<InputSourceItem*> InputSourceBox::Impl::items() const
{
    std::vector<InputSourceItem*> found;
    found.reserve(static_cast<std::size_t>(flowLayout->count()));
    for (int position = 0; position < flowLayout->count(); ++position) {
        if (auto* const item =
                qobject_cast<InputSourceItem*>(flowLayout->itemAt(position)->widget())) {
            found.push_back(item);
        }
    }
    return found;
}

bool InputSourceBox::Impl::isInUse(uint64_t id) const
{
    return q->signalCheckInputSourceBeUsed(id);
}

bool InputSourceBox::Impl::isCaptureBox() const
{
    return resourceType == EnResourceType::LocalCaptureDevice;
}

InputSourceItem* InputSourceBox::Impl::createItem(uint64_t id, const IResource& resource,
                                                  const zq::mediacore::IMeta& meta)
{
    auto* const item = new InputSourceItem(quandel::resource::toCode(resourceType), itemArea);
    if (!loadingPath.isEmpty()) {
        item->setLoadingMovie(loadingPath);
        // The tile pauses and resumes the animation with its preview; starting it is ours.
        if (auto* const movie = item->findChild<QMovie*>()) {
            movie->start();
            movie->setPaused(item->isPreviewChecked());
        }
    }
    item->setId(id);
    const std::string name = meta.getName().empty() ? resource.getName() : meta.getName();
    item->setName(QString::fromStdString(name));
    item->setUrl(QString::fromStdString(meta.getAddress()));
    switch (resourceType) {
    case EnResourceType::LocalCaptureDevice:
        item->setResolution(QString::fromStdString(meta.getResolutionText()),
                            QString::number(meta.getFrameRate(), 'f', 2));
        item->setResolutionMode(meta.getCaptResolutionMode());
        item->setCaptResolutions(meta.getCaptResolutions());
        item->setCurrentCaptResolution(meta.getCurrentCaptResolution());
        break;
    case EnResourceType::WebPage:
        item->setWebMode(meta.getWebMode());
        break;
    default:
        break;
    }
    item->setThumbnail(meta.getThumbnail());
    item->translateLanguage();

    connect(item, &InputSourceItem::signalSelect, this, &Impl::slotItemSelect);
    connect(item, &InputSourceItem::signalBatchSelect, this, &Impl::slotBatchSelect);
    connect(item, &InputSourceItem::signalDelete, this, &Impl::slotItemDelete);
    connect(item, &InputSourceItem::signalBatchDelete, this, &Impl::slotBatchDelete);
    connect(item, &InputSourceItem::signalGetInputSourceMeta, this, &Impl::slotGetInputSourceMeta);
    connect(item, &InputSourceItem::signalPreviewChanged, this, &Impl::slotItemPreviewChanged);
    connect(item, &InputSourceItem::signalNameChanged, this, &Impl::slotItemNameChanged);
    connect(item, &InputSourceItem::signalCheckMultiSelect, this, &Impl::slotCheckMultiSelect);
    connect(item, &InputSourceItem::signalEdit, this, &Impl::slotItemEdit);
    connect(item, &InputSourceItem::signalDoubleClicked, q, &InputSourceBox::signalDoubleClicked);
    connect(item, &InputSourceItem::signalCaptResolutionChanged, this,
            &Impl::slotCaptResolutionChanged);
    // Only compares the pointer: by the time destroyed() is emitted the tile is half gone.
    connect(item, &QObject::destroyed, this, [this, id, item] { index.remove(id, item); });
    return item;
}

void InputSourceBox::Impl::appendItem(uint64_t id, InputSourceItem* item)
{
    // The tile is in the layout and the index at once, so frames and later notifications find
    // it. Showing and placing it wait for one queued call per notification: shown one by one,
    // the flow layout would place every tile again. Settled while hidden, the tile posts no
    // relayout request when it is shown; Qt would merge each with those already queued by
    // walking the queue, which holds the events of every tile of a large notification.
    if (unplaced.empty()) {
        QMetaObject::invokeMethod(this, &Impl::placeNewItems, Qt::QueuedConnection);
    }
    item->hide();
    vexa::widgets::settleLayouts(item);
    flowLayout->addWidget(item);
    index.add(id, item);
    unplaced.emplace_back(item);
    titleButton->setChecked(true);
    itemArea->show();
}

void InputSourceBox::Impl::placeNewItems()
{
    flowLayout->setEnabled(false);
    for (const QPointer<InputSourceItem>& item : std::exchange(unplaced, {})) {
        if (!item.isNull() && !ModalLoop::isRunning(item)) {
            item->show();
        }
    }
    flowLayout->setEnabled(true);
    flowLayout->activate();
    itemArea->adjustSize();
}

void InputSourceBox::Impl::removeItem(InputSourceItem* item)
{
    const uint64_t id = item->id();
    // Withdrawn at once: out of reach of frame threads and out of the layout.
    index.remove(id, item);
    flowLayout->removeWidget(item);
    discardItem(item);
    if (flowLayout->count() == 0) {
        titleButton->setChecked(false);
    }
    eraseFirst(selection, id);
}

void InputSourceBox::Impl::discardItem(InputSourceItem* item)
{
    // A tile whose menu or drag is open has its handler on the stack; it goes once that
    // returns, and meanwhile tells the box nothing.
    if (ModalLoop::isRunning(item)) {
        item->disconnect(this);
        item->disconnect(q);
    }
    ModalLoop::destroy(item);
}

void InputSourceBox::Impl::deleteItem(uint64_t id)
{
    if (InputSourceItem* const item = index.find(id)) {
        removeItem(item);
    }
}

void InputSourceBox::Impl::slotTitleToggled(bool isChecked)
{
    if (!isChecked || flowLayout->count() > 0) {
        itemArea->setVisible(isChecked);
    }
    vexa::widgets::setStyleProperty(arrowLabel, "labelImage",
                                    isChecked ? QStringLiteral("down") : QStringLiteral("right"));
}

void InputSourceBox::Impl::slotItemSelect(uint64_t id)
{
    selection.assign(1, id);
    for (InputSourceItem* const item : items()) {
        if (item->id() != id) {
            item->clearSelect();
        }
    }
    Q_EMIT q->signalItemSelect();
}

void InputSourceBox::Impl::slotBatchSelect(uint64_t id, bool bSelect)
{
    if (bSelect) {
        selection.push_back(id);
    } else {
        eraseFirst(selection, id);
    }
    Q_EMIT q->signalItemSelect();
}

bool InputSourceBox::Impl::slotCheckMultiSelect()
{
    return selection.size() > 1;
}

void InputSourceBox::Impl::slotItemEdit(uint64_t id)
{
    Q_EMIT q->signalItemEdit(id);
}

InputSourceBox::InputSourceBox(QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this))
{
    d->buildFrame();
    d->connectFrame();
    registerMetaTypes();
}

InputSourceBox::~InputSourceBox()
{
    // Frame threads must find nothing before the tiles go with their parent.
    d->index.clear();
    // A tile whose menu or drag is open is inside its own event handler: it outlives the box
    // until that returns.
    for (InputSourceItem* const item : d->items()) {
        if (ModalLoop::isRunning(item)) {
            d->discardItem(item);
        }
    }
}

void InputSourceBox::setTitle(const QString& title)
{
    d->titleLabel->setText(title);
    // The box takes the focus itself, so a screen reader names the category by it.
    setAccessibleName(title);
}

void InputSourceBox::setAddBtnVisible(bool visible)
{
    d->addButton->setVisible(visible);
}

void InputSourceBox::setAddVisible(bool enable)
{
    d->addButton->setEnabled(enable);
    vexa::widgets::setStyleProperty(d->addButton, "imageBtn",
                                    enable ? QStringLiteral("close") : QString());
}

void InputSourceBox::setPreviewBtnVisible(bool visible)
{
    d->previewButton->setVisible(visible);
}

void InputSourceBox::setPreviewState(bool previewOn)
{
    d->previewButton->setChecked(!previewOn);
}

void InputSourceBox::setResourceType(const quandel::resource::EnResourceType& type)
{
    d->resourceType = type;
    if (d->relay != nullptr) {
        d->relay->setResourceType(type);
    }
}

quandel::resource::EnResourceType InputSourceBox::resourceType() const
{
    return d->resourceType;
}

void InputSourceBox::setLoadingPath(const QString& path)
{
    d->loadingPath = path;
}

void InputSourceBox::setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter)
{
    d->msgCenter = msgCenter;
}

void InputSourceBox::setLanguageCode(const QString&) {}

void InputSourceBox::setZQRuntime(quandel::IZQRuntime* runtime)
{
    d->manager.setRuntime(runtime);
}

void InputSourceBox::updateFrame(uint64_t id, const zq::mediacore::IFrame* frame)
{
    d->index.deliver(id, frame);
}

InputSourceItem* InputSourceBox::findItem(uint64_t id)
{
    return d->index.find(id);
}

int InputSourceBox::itemCount() const
{
    return static_cast<int>(d->items().size());
}

std::vector<uint64_t> InputSourceBox::selectedIds() const
{
    return d->selection;
}

void InputSourceBox::clearItemSelect()
{
    d->selection.clear();
    for (InputSourceItem* const item : d->items()) {
        item->clearSelect();
    }
}

void InputSourceBox::translateLanguage()
{
    d->addButton->setToolTip(trKey("Add"));
    d->previewButton->setToolTip(
        trKey(d->previewButton->isChecked() ? "EnablePreview" : "DisablePreview"));
    for (InputSourceItem* const item : d->items()) {
        item->translateLanguage();
    }
    Q_EMIT signalTranslateLanguage();
}

void InputSourceBox::keyPressEvent(QKeyEvent* event)
{
    // When the box goes while its question is open, the event is left accepted so that Qt
    // does not hand it on through the dead box.
    if (event->key() == Qt::Key_Delete && !d->isCaptureBox() && !d->batchDelete()) {
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace vexa::inputsource
