// SPDX-License-Identifier: MIT
#include "inputsourcebox_p.h"

#include "managerrelay.h"
#include "modalloop.h"
#include "trkey.h"

#include <quandel/msgcenter/imsgcentermgr.h>
#include <quandel/msgcenter/stmessage.h>
#include <vexa/widgets/pushbutton.h>
#include <zq/mediacore/imeta.h>

#include <QTimer>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace vexa::inputsource {

namespace {

using quandel::resource::EnResourceType;

constexpr int previewLockOutMs = 500;

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

} // namespace

void InputSourceBox::Impl::unbind()
{
    // Whatever the runtime does with the disconnection, nothing of this binding reaches the box
    // any more once the relay is detached.
    if (relay != nullptr) {
        relay->detach();
        relay.reset();
    }
    for (sigslot::connection& connection : connections) {
        connection.disconnect();
    }
    connections.clear();
}

std::optional<bool> InputSourceBox::Impl::ask(vexa::widgets::TipDialog::EnumTipType type,
                                              const QString& text, const QString& confirm,
                                              const QString& cancel)
{
    vexa::widgets::TipDialog dialog(type);
    dialog.setTipText(text);
    dialog.setBtnText(confirm, cancel, QString());
    int result = vexa::widgets::TipDialog::Closed;
    if (!ModalLoop::run(
            this, [&dialog, &result] { result = dialog.run().result; }, &dialog)) {
        return std::nullopt;
    }
    return result == vexa::widgets::TipDialog::FirstButton;
}

std::optional<bool> InputSourceBox::Impl::confirmDelete(const char* key)
{
    return ask(vexa::widgets::TipDialog::Warning, trKey(key), trKey("OK"), trKey("Cancel"));
}

void InputSourceBox::Impl::slotPreviewClicked(bool isChecked)
{
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
    manager.send(VEXA_HERE, "slotPreviewClicked",
                 [sources = std::move(sources), enable = !isChecked](IInputSourceMgr& mgr) {
                     mgr.previewInputSources(sources, enable);
                 });
}

void InputSourceBox::Impl::slotItemPreviewChanged(uint64_t id, bool isOpen)
{
    STInputSource source;
    source.id = id;
    source.preview = isOpen;
    manager.send(VEXA_HERE, "slotItemPreviewChanged",
                 [sources = std::vector<STInputSource>{source}, isOpen](IInputSourceMgr& mgr) {
                     mgr.previewInputSources(sources, isOpen);
                 });
}

void InputSourceBox::Impl::slotItemDelete(uint64_t id)
{
    if (isInUse(id) && !confirmDelete("DeleteText").value_or(false)) {
        return;
    }
    manager.send(VEXA_HERE, "slotItemDelete",
                 [id](IInputSourceMgr& mgr) { mgr.deleteInputSources({id}); });
}

void InputSourceBox::Impl::slotBatchDelete()
{
    batchDelete();
}

bool InputSourceBox::Impl::batchDelete()
{
    if (isCaptureBox()) {
        return true;
    }
    std::vector<uint64_t> ids = selection;
    const bool anyInUse =
        std::any_of(ids.begin(), ids.end(), [this](uint64_t id) { return isInUse(id); });
    if (anyInUse) {
        const std::optional<bool> confirmed = confirmDelete("DeleteBatchText");
        if (!confirmed.has_value()) {
            return false;
        }
        if (!*confirmed) {
            return true;
        }
    }
    manager.send(VEXA_HERE, "slotBatchDelete",
                 [ids = std::move(ids)](IInputSourceMgr& mgr) { mgr.deleteInputSources(ids); });
    return true;
}

void InputSourceBox::Impl::slotItemNameChanged(uint64_t id, const QString& name)
{
    STResourceRenamedModel model;
    model.id = id;
    model.name = name.toStdString();
    // The outcome arrives as a rename notification.
    manager.send(
        VEXA_HERE, "slotItemNameChanged",
        [model = std::move(model)](IInputSourceMgr& mgr) { return mgr.renameInputSource(model); });
}

void InputSourceBox::Impl::slotCaptResolutionChanged(uint64_t id,
                                                     const quandel::CaptResolutionsInfo& captInfo)
{
    STInputSource source;
    source.id = id;
    source.captResolutions = {captInfo};
    manager.send(
        VEXA_HERE, "slotCaptResolutionChanged",
        [source = std::move(source)](IInputSourceMgr& mgr) { mgr.changeCaptResolution(source); });
}

MetaQueryResult InputSourceBox::Impl::slotGetInputSourceMeta(uint64_t id)
{
    // The manager is locked on the runtime thread, where the query runs.
    return manager.call(VEXA_HERE, "slotGetInputSourceMeta",
                        [access = manager, id, site = VEXA_HERE]() -> MetaQueryResult {
                            const std::shared_ptr<IInputSourceMgr> mgr = access.lock(site);
                            if (mgr == nullptr) {
                                return {};
                            }
                            const IInputSourceMgr::ResourcePtr resource = mgr->getResourceById(id);
                            if (resource == nullptr) {
                                vexa::diagnostics::warn(site, "nullptr == inputSource");
                                return {};
                            }
                            const std::shared_ptr<zq::mediacore::IMeta> meta = resource->getMeta();
                            // The flag tells a drop target whether the page renders natively; every
                            // other kind counts as native.
                            const bool native =
                                meta == nullptr ||
                                meta->getResourceType() != EnResourceType::WebPage ||
                                meta->getWebMode() == 0;
                            return {meta, native};
                        });
}

