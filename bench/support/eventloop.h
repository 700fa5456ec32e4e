// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace vexa::bench {

/// Processes the GUI thread's events until `done` holds; false when it did not within
/// `timeout`. For a timed section that ends when widgets have reached a state, such as laid out.
bool processEventsUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout);

/// Lets the GUI thread finish what the last step left queued (show and layout requests,
/// repolishing, painting), so that a timed section that follows handles nothing else.
void drainEvents();

} // namespace vexa::bench
