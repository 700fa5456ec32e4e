// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <chrono>
#include <functional>

namespace vexa::testing {

/// Evaluates `condition` again and again on the calling thread until it holds, and returns
/// true then, or false once `timeout` has passed without it holding. It does not process Qt
/// events, so it suits conditions that other threads make true (a runtime's queue, a flag set
/// by a task); for conditions that need the event loop use QTRY_VERIFY. Any thread.
VEXAINPUTSOURCEWIDGET_TESTING_EXPORT bool waitUntil(const std::function<bool()>& condition,
                                                    std::chrono::milliseconds timeout);

} // namespace vexa::testing
