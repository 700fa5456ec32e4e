// SPDX-License-Identifier: MIT
#include "tileindex.h"
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/testing/framefactory.h>

#include <QLabel>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using vexa::inputsource::InputSourceItem;
using vexa::inputsource::TileIndex;

class TestTileIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyIndexFindsNothing();
    void newestTileOfAnIdWins();
    void removingAnUnknownTileIsHarmless();
    void framesGoToTheNewestTileOnly();
    void removeWhileFramesFlowNeverReachesARemovedTile();
};

void TestTileIndex::emptyIndexFindsNothing()
{
    TileIndex index;
    QCOMPARE(index.find(1), nullptr);
    const auto frame = vexa::testing::FrameFactory::pattern(8, 8, 0, 0, 25.0);
    QVERIFY(!index.deliver(1, frame.get()));
}

void TestTileIndex::newestTileOfAnIdWins()
{
    InputSourceItem older(13);
    InputSourceItem newer(13);
    InputSourceItem other(13);
    TileIndex index;
    index.add(1, &older);
    index.add(2, &other);
    index.add(1, &newer);
    QCOMPARE(index.find(1), &newer);
    QCOMPARE(index.find(2), &other);

    index.remove(1, &newer);
    QCOMPARE(index.find(1), &older);
    index.remove(1, &older);
    QCOMPARE(index.find(1), nullptr);
    QCOMPARE(index.find(2), &other);

    index.clear();
    QCOMPARE(index.find(2), nullptr);
}

void TestTileIndex::removingAnUnknownTileIsHarmless()
{
    InputSourceItem filed(13);
    InputSourceItem stranger(13);
    TileIndex index;
    index.add(1, &filed);
    index.remove(1, &stranger);
    index.remove(5, &filed);
    QCOMPARE(index.find(1), &filed);
}

void TestTileIndex::framesGoToTheNewestTileOnly()
{
    InputSourceItem older(13);
    InputSourceItem newer(13);
    for (InputSourceItem* tile : {&older, &newer}) {
        tile->setOnline(true);
        tile->setResolution(QStringLiteral("64*36"), QStringLiteral("0"));
    }
    TileIndex index;
    index.add(1, &older);
    index.add(1, &newer);
    const auto frame = vexa::testing::FrameFactory::pattern(64, 36, 0, 0, 60.0);
    QVERIFY(index.deliver(1, frame.get()));
    auto rateText = [](const InputSourceItem& tile) {
        return tile.findChild<QLabel*>(QStringLiteral("infoLabel"))->text();
    };
    QTRY_VERIFY(rateText(newer).endsWith(QStringLiteral("@60fps")));
    QVERIFY(!rateText(older).endsWith(QStringLiteral("@60fps")));
}

void TestTileIndex::removeWhileFramesFlowNeverReachesARemovedTile()
{
    constexpr int rounds = 300;
    TileIndex index;
    std::atomic<bool> stop{false};
    std::atomic<long> delivered{0};
    const auto frame = vexa::testing::FrameFactory::pattern(32, 18, 0, 0, 25.0);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([&] {
            while (!stop.load()) {
                if (index.deliver(7, frame.get())) {
                    ++delivered;
                }
            }
        });
    }
    // Each tile is destroyed right after removal: a frame thread still inside it, or reaching
    // it afterwards, would use freed memory, which the sanitizer builds report.
    for (int round = 0; round < rounds; ++round) {
        auto tile = std::make_unique<InputSourceItem>(13);
        index.add(7, tile.get());
        QCoreApplication::processEvents();
        index.remove(7, tile.get());
        tile.reset();
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(index.find(7), nullptr);
    QVERIFY(delivered.load() > 0);
}

QTEST_MAIN(TestTileIndex)
#include "tst_tileindex.moc"
