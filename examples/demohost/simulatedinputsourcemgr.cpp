// SPDX-License-Identifier: MIT
#include "simulatedinputsourcemgr.h"

#include "delayedposter.h"
#include "syntheticpicture.h"
#include "systemload.h"

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/izqruntime.h>
#include <vexa/diagnostics/warning.h>
#include <zq/mediacore/rgbaframe.h>
#include <zq/mediacore/valuemeta.h>
#include <zqctuils/floatcomparison.h>
#include <zqctuils/indexgenerator.h>

#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace demohost {

using quandel::CaptResolutionsInfo;
using quandel::resource::EnResourceType;
using quandel::resource::toCode;
using vexa::STResourceRenamedModel;
using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::STWebTab;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int32_t ndiKind = toCode(EnResourceType::NdiSource);
constexpr int32_t captureKind = toCode(EnResourceType::LocalCaptureDevice);
constexpr int32_t webKind = toCode(EnResourceType::WebPage);
constexpr int32_t streamKind = toCode(EnResourceType::NetworkStream);

constexpr auto frameInterval = std::chrono::milliseconds(1000 / SyntheticPicture::framesPerSecond);
constexpr auto tickInterval = std::chrono::seconds(1);
// A scan hears from the senders on the network over about a second, nearest first, and reports
// what it has heard so far at each of these moments.
struct ScanStep
{
    std::chrono::milliseconds after;
    std::size_t heard;
};
constexpr ScanStep ndiScanSteps[] = {{std::chrono::milliseconds(250), 5},
                                     {std::chrono::milliseconds(600), 9},
                                     {std::chrono::milliseconds(1000), 12}};
constexpr int thumbnailWidth = 336;
constexpr int thumbnailHeight = 176;
constexpr int32_t screenCaptureWebMode = 1;

// A source whose address contains this never answers: its extraction fails and it stays
// offline, as an unplugged camera or a dead stream would.
constexpr char unreachableMark[] = "unreachable";

const std::vector<CaptResolutionsInfo>& captureFormats()
{
    static const std::vector<CaptResolutionsInfo> formats = {{1920, 1080, 59.94F, "NV12"},
                                                             {1920, 1080, 50.0F, "NV12"},
                                                             {1280, 720, 30.0F, "YUY2"},
                                                             {3840, 2160, 29.97F, "UYVY"}};
    return formats;
}

// The senders a scan "finds" on the network: name, receiver name, address.
struct NdiSender
{
    std::string senderName;
    std::string receiverName;
    std::string ipAddress;
};

std::vector<NdiSender> madeUpSenders()
{
    return {{"CAM-NORTH (Studio A)", "CAM-NORTH", "192.168.10.21"},
            {"REPLAY-1 (Replay)", "REPLAY-1", "192.168.10.34"},
            {"GFX-OUT (Graphics)", "GFX-OUT", "192.168.10.52"},
            {"PTZ-3 (Hall)", "PTZ-3", "192.168.10.77"},
            {"STAGE-LEFT (Studio B)", "", "192.168.10.80"},
            {"Commentary Booth Camera Two (Studio C)", "", "192.168.10.81"},
            {"SLOMO (Replay)", "SLOMO", "192.168.10.90"},
            {"DRONE-1 (Field)", "", "192.168.11.14"},
            {"PRESENTER-PC (Laptop)", "Presenter", "192.168.11.23"},
            {"SCOREBOARD (Graphics)", "Scores", "192.168.11.40"},
            {"JIB (Studio A)", "", "192.168.11.41"},
            {"CONFIDENCE (Monitor)", "", "192.168.12.5"}};
}

zq::mediacore::MetaValues describe(const STInputSource& record)
{
    zq::mediacore::MetaValues values;
    values.resourceType = static_cast<EnResourceType>(record.sourceType);
    values.name = record.name;
    values.address = record.sourceType == captureKind ? record.devicePath : record.address;
    if (record.sourceType == captureKind) {
        values.captResolutions = record.captResolutions;
        if (!record.captResolutions.empty()) {
            values.currentCaptResolution = record.captResolutions.front();
        }
    }
    if (record.sourceType == webKind) {
        values.webMode = record.webMode;
        values.webTabs.reserve(record.webTabs.size());
        for (const STWebTab& tab : record.webTabs) {
            values.webTabs.push_back({tab.name, tab.url, tab.tabIndex});
        }
        values.webCurrentTabIndex = record.currentTabIndex;
    }
    return values;
}

// What the "device" delivers once it was read.
struct Delivery
{
    int width = 1920;
    int height = 1080;
    double frameRate = SyntheticPicture::framesPerSecond;
};

