// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QEvent>
#include <QObject>

#include <functional>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#define VEXA_TSAN_BUILD 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VEXA_TSAN_BUILD 1
#endif
#endif

namespace vexa::inputsource {

/// Hands work from any thread to a GUI-thread object through Qt's event queue, in a way the
/// thread sanitizer can follow. Qt's own libraries are not instrumented, so the sanitizer does
/// not see that posting an event happens before the event is delivered, and would report what
/// the event carries as a race.
///
/// An object that receives such hand-offs is watched (watch()). post() queues a call to it;
/// string-based queued calls (QMetaObject::invokeMethod by name) are announced with release()
/// right before they are queued. Each delivery to a watched object then acquires what was
/// released for it. release() and the acquiring do nothing outside a thread-sanitizer build.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT QueuedHandoff
{
public:
    /// From now on, calls posted to `target` run when it receives them, and every queued
    /// delivery to it acquires what release() published for it. On `target`'s thread.
    static void watch(QObject* target);

    /// Queues `call` to run on `target`'s thread, which must be watched; dropped if `target` is
    /// destroyed first. Everything this thread did before, building the call included, happens
    /// before the call runs. Any thread.
    template <typename Call>
    static void post(QObject* target, Call&& call)
    {
        postCall(target, std::function<void()>(std::forward<Call>(call)));
    }

    /// The type of the events post() queues, for whoever counts them. Any thread.
    static QEvent::Type eventType();

#if defined(VEXA_TSAN_BUILD)
    /// On the posting thread, right before a string-based queued call to `target` is queued.
    /// Any thread.
    static void release(const QObject* target);
#else
    static void release(const QObject*) {}
#endif

private:
    static void postCall(QObject* target, std::function<void()> call);
};

} // namespace vexa::inputsource
