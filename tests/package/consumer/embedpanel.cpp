// SPDX-License-Identifier: MIT
// A host application embedding the input sources panel: a main window whose side holds the panel
// in a dock, a manager of sources, a runtime thread and a thread that feeds preview frames.
//
//   embedpanel [--language zh_CN|zh_TW|en_US] [--quit-after MILLISECONDS]
#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/inputsourcewidget.h>
#include <vexainputsourcewidget/stinputsource.h>

#include <quandel/msgcenter/msgcentermgr.h>
#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <vexa/widgets/style.h>
#include <zq/mediacore/rgbaframe.h>
#include <zq/mediacore/valuemeta.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using quandel::resource::EnResourceType;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::STInputSource;

// The host's manager of sources. A real one opens and decodes them; this one only keeps their
// names. The panel runs every request on the runtime thread, so the notifications a request
// fires are on that thread too, as the library expects. The queries the panel makes from the
// GUI thread (getResources, getResourceById, generateStreamingName, isNameRepeated) and the frame
// thread's sourceIds() share the lock.
class HostInputSourceMgr : public IInputSourceMgr
{
public:
    void addInputSources(const std::vector<STInputSource>& sources) override
    {
        std::vector<ResourcePtr> added;
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            for (const STInputSource& source : sources) {
                const auto type = static_cast<EnResourceType>(source.sourceType);
                zq::mediacore::MetaValues values;
                values.resourceType = type;
                values.name = source.name;
                values.address = source.address;
                auto resource = std::make_shared<quandel::resource::ValueResource>(m_nextId++, type,
                                                                                   source.name);
                resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(values));
                m_sources[resource->getId()] = resource;
                added.push_back(resource);
            }
        }
        signalResourcesAdded(added, sources);
    }

    void deleteInputSources(const std::vector<uint64_t>& ids) override
    {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            for (const uint64_t id : ids) {
                m_sources.erase(id);
            }
        }
        signalResourcesDeleted(ids);
    }

    void previewInputSources(const std::vector<STInputSource>& sources, bool) override
    {
        // A real manager starts or stops decoding here; the panel follows what it reports.
        signalPreviewedChanged(sources);
    }

    std::vector<ResourcePtr> getResources() override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        std::vector<ResourcePtr> all;
        for (const auto& entry : m_sources) {
            all.push_back(entry.second);
        }
        return all;
    }

    void setStreamingText(const std::string& text) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_streamingText = text;
    }

    std::string generateStreamingName() override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_streamingText + std::to_string(m_nextId);
    }

    ResourcePtr getResourceById(uint64_t id) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto found = m_sources.find(id);
        return found == m_sources.end() ? nullptr : found->second;
    }

    bool renameInputSource(const vexa::STResourceRenamedModel&) override { return false; }
    void renameNdiReceiver(const vexa::STResourceRenamedModel&) override {}
    // No NDI discovery here: the dialog is told of an empty network.
    void refreshNdiSources() override { signalNdiSourcesUpdated({}); }

    bool isNameRepeated(const std::string& name) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        for (const auto& entry : m_sources) {
            if (entry.second->getName() == name) {
                return true;
            }
        }
        return false;
    }

    void webOperation(const vexa::inputsource::STWebOperation&) override {}
    void changeCaptResolution(const STInputSource&) override {}
    void refreshCaptureDevices() override {}

    // The sources that deliver pictures. Any thread.
    std::vector<uint64_t> sourceIds()
    {
        std::vector<uint64_t> ids;
        for (const ResourcePtr& resource : getResources()) {
            ids.push_back(resource->getId());
        }
        return ids;
    }

private:
    mutable std::mutex m_lock;
    std::map<uint64_t, ResourcePtr> m_sources;
    std::string m_streamingText = "Stream";
    uint64_t m_nextId = 1;
};

