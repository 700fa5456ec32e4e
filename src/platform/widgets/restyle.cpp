// SPDX-License-Identifier: MIT
#include "restyle.h"

#include <QEvent>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace vexa::widgets::detail {

void restyleOnPropertyChange(QWidget* widget, const QEvent* event, RepolishScope scope)
{
    if (event->type() != QEvent::DynamicPropertyChange) {
        return;
    }
    // Qt's style sheet engine records its own bookkeeping in "_q_" properties while it polishes;
    // answering those would polish the widget a second time after each of Qt's own polishes.
    const QByteArray name = static_cast<const QDynamicPropertyChangeEvent*>(event)->propertyName();
    if (name.startsWith("_q_")) {
        return;
    }
    // A style may set dynamic properties of its own while it polishes (a host's proxy style that
    // marks widgets, say), which lands here again for the same widget. Widgets live on the GUI
    // thread only, so one list serves them all.
    static std::vector<const QWidget*> polishing;
    if (std::find(polishing.begin(), polishing.end(), widget) != polishing.end()) {
        return;
    }
    polishing.push_back(widget);
    repolish(widget, scope);
    polishing.erase(std::find(polishing.begin(), polishing.end(), widget));
}

} // namespace vexa::widgets::detail
