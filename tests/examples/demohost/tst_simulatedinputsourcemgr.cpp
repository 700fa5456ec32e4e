// SPDX-License-Identifier: MIT
#include "simulatedinputsourcemgr.h"

#include <vexainputsourcewidget/testing/runtimeblocker.h>
#include <vexainputsourcewidget/testing/runtogether.h>
#include <vexainputsourcewidget/testing/waituntil.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/iframe.h>
#include <zq/mediacore/imeta.h>

#include <QtTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

using demohost::SimulatedInputSourceMgr;
using vexa::STResourceRenamedModel;
using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::STWebTab;
using vexa::testing::waitUntil;

namespace {

constexpr int32_t ndiKind = 7;
constexpr int32_t captureKind = 8;
constexpr int32_t webKind = 9;
constexpr int32_t streamKind = 13;
constexpr auto patience = std::chrono::seconds(10);

// Every notification as it arrived: which one, about which source, and whether it came on the
// runtime thread.
class Journal
{
public:
    struct Entry
    {
        std::string what;
        uint64_t id;
        bool onRuntime;
    };

    Journal(SimulatedInputSourceMgr& mgr, quandel::IZQRuntime& runtime)
        : m_runtime(runtime)
    {
        m_connections.emplace_back(mgr.signalResourcesAdded.connect(
            [this](const std::vector<SimulatedInputSourceMgr::ResourcePtr>& resources,
                   const std::vector<STInputSource>& records) {
                // Checked here, noted for the test thread: QTest cannot fail from this thread.
                for (std::size_t i = 0; i < resources.size(); ++i) {
                    const auto meta = resources[i]->getMeta();
                    const bool described =
                        meta != nullptr && i < records.size() &&
                        static_cast<int32_t>(meta->getResourceType()) == records[i].sourceType &&
                        meta->getName() == records[i].name &&
                        resources[i]->getId() == records[i].id;
                    note(described ? "added" : "addedWithoutMeta", resources[i]->getId());
                }
            }));
        m_connections.emplace_back(mgr.signalResourceExtracted.connect(
            [this](const SimulatedInputSourceMgr::ResourcePtr& resource,
                   const quandel::resource::STResouceExtracted& report) {
                note(report.succeeded ? "extracted" : "extractedWithoutSuccess", resource->getId());
            }));
        m_connections.emplace_back(mgr.signalResourceExtractFailed.connect(
            [this](const SimulatedInputSourceMgr::ResourcePtr& resource,
                   const quandel::resource::STResouceExtracted&) {
                note("extractFailed", resource->getId());
            }));
        m_connections.emplace_back(mgr.signalOnlineStatusChanged.connect(
            [this](const std::map<uint64_t, bool>& states, int type) {
                for (const auto& [id, online] : states) {
                    note(online ? "online" : "offline", id, type);
                }
            }));
        m_connections.emplace_back(mgr.signalResolutionUpdated.connect(
            [this](const STInputSource& source) { note("resolution", source.id); }));
        m_connections.emplace_back(
            mgr.signalResourcesDeleted.connect([this](const std::vector<uint64_t>& ids) {
                for (const uint64_t id : ids) {
                    note("deleted", id);
                }
            }));
        m_connections.emplace_back(
            mgr.signalResourceRenamed.connect([this](const STResourceRenamedModel& model, bool&) {
                note(model.flag != 0 ? "renameRefused:" + model.name : "renamed:" + model.name,
                     model.id);
            }));
        m_connections.emplace_back(
            mgr.signalPreviewedChanged.connect([this](const std::vector<STInputSource>& sources) {
                for (const STInputSource& source : sources) {
                    note(source.preview ? "previewOn" : "previewOff", source.id);
                }
            }));
        m_connections.emplace_back(
            mgr.signalOnlineTimeUpdated.connect([this](const std::map<uint64_t, int>& seconds) {
                for (const auto& [id, value] : seconds) {
                    note("seconds:" + std::to_string(value), id);
                }
            }));
        m_connections.emplace_back(mgr.signalCaptResolutionUpdated.connect(
            [this](const STInputSource& source) { note("captResolution", source.id); }));
        m_connections.emplace_back(mgr.signalResolutionError.connect(
            [this](const quandel::CaptResolutionsInfo&) { note("resolutionError", 0); }));
        m_connections.emplace_back(mgr.signalNdiSourcesUpdated.connect(
            [this](const std::vector<STResourceRenamedModel>& senders) {
                for (const STResourceRenamedModel& sender : senders) {
                    note("sender:" + sender.ipAddress + ":" + std::to_string(sender.flag), 0);
                }
            }));
        m_connections.emplace_back(
            mgr.signalWebInfoChanged.connect([this](const STWebOperation& operation) {
                switch (operation.code) {
                case STWebOperation::WebDescriptionChanged:
                    note("web:" + operation.webDescription.address, operation.id);
                    break;
                case STWebOperation::LoadReadings:
                    noteLoad(operation.loadReadings);
                    break;
                case STWebOperation::LoadThresholds: {
                    const auto& t = operation.loadThresholds;
                    note("thresholds:" + std::to_string(t[0]) + "," + std::to_string(t[1]) + "," +
                             std::to_string(t[2]),
                         0);
                    break;
                }
                default:
                    note("webCode:" + std::to_string(operation.code), operation.id);
                    break;
                }
            }));
        m_connections.emplace_back(mgr.signalWebPageReloaded.connect(
            [this](uint64_t id, const std::string& address) { note("reloaded:" + address, id); }));
        m_connections.emplace_back(mgr.signalCaptureDevicesChanged.connect(
            [this](const std::vector<STInputSource>& devices) {
                note("devices:" + std::to_string(devices.size()), 0);
            }));
        m_connections.emplace_back(mgr.signalStreamingTextChanged.connect(
            [this](const std::string& text) { note("streamingText:" + text, 0); }));
    }

