// SPDX-License-Identifier: MIT
#include <vexa/layout/floatingitemwidget.h>

#include <QDockWidget>
#include <QEvent>

namespace vexa::layout {

struct FloatingItemWidget::Impl
{
    Impl(FloatingItemWidget* owner, const QString& panelId)
        : q(owner)
        , id(panelId)
    {}

    // A QDockWidget draws its own title and does not look at its widget's, so the panel hands
    // its title over whenever the title or the hosting dock changes.
    void passTitleToDock() const
    {
        if (auto* dock = qobject_cast<QDockWidget*>(q->parentWidget())) {
            dock->setWindowTitle(q->windowTitle());
        }
    }

    FloatingItemWidget* const q;
    const QString id;
    QString titleText;
};

FloatingItemWidget::FloatingItemWidget(const QString& id, QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this, id))
{}

FloatingItemWidget::~FloatingItemWidget() = default;

QString FloatingItemWidget::id() const
{
    return d->id;
}

void FloatingItemWidget::setTitleText(const QString& text)
{
    setWindowTitle(text);
    if (text == d->titleText) {
        return;
    }
    d->titleText = text;
    Q_EMIT titleTextChanged(text);
}

QString FloatingItemWidget::titleText() const
{
    return d->titleText;
}

void FloatingItemWidget::translateLanguage() {}

void FloatingItemWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowTitleChange || event->type() == QEvent::ParentChange) {
        d->passTitleToDock();
    }
    QWidget::changeEvent(event);
}

} // namespace vexa::layout
