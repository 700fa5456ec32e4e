// SPDX-License-Identifier: MIT
// One manager request from the GUI thread to the runtime thread and back. runOnRuntime adds a
// gate check, a thread check and a packaged task to the bare hand-off of a task to a worker
// thread, so its round trip must stay within 10% of that hand-off; Qt's blocking queued
// invocation is measured in the same run as the other way a Qt program would do it.

#include "support/runwithratios.h"

#include "runonruntime.h"

#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>

#include <quandel/runtime/zqruntime.h>

#include <QCoreApplication>
#include <QObject>
#include <QThread>

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

using vexa::bench::RatioCheck;
using vexa::inputsource::IInputSourceMgr;

namespace {

// A manager whose requests cost nothing, so that only the way there and back is measured.
class IdleMgr : public vexa::testing::FakeInputSourceMgr
{
public:
    bool isNameRepeated(const std::string& name) override { return name.empty(); }
};

// The least a worker thread needs to take tasks: a queue, a mutex and a condition variable.
class BareWorker
{
public:
    BareWorker()
        : m_thread([this] { run(); })
    {}

    ~BareWorker()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_stopping = true;
        }
        m_wakeUp.notify_one();
        m_thread.join();
    }

    void post(std::function<void()> task)
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_tasks.push_back(std::move(task));
        }
        m_wakeUp.notify_one();
    }

private:
    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (true) {
            m_wakeUp.wait(lock, [this] { return m_stopping || !m_tasks.empty(); });
            if (m_tasks.empty()) {
                return;
            }
            std::function<void()> task = std::move(m_tasks.front());
            m_tasks.pop_front();
            lock.unlock();
            task();
            task = nullptr;
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wakeUp;
    std::deque<std::function<void()>> m_tasks;
    bool m_stopping = false;
    std::thread m_thread;
};

const std::string kName = "Camera 1";

void BM_RunOnRuntime(benchmark::State& state)
{
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<IdleMgr>();
    const std::weak_ptr<IInputSourceMgr> weak = mgr;
    for (auto _ : state) {
        const auto locked = weak.lock();
        const bool repeated = vexa::inputsource::runOnRuntime(
            &runtime, __FILE__, __LINE__, "BM_RunOnRuntime",
            std::bind(&IInputSourceMgr::isNameRepeated, locked, kName));
        benchmark::DoNotOptimize(repeated);
    }
}
BENCHMARK(BM_RunOnRuntime)->UseRealTime();

void BM_PackagedTaskHandOff(benchmark::State& state)
{
    BareWorker worker;
    auto mgr = std::make_shared<IdleMgr>();
    const std::weak_ptr<IInputSourceMgr> weak = mgr;
    for (auto _ : state) {
        const auto locked = weak.lock();
        auto task = std::make_shared<std::packaged_task<bool()>>(
            std::bind(&IInputSourceMgr::isNameRepeated, locked, kName));
        std::future<bool> result = task->get_future();
        worker.post([task = std::move(task)] { (*task)(); });
        benchmark::DoNotOptimize(result.get());
    }
}
BENCHMARK(BM_PackagedTaskHandOff)->UseRealTime();

void BM_QtBlockingQueued(benchmark::State& state)
{
    QThread thread;
    QObject receiver;
    receiver.moveToThread(&thread);
    thread.start();
    auto mgr = std::make_shared<IdleMgr>();
    const std::weak_ptr<IInputSourceMgr> weak = mgr;
    for (auto _ : state) {
        const auto locked = weak.lock();
        bool repeated = false;
        QMetaObject::invokeMethod(
            &receiver, [locked] { return locked->isNameRepeated(kName); },
            Qt::BlockingQueuedConnection, &repeated);
        benchmark::DoNotOptimize(repeated);
    }
    thread.quit();
    thread.wait();
}
BENCHMARK(BM_QtBlockingQueued)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    // Qt's queued invocation needs an application object for its event loops.
    QCoreApplication application(argc, argv);
    return vexa::bench::runWithRatios(
        argc, argv,
        {RatioCheck::versus("BM_RunOnRuntime/real_time", "BM_PackagedTaskHandOff/real_time", 1.10),
         RatioCheck::versus("BM_RunOnRuntime/real_time", "BM_QtBlockingQueued/real_time", 1.10)});
}
