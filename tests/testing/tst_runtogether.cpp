// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/runtogether.h>

#include <QtTest>

#include <atomic>
#include <mutex>
#include <set>
#include <thread>

class TestRunTogether : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyBodyRunsOnAThreadOfItsOwn();
    void bodiesOverlap();
};

void TestRunTogether::everyBodyRunsOnAThreadOfItsOwn()
{
    std::mutex mutex;
    std::set<std::thread::id> threads;
    std::vector<std::function<void()>> bodies(5, [&] {
        std::lock_guard<std::mutex> lock(mutex);
        threads.insert(std::this_thread::get_id());
    });
    vexa::testing::runTogether(bodies);
    QCOMPARE(threads.size(), std::size_t(5));
    QVERIFY(threads.count(std::this_thread::get_id()) == 0);
}

void TestRunTogether::bodiesOverlap()
{
    // Each body waits until all have started: this only ends when they really run at once.
    std::atomic<int> started{0};
    std::vector<std::function<void()>> bodies(3, [&started] {
        ++started;
        while (started.load() < 3) {
            std::this_thread::yield();
        }
    });
    vexa::testing::runTogether(bodies);
    QCOMPARE(started.load(), 3);
}

QTEST_GUILESS_MAIN(TestRunTogether)
#include "tst_runtogether.moc"