Delivery deliveryOf(const zq::mediacore::MetaValues& values, const STInputSource& record)
{
    switch (record.sourceType) {
    case captureKind:
        return {values.currentCaptResolution.width, values.currentCaptResolution.height,
                values.currentCaptResolution.frameRate};
    case webKind:
        if (record.webMode == screenCaptureWebMode) {
            return {record.webWindowWidth, record.webWindowHeight, 30.0};
        }
        return {1920, 1080, 30.0};
    case ndiKind:
        return {1920, 1080, 50.0};
    default:
        return {};
    }
}

// Puts what the device delivers into its media description; returns it.
Delivery applyExtraction(zq::mediacore::MetaValues& values, const STInputSource& record)
{
    const Delivery delivery = deliveryOf(values, record);
    values.resolutionText = std::to_string(delivery.width) + "*" + std::to_string(delivery.height);
    values.frameRate = delivery.frameRate;
    return delivery;
}

// The notification of what source `id` of kind `type` delivers.
STInputSource resolutionReport(uint64_t id, int32_t type, const Delivery& delivery)
{
    STInputSource report;
    report.id = id;
    report.sourceType = type;
    report.resolutionWidth = delivery.width;
    report.resolutionHeight = delivery.height;
    report.frameRate = static_cast<int32_t>(delivery.frameRate);
    return report;
}

QStringList namesOf(const std::vector<std::string>& names)
{
    QStringList list;
    list.reserve(static_cast<int>(names.size()));
    for (const std::string& name : names) {
        list.append(QString::fromStdString(name));
    }
    return list;
}

std::string numbered(const std::vector<std::string>& names, const std::string& prefix)
{
    const int index =
        zqctuils::IndexGenerator::generateIndex(namesOf(names), QString::fromStdString(prefix));
    return prefix + std::to_string(index);
}

} // namespace

struct SimulatedInputSourceMgr::Impl
{
    struct Source
    {
        STInputSource record;
        std::shared_ptr<quandel::resource::ValueResource> resource;
        std::shared_ptr<zq::mediacore::ValueMeta> meta;
        bool online = false;
        Clock::time_point onlineSince;
        bool previewed = false;
        uint64_t deliveredFrames = 0;
    };

    // What the frame thread needs of one source, copied under the lock.
    struct FrameTarget
    {
        uint64_t id;
        QString name;
        double frameRate;
    };

    Impl(SimulatedInputSourceMgr* owner, quandel::IZQRuntime* hostRuntime)
        : q(owner)
        , runtime(hostRuntime)
        , poster(hostRuntime)
    {}

    Source* find(uint64_t id);
    std::vector<std::string> names() const;
    std::string freeName(int32_t type) const;
    std::vector<STResourceRenamedModel> senderList() const;

    void onRuntime(std::function<void(SimulatedInputSourceMgr&)> body);
    void later(std::chrono::milliseconds delay, std::function<void(SimulatedInputSourceMgr&)> body);
    void extract(const std::vector<uint64_t>& ids);
    void editWebPage(const STWebOperation& operation);
    void reloadWebPage(uint64_t id);
    void loadTick();
    void sendThresholds();
    void tick();
    void deviceTick(uint64_t generation);
    void runFrames();

    SimulatedInputSourceMgr* const q;
    quandel::IZQRuntime* const runtime;

    mutable std::mutex mutex;
    std::vector<Source> sources;
    uint64_t nextId = 1001;
    uint64_t nextAddress = 1;
    std::string streamingText = "Stream";
    std::vector<NdiSender> senders = madeUpSenders();
    std::chrono::milliseconds extractionDelay{300};

    std::array<int32_t, 3> loadThresholds{
        {defaultLoadThreshold, defaultLoadThreshold, defaultLoadThreshold}};
    // Read by the load tick only, on the runtime thread.
    SystemLoad systemLoad;

    std::atomic<bool> stopped{false};
    std::atomic<bool> ticking{false};
    std::atomic<bool> readingLoad{false};
    std::atomic<uint64_t> totalFrames{0};
    DelayedPoster poster;

    // Held while the sink runs, so that setFrameSink() returns only once no old call is left.
    std::mutex sinkMutex;
    FrameSink sink;

    // Held while the device sink runs, for the same reason. A new sink starts a new series of
    // arrivals; the generation ends the old one.
    std::mutex deviceMutex;
    DeviceSink deviceSink;
    std::chrono::milliseconds deviceInterval{0};
    uint64_t deviceGeneration = 0;

    std::mutex frameMutex;
    std::condition_variable frameWake;
    bool framesStopping = false;
    std::thread frameThread;
};

SimulatedInputSourceMgr::Impl::Source* SimulatedInputSourceMgr::Impl::find(uint64_t id)
{
    const auto it = std::find_if(sources.begin(), sources.end(),
                                 [id](const Source& source) { return source.record.id == id; });
    return it == sources.end() ? nullptr : &*it;
}