    std::vector<Entry> entries() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_entries;
    }

    bool has(const std::string& what, uint64_t id) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return std::any_of(m_entries.begin(), m_entries.end(),
                           [&](const Entry& e) { return e.what == what && e.id == id; });
    }

    // The running times reported for `id`, in the order they came.
    std::vector<int> secondsOf(uint64_t id) const
    {
        std::vector<int> seconds;
        for (const Entry& entry : entries()) {
            if (entry.id == id && entry.what.rfind("seconds:", 0) == 0) {
                seconds.push_back(std::stoi(entry.what.substr(8)));
            }
        }
        return seconds;
    }

    // The load readings in the order they came, each with when it arrived.
    struct Load
    {
        std::array<double, 3> readings;
        std::chrono::steady_clock::time_point at;
    };
    std::vector<Load> loads() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_loads;
    }

    bool waitFor(const std::string& what, uint64_t id) const
    {
        return waitUntil([&] { return has(what, id); }, patience);
    }

    // The order in which the notifications about `id` arrived, without the running time.
    std::vector<std::string> historyOf(uint64_t id) const
    {
        std::vector<std::string> history;
        for (const Entry& entry : entries()) {
            if (entry.id == id && entry.what.rfind("seconds:", 0) != 0) {
                history.push_back(entry.what);
            }
        }
        return history;
    }

    bool allOnRuntime() const
    {
        const auto all = entries();
        return std::all_of(all.begin(), all.end(), [](const Entry& e) { return e.onRuntime; });
    }

    int onlineType(uint64_t id) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_onlineTypes.count(id) != 0 ? m_onlineTypes.at(id) : -1;
    }

private:
    void noteLoad(const std::array<double, 3>& readings)
    {
        note("load", 0);
        std::lock_guard<std::mutex> lock(m_mutex);
        m_loads.push_back({readings, std::chrono::steady_clock::now()});
    }

    void note(std::string what, uint64_t id, int type = -1)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.push_back({std::move(what), id, m_runtime.isInRuntimeThread()});
        if (type >= 0) {
            m_onlineTypes[id] = type;
        }
    }

    quandel::IZQRuntime& m_runtime;
    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
    std::map<uint64_t, int> m_onlineTypes;
    std::vector<Load> m_loads;
    std::vector<sigslot::scoped_connection> m_connections;
};

// Runs `body` on the runtime thread, as the panel runs its requests, and hands back its result.
template <typename Body>
auto onRuntime(quandel::IZQRuntime& runtime, Body body)
{
    auto task = std::make_shared<std::packaged_task<decltype(body())()>>(std::move(body));
    auto result = task->get_future();
    runtime.post([task] { (*task)(); }, __FILE__, __LINE__, "onRuntime");
    return result.get();
}

STInputSource record(int32_t type, std::string name, std::string address = {})
{
    STInputSource source;
    source.sourceType = type;
    source.name = std::move(name);
    source.address = std::move(address);
    if (type == captureKind) {
        source.devicePath = "pci-test";
        source.captResolutions = {{1920, 1080, 59.94F, "NV12"}, {1280, 720, 30.0F, "YUY2"}};
    }
    return source;
}

// A web page with the tabs `tabs`, the first one shown.
STInputSource webPage(std::string name, std::vector<STWebTab> tabs)
{
    STInputSource page = record(webKind, std::move(name), tabs.front().url);
    page.webName = page.name;
    page.webTabs = std::move(tabs);
    return page;
}

// The operation the web dialog sends when its OK edits page `id`.
STWebOperation edit(uint64_t id, std::string name, std::vector<STWebTab> tabs, int current)
{
    STWebOperation operation;
    operation.code = STWebOperation::WebDescriptionChanged;
    operation.id = id;
    operation.webDescription.name = name;
    operation.webDescription.webName = std::move(name);
    operation.webDescription.currentTabIndex = current;
    for (const STWebTab& tab : tabs) {
        if (tab.tabIndex == current) {
            operation.webDescription.address = tab.url;
        }
    }
    operation.webDescription.webTabs = std::move(tabs);
    return operation;
}

