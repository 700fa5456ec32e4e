// SPDX-License-Identifier: MIT
#include <vexa/widgets/pushbutton.h>

#include "restyle.h"

namespace vexa::widgets {

PushButton::PushButton(QWidget* parent)
    : QPushButton(parent)
{}

PushButton::PushButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{}

PushButton::~PushButton() = default;

bool PushButton::event(QEvent* event)
{
    detail::restyleOnPropertyChange(this, event, RepolishScope::Widget);
    return QPushButton::event(event);
}

} // namespace vexa::widgets
