// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

#include <QString>
#include <QVariant>

class QWidget;

namespace vexa::widgets {

/// How far repolish() reaches.
enum class RepolishScope
{
    Widget,               ///< the widget alone
    WidgetAndDescendants, ///< the widget and every widget below it
};

/// The kit's default style sheet (resource ":/vexa/widgets/widgets.qss"): a dark palette that
/// gives the kit's widgets, object names and style properties ("style", "imageBtn",
/// "checkStyle", "fontSize", "radius") their look. A host applies it with
/// QApplication::setStyleSheet, usually with its own rules appended. Any thread.
VEXA_WIDGETS_EXPORT QString defaultStyleSheet();

/// Has the widget's style evaluate it again (unpolish, polish, repaint), so that style sheet
/// rules that select on its dynamic properties or object name follow their current values.
/// Use WidgetAndDescendants when rules select children by a property of this widget. GUI thread
/// only.
VEXA_WIDGETS_EXPORT void repolish(QWidget* widget, RepolishScope scope = RepolishScope::Widget);

/// Sets the dynamic property `property` of `widget` to `value` and repolishes the widget, so
/// that style sheet rules selecting on the property follow at once. GUI thread only.
VEXA_WIDGETS_EXPORT void setStyleProperty(QWidget* widget, const char* property,
                                          const QVariant& value);

} // namespace vexa::widgets
