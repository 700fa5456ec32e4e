// SPDX-License-Identifier: MIT
// A category box with hundreds to thousands of tiles. Adding tiles, the once-a-second running
// time update and the frame hand-over must cost the same per tile whatever the number of tiles,
// so the time per tile at 1,000 and 4,000 tiles is compared with that at 100. The heap each tile
// takes is measured while tiles are added and compared the same way.
//
// The manager's notifications are fired on a real runtime thread, as a host fires them; what is
// timed is what the GUI thread does with them.

#include "support/eventloop.h"
#include "support/offscreenplatform.h"
#include "support/runwithratios.h"

#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/framefactory.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/valuemeta.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QStringList>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

using quandel::resource::EnResourceType;
using vexa::bench::RatioCheck;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;
using vexa::testing::FakeInputSourceMgr;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kStreamType = quandel::resource::toCode(EnResourceType::NetworkStream);
// Six tiles to a row, as in a wide panel.
constexpr int kWindowWidth = 6 * 178 + 16;
constexpr int kWindowHeight = 800;
constexpr int kTileSpacing = 8;
// The frame hand-over aims at this many tiles spread over the whole box, so that the frames'
// pixels stay in the cache at every box size and only finding the tile can grow with it.
constexpr int kFrameTargets = 64;
constexpr std::chrono::seconds kSettleTimeout(60);
// The running time is shown on the tile's next tick, once a second.
constexpr std::chrono::milliseconds kTickTimeout(3000);
constexpr double kMaxRatio = 1.3;

std::vector<IInputSourceMgr::ResourcePtr> makeResources(int count)
{
    std::vector<IInputSourceMgr::ResourcePtr> resources;
    resources.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        const auto id = static_cast<uint64_t>(index) + 1;
        const std::string name = "Stream " + std::to_string(id);
        auto resource = std::make_shared<quandel::resource::ValueResource>(
            id, EnResourceType::NetworkStream, name);
        zq::mediacore::MetaValues values;
        values.resourceType = EnResourceType::NetworkStream;
        values.name = name;
        values.address = "rtsp://192.0.2.1/" + std::to_string(id);
        values.resolutionText = "1920*1080";
        values.frameRate = 25.0;
        resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(std::move(values)));
        resources.push_back(std::move(resource));
    }
    return resources;
}

// Bytes the heap has handed out and not taken back, on every thread's arena.
double heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

// A shown window holding one network stream box bound to a manager on a real runtime.
struct BoxFixture
{
    BoxFixture()
        : mgr(std::make_shared<FakeInputSourceMgr>(&runtime))
    {
        window.resize(kWindowWidth, kWindowHeight);
        box = new InputSourceBox(&window);
        box->setResourceType(EnResourceType::NetworkStream);
        box->setZQRuntime(&runtime);
        box->setInputSourceMgr(mgr);
        // Inside the window rather than a window itself, as in the panel.
        box->setGeometry(0, 0, kWindowWidth, kWindowHeight);
        window.show();
        QCoreApplication::processEvents();
    }

    ~BoxFixture() { box->unsetInputSourceMgr(); }

    BoxFixture(const BoxFixture&) = delete;
    BoxFixture& operator=(const BoxFixture&) = delete;

    // Processes events until `done` holds; false when it did not within the time-out.
    static bool settle(const std::function<bool()>& done)
    {
        return vexa::bench::processEventsUntil(done, kSettleTimeout);
    }

    // The layout has placed the tiles in rows: the last one sits where the rows of the first
    // row's width put it, which it does not before the layout ran.
    bool isLaidOut(int count)
    {
        if (box->itemCount() != count) {
            return false;
        }
        const InputSourceItem* const first = box->findItem(1);
        const InputSourceItem* const last = box->findItem(static_cast<uint64_t>(count));
        if (first == nullptr || last == nullptr) {
            return false;
        }
        const int columnWidth = first->width() + kTileSpacing;
        const int rowHeight = first->height() + kTileSpacing;
        const int areaWidth = first->parentWidget()->width();
        const int perRow = std::max(1, (areaWidth + kTileSpacing) / columnWidth);
        const int index = count - 1;
        return last->pos() ==
               first->pos() + QPoint(index % perRow * columnWidth, index / perRow * rowHeight);
    }

    void fireAdded(const std::vector<IInputSourceMgr::ResourcePtr>& resources)
    {
        mgr->fireOnRuntime([&resources](FakeInputSourceMgr& manager) {
            manager.signalResourcesAdded(resources, {});
        });
    }

    bool addTiles(const std::vector<IInputSourceMgr::ResourcePtr>& resources)
    {
        fireAdded(resources);
        const int count = static_cast<int>(resources.size());
        return settle([this, count] { return isLaidOut(count); });
    }

    bool clearTiles()
    {
        mgr->fireOnRuntime([](FakeInputSourceMgr& manager) { manager.signalResourcesCleared(); });
        return settle([this] { return box->itemCount() == 0; });
    }

