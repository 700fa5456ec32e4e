// SPDX-License-Identifier: MIT
#include "delayedposter.h"

#include <quandel/runtime/izqruntime.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace demohost {

using Clock = std::chrono::steady_clock;

struct DelayedPoster::Impl
{
    explicit Impl(quandel::IZQRuntime* hostRuntime)
        : runtime(hostRuntime)
    {}

    void run();

    quandel::IZQRuntime* const runtime;
    mutable std::mutex mutex;
    std::condition_variable wake;
    // A multimap keeps tasks with the same due time in the order they were queued.
    std::multimap<Clock::time_point, std::function<void()>> queue;
    bool stopping = false;
    std::thread thread;
};

void DelayedPoster::Impl::run()
{
    std::unique_lock<std::mutex> lock(mutex);
    while (!stopping) {
        if (queue.empty()) {
            wake.wait(lock);
            continue;
        }
        const Clock::time_point due = queue.begin()->first;
        if (Clock::now() < due) {
            wake.wait_until(lock, due);
            continue;
        }
        std::vector<std::function<void()>> ready;
        const auto end = queue.upper_bound(Clock::now());
        for (auto it = queue.begin(); it != end; ++it) {
            ready.push_back(std::move(it->second));
        }
        queue.erase(queue.begin(), end);
        // Posting outside the lock: a runtime that refuses the task destroys it inside post(),
        // and what the task captured may queue again from its destructor.
        lock.unlock();
        for (auto& task : ready) {
            runtime->post(std::move(task), __FILE__, __LINE__, "DelayedPoster::run");
        }
        ready.clear();
        lock.lock();
    }
}

DelayedPoster::DelayedPoster(quandel::IZQRuntime* runtime)
    : d(std::make_unique<Impl>(runtime))
{
    d->thread = std::thread([this] { d->run(); });
}

DelayedPoster::~DelayedPoster()
{
    stop();
}

void DelayedPoster::postAfter(std::chrono::milliseconds delay, std::function<void()> task)
{
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        if (!d->stopping) {
            d->queue.emplace(Clock::now() + delay, std::move(task));
            d->wake.notify_one();
            return;
        }
    }
    // Dropped outside the lock, for the same reason as in run().
    task = nullptr;
}

void DelayedPoster::stop()
{
    std::multimap<Clock::time_point, std::function<void()>> dropped;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->stopping = true;
        dropped.swap(d->queue);
    }
    d->wake.notify_one();
    if (d->thread.joinable()) {
        d->thread.join();
    }
}

int DelayedPoster::pendingCount() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return static_cast<int>(d->queue.size());
}

} // namespace demohost
