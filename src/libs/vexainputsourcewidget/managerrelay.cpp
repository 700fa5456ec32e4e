// SPDX-License-Identifier: MIT
#include "managerrelay.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <zq/mediacore/imeta.h>

#include <QVariant>

namespace vexa::inputsource {

using quandel::resource::EnResourceType;

ManagerRelay::ManagerRelay(QObject* target, EnResourceType type)
    : m_target(target)
    , m_type(quandel::resource::toCode(type))
{}

ManagerRelay::~ManagerRelay() = default;

void ManagerRelay::setResourceType(EnResourceType type)
{
    m_type.store(quandel::resource::toCode(type));
}

void ManagerRelay::detach()
{
    m_target.detach();
}

std::vector<sigslot::connection> ManagerRelay::connect(const std::shared_ptr<IInputSourceMgr>& mgr)
{
    // Each slot holds the relay, not the box: the box may go while a notification is under way.
    const std::shared_ptr<ManagerRelay> self = shared_from_this();
    const std::weak_ptr<IInputSourceMgr> weakMgr = mgr;
    std::vector<sigslot::connection> connections;
    connections.push_back(mgr->signalResourcesAdded.connect(
        [self](const std::vector<IInputSourceMgr::ResourcePtr>& resources,
               const std::vector<STInputSource>&) { self->resourcesAdded(resources); }));
    connections.push_back(
        mgr->signalResourceExtracted.connect([self](const IInputSourceMgr::ResourcePtr& resource,
                                                    const quandel::resource::STResouceExtracted&) {
            self->resourceExtracted(resource);
        }));
    connections.push_back(mgr->signalOnlineStatusChanged.connect(
        [self](const std::map<uint64_t, bool>& states, int type) {
            self->onlineStatusChanged(states, type);
        }));
    connections.push_back(
        mgr->signalResourcesDeleted.connect([self](const std::vector<uint64_t>& ids) {
            self->queue("deleteItems",
                        QArgument<std::vector<uint64_t>>("const std::vector<uint64_t>", ids));
        }));
    connections.push_back(mgr->signalResourceRenamed.connect(
        [self](const vexa::STResourceRenamedModel& model, bool&) {
            self->queue("renameItem", QArgument<vexa::STResourceRenamedModel>(
                                          "const STResourceRenamedModel&", model));
        }));
    connections.push_back(
        mgr->signalResourcesCleared.connect([self] { self->queue("clearItems"); }));
    connections.push_back(
        mgr->signalPreviewedChanged.connect([self](const std::vector<STInputSource>& sources) {
            self->queue("previewedItems", QArgument<std::vector<STInputSource>>(
                                              "const std::vector<STInputSource>&", sources));
        }));
    connections.push_back(mgr->signalResolutionUpdated.connect([self](const STInputSource& source) {
        self->queue("resolutionUpdated", QArgument<STInputSource>("const STInputSource&", source));
    }));
    connections.push_back(
        mgr->signalResolutionError.connect([self](const quandel::CaptResolutionsInfo& info) {
            self->queue("resolutionError", QArgument<quandel::CaptResolutionsInfo>(
                                               "const quandel::CaptResolutionsInfo&", info));
        }));
    connections.push_back(
        mgr->signalCaptResolutionUpdated.connect([self](const STInputSource& source) {
            self->queue("captResolutionUpdated",
                        QArgument<STInputSource>("const STInputSource&", source));
        }));
    connections.push_back(
        mgr->signalOnlineTimeUpdated.connect([self](const std::map<uint64_t, int>& times) {
            const QVariant wrapped = QVariant::fromValue(times);
            self->queue("onlineTimeUpdateUi", QArgument<QVariant>("QVariant", wrapped));
        }));
    connections.push_back(
        mgr->signalWebInfoChanged.connect([self, weakMgr](const STWebOperation& operation) {
            self->webInfoChanged(weakMgr, operation);
        }));
    return connections;
}

void ManagerRelay::resourcesAdded(const std::vector<IInputSourceMgr::ResourcePtr>& resources)
{
    for (const IInputSourceMgr::ResourcePtr& resource : resources) {
        if (resource == nullptr) {
            VEXA_WARNING("nullptr == resource");
            continue;
        }
        const uint64_t id = resource->getId();
        queue("addItem", QArgument<uint64_t>("uint64_t", id),
              QArgument<IInputSourceMgr::ResourcePtr>("std::shared_ptr<IResource>", resource));
    }
}

void ManagerRelay::resourceExtracted(const IInputSourceMgr::ResourcePtr& resource)
{
    if (resource == nullptr) {
        VEXA_WARNING("nullptr == resource");
        return;
    }
    if (quandel::resource::toCode(resource->getType()) != m_type.load()) {
        return;
    }
    const uint64_t id = resource->getId();
    const std::shared_ptr<zq::mediacore::IMeta> meta = resource->getMeta();
    queue("updateItem", QArgument<uint64_t>("uint64_t", id),
          QArgument<std::shared_ptr<zq::mediacore::IMeta>>("std::shared_ptr<zq::mediacore::IMeta>",
                                                           meta));
}

void ManagerRelay::onlineStatusChanged(const std::map<uint64_t, bool>& states, int type)
{
    if (type != m_type.load()) {
        return;
    }
    for (const auto& [id, online] : states) {
        queue("updateItemOnlineStatus", QArgument<uint64_t>("uint64_t", id),
              QArgument<bool>("bool", online));
    }
}

void ManagerRelay::webInfoChanged(const std::weak_ptr<IInputSourceMgr>& weakMgr,
                                  const STWebOperation& operation)
{
    // Only a changed web description carries an address; load readings and the other codes
    // arrive every few seconds and are the web dialog's business.
    if (operation.kind != 1 || operation.code != STWebOperation::WebDescriptionChanged) {
        return;
    }
    const std::shared_ptr<IInputSourceMgr> mgr = weakMgr.lock();
    if (mgr == nullptr) {
        VEXA_WARNING("nullptr == inputSourceMgr");
        return;
    }
    const IInputSourceMgr::ResourcePtr resource = mgr->getResourceById(operation.id);
    if (resource == nullptr) {
        VEXA_WARNING("nullptr == inputSource");
        return;
    }
    STInputSource source;
    source.id = operation.id;
    source.sourceType = quandel::resource::toCode(EnResourceType::WebPage);
    source.name = resource->getName();
    source.webName = operation.webDescription.webName;
    source.webMode = operation.webDescription.webMode;
    source.currentTabIndex = operation.webDescription.currentTabIndex;
    source.webTabs = operation.webDescription.webTabs;
    source.address = operation.webDescription.address;
    if (source.address.empty()) {
        if (const std::shared_ptr<zq::mediacore::IMeta> meta = resource->getMeta()) {
            source.address = meta->getAddress();
        }
    }
    queue("urlUpdated", QArgument<STInputSource>("const STInputSource&", source));
}

} // namespace vexa::inputsource
