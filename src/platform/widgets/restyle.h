// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/style.h>

class QEvent;

namespace vexa::widgets::detail {

// Re-polishes `widget` when `event` tells that one of its dynamic properties changed, so that
// the kit's widgets follow their style properties without every caller re-polishing by hand.
void restyleOnPropertyChange(QWidget* widget, const QEvent* event, RepolishScope scope);

} // namespace vexa::widgets::detail
