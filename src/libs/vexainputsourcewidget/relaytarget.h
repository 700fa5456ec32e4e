// SPDX-License-Identifier: MIT
#pragma once

#include "logcategory.h"
#include "queuedhandoff.h"

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QGenericArgument>
#include <QMetaObject>
#include <QObject>
#include <QString>

#include <mutex>

namespace vexa::inputsource {

/// Where a relay on the runtime thread queues its calls: a GUI-thread object whose slots are
/// invoked by name, until the object detaches. Every relay of a manager's notifications queues
/// through one, so that a widget that goes while a notification is under way is never reached.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT RelayTarget
{
public:
    /// Queues to `target`'s slots (not owned; see detach()).
    explicit RelayTarget(QObject* target);
    RelayTarget(const RelayTarget&) = delete;
    RelayTarget& operator=(const RelayTarget&) = delete;

    /// Stops queuing: once it has returned, no call reaches the target. Any thread.
    void detach();

    /// Queues `slot` on the target with the arguments, each named as the slot's meta-object
    /// knows its type. The lock makes detach() wait for a call being queued. Any thread.
    template <typename... Args>
    void queue(const char* slot, Args... args)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_target == nullptr) {
            return;
        }
        QueuedHandoff::release(m_target);
        if (!QMetaObject::invokeMethod(m_target, slot, Qt::QueuedConnection, args...)) {
            VEXA_WARNING(QStringLiteral("cannot queue %1").arg(QLatin1String(slot)));
        }
    }

private:
    std::mutex m_lock;
    QObject* m_target;
};

} // namespace vexa::inputsource
