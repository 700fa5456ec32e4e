// SPDX-License-Identifier: MIT
#pragma once

#include "logcategory.h"
#include "relaytarget.h"

#include <vexainputsourcewidget/iinputsourcemgr.h>

#include <quandel/resource/enresourcetype.h>
#include <sigslot/signal.h>

#include <QGenericArgument>
#include <QObject>

#include <atomic>
#include <memory>
#include <vector>

namespace vexa::inputsource {

/// The runtime-thread side of a box's binding: receives the manager's notifications on the
/// runtime thread, copies what they carry and queues the matching slot of its target on the
/// target's thread, by name, in the order the manager fired them.
///
/// The manager's signals keep the relay alive through their connections, so a notification
/// already under way when the box goes still finds a relay; detach() makes it drop everything
/// from then on, without waiting for the runtime.
class ManagerRelay : public std::enable_shared_from_this<ManagerRelay>
{
public:
    /// A relay queuing to `target`'s slots "addItem", "updateItem", ... (not owned; see
    /// detach()). Online states are passed on only for `type`.
    ManagerRelay(QObject* target, quandel::resource::EnResourceType type);
    ~ManagerRelay();
    ManagerRelay(const ManagerRelay&) = delete;
    ManagerRelay& operator=(const ManagerRelay&) = delete;

    /// The type whose online states are passed on. Any thread.
    void setResourceType(quandel::resource::EnResourceType type);

    /// Connects the relay to every notification a box reacts to; returns the connections.
    /// Runtime thread.
    std::vector<sigslot::connection> connect(const std::shared_ptr<IInputSourceMgr>& mgr);

    /// Stops queuing: once it has returned, no call reaches the target. Any thread.
    void detach();

private:
    void resourcesAdded(const std::vector<IInputSourceMgr::ResourcePtr>& resources);
    void resourceExtracted(const IInputSourceMgr::ResourcePtr& resource);
    void onlineStatusChanged(const std::map<uint64_t, bool>& states, int type);
    void webInfoChanged(const std::weak_ptr<IInputSourceMgr>& mgr, const STWebOperation& operation);

    template <typename... Args>
    void queue(const char* slot, Args... args)
    {
        m_target.queue(slot, args...);
    }

    RelayTarget m_target;
    std::atomic<int> m_type;
};

} // namespace vexa::inputsource
