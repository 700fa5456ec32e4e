// SPDX-License-Identifier: MIT
// Relayout of a tile area: the flow layout must place N tiles in time linear in N, so the
// time per tile at 10,000 tiles stays close to that at 100.

#include "support/offscreenplatform.h"
#include "support/runwithratios.h"

#include <XJ/Utils/flowlayout.h>

#include <QApplication>
#include <QWidget>

#include <benchmark/benchmark.h>

using vexa::bench::RatioCheck;
using XJ::Utils::FlowLayout;

namespace {

constexpr int kTileWidth = 160;
constexpr int kTileHeight = 120;
constexpr int kSpacing = 8;
// Six tiles fill this width exactly and one pixel less holds five, so switching between the
// two moves every tile after the first few: no relayout can be skipped or leave tiles in place.
constexpr int kSixWide = 6 * kTileWidth + 5 * kSpacing;
constexpr int kFiveWide = kSixWide - 1;

// The tiles are created once, outside the timed loop. The area is never shown, so moving a
// tile only records its geometry and the time measured is the layout's.
struct TileArea
{
    explicit TileArea(int tiles)
        : layout(new FlowLayout(&area, 0, kSpacing, kSpacing))
    {
        for (int i = 0; i < tiles; ++i) {
            auto* tile = new QWidget;
            tile->setFixedSize(kTileWidth, kTileHeight);
            layout->addWidget(tile);
        }
    }

    // Where the last tile must be once the rows are `perRow` tiles wide.
    QPoint expectedLastPosition(int perRow) const
    {
        const int last = layout->count() - 1;
        return {(last % perRow) * (kTileWidth + kSpacing),
                (last / perRow) * (kTileHeight + kSpacing)};
    }

    QPoint lastPosition() const
    {
        return layout->itemAt(layout->count() - 1)->geometry().topLeft();
    }

    QWidget area;
    FlowLayout* const layout;
};

void reportItems(benchmark::State& state, int items)
{
    state.counters["items"] = items;
    state.counters["per_item"] = benchmark::Counter(
        items, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Switching between the two widths makes every call find the other one.
int nextWidth(int width)
{
    return width == kSixWide ? kFiveWide : kSixWide;
}

int tilesPerRow(int width)
{
    return width == kSixWide ? 6 : 5;
}

void tileCounts(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
}

void relayout(benchmark::State& state, bool invalidateFirst)
{
    const int tiles = static_cast<int>(state.range(0));
    TileArea tileArea(tiles);
    int width = kSixWide;
    for (auto _ : state) {
        width = nextWidth(width);
        if (invalidateFirst) {
            tileArea.layout->invalidate();
        }
        tileArea.layout->setGeometry(QRect(0, 0, width, kTileHeight));
    }
    if (tileArea.lastPosition() != tileArea.expectedLastPosition(tilesPerRow(width))) {
        state.SkipWithError("the tiles were not placed in rows");
    }
    reportItems(state, tiles);
}

void BM_FlowLayoutRelayout(benchmark::State& state)
{
    relayout(state, false);
}
BENCHMARK(BM_FlowLayoutRelayout)->Apply(tileCounts);

// The cost after a tile was added, shown or hidden: the layout reads every tile again.
void BM_FlowLayoutRelayoutAfterInvalidate(benchmark::State& state)
{
    relayout(state, true);
}
BENCHMARK(BM_FlowLayoutRelayoutAfterInvalidate)->Apply(tileCounts);

void BM_FlowLayoutHeightForWidth(benchmark::State& state)
{
    const int tiles = static_cast<int>(state.range(0));
    TileArea tileArea(tiles);
    int width = kSixWide;
    for (auto _ : state) {
        width = nextWidth(width);
        benchmark::DoNotOptimize(tileArea.layout->heightForWidth(width));
    }
    const int rows = (tiles + tilesPerRow(width) - 1) / tilesPerRow(width);
    if (tileArea.layout->heightForWidth(width) != rows * kTileHeight + (rows - 1) * kSpacing) {
        state.SkipWithError("the height does not match the rows");
    }
    reportItems(state, tiles);
}
BENCHMARK(BM_FlowLayoutHeightForWidth)->Apply(tileCounts);

} // namespace

int main(int argc, char** argv)
{
    // The widgets are never shown, so no display is needed.
    vexa::bench::preferOffscreenPlatform();
    QApplication application(argc, argv);
    return vexa::bench::runWithRatios(
        argc, argv,
        {RatioCheck::scaling("BM_FlowLayoutRelayout/10000", "BM_FlowLayoutRelayout/100", 1.3,
                             RatioCheck::Clock::Cpu),
         RatioCheck::scaling("BM_FlowLayoutRelayoutAfterInvalidate/10000",
                             "BM_FlowLayoutRelayoutAfterInvalidate/100", 1.3,
                             RatioCheck::Clock::Cpu),
         RatioCheck::scaling("BM_FlowLayoutHeightForWidth/10000", "BM_FlowLayoutHeightForWidth/100",
                             1.3, RatioCheck::Clock::Cpu)});
}
