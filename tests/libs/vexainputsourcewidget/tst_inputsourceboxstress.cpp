// SPDX-License-Identifier: MIT
#include "queuedhandoff.h"

#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/framefactory.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/valuemeta.h>

#include <QElapsedTimer>
#include <QLabel>
#include <QMetaObject>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

using quandel::resource::EnResourceType;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;
using vexa::inputsource::QueuedHandoff;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::FrameFactory;
using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

namespace {

constexpr int streamType = quandel::resource::toCode(EnResourceType::NetworkStream);
constexpr int ndiType = quandel::resource::toCode(EnResourceType::NdiSource);
// Ids the manager hands out; the frame threads also aim at a few it never uses.
constexpr uint64_t idRange = 40;
constexpr uint64_t neverUsedIds = 8;
constexpr int frameThreadCount = 3;
constexpr int maxLiveTiles = 28;
constexpr int minSurvivors = 8;
constexpr qint64 runMs = 2000;
constexpr int maxRounds = 4000;
// How many notifications the manager may be ahead of the GUI thread: enough for the runtime
// and the GUI thread to overlap, few enough that the backlog never grows with the run.
constexpr int maxRoundsAhead = 3;
constexpr std::chrono::seconds guiCatchUpTimeout(30);
// Far above any running time the storm sends, so the final values cannot be confused with it.
constexpr int finalSecondsBase = 360000;
// Each tile ticks once a second, so a checked label may be a few ticks past the value sent.
constexpr int tickAllowance = 5;

const QString missingTileWarning =
    QStringLiteral("updateItemOnlineStatus nullptr == inputSourceItem");

IInputSourceMgr::ResourcePtr makeResource(uint64_t id, EnResourceType type)
{
    const std::string name = "Stream " + std::to_string(id);
    auto resource = std::make_shared<quandel::resource::ValueResource>(id, type, name);
    zq::mediacore::MetaValues values;
    values.resourceType = type;
    values.name = name;
    values.address = "rtsp://192.0.2.1/" + std::to_string(id);
    values.resolutionText = "1920*1080";
    values.frameRate = 25.0;
    resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(std::move(values)));
    return resource;
}

// Frames of several geometries, so that the surfaces keep rebuilding their buffers, and of
// several rates, so that stream tiles keep posting their fps text.
std::vector<std::unique_ptr<zq::mediacore::RgbaFrame>> makeFrames(int hue)
{
    std::vector<std::unique_ptr<zq::mediacore::RgbaFrame>> frames;
    frames.push_back(FrameFactory::pattern(64, 36, 1, hue, 24.0));
    frames.push_back(FrameFactory::pattern(128, 72, 2, hue, 25.0));
    frames.push_back(FrameFactory::pattern(17, 9, 3, hue, 30.0));
    auto padded = std::make_unique<zq::mediacore::RgbaFrame>(65, 37, 25.0, 65 * 4 + 12);
    FrameFactory::drawPattern(*padded, 4, hue);
    frames.push_back(std::move(padded));
    return frames;
}

