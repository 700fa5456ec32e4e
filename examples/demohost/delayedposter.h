// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quandel {
class IZQRuntime;
} // namespace quandel

namespace demohost {

/// Posts tasks to a runtime once a delay has passed, from a thread of its own, so that a
/// simulated device can answer "later" on the runtime thread as a real one would. Tasks due at
/// the same moment are posted in the order they were queued.
///
/// Every member may be called from any thread, tasks included. The runtime is not owned; it must
/// accept posts until stop() has returned.
class DelayedPoster
{
public:
    /// Starts the thread; nothing is queued.
    explicit DelayedPoster(quandel::IZQRuntime* runtime);

    /// Calls stop().
    ~DelayedPoster();

    DelayedPoster(const DelayedPoster&) = delete;
    DelayedPoster& operator=(const DelayedPoster&) = delete;

    /// Queues `task` to be posted to the runtime after `delay`. After stop() the task is
    /// destroyed unrun on the calling thread.
    void postAfter(std::chrono::milliseconds delay, std::function<void()> task);

    /// Ends the thread and destroys the tasks not posted yet, unrun, and waits for the thread.
    /// Idempotent. Not from the destructor of something a queued task captured: that may run on
    /// the poster's own thread, which cannot wait for itself.
    void stop();

    /// How many tasks wait for their moment.
    int pendingCount() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
