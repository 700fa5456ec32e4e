// SPDX-License-Identifier: MIT
#include "ndisourcesrelay.h"

#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <vector>

namespace vexa::inputsource {

NdiSourcesRelay::NdiSourcesRelay(QObject* target)
    : m_target(target)
{}

sigslot::connection NdiSourcesRelay::connect(const std::shared_ptr<IInputSourceMgr>& mgr)
{
    // The slot holds the relay, not the dialog: the dialog may go while a list is under way.
    const std::shared_ptr<NdiSourcesRelay> self = shared_from_this();
    return mgr->signalNdiSourcesUpdated.connect(
        [self](const std::vector<vexa::STResourceRenamedModel>& models) {
            self->m_target.queue("updateList",
                                 QArgument<std::vector<vexa::STResourceRenamedModel>>(
                                     "const std::vector<STResourceRenamedModel>&", models));
        });
}

void NdiSourcesRelay::detach()
{
    m_target.detach();
}

} // namespace vexa::inputsource
