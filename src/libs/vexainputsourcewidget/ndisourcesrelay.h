// SPDX-License-Identifier: MIT
#pragma once

#include "relaytarget.h"

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <sigslot/signal.h>

#include <QObject>

#include <memory>

namespace vexa::inputsource {

/// The runtime-thread side of the NDI dialog's binding: receives the manager's sender lists on
/// whatever thread fires them, copies each and queues the target's "updateList" on the GUI
/// thread, in the order they were fired.
///
/// The connection keeps the relay alive, so a list already under way when the dialog goes or
/// unbinds still finds a relay; detach() makes it drop everything from then on.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT NdiSourcesRelay
    : public std::enable_shared_from_this<NdiSourcesRelay>
{
public:
    /// A relay queuing to `target`'s slot updateList(std::vector<STResourceRenamedModel>) (not
    /// owned; see detach()).
    explicit NdiSourcesRelay(QObject* target);
    NdiSourcesRelay(const NdiSourcesRelay&) = delete;
    NdiSourcesRelay& operator=(const NdiSourcesRelay&) = delete;

    /// Connects the relay to the manager's sender lists. Runtime thread.
    sigslot::connection connect(const std::shared_ptr<IInputSourceMgr>& mgr);

    /// Stops queuing: once it has returned, no list reaches the target. Any thread.
    void detach();

private:
    RelayTarget m_target;
};

} // namespace vexa::inputsource
