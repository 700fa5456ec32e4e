#include <vexainputsourcewidget/inputsourcebox.h>

#include "inputsourceitem.h"
#include "managerrelay.h"
#include "runonruntime.h"
#include "tileindex.h"
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <XJ/Utils/flowlayout.h>
#include <quandel/msgcenter/imsgcentermgr.h>
#include <quandel/msgcenter/stmessage.h>
#include <quandel/resource/iresource.h>
#include <quandel/runtime/izqruntime.h>
#include <vexa/diagnostics/warning.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/style.h>
#include <vexa/widgets/tipdialog.h>
#include <zq/mediacore/imeta.h>

#include <QHBoxLayout>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QMovie>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariant>

#include <algorithm>
#include <deque>
#include <exception>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <type_traits>
#include <utility>

namespace vexa::inputsource {

// The queued slots below spell their parameter types exactly as the relay names them, so that
// Qt finds them by name.
using quandel::resource::IResource;
using vexa::STResourceRenamedModel;

namespace {

using quandel::resource::EnResourceType;

constexpr int headerHeight = 32;
constexpr int headerButtonHeight = 20;
constexpr int iconSide = 20;
constexpr int tileSpacing = 8;
constexpr int sideMargin = 8;
constexpr int previewLockOutMs = 500;
constexpr std::size_t itemsPerBatch = 64;

// A notice or a question to the operator; true when the first (confirming) button was pressed.
bool askOperator(vexa::widgets::TipDialog::EnumTipType type, const QString& text,
                 const QString& confirm, const QString& cancel)
{
    vexa::widgets::TipDialog dialog(type);
    dialog.setTipText(text);
    dialog.setBtnText(confirm, cancel, QString());
    return dialog.run().result == vexa::widgets::TipDialog::FirstButton;
}

bool confirmDelete(const char* key)
{
    return askOperator(vexa::widgets::TipDialog::Warning, trKey(key), trKey("OK"), trKey("Cancel"));
}

QString resolutionDescription(const quandel::CaptResolutionsInfo& info)
{
    return QStringLiteral("%1*%2@%3,%4")
        .arg(info.width)
        .arg(info.height)
        .arg(static_cast<double>(info.frameRate), 0, 'f', 2)
        .arg(QString::fromStdString(info.text));
}

// The queued variant holds the map itself; it is read where it lies rather than copied, since
// a copy of thousands of nodes would cost more than applying them. Anything else is converted.
void forEachOnlineTime(const QVariant& wrapped, const std::function<void(uint64_t, int)>& apply)
{
    using Times = std::map<uint64_t, int>;
    const auto visit = [&apply](const Times& times) {
        for (const auto& [id, seconds] : times) {
            apply(id, seconds);
        }
    };
    if (wrapped.userType() == qMetaTypeId<Times>()) {
        visit(*static_cast<const Times*>(wrapped.constData()));
        return;
    }
    QVariant converted = wrapped;
    if (converted.convert(qMetaTypeId<Times>())) {
        visit(*static_cast<const Times*>(converted.constData()));
    }
}

// The media description's still picture, when it has one, becomes the tile's thumbnail.
void showThumbnail(InputSourceItem& item, const zq::mediacore::IMeta& meta)
{
    const zq::mediacore::Thumbnail thumbnail = meta.getThumbnail();
    if (thumbnail.isValid()) {
        const QImage image(thumbnail.rgba.data(), thumbnail.width, thumbnail.height,
                           thumbnail.width * 4, QImage::Format_RGBA8888);
        item.setThumbnail(QPixmap::fromImage(image));
    }
}

// The selection may hold an id more than once; one removal takes away one copy.
void eraseFirst(std::vector<uint64_t>& ids, uint64_t id)
{
    const auto found = std::find(ids.begin(), ids.end(), id);
    if (found != ids.end()) {
        ids.erase(found);
    }
}

} // namespace

class InputSourceBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(InputSourceBox* owner);
    ~Impl() override;

    void buildFrame();
    void connectFrame();

