#pragma once

#include <QMainWindow>

#include <memory>
#include <vector>

namespace quandel {
class ZQRuntime;
} // namespace quandel

namespace vexa::inputsource {
class InputSourceBox;
class InputSourceWidget;
} // namespace vexa::inputsource

namespace demohost {

class ProgramMonitor;
class SimulatedInputSourceMgr;

/// The demo host's main window, laid out as a production host's: the program monitor in the
/// centre, the input sources panel (InputSourceWidget) in a floatable dock at the side, the
/// message centre in a second dock below the monitor, and a toolbar with the number of sources,
/// the load warning's threshold and the language chooser. The panel is bound to a simulated
/// manager on a real runtime thread; a tile dropped on the monitor (or the selected source put
/// there from the keyboard) goes on program, and the window then answers the panel that the
/// source is in use.
///
/// GUI thread only. The window owns the runtime, the manager and the panel; its destructor
/// stops the frames, unbinds the panel, stops the manager's threads and then the runtime.
class DemoWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The demo's own set of sources, a few of every kind.
    static constexpr int demoSources = -1;

    /// Builds the window, binds the panel and seeds the manager: with the demo's own set, or
    /// with `sourceCount` made-up sources spread over the four kinds.
    explicit DemoWindow(QWidget* parent = nullptr, int sourceCount = demoSources);
    ~DemoWindow() override;

    /// The panel in the side dock.
    vexa::inputsource::InputSourceWidget* panel() const;

    /// The panel's boxes as shown, top to bottom: capture cards, network streams, NDI senders,
    /// web pages.
    std::vector<vexa::inputsource::InputSourceBox*> boxes() const;

    /// The monitor in the centre.
    ProgramMonitor* programMonitor() const;

    /// Puts the source selected in the panel on program, as the action "Put selected source on
    /// program" (Ctrl+Return) does; false when no source is selected.
    bool putSelectedOnProgram();

    /// Whether the window counts source `id` as in use: on program, or previewed.
    bool isInUse(uint64_t id) const;

    /// Switches the panel and the window to language `code` ("zh_CN", "zh_TW", "en_US"), as the
    /// chooser does.
    void switchLanguage(const QString& code);

    /// Makes `percent` the CPU, GPU and memory threshold of the web dialog's load warning, as
    /// the toolbar's chooser does (a figure it does not offer is added to it).
    void setLoadThreshold(int percent);

    /// The simulated manager behind the panel.
    std::shared_ptr<SimulatedInputSourceMgr> manager() const;

    /// The runtime whose thread runs the manager.
    quandel::ZQRuntime& runtime() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