void InputSourceBox::Impl::addItem(uint64_t id, std::shared_ptr<IResource> resource)
{
    const std::shared_ptr<zq::mediacore::IMeta> meta =
        resource == nullptr ? nullptr : resource->getMeta();
    if (meta == nullptr || meta->getResourceType() != resourceType) {
        return;
    }
    appendItem(id, createItem(id, *resource, *meta));
}

void InputSourceBox::Impl::updateItem(uint64_t id, std::shared_ptr<zq::mediacore::IMeta> meta)
{
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
    item->setThumbnail(meta->getThumbnail());
    item->setDragEnabled(true);
}

void InputSourceBox::Impl::updateItemOnlineStatus(uint64_t id, bool isOnline)
{
    InputSourceItem* const item = index.find(id);
    if (item == nullptr) {
        VEXA_WARNING("updateItemOnlineStatus nullptr == inputSourceItem");
        return;
    }
    item->setOnline(isOnline);
}

void InputSourceBox::Impl::deleteItems(const std::vector<uint64_t>& ids)
{
    for (const uint64_t id : ids) {
        deleteItem(id);
    }
}

void InputSourceBox::Impl::clearItems()
{
    const std::vector<InputSourceItem*> all = items();
    std::for_each(all.rbegin(), all.rend(), [this](InputSourceItem* item) { removeItem(item); });
}

void InputSourceBox::Impl::renameItem(const STResourceRenamedModel& model)
{
    pendingRenames.push_back(model);
    // A notice already open further up the stack takes this one when it closes.
    if (renaming) {
        return;
    }
    renaming = true;
    while (!pendingRenames.empty()) {
        const STResourceRenamedModel next = std::move(pendingRenames.front());
        pendingRenames.pop_front();
        if (!applyRename(VEXA_HERE, next)) {
            return;
        }
    }
    renaming = false;
}

bool InputSourceBox::Impl::applyRename(const vexa::diagnostics::CallSite& site,
                                       const STResourceRenamedModel& model)
{
    if (index.find(model.id) == nullptr) {
        vexa::diagnostics::warn(site, "nullptr == inputSourceItem");
        return true;
    }
    if (model.flag != 0 &&
        !ask(vexa::widgets::TipDialog::Notice, trKey("NameAlreadyExists"), trKey("OK"), QString())
             .has_value()) {
        return false;
    }
    // The notice ran an event loop, in which the manager may have removed the source.
    if (InputSourceItem* const item = index.find(model.id)) {
        item->setName(QString::fromStdString(model.name));
    }
    return true;
}

void InputSourceBox::Impl::resolutionUpdated(const STInputSource& info)
{
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
    if (InputSourceItem* const item = index.find(info.id)) {
        item->setUrl(QString::fromStdString(info.address));
    }
}

void InputSourceBox::Impl::previewedItems(const std::vector<STInputSource>& infos)
{
    for (const STInputSource& info : infos) {
        if (InputSourceItem* const item = index.find(info.id)) {
            item->setPreviewChecked(!info.preview);
        }
    }
}

void InputSourceBox::Impl::onlineTimeUpdateUi(const QVariant& times)
{
    forEachOnlineTime(times, [this](uint64_t id, int seconds) {
        if (InputSourceItem* const item = index.find(id)) {
            item->setRunningSeconds(seconds);
        }
    });
}

std::weak_ptr<IInputSourceMgr> InputSourceBox::inputSourceMgr() const
{
    return d->manager.manager();
}

void InputSourceBox::setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr)
{
    // Whatever comes of the new binding, the previous manager is followed no longer.
    d->unbind();
    d->manager.setManager(mgr);
    std::shared_ptr<IInputSourceMgr> locked = d->manager.lock(VEXA_HERE);
    if (locked == nullptr) {
        return;
    }
    d->relay = std::make_shared<ManagerRelay>(d.get(), d->resourceType);
    // A runtime that refuses leaves the box bound without notifications; the binding is
    // announced all the same.
    d->connections = d->manager.call(
        VEXA_HERE, "setInputSourceMgr",
        [relay = d->relay, locked = std::move(locked)] { return relay->connect(locked); });
    Q_EMIT signalMgrSettingFinished(mgr, d->manager.runtime());
}

void InputSourceBox::unsetInputSourceMgr()
{
    std::shared_ptr<IInputSourceMgr> locked = d->manager.lock(VEXA_HERE);
    if (locked == nullptr) {
        d->unbind();
        d->manager.reset();
        return;
    }
    d->manager.call(
        VEXA_HERE, "unsetInputSourceMgr",
        [connections = std::exchange(d->connections, {}), locked = std::move(locked)]() mutable {
            for (sigslot::connection& connection : connections) {
                connection.disconnect();
            }
        });
    d->unbind();
    d->manager.reset();
    Q_EMIT signalMgrUnsettingFinished();
}

void InputSourceBox::clearItem(bool force)
{
    const std::shared_ptr<IInputSourceMgr> mgr = d->manager.lock(VEXA_HERE);
    if (mgr == nullptr) {
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
    d->manager.call(VEXA_HERE, "clearItem",
                    [mgr, ids = std::move(ids)] { mgr->deleteInputSources(ids); });
}

} // namespace vexa::inputsource
