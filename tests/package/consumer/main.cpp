// SPDX-License-Identifier: MIT
// A host in miniature: links only the library's package target and touches every platform
// module through it, so a module whose headers, library or link interface went missing from
// the installed package fails to build or to run here.
#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourceitem.h>
#include <vexainputsourcewidget/inputsourcemetatypes.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/version.h>

#include <XJ/Utils/flowlayout.h>

#include <captureprobe/wgcsupport.h>
#include <quandel/msgcenter/msgcentermgr.h>
#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <quandel/trans/translator.h>
#include <sigslot/signal.h>
#include <vexa/layout/floatingitemwidget.h>
#include <vexa/widgets/pushbutton.h>
#include <zq/mediacore/rgbaframe.h>
#include <zq/mediacore/valuemeta.h>
#include <zqctuils/floatcomparison.h>
#include <zqctuils/indexgenerator.h>

#include <QApplication>
#include <QLabel>
#include <QMetaType>

#include <cstdio>
#include <future>
#include <memory>
#include <string>

namespace {

int failures = 0;

void check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "consumer: check failed: %s\n", what);
        ++failures;
    }
}

// The smallest manager a host could write: it keeps nothing and answers every request with
// nothing, which is all the check of the tile below needs.
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

    check(std::string(vexa::inputsource::libraryVersion()).find('.') != std::string::npos,
          "library version");

    quandel::ZQRuntime runtime;
    std::promise<bool> onRuntime;
    runtime.post([&] { onRuntime.set_value(runtime.isInRuntimeThread()); }, __FILE__, __LINE__,
                 "main");
    check(onRuntime.get_future().get(), "runtime runs posted tasks on its thread");

    sigslot::signal<const std::string&, bool&> renamed;
    renamed.connect([](const std::string& name, bool& repeated) { repeated = name == "Cam"; });
    bool repeated = false;
    renamed("Cam", repeated);
    check(repeated, "sigslot out-flag");

    auto& translator = InputSourceTranslateManager::instance().translator();
    check(quandel::trans::translate(translator, "InputSource", "Widget", "Streaming") ==
              QStringLiteral("Streaming"),
          "translator falls back to the key");
    check(translator.load(QStringLiteral(VEXA_TRANSLATIONS_DIR "/vexainputsourcewidget_en_US.qm")),
          "installed language file loads");
    translator.switchLanguage(QStringLiteral("en_US"));
    check(quandel::trans::translate(translator, "InputSource", "Widget", "DeleteText") !=
              QStringLiteral("DeleteText"),
          "installed language file has texts");

    vexa::inputsource::registerMetaTypes();
    check(QMetaType::type("STInputSource") != QMetaType::UnknownType, "meta types registered");

    vexa::layout::FloatingItemWidget panel(QStringLiteral("InputSource"), nullptr);
    auto* flow = new XJ::Utils::FlowLayout(&panel, 0, 4, 4);
    flow->addWidget(new vexa::widgets::PushButton(&panel));
    check(flow->count() == 1 && panel.id() == QStringLiteral("InputSource"), "widget modules");

    auto meta = std::make_shared<zq::mediacore::ValueMeta>();
    auto resource = std::make_shared<quandel::resource::ValueResource>(
        42, quandel::resource::EnResourceType::NetworkStream, "Stream1");
    resource->setMeta(meta);
    check(resource->getMeta() == meta, "resource keeps its meta");

    zq::mediacore::RgbaFrame frame(16, 8, 25.0);
    check(frame.getBuffer() && frame.getBuffer()->stride() == 64, "rgba frame stride");

    check(zqctuils::FloatComparison::equal(59.94f, 59.94), "float comparison");
    check(zqctuils::IndexGenerator::generateIndex({QStringLiteral("WebPage1")},
                                                  QStringLiteral("WebPage")) == 2,
          "index generator");

    quandel::msgcenter::MsgCenterMgr messages;
    messages.postMessage({QStringLiteral("hello"), quandel::msgcenter::STMessage::Notice, -1, {}});
    check(messages.messages().size() == 1, "message centre keeps messages");

    // A host reaches a capture tile through the box and names its device.
    {
        using quandel::resource::EnResourceType;
        auto mgr = std::make_shared<SilentMgr>();
        vexa::inputsource::InputSourceBox box;
        box.setResourceType(EnResourceType::LocalCaptureDevice);
        box.setZQRuntime(&runtime);
        box.setInputSourceMgr(mgr);
        zq::mediacore::MetaValues values;
        values.resourceType = EnResourceType::LocalCaptureDevice;
        values.name = "HDMI In";
        auto card = std::make_shared<quandel::resource::ValueResource>(
            7, EnResourceType::LocalCaptureDevice, values.name);
        card->setMeta(std::make_shared<zq::mediacore::ValueMeta>(values));
        std::promise<void> fired;
        runtime.post(
            [&] {
                mgr->signalResourcesAdded({card}, {});
                fired.set_value();
            },
            __FILE__, __LINE__, "main");
        fired.get_future().get();
        QCoreApplication::processEvents();
        vexa::inputsource::InputSourceItem* const tile = box.findItem(7);
        check(tile != nullptr, "the box made the tile of the added device");
        if (tile != nullptr) {
            tile->setDeviceCaption(QStringLiteral("USB"), QStringLiteral("Camera"));
            const auto* caption = tile->findChild<QLabel*>(QStringLiteral("captionLabel"));
            check(caption != nullptr && caption->text() == QStringLiteral("Camera(USB)"),
                  "a host names a capture device on its tile");
            check(tile->property("id").toULongLong() == 7, "tile state is readable");
        }
        box.unsetInputSourceMgr();
    }

    OverrideSupportedWGC(true);
    check(IsSupportedWGC(), "capture probe override");

    if (failures == 0) {
        std::printf("consumer: all modules answered\n");
    }
    return failures == 0 ? 0 : 1;
}
