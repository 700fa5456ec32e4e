// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/layout/vexa_layout_export.h>

#include <QString>
#include <QWidget>

#include <memory>

namespace vexa::layout {

/// Base of a panel that floats in the host's main window. The host's floating frame shows the
/// panel's title, which is the panel's window title; a QDockWidget that holds the panel as its
/// widget takes the same title, and again whenever it changes. Every member: GUI thread only.
class VEXA_LAYOUT_EXPORT FloatingItemWidget : public QWidget
{
    Q_OBJECT

public:
    /// Creates the panel under the identifier `id`, which the host uses to find it again.
    explicit FloatingItemWidget(const QString& id, QWidget* parent = nullptr);

    /// Destroys the panel with its children.
    ~FloatingItemWidget() override;

    /// The identifier given to the constructor.
    QString id() const;

    /// Sets the title the host's frame shows as window title; emits titleTextChanged() if new.
    void setTitleText(const QString& text);

    /// The title last set by setTitleText(); empty until then.
    QString titleText() const;

    /// Re-applies the panel's translated texts after a language switch. The base has none.
    virtual void translateLanguage();

Q_SIGNALS:
    /// The title set by setTitleText() changed to `text`.
    void titleTextChanged(const QString& text);

protected:
    /// Keeps a hosting QDockWidget's title in step with the window title.
    void changeEvent(QEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::layout