    // GUI-thread helpers of the operations below.
    template <typename Callable>
    auto request(const char* tag, Callable&& callable);
    void sendDelete(std::shared_ptr<IInputSourceMgr> mgr, const char* tag,
                    std::vector<uint64_t> ids);
    InputSourceItem* createItem(uint64_t id, const IResource& resource,
                                const zq::mediacore::IMeta& meta);
    void removeItem(InputSourceItem* item);
    void deleteItem(uint64_t id);
    std::vector<InputSourceItem*> items() const;
    bool isInUse(uint64_t id) const;
    bool isCaptureBox() const;
    // Makes the tiles of `limit` sources still to be made, all of them by default.
    void buildItems(std::size_t limit = std::numeric_limits<std::size_t>::max());
    void buildNextItems();
    static void setStyleProperty(QWidget* widget, const char* property, const QVariant& value);

    InputSourceBox* const owner;
    std::weak_ptr<IInputSourceMgr> inputSourceMgr;
    quandel::msgcenter::IMsgCenterMgr* msgCenter = nullptr;
    quandel::IZQRuntime* runtime = nullptr;
    QWidget* header = nullptr;
    QPushButton* titleButton = nullptr;
    QLabel* arrowLabel = nullptr;
    QLabel* titleLabel = nullptr;
    vexa::widgets::PushButton* previewButton = nullptr;
    vexa::widgets::PushButton* addButton = nullptr;
    QVBoxLayout* boxLayout = nullptr;
    QWidget* itemArea = nullptr;
    XJ::Utils::FlowLayout* flowLayout = nullptr;
    std::vector<uint64_t> selection;
    EnResourceType resourceType = EnResourceType::Unassigned;
    QString loadingPath;
    TileIndex index;
    std::shared_ptr<ManagerRelay> relay;
    std::vector<sigslot::connection> connections;
    // Sources whose tiles are still to be made (see addItem()).
    struct UnbuiltItem
    {
        uint64_t id;
        std::shared_ptr<IResource> resource;
        std::shared_ptr<zq::mediacore::IMeta> meta;
    };
    std::deque<UnbuiltItem> unbuilt;

public Q_SLOTS:
    void slotTitleToggled(bool isChecked);
    void slotPreviewClicked(bool isChecked);
    void slotItemPreviewChanged(uint64_t id, bool isOpen);
    void slotItemSelect(uint64_t id);
    void slotBatchSelect(uint64_t id, bool bSelect);
    void slotItemDelete(uint64_t id);
    void slotBatchDelete();
    void slotItemNameChanged(uint64_t id, const QString& name);
    bool slotCheckMultiSelect();
    void slotCaptResolutionChanged(uint64_t id, const quandel::CaptResolutionsInfo& captInfo);
    MetaQueryResult slotGetInputSourceMeta(uint64_t id);
    void slotItemEdit(uint64_t id);

    // Manager notifications, queued by name from the runtime thread. Each reaction that looks
    // for tiles first makes those still to be made (buildItems()), so that the manager's order
    // holds.
    void addItem(uint64_t id, std::shared_ptr<IResource> resource);
    void updateItem(uint64_t id, std::shared_ptr<zq::mediacore::IMeta> meta);
    void updateItemOnlineStatus(uint64_t id, bool isOnline);
    void deleteItems(const std::vector<uint64_t>& ids);
    void clearItems();
    void renameItem(const STResourceRenamedModel& model);
    void resolutionUpdated(const STInputSource& info);
    void captResolutionUpdated(const STInputSource& info);
    void resolutionError(const quandel::CaptResolutionsInfo& info);
    void urlUpdated(const STInputSource& info);
    void previewedItems(const std::vector<STInputSource>& infos);
    void onlineTimeUpdateUi(const QVariant& times);
};

InputSourceBox::Impl::Impl(InputSourceBox* owner)
    : owner(owner)
    , relay(std::make_shared<ManagerRelay>(this, resourceType))
{}

InputSourceBox::Impl::~Impl()
{
    // Notifications already under way on the runtime thread must not queue to a dead object,
    // and later ones must not arrive at all.
    relay->detach();
    for (sigslot::connection& connection : connections) {
        connection.disconnect();
    }
}

