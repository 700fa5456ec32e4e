// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/iinputsourcemgr.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quandel {
class IZQRuntime;
} // namespace quandel

namespace zq::mediacore {
class IFrame;
} // namespace zq::mediacore

namespace demohost {

/// A manager of input sources that behaves like a host's, with simulated devices: sources are
/// resources with a media description, they are "extracted" (thumbnail, resolution, frame
/// rate) a moment after they were added and then go online, their running time ticks every
/// second, and every previewed online source delivers an animated picture at 25 frames per
/// second to a frame sink. Web pages keep their tabs: an edit (web operation code 14) changes
/// them, a double click (code 0) reloads the page, and once startLoadReadings() was called the
/// machine's CPU and memory use go out every second (code 15) with the thresholds (code 16)
/// that the web dialog's load watch compares them with.
///
/// Threads: the requests of IInputSourceMgr run on the runtime thread and fire their
/// notifications there before they return; what the devices report later (extraction, online,
/// running time, NDI senders) is posted to the runtime by a timer thread and fired there too. A
/// request made on another thread keeps the same order but fires from the runtime a moment
/// later. The queries getResources(), getResourceById(), generateStreamingName(),
/// isNameRepeated() and refreshCaptureDevices(), and every member below, may be called on any
/// thread: one std::mutex guards the sources. Frames come from a thread of the manager's own.
///
/// Ownership: held by std::shared_ptr (the panel takes a std::weak_ptr of it anyway); tasks the
/// manager posts to the runtime hold only a weak reference, so a task that runs after the
/// manager is gone does nothing. The runtime is not owned; call shutdown() before it stops.
class SimulatedInputSourceMgr : public vexa::inputsource::IInputSourceMgr,
                                public std::enable_shared_from_this<SimulatedInputSourceMgr>
{
public:
    /// Receives every frame of a previewed online source, on the frame thread. The frame is
    /// valid for the duration of the call only.
    using FrameSink = std::function<void(uint64_t id, const zq::mediacore::IFrame* frame)>;

    /// Told on the timer thread that a capture device arrived (true) or left, as a host's
    /// device watcher would tell it.
    using DeviceSink = std::function<void(bool isArrival)>;

    /// The CPU, GPU and memory thresholds sent until setLoadThresholds(), in percent.
    static constexpr int32_t defaultLoadThreshold = 85;

    /// How often the load readings go out.
    static constexpr std::chrono::milliseconds loadReadingInterval{1000};

    /// Width and height of the frames the sources deliver.
    static constexpr int frameWidth = 480;
    static constexpr int frameHeight = 270;

    /// A manager with no sources whose notifications fire on `runtime`'s thread (not owned).
    /// Starts the timer and frame threads.
    explicit SimulatedInputSourceMgr(quandel::IZQRuntime* runtime);

    /// Calls shutdown().
    ~SimulatedInputSourceMgr() override;

    void addInputSources(const std::vector<vexa::inputsource::STInputSource>& sources) override;
    void deleteInputSources(const std::vector<uint64_t>& ids) override;
    void previewInputSources(const std::vector<vexa::inputsource::STInputSource>& sources,
                             bool enable) override;
    std::vector<ResourcePtr> getResources() override;
    void setStreamingText(const std::string& text) override;
    std::string generateStreamingName() override;
    ResourcePtr getResourceById(uint64_t id) override;
    bool renameInputSource(const vexa::STResourceRenamedModel& model) override;
    void renameNdiReceiver(const vexa::STResourceRenamedModel& model) override;
    void refreshNdiSources() override;
    bool isNameRepeated(const std::string& name) override;
    void webOperation(const vexa::inputsource::STWebOperation& operation) override;
    void changeCaptResolution(const vexa::inputsource::STInputSource& source) override;
    void refreshCaptureDevices() override;

    /// Fired on the runtime thread when a web page is reloaded (a double click on its tile),
    /// with its id and the address it loads again. The page goes offline and comes back online
    /// as after its creation. The host's own notification; no panel listens to it.
    sigslot::signal<uint64_t, const std::string&> signalWebPageReloaded;

    /// Starts sending the machine's load: at once the thresholds (signalWebInfoChanged with
    /// code 16), then every loadReadingInterval the CPU and memory use read from the system
    /// and the GPU use as unknown (code 15; -1 for what the system does not tell). All on the
    /// runtime thread. Idempotent.
    void startLoadReadings();

    /// Takes new CPU, GPU and memory thresholds (percent) and sends them (code 16).
    void setLoadThresholds(const std::array<int32_t, 3>& thresholds);
    std::array<int32_t, 3> loadThresholds() const;

    /// Replaces the frame sink; an empty function stops delivery. Once this returns, the
    /// previous sink is no longer called, so its owner may go.
    void setFrameSink(FrameSink sink);

    /// Replaces the device sink, which is told of a simulated device arrival every `interval`;
    /// an empty function stops it. Once this returns, the previous sink is no longer called.
    void setDeviceSink(DeviceSink sink, std::chrono::milliseconds interval);

    /// Posts the creation of a few sources of every kind to the runtime: capture cards with
    /// several capture formats, network streams (one of them unreachable, so it stays
    /// offline), NDI senders and web pages. One source of each kind starts previewed.
    void seedDemoSources();

    /// A new record of kind `type` (7, 8, 9 or 13) with a free name and a made-up address, as
    /// an operator's "add" would give it.
    vexa::inputsource::STInputSource makeRecord(int32_t type);

    /// True while source `id` is in use, which for this host means previewed.
    bool isInUse(uint64_t id) const;

    /// The ids of the previewed sources, in ascending order.
    std::vector<uint64_t> previewedIds() const;

    /// True while source `id` is online.
    bool isOnline(uint64_t id) const;

    /// Frames handed to the sink so far for source `id` (0 once it is deleted), or for every
    /// source, deleted ones included, with no id.
    uint64_t deliveredFrames(uint64_t id) const;
    uint64_t deliveredFrames() const;

    /// How long after being added a source reports its media description (300 ms at first).
    void setExtractionDelay(std::chrono::milliseconds delay);

    /// Stops the frame and timer threads and makes every notification still queued a no-op.
    /// Must come before the runtime stops. Idempotent; not from the frame sink.
    void shutdown();

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace demohost
