// SPDX-License-Identifier: MIT
#include "manageraccess.h"

namespace vexa::inputsource {

std::shared_ptr<IInputSourceMgr> ManagerAccess::lock(const vexa::diagnostics::CallSite& site,
                                                     const char* text) const
{
    std::shared_ptr<IInputSourceMgr> mgr = m_manager.lock();
    if (mgr == nullptr) {
        vexa::diagnostics::warn(site, text);
    }
    return mgr;
}

} // namespace vexa::inputsource
