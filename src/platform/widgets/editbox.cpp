// SPDX-License-Identifier: MIT
#include <vexa/widgets/editbox.h>

#include "restyle.h"

#include <vexa/widgets/elidinglabel.h>
#include <vexa/widgets/quietlayout.h>

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QStackedLayout>

#include <algorithm>

namespace vexa::widgets {

namespace {

// QLineEdit's own default.
constexpr int defaultMaxLength = 32767;

} // namespace

struct EditBox::Impl : QObject
{
    explicit Impl(EditBox* owner);

    bool eventFilter(QObject* watched, QEvent* event) override;
    bool editorKeyPressed(const QKeyEvent* event);
    bool pressedOutsideEditor(QObject* watched, const QEvent* event) const;

    // Ends the edit and emits editingFinished(). False when a receiver of the signal destroyed
    // the box, so that the event being delivered to the editor is not delivered any further.
    bool finish();
    void cancel();
    void showEditor(bool show);
    void updateLabel();
    void applyMaxLength();
    void dimPlaceholder();

    EditBox* const q;
    QStackedLayout* const stack;
    QLineEdit* const editor;
    // Elides at paint time: a box resized or shown sets no text, which would have its layout
    // ask for a relayout, and the label's text stays the whole text for screen readers.
    ElidingLabel* const label;
    // The text the current edit began with: what Escape and an emptied edit return to.
    QString committed;
    int maxLength = defaultMaxLength;
    bool triggerEdit = false;
    bool canDoubleClick = false;
    bool canRestoreText = false;
    bool editing = false;
};

EditBox::Impl::Impl(EditBox* owner)
    : q(owner)
    , stack(new QStackedLayout)
    , editor(new QLineEdit(owner))
    , label(new ElidingLabel(owner))
{
    editor->setObjectName(QStringLiteral("editor"));
    label->setObjectName(QStringLiteral("label"));
    label->setTextFormat(Qt::PlainText);
    // The label elides what does not fit, so its text must not widen the box.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    stack->setContentsMargins(0, 0, 0, 0);
    // Boxes are built by the hundred in one pass of the event loop (tiles, NDI rows); see
    // quietlayout.h. A stack must be installed before it is filled.
    installQuietly(owner, stack);
    stack->addWidget(editor);
    stack->addWidget(label);
    q->setFocusProxy(editor);

    editor->installEventFilter(this);
    // Without trigger-edit mode typing after Enter begins the next edit without a new focus.
    QObject::connect(editor, &QLineEdit::textEdited, this, [this] { editing = true; });
}

bool EditBox::Impl::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != editor) {
        if (pressedOutsideEditor(watched, event)) {
            finish();
        }
        return false;
    }
    switch (event->type()) {
    case QEvent::FocusIn:
        editing = true;
        return false;
    case QEvent::FocusOut:
        // The editor's own context menu takes the focus for a moment; the edit goes on.
        if (editing && static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
            return !finish();
        }
        return false;
    case QEvent::KeyPress:
        return editorKeyPressed(static_cast<QKeyEvent*>(event));
    case QEvent::PaletteChange:
        dimPlaceholder();
        return false;
    default:
        return false;
    }
}

bool EditBox::Impl::editorKeyPressed(const QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (editing && !finish()) {
            return true;
        }
        // In place, Enter only ends the edit; a plain line edit lets the window's default
        // button have it as well.
        return triggerEdit;
    case Qt::Key_Escape:
        if (triggerEdit && editing) {
            cancel();
            return true;
        }
        // Without trigger-edit mode the first Escape undoes the edit, a second one reaches the
        // window (a dialog closes).
        if (!triggerEdit && editor->text() != committed) {
            cancel();
            return true;
        }
        return false;
    default:
        return false;
    }
}

bool EditBox::Impl::pressedOutsideEditor(QObject* watched, const QEvent* event) const
{
    // A widget without focus (a tile's surface, say) does not take the focus from the editor;
    // a press there still means the operator has left the edit. A press inside a popup (the
    // editor's context menu) does not.
    if (event->type() != QEvent::MouseButtonPress || !editing || !triggerEdit ||
        QApplication::activePopupWidget() != nullptr) {
        return false;
    }
    const auto* const widget = qobject_cast<const QWidget*>(watched);
    return widget != nullptr && widget != editor && !editor->isAncestorOf(widget);
}

