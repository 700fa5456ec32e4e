// SPDX-License-Identifier: MIT
// The NDI discovery dialog filled with 50, 500 and 2,000 senders. On a large network the
// manager's list holds thousands of senders, and each list it sends rebuilds every row: the
// time per row at 500 and 2,000 senders is compared with that at 50.
//
// The manager's lists are fired on a real runtime thread, as a host fires them; what is timed is
// the rebuild the GUI thread does with one of them, until the list has placed every row.

#include "support/eventloop.h"
#include "support/offscreenplatform.h"
#include "support/runwithratios.h"

#include "ndidialog.h"
#include "ndilistitem.h"

#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>

#include <quandel/runtime/zqruntime.h>

#include <QApplication>
#include <QListWidget>
#include <QRect>

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using vexa::STResourceRenamedModel;
using vexa::bench::RatioCheck;
using vexa::inputsource::NdiDialog;
using vexa::inputsource::NdiListItem;
using vexa::testing::FakeInputSourceMgr;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kSettleTimeout(60);
constexpr double kMaxRatio = 1.3;

// Senders as a busy network announces them: every tenth already added as a source, every
// fourth with a receiver name of its own, the others defaulting to the sender's name.
std::vector<STResourceRenamedModel> makeSenders(int count)
{
    std::vector<STResourceRenamedModel> senders;
    senders.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        STResourceRenamedModel sender;
        sender.ipAddress =
            "10.20." + std::to_string(index / 250) + "." + std::to_string(index % 250 + 1);
        sender.senderName = "STUDIO-" + std::to_string(index / 8) + " (Camera " +
                            std::to_string(index % 8 + 1) + ")";
        if (index % 4 == 0) {
            sender.name = "Cam " + std::to_string(index + 1);
        }
        sender.flag = index % 10 == 0 ? 1 : 0;
        senders.push_back(std::move(sender));
    }
    return senders;
}

// A shown dialog bound to a manager on a real runtime, as an operator opens it.
struct DialogFixture
{
    DialogFixture()
        : mgr(std::make_shared<FakeInputSourceMgr>(&runtime))
    {
        dialog.setInputSourceMgr(mgr, &runtime);
        dialog.show();
        vexa::bench::drainEvents();
        list = dialog.findChild<QListWidget*>(QStringLiteral("ndiList"));
    }

    ~DialogFixture() { dialog.unsetInputSourceMgr(); }

    DialogFixture(const DialogFixture&) = delete;
    DialogFixture& operator=(const DialogFixture&) = delete;

    static bool settle(const std::function<bool()>& done)
    {
        return vexa::bench::processEventsUntil(done, kSettleTimeout);
    }

    NdiListItem* rowAt(int index) const
    {
        return qobject_cast<NdiListItem*>(list->itemWidget(list->item(index)));
    }

    // Every sender has its row, and the list has placed the rows one under the other: the last
    // one sits the height of all rows before it below the first, with the first's size, which it
    // does not before the list's layout ran.
    bool isLaidOut(const std::vector<STResourceRenamedModel>& senders) const
    {
        const int count = static_cast<int>(senders.size());
        if (list->count() != count) {
            return false;
        }
        const NdiListItem* const first = rowAt(0);
        const NdiListItem* const last = rowAt(count - 1);
        if (first == nullptr || last == nullptr ||
            last->ipAddress() != QString::fromStdString(senders.back().ipAddress)) {
            return false;
        }
        const QRect placed = first->geometry().translated(0, (count - 1) * first->height());
        return !placed.isEmpty() && last->geometry() == placed;
    }

    void fireList(const std::vector<STResourceRenamedModel>& senders)
    {
        mgr->fireOnRuntime(
            [&senders](FakeInputSourceMgr& manager) { manager.signalNdiSourcesUpdated(senders); });
    }

    bool fill(const std::vector<STResourceRenamedModel>& senders)
    {
        fireList(senders);
        return settle([this, &senders] { return isLaidOut(senders); });
    }

    // An empty list from the manager; the rows it drops are deleted later, and a benchmark that
    // waits no event loop out has to delete them itself.
    bool empty()
    {
        fireList({});
        const bool emptied = settle([this] { return list->count() == 0; });
        vexa::bench::drainEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return emptied && list->viewport()->findChildren<NdiListItem*>().isEmpty();
    }

    quandel::ZQRuntime runtime;
    std::shared_ptr<FakeInputSourceMgr> mgr;
    NdiDialog dialog;
    QListWidget* list = nullptr;
};

// One list of N senders fired on the runtime thread into the empty dialog, until the GUI thread
// has made every row and the list has placed them: the first answer after the dialog opened.
// Emptying the list before each iteration is untimed, so that every iteration builds all rows
// and none is kept from the list before.
void BM_FillList(benchmark::State& state)
{
    const int senderCount = static_cast<int>(state.range(0));
    const auto senders = makeSenders(senderCount);
    DialogFixture fixture;
    bool emptied = true;
    bool placed = true;
    for (auto _ : state) {
        state.PauseTiming();
        emptied = fixture.empty() && emptied;
        state.ResumeTiming();
        const Clock::time_point start = Clock::now();
        placed = fixture.fill(senders) && placed;
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    if (!emptied) {
        state.SkipWithError("the rows of the list before were not all deleted");
        return;
    }
    if (!placed) {
        state.SkipWithError("the rows were not all made and placed");
        return;
    }
    state.counters["items"] = senderCount;
    state.counters["per_item"] = benchmark::Counter(
        senderCount, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_FillList)
    ->Arg(50)
    ->Arg(500)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

} // namespace

int main(int argc, char** argv)
{
    // The dialog is shown on the offscreen platform, so no display is needed.
    vexa::bench::preferOffscreenPlatform();
    QApplication application(argc, argv);
    return vexa::bench::runWithRatios(
        argc, argv,
        {RatioCheck::scaling("BM_FillList/500/manual_time", "BM_FillList/50/manual_time",
                             kMaxRatio),
         RatioCheck::scaling("BM_FillList/2000/manual_time", "BM_FillList/50/manual_time",
                             kMaxRatio)});
}