std::vector<std::string> SimulatedInputSourceMgr::Impl::names() const
{
    std::vector<std::string> list;
    list.reserve(sources.size());
    for (const Source& source : sources) {
        list.push_back(source.record.name);
    }
    return list;
}

std::string SimulatedInputSourceMgr::Impl::freeName(int32_t type) const
{
    switch (type) {
    case captureKind:
        return numbered(names(), "Capture ");
    case webKind:
        return numbered(names(), "Web Page ");
    case ndiKind:
        return numbered(names(), "NDI Receiver ");
    default:
        return numbered(names(), streamingText + " ");
    }
}

std::vector<STResourceRenamedModel> SimulatedInputSourceMgr::Impl::senderList() const
{
    std::vector<STResourceRenamedModel> list;
    for (const NdiSender& sender : senders) {
        const bool added = std::any_of(sources.begin(), sources.end(), [&](const Source& s) {
            return s.record.sourceType == ndiKind && s.record.address == sender.ipAddress;
        });
        list.push_back(
            {0, sender.receiverName, sender.ipAddress, sender.senderName, added ? 1U : 0U});
    }
    return list;
}

void SimulatedInputSourceMgr::Impl::onRuntime(std::function<void(SimulatedInputSourceMgr&)> body)
{
    if (runtime->isInRuntimeThread()) {
        body(*q);
        return;
    }
    runtime->post(
        [self = q->weak_from_this(), body = std::move(body)] {
            if (const auto mgr = self.lock(); mgr && !mgr->d->stopped) {
                body(*mgr);
            }
        },
        __FILE__, __LINE__, "SimulatedInputSourceMgr::onRuntime");
}

void SimulatedInputSourceMgr::Impl::later(std::chrono::milliseconds delay,
                                          std::function<void(SimulatedInputSourceMgr&)> body)
{
    poster.postAfter(delay, [self = q->weak_from_this(), body = std::move(body)] {
        if (const auto mgr = self.lock(); mgr && !mgr->d->stopped) {
            body(*mgr);
        }
    });
}

void SimulatedInputSourceMgr::Impl::extract(const std::vector<uint64_t>& ids)
{
    // Drawn before taking the lock: the GUI thread's queries must not wait for the painting.
    std::map<uint64_t, zq::mediacore::Thumbnail> stills;
    {
        std::vector<std::pair<uint64_t, std::string>> wanted;
        {
            std::lock_guard<std::mutex> lock(mutex);
            for (const uint64_t id : ids) {
                if (const Source* source = find(id)) {
                    wanted.emplace_back(id, source->record.name);
                }
            }
        }
        for (const auto& [id, name] : wanted) {
            stills[id] =
                SyntheticPicture::still(thumbnailWidth, thumbnailHeight,
                                        SyntheticPicture::hueOf(id), QString::fromStdString(name));
        }
    }

    std::vector<ResourcePtr> extracted;
    std::vector<ResourcePtr> failed;
    std::map<int32_t, std::map<uint64_t, bool>> wentOnline;
    std::vector<STInputSource> resolutions;
    std::vector<STInputSource> previewed;
    {
        std::lock_guard<std::mutex> lock(mutex);
        for (const uint64_t id : ids) {
            Source* const source = find(id);
            // Deleted before its device answered.
            if (source == nullptr) {
                continue;
            }
            if (source->record.address.find(unreachableMark) != std::string::npos) {
                failed.push_back(source->resource);
                continue;
            }
            zq::mediacore::MetaValues values = source->meta->values();
            values.thumbnail = stills[id];
            const Delivery delivery = applyExtraction(values, source->record);
            source->meta->setValues(values);
            resolutions.push_back(resolutionReport(id, source->record.sourceType, delivery));
            source->online = true;
            source->onlineSince = Clock::now();
            wentOnline[source->record.sourceType][id] = true;
            extracted.push_back(source->resource);
            // The preview asked for at creation; a page reloaded later keeps the operator's.
            if (std::exchange(source->record.preview, false)) {
                source->previewed = true;
                STInputSource report;
                report.id = id;
                report.sourceType = source->record.sourceType;
                report.name = source->record.name;
                report.preview = true;
                previewed.push_back(report);
            }
        }
    }
    for (const ResourcePtr& resource : extracted) {
        q->signalResourceExtracted(resource, {resource->getId(), true, {}});
    }
    for (const ResourcePtr& resource : failed) {
        q->signalResourceExtractFailed(resource,
                                       {resource->getId(), false, "the source does not answer"});
    }
    for (const auto& [type, states] : wentOnline) {
        q->signalOnlineStatusChanged(states, type);
    }
    // What an online source delivers is reported once it is online, as a real device does once
    // its first pictures arrive.
    for (const STInputSource& resolution : resolutions) {
        q->signalResolutionUpdated(resolution);
    }
    if (!previewed.empty()) {
        q->signalPreviewedChanged(previewed);
    }
}