    // The running-time clock only runs on online tiles.
    bool setOnline(const std::vector<uint64_t>& ids)
    {
        std::map<uint64_t, bool> states;
        for (const uint64_t id : ids) {
            states[id] = true;
        }
        mgr->fireOnRuntime([&states](FakeInputSourceMgr& manager) {
            manager.signalOnlineStatusChanged(states, kStreamType);
        });
        return settle([this, &ids] {
            return std::all_of(ids.begin(), ids.end(),
                               [this](uint64_t id) { return box->findItem(id)->isOnline(); });
        });
    }

    quandel::ZQRuntime runtime;
    std::shared_ptr<FakeInputSourceMgr> mgr;
    QWidget window;
    InputSourceBox* box = nullptr;
};

// Boxes already holding N tiles, shared by the benchmarks that do not add tiles: Google Benchmark
// calls a benchmark several times while it settles on an iteration count, and making and
// destroying thousands of tiles each time would cost far more than what is measured. Emptied
// in main(), before the application object goes.
std::map<int, std::unique_ptr<BoxFixture>>& populatedBoxes()
{
    static std::map<int, std::unique_ptr<BoxFixture>> boxes;
    return boxes;
}

// The box with `tiles` tiles, ids 1 to `tiles`; null when they could not be made.
BoxFixture* populatedBox(int tiles)
{
    std::unique_ptr<BoxFixture>& box = populatedBoxes()[tiles];
    if (box == nullptr) {
        box = std::make_unique<BoxFixture>();
        if (!box->addTiles(makeResources(tiles))) {
            box.reset();
            return nullptr;
        }
    }
    vexa::bench::drainEvents();
    return box.get();
}

