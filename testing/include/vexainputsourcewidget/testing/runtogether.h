// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <functional>
#include <vector>

namespace vexa::testing {

/// Runs each body on a thread of its own, releasing them all at the same moment so that they
/// overlap as much as the machine allows, and returns once every body has finished. A body
/// must not throw. Any thread.
VEXAINPUTSOURCEWIDGET_TESTING_EXPORT void
runTogether(const std::vector<std::function<void()>>& bodies);

} // namespace vexa::testing