void SimulatedInputSourceMgr::Impl::editWebPage(const STWebOperation& operation)
{
    STWebOperation report;
    report.code = STWebOperation::WebDescriptionChanged;
    report.id = operation.id;
    std::optional<STResourceRenamedModel> renamed;
    std::optional<STInputSource> resolution;
    {
        std::lock_guard<std::mutex> lock(mutex);
        Source* const source = find(operation.id);
        if (source == nullptr || source->record.sourceType != webKind) {
            VEXA_WARNING(
                QStringLiteral("web operation on %1, which is no web page").arg(operation.id));
            return;
        }
        const auto& wanted = operation.webDescription;
        STInputSource& record = source->record;
        if (!wanted.name.empty() && wanted.name != record.name) {
            // The dialog asked before sending, but another request may have taken the name
            // since: the page then keeps its own, as a rename would.
            const bool taken =
                std::any_of(sources.begin(), sources.end(), [&](const Source& other) {
                    return other.record.id != record.id && other.record.name == wanted.name;
                });
            if (!taken) {
                record.name = wanted.name;
                source->resource->setName(wanted.name);
            }
            renamed = STResourceRenamedModel{record.id, record.name, {}, {}, taken ? 1U : 0U};
        }
        record.address = wanted.address;
        if (record.address.empty() && !wanted.webTabs.empty()) {
            record.address = wanted.webTabs.front().url;
        }
        record.webName = wanted.webName;
        record.currentTabIndex = wanted.currentTabIndex;
        record.webMode = wanted.webMode;
        record.webTabs = wanted.webTabs;

        zq::mediacore::MetaValues values = describe(record);
        const zq::mediacore::MetaValues previous = source->meta->values();
        values.thumbnail = previous.thumbnail;
        if (source->online) {
            // The mode decides the size a page is rendered at.
            resolution = resolutionReport(record.id, webKind, applyExtraction(values, record));
        }
        source->meta->setValues(values);
        report.webDescription = {record.name,    record.address,
                                 record.webName, record.currentTabIndex,
                                 record.webMode, record.webTabs};
    }
    onRuntime([report, renamed, resolution](SimulatedInputSourceMgr& mgr) {
        if (renamed) {
            bool repeated = false;
            mgr.signalResourceRenamed(*renamed, repeated);
        }
        mgr.signalWebInfoChanged(report);
        if (resolution) {
            mgr.signalResolutionUpdated(*resolution);
        }
    });
}

void SimulatedInputSourceMgr::Impl::reloadWebPage(uint64_t id)
{
    std::string address;
    std::chrono::milliseconds delay{};
    {
        std::lock_guard<std::mutex> lock(mutex);
        Source* const source = find(id);
        if (source == nullptr || source->record.sourceType != webKind) {
            VEXA_WARNING(QStringLiteral("reload of %1, which is no web page").arg(id));
            return;
        }
        // Offline until the page has loaded again, as after its creation.
        source->online = false;
        address = source->record.address;
        delay = extractionDelay;
    }
    qInfo("reloading web page %llu: %s", static_cast<unsigned long long>(id), address.c_str());
    onRuntime([id, address](SimulatedInputSourceMgr& mgr) {
        mgr.signalWebPageReloaded(id, address);
        mgr.signalOnlineStatusChanged({{id, false}}, webKind);
    });
    later(delay, [id](SimulatedInputSourceMgr& mgr) { mgr.d->extract({id}); });
}

void SimulatedInputSourceMgr::Impl::sendThresholds()
{
    STWebOperation report;
    report.code = STWebOperation::LoadThresholds;
    {
        std::lock_guard<std::mutex> lock(mutex);
        report.loadThresholds = loadThresholds;
    }
    onRuntime([report](SimulatedInputSourceMgr& mgr) { mgr.signalWebInfoChanged(report); });
}

void SimulatedInputSourceMgr::Impl::loadTick()
{
    STWebOperation report;
    report.code = STWebOperation::LoadReadings;
    // The GPU's use is not something the kernel tells: it stays unknown.
    report.loadReadings = {
        {systemLoad.cpuPercent(), SystemLoad::unknown, systemLoad.memoryPercent()}};
    q->signalWebInfoChanged(report);
    later(loadReadingInterval, [](SimulatedInputSourceMgr& mgr) { mgr.d->loadTick(); });
}

