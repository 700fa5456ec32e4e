#include "queuedhandoff.h"

#if defined(VEXA_TSAN_BUILD)

#include <QEvent>

extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}

namespace vexa::inputsource {

namespace {

// One filter serves every watched object; it lives on the GUI thread, as they do.
class AcquireOnMetaCall : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::MetaCall) {
            __tsan_acquire(watched);
        }
        return false;
    }
};

} // namespace

void QueuedHandoff::release(const QObject* target)
{
    __tsan_release(const_cast<QObject*>(target));
}

void QueuedHandoff::watch(QObject* target)
{
    static AcquireOnMetaCall filter;
    target->installEventFilter(&filter);
}

} // namespace vexa::inputsource

#endif
