// SPDX-License-Identifier: MIT
#include <vexa/widgets/quietlayout.h>

#include <QLayout>
#include <QList>
#include <QWidget>

namespace vexa::widgets {

void installQuietly(QWidget* widget, QLayout* layout)
{
    // A layout asks for a relayout only while it counts as laid out, which a new layout does.
    // Invalidated while it has no widget, it stops counting as laid out without asking anyone,
    // and later changes have nothing to ask for until it is laid out again.
    layout->invalidate();
    widget->setLayout(layout);
}

void settleLayouts(QWidget* root)
{
    // Polishing applies style sheet fonts and sizes, which would invalidate layouts laid out
    // before it.
    root->ensurePolished();
    // A pre-order listing, walked backwards, reaches every widget after all of its
    // descendants: each layout is laid out once, with the sizes of its children final.
    const QList<QWidget*> descendants = root->findChildren<QWidget*>();
    for (auto it = descendants.crbegin(); it != descendants.crend(); ++it) {
        if (QLayout* const layout = (*it)->layout(); layout != nullptr && !(*it)->isWindow()) {
            layout->activate();
        }
    }
    if (QLayout* const layout = root->layout()) {
        layout->activate();
    }
}

} // namespace vexa::widgets