void reportItems(benchmark::State& state, int items)
{
    state.counters["items"] = items;
    state.counters["per_item"] = benchmark::Counter(
        items, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void tileCounts(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(100)->Arg(1000)->Arg(4000)->Unit(benchmark::kMicrosecond);
}

// Heap per tile of every iteration of BM_AddTiles, by tile count, for the ratio lines printed
// after the table: Google Benchmark compares times only.
std::map<int, std::vector<double>>& heapPerTile()
{
    static std::map<int, std::vector<double>> samples;
    return samples;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// One notification carrying N resources, fired on the runtime thread, until the GUI thread has
// made every tile and the layout has placed them. Each iteration takes a fresh box, made and
// destroyed untimed: destroying the box is how the tiles go fastest. The heap still in use once
// the tiles stand, less the heap before, is what the tiles take.
void BM_AddTiles(benchmark::State& state)
{
    const int tiles = static_cast<int>(state.range(0));
    const auto resources = makeResources(tiles);
    bool placed = true;
    double heapTotal = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto fixture = std::make_unique<BoxFixture>();
        vexa::bench::drainEvents();
        state.ResumeTiming();
        const double heapBefore = heapInUse();
        const Clock::time_point start = Clock::now();
        placed = fixture->addTiles(resources) && placed;
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        const double perTile = (heapInUse() - heapBefore) / tiles;
        heapPerTile()[tiles].push_back(perTile);
        heapTotal += perTile;
        state.PauseTiming();
        fixture.reset();
        state.ResumeTiming();
    }
    if (!placed) {
        state.SkipWithError("the tiles were not all made and placed");
        return;
    }
    reportItems(state, tiles);
    state.counters["heap_per_tile"] = heapTotal / static_cast<double>(state.iterations());
}
BENCHMARK(BM_AddTiles)->Apply(tileCounts)->UseManualTime();

// Sends `sent` once more and checks that the first and last tiles show it after their next tick.
// Run once per box size: the tick comes a second after the tile went online, too long to wait
// after every run.
bool showsRunningTimes(BoxFixture& fixture, const std::map<uint64_t, int>& sent)
{
    static std::set<std::size_t> checkedSizes;
    if (!checkedSizes.insert(sent.size()).second) {
        return true;
    }
    const std::vector<uint64_t> checked = {sent.begin()->first, sent.rbegin()->first};
    if (!fixture.setOnline(checked)) {
        return false;
    }
    fixture.mgr->fireOnRuntime(
        [&sent](FakeInputSourceMgr& manager) { manager.signalOnlineTimeUpdated(sent); });
    for (const uint64_t id : checked) {
        const QLabel* const label =
            fixture.box->findItem(id)->findChild<QLabel*>(QStringLiteral("duration"));
        const int seconds = sent.at(id);
        const Clock::time_point deadline = Clock::now() + kTickTimeout;
        while (true) {
            const QStringList parts = label->text().split(QLatin1Char(':'));
            const int shown = parts.size() == 3 ? parts[0].toInt() * 3600 + parts[1].toInt() * 60 +
                                                      parts[2].toInt()
                                                : -1;
            if (shown > seconds && shown <= seconds + 3) {
                break;
            }
            if (Clock::now() > deadline) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
    }
    return true;
}

// One online-time notification for all N tiles. It is fired on the runtime thread, which queues
// the update for the GUI thread, untimed; what is timed is the GUI thread handling the queued
// update: from picking it up to every tile holding its new time. The tiles stay offline while
// timed, so that no clock ticks and nothing repaints in between; holding the time costs a tile
// the same either way.
void BM_OnlineTimeUpdate(benchmark::State& state)
{
    const int tiles = static_cast<int>(state.range(0));
    BoxFixture* const box = populatedBox(tiles);
    if (box == nullptr) {
        state.SkipWithError("the tiles were not made");
        return;
    }
    BoxFixture& fixture = *box;
    // Two sets of times taken in turn, so that every update changes every tile.
    std::map<uint64_t, int> times[2];
    for (int index = 1; index <= tiles; ++index) {
        times[0][static_cast<uint64_t>(index)] = 3600 + index;
        times[1][static_cast<uint64_t>(index)] = 7200 + index;
    }
    std::size_t turn = 0;
    for (auto _ : state) {
        const std::map<uint64_t, int>& sent = times[++turn % 2];
        fixture.mgr->fireOnRuntime(
            [&sent](FakeInputSourceMgr& manager) { manager.signalOnlineTimeUpdated(sent); });
        const Clock::time_point start = Clock::now();
        QCoreApplication::sendPostedEvents();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    if (!showsRunningTimes(fixture, times[turn % 2])) {
        state.SkipWithError("the tiles do not show the running time sent");
        return;
    }
    reportItems(state, tiles);
}
BENCHMARK(BM_OnlineTimeUpdate)->Apply(tileCounts)->UseManualTime();

// updateFrame() on the benchmark thread, with no other thread about: finding the tile in the
// box and handing it a small frame. One frame per iteration whatever the number of tiles, so
// the times compare directly, not per tile. Every target tile has had a frame before, so the
// surfaces' buffers exist and their repaint requests are already in flight.
void BM_FrameHandOver(benchmark::State& state)
{
    const int tiles = static_cast<int>(state.range(0));
    BoxFixture* const box = populatedBox(tiles);
    if (box == nullptr) {
        state.SkipWithError("the tiles were not made");
        return;
    }
    BoxFixture& fixture = *box;
    std::vector<uint64_t> targets;
    for (int index = 0; index < kFrameTargets; ++index) {
        targets.push_back(
            static_cast<uint64_t>(index) * static_cast<uint64_t>(tiles) / kFrameTargets + 1);
    }
    const auto frame = vexa::testing::FrameFactory::pattern(32, 18, 1, 0, 25.0);
    for (const uint64_t id : targets) {
        fixture.box->updateFrame(id, frame.get());
    }
    std::size_t next = 0;
    for (auto _ : state) {
        fixture.box->updateFrame(targets[next++ % targets.size()], frame.get());
    }
    state.counters["tiles"] = tiles;
}
BENCHMARK(BM_FrameHandOver)->Apply(tileCounts)->Unit(benchmark::kNanosecond);

// The heap ratios, in the form of the time ratios above them.
void printHeapRatios()
{
    const std::string baselineName = "BM_AddTiles/100/manual_time";
    for (const int tiles : {1000, 4000}) {
        const std::string name = "BM_AddTiles/" + std::to_string(tiles) + "/manual_time";
        const auto measured = heapPerTile().find(tiles);
        const auto baseline = heapPerTile().find(100);
        if (measured == heapPerTile().end() || baseline == heapPerTile().end()) {
            std::printf("ratio  heap per-item %s / heap per-item %s: not measured\n", name.c_str(),
                        baselineName.c_str());
            continue;
        }
        const double measuredBytes = median(measured->second);
        const double baselineBytes = median(baseline->second);
        const double ratio = measuredBytes / baselineBytes;
        std::printf("ratio  heap per-item %s / heap per-item %s = %.2f  (%.0f B / %.0f B, heap in "
                    "use; target <= %.2f: %s)\n",
                    name.c_str(), baselineName.c_str(), ratio, measuredBytes, baselineBytes,
                    kMaxRatio, ratio <= kMaxRatio ? "met" : "MISSED");
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    // The window is shown on the offscreen platform, so no display is needed.
    vexa::bench::preferOffscreenPlatform();
    QApplication application(argc, argv);
    const int status = vexa::bench::runWithRatios(
        argc, argv,
        {RatioCheck::scaling("BM_AddTiles/1000/manual_time", "BM_AddTiles/100/manual_time",
                             kMaxRatio),
         RatioCheck::scaling("BM_AddTiles/4000/manual_time", "BM_AddTiles/100/manual_time",
                             kMaxRatio),
         RatioCheck::scaling("BM_OnlineTimeUpdate/1000/manual_time",
                             "BM_OnlineTimeUpdate/100/manual_time", kMaxRatio),
         RatioCheck::scaling("BM_OnlineTimeUpdate/4000/manual_time",
                             "BM_OnlineTimeUpdate/100/manual_time", kMaxRatio),
         RatioCheck::versus("BM_FrameHandOver/1000", "BM_FrameHandOver/100", kMaxRatio,
                            RatioCheck::Clock::Cpu),
         RatioCheck::versus("BM_FrameHandOver/4000", "BM_FrameHandOver/100", kMaxRatio,
                            RatioCheck::Clock::Cpu)});
    printHeapRatios();
    populatedBoxes().clear();
    return status;
}