void InputSourceBox::Impl::buildFrame()
{
    owner->setAttribute(Qt::WA_StyledBackground, true);
    owner->setProperty("style", QStringLiteral("BG3"));
    owner->setFocusPolicy(Qt::StrongFocus);

    header = new QWidget(owner);
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

    itemArea = new QWidget(owner);
    itemArea->setObjectName(QStringLiteral("boxItemArea"));
    flowLayout = new XJ::Utils::FlowLayout(itemArea, 0, tileSpacing, tileSpacing);
    itemArea->hide();

    boxLayout = new QVBoxLayout(owner);
    boxLayout->setSpacing(0);
    boxLayout->setContentsMargins(sideMargin, 0, sideMargin, 0);
    boxLayout->addWidget(header);
    boxLayout->addWidget(itemArea);
    owner->adjustSize();
}

void InputSourceBox::Impl::connectFrame()
{
    connect(titleButton, &QPushButton::toggled, this, &Impl::slotTitleToggled);
    connect(previewButton, &QPushButton::clicked, this, &Impl::slotPreviewClicked);
    connect(addButton, &QPushButton::clicked, owner, &InputSourceBox::signalAddClicked);
}

template <typename Callable>
auto InputSourceBox::Impl::request(const char* tag, Callable&& callable)
{
    using Result = std::invoke_result_t<std::decay_t<Callable>&>;
    using Answer = std::optional<std::conditional_t<std::is_void_v<Result>, bool, Result>>;
    // An empty answer means the runtime refused the call and destroyed it unrun.
    auto answered = [call = std::forward<Callable>(callable)]() mutable -> Answer {
        if constexpr (std::is_void_v<Result>) {
            call();
            return true;
        } else {
            return call();
        }
    };
    // A manager that throws, or a runtime that refuses or drops the call, must not take the
    // panel down: the operator sees nothing happen and the log says why.
    try {
        Answer answer = runOnRuntime(runtime, __FILE__, __LINE__, tag, std::move(answered));
        if (!answer.has_value()) {
            if (runtime != nullptr) {
                VEXA_WARNING(QStringLiteral("%1: refused by the runtime").arg(QLatin1String(tag)));
            }
        } else if constexpr (!std::is_void_v<Result>) {
            return std::move(*answer);
        }
    } catch (const std::exception& error) {
        VEXA_WARNING(QStringLiteral("%1: %2").arg(QLatin1String(tag), QLatin1String(error.what())));
    } catch (...) {
        VEXA_WARNING(QStringLiteral("%1: unknown exception").arg(QLatin1String(tag)));
    }
    if constexpr (!std::is_void_v<Result>) {
        return Result();
    }
}

void InputSourceBox::Impl::sendDelete(std::shared_ptr<IInputSourceMgr> mgr, const char* tag,
                                      std::vector<uint64_t> ids)
{
    request(tag, [mgr = std::move(mgr), ids = std::move(ids)] { mgr->deleteInputSources(ids); });
}

std::vector<InputSourceItem*> InputSourceBox::Impl::items() const
{
    std::vector<InputSourceItem*> found;
    found.reserve(static_cast<std::size_t>(flowLayout->count()));
    for (int index = 0; index < flowLayout->count(); ++index) {
        if (auto* const item =
                qobject_cast<InputSourceItem*>(flowLayout->itemAt(index)->widget())) {
            found.push_back(item);
        }
    }
    return found;
}

bool InputSourceBox::Impl::isInUse(uint64_t id) const
{
    return owner->signalCheckInputSourceBeUsed(id);
}

bool InputSourceBox::Impl::isCaptureBox() const
{
    return resourceType == EnResourceType::LocalCaptureDevice;
}

