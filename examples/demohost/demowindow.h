#pragma once

#include <QMainWindow>

#include <memory>

namespace demohost {

/// The demo host's main window: what the host platform modules do, live. GUI thread only.
class DemoWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit DemoWindow(QWidget* parent = nullptr);
    ~DemoWindow() override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
