// SPDX-License-Identifier: MIT
#pragma once

#include "manageraccess.h"

#include <vexainputsourcewidget/iinputsourcemgr.h>

#include <sigslot/signal.h>

#include <memory>
#include <utility>

namespace vexa::inputsource {

/// A dialog's subscription to some of the manager's notifications through a relay (`Relay`:
/// connect(mgr) on the runtime thread, returning the connection; detach() from any thread): the
/// relay of the current binding and its connection. A new relay for every binding, so that
/// nothing of a previous manager reaches the dialog once it is dropped. GUI thread.
template <typename Relay>
class RelaySubscription
{
public:
    /// Drops the current subscription, then connects `relay` to `mgr` on the runtime thread of
    /// `manager`, waiting for it; `site` is the caller's. A runtime that refuses leaves the
    /// relay unconnected.
    void subscribe(const ManagerAccess& manager, const vexa::diagnostics::CallSite& site,
                   std::shared_ptr<IInputSourceMgr> mgr, std::shared_ptr<Relay> relay)
    {
        drop();
        m_relay = std::move(relay);
        m_connection =
            manager.call(site, "setInputSourceMgr",
                         [relay = m_relay, mgr = std::move(mgr)] { return relay->connect(mgr); });
    }

    /// Detaches the relay and disconnects it, without waiting for anything: once it returns, no
    /// notification reaches the dialog, whatever the runtime does.
    void drop()
    {
        if (m_relay != nullptr) {
            m_relay->detach();
            m_relay.reset();
        }
        m_connection.disconnect();
    }

    /// Takes the connection away, for a disconnection where the notifications fire.
    sigslot::connection takeConnection() { return std::exchange(m_connection, {}); }

    /// The relay of the current binding; null while unbound.
    Relay* relay() const { return m_relay.get(); }

private:
    std::shared_ptr<Relay> m_relay;
    sigslot::connection m_connection;
};

} // namespace vexa::inputsource