void InputSourceBox::Impl::setStyleProperty(QWidget* widget, const char* property,
                                            const QVariant& value)
{
    widget->setProperty(property, value);
    vexa::widgets::repolish(widget);
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
    switch (resourceType) {
    case EnResourceType::LocalCaptureDevice:
        item->setUrl(QString::fromStdString(meta.getAddress()));
        item->setResolution(QString::fromStdString(meta.getResolutionText()),
                            QString::number(meta.getFrameRate(), 'f', 2));
        item->setResolutionMode(meta.getCaptResolutionMode());
        item->setCaptResolutions(meta.getCaptResolutions());
        item->setCurrentCaptResolution(meta.getCurrentCaptResolution());
        break;
    case EnResourceType::WebPage:
        item->setWebMode(meta.getWebMode());
        item->setUrl(QString::fromStdString(meta.getAddress()));
        break;
    default:
        item->setUrl(QString::fromStdString(meta.getAddress()));
        break;
    }
    showThumbnail(*item, meta);
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
    connect(item, &InputSourceItem::signalDoubleClicked, owner,
            &InputSourceBox::signalDoubleClicked);
    connect(item, &InputSourceItem::signalCaptResolutionChanged, this,
            &Impl::slotCaptResolutionChanged);
    // Only compares the pointer: by the time destroyed() is emitted the tile is half gone.
    connect(item, &QObject::destroyed, this, [this, id, item] { index.remove(id, item); });
    return item;
}

void InputSourceBox::Impl::removeItem(InputSourceItem* item)
{
    const uint64_t id = item->id();
    // Withdrawn at once: out of reach of frame threads and out of the layout.
    index.remove(id, item);
    flowLayout->removeWidget(item);
    if (item->isInNestedLoop()) {
        // Its menu or a drag is open, and the manager removed the source meanwhile: the tile's
        // handler is still on the stack, so it goes once that handler has returned.
        item->hide();
        item->disconnect(this);
        item->disconnect(owner);
        connect(item, &InputSourceItem::signalNestedLoopsEnded, item, &QObject::deleteLater);
    } else {
        delete item;
    }
    if (flowLayout->count() == 0) {
        titleButton->setChecked(false);
    }
    eraseFirst(selection, id);
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
    setStyleProperty(arrowLabel, "labelImage",
                     isChecked ? QStringLiteral("down") : QStringLiteral("right"));
}

void InputSourceBox::Impl::slotPreviewClicked(bool isChecked)
{
    buildItems();
    previewButton->setEnabled(false);
    QTimer::singleShot(previewLockOutMs, previewButton,
                       [button = previewButton] { button->setEnabled(true); });
    previewButton->setToolTip(trKey(isChecked ? "EnablePreview" : "DisablePreview"));

    std::vector<STInputSource> sources;
    for (InputSourceItem* const item : items()) {
        if (!item->isPreviewToggleEnabled()) {
            continue;
        }
        item->setPreviewChecked(isChecked);
        STInputSource source;
        source.id = item->id();
        source.preview = !isChecked;
        sources.push_back(std::move(source));
    }

    std::shared_ptr<IInputSourceMgr> mgr = inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    request("slotPreviewClicked",
            [mgr = std::move(mgr), sources = std::move(sources), enable = !isChecked] {
                mgr->previewInputSources(sources, enable);
            });
}

void InputSourceBox::Impl::slotItemPreviewChanged(uint64_t id, bool isOpen)
{
    std::shared_ptr<IInputSourceMgr> mgr = inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    STInputSource source;
    source.id = id;
    source.preview = isOpen;
    request("slotItemPreviewChanged",
            [mgr = std::move(mgr), sources = std::vector<STInputSource>{source}, isOpen] {
                mgr->previewInputSources(sources, isOpen);
            });
}

void InputSourceBox::Impl::slotItemSelect(uint64_t id)
{
    selection.assign(1, id);
    for (InputSourceItem* const item : items()) {
        if (item->id() != id) {
            item->clearSelect();
        }
    }
    Q_EMIT owner->signalItemSelect();
}

void InputSourceBox::Impl::slotBatchSelect(uint64_t id, bool bSelect)
{
    if (bSelect) {
        selection.push_back(id);
    } else {
        eraseFirst(selection, id);
    }
    Q_EMIT owner->signalItemSelect();
}

