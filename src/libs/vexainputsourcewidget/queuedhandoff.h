#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QObject>

#if defined(__SANITIZE_THREAD__)
#define VEXA_TSAN_BUILD 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VEXA_TSAN_BUILD 1
#endif
#endif

namespace vexa::inputsource {

/// Makes a queued call that crosses threads through Qt's event queue visible to the thread
/// sanitizer. Qt's own libraries are not instrumented, so the sanitizer does not see that
/// posting a call happens before the call runs, and would report the data the call carries as
/// a race. The poster publishes with release() right before posting; an object that receives
/// such calls is watched, and each queued call to it acquires what was published before it runs.
/// Both do nothing outside a thread-sanitizer build.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT QueuedHandoff
{
public:
#if defined(VEXA_TSAN_BUILD)
    /// On the posting thread, right before a queued call to `target` is posted. Any thread.
    static void release(const QObject* target);

    /// Every queued call that reaches `target` from now on acquires what release() published for
    /// it. On `target`'s thread.
    static void watch(QObject* target);
#else
    static void release(const QObject*) {}
    static void watch(QObject*) {}
#endif
};

} // namespace vexa::inputsource
