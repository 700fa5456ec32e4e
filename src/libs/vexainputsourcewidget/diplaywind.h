// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <zq/mediacore/iframe.h>

#include <QWidget>

#include <memory>

namespace vexa::inputsource {

/// The live preview surface inside a tile. Keeps a copy of the last accepted frame (8-bit RGBA)
/// and paints it stretched over the whole widget; before the first frame it paints nothing, so
/// what lies below (the tile's loading cover) stays visible.
///
/// updateFrame() may be called from any thread; everything else, construction and destruction
/// included, on the GUI thread.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT DiplayWind : public QWidget
{
    Q_OBJECT

public:
    /// An empty surface.
    explicit DiplayWind(QWidget* parent = nullptr);

    /// Refuses frames from here on, then frees the picture.
    ~DiplayWind() override;

    /// Copies the frame's pixels and asks the GUI thread to repaint. Returns 0 when the frame was
    /// taken, -1 when it was refused: no frame, no pixel buffer, a geometry that cannot be valid,
    /// or a surface being destroyed. A refused frame changes nothing. A frame of the last
    /// accepted geometry reuses the picture's memory. Any thread; the frame is read only during
    /// the call.
    int updateFrame(const zq::mediacore::IFrame* frame);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