void InputSourceBox::Impl::slotItemDelete(uint64_t id)
{
    if (isInUse(id) && !confirmDelete("DeleteText")) {
        return;
    }
    std::shared_ptr<IInputSourceMgr> mgr = inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    sendDelete(std::move(mgr), "slotItemDelete", {id});
}

void InputSourceBox::Impl::slotBatchDelete()
{
    if (isCaptureBox()) {
        return;
    }
    const std::vector<uint64_t> ids = selection;
    const bool anyInUse =
        std::any_of(ids.begin(), ids.end(), [this](uint64_t id) { return isInUse(id); });
    if (anyInUse && !confirmDelete("DeleteBatchText")) {
        return;
    }
    std::shared_ptr<IInputSourceMgr> mgr = inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    sendDelete(std::move(mgr), "slotBatchDelete", ids);
}

void InputSourceBox::Impl::slotItemNameChanged(uint64_t id, const QString& name)
{
    std::shared_ptr<IInputSourceMgr> mgr = inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    STResourceRenamedModel model;
    model.id = id;
    model.name = name.toStdString();
    request("slotItemNameChanged", [mgr = std::move(mgr), model = std::move(model)] {
        return mgr->renameInputSource(model);
    });
}

bool InputSourceBox::Impl::slotCheckMultiSelect()
{
    return selection.size() > 1;
}

void InputSourceBox::Impl::slotCaptResolutionChanged(uint64_t id,
                                                     const quandel::CaptResolutionsInfo& captInfo)
{
    std::shared_ptr<IInputSourceMgr> mgr = inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    STInputSource source;
    source.id = id;
    source.captResolutions = {captInfo};
    request("slotCaptResolutionChanged", [mgr = std::move(mgr), source = std::move(source)] {
        mgr->changeCaptResolution(source);
    });
}

MetaQueryResult InputSourceBox::Impl::slotGetInputSourceMeta(uint64_t id)
{
    return request("slotGetInputSourceMeta", [weakMgr = inputSourceMgr, id]() -> MetaQueryResult {
        const std::shared_ptr<IInputSourceMgr> mgr = weakMgr.lock();
        if (mgr == nullptr) {
            VEXA_WARNING("nullptr == inputSourceMgr");
            return {};
        }
        const IInputSourceMgr::ResourcePtr resource = mgr->getResourceById(id);
        if (resource == nullptr) {
            VEXA_WARNING("nullptr == inputSource");
            return {};
        }
        const std::shared_ptr<zq::mediacore::IMeta> meta = resource->getMeta();
        // The flag tells a drop target whether the page renders natively; every other kind
        // counts as native.
        const bool native = meta == nullptr || meta->getResourceType() != EnResourceType::WebPage ||
                            meta->getWebMode() == 0;
        return {meta, native};
    });
}

void InputSourceBox::Impl::slotItemEdit(uint64_t id)
{
    Q_EMIT owner->signalItemEdit(id);
}

void InputSourceBox::Impl::addItem(uint64_t id, std::shared_ptr<IResource> resource)
{
    std::shared_ptr<zq::mediacore::IMeta> meta =
        resource == nullptr ? nullptr : resource->getMeta();
    if (meta == nullptr || meta->getResourceType() != resourceType) {
        return;
    }
    // A notification of N sources arrives as N queued calls. Tiles are made once the last of
    // them was taken from the queue, a batch at a time with the event loop running between
    // batches: Qt scans the whole queue for some of the events it posts, and making a tile posts
    // several, so making them all at once in a long queue costs N times N. The panel also stays
    // responsive while thousands of tiles arrive.
    unbuilt.push_back({id, std::move(resource), std::move(meta)});
    if (unbuilt.size() == 1) {
        QMetaObject::invokeMethod(this, &Impl::buildNextItems, Qt::QueuedConnection);
    }
}

void InputSourceBox::Impl::buildNextItems()
{
    buildItems(itemsPerBatch);
    if (!unbuilt.empty()) {
        QMetaObject::invokeMethod(this, &Impl::buildNextItems, Qt::QueuedConnection);
    }
}