// Counts the frames the sink receives per source, and checks each is a well-formed picture.
class FrameCounter
{
public:
    SimulatedInputSourceMgr::FrameSink sink()
    {
        return [this](uint64_t id, const zq::mediacore::IFrame* frame) {
            const bool wellFormed =
                frame != nullptr && frame->getWidth() == SimulatedInputSourceMgr::frameWidth &&
                frame->getHeight() == SimulatedInputSourceMgr::frameHeight &&
                frame->getBuffer() != nullptr && frame->getBuffer()->data() != nullptr;
            std::lock_guard<std::mutex> lock(m_mutex);
            ++m_counts[id];
            m_malformed += wellFormed ? 0 : 1;
        };
    }

    int count(uint64_t id) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_counts.count(id) != 0 ? m_counts.at(id) : 0;
    }

    int malformed() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_malformed;
    }

private:
    mutable std::mutex m_mutex;
    std::map<uint64_t, int> m_counts;
    int m_malformed = 0;
};

} // namespace

class TestSimulatedInputSourceMgr : public QObject
{
    Q_OBJECT

private:
    // One source added through the runtime, as the panel would; returns its id.
    uint64_t add(SimulatedInputSourceMgr& mgr, quandel::IZQRuntime& runtime, STInputSource source)
    {
        const std::string name = source.name;
        onRuntime(runtime, [&mgr, source] {
            mgr.addInputSources({source});
            return true;
        });
        for (const auto& resource : mgr.getResources()) {
            if (resource->getName() == name) {
                return resource->getId();
            }
        }
        return 0;
    }

private Q_SLOTS:
    void deviceArrivalsComeNowAndThenUntilTheSinkGoes();
    void addFiresAddedExtractedOnlineAndResolutionOnTheRuntime();
    void unreachableSourceFailsAndStaysOffline();
    void deleteFiresDeletedAndForgetsTheSource();
    void renameToAFreeNameRenames();
    void renameToATakenNameSetsTheFlagAndKeepsTheOldName();
    void previewReportsOneRecordPerSourceAndMarksItInUse();
    void changeCaptResolutionUpdatesTheMeta();
    void changeCaptResolutionToAnUnofferedFormatIsAnError();
    void onlineTimeTicksEverySecond();
    void framesReachTheSinkForPreviewedOnlineSourcesOnly();
    void generateStreamingNameTakesTheSmallestFreeNumber();
    void refreshNdiSourcesReportsTheSendersOnTheRuntime();
    void webOperationChangesTheDescription();
    void webEditRenamesThePageAndKeepsItsTabs();
    void webEditToATakenNameKeepsTheOldName();
    void doubleClickReloadsThePageAndKeepsItsTabs();
    void otherWebOperationsAreRefused();
    void loadReadingsGoOutEverySecondOnTheRuntime();
    void newThresholdsGoOutOnTheRuntime();
    void refreshCaptureDevicesFromTheGuiThreadFiresOnTheRuntime();
    void seedCreatesEveryKindAndPreviewsOneOfEach();
    void queriesRaceWithRequestsSafely();
    void shutdownWithThreadsRunning();
    void tasksQueuedForAGoneManagerDoNothing();
};

void TestSimulatedInputSourceMgr::deviceArrivalsComeNowAndThenUntilTheSinkGoes()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    std::atomic<int> arrivals{0};
    std::atomic<int> removals{0};
    mgr->setDeviceSink(
        [&arrivals, &removals](bool isArrival) { ++(isArrival ? arrivals : removals); },
        std::chrono::milliseconds(30));

    QTRY_VERIFY(arrivals >= 2);
    mgr->setDeviceSink({}, {});
    const int told = arrivals;
    QTest::qWait(150);
    QCOMPARE(arrivals.load(), told);
    QCOMPARE(removals.load(), 0);
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::addFiresAddedExtractedOnlineAndResolutionOnTheRuntime()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);

    const uint64_t id =
        add(*mgr, runtime, record(streamKind, "Cam", "rtmp://ingest.example.net/live/cam"));
    QVERIFY(id != 0);
    // Fired inside the request, before it returned.
    QVERIFY(journal.has("added", id));
    QVERIFY(!mgr->isOnline(id));

    QVERIFY(journal.waitFor("resolution", id));
    const std::vector<std::string> expected = {"added", "extracted", "online", "resolution"};
    QCOMPARE(journal.historyOf(id), expected);
    QCOMPARE(journal.onlineType(id), streamKind);
    QVERIFY(journal.allOnRuntime());
    QVERIFY(mgr->isOnline(id));

    const auto meta = mgr->getResourceById(id)->getMeta();
    QVERIFY(meta->getThumbnail().isValid());
    QCOMPARE(meta->getResolutionText(), std::string("1920*1080"));
    QVERIFY(meta->getFrameRate() > 0.0);
    QCOMPARE(meta->getAddress(), std::string("rtmp://ingest.example.net/live/cam"));
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::unreachableSourceFailsAndStaysOffline()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(20));
    Journal journal(*mgr, runtime);

    const uint64_t id =
        add(*mgr, runtime, record(streamKind, "Dead", "rtsp://unreachable.example.net/x"));
    QVERIFY(journal.waitFor("extractFailed", id));
    QTest::qWait(100);
    QVERIFY(!journal.has("online", id));
    QVERIFY(!mgr->isOnline(id));
    QVERIFY(!mgr->getResourceById(id)->getMeta()->getThumbnail().isValid());
}