// The library's theme names its icons relative to the sheet; Qt would read them relative to the
// working directory, so they are made absolute.
QString themeStyleSheet(const QString& themesDir)
{
    QFile file(QDir(themesDir).filePath(QStringLiteral("inputsource.qss")));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return vexa::widgets::defaultStyleSheet();
    }
    QString sheet = QString::fromUtf8(file.readAll());
    sheet.replace(QStringLiteral("url(icons/"),
                  QStringLiteral("url(%1/icons/").arg(QDir(themesDir).absolutePath()));
    return vexa::widgets::defaultStyleSheet() + sheet;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QCommandLineParser options;
    options.addOption({QStringLiteral("language"), QStringLiteral("UI language"),
                       QStringLiteral("code"), QStringLiteral("zh_CN")});
    options.addOption({QStringLiteral("quit-after"), QStringLiteral("Quit after this long"),
                       QStringLiteral("milliseconds"), QStringLiteral("0")});
    options.process(app);

    // Everything the panel uses outlives it: the runtime first of all, since the manager fires
    // its signals on the runtime's thread and the panel waits for it.
    quandel::ZQRuntime runtime;
    quandel::msgcenter::MsgCenterMgr messageCentre;
    auto manager = std::make_shared<HostInputSourceMgr>();

    auto* const window = new QMainWindow;
    window->setCentralWidget(new QLabel(QStringLiteral("Program"), window));
    auto* const dock = new QDockWidget(window);
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    auto* const panel = new vexa::inputsource::InputSourceWidget(dock);
    // The dock takes the panel's (translated) title.
    dock->setWidget(panel);
    window->addDockWidget(Qt::LeftDockWidgetArea, dock);

    // The host's answer to "is this source in use?", asked before a source is deleted. Direct,
    // so that the answer returns to the panel.
    QObject::connect(
        panel, &vexa::inputsource::InputSourceWidget::signalCheckInputSourceBeUsed, window,
        [](uint64_t /*id*/) { return false; }, Qt::DirectConnection);

    // Set-up: the runtime, message centre, loading animation, style sheet and language files in
    // any order, the manager last.
    const QString themesDir = QStringLiteral(VEXA_THEMES_DIR);
    const QDir translations(QStringLiteral(VEXA_TRANSLATIONS_DIR));
    panel->setZQRuntime(&runtime);
    panel->setMsgCenterMgr(&messageCentre);
    panel->setLoadingPath(QDir(themesDir).filePath(QStringLiteral("loading.gif")));
    panel->setInputSourceStyleSheet(themeStyleSheet(themesDir));
    QStringList languageFiles;
    for (const QString& name :
         translations.entryList({QStringLiteral("vexainputsourcewidget_*.qm")}, QDir::Files)) {
        languageFiles << translations.filePath(name);
    }
    panel->loadLanguageFiles(languageFiles); // switches to "zh_CN"
    panel->switchLanguage(options.value(QStringLiteral("language")));
    panel->setInputSourceMgr(manager);

    // A source the host had before the panel came: added on the runtime thread, as every
    // notification of the manager must be.
    runtime.post(
        [manager] {
            STInputSource stream;
            stream.name = "Camera 1";
            stream.address = "rtsp://192.0.2.10/live";
            stream.sourceType = quandel::resource::toCode(EnResourceType::NetworkStream);
            manager->addInputSources({stream});
        },
        __FILE__, __LINE__, "main");

    // Preview frames come from the host's decoding threads, straight to the panel.
    std::atomic<bool> feeding{true};
    std::thread frames([&feeding, manager, panel] {
        zq::mediacore::RgbaFrame frame(320, 180, 25.0);
        for (uint8_t shade = 0; feeding.load(); shade = static_cast<uint8_t>(shade + 4)) {
            frame.fill(shade, 96, static_cast<uint8_t>(255 - shade));
            for (const uint64_t id : manager->sourceIds()) {
                panel->updateFrame(id, &frame);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(40));
        }
    });

    window->resize(1100, 700);
    window->show();
    if (const int quitAfter = options.value(QStringLiteral("quit-after")).toInt(); quitAfter > 0) {
        QTimer::singleShot(quitAfter, &app, &QApplication::quit);
    }
    const int result = app.exec();

    // Shut-down, in this order: no thread may hand the panel a frame any more; the panel lets go
    // of the manager; the panel goes with its window; then the manager, and last the runtime.
    feeding = false;
    frames.join();
    panel->unsetInputSourceMgr();
    delete window;
    manager.reset();
    std::printf("embedpanel: shut down\n");
    return result;
}
