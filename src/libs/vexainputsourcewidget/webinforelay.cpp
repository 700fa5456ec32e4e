// SPDX-License-Identifier: MIT
#include "webinforelay.h"

#include "loadwatch.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>

namespace vexa::inputsource {

WebInfoRelay::WebInfoRelay(QObject* target, std::shared_ptr<LoadWatch> watch)
    : m_target(target)
    , m_watch(std::move(watch))
{}

void WebInfoRelay::setEditedId(uint64_t id)
{
    m_editedId.store(id, std::memory_order_relaxed);
}

sigslot::connection WebInfoRelay::connect(const std::shared_ptr<IInputSourceMgr>& mgr)
{
    // The slot holds the relay, not the dialog: the dialog may go while a notification is
    // under way.
    const std::shared_ptr<WebInfoRelay> self = shared_from_this();
    return mgr->signalWebInfoChanged.connect(
        [self](const STWebOperation& operation) { self->handle(operation); });
}

void WebInfoRelay::handle(const STWebOperation& operation)
{
    if (operation.kind != 1) {
        return;
    }
    switch (operation.code) {
    case STWebOperation::WebDescriptionChanged: {
        // Ids of real sources are never 0, so an add-mode dialog takes no description.
        const uint64_t edited = m_editedId.load(std::memory_order_relaxed);
        if (edited != 0 && operation.id == edited) {
            m_target.queue("doWebInfoChanged",
                           QArgument<STWebOperation>("STWebOperation", operation));
        }
        break;
    }
    case STWebOperation::LoadReadings:
        m_watch->setReadings(operation.loadReadings);
        break;
    case STWebOperation::LoadThresholds:
        m_watch->setThresholds(operation.loadThresholds);
        break;
    case STWebOperation::SameNativePageOnPatches:
        m_target.queue("doSameNativeWebOnPatchs",
                       QArgument<STWebOperation>("STWebOperation", operation));
        break;
    default:
        break;
    }
}

void WebInfoRelay::detach()
{
    m_target.detach();
}

} // namespace vexa::inputsource
