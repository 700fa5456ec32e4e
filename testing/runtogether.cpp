// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/runtogether.h>

#include <atomic>
#include <thread>

namespace vexa::testing {

void runTogether(const std::vector<std::function<void()>>& bodies)
{
    // Spinning rather than waiting on a condition variable: released threads start within
    // microseconds of each other, which is what makes races likely to show.
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    threads.reserve(bodies.size());
    for (const auto& body : bodies) {
        threads.emplace_back([&go, &body] {
            while (!go.load()) {
                std::this_thread::yield();
            }
            body();
        });
    }
    go = true;
    for (auto& thread : threads) {
        thread.join();
    }
}

} // namespace vexa::testing