QString runningTimeText(int seconds)
{
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600, 3, 10, QLatin1Char('0'))
        .arg(seconds % 3600 / 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

// The seconds a "hhh:mm:ss" label shows, or -1.
int shownSeconds(const InputSourceItem& tile)
{
    const auto* const label = tile.findChild<QLabel*>(QStringLiteral("duration"));
    const QStringList parts =
        label == nullptr ? QStringList() : label->text().split(QLatin1Char(':'));
    if (parts.size() != 3) {
        return -1;
    }
    return parts[0].toInt() * 3600 + parts[1].toInt() * 60 + parts[2].toInt();
}

QString infoText(const InputSourceItem& tile)
{
    const auto* const label = tile.findChild<QLabel*>(QStringLiteral("infoLabel"));
    return label == nullptr ? QString() : label->text();
}

// What the manager believes: how many tiles each id should have. The box makes one tile per
// added resource of its type and removes the newest one per deleted id, so an id added twice
// has two tiles until it was deleted twice.
using TileCounts = std::map<uint64_t, int>;

int totalTiles(const TileCounts& counts)
{
    int total = 0;
    for (const auto& entry : counts) {
        total += entry.second;
    }
    return total;
}

// The manager's side of the storm: every change is fired on the runtime thread and recorded
// in the model in the same order, so the model is what the box must show once the GUI thread
// has handled everything queued.
class ManagerStorm
{
public:
    ManagerStorm(FakeInputSourceMgr& mgr, unsigned seed)
        : m_mgr(mgr)
        , m_random(seed)
    {}

    void addSome()
    {
        std::vector<IInputSourceMgr::ResourcePtr> resources;
        const int count = 1 + static_cast<int>(m_random() % 4);
        for (int index = 0; index < count && totalTiles(m_counts) < maxLiveTiles; ++index) {
            uint64_t id = randomId();
            const unsigned pick = m_random() % 10;
            if (pick == 0 && !m_counts.empty()) {
                id = aliveId(); // a second tile of an id already shown
            } else if (pick == 1 && !resources.empty()) {
                id = resources.back()->getId(); // the same id twice in one notification
            }
            if (m_random() % 8 == 0) {
                // Another box's business: this one must ignore it.
                resources.push_back(makeResource(id, EnResourceType::NdiSource));
                continue;
            }
            resources.push_back(makeResource(id, EnResourceType::NetworkStream));
            ++m_counts[id];
            ++added;
        }
        m_mgr.fireOnRuntime(
            [&resources](FakeInputSourceMgr& mgr) { mgr.signalResourcesAdded(resources, {}); });
    }

    void deleteSome()
    {
        std::vector<uint64_t> ids;
        const int count = 1 + static_cast<int>(m_random() % 3);
        for (int index = 0; index < count; ++index) {
            const unsigned pick = m_random() % 6;
            if (pick == 0 || m_counts.empty()) {
                ids.push_back(randomId()); // perhaps not shown at all
            } else if (pick == 1 && !ids.empty()) {
                ids.push_back(ids.back());
            } else {
                ids.push_back(aliveId());
            }
        }
        for (const uint64_t id : ids) {
            const auto found = m_counts.find(id);
            if (found != m_counts.end()) {
                ++deleted;
                if (--found->second == 0) {
                    m_counts.erase(found);
                }
            }
        }
        m_mgr.fireOnRuntime([&ids](FakeInputSourceMgr& mgr) { mgr.signalResourcesDeleted(ids); });
    }

    void sendOnlineStates()
    {
        std::map<uint64_t, bool> states;
        const int count = 1 + static_cast<int>(m_random() % 6);
        for (int index = 0; index < count; ++index) {
            states[randomId()] = m_random() % 4 != 0;
        }
        const int type = m_random() % 5 == 0 ? ndiType : streamType;
        if (type == streamType) {
            for (const auto& entry : states) {
                if (m_counts.count(entry.first) == 0) {
                    ++expectedMissingTileWarnings;
                }
            }
        }
        m_mgr.fireOnRuntime([&states, type](FakeInputSourceMgr& mgr) {
            mgr.signalOnlineStatusChanged(states, type);
        });
    }

    // Every id of the range, shown or not, as a real manager reports every source it knows.
    void sendOnlineTimes()
    {
        std::map<uint64_t, int> times;
        for (uint64_t id = 1; id <= idRange; ++id) {
            times[id] = static_cast<int>(m_random() % 5000);
        }
        m_mgr.fireOnRuntime(
            [&times](FakeInputSourceMgr& mgr) { mgr.signalOnlineTimeUpdated(times); });
    }

    void clear()
    {
        m_counts.clear();
        ++clears;
        m_mgr.fireOnRuntime([](FakeInputSourceMgr& mgr) { mgr.signalResourcesCleared(); });
    }

    // Leaves at least `tiles` tiles, so that the checks after the storm have tiles to look at
    // even when it ended on a clear.
    void fillUp(int tiles)
    {
        for (int attempt = 0; attempt < 100 && totalTiles(m_counts) < tiles; ++attempt) {
            addSome();
        }
    }

    void step()
    {
        const unsigned pick = m_random() % 100;
        if (pick < 42 && totalTiles(m_counts) < maxLiveTiles) {
            addSome();
        } else if (pick < 65) {
            deleteSome();
        } else if (pick < 80) {
            sendOnlineStates();
        } else if (pick < 99) {
            sendOnlineTimes();
        } else {
            clear();
        }
    }

    const TileCounts& counts() const { return m_counts; }

    int added = 0;
    int deleted = 0;
    int clears = 0;
    int expectedMissingTileWarnings = 0;

private:
    uint64_t randomId() { return 1 + m_random() % idRange; }

    uint64_t aliveId()
    {
        auto found = m_counts.begin();
        std::advance(found, static_cast<long>(m_random() % m_counts.size()));
        return found->first;
    }

    FakeInputSourceMgr& m_mgr;
    std::mt19937 m_random;
    TileCounts m_counts;
};

// Lets the manager's thread wait until the GUI thread has handled what it queued, so the GUI
// queue stays short however fast the manager fires.
class RoundTracker
{
public:
    RoundTracker() { QueuedHandoff::watch(&m_receiver); }

    // Queued behind the notifications of round `round`; runs once the GUI thread is past them.
    void markQueued(int round)
    {
        QueuedHandoff::post(&m_receiver, [this, round] {
            {
                const std::lock_guard<std::mutex> guard(m_lock);
                m_handled = round;
            }
            m_changed.notify_all();
        });
    }

    bool waitForRound(int round)
    {
        std::unique_lock<std::mutex> guard(m_lock);
        return m_changed.wait_for(guard, guiCatchUpTimeout, [&] { return m_handled >= round; });
    }

private:
    // On the GUI thread, where the marks are handled.
    QObject m_receiver;
    std::mutex m_lock;
    std::condition_variable m_changed;
    int m_handled = 0;
};

// Frame threads aiming at random ids, present or not, until stopped; stopped and joined on
// every way out of the test, so that a failed check never leaves one inside the box.
class FrameThreads
{
public:
    FrameThreads(InputSourceBox& box, int count)
    {
        for (int index = 0; index < count; ++index) {
            m_threads.emplace_back([this, &box, index] {
                const auto frames = makeFrames(index * 120);
                std::mt19937 random(static_cast<unsigned>(index) + 7U);
                std::size_t next = 0;
                while (!m_stop.load()) {
                    const uint64_t id = 1 + random() % (idRange + neverUsedIds);
                    box.updateFrame(id, frames[next++ % frames.size()].get());
                    ++m_handedIn;
                    std::this_thread::yield();
                }
            });
        }
    }

    ~FrameThreads() { stop(); }

    void stop()
    {
        m_stop = true;
        for (std::thread& thread : m_threads) {
            if (thread.joinable()) {
                thread.join();
            }
        }
    }

    long handedIn() const { return m_handedIn.load(); }

private:
    std::atomic<bool> m_stop{false};
    std::atomic<long> m_handedIn{0};
    std::vector<std::thread> m_threads;
};

TileCounts shownTiles(InputSourceBox& box)
{
    TileCounts shown;
    for (const InputSourceItem* const tile : box.findChildren<InputSourceItem*>()) {
        ++shown[tile->id()];
    }
    return shown;
}

QString describe(const TileCounts& counts)
{
    QStringList parts;
    for (const auto& [id, count] : counts) {
        parts << QStringLiteral("%1x%2").arg(id).arg(count);
    }
    return parts.join(QLatin1Char(' '));
}

} // namespace

