// SPDX-License-Identifier: MIT
#include <standin/runtime.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

// The interface's key function belongs to whichever library implements the runtime.
quandel::IZQRuntime::~IZQRuntime() = default;

namespace standin {

struct Runtime::State
{
    std::mutex lock;
    std::condition_variable wake;
    std::deque<std::function<void()>> tasks;
    bool stopping = false;
    std::atomic<int> started{0};
    // Set by the worker itself, so that no caller reads the std::thread while it is assigned.
    std::thread::id workerId;
    std::thread worker;
};

Runtime::Runtime()
    : d(std::make_unique<State>())
{
    d->worker = std::thread([state = d.get()] {
        std::unique_lock<std::mutex> guard(state->lock);
        state->workerId = std::this_thread::get_id();
        for (;;) {
            state->wake.wait(guard, [state] { return state->stopping || !state->tasks.empty(); });
            if (state->tasks.empty()) {
                return;
            }
            std::function<void()> task = std::move(state->tasks.front());
            state->tasks.pop_front();
            ++state->started;
            guard.unlock();
            task();
            guard.lock();
        }
    });
}

Runtime::~Runtime()
{
    {
        const std::lock_guard<std::mutex> guard(d->lock);
        d->stopping = true;
    }
    d->wake.notify_one();
    d->worker.join();
}

void Runtime::post(std::function<void()> task, const char*, int, const char*)
{
    {
        const std::lock_guard<std::mutex> guard(d->lock);
        d->tasks.push_back(std::move(task));
    }
    d->wake.notify_one();
}

bool Runtime::isInRuntimeThread() const
{
    const std::lock_guard<std::mutex> guard(d->lock);
    return std::this_thread::get_id() == d->workerId;
}

bool Runtime::checkCall(const char*, int, const char*)
{
    return true;
}

int Runtime::tasksStarted() const
{
    return d->started.load();
}

} // namespace standin
