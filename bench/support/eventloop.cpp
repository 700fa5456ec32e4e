// SPDX-License-Identifier: MIT
#include "support/eventloop.h"

#include <QCoreApplication>

namespace vexa::bench {

bool processEventsUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        QCoreApplication::processEvents();
    }
    return true;
}

void drainEvents()
{
    // A few passes: handling one event often posts the next (a show posts a layout request,
    // which posts a repaint).
    for (int pass = 0; pass < 5; ++pass) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace vexa::bench
