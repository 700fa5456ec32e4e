// SPDX-License-Identifier: MIT
#pragma once

#include <vexa/widgets/vexa_widgets_export.h>

#include <QLabel>

#include <memory>

namespace vexa::widgets {

/// A one-line label that elides its text on the right when the text is wider than the label,
/// and then offers the whole text as its tool-tip. text() always answers the whole text, so
/// whoever reads the label (a test, a screen reader) reads what was set. It asks for no minimum
/// width of its own: in a fixed-width row it gives way instead of pushing the row wider. GUI
/// thread only.
class VEXA_WIDGETS_EXPORT ElidingLabel : public QLabel
{
    Q_OBJECT

public:
    /// An empty label.
    explicit ElidingLabel(QWidget* parent = nullptr);

    /// A label showing `text`.
    explicit ElidingLabel(const QString& text, QWidget* parent = nullptr);

    /// Destroys the label.
    ~ElidingLabel() override;

    /// Whether the text is shown elided at the label's current width.
    bool isElided() const;

    /// Zero wide, as high as a line of text.
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::widgets
