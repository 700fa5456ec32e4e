// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcemetatypes.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <quandel/captresolutionsinfo.h>
#include <zq/mediacore/thumbnail.h>

#include <QPixmap>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <vector>

namespace zq::mediacore {
class IFrame;
} // namespace zq::mediacore

namespace vexa::inputsource {

/// The tile of one input source inside a category box: thumbnail and live preview, online dot,
/// running time, in-place name editor, a kind-specific third line (resolution, web mode or a
/// capture-format chooser) and a preview toggle. Every user action leaves the tile as a signal
/// carrying the source id; the tile knows nothing of the manager.
///
/// Ownership and lifetime: a box makes its tiles from the manager's notifications and owns
/// them; a tile lives until the manager removes its source, so a pointer from
/// InputSourceBox::findItem() is good until the next turn of the event loop at the latest.
/// Guard one kept longer with a QPointer. A host uses a tile to read its state (the properties
/// below) and to fix a capture device's caption (setDeviceCaption()); everything else the box
/// drives.
///
/// Threads: GUI thread only, except updateFrame(). The tile starts offline, preview off
/// (toggle checked), not selected and not draggable.
///
/// Look: "style" "BG4" (hovered "BG6"), "radius" "M"; the border "itemBorder" carries
/// "select"; the state dot is named "state_online" or "state_offline"; further object names:
/// "captionLabel", "nameEdit", "urlEdit", "infoLabel", "resolutionBox", "cover",
/// "loadingLabel", "previewBtn", "duration" and the thumbnail "thumbnail_streaming",
/// "thumbnail_ndi", "thumbnail_capture" or "thumbnail_web".
class VEXAINPUTSOURCEWIDGET_EXPORT InputSourceItem : public QWidget
{
    Q_OBJECT
    /// The source's id.
    Q_PROPERTY(quint64 id READ id)
    /// Whether the source is online.
    Q_PROPERTY(bool online READ isOnline)
    /// Whether the preview is on (the toggle unchecked).
    Q_PROPERTY(bool previewing READ isPreviewing)
    /// The seconds the running-time clock shows.
    Q_PROPERTY(int runningSeconds READ runningSeconds)
    /// The name in the name editor.
    Q_PROPERTY(QString name READ name)

public:
    /// A tile for a source of the given resource type (7 NDI, 8 capture device, 9 web page,
    /// 13 network stream; other values are shown as streams). The kind never changes.
    explicit InputSourceItem(int kind, QWidget* parent = nullptr);

    /// Destroys the tile. No thread may be inside updateFrame() on this tile meanwhile: the
    /// owner of the tiles orders destruction against its frame threads.
    ~InputSourceItem() override;

    /// The identifier carried by every signal.
    void setId(uint64_t id);
    uint64_t id() const;

    /// The resource type given at construction.
    int kind() const;

    /// Whether a drag may start from the tile (false at first).
    void setDragEnabled(bool enabled);
    bool isDragEnabled() const;

    /// Installs the loading animation of the file at `path` on the cover shown before the
    /// first frame. The tile pauses and resumes it with the preview; starting it is the
    /// caller's.
    void setLoadingMovie(const QString& path);

    /// Shows `name` in the name editor. A name of at most 20 characters caps what the operator
    /// can type at 20; a longer one is shown whole and leaves the cap as it was.
    void setName(const QString& name);

    /// The source's address; a web tile also shows it on its second line.
    void setUrl(const QString& url);

    /// Web tiles: 0 rendered natively, 1 captured from the screen.
    void setWebMode(int mode);

    /// Switches the online state. Online starts the running-time clock and shows the
    /// resolution; offline stops the clock, resets it to 000:00:00 and shows "--". Setting
    /// the current state again does nothing.
    void setOnline(bool online);
    bool isOnline() const;

    /// The running time in seconds; the next tick of the clock shows `seconds` + 1. The clock
    /// stops at INT_MAX seconds (68 years) with a warning.
    void setRunningSeconds(int seconds);
    int runningSeconds() const;

