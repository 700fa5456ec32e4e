// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/testing/framefactory.h>

#include <QElapsedTimer>
#include <QLabel>
#include <QtTest>

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <thread>
#include <vector>

using vexa::inputsource::InputSourceItem;
using vexa::testing::FrameFactory;

namespace {

constexpr int streamKind = 13;
constexpr int frameThreadCount = 4;
constexpr std::size_t maxLiveTiles = 24;
constexpr qint64 runMs = 2500;
constexpr int maxIterations = 4000;

// The tiles that frame threads may reach, as a box keeps them: a frame thread holds the lock
// shared for the whole updateFrame() call, the GUI thread holds it exclusively to add a tile
// and to remove and delete one, so no tile dies while a thread is inside it. Only the GUI
// thread changes the list, so it reads it without the lock.
struct Registry
{
    std::shared_mutex lock;
    // glibc's rwlock lets new readers in while a writer waits, so frame threads taking turns at
    // the shared lock could keep the GUI thread out indefinitely. The writer announces itself
    // and readers hold back until it is through.
    std::atomic<bool> writerWaiting{false};
    std::vector<InputSourceItem*> tiles;

    std::unique_lock<std::shared_mutex> lockForWriting()
    {
        writerWaiting = true;
        std::unique_lock<std::shared_mutex> guard(lock);
        writerWaiting = false;
        return guard;
    }

    std::shared_lock<std::shared_mutex> lockForReading()
    {
        while (writerWaiting.load()) {
            std::this_thread::yield();
        }
        return std::shared_lock<std::shared_mutex>(lock);
    }
};

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

QLabel* infoLabel(const InputSourceItem& tile)
{
    return tile.findChild<QLabel*>(QStringLiteral("infoLabel"));
}

} // namespace

class TestInputSourceItemStress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void framesFromSeveralThreadsWhileTilesComeAndGo();
};

void TestInputSourceItemStress::framesFromSeveralThreadsWhileTilesComeAndGo()
{
    QWidget host;
    host.resize(6 * 176, 4 * 150);
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));

    Registry registry;
    std::atomic<bool> stop{false};
    std::atomic<long> framesHandedIn{0};
    std::vector<std::thread> frameThreads;
    for (int index = 0; index < frameThreadCount; ++index) {
        frameThreads.emplace_back([&registry, &stop, &framesHandedIn, index] {
            const auto frames = makeFrames(index * 90);
            std::mt19937 random(static_cast<unsigned>(index) + 1U);
            std::size_t next = 0;
            while (!stop.load()) {
                {
                    const std::shared_lock<std::shared_mutex> guard = registry.lockForReading();
                    if (!registry.tiles.empty()) {
                        InputSourceItem* const tile =
                            registry.tiles[random() % registry.tiles.size()];
                        tile->updateFrame(frames[next++ % frames.size()].get());
                        ++framesHandedIn;
                    }
                }
                std::this_thread::yield();
            }
        });
    }

    const int kinds[] = {streamKind, streamKind, 7, 8, 9};
    std::mt19937 random(20240229U);
    int created = 0;
    int destroyed = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    int iterations = 0;
    for (; iterations < maxIterations && elapsed.elapsed() < runMs; ++iterations) {
        const std::size_t live = registry.tiles.size();
        const bool grow = live < 2 || (live < maxLiveTiles && random() % 2 == 0);
        if (grow) {
            auto* const tile = new InputSourceItem(kinds[random() % 5], &host);
            tile->setId(static_cast<uint64_t>(created));
            tile->move(static_cast<int>(created % 6) * 176,
                       static_cast<int>(created / 6 % 4) * 150);
            tile->setOnline(true);
            tile->setResolution(QStringLiteral("1920*1080"), QStringLiteral("0"));
            tile->setPreviewChecked(false);
            tile->show();
            const std::unique_lock<std::shared_mutex> guard = registry.lockForWriting();
            registry.tiles.push_back(tile);
            ++created;
        } else {
            const std::unique_lock<std::shared_mutex> guard = registry.lockForWriting();
            const std::size_t victim = random() % registry.tiles.size();
            delete registry.tiles[victim];
            registry.tiles.erase(registry.tiles.begin() + static_cast<std::ptrdiff_t>(victim));
            ++destroyed;
        }

        // The GUI thread keeps writing what the frame path must not read.
        InputSourceItem* const poked = registry.tiles[random() % registry.tiles.size()];
        switch (random() % 4) {
        case 0:
            poked->setResolution(QStringLiteral("1280*720"), QStringLiteral("50"));
            break;
        case 1:
            poked->setOnline(!poked->isOnline());
            break;
        case 2:
            poked->setPreviewChecked(random() % 2 == 0);
            break;
        default:
            poked->translateLanguage();
            break;
        }
        QCoreApplication::processEvents();
    }

    stop = true;
    for (std::thread& thread : frameThreads) {
        thread.join();
    }
    qInfo("%d iterations in %lld ms: %d tiles created, %d destroyed, %ld frames handed in",
          iterations, static_cast<long long>(elapsed.elapsed()), created, destroyed,
          framesHandedIn.load());
    QVERIFY2(created > 20 && destroyed > 10,
             qPrintable(QStringLiteral("%1 created, %2 destroyed").arg(created).arg(destroyed)));
    QVERIFY(framesHandedIn.load() > 100);

    // After the storm every stream tile still follows its frames.
    const auto last = FrameFactory::pattern(32, 18, 9, 0, 50.0);
    std::vector<InputSourceItem*> streams;
    for (InputSourceItem* tile : registry.tiles) {
        tile->setOnline(true);
        if (tile->kind() == streamKind) {
            streams.push_back(tile);
        }
    }
    std::thread pusher([&streams, &last] {
        for (InputSourceItem* tile : streams) {
            tile->updateFrame(last.get());
        }
    });
    pusher.join();
    for (InputSourceItem* tile : streams) {
        QTRY_VERIFY2(infoLabel(*tile)->text().endsWith(QStringLiteral("@50fps")),
                     qPrintable(infoLabel(*tile)->text()));
    }
}

QTEST_MAIN(TestInputSourceItemStress)
#include "tst_inputsourceitemstress.moc"
