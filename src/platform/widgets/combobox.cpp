// SPDX-License-Identifier: MIT
#include <vexa/widgets/combobox.h>

#include "restyle.h"

#include <QAbstractItemView>
#include <QChildEvent>
#include <QEvent>
#include <QStyledItemDelegate>

namespace vexa::widgets {

namespace {

constexpr char fontSizeProperty[] = "fontSize";

} // namespace

ComboBox::ComboBox(QWidget* parent)
    : QComboBox(parent)
{}

ComboBox::~ComboBox() = default;

void ComboBox::showPopup()
{
    QAbstractItemView* const popup = view();
    // QComboBox's own delegate paints its entries like menu items and ignores style sheet rules
    // on ::item, which would leave the popup out of the kit's look.
    if (qobject_cast<QStyledItemDelegate*>(popup->itemDelegate()) == nullptr) {
        setItemDelegate(new QStyledItemDelegate(this));
    }
    carryFontSize(popup);
    QComboBox::showPopup();
}

bool ComboBox::event(QEvent* event)
{
    if (event->type() == QEvent::ChildAdded) {
        // The popup's window is made without its list, which it adopts next: watching each
        // new child window for the list lets the list carry "fontSize" from its first moment,
        // whoever asked for it.
        QObject* const child = static_cast<QChildEvent*>(event)->child();
        if (child->isWidgetType()) {
            child->installEventFilter(this);
        }
    }
    if (event->type() == QEvent::DynamicPropertyChange &&
        static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName() == fontSizeProperty) {
        // Only a popup that exists follows at once; one built later takes the value when it is
        // first shown.
        if (QAbstractItemView* const popup = findChild<QAbstractItemView*>()) {
            carryFontSize(popup);
        }
    }
    detail::restyleOnPropertyChange(this, event, RepolishScope::Widget);
    return QComboBox::event(event);
}

bool ComboBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ChildAdded) {
        auto* const popup =
            qobject_cast<QAbstractItemView*>(static_cast<QChildEvent*>(event)->child());
        if (popup != nullptr) {
            popup->setProperty(fontSizeProperty, property(fontSizeProperty));
            watched->removeEventFilter(this);
        }
    }
    return QComboBox::eventFilter(watched, event);
}

void ComboBox::carryFontSize(QAbstractItemView* popup)
{
    // Rules select the popup list by its own "fontSize", as a caller may set it on the view
    // alone; the view therefore carries the box's value. It lives in a popup window that a
    // polish of the box does not reach, hence its own re-polish.
    const QVariant fontSize = property(fontSizeProperty);
    if (popup->property(fontSizeProperty) == fontSize) {
        return;
    }
    popup->setProperty(fontSizeProperty, fontSize);
    repolish(popup, RepolishScope::WidgetAndDescendants);
}

} // namespace vexa::widgets