void TestSimulatedInputSourceMgr::deleteFiresDeletedAndForgetsTheSource()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    const uint64_t first = add(*mgr, runtime, record(streamKind, "One"));
    const uint64_t second = add(*mgr, runtime, record(streamKind, "Two"));

    onRuntime(runtime, [&] {
        mgr->deleteInputSources({first, 999999});
        return true;
    });
    QVERIFY(journal.has("deleted", first));
    QVERIFY(!journal.has("deleted", 999999));
    QVERIFY(journal.allOnRuntime());
    QVERIFY(mgr->getResourceById(first) == nullptr);
    QVERIFY(mgr->getResourceById(second) != nullptr);
    QCOMPARE(mgr->getResources().size(), std::size_t(1));
    QVERIFY(!mgr->isNameRepeated("One"));
}

void TestSimulatedInputSourceMgr::renameToAFreeNameRenames()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    const uint64_t id = add(*mgr, runtime, record(ndiKind, "Old", "192.168.10.21"));

    const bool accepted = onRuntime(runtime, [&] {
        STResourceRenamedModel model;
        model.id = id;
        model.name = "New";
        return mgr->renameInputSource(model);
    });
    QVERIFY(accepted);
    QVERIFY(journal.has("renamed:New", id));
    QVERIFY(journal.allOnRuntime());
    const auto resource = mgr->getResourceById(id);
    QCOMPARE(resource->getName(), std::string("New"));
    QCOMPARE(resource->getMeta()->getName(), std::string("New"));
    QVERIFY(mgr->isNameRepeated("New"));
    QVERIFY(!mgr->isNameRepeated("Old"));
}

void TestSimulatedInputSourceMgr::renameToATakenNameSetsTheFlagAndKeepsTheOldName()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    const uint64_t id = add(*mgr, runtime, record(streamKind, "Mine"));
    add(*mgr, runtime, record(webKind, "Taken", "https://example.org"));

    std::vector<STResourceRenamedModel> reports;
    sigslot::scoped_connection connection = mgr->signalResourceRenamed.connect(
        [&](const STResourceRenamedModel& model, bool&) { reports.push_back(model); });
    const bool accepted = onRuntime(runtime, [&] {
        STResourceRenamedModel model;
        model.id = id;
        model.name = "Taken";
        return mgr->renameInputSource(model);
    });
    QVERIFY(!accepted);
    QCOMPARE(reports.size(), std::size_t(1));
    QCOMPARE(reports.front().id, id);
    QCOMPARE(reports.front().flag, uint64_t(1));
    QCOMPARE(reports.front().name, std::string("Mine"));
    QCOMPARE(mgr->getResourceById(id)->getName(), std::string("Mine"));

    vexa::testing::WarningRecorder recorder;
    const bool unknown = onRuntime(runtime, [&] {
        STResourceRenamedModel model;
        model.id = 424242;
        model.name = "Whatever";
        return mgr->renameInputSource(model);
    });
    QVERIFY(!unknown);
    QCOMPARE(recorder.count(QStringLiteral("rename of unknown source 424242")), 1);
}

void TestSimulatedInputSourceMgr::previewReportsOneRecordPerSourceAndMarksItInUse()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    const uint64_t first = add(*mgr, runtime, record(streamKind, "A"));
    const uint64_t second = add(*mgr, runtime, record(streamKind, "B"));

    // Written on the runtime thread while this thread waits for the request, read after it.
    std::vector<std::vector<STInputSource>> reports;
    bool allOnRuntime = true;
    sigslot::scoped_connection connection =
        mgr->signalPreviewedChanged.connect([&](const std::vector<STInputSource>& sources) {
            allOnRuntime = allOnRuntime && runtime.isInRuntimeThread();
            reports.push_back(sources);
        });
    onRuntime(runtime, [&] {
        STInputSource on;
        on.id = first;
        on.preview = true;
        STInputSource off;
        off.id = second;
        STInputSource unknown;
        unknown.id = 777777;
        unknown.preview = true;
        mgr->previewInputSources({on, off, unknown}, true);
        return true;
    });
    QVERIFY(allOnRuntime);
    QCOMPARE(reports.size(), std::size_t(1));
    QCOMPARE(reports.front().size(), std::size_t(2));
    QCOMPARE(reports.front()[0].id, first);
    QVERIFY(reports.front()[0].preview);
    QCOMPARE(reports.front()[1].id, second);
    QVERIFY(!reports.front()[1].preview);
    QVERIFY(mgr->isInUse(first));
    QVERIFY(!mgr->isInUse(second));
    QCOMPARE(mgr->previewedIds(), std::vector<uint64_t>{first});

    onRuntime(runtime, [&] {
        STInputSource off;
        off.id = first;
        mgr->previewInputSources({off}, false);
        return true;
    });
    QVERIFY(!mgr->isInUse(first));
    QVERIFY(mgr->previewedIds().empty());
}

