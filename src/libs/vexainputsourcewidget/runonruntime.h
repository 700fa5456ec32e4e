// SPDX-License-Identifier: MIT
#pragma once

#include "logcategory.h"

#include <quandel/runtime/izqruntime.h>

#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <utility>

namespace vexa::inputsource {

/// Runs `callable` on the runtime thread and returns its result to the caller, who waits for
/// it without a time-out. `file`, `line` and `function` name the call site for the runtime.
///
/// - When the runtime's gate refuses the call, the callable is destroyed unrun and a
///   value-initialised result comes back: nothing, false, or an empty pointer with false.
/// - On the runtime thread itself the callable runs at once, so a caller there never waits on
///   its own queue.
/// - Otherwise the callable is posted as a packaged task. An exception it throws is re-thrown
///   here; a task the runtime destroys unrun makes this throw std::future_error
///   (broken_promise).
///
/// The callable owns what it needs: bind the manager as a std::shared_ptr and copy the
/// arguments, so that both outlive a queued call.
template <typename Callable, typename Result = std::invoke_result_t<std::decay_t<Callable>&>>
Result runOnRuntime(quandel::IZQRuntime* runtime, const char* file, int line, const char* function,
                    Callable&& callable)
{
    if (runtime == nullptr) {
        VEXA_WARNING("nullptr == runtime");
        return Result();
    }
    if (!runtime->checkCall(file, line, function)) {
        // Scoped so that the callable, and the manager reference it holds, go now.
        [[maybe_unused]] const std::decay_t<Callable> refused(std::forward<Callable>(callable));
        return Result();
    }
    if (runtime->isInRuntimeThread()) {
        return std::invoke(callable);
    }
    auto task = std::make_shared<std::packaged_task<Result()>>(std::forward<Callable>(callable));
    std::future<Result> result = task->get_future();
    // The queued function must own the task alone: a runtime that discards it then destroys the
    // task, which is what breaks the promise this caller waits on.
    runtime->post([task = std::move(task)] { (*task)(); }, file, line, function);
    return result.get();
}

} // namespace vexa::inputsource
