// SPDX-License-Identifier: MIT
#include "modalloop.h"

#include <QHash>
#include <QVector>

namespace vexa::inputsource {

namespace {

struct LoopState
{
    int depth = 0;
    bool doomed = false;
    // The windows of the loops under way, closed when the owner is doomed.
    QVector<QPointer<QWidget>> windows;
};

// Keyed by the owner. Loops nest strictly, so an entry outlives its owner only until the
// owner's outermost loop returns, and no other object can have taken the address meanwhile
// and still be inside a loop of its own. GUI thread only.
QHash<const QObject*, LoopState>& states()
{
    static QHash<const QObject*, LoopState> registry;
    return registry;
}

} // namespace

bool ModalLoop::run(QObject* owner, const std::function<void()>& loop, QWidget* window)
{
    const QPointer<QObject> alive(owner);
    QMetaObject::Connection closing;
    {
        LoopState& state = states()[owner];
        ++state.depth;
        if (window != nullptr) {
            state.windows.append(window);
            closing = QObject::connect(owner, &QObject::destroyed, window, &QWidget::close);
        }
    }
    loop();
    if (alive.isNull()) {
        // Loops nest, so this was the outermost one still under way.
        states().remove(owner);
        return false;
    }
    QObject::disconnect(closing);
    LoopState& state = states()[owner];
    state.windows.removeAll(window);
    const bool doomed = state.doomed;
    if (--state.depth == 0) {
        states().remove(owner);
        if (doomed) {
            // Later than now: the event that opened the loop is still being delivered to the
            // owner.
            owner->deleteLater();
        }
    }
    return !doomed;
}

bool ModalLoop::isRunning(const QObject* object)
{
    return states().contains(object);
}

void ModalLoop::destroy(QObject* object)
{
    const auto found = states().find(object);
    if (found == states().end()) {
        delete object;
        return;
    }
    found->doomed = true;
    if (auto* const widget = qobject_cast<QWidget*>(object)) {
        widget->hide();
        widget->setParent(nullptr);
    } else {
        object->setParent(nullptr);
    }
    // Copied: closing a window may end its loop at once on some platforms.
    const QVector<QPointer<QWidget>> windows = found->windows;
    for (const QPointer<QWidget>& window : windows) {
        if (!window.isNull()) {
            window->close();
        }
    }
}

} // namespace vexa::inputsource