void TestSimulatedInputSourceMgr::changeCaptResolutionUpdatesTheMeta()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    Journal journal(*mgr, runtime);
    const uint64_t id = add(*mgr, runtime, record(captureKind, "Card"));
    QVERIFY(journal.waitFor("online", id));

    std::vector<STInputSource> reports;
    sigslot::scoped_connection connection = mgr->signalCaptResolutionUpdated.connect(
        [&](const STInputSource& source) { reports.push_back(source); });
    onRuntime(runtime, [&] {
        STInputSource request;
        request.id = id;
        // Computed as a double elsewhere: matched with a tolerance, not exactly.
        request.captResolutions = {{1280, 720, static_cast<float>(30.0), "YUY2"}};
        mgr->changeCaptResolution(request);
        return true;
    });
    QCOMPARE(reports.size(), std::size_t(1));
    QCOMPARE(reports.front().id, id);
    QCOMPARE(reports.front().captResolutions.front().width, 1280);
    QCOMPARE(reports.front().captResolutions.size(), std::size_t(2));
    const auto meta = mgr->getResourceById(id)->getMeta();
    QCOMPARE(meta->getCurrentCaptResolution().height, 720);
    QCOMPARE(meta->getResolutionText(), std::string("1280*720"));
    QCOMPARE(meta->getFrameRate(), 30.0);
}

void TestSimulatedInputSourceMgr::changeCaptResolutionToAnUnofferedFormatIsAnError()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    const uint64_t id = add(*mgr, runtime, record(captureKind, "Card"));
    onRuntime(runtime, [&] {
        STInputSource request;
        request.id = id;
        request.captResolutions = {{640, 480, 15.0F, "MJPG"}};
        mgr->changeCaptResolution(request);
        return true;
    });
    QVERIFY(journal.has("resolutionError", 0));
    QVERIFY(!journal.has("captResolution", id));
    QCOMPARE(mgr->getResourceById(id)->getMeta()->getCurrentCaptResolution().width, 1920);
}

void TestSimulatedInputSourceMgr::onlineTimeTicksEverySecond()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    Journal journal(*mgr, runtime);
    const uint64_t id = add(*mgr, runtime, record(ndiKind, "Ticker", "192.168.10.34"));
    // The time is read off a clock, so a tick delayed on a busy machine reports the seconds that
    // have passed rather than one more.
    QVERIFY(waitUntil(
        [&] {
            const std::vector<int> seconds = journal.secondsOf(id);
            return seconds.size() >= 2 && seconds.back() >= 2;
        },
        patience));
    const std::vector<int> seconds = journal.secondsOf(id);
    QVERIFY(std::is_sorted(seconds.begin(), seconds.end()));
    QVERIFY(journal.allOnRuntime());
}

void TestSimulatedInputSourceMgr::framesReachTheSinkForPreviewedOnlineSourcesOnly()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    Journal journal(*mgr, runtime);
    FrameCounter counter;
    mgr->setFrameSink(counter.sink());

    STInputSource live = record(streamKind, "Live");
    live.preview = true;
    const uint64_t previewed = add(*mgr, runtime, live);
    const uint64_t idle = add(*mgr, runtime, record(streamKind, "Idle"));
    STInputSource dead = record(streamKind, "Dead", "rtsp://unreachable.example.net/");
    dead.preview = true;
    const uint64_t offline = add(*mgr, runtime, dead);

    // Created previewed: reported as such once online.
    QVERIFY(journal.waitFor("previewOn", previewed));
    QVERIFY(waitUntil([&] { return counter.count(previewed) >= 10; }, patience));
    QCOMPARE(counter.count(idle), 0);
    QCOMPARE(counter.count(offline), 0);
    QCOMPARE(counter.malformed(), 0);
    QVERIFY(mgr->deliveredFrames(previewed) >= 10);
    QVERIFY(mgr->deliveredFrames() >= mgr->deliveredFrames(previewed));

    onRuntime(runtime, [&] {
        STInputSource off;
        off.id = previewed;
        mgr->previewInputSources({off}, false);
        return true;
    });
    // One frame may have been under way when the preview closed.
    QTest::qWait(150);
    const int settled = counter.count(previewed);
    QTest::qWait(200);
    QCOMPARE(counter.count(previewed), settled);

    mgr->setFrameSink({});
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::generateStreamingNameTakesTheSmallestFreeNumber()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    onRuntime(runtime, [&] {
        mgr->setStreamingText("Feed");
        return true;
    });
    QVERIFY(journal.has("streamingText:Feed", 0));
    QCOMPARE(mgr->generateStreamingName(), std::string("Feed 1"));
    add(*mgr, runtime, record(streamKind, "Feed 1"));
    add(*mgr, runtime, record(streamKind, "Feed 3"));
    QCOMPARE(mgr->generateStreamingName(), std::string("Feed 2"));
    QVERIFY(mgr->isNameRepeated("Feed 3"));
    QVERIFY(!mgr->isNameRepeated("Feed 2"));

    // A record without a name gets the next free one.
    onRuntime(runtime, [&] {
        mgr->addInputSources({record(streamKind, {})});
        return true;
    });
    QVERIFY(mgr->isNameRepeated("Feed 2"));
    const STInputSource next = mgr->makeRecord(streamKind);
    QCOMPARE(next.name, std::string("Feed 4"));
    QCOMPARE(next.sourceType, streamKind);
    QVERIFY(!next.address.empty());
}