void SimulatedInputSourceMgr::Impl::tick()
{
    std::map<uint64_t, int> seconds;
    {
        std::lock_guard<std::mutex> lock(mutex);
        const Clock::time_point now = Clock::now();
        for (const Source& source : sources) {
            if (source.online) {
                seconds[source.record.id] = static_cast<int>(
                    std::chrono::duration_cast<std::chrono::seconds>(now - source.onlineSince)
                        .count());
            }
        }
    }
    if (!seconds.empty()) {
        q->signalOnlineTimeUpdated(seconds);
    }
    later(tickInterval, [](SimulatedInputSourceMgr& mgr) { mgr.d->tick(); });
}

void SimulatedInputSourceMgr::Impl::deviceTick(uint64_t generation)
{
    std::lock_guard<std::mutex> lock(deviceMutex);
    if (generation != deviceGeneration || !deviceSink) {
        return;
    }
    deviceSink(true);
    later(deviceInterval,
          [generation](SimulatedInputSourceMgr& mgr) { mgr.d->deviceTick(generation); });
}

void SimulatedInputSourceMgr::Impl::runFrames()
{
    // One frame per source, redrawn each time: the sink copies it, so it can be reused.
    std::map<uint64_t, std::unique_ptr<zq::mediacore::RgbaFrame>> frames;
    uint64_t sequence = 0;
    Clock::time_point next = Clock::now();
    for (;;) {
        std::vector<FrameTarget> targets;
        {
            std::lock_guard<std::mutex> lock(mutex);
            for (const Source& source : sources) {
                if (source.online && source.previewed) {
                    targets.push_back({source.record.id, QString::fromStdString(source.record.name),
                                       source.meta->getFrameRate()});
                }
            }
        }
        std::map<uint64_t, std::unique_ptr<zq::mediacore::RgbaFrame>> kept;
        for (const FrameTarget& target : targets) {
            auto frame = std::move(frames[target.id]);
            if (!frame) {
                frame = std::make_unique<zq::mediacore::RgbaFrame>(frameWidth, frameHeight);
            }
            frame->setFrameRate(target.frameRate);
            SyntheticPicture::draw(*frame, sequence, SyntheticPicture::hueOf(target.id),
                                   target.name);
            bool delivered = false;
            {
                std::lock_guard<std::mutex> lock(sinkMutex);
                if (sink) {
                    sink(target.id, frame.get());
                    delivered = true;
                }
            }
            if (delivered) {
                ++totalFrames;
                std::lock_guard<std::mutex> lock(mutex);
                if (Source* source = find(target.id)) {
                    ++source->deliveredFrames;
                }
            }
            kept[target.id] = std::move(frame);
        }
        frames.swap(kept);
        ++sequence;

        next += frameInterval;
        std::unique_lock<std::mutex> lock(frameMutex);
        // A thread that fell behind (a debugger, a loaded machine) starts afresh rather than
        // delivering a burst to catch up.
        if (next < Clock::now()) {
            next = Clock::now() + frameInterval;
        }
        if (frameWake.wait_until(lock, next, [this] { return framesStopping; })) {
            return;
        }
    }
}

SimulatedInputSourceMgr::SimulatedInputSourceMgr(quandel::IZQRuntime* runtime)
    : d(std::make_unique<Impl>(this, runtime))
{
    d->frameThread = std::thread([this] { d->runFrames(); });
}

SimulatedInputSourceMgr::~SimulatedInputSourceMgr()
{
    shutdown();
}

void SimulatedInputSourceMgr::addInputSources(const std::vector<STInputSource>& sources)
{
    std::vector<ResourcePtr> resources;
    std::vector<STInputSource> added;
    std::vector<uint64_t> ids;
    std::chrono::milliseconds extractionDelay{};
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        extractionDelay = d->extractionDelay;
        for (STInputSource record : sources) {
            record.id = d->nextId++;
            if (record.name.empty()) {
                record.name = d->freeName(record.sourceType);
            }
            Impl::Source source;
            source.record = record;
            source.resource = std::make_shared<quandel::resource::ValueResource>(
                record.id, static_cast<EnResourceType>(record.sourceType), record.name);
            source.meta = std::make_shared<zq::mediacore::ValueMeta>(describe(record));
            source.resource->setMeta(source.meta);
            resources.push_back(source.resource);
            added.push_back(record);
            ids.push_back(record.id);
            d->sources.push_back(std::move(source));
        }
    }
    if (added.empty()) {
        return;
    }
    d->onRuntime([resources, added](SimulatedInputSourceMgr& mgr) {
        mgr.signalResourcesAdded(resources, added);
    });
    d->later(extractionDelay, [ids](SimulatedInputSourceMgr& mgr) { mgr.d->extract(ids); });
    if (!d->ticking.exchange(true)) {
        d->later(tickInterval, [](SimulatedInputSourceMgr& mgr) { mgr.d->tick(); });
    }
}