void InputSourceBox::Impl::buildItems(std::size_t limit)
{
    if (unbuilt.empty()) {
        return;
    }
    // A tile shown in a visible area has the flow layout place every tile again. With the
    // layout switched off while the batch is shown, the tiles are placed once, after it.
    std::vector<InputSourceItem*> made;
    for (std::size_t built = 0; built < limit && !unbuilt.empty(); ++built) {
        const UnbuiltItem next = std::move(unbuilt.front());
        unbuilt.pop_front();
        InputSourceItem* const item = createItem(next.id, *next.resource, *next.meta);
        // Hidden on purpose, so that the layout does not queue a show of its own.
        item->hide();
        flowLayout->addWidget(item);
        index.add(next.id, item);
        made.push_back(item);
    }
    flowLayout->setEnabled(false);
    for (InputSourceItem* const item : made) {
        item->show();
    }
    flowLayout->setEnabled(true);
    titleButton->setChecked(true);
    itemArea->show();
    flowLayout->activate();
    itemArea->adjustSize();
}

void InputSourceBox::Impl::updateItem(uint64_t id, std::shared_ptr<zq::mediacore::IMeta> meta)
{
    buildItems();
    InputSourceItem* const item = index.find(id);
    if (item == nullptr) {
        VEXA_WARNING("nullptr == inputSourceItem");
        return;
    }
    if (meta == nullptr) {
        VEXA_WARNING("nullptr == meta");
        return;
    }
    item->setResolution(QString::fromStdString(meta->getResolutionText()),
                        QString::number(meta->getFrameRate(), 'f', 2));
    showThumbnail(*item, *meta);
    item->setDragEnabled(true);
}

void InputSourceBox::Impl::updateItemOnlineStatus(uint64_t id, bool isOnline)
{
    buildItems();
    InputSourceItem* const item = index.find(id);
    if (item == nullptr) {
        VEXA_WARNING("updateItemOnlineStatus nullptr == inputSourceItem");
        return;
    }
    item->setOnline(isOnline);
}

void InputSourceBox::Impl::deleteItems(const std::vector<uint64_t>& ids)
{
    buildItems();
    for (const uint64_t id : ids) {
        deleteItem(id);
    }
}

void InputSourceBox::Impl::clearItems()
{
    buildItems();
    for (int position = flowLayout->count() - 1; position >= 0; --position) {
        if (auto* const item =
                qobject_cast<InputSourceItem*>(flowLayout->itemAt(position)->widget())) {
            removeItem(item);
        }
    }
}

void InputSourceBox::Impl::renameItem(const STResourceRenamedModel& model)
{
    buildItems();
    InputSourceItem* const item = index.find(model.id);
    if (item == nullptr) {
        VEXA_WARNING("nullptr == inputSourceItem");
        return;
    }
    if (model.flag != 0) {
        askOperator(vexa::widgets::TipDialog::Notice, trKey("NameAlreadyExists"), trKey("OK"),
                    QString());
    }
    // The dialog ran an event loop, in which the manager may have removed the source.
    if (InputSourceItem* const still = index.find(model.id)) {
        still->setName(QString::fromStdString(model.name));
    }
}

void InputSourceBox::Impl::resolutionUpdated(const STInputSource& info)
{
    buildItems();
    InputSourceItem* const item = index.find(info.id);
    if (item == nullptr) {
        VEXA_WARNING("nullptr == inputSourceItem");
        return;
    }
    item->setResolution(
        QStringLiteral("%1*%2").arg(info.resolutionWidth).arg(info.resolutionHeight),
        QString::number(info.frameRate));
}

void InputSourceBox::Impl::captResolutionUpdated(const STInputSource& info)
{
    buildItems();
    InputSourceItem* const item = index.find(info.id);
    if (item != nullptr && !info.captResolutions.empty()) {
        item->setCurrentCaptResolution(info.captResolutions.front());
    }
}