void TestSimulatedInputSourceMgr::refreshNdiSourcesReportsTheSendersOnTheRuntime()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    add(*mgr, runtime, record(ndiKind, "North", "192.168.10.21"));
    onRuntime(runtime, [&] {
        mgr->refreshNdiSources();
        return true;
    });
    // The scan takes a moment and answers in steps, like a real one.
    QVERIFY(journal.waitFor("sender:192.168.10.21:1", 0));
    QVERIFY(journal.waitFor("sender:192.168.10.34:0", 0));
    QVERIFY(journal.allOnRuntime());

    const STInputSource next = mgr->makeRecord(ndiKind);
    QCOMPARE(next.address, std::string("192.168.10.34"));
}

void TestSimulatedInputSourceMgr::webOperationChangesTheDescription()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    const uint64_t id = add(*mgr, runtime, record(webKind, "Page", "https://example.org/a"));

    onRuntime(runtime, [&] {
        STWebOperation operation;
        operation.code = STWebOperation::WebDescriptionChanged;
        operation.id = id;
        operation.webDescription.name = "Page";
        operation.webDescription.address = "https://example.org/b";
        operation.webDescription.webMode = 1;
        operation.webDescription.currentTabIndex = 2;
        operation.webDescription.webTabs = {{"A", "https://example.org/a", 1},
                                            {"B", "https://example.org/b", 2}};
        mgr->webOperation(operation);
        return true;
    });
    QVERIFY(journal.has("web:https://example.org/b", id));
    const auto meta = mgr->getResourceById(id)->getMeta();
    QCOMPARE(meta->getAddress(), std::string("https://example.org/b"));
    QCOMPARE(meta->getWebMode(), 1);
    QCOMPARE(meta->getWebCurrentTabIndex(), 2);
    QCOMPARE(meta->getWebTabs().size(), std::size_t(2));
}

