// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

#include <QDialog>

#include <memory>

namespace vexa::widgets {

/// The kit's dialog: a frameless QDialog with its own title bar ("titleBar": the title
/// "titleLabel" and the close button "closeBtn") above the content widget ("dialogWidget"),
/// all inside the frame "dialogFrame". Dragging the title bar with the left button moves the
/// window. exec() is QDialog's: it shows the dialog modally and returns its result code.
/// close(), the close button and the window's own close request end it with
/// QDialog::Rejected (0) through closeEvent(), which a subclass may override to keep the
/// dialog open; Escape ends it with QDialog::Rejected too. GUI thread only.
class VEXA_WIDGETS_EXPORT Dialog : public QDialog
{
    Q_OBJECT

public:
    /// An empty dialog; with a null `parent` it is a window of its own.
    explicit Dialog(QWidget* parent = nullptr);

    /// Destroys the dialog and everything built on it.
    ~Dialog() override;

    /// Sets the text of the title bar, which is also the window title.
    void setTitle(const QString& title);

    /// The text of the title bar.
    QString title() const;

    /// The content widget below the title bar, on which callers set a layout and build their
    /// content. Owned by the dialog; never null.
    QWidget* dialogWidget() const;

protected:
    /// Keeps the title bar's text in step with the window title.
    void changeEvent(QEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::widgets
