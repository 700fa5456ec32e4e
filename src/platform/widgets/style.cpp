// SPDX-License-Identifier: MIT
#include <vexa/widgets/style.h>

#include <QFile>
#include <QStyle>
#include <QWidget>

// Q_INIT_RESOURCE declares the resource's initialiser in the enclosing namespace, so it must be
// called from the global one. Calling it also keeps the resource in a static build of the kit,
// where nothing else would pull its object file into the host's binary.
static void initialiseKitResources()
{
    Q_INIT_RESOURCE(vexa_widgets);
}

namespace vexa::widgets {

QString defaultStyleSheet()
{
    static const bool initialised = (initialiseKitResources(), true);
    Q_UNUSED(initialised)
    QFile file(QStringLiteral(":/vexa/widgets/widgets.qss"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll());
}

void setStyleProperty(QWidget* widget, const char* property, const QVariant& value)
{
    widget->setProperty(property, value);
    repolish(widget);
}

void repolish(QWidget* widget, RepolishScope scope)
{
    if (widget == nullptr) {
        return;
    }
    QStyle* const style = widget->style();
    style->unpolish(widget);
    style->polish(widget);
    widget->update();
    if (scope == RepolishScope::WidgetAndDescendants) {
        const auto descendants = widget->findChildren<QWidget*>();
        for (QWidget* child : descendants) {
            repolish(child, RepolishScope::Widget);
        }
    }
}

} // namespace vexa::widgets