bool EditBox::Impl::finish()
{
    editing = false;
    if (canRestoreText && editor->text().isEmpty()) {
        editor->setText(committed);
    }
    committed = editor->text();
    applyMaxLength();
    updateLabel();
    if (triggerEdit) {
        showEditor(false);
    }
    const QPointer<EditBox> alive(q);
    Q_EMIT q->editingFinished();
    return !alive.isNull();
}

void EditBox::Impl::cancel()
{
    editing = false;
    editor->setText(committed);
    if (triggerEdit) {
        showEditor(false);
    }
}

void EditBox::Impl::showEditor(bool show)
{
    if (show) {
        stack->setCurrentWidget(editor);
        editor->setFocus(Qt::OtherFocusReason);
        editor->selectAll();
        qApp->installEventFilter(this);
    } else {
        qApp->removeEventFilter(this);
        stack->setCurrentWidget(label);
    }
}

void EditBox::Impl::updateLabel()
{
    label->setText(committed);
}

void EditBox::Impl::applyMaxLength()
{
    editor->setMaxLength(std::max(maxLength, static_cast<int>(committed.size())));
}

void EditBox::Impl::dimPlaceholder()
{
    // Qt 5's style sheets paint the placeholder in the full text colour, so that "Please enter"
    // reads like something entered. Unless it was given a colour of its own, the placeholder
    // gets the text colour at half opacity.
    QPalette palette = editor->palette();
    QColor dimmed = palette.color(QPalette::Text);
    if (palette.color(QPalette::PlaceholderText) != dimmed) {
        return;
    }
    dimmed.setAlpha(dimmed.alpha() / 2);
    palette.setColor(QPalette::PlaceholderText, dimmed);
    editor->setPalette(palette);
}

EditBox::EditBox(QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this))
{}

EditBox::~EditBox() = default;

void EditBox::setTriggerEdit(bool enable)
{
    d->triggerEdit = enable;
    d->editing = false;
    qApp->removeEventFilter(d.get());
    d->editor->setText(d->committed);
    d->updateLabel();
    // A focus proxy that is hidden would swallow the focus given to the box.
    setFocusProxy(enable ? nullptr : d->editor);
    d->stack->setCurrentWidget(enable ? static_cast<QWidget*>(d->label) : d->editor);
}

bool EditBox::triggerEdit() const
{
    return d->triggerEdit;
}

void EditBox::setCanDoubleClick(bool enable)
{
    d->canDoubleClick = enable;
}

void EditBox::setCanRestoreText(bool enable)
{
    d->canRestoreText = enable;
}

void EditBox::setMaxLength(const int& length)
{
    d->maxLength = std::max(0, length);
    d->applyMaxLength();
}

int EditBox::maxLength() const
{
    return d->maxLength;
}

void EditBox::setText(const QString& text)
{
    d->committed = text;
    d->applyMaxLength();
    d->editor->setText(text);
    d->updateLabel();
}

QString EditBox::text() const
{
    return d->editor->text();
}

void EditBox::setPlaceholderText(const QString& text)
{
    d->editor->setPlaceholderText(text);
}

void EditBox::setEditProperty(const char* name, const QVariant& value)
{
    d->editor->setProperty(name, value);
    repolish(d->editor);
}

bool EditBox::isEditing() const
{
    return d->editing;
}

void EditBox::beginEdit()
{
    d->editing = true;
    if (d->triggerEdit) {
        d->showEditor(true);
    } else {
        d->editor->setFocus(Qt::OtherFocusReason);
        d->editor->selectAll();
    }
}

bool EditBox::event(QEvent* event)
{
    detail::restyleOnPropertyChange(this, event, RepolishScope::WidgetAndDescendants);
    return QWidget::event(event);
}

void EditBox::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (d->triggerEdit && d->canDoubleClick && !d->editing && event->button() == Qt::LeftButton) {
        beginEdit();
        event->accept();
        return;
    }
    QWidget::mouseDoubleClickEvent(event);
}

} // namespace vexa::widgets