void SimulatedInputSourceMgr::deleteInputSources(const std::vector<uint64_t>& ids)
{
    std::vector<uint64_t> removed;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        for (const uint64_t id : ids) {
            const auto it = std::find_if(d->sources.begin(), d->sources.end(),
                                         [id](const Impl::Source& s) { return s.record.id == id; });
            if (it != d->sources.end()) {
                d->sources.erase(it);
                removed.push_back(id);
            }
        }
    }
    if (removed.empty()) {
        return;
    }
    d->onRuntime([removed](SimulatedInputSourceMgr& mgr) { mgr.signalResourcesDeleted(removed); });
}

void SimulatedInputSourceMgr::previewInputSources(const std::vector<STInputSource>& sources,
                                                  bool /*enable*/)
{
    // Each record's own flag is the state asked for; `enable` only says which way the request
    // as a whole went, and a mixed request carries both.
    std::vector<STInputSource> changed;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        for (const STInputSource& wanted : sources) {
            Impl::Source* const source = d->find(wanted.id);
            if (source == nullptr) {
                continue;
            }
            source->previewed = wanted.preview;
            STInputSource report;
            report.id = wanted.id;
            report.sourceType = source->record.sourceType;
            report.name = source->record.name;
            report.preview = wanted.preview;
            changed.push_back(report);
        }
    }
    if (changed.empty()) {
        return;
    }
    d->onRuntime([changed](SimulatedInputSourceMgr& mgr) { mgr.signalPreviewedChanged(changed); });
}

std::vector<SimulatedInputSourceMgr::ResourcePtr> SimulatedInputSourceMgr::getResources()
{
    std::lock_guard<std::mutex> lock(d->mutex);
    std::vector<ResourcePtr> resources;
    resources.reserve(d->sources.size());
    for (const Impl::Source& source : d->sources) {
        resources.push_back(source.resource);
    }
    return resources;
}

void SimulatedInputSourceMgr::setStreamingText(const std::string& text)
{
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->streamingText = text;
    }
    d->onRuntime([text](SimulatedInputSourceMgr& mgr) { mgr.signalStreamingTextChanged(text); });
}

std::string SimulatedInputSourceMgr::generateStreamingName()
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->freeName(streamKind);
}

SimulatedInputSourceMgr::ResourcePtr SimulatedInputSourceMgr::getResourceById(uint64_t id)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    const Impl::Source* const source = d->find(id);
    return source == nullptr ? nullptr : source->resource;
}

bool SimulatedInputSourceMgr::renameInputSource(const STResourceRenamedModel& model)
{
    STResourceRenamedModel answer = model;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        Impl::Source* const source = d->find(model.id);
        if (source == nullptr) {
            VEXA_WARNING(QStringLiteral("rename of unknown source %1").arg(model.id));
            return false;
        }
        const bool taken = std::any_of(d->sources.begin(), d->sources.end(), [&](const auto& s) {
            return s.record.id != model.id && s.record.name == model.name;
        });
        if (taken) {
            // The notification carries the name the source keeps, so the panel can put it back.
            answer.name = source->record.name;
            answer.flag = 1;
        } else {
            source->record.name = model.name;
            source->resource->setName(model.name);
            zq::mediacore::MetaValues values = source->meta->values();
            values.name = model.name;
            source->meta->setValues(values);
            answer.flag = 0;
        }
    }
    d->onRuntime([answer](SimulatedInputSourceMgr& mgr) {
        bool repeated = false;
        mgr.signalResourceRenamed(answer, repeated);
    });
    return answer.flag == 0;
}

void SimulatedInputSourceMgr::renameNdiReceiver(const STResourceRenamedModel& model)
{
    // A sender is known by its address; the name its receiver gets shows in the next scan.
    std::lock_guard<std::mutex> lock(d->mutex);
    const auto sender = std::find_if(d->senders.begin(), d->senders.end(),
                                     [&](const auto& s) { return s.ipAddress == model.ipAddress; });
    if (sender == d->senders.end()) {
        VEXA_WARNING(
            QStringLiteral("no NDI sender at %1").arg(QString::fromStdString(model.ipAddress)));
        return;
    }
    sender->receiverName = model.name;
}

void SimulatedInputSourceMgr::refreshNdiSources()
{
    for (const ScanStep& step : ndiScanSteps) {
        d->later(step.after, [heard = step.heard](SimulatedInputSourceMgr& mgr) {
            std::vector<STResourceRenamedModel> list;
            {
                std::lock_guard<std::mutex> lock(mgr.d->mutex);
                list = mgr.d->senderList();
            }
            list.resize(std::min(heard, list.size()));
            mgr.signalNdiSourcesUpdated(list);
        });
    }
}

