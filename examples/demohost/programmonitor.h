#pragma once

#include <QFrame>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

namespace zq::mediacore {
class IFrame;
} // namespace zq::mediacore

namespace demohost {

/// The demo host's program monitor: the picture that goes on air. An operator drags a tile of
/// the input sources panel onto it (or puts the selected source on it from the keyboard); the
/// monitor then shows that source's live frames large, with a caption naming it, and the host
/// counts the source as in use.
///
/// Drops are accepted only when they carry every format of a tile's drag payload
/// (vexa::inputsource::InputSourceDragPayload); what the last accepted drop carried is kept for
/// the host (lastDrop()).
///
/// Threads: offerFrame() and programId() may be called from any thread; everything else on the
/// GUI thread. A frame is copied during offerFrame(), and a call that overlaps the monitor's
/// destruction is refused, so frame threads need no more than to stop before the monitor's
/// owner tears down what feeds them.
class ProgramMonitor : public QFrame
{
    Q_OBJECT

public:
    /// What a tile's drag carried, as the monitor read it.
    struct DropRecord
    {
        uint64_t id = 0;
        /// The source's name, read from the media description the payload points to.
        QString name;
        bool native = false;
        bool damaged = false;
        QStringList formats;
    };

    explicit ProgramMonitor(QWidget* parent = nullptr);
    ~ProgramMonitor() override;

    /// Puts source `id` called `name` on program; its frames are shown from now on. Emits
    /// programChanged() when the source changed.
    void setProgram(uint64_t id, const QString& name);

    /// Takes the source off program (the monitor shows its hint again); emits programChanged(0)
    /// when there was one.
    void clearProgram();

    /// Renames the caption when `id` is the program source.
    void renameSource(uint64_t id, const QString& name);

    /// The source on program, or 0. Any thread.
    uint64_t programId() const;

    /// The name in the caption, empty without a program source.
    QString programName() const;

    /// Copies `frame` when it belongs to the program source and asks for a repaint. Any thread;
    /// the frame is read only during the call.
    void offerFrame(uint64_t id, const zq::mediacore::IFrame* frame);

    /// Frames copied since the current source went on program.
    uint64_t shownFrames() const;

    /// The last drop the monitor accepted; id 0 before any.
    DropRecord lastDrop() const;

    /// Re-applies the translated caption, hint and accessible name after a language switch.
    void retranslate();

Q_SIGNALS:
    /// The program source changed to `id` (0: none).
    void programChanged(uint64_t id);

    /// A tile was dropped on the monitor; lastDrop() tells what it carried.
    void sourceDropped(uint64_t id);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
