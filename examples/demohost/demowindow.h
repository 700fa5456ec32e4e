// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>

#include <memory>
#include <vector>

namespace quandel {
class ZQRuntime;
} // namespace quandel

namespace vexa::inputsource {
class InputSourceBox;
} // namespace vexa::inputsource

namespace demohost {

class SimulatedInputSourceMgr;

/// The demo host's main window: the input sources panel (one box per kind of source: capture
/// cards, network streams, NDI senders, web pages) bound to a simulated manager on a real
/// runtime thread, the message centre beside it, a language chooser and a chooser of the load
/// warning's threshold.
///
/// GUI thread only. The window owns the runtime, the manager and the boxes; its destructor
/// unbinds the boxes, stops the manager's threads and then the runtime.
class DemoWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Builds the window, binds every box and seeds the manager with demo sources.
    explicit DemoWindow(QWidget* parent = nullptr);
    ~DemoWindow() override;

    /// The boxes, top to bottom: capture cards, network streams, NDI senders, web pages.
    std::vector<vexa::inputsource::InputSourceBox*> boxes() const;

    /// Switches the panel to language `code` ("zh_CN", "zh_TW", "en_US"), as the chooser does.
    void switchLanguage(const QString& code);

    /// Makes `percent` the CPU, GPU and memory threshold of the web dialog's load warning, as
    /// the toolbar's chooser does (a figure it does not offer is added to it).
    void setLoadThreshold(int percent);

    /// The simulated manager behind the boxes.
    std::shared_ptr<SimulatedInputSourceMgr> manager() const;

    /// The runtime whose thread runs the manager.
    quandel::ZQRuntime& runtime() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
