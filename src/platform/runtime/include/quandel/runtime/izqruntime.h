// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/runtime/quandel_runtime_export.h>

#include <functional>

namespace quandel {

/// The host's runtime: one thread on which the host's objects live and its tasks run.
/// Widgets hold it as a raw pointer and never own it; the host keeps it alive for as long
/// as any widget may call it.
class QUANDEL_RUNTIME_EXPORT IZQRuntime
{
public:
    virtual ~IZQRuntime();

    /// Queues `task` to run on the runtime thread, after every task queued before it. `file`,
    /// `line` and `function` name the call site, for the runtime's diagnostics. Any thread.
    /// A runtime that cannot run the task destroys it unrun.
    virtual void post(std::function<void()> task, const char* file, int line,
                      const char* function) = 0;

    /// True when called on the runtime thread itself. Any thread.
    virtual bool isInRuntimeThread() const = 0;

    /// Gate in front of every call: false means the runtime accepts no call now and the caller
    /// must give up without posting. The arguments name the call site. Any thread.
    virtual bool checkCall(const char* file, int line, const char* function) = 0;

protected:
    IZQRuntime() = default;
    IZQRuntime(const IZQRuntime&) = delete;
    IZQRuntime& operator=(const IZQRuntime&) = delete;
};

} // namespace quandel
