// SPDX-License-Identifier: MIT
#include "relaytarget.h"

namespace vexa::inputsource {

RelayTarget::RelayTarget(QObject* target)
    : m_target(target)
{}

void RelayTarget::detach()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_target = nullptr;
}

} // namespace vexa::inputsource
