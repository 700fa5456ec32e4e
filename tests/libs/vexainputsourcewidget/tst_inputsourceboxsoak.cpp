// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/framefactory.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/valuemeta.h>

#include <QElapsedTimer>
#include <QFile>
#include <QVBoxLayout>
#include <QtTest>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

using quandel::resource::EnResourceType;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::FrameFactory;
using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

namespace {

// The four boxes of the panel, in the order the panel shows them.
constexpr std::array<EnResourceType, 4> boxTypes = {
    EnResourceType::LocalCaptureDevice, EnResourceType::NetworkStream, EnResourceType::NdiSource,
    EnResourceType::WebPage};
constexpr int liveTiles = 1000;
constexpr int frameThreadCount = 8;
constexpr int defaultSeconds = 15;
constexpr qint64 swapEveryMs = 3000;
constexpr qint64 onlineTimesEveryMs = 500;
// Each box's ids start here times its position, so that ids never meet across boxes.
constexpr uint64_t idSpan = 100000000;
// Resident memory may grow after the warm-up by this share of what it was then, plus the fixed
// allowance below. Freed memory is not all handed back at once: glibc keeps it in its arenas,
// the address sanitizer holds freed blocks in a quarantine of up to 256 MiB before reusing them,
// and Qt's caches (fonts, style data) fill as tiles come and go. A leak of a tile's widgets
// (about 75 KiB each) over the thousands of tiles a run churns is far beyond this.
constexpr double growthShare = 0.25;
constexpr qint64 growthAllowanceBytes = 96LL * 1024 * 1024;

const QString missingTileWarning =
    QStringLiteral("updateItemOnlineStatus nullptr == inputSourceItem");

int soakSeconds()
{
    bool ok = false;
    const int seconds = qEnvironmentVariableIntValue("VEXA_SOAK_SECONDS", &ok);
    return ok && seconds > 0 ? seconds : defaultSeconds;
}

qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() < 2 ? -1 : fields.at(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

QString megabytes(qint64 bytes)
{
    return QString::number(static_cast<double>(bytes) / (1024.0 * 1024.0), 'f', 1) +
           QStringLiteral(" MiB");
}

IInputSourceMgr::ResourcePtr makeResource(uint64_t id, EnResourceType type)
{
    const std::string name = "Source " + std::to_string(id % idSpan);
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

// Frame threads aiming at the four boxes, at ids alive, gone or never used, until stopped;
// stopped and joined on every way out of the test.
class FrameThreads
{
public:
    FrameThreads(const std::vector<InputSourceBox*>& boxes,
                 const std::array<std::atomic<uint64_t>, 4>& nextIds)
    {
        for (int index = 0; index < frameThreadCount; ++index) {
            m_threads.emplace_back([this, boxes, &nextIds, index] {
                std::vector<std::unique_ptr<zq::mediacore::RgbaFrame>> frames;
                frames.push_back(FrameFactory::pattern(64, 36, 1, index * 40, 25.0));
                frames.push_back(FrameFactory::pattern(32, 18, 2, index * 40, 50.0));
                std::mt19937 random(static_cast<unsigned>(index) + 11U);
                std::size_t next = 0;
                while (!m_stop.load()) {
                    const std::size_t box = random() % boxes.size();
                    const uint64_t base = (box + 1) * idSpan;
                    const uint64_t span = nextIds[box].load() - base + 8;
                    boxes[box]->updateFrame(base + random() % span,
                                            frames[next++ % frames.size()].get());
                    ++m_handedIn;
                    if (next % 64 == 0) {
                        std::this_thread::yield();
                    }
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

    long long handedIn() const { return m_handedIn.load(); }

private:
    std::atomic<bool> m_stop{false};
    std::atomic<long long> m_handedIn{0};
    std::vector<std::thread> m_threads;
};

} // namespace

class TestInputSourceBoxSoak : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void churnWithFramesAndManagerSwaps();
};

void TestInputSourceBoxSoak::churnWithFramesAndManagerSwaps()
{
    const int seconds = soakSeconds();
    const qint64 runMs = seconds * 1000LL;
    const qint64 warmUpMs = std::max<qint64>(3000, runMs / 3);

    auto recorder = std::make_unique<WarningRecorder>();
    quandel::ZQRuntime runtime;
    auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QWidget window;
    window.resize(6 * 176 + 16, 900);
    auto* const layout = new QVBoxLayout(&window);
    std::vector<InputSourceBox*> boxes;
    for (const EnResourceType type : boxTypes) {
        auto* const box = new InputSourceBox(&window);
        box->setResourceType(type);
        box->setZQRuntime(&runtime);
        box->setInputSourceMgr(mgr);
        layout->addWidget(box);
        boxes.push_back(box);
    }
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    // The ids alive in each box, in the order they were added; the next id each box hands out.
    std::array<std::vector<uint64_t>, 4> alive;
    std::array<std::atomic<uint64_t>, 4> nextIds;
    for (std::size_t box = 0; box < boxes.size(); ++box) {
        nextIds[box] = (box + 1) * idSpan;
    }
    std::mt19937 random(20241123U);
    long long added = 0;
    long long deleted = 0;
    int expectedMissingTileWarnings = 0;

    const auto addTo = [&](std::size_t box, int count) {
        std::vector<IInputSourceMgr::ResourcePtr> resources;
        for (int index = 0; index < count; ++index) {
            const uint64_t id = nextIds[box].load() + 1;
            resources.push_back(makeResource(id, boxTypes[box]));
            alive[box].push_back(id);
            nextIds[box] = id;
        }
        added += count;
        mgr->fireOnRuntime([&resources](FakeInputSourceMgr& manager) {
            manager.signalResourcesAdded(resources, {});
        });
    };
    const auto deleteFrom = [&](std::size_t box, int count) {
        std::vector<uint64_t> ids;
        for (int index = 0; index < count && !alive[box].empty(); ++index) {
            const std::size_t at = random() % alive[box].size();
            ids.push_back(alive[box][at]);
            alive[box].erase(alive[box].begin() + static_cast<long>(at));
        }
        deleted += static_cast<long long>(ids.size());
        mgr->fireOnRuntime(
            [&ids](FakeInputSourceMgr& manager) { manager.signalResourcesDeleted(ids); });
    };

    for (std::size_t box = 0; box < boxes.size(); ++box) {
        for (int batch = 0; batch < liveTiles / 4 / 50; ++batch) {
            addTo(box, 50);
        }
    }
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            int total = 0;
            for (InputSourceBox* const box : boxes) {
                total += box->itemCount();
            }
            return total == liveTiles;
        }(),
        120000);

    FrameThreads frameThreads(boxes, nextIds);
    QElapsedTimer elapsed;
    elapsed.start();
    qint64 nextSwap = swapEveryMs;
    qint64 nextOnlineTimes = 0;
    qint64 warmUpBytes = -1;
    qint64 peakBytes = 0;
    int swaps = 0;
    int oldManagerReached = 0;
    long long rounds = 0;
    while (elapsed.elapsed() < runMs) {
        ++rounds;
        // Sources come and go in one box at a time, the total staying at the live count.
        const std::size_t box = random() % boxes.size();
        const int count = 1 + static_cast<int>(random() % 8);
        deleteFrom(box, count);
        addTo(box, count);

        // Online states: mostly of sources that have a tile, now and then of one gone.
        std::map<uint64_t, bool> states;
        for (int index = 0; index < 4 && !alive[box].empty(); ++index) {
            states[alive[box][random() % alive[box].size()]] = random() % 3 != 0;
        }
        if (random() % 8 == 0) {
            states[nextIds[box].load() + 1000] = true;
            ++expectedMissingTileWarnings;
        }
        const int type = quandel::resource::toCode(boxTypes[box]);
        mgr->fireOnRuntime([&states, type](FakeInputSourceMgr& manager) {
            manager.signalOnlineStatusChanged(states, type);
        });

        if (elapsed.elapsed() >= nextOnlineTimes) {
            nextOnlineTimes += onlineTimesEveryMs;
            std::map<uint64_t, int> times;
            for (const std::vector<uint64_t>& ids : alive) {
                for (const uint64_t id : ids) {
                    times[id] = static_cast<int>(random() % 100000);
                }
            }
            mgr->fireOnRuntime(
                [&times](FakeInputSourceMgr& manager) { manager.signalOnlineTimeUpdated(times); });
        }

        if (elapsed.elapsed() >= nextSwap) {
            nextSwap += swapEveryMs;
            ++swaps;
            const std::shared_ptr<FakeInputSourceMgr> previous = mgr;
            for (InputSourceBox* const each : boxes) {
                each->unsetInputSourceMgr();
            }
            mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
            for (InputSourceBox* const each : boxes) {
                each->setInputSourceMgr(mgr);
            }
            // The manager the boxes left must reach none of them any more.
            std::vector<IInputSourceMgr::ResourcePtr> strays;
            for (std::size_t index = 0; index < boxes.size(); ++index) {
                strays.push_back(makeResource((index + 1) * idSpan - 1, boxTypes[index]));
            }
            previous->fireOnRuntime([&strays](FakeInputSourceMgr& manager) {
                manager.signalResourcesAdded(strays, {});
            });
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
            for (std::size_t index = 0; index < boxes.size(); ++index) {
                InputSourceBox* const stray = boxes[index];
                if (stray->findItem((index + 1) * idSpan - 1) != nullptr) {
                    ++oldManagerReached;
                }
            }
        }

        QCoreApplication::processEvents();
        if (warmUpBytes < 0 && elapsed.elapsed() >= warmUpMs) {
            warmUpBytes = residentBytes();
        }
        peakBytes = std::max(peakBytes, residentBytes());
    }

    // Everything fired is queued by now; let the boxes catch up while frames still flow.
    for (int round = 0; round < 100; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    frameThreads.stop();
    const qint64 endBytes = residentBytes();
    QVERIFY2(oldManagerReached == 0,
             qPrintable(QStringLiteral("after a swap, a notification of the manager the boxes were "
                                       "unbound from made %1 tiles")
                            .arg(oldManagerReached)));

    int shown = 0;
    for (std::size_t box = 0; box < boxes.size(); ++box) {
        shown += boxes[box]->itemCount();
        QCOMPARE(boxes[box]->itemCount(), static_cast<int>(alive[box].size()));
        for (std::size_t index = 0; index < alive[box].size(); index += 37) {
            QVERIFY(boxes[box]->findItem(alive[box][index]) != nullptr);
        }
    }
    for (InputSourceBox* const box : boxes) {
        box->unsetInputSourceMgr();
    }

    QStringList unexpected;
    int missingTileWarnings = 0;
    for (const LoggedMessage& message : recorder->messages()) {
        // Qt's own notes (the offscreen platform's) come without a source file.
        if (message.type != QtWarningMsg || message.file.isEmpty()) {
            continue;
        }
        if (message.text == missingTileWarning) {
            ++missingTileWarnings;
        } else {
            unexpected << message.text;
        }
    }
    recorder.reset();

    const QString summary =
        QStringLiteral("%1 s: %2 tiles live over 4 boxes, %3 added and %4 deleted in %5 rounds, "
                       "%6 manager swaps, %7 frames handed in by %8 threads; resident memory "
                       "%9 after the warm-up (%10 ms), %11 at the end, %12 at the peak")
            .arg(seconds)
            .arg(shown)
            .arg(added)
            .arg(deleted)
            .arg(rounds)
            .arg(swaps)
            .arg(frameThreads.handedIn())
            .arg(frameThreadCount)
            .arg(megabytes(warmUpBytes))
            .arg(warmUpMs)
            .arg(megabytes(endBytes))
            .arg(megabytes(peakBytes));
    qInfo("%s", qPrintable(summary));
    QVERIFY2(unexpected.isEmpty(), qPrintable(unexpected.join(QLatin1Char('\n'))));
    QCOMPARE(missingTileWarnings, expectedMissingTileWarnings);
    QCOMPARE(shown, liveTiles);
    QVERIFY2(swaps >= 1 || seconds < 4, qPrintable(summary));
    QVERIFY2(frameThreads.handedIn() > 1000, qPrintable(summary));
    QVERIFY2(warmUpBytes > 0, qPrintable(summary));
    const qint64 allowed =
        warmUpBytes + static_cast<qint64>(growthShare * warmUpBytes) + growthAllowanceBytes;
    QVERIFY2(
        endBytes <= allowed,
        qPrintable(summary + QStringLiteral("; more than the %1 allowed").arg(megabytes(allowed))));
}

QTEST_MAIN(TestInputSourceBoxSoak)
#include "tst_inputsourceboxsoak.moc"