bool SimulatedInputSourceMgr::isNameRepeated(const std::string& name)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return std::any_of(d->sources.begin(), d->sources.end(),
                       [&](const Impl::Source& s) { return s.record.name == name; });
}

void SimulatedInputSourceMgr::webOperation(const STWebOperation& operation)
{
    if (operation.kind != 1) {
        VEXA_WARNING(QStringLiteral("web operation of kind %1").arg(operation.kind));
        return;
    }
    switch (operation.code) {
    case 0:
        d->reloadWebPage(operation.id);
        break;
    case STWebOperation::WebDescriptionChanged:
        d->editWebPage(operation);
        break;
    default:
        VEXA_WARNING(QStringLiteral("web operation code %1 is not one this host answers")
                         .arg(operation.code));
        break;
    }
}

void SimulatedInputSourceMgr::changeCaptResolution(const STInputSource& source)
{
    if (source.captResolutions.empty()) {
        VEXA_WARNING(
            QStringLiteral("capture format request for %1 without a format").arg(source.id));
        return;
    }
    const CaptResolutionsInfo wanted = source.captResolutions.front();
    STInputSource report;
    bool offered = false;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        Impl::Source* const device = d->find(source.id);
        if (device == nullptr || device->record.sourceType != captureKind) {
            VEXA_WARNING(QStringLiteral("capture format request for %1, which is no capture card")
                             .arg(source.id));
            return;
        }
        zq::mediacore::MetaValues values = device->meta->values();
        const auto match = std::find_if(
            values.captResolutions.begin(), values.captResolutions.end(), [&](const auto& f) {
                return f.width == wanted.width && f.height == wanted.height &&
                       f.text == wanted.text &&
                       zqctuils::FloatComparison::equal(f.frameRate, wanted.frameRate);
            });
        offered = match != values.captResolutions.end();
        if (offered) {
            values.currentCaptResolution = *match;
            if (device->online) {
                applyExtraction(values, device->record);
            }
            device->meta->setValues(values);

            report.id = source.id;
            report.sourceType = captureKind;
            report.name = device->record.name;
            report.devicePath = device->record.devicePath;
            report.resolutionWidth = match->width;
            report.resolutionHeight = match->height;
            report.frameRate = static_cast<int32_t>(match->frameRate);
            // The current format first, then the others the device offers.
            report.captResolutions.push_back(*match);
            for (const CaptResolutionsInfo& format : values.captResolutions) {
                if (format != *match) {
                    report.captResolutions.push_back(format);
                }
            }
        }
    }
    if (!offered) {
        d->onRuntime([wanted](SimulatedInputSourceMgr& mgr) { mgr.signalResolutionError(wanted); });
        return;
    }
    d->onRuntime(
        [report](SimulatedInputSourceMgr& mgr) { mgr.signalCaptResolutionUpdated(report); });
}

void SimulatedInputSourceMgr::refreshCaptureDevices()
{
    std::vector<STInputSource> devices;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        for (const Impl::Source& source : d->sources) {
            if (source.record.sourceType == captureKind) {
                devices.push_back(source.record);
            }
        }
    }
    d->onRuntime(
        [devices](SimulatedInputSourceMgr& mgr) { mgr.signalCaptureDevicesChanged(devices); });
}

void SimulatedInputSourceMgr::startLoadReadings()
{
    if (d->readingLoad.exchange(true)) {
        return;
    }
    d->sendThresholds();
    d->later(loadReadingInterval, [](SimulatedInputSourceMgr& mgr) { mgr.d->loadTick(); });
}

void SimulatedInputSourceMgr::setLoadThresholds(const std::array<int32_t, 3>& thresholds)
{
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->loadThresholds = thresholds;
    }
    d->sendThresholds();
}

std::array<int32_t, 3> SimulatedInputSourceMgr::loadThresholds() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->loadThresholds;
}

void SimulatedInputSourceMgr::setFrameSink(FrameSink sink)
{
    std::lock_guard<std::mutex> lock(d->sinkMutex);
    d->sink = std::move(sink);
}

void SimulatedInputSourceMgr::setDeviceSink(DeviceSink sink, std::chrono::milliseconds interval)
{
    uint64_t generation = 0;
    {
        std::lock_guard<std::mutex> lock(d->deviceMutex);
        d->deviceSink = std::move(sink);
        d->deviceInterval = interval;
        generation = ++d->deviceGeneration;
        if (!d->deviceSink) {
            return;
        }
    }
    d->later(interval,
             [generation](SimulatedInputSourceMgr& mgr) { mgr.d->deviceTick(generation); });
}

