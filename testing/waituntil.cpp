// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/waituntil.h>

#include <thread>

namespace vexa::testing {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

} // namespace vexa::testing
