#include <vexa/widgets/combobox.h>

#include "restyle.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QStyledItemDelegate>

namespace vexa::widgets {

namespace {

constexpr char fontSizeProperty[] = "fontSize";

} // namespace

ComboBox::ComboBox(QWidget* parent)
    : QComboBox(parent)
{
    // QComboBox's own delegate paints its entries like menu items and ignores style sheet rules
    // on ::item, which would leave the popup out of the kit's look.
    setItemDelegate(new QStyledItemDelegate(this));
}

ComboBox::~ComboBox() = default;

bool ComboBox::event(QEvent* event)
{
    if (event->type() == QEvent::DynamicPropertyChange &&
        static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName() == fontSizeProperty) {
        // Rules select the popup list by its own "fontSize", as a caller may set it on the view
        // alone; the view therefore carries the box's value. It lives in a popup window that a
        // polish of the box does not reach, hence its own re-polish.
        QAbstractItemView* const popup = view();
        popup->setProperty(fontSizeProperty, property(fontSizeProperty));
        repolish(popup, RepolishScope::WidgetAndDescendants);
    }
    detail::restyleOnPropertyChange(this, event, RepolishScope::Widget);
    return QComboBox::event(event);
}

} // namespace vexa::widgets
