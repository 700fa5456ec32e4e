// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <quandel/runtime/izqruntime.h>

#include <QString>

#include <chrono>
#include <memory>

namespace vexa::testing {

/// Holds a runtime's worker thread inside one task until released, so that whatever is
/// posted meanwhile is known to be still queued:
///
///     quandel::ZQRuntime runtime;
///     RuntimeBlocker blocker(runtime);
///     QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
///     widget.requestSomething();   // queued behind the blocker
///     blocker.release();
///
/// The constructor waits until the task runs, for at most the time-out; when it does not run
/// by then, or when created on the runtime's own thread, isHolding() is false and errorString()
/// says why, so a test fails instead of hanging. The destructor releases, so declare the blocker
/// after the runtime: a runtime destroyed first would wait for the held task forever.
class VEXAINPUTSOURCEWIDGET_TESTING_EXPORT RuntimeBlocker
{
public:
    /// How long the constructor waits for the task by default.
    static constexpr std::chrono::milliseconds defaultTimeout = std::chrono::seconds(30);

    /// Posts the holding task and waits until it runs or `timeout` passes. Not the runtime thread.
    explicit RuntimeBlocker(quandel::IZQRuntime& runtime,
                            std::chrono::milliseconds timeout = defaultTimeout);
    /// Releases the worker. Any thread.
    ~RuntimeBlocker();

    RuntimeBlocker(const RuntimeBlocker&) = delete;
    RuntimeBlocker& operator=(const RuntimeBlocker&) = delete;

    /// Lets the holding task return, now or when it starts; a second call does nothing. Any thread.
    void release();
    /// Whether the worker is held: the task runs and release() has not been called. Any thread.
    bool isHolding() const;
    /// Why the worker was not held; empty when it was. Any thread.
    QString errorString() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::testing
