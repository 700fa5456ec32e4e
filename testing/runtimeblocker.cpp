// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/runtimeblocker.h>

#include <QDebug>

#include <atomic>
#include <future>
#include <utility>

namespace vexa::testing {

struct RuntimeBlocker::Impl
{
    std::promise<void> release;
    std::atomic<bool> released{false};
    // Both are written by the constructor only, before anyone else can see the blocker.
    bool started = false;
    QString error;
};

RuntimeBlocker::RuntimeBlocker(quandel::IZQRuntime& runtime, std::chrono::milliseconds timeout)
    : d(std::make_unique<Impl>())
{
    if (runtime.isInRuntimeThread()) {
        d->error = QStringLiteral("RuntimeBlocker: created on the runtime thread, which would "
                                  "then wait for itself");
        qWarning().noquote() << d->error;
        return;
    }

    auto started = std::make_shared<std::promise<void>>();
    std::future<void> running = started->get_future();
    // The task alone owns the start promise, so a runtime that destroys it unrun breaks the
    // promise and the wait ends at once. It owns its share of the release too, so a task that
    // starts only after a failed wait (or after the blocker is gone) returns at once instead of
    // holding the worker forever.
    runtime.post(
        [started = std::move(started), release = d->release.get_future().share()] {
            started->set_value();
            release.wait();
        },
        __FILE__, __LINE__, Q_FUNC_INFO);

    if (running.wait_for(timeout) != std::future_status::ready) {
        d->error = QStringLiteral("RuntimeBlocker: the holding task did not start within %1 ms; "
                                  "the runtime is busy with another task or not running")
                       .arg(timeout.count());
    } else {
        try {
            running.get();
            d->started = true;
        } catch (const std::future_error&) {
            d->error = QStringLiteral("RuntimeBlocker: the runtime destroyed the holding task "
                                      "unrun; it is probably stopped");
        }
    }
    if (!d->started) {
        qWarning().noquote() << d->error;
    }
}

RuntimeBlocker::~RuntimeBlocker()
{
    release();
}

void RuntimeBlocker::release()
{
    if (!d->released.exchange(true)) {
        d->release.set_value();
    }
}

bool RuntimeBlocker::isHolding() const
{
    return d->started && !d->released.load();
}

QString RuntimeBlocker::errorString() const
{
    return d->error;
}

} // namespace vexa::testing