void TestSimulatedInputSourceMgr::webEditRenamesThePageAndKeepsItsTabs()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    Journal journal(*mgr, runtime);
    const uint64_t id =
        add(*mgr, runtime, webPage("Scores", {{"Live", "https://scores.example.org/live", 1}}));
    QVERIFY(journal.waitFor("resolution", id));

    const std::vector<STWebTab> tabs = {{"Live", "https://scores.example.org/live", 1},
                                        {"Table", "https://scores.example.org/table", 2},
                                        {"Clock", "file:///srv/clock.html", 3}};
    onRuntime(runtime, [&] {
        mgr->webOperation(edit(id, "Results", tabs, 2));
        return true;
    });
    // Fired inside the request: the name first, so the tile is renamed before its address
    // changes, then the description, then the size the page is rendered at.
    const std::vector<std::string> expected = {
        "added",      "extracted",       "online",
        "resolution", "renamed:Results", "web:https://scores.example.org/table",
        "resolution"};
    QCOMPARE(journal.historyOf(id), expected);
    QVERIFY(journal.allOnRuntime());

    const auto resource = mgr->getResourceById(id);
    QCOMPARE(resource->getName(), std::string("Results"));
    const auto meta = resource->getMeta();
    QCOMPARE(meta->getName(), std::string("Results"));
    QCOMPARE(meta->getAddress(), std::string("https://scores.example.org/table"));
    QCOMPARE(meta->getWebCurrentTabIndex(), 2);
    QVERIFY(meta->getThumbnail().isValid());
    const auto kept = meta->getWebTabs();
    QCOMPARE(kept.size(), tabs.size());
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        QCOMPARE(kept[i].name, tabs[i].name);
        QCOMPARE(kept[i].url, tabs[i].url);
        QCOMPARE(kept[i].index, tabs[i].tabIndex);
    }
    QVERIFY(!mgr->isNameRepeated("Scores"));
    QVERIFY(mgr->isNameRepeated("Results"));
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::webEditToATakenNameKeepsTheOldName()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    add(*mgr, runtime, record(streamKind, "Taken", "rtmp://example.net/a"));
    const uint64_t id = add(*mgr, runtime, webPage("Page", {{"A", "https://example.org/a", 1}}));

    onRuntime(runtime, [&] {
        mgr->webOperation(edit(id, "Taken", {{"A", "https://example.org/b", 1}}, 1));
        return true;
    });
    // The page keeps its name and says so; the tabs change all the same.
    QVERIFY(journal.has("renameRefused:Page", id));
    QVERIFY(journal.has("web:https://example.org/b", id));
    QCOMPARE(mgr->getResourceById(id)->getName(), std::string("Page"));
    QCOMPARE(mgr->getResourceById(id)->getMeta()->getAddress(),
             std::string("https://example.org/b"));
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::doubleClickReloadsThePageAndKeepsItsTabs()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    Journal journal(*mgr, runtime);
    STInputSource page =
        webPage("Page", {{"A", "https://example.org/a", 1}, {"B", "https://example.org/b", 2}});
    page.preview = true;
    const uint64_t id = add(*mgr, runtime, page);
    QVERIFY(journal.waitFor("resolution", id));
    // The operator turns the preview off; a reload must not turn it on again.
    onRuntime(runtime, [&] {
        STInputSource off;
        off.id = id;
        off.preview = false;
        mgr->previewInputSources({off}, false);
        return true;
    });

    // What a double click sends: the id, code 0 and nothing else.
    STWebOperation doubleClick;
    doubleClick.id = id;
    onRuntime(runtime, [&] {
        mgr->webOperation(doubleClick);
        return true;
    });
    QVERIFY(journal.has("reloaded:https://example.org/a", id));
    QVERIFY(!mgr->isOnline(id));
    QTRY_VERIFY_WITH_TIMEOUT(mgr->isOnline(id), 10000);
    QVERIFY(journal.waitFor("resolution", id));
    const std::vector<std::string> expected = {"added",
                                               "extracted",
                                               "online",
                                               "resolution",
                                               "previewOn",
                                               "previewOff",
                                               "reloaded:https://example.org/a",
                                               "offline",
                                               "extracted",
                                               "online",
                                               "resolution"};
    QTRY_COMPARE_WITH_TIMEOUT(journal.historyOf(id), expected, 10000);
    QVERIFY(journal.allOnRuntime());
    QVERIFY(!mgr->isInUse(id));
    const auto meta = mgr->getResourceById(id)->getMeta();
    QCOMPARE(meta->getWebTabs().size(), std::size_t(2));
    QCOMPARE(meta->getAddress(), std::string("https://example.org/a"));
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::otherWebOperationsAreRefused()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    const uint64_t stream = add(*mgr, runtime, record(streamKind, "Cam", "rtmp://example.net/a"));
    const uint64_t page = add(*mgr, runtime, webPage("Page", {{"A", "https://example.org/a", 1}}));
    vexa::testing::WarningRecorder recorder;

    STWebOperation otherKind = edit(page, "Page", {{"A", "https://example.org/b", 1}}, 1);
    otherKind.kind = 2;
    STWebOperation readings;
    readings.code = STWebOperation::LoadReadings;
    readings.id = page;
    STWebOperation doubleClickOnAStream;
    doubleClickOnAStream.id = stream;
    onRuntime(runtime, [&] {
        mgr->webOperation(otherKind);
        mgr->webOperation(readings);
        mgr->webOperation(doubleClickOnAStream);
        mgr->webOperation(edit(4242, "Gone", {{"A", "https://example.org/b", 1}}, 1));
        return true;
    });
    QCOMPARE(recorder.count(QStringLiteral("web operation of kind 2")), 1);
    QCOMPARE(recorder.count(QStringLiteral("web operation code 15 is not one this host answers")),
             1);
    QCOMPARE(recorder.count(QStringLiteral("reload of %1, which is no web page").arg(stream)), 1);
    QCOMPARE(recorder.count(QStringLiteral("web operation on 4242, which is no web page")), 1);
    QCOMPARE(mgr->getResourceById(page)->getMeta()->getAddress(),
             std::string("https://example.org/a"));
    QVERIFY(!journal.has("web:https://example.org/b", page));
    QVERIFY(!journal.has("reloaded:rtmp://example.net/a", stream));
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::loadReadingsGoOutEverySecondOnTheRuntime()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    QTest::qWait(100);
    QVERIFY(journal.entries().empty());

    // From the GUI thread, as the window starts it; twice is once.
    mgr->startLoadReadings();
    mgr->startLoadReadings();
    QVERIFY(journal.waitFor("thresholds:85,85,85", 0));
    QVERIFY(waitUntil([&] { return journal.loads().size() >= 3; }, patience));
    const auto loads = journal.loads();
    for (const auto& load : loads) {
        const auto [cpu, gpu, memory] = load.readings;
        QVERIFY2(cpu == -1.0 || (cpu >= 0.0 && cpu <= 100.0), qPrintable(QString::number(cpu)));
        QCOMPARE(gpu, -1.0);
#ifdef Q_OS_LINUX
        QVERIFY2(memory > 0.0 && memory <= 100.0, qPrintable(QString::number(memory)));
#else
        QCOMPARE(memory, -1.0);
#endif
    }
    // A second apart; the timer thread may be late on a loaded machine, never early.
    for (std::size_t i = 1; i < loads.size(); ++i) {
        const auto gap =
            std::chrono::duration_cast<std::chrono::milliseconds>(loads[i].at - loads[i - 1].at);
        QVERIFY2(gap.count() >= 900, qPrintable(QString::number(gap.count())));
    }
    const auto entries = journal.entries();
    QCOMPARE(entries.front().what, std::string("thresholds:85,85,85"));
    QCOMPARE(std::count_if(entries.begin(), entries.end(),
                           [](const auto& e) { return e.what.rfind("thresholds:", 0) == 0; }),
             1L);
    QVERIFY(journal.allOnRuntime());
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::newThresholdsGoOutOnTheRuntime()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    const std::array<int32_t, 3> defaults{{85, 85, 85}};
    QCOMPARE(mgr->loadThresholds(), defaults);

    mgr->setLoadThresholds({{10, 20, 30}});
    QCOMPARE(mgr->loadThresholds(), (std::array<int32_t, 3>{{10, 20, 30}}));
    QVERIFY(journal.waitFor("thresholds:10,20,30", 0));
    // The readings start with the thresholds in force.
    mgr->startLoadReadings();
    QVERIFY(waitUntil(
        [&] {
            const auto entries = journal.entries();
            return std::count_if(entries.begin(), entries.end(), [](const auto& e) {
                       return e.what == "thresholds:10,20,30";
                   }) == 2;
        },
        patience));
    QVERIFY(journal.allOnRuntime());
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::refreshCaptureDevicesFromTheGuiThreadFiresOnTheRuntime()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    Journal journal(*mgr, runtime);
    add(*mgr, runtime, record(captureKind, "Card 1"));
    add(*mgr, runtime, record(streamKind, "Stream"));
    mgr->refreshCaptureDevices();
    QVERIFY(journal.waitFor("devices:1", 0));
    QVERIFY(journal.allOnRuntime());
}

