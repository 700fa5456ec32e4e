// SPDX-License-Identifier: MIT
// The preview surface on the frame path: taking a frame must cost little more than copying its
// bytes, and must not allocate once the frame size is known; painting is the GUI thread's share.
//
// Allocations are counted by replacing the global operator new of this program; only those made
// on the benchmark thread while a counted section runs are counted.

#include "support/offscreenplatform.h"
#include "support/runwithratios.h"

#include "diplaywind.h"

#include <zq/mediacore/iframebuffer.h>
#include <zq/mediacore/rgbaframe.h>

#include <QApplication>
#include <QColor>
#include <QImage>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

using vexa::bench::RatioCheck;
using vexa::inputsource::DiplayWind;
using zq::mediacore::RgbaFrame;

namespace {

thread_local bool countingAllocations = false;
thread_local int64_t allocations = 0;

void* allocate(std::size_t size)
{
    if (countingAllocations) {
        ++allocations;
    }
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace {

// Counts the allocations made on this thread while it exists.
class AllocationCount
{
public:
    AllocationCount()
        : m_start(allocations)
    {
        countingAllocations = true;
    }
    ~AllocationCount() { countingAllocations = false; }

    int64_t count() const { return allocations - m_start; }

private:
    const int64_t m_start;
};

constexpr uint8_t red = 200;
constexpr uint8_t green = 120;
constexpr uint8_t blue = 40;

std::unique_ptr<RgbaFrame> makeFrame(benchmark::State& state)
{
    auto frame = std::make_unique<RgbaFrame>(static_cast<int>(state.range(0)),
                                             static_cast<int>(state.range(1)));
    frame->fill(red, green, blue);
    return frame;
}

std::size_t byteCount(const RgbaFrame& frame)
{
    return static_cast<std::size_t>(frame.getHeight()) * static_cast<std::size_t>(frame.stride());
}

void reportAllocations(benchmark::State& state, int64_t count)
{
    state.counters["allocs_per_frame"] =
        benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
}

// Draws the surface at `size` into an image, as the GUI thread's paint would.
QImage paint(DiplayWind& surface, const QSize& size)
{
    QImage target(size, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::black);
    surface.render(&target);
    return target;
}

bool showsTheFrameColour(const QImage& picture)
{
    return QColor(picture.pixel(picture.width() / 2, picture.height() / 2)) ==
           QColor(red, green, blue);
}

// The first frame sizes the surface's buffer and posts a repaint request. Nothing serves the
// request here, so it stays in flight and the frames of the loop post none: what the loop
// measures, and counts, is the copy path alone. BM_FrameCopyEachRequestServed measures the
// request.
void BM_FrameCopy(benchmark::State& state)
{
    const auto frame = makeFrame(state);
    DiplayWind surface;
    if (surface.updateFrame(frame.get()) != 0) {
        state.SkipWithError("the first frame was refused");
        return;
    }
    int refused = 0;
    int64_t counted = 0;
    {
        const AllocationCount count;
        for (auto _ : state) {
            refused += surface.updateFrame(frame.get());
        }
        counted = count.count();
    }
    reportAllocations(state, counted);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * byteCount(*frame)));
    surface.resize(frame->getWidth(), frame->getHeight());
    if (refused != 0 || !showsTheFrameColour(paint(surface, surface.size()))) {
        state.SkipWithError("the frames were not shown");
    }
}
BENCHMARK(BM_FrameCopy)->Args({1920, 1080})->Args({480, 270})->Unit(benchmark::kMicrosecond);

void BM_Memcpy(benchmark::State& state)
{
    const auto frame = makeFrame(state);
    const uint8_t* const source = frame->getBuffer()->data();
    // Filled once, so that the loop does not pay for first touches of fresh pages.
    std::vector<uint8_t> target(byteCount(*frame), 0);
    for (auto _ : state) {
        std::memcpy(target.data(), source, target.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * target.size()));
    if (std::memcmp(target.data(), source, target.size()) != 0) {
        state.SkipWithError("the copy differs");
    }
}
BENCHMARK(BM_Memcpy)->Args({1920, 1080})->Args({480, 270})->Unit(benchmark::kMicrosecond);

// The GUI thread serves every repaint request before the next frame arrives, so each frame posts
// one: the cost when the GUI keeps up with the frame rate. Allocations are counted inside
// updateFrame() only, not while the request is served.
void BM_FrameCopyEachRequestServed(benchmark::State& state)
{
    const auto frame = makeFrame(state);
    DiplayWind surface;
    surface.updateFrame(frame.get());
    QCoreApplication::sendPostedEvents();
    int refused = 0;
    int64_t counted = 0;
    for (auto _ : state) {
        {
            const AllocationCount count;
            refused += surface.updateFrame(frame.get());
            counted += count.count();
        }
        QCoreApplication::sendPostedEvents();
    }
    reportAllocations(state, counted);
    if (refused != 0) {
        state.SkipWithError("frames were refused");
    }
}
BENCHMARK(BM_FrameCopyEachRequestServed)
    ->Args({1920, 1080})
    ->Args({480, 270})
    ->Unit(benchmark::kMicrosecond);

// One paint of a tile's 168 x 88 thumbnail from a frame of the given size, on the GUI thread.
void BM_PaintSurface(benchmark::State& state)
{
    const auto frame = makeFrame(state);
    DiplayWind surface;
    surface.resize(168, 88);
    surface.updateFrame(frame.get());
    QImage target(surface.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        surface.render(&target);
        benchmark::DoNotOptimize(target.constBits());
    }
    if (!showsTheFrameColour(target)) {
        state.SkipWithError("the surface did not paint the frame");
    }
}
BENCHMARK(BM_PaintSurface)->Args({1920, 1080})->Args({480, 270})->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    // The widgets are never shown, so no display is needed.
    vexa::bench::preferOffscreenPlatform();
    QApplication application(argc, argv);
    // Both sides copy on the benchmark thread and wait for nothing, so CPU time compares them.
    return vexa::bench::runWithRatios(
        argc, argv,
        {RatioCheck::versus("BM_FrameCopy/1920/1080", "BM_Memcpy/1920/1080", 1.15,
                            RatioCheck::Clock::Cpu),
         RatioCheck::versus("BM_FrameCopy/480/270", "BM_Memcpy/480/270", 1.15,
                            RatioCheck::Clock::Cpu)});
}
