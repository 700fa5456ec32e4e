// SPDX-License-Identifier: MIT
#pragma once

#include "relaytarget.h"

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <sigslot/signal.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace vexa::inputsource {

class LoadWatch;

/// The runtime-thread side of the web dialog's binding: receives the manager's web
/// notifications on whatever thread fires them. Load readings and thresholds go straight into
/// the shared LoadWatch; a changed description of the source being edited and the notice about
/// a native page on several patches are copied and queued to the target's "doWebInfoChanged"
/// and "doSameNativeWebOnPatchs" on the GUI thread. Notifications of another kind than 1, and
/// other codes, are dropped.
///
/// The connection keeps the relay (and with it the LoadWatch) alive, so a notification already
/// under way when the dialog goes or unbinds still finds both; detach() makes the relay queue
/// nothing from then on.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT WebInfoRelay
    : public std::enable_shared_from_this<WebInfoRelay>
{
public:
    /// A relay queuing to `target` (not owned; see detach()) and writing into `watch`.
    WebInfoRelay(QObject* target, std::shared_ptr<LoadWatch> watch);
    WebInfoRelay(const WebInfoRelay&) = delete;
    WebInfoRelay& operator=(const WebInfoRelay&) = delete;

    /// The source whose changed description is passed on; 0 passes none on. Any thread.
    void setEditedId(uint64_t id);

    /// Connects the relay to the manager's web notifications. Runtime thread.
    sigslot::connection connect(const std::shared_ptr<IInputSourceMgr>& mgr);

    /// Handles one notification. The thread that fires it.
    void handle(const STWebOperation& operation);

    /// Stops queuing: once it has returned, nothing reaches the target. Any thread.
    void detach();

private:
    RelayTarget m_target;
    const std::shared_ptr<LoadWatch> m_watch;
    std::atomic<uint64_t> m_editedId{0};
};

} // namespace vexa::inputsource