    /// The name the editor shows.
    QString name() const;

    /// Fixes the caption line of a capture tile to `name` + "(" + `device` + ")". From then
    /// on language changes keep it, and the preview toggle no longer shows or hides the
    /// preview surface.
    void setDeviceCaption(const QString& device, const QString& name);

    /// Capture tiles: 1 when the device offers only its current format, which then is the
    /// chooser's single entry.
    void setResolutionMode(int mode);

    /// Capture tiles: appends one chooser entry per format, in order.
    void setCaptResolutions(const std::vector<quandel::CaptResolutionsInfo>& resolutions);

    /// Capture tiles: selects the first chooser entry whose format matches `current` (frame
    /// rates compared with a tolerance); without a match the chooser stays as it is.
    void setCurrentCaptResolution(const quandel::CaptResolutionsInfo& current);

    /// The still picture shown until the live preview covers it, stretched to the thumbnail
    /// area.
    void setThumbnail(const QPixmap& thumbnail);
    QPixmap thumbnail() const;

    /// The same from a media description's picture. An empty one changes nothing; one whose
    /// sizes disagree with its bytes, or whose lines are too long for an image (more than
    /// 16384 pixels a side), is refused with a warning.
    void setThumbnail(const zq::mediacore::Thumbnail& thumbnail);

    /// Sets the preview toggle without emitting signalPreviewChanged; checked means preview
    /// off. The surface follows in a queued call.
    void setPreviewChecked(bool checked);
    bool isPreviewChecked() const;

    /// Whether the preview is on: the toggle is not checked.
    bool isPreviewing() const;

    /// False during the short lock-out after the operator clicked the toggle.
    bool isPreviewToggleEnabled() const;

    /// Whether the tile carries the selection mark.
    bool isSelected() const;

    /// Clears the selection mark.
    void clearSelect();

    /// Hands a preview frame to the surface, which copies it. A stream tile (kind 13) also
    /// takes its frame-rate text from the frames: a change of the frame's integer rate is
    /// posted to the GUI thread. Any thread; the frame is read only during the call.
    void updateFrame(const zq::mediacore::IFrame* frame);

    /// Re-applies the translated texts after a language switch.
    void translateLanguage();

public Q_SLOTS:
    /// Web tiles keep `size` (commas removed) for the screenshot-mode text and ignore `rate`.
    /// Other tiles show "--" while offline and keep nothing; online they show and keep
    /// `size` + "@" + `rate` + "fps" with commas removed.
    void setResolution(const QString& size, const QString& rate);

Q_SIGNALS:
    /// A plain left click selected the tile.
    void signalSelect(uint64_t id);
    /// A Ctrl click flipped the selection mark; `bSelect` is the new state.
    void signalBatchSelect(uint64_t id, bool bSelect);
    /// "Delete" on a tile that is not selected.
    void signalDelete(uint64_t id);
    /// The name editor finished an edit with `name`.
    void signalNameChanged(uint64_t id, const QString& name);
    /// "Delete" on a selected tile: the whole selection is meant.
    void signalBatchDelete();
    /// The operator clicked the preview toggle; `isOpen` is the preview wanted.
    void signalPreviewChanged(uint64_t id, bool isOpen);
    /// Asked, through a direct connection, before the menu of a selected tile opens: whether
    /// several tiles are selected.
    bool signalCheckMultiSelect();
    /// Asked, through a direct connection, when a drag starts: the source's media description
    /// and whether it is valid.
    vexa::inputsource::MetaQueryResult signalGetInputSourceMeta(uint64_t id);
    /// "Edit" on a web tile.
    void signalEdit(uint64_t id);
    /// A double click anywhere on the tile.
    void signalDoubleClicked(uint64_t id);
    /// The operator picked a capture format in the chooser.
    void signalCaptResolutionChanged(uint64_t id, const quandel::CaptResolutionsInfo& info);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
