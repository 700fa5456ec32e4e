// SPDX-License-Identifier: MIT
#include "queuedhandoff.h"

#include <QCoreApplication>
#include <QEvent>

#if defined(VEXA_TSAN_BUILD)
extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}
#endif

namespace vexa::inputsource {

namespace {

void acquire([[maybe_unused]] QObject* target)
{
#if defined(VEXA_TSAN_BUILD)
    __tsan_acquire(target);
#endif
}

// Built completely on the posting thread before it is published and posted, unlike the slot
// object that a queued functor call builds inside Qt's posting.
class CallEvent : public QEvent
{
public:
    explicit CallEvent(std::function<void()> work)
        : QEvent(QueuedHandoff::eventType())
        , call(std::move(work))
    {}

    const std::function<void()> call;
};

// One filter serves every watched object; it lives on the GUI thread, as they do.
class Receiver : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Before the event is even read: it was made on the posting thread. Every delivery
        // acquires, as every delivery from Qt's queue takes the queue's lock in fact.
        acquire(watched);
        if (event->type() != QueuedHandoff::eventType()) {
            return false;
        }
        static_cast<CallEvent*>(event)->call();
        return true;
    }
};

} // namespace

QEvent::Type QueuedHandoff::eventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void QueuedHandoff::watch(QObject* target)
{
    static Receiver receiver;
    target->installEventFilter(&receiver);
}

void QueuedHandoff::postCall(QObject* target, std::function<void()> call)
{
    auto* const event = new CallEvent(std::move(call));
    release(target);
    QCoreApplication::postEvent(target, event);
}

#if defined(VEXA_TSAN_BUILD)
void QueuedHandoff::release(const QObject* target)
{
    __tsan_release(const_cast<QObject*>(target));
}
#endif

} // namespace vexa::inputsource
