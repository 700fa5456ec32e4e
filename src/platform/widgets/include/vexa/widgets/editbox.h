// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

#include <QWidget>

#include <memory>

namespace vexa::widgets {

/// The kit's text field: a line edit ("editor") and, in trigger-edit mode, an ElidingLabel
/// ("label") that shows the text until editing is triggered (beginEdit(), or a double click
/// when allowed), as names on tiles are edited in place. The label holds the whole text and
/// cuts it only where it paints, offering the whole text as tool-tip then. Without trigger-edit
/// mode it is an always-editable line edit.
///
/// An edit begins with beginEdit() or when the editor takes the focus, and ends with Enter or
/// when the focus leaves (not for a popup such as the editor's own context menu): the box then
/// emits editingFinished() once. Escape cancels instead: the text returns to what it was when
/// the edit began and nothing is emitted. In trigger-edit mode Enter and Escape stay inside
/// the box; otherwise Enter goes on to the window, as a line edit's does, and so does Escape
/// when there is nothing to undo. The box re-polishes itself and its children when one of its
/// dynamic properties changes ("style" = "lineEdit" is the kit's boxed look). GUI thread only.
class VEXA_WIDGETS_EXPORT EditBox : public QWidget
{
    Q_OBJECT

public:
    /// An empty, always-editable box.
    explicit EditBox(QWidget* parent = nullptr);

    /// Destroys the box.
    ~EditBox() override;

    /// When true, the text is shown as a label until editing is triggered, and the label
    /// comes back when the edit ends; when false, the editor is always shown. Ends an edit
    /// in progress without emitting.
    void setTriggerEdit(bool enable);

    /// Whether trigger-edit mode is on.
    bool triggerEdit() const;

    /// In trigger-edit mode, whether a double click on the label begins editing (default
    /// false).
    void setCanDoubleClick(bool enable);

    /// When true, an edit that ends with an empty text gets back the text it began with
    /// (default false).
    void setCanRestoreText(bool enable);

    /// Limits what the operator can type to `length` characters (default 32767). A text
    /// already there, or given later with setText(), is never cut: while it is longer than
    /// the limit, the limit is its length.
    void setMaxLength(const int& length);

    /// The limit given to setMaxLength().
    int maxLength() const;

    /// Sets the text of the editor and the label; the next edit begins from it. Emits nothing.
    void setText(const QString& text);

    /// The editor's current text (what is being typed, during an edit).
    QString text() const;

    /// Sets the text the empty editor shows in grey.
    void setPlaceholderText(const QString& text);

    /// Sets the dynamic property `name` of the editor to `value` and re-polishes the editor,
    /// e.g. ("style", "editError") to mark a refused input.
    void setEditProperty(const char* name, const QVariant& value);

    /// Whether an edit is in progress.
    bool isEditing() const;

public Q_SLOTS:
    /// Begins an edit: shows the editor in trigger-edit mode, gives it the focus and selects
    /// the whole text.
    void beginEdit();

Q_SIGNALS:
    /// An edit ended with Enter or by the focus leaving; text() holds the result.
    void editingFinished();

protected:
    /// Re-polishes the box and its children on a change of a dynamic property.
    bool event(QEvent* event) override;

    /// Begins an edit when trigger-edit mode and double clicks are on; otherwise the event
    /// goes to the parent.
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::widgets
