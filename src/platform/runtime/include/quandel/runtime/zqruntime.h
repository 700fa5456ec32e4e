// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/runtime/izqruntime.h>
#include <quandel/runtime/quandel_runtime_export.h>

#include <cstddef>
#include <memory>

namespace quandel {

/// Reference runtime: one worker thread running posted tasks in FIFO order, a gate that the
/// host can close, and a stop that either runs or discards what is still queued.
///
/// The worker starts in the constructor. A task that throws is reported as a Qt warning
/// naming the call site that posted it, and the worker goes on with the next task.
/// Every member may be called from any thread unless its comment says otherwise.
class QUANDEL_RUNTIME_EXPORT ZQRuntime : public IZQRuntime
{
public:
    /// What stop() does with the tasks that are still queued.
    enum class StopMode
    {
        RunQueued,    ///< run every queued task, then end the worker
        DiscardQueued ///< destroy the queued tasks unrun, then end the worker
    };

    /// Starts the worker thread. The gate starts open.
    ZQRuntime();

    /// Stops with StopMode::RunQueued unless stop() was called before. Must not run on the
    /// runtime thread (from a task): that is fatal, since the worker cannot wait for itself.
    ~ZQRuntime() override;

    void post(std::function<void()> task, const char* file, int line,
              const char* function) override;
    bool isInRuntimeThread() const override;

    /// Answers the gate's state: true while open and not stopped.
    bool checkCall(const char* file, int line, const char* function) override;

    /// Opens or closes the gate that checkCall() reports. Posting is not affected: a closed
    /// gate tells callers not to post, it does not drop what they post anyway.
    void setGateOpen(bool open);

    /// True while the gate is open.
    bool isGateOpen() const;

    /// Ends the worker after running or discarding the queued tasks, and waits for it, so that
    /// every task has either run or been destroyed when this returns. Later posts destroy
    /// their task unrun. Idempotent: a later call keeps the first call's mode. Called from a
    /// task on the runtime thread, it does not wait: the worker ends once that task returns
    /// (with RunQueued, after running the rest of the queue).
    void stop(StopMode mode = StopMode::RunQueued);

    /// True once stop() has begun.
    bool isStopped() const;

    /// Number of tasks queued and not yet started.
    std::size_t pendingCount() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace quandel
