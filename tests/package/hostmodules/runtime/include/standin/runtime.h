// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/runtime/izqruntime.h>
#include <quandel/runtime/quandel_runtime_export.h>

#include <functional>
#include <memory>

namespace standin {

/// This host's runtime: a worker thread that runs posted tasks in order. It has no gate and
/// keeps no call sites, unlike the reference runtime, and counts the tasks it started, so that a
/// test sees the library use it. Any thread; destroying it runs the tasks still queued.
class QUANDEL_RUNTIME_EXPORT Runtime : public quandel::IZQRuntime
{
public:
    Runtime();
    ~Runtime() override;

    void post(std::function<void()> task, const char* file, int line,
              const char* function) override;
    bool isInRuntimeThread() const override;
    bool checkCall(const char* file, int line, const char* function) override;

    /// How many tasks have started so far; a task that a caller waits for has started by the
    /// time the caller goes on.
    int tasksStarted() const;

private:
    struct State;
    std::unique_ptr<State> const d;
};

} // namespace standin
