// SPDX-License-Identifier: MIT
#include <vexa/widgets/elidinglabel.h>

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace vexa::widgets {

struct ElidingLabel::Impl
{
    explicit Impl(ElidingLabel* owner)
        : q(owner)
    {}

    QString shownText() const
    {
        return q->fontMetrics().elidedText(q->text(), Qt::ElideRight, q->contentsRect().width());
    }

    ElidingLabel* const q;
};

ElidingLabel::ElidingLabel(QWidget* parent)
    : ElidingLabel(QString(), parent)
{}

ElidingLabel::ElidingLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
    , d(std::make_unique<Impl>(this))
{}

ElidingLabel::~ElidingLabel() = default;

bool ElidingLabel::isElided() const
{
    return d->shownText() != text();
}

QSize ElidingLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

bool ElidingLabel::event(QEvent* event)
{
    // The whole text as tool-tip only while it is cut, and without keeping a tool-tip property
    // that would go stale when the text or the width changes.
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        auto* const help = static_cast<QHelpEvent*>(event);
        if (isElided()) {
            QToolTip::showText(help->globalPos(), text(), this);
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return QLabel::event(event);
}

void ElidingLabel::paintEvent(QPaintEvent* event)
{
    const QString shown = d->shownText();
    if (shown == text()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(),
                          QStyle::visualAlignment(layoutDirection(), alignment()), palette(),
                          isEnabled(), shown, foregroundRole());
}

} // namespace vexa::widgets