class TestInputSourceBoxStress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notificationsAndFramesTogether();
};

void TestInputSourceBoxStress::notificationsAndFramesTogether()
{
    auto recorder = std::make_unique<WarningRecorder>();
    quandel::ZQRuntime runtime;
    const auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    // The box sits inside the window, as in the panel: as a window itself its growing layout
    // would keep resizing the window, which the offscreen platform warns about.
    QWidget window;
    window.resize(6 * 176 + 16, 800);
    auto* const box = new InputSourceBox(&window);
    box->setResourceType(EnResourceType::NetworkStream);
    box->setZQRuntime(&runtime);
    box->setInputSourceMgr(mgr);
    box->setGeometry(0, 0, window.width(), window.height());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    FrameThreads frameThreads(*box, frameThreadCount);
    ManagerStorm storm(*mgr, 20240611U);
    RoundTracker tracker;
    std::atomic<bool> managerDone{false};
    std::atomic<bool> guiFellBehind{false};
    std::atomic<int> rounds{0};
    QElapsedTimer elapsed;
    elapsed.start();
    std::thread manager([&] {
        int round = 1;
        for (; round <= maxRounds && elapsed.elapsed() < runMs; ++round) {
            storm.step();
            tracker.markQueued(round);
            if (round > maxRoundsAhead && !tracker.waitForRound(round - maxRoundsAhead)) {
                guiFellBehind = true;
                break;
            }
        }
        rounds = round - 1;
        storm.fillUp(minSurvivors);
        managerDone = true;
    });

    // The GUI thread reads the index while frame threads read it too. The box never shows more
    // tiles than the manager had at some moment, and a tile found is the one asked for.
    int tooMany = 0;
    int wrongTile = 0;
    for (uint64_t probe = 1; !managerDone.load(); probe = probe % idRange + 1) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        tooMany += box->itemCount() > maxLiveTiles ? 1 : 0;
        const InputSourceItem* const tile = box->findItem(probe);
        wrongTile += tile != nullptr && tile->id() != probe ? 1 : 0;
    }
    manager.join();
    QVERIFY2(!guiFellBehind.load(), "the GUI thread did not catch up with the manager");
    QCOMPARE(tooMany, 0);
    QCOMPARE(wrongTile, 0);

    // Every notification is queued by now (fireOnRuntime returns after the emit); deliver them
    // while the frames still flow.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    const TileCounts expected = storm.counts();
    QCOMPARE(describe(shownTiles(*box)), describe(expected));
    QCOMPARE(box->itemCount(), totalTiles(expected));
    for (uint64_t id = 1; id <= idRange + neverUsedIds; ++id) {
        QVERIFY2((box->findItem(id) != nullptr) == (expected.count(id) != 0),
                 qPrintable(QStringLiteral("id %1").arg(id)));
    }

    frameThreads.stop();
    const QString summary =
        QStringLiteral("%1 rounds in %2 ms: %3 tiles added, %4 deleted, %5 clears, %6 left; %7 "
                       "frames handed in")
            .arg(rounds.load())
            .arg(elapsed.elapsed())
            .arg(storm.added)
            .arg(storm.deleted)
            .arg(storm.clears)
            .arg(totalTiles(expected))
            .arg(frameThreads.handedIn());
    QVERIFY2(rounds.load() > 50, qPrintable(summary));
    QVERIFY2(storm.added > 20 && storm.deleted > 10, qPrintable(summary));
    QVERIFY2(frameThreads.handedIn() > 100L * frameThreadCount, qPrintable(summary));
    QVERIFY2(totalTiles(expected) >= minSurvivors, qPrintable(summary));

    // The surviving tiles go online and get running times no storm value could produce; each
    // one's next tick shows its own value plus one.
    std::map<uint64_t, bool> online;
    std::map<uint64_t, int> times;
    for (uint64_t id = 1; id <= idRange; ++id) {
        if (expected.count(id) != 0) {
            online[id] = true;
        }
        times[id] = finalSecondsBase + static_cast<int>(id) * 100;
    }
    mgr->fireOnRuntime([&online](FakeInputSourceMgr& fake) {
        fake.signalOnlineStatusChanged(online, streamType);
    });
    mgr->fireOnRuntime([&times](FakeInputSourceMgr& fake) { fake.signalOnlineTimeUpdated(times); });
    for (const auto& entry : expected) {
        const uint64_t id = entry.first;
        const int sent = times[id];
        InputSourceItem* const tile = box->findItem(id);
        QVERIFY(tile != nullptr);
        QTRY_VERIFY2(shownSeconds(*tile) > sent && shownSeconds(*tile) <= sent + tickAllowance,
                     qPrintable(QStringLiteral("id %1 shows %2, %3 was sent")
                                    .arg(id)
                                    .arg(runningTimeText(shownSeconds(*tile)))
                                    .arg(runningTimeText(sent))));
    }

    // A frame thread still reaches every surviving tile through the box->
    const auto last = FrameFactory::pattern(32, 18, 9, 0, 50.0);
    std::thread pusher([box, &expected, &last] {
        for (const auto& entry : expected) {
            box->updateFrame(entry.first, last.get());
        }
    });
    pusher.join();
    for (const auto& entry : expected) {
        InputSourceItem* const tile = box->findItem(entry.first);
        QTRY_VERIFY2(infoText(*tile).endsWith(QStringLiteral("@50fps")),
                     qPrintable(infoText(*tile)));
    }

    box->unsetInputSourceMgr();

    // Online states for ids without a tile are the only thing the box may warn about; a
    // notification that could not be queued, for one, must never happen.
    QStringList unexpected;
    int missingTileWarnings = 0;
    for (const LoggedMessage& message : recorder->messages()) {
        if (message.type == QtInfoMsg || message.type == QtDebugMsg) {
            continue;
        }
        if (message.text == missingTileWarning) {
            ++missingTileWarnings;
        } else {
            unexpected << message.text;
        }
    }
    recorder.reset();
    qInfo("%s; %d warnings about online states of ids without a tile", qPrintable(summary),
          missingTileWarnings);
    QVERIFY2(unexpected.isEmpty(), qPrintable(unexpected.join(QLatin1Char('\n'))));
    QCOMPARE(missingTileWarnings, storm.expectedMissingTileWarnings);
}

QTEST_MAIN(TestInputSourceBoxStress)
#include "tst_inputsourceboxstress.moc"
