// SPDX-License-Identifier: MIT
#include <quandel/runtime/zqruntime.h>

#include <vexa/diagnostics/warning.h>

#include <QLoggingCategory>
#include <QString>
#include <QtGlobal>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

// VEXA_WARNING writes into the runtime's own category, so that a host can filter its
// warnings apart from the widget library's.
#define VEXA_LOGGING_CATEGORY lcRuntime

namespace quandel {

namespace {

Q_LOGGING_CATEGORY(lcRuntime, "vexa.platform.runtime")

QString callSite(const char* file, int line, const char* function)
{
    // Hosts may post from code that has no call site to give.
    const auto orUnknown = [](const char* text) {
        return text != nullptr ? QString::fromUtf8(text) : QStringLiteral("<unknown>");
    };
    return QStringLiteral("%1:%2 %3").arg(orUnknown(file)).arg(line).arg(orUnknown(function));
}

} // namespace

struct ZQRuntime::Impl
{
    struct Task
    {
        std::function<void()> body;
        const char* file;
        int line;
        const char* function;
    };

    /// Waits for the next task; empty once the worker is to end.
    std::optional<Task> takeNext();
    static void execute(const Task& task);
    void run();

    mutable std::mutex mutex;
    std::condition_variable wakeUp;
    std::deque<Task> queue;

    // Set under the mutex, so that no post slips in once a stop has begun; atomic because
    // isStopped() and checkCall() read it from any thread without the mutex.
    std::atomic<bool> stopped{false};
    // Read from any thread at any time.
    std::atomic<bool> gateOpen{true};
    std::atomic<std::thread::id> workerId{};

    // Serialises the join, which std::thread forbids from two threads at once.
    std::mutex joinMutex;
    std::thread worker;
};

std::optional<ZQRuntime::Impl::Task> ZQRuntime::Impl::takeNext()
{
    std::unique_lock<std::mutex> lock(mutex);
    wakeUp.wait(lock, [this] { return stopped.load() || !queue.empty(); });
    if (queue.empty()) {
        return std::nullopt;
    }
    std::optional<Task> next(std::move(queue.front()));
    queue.pop_front();
    return next;
}

void ZQRuntime::Impl::execute(const Task& task)
{
    try {
        task.body();
    } catch (const std::exception& exception) {
        VEXA_WARNING(QStringLiteral("ZQRuntime: the task posted at %1 threw: %2")
                         .arg(callSite(task.file, task.line, task.function),
                              QString::fromUtf8(exception.what())));
    } catch (...) {
        VEXA_WARNING(QStringLiteral("ZQRuntime: the task posted at %1 threw an exception that "
                                    "is not a std::exception")
                         .arg(callSite(task.file, task.line, task.function)));
    }
}

void ZQRuntime::Impl::run()
{
    workerId.store(std::this_thread::get_id());
    // Each task is run and destroyed with the mutex released, because either may post again.
    while (std::optional<Task> task = takeNext()) {
        execute(*task);
    }
    // Once joined, this thread's id may be handed to a new thread that is not the runtime's.
    workerId.store(std::thread::id());
}

ZQRuntime::ZQRuntime()
    : d(std::make_unique<Impl>())
{
    d->worker = std::thread([impl = d.get()] { impl->run(); });
}

ZQRuntime::~ZQRuntime()
{
    if (isInRuntimeThread()) {
        qFatal("ZQRuntime destroyed by a task running on its own runtime thread: the worker "
               "cannot wait for itself to end. Destroy the runtime from another thread.");
    }
    stop(StopMode::RunQueued);
}

void ZQRuntime::post(std::function<void()> task, const char* file, int line, const char* function)
{
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        if (!d->stopped.load()) {
            d->queue.push_back(Impl::Task{std::move(task), file, line, function});
            d->wakeUp.notify_one();
            return;
        }
    }
    VEXA_WARNING(QStringLiteral("ZQRuntime: stopped, so the task posted at %1 is destroyed unrun")
                     .arg(callSite(file, line, function)));
}

bool ZQRuntime::isInRuntimeThread() const
{
    return d->workerId.load() == std::this_thread::get_id();
}

bool ZQRuntime::checkCall(const char* /*file*/, int /*line*/, const char* /*function*/)
{
    // A refusal is not logged: a closed gate is an ordinary state that callers check often,
    // and each of them already gives up quietly.
    return d->gateOpen.load() && !d->stopped.load();
}

void ZQRuntime::setGateOpen(bool open)
{
    d->gateOpen.store(open);
}

bool ZQRuntime::isGateOpen() const
{
    return d->gateOpen.load();
}

void ZQRuntime::stop(StopMode mode)
{
    std::deque<Impl::Task> discarded;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        if (!d->stopped.load()) {
            d->stopped.store(true);
            if (mode == StopMode::DiscardQueued) {
                discarded.swap(d->queue);
            }
            d->wakeUp.notify_one();
        }
    }
    // Destroyed outside the mutex, since a task's destructor may post (and be refused), and
    // before the join, so that nothing waiting on a discarded task waits for the current one.
    discarded.clear();

    // On the runtime thread the worker is busy running the caller, so it cannot be waited for;
    // it ends once the current task returns, after draining the queue for RunQueued.
    if (isInRuntimeThread()) {
        return;
    }
    std::lock_guard<std::mutex> joinLock(d->joinMutex);
    if (d->worker.joinable()) {
        d->worker.join();
    }
}

bool ZQRuntime::isStopped() const
{
    return d->stopped.load();
}

std::size_t ZQRuntime::pendingCount() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->queue.size();
}

} // namespace quandel