void TestSimulatedInputSourceMgr::seedCreatesEveryKindAndPreviewsOneOfEach()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    mgr->seedDemoSources();
    QVERIFY(waitUntil([&] { return mgr->previewedIds().size() == 4; }, patience));

    std::map<int, int> kinds;
    for (const auto& resource : mgr->getResources()) {
        ++kinds[static_cast<int>(resource->getType())];
    }
    QVERIFY(kinds[captureKind] >= 2);
    QVERIFY(kinds[streamKind] >= 2);
    QVERIFY(kinds[ndiKind] >= 2);
    QVERIFY(kinds[webKind] >= 2);
    std::set<int> previewedKinds;
    for (const uint64_t id : mgr->previewedIds()) {
        previewedKinds.insert(static_cast<int>(mgr->getResourceById(id)->getType()));
    }
    QCOMPARE(previewedKinds, (std::set<int>{ndiKind, captureKind, webKind, streamKind}));
    for (const auto& resource : mgr->getResources()) {
        if (resource->getType() == quandel::resource::EnResourceType::LocalCaptureDevice) {
            QVERIFY(resource->getMeta()->getCaptResolutions().size() >= 2);
        }
    }
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::queriesRaceWithRequestsSafely()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(1));
    FrameCounter counter;
    mgr->setFrameSink(counter.sink());
    std::atomic<bool> writing{true};

    vexa::testing::runTogether({
        [&] {
            for (int round = 0; round < 40; ++round) {
                STInputSource source = record(streamKind, "Race " + std::to_string(round));
                source.preview = true;
                onRuntime(runtime, [&] {
                    mgr->addInputSources({source});
                    return true;
                });
                std::vector<uint64_t> ids;
                for (const auto& resource : mgr->getResources()) {
                    ids.push_back(resource->getId());
                }
                onRuntime(runtime, [&] {
                    mgr->deleteInputSources(ids);
                    return true;
                });
            }
            writing = false;
        },
        [&] {
            while (writing) {
                for (const auto& resource : mgr->getResources()) {
                    mgr->getResourceById(resource->getId());
                    resource->getMeta()->getThumbnail();
                }
                mgr->isNameRepeated("Race 3");
                mgr->generateStreamingName();
                mgr->refreshCaptureDevices();
            }
        },
    });
    QCOMPARE(counter.malformed(), 0);
    mgr->shutdown();
}

void TestSimulatedInputSourceMgr::shutdownWithThreadsRunning()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    mgr->setExtractionDelay(std::chrono::milliseconds(10));
    FrameCounter counter;
    mgr->setFrameSink(counter.sink());
    mgr->seedDemoSources();
    QVERIFY(waitUntil([&] { return mgr->deliveredFrames() > 20; }, patience));
    // Extractions, ticks and frames are all under way.
    onRuntime(runtime, [&] {
        mgr->addInputSources({record(streamKind, "Late")});
        mgr->refreshNdiSources();
        mgr->startLoadReadings();
        return true;
    });

    mgr->shutdown();
    const uint64_t delivered = mgr->deliveredFrames();
    QTest::qWait(200);
    QCOMPARE(mgr->deliveredFrames(), delivered);
    mgr->shutdown();

    // No tick or late report reaches a receiver any more.
    Journal journal(*mgr, runtime);
    QTest::qWait(1200);
    QVERIFY(journal.entries().empty());
    mgr.reset();
    runtime.stop();
}

void TestSimulatedInputSourceMgr::tasksQueuedForAGoneManagerDoNothing()
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<SimulatedInputSourceMgr>(&runtime);
    add(*mgr, runtime, record(captureKind, "Card"));
    std::atomic<int> fired{0};
    sigslot::scoped_connection connection = mgr->signalCaptureDevicesChanged.connect(
        [&](const std::vector<STInputSource>&) { ++fired; });
    {
        vexa::testing::RuntimeBlocker blocker(runtime);
        QVERIFY2(blocker.isHolding(), qPrintable(blocker.errorString()));
        // Queued behind the blocker, then the manager goes before it runs.
        mgr->refreshCaptureDevices();
        mgr.reset();
    }
    runtime.stop();
    QCOMPARE(fired.load(), 0);
}

QTEST_MAIN(TestSimulatedInputSourceMgr)

#include "tst_simulatedinputsourcemgr.moc"