void SimulatedInputSourceMgr::seedDemoSources()
{
    std::vector<STInputSource> records;
    const auto add = [&records](int32_t type, std::string name, std::string address,
                                bool preview) -> STInputSource& {
        STInputSource record;
        record.sourceType = type;
        record.name = std::move(name);
        record.address = std::move(address);
        record.preview = preview;
        records.push_back(record);
        return records.back();
    };

    add(captureKind, "SDI In 1", {}, true).devicePath = "pci-0000:03:00.0-sdi-1";
    add(captureKind, "HDMI In 2", {}, false).devicePath = "pci-0000:03:00.0-hdmi-2";
    for (STInputSource& record : records) {
        record.captResolutions = captureFormats();
    }
    records[1].captResolutions = {captureFormats()[2], captureFormats()[0]};

    add(streamKind, "Studio Feed", "rtmp://ingest.example.net/live/studio", true);
    add(streamKind, "Stage Cam", "rtsp://10.0.0.12:554/stream1", false).transportProtocol = "tcp";
    add(streamKind, "Backup Feed", "rtsp://unreachable.example.net/backup", false);

    add(ndiKind, "CAM-NORTH", "192.168.10.21", true);
    add(ndiKind, "REPLAY-1", "192.168.10.34", false);

    STInputSource& scores = add(webKind, "Scoreboard", "https://scores.example.org/live", true);
    scores.webName = scores.name;
    scores.webTabs = {{"Live", "https://scores.example.org/live", 1},
                      {"Standings", "https://scores.example.org/standings", 2}};
    STInputSource& thirds =
        add(webKind, "Lower Thirds", "https://gfx.example.org/lower-thirds", false);
    thirds.webName = thirds.name;
    thirds.webMode = screenCaptureWebMode;
    thirds.resolutionWidth = thirds.webWindowWidth;
    thirds.resolutionHeight = thirds.webWindowHeight;
    thirds.webTabs = {{"Lower Thirds", thirds.address, 1}};

    d->onRuntime([records](SimulatedInputSourceMgr& mgr) { mgr.addInputSources(records); });
}

STInputSource SimulatedInputSourceMgr::makeRecord(int32_t type)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    STInputSource record;
    record.sourceType = type;
    const uint64_t number = d->nextAddress++;
    switch (type) {
    case captureKind:
        record.name = d->freeName(type);
        record.devicePath = "usb-0000:00:14.0-" + std::to_string(number);
        record.captResolutions = captureFormats();
        break;
    case ndiKind: {
        const std::vector<STResourceRenamedModel> list = d->senderList();
        const auto free = std::find_if(list.begin(), list.end(),
                                       [](const STResourceRenamedModel& s) { return s.flag == 0; });
        if (free != list.end()) {
            record.name = free->name.empty() ? free->senderName : free->name;
            record.address = free->ipAddress;
        } else {
            record.name = d->freeName(type);
            record.address = "192.168.20." + std::to_string(number % 250 + 2);
        }
        break;
    }
    case webKind:
        record.name = d->freeName(type);
        record.address = "https://example.org/page/" + std::to_string(number);
        record.webName = record.name;
        record.webTabs = {{record.name, record.address, 1}};
        break;
    default:
        record.name = d->freeName(type);
        record.address = "rtmp://ingest.example.net/live/feed" + std::to_string(number);
        break;
    }
    return record;
}

bool SimulatedInputSourceMgr::isInUse(uint64_t id) const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    const Impl::Source* const source = d->find(id);
    return source != nullptr && source->previewed;
}

std::vector<uint64_t> SimulatedInputSourceMgr::previewedIds() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    std::vector<uint64_t> ids;
    for (const Impl::Source& source : d->sources) {
        if (source.previewed) {
            ids.push_back(source.record.id);
        }
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

bool SimulatedInputSourceMgr::isOnline(uint64_t id) const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    const Impl::Source* const source = d->find(id);
    return source != nullptr && source->online;
}

uint64_t SimulatedInputSourceMgr::deliveredFrames(uint64_t id) const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    const Impl::Source* const source = d->find(id);
    return source == nullptr ? 0 : source->deliveredFrames;
}

uint64_t SimulatedInputSourceMgr::deliveredFrames() const
{
    return d->totalFrames;
}

void SimulatedInputSourceMgr::setExtractionDelay(std::chrono::milliseconds delay)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->extractionDelay = delay;
}

void SimulatedInputSourceMgr::shutdown()
{
    d->stopped = true;
    d->poster.stop();
    {
        std::lock_guard<std::mutex> lock(d->frameMutex);
        d->framesStopping = true;
    }
    d->frameWake.notify_one();
    if (d->frameThread.joinable()) {
        d->frameThread.join();
    }
}

} // namespace demohost
