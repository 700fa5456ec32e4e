// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

class QLayout;
class QWidget;

namespace vexa::widgets {

// Widgets built by the hundred within one pass of the event loop (the tiles of a large box)
// should post as few events as they can: Qt merges each posted relayout request with one
// already queued for the same widget by walking the whole queue, and in such a pass the queue
// holds every event of every widget built before. These two calls lay widgets out without
// posting any request.

/// Installs `layout` on `widget`, as QWidget::setLayout does, without posting the relayout
/// request that installing or filling a layout otherwise posts: the layout is laid out when
/// the widget is shown, or by settleLayouts(). Works before or after the layout is filled (a
/// QStackedLayout must be installed before it is filled). GUI thread only.
VEXA_WIDGETS_EXPORT void installQuietly(QWidget* widget, QLayout* layout);

/// Polishes a widget that is not shown yet, with everything below it, and lays out every
/// layout in it from the innermost outwards. Showing the widget afterwards then posts no
/// relayout request, unless something changed its contents in between. Call it once the
/// widget is filled; it does nothing that showing would not do. GUI thread only.
VEXA_WIDGETS_EXPORT void settleLayouts(QWidget* root);

} // namespace vexa::widgets
