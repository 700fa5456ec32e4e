#pragma once

#include <QWidget>

#include <memory>

namespace demohost {

/// Shows a moving test picture of the kind the simulated sources deliver, redrawn at 25 frames
/// per second into one reused frame. GUI thread only.
class SyntheticPreview : public QWidget
{
    Q_OBJECT

public:
    /// A preview of `width` x `height` pixels tinted by `hue` (0 to 359).
    SyntheticPreview(int width, int height, int hue, QWidget* parent = nullptr);
    ~SyntheticPreview() override;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