void InputSourceBox::Impl::resolutionError(const quandel::CaptResolutionsInfo& info)
{
    if (msgCenter == nullptr) {
        return;
    }
    quandel::msgcenter::STMessage message;
    message.text = trKey("captResolutionError_1") + resolutionDescription(info) +
                   trKey("captResolutionError_2");
    message.level = quandel::msgcenter::STMessage::Warning;
    message.displayMs = -1;
    msgCenter->postMessage(message);
}

void InputSourceBox::Impl::urlUpdated(const STInputSource& info)
{
    buildItems();
    if (InputSourceItem* const item = index.find(info.id)) {
        item->setUrl(QString::fromStdString(info.address));
    }
}

void InputSourceBox::Impl::previewedItems(const std::vector<STInputSource>& infos)
{
    buildItems();
    for (const STInputSource& info : infos) {
        if (InputSourceItem* const item = index.find(info.id)) {
            item->setPreviewChecked(!info.preview);
        }
    }
}

void InputSourceBox::Impl::onlineTimeUpdateUi(const QVariant& times)
{
    buildItems();
    forEachOnlineTime(times, [this](uint64_t id, int seconds) {
        if (InputSourceItem* const item = index.find(id)) {
            item->setRunningSeconds(seconds);
        }
    });
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
}

void InputSourceBox::setTitle(const QString& title)
{
    d->titleLabel->setText(title);
}

void InputSourceBox::setAddBtnVisible(bool visible)
{
    d->addButton->setVisible(visible);
}

void InputSourceBox::setAddVisible(bool enable)
{
    d->addButton->setEnabled(enable);
    d->setStyleProperty(d->addButton, "imageBtn", enable ? QStringLiteral("close") : QString());
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
    d->relay->setResourceType(type);
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

void InputSourceBox::setZQRuntime(quandel::IZQRuntime* runtime)
{
    d->runtime = runtime;
}

void InputSourceBox::updateFrame(uint64_t id, const zq::mediacore::IFrame* frame)
{
    d->index.deliver(id, frame);
}

std::weak_ptr<IInputSourceMgr> InputSourceBox::inputSourceMgr() const
{
    return d->inputSourceMgr;
}

void InputSourceBox::setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr)
{
    d->inputSourceMgr = mgr;
    std::shared_ptr<IInputSourceMgr> locked = mgr.lock();
    if (locked == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    const bool connected = d->request("setInputSourceMgr", [this, locked = std::move(locked)] {
        for (sigslot::connection& connection : d->connections) {
            connection.disconnect();
        }
        d->connections = d->relay->connect(locked);
        return true;
    });
    if (!connected) {
        return;
    }
    Q_EMIT signalMgrSettingFinished(mgr, d->runtime);
}

void InputSourceBox::unsetInputSourceMgr()
{
    std::shared_ptr<IInputSourceMgr> locked = d->inputSourceMgr.lock();
    if (locked == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    const bool disconnected = d->request("unsetInputSourceMgr", [this, locked = std::move(locked)] {
        for (sigslot::connection& connection : d->connections) {
            connection.disconnect();
        }
        d->connections.clear();
        return true;
    });
    if (!disconnected) {
        return;
    }
    Q_EMIT signalMgrUnsettingFinished();
}

InputSourceItem* InputSourceBox::findItem(uint64_t id)
{
    return d->index.find(id);
}

int InputSourceBox::itemCount() const
{
    return static_cast<int>(d->items().size());
}

void InputSourceBox::clearItem(bool force)
{
    d->buildItems();
    std::shared_ptr<IInputSourceMgr> mgr = d->inputSourceMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    std::vector<uint64_t> ids;
    for (InputSourceItem* const item : d->items()) {
        if (item->kind() == quandel::resource::toCode(EnResourceType::LocalCaptureDevice) ||
            (!force && d->isInUse(item->id()))) {
            continue;
        }
        ids.push_back(item->id());
    }
    d->sendDelete(std::move(mgr), "clearItem", std::move(ids));
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
    if (event->key() == Qt::Key_Delete && !d->isCaptureBox()) {
        d->slotBatchDelete();
    }
    QWidget::keyPressEvent(event);
}

} // namespace vexa::inputsource

#include "inputsourcebox.moc"
