// SPDX-License-Identifier: MIT
// Runs the panel on the host's own runtime, which the library was built against and which its
// package configuration found by target name.
#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/inputsourcewidget.h>
#include <vexainputsourcewidget/version.h>

#include <standin/runtime.h>

#include <QApplication>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

class SilentMgr : public vexa::inputsource::IInputSourceMgr
{
public:
    void addInputSources(const std::vector<vexa::inputsource::STInputSource>&) override {}
    void deleteInputSources(const std::vector<uint64_t>&) override {}
    void previewInputSources(const std::vector<vexa::inputsource::STInputSource>&, bool) override {}
    std::vector<ResourcePtr> getResources() override { return {}; }
    void setStreamingText(const std::string&) override {}
    std::string generateStreamingName() override { return {}; }
    ResourcePtr getResourceById(uint64_t) override { return {}; }
    bool renameInputSource(const vexa::STResourceRenamedModel&) override { return false; }
    void renameNdiReceiver(const vexa::STResourceRenamedModel&) override {}
    void refreshNdiSources() override {}
    bool isNameRepeated(const std::string&) override { return false; }
    void webOperation(const vexa::inputsource::STWebOperation&) override {}
    void changeCaptResolution(const vexa::inputsource::STInputSource&) override {}
    void refreshCaptureDevices() override {}
};

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    standin::Runtime runtime;
    const auto manager = std::make_shared<SilentMgr>();
    int started = 0;
    {
        vexa::inputsource::InputSourceWidget panel;
        panel.setZQRuntime(&runtime);
        // Each box binds to the manager on the runtime thread while this thread waits.
        panel.setInputSourceMgr(manager);
        started = runtime.tasksStarted();
        panel.unsetInputSourceMgr();
    }
    if (started == 0 || std::strcmp(vexa::inputsource::libraryVersion(),
                                    VEXAINPUTSOURCEWIDGET_VERSION_STRING) != 0) {
        std::fprintf(stderr, "hostconsumer: the library did not use the host's runtime\n");
        return 1;
    }
    std::printf("hostconsumer: the panel ran %d tasks on the host's runtime\n", started);
    return 0;
}
