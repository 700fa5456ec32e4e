// SPDX-License-Identifier: MIT
#include <captureprobe/wgcsupport.h>

#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

class TestWgcSupport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void concurrentFirstCallsWhileOverriding();
    void systemAnswerIsStable();
    void overrideTrue();
    void overrideFalse();
    void resetReturnsToTheSystemAnswer();
};

void TestWgcSupport::cleanup()
{
    OverrideSupportedWGC(std::nullopt);
}

// First, so that the system is probed for the first time by several threads at once.
void TestWgcSupport::concurrentFirstCallsWhileOverriding()
{
    constexpr int readerCount = 4;
    std::atomic<int> ready{0};
    std::atomic<bool> overridden{false};
    std::atomic<int> staleAnswers{0};

    std::vector<std::thread> readers;
    for (int i = 0; i < readerCount; ++i) {
        readers.emplace_back([&] {
            ++ready;
            while (ready.load() < readerCount + 1) {
            }
            while (!overridden.load()) {
                IsSupportedWGC();
            }
            if (!IsSupportedWGC()) {
                ++staleAnswers;
            }
        });
    }
    std::thread overrider([&] {
        ++ready;
        while (ready.load() < readerCount + 1) {
        }
        for (int i = 0; i < 2000; ++i) {
            OverrideSupportedWGC(i % 3 == 0 ? std::nullopt : std::optional<bool>(i % 3 == 1));
        }
        OverrideSupportedWGC(true);
        overridden = true;
    });
    overrider.join();
    for (auto& reader : readers) {
        reader.join();
    }

    QCOMPARE(staleAnswers.load(), 0);
    QVERIFY(IsSupportedWGC());
}

void TestWgcSupport::systemAnswerIsStable()
{
    const bool first = IsSupportedWGC();
    QCOMPARE(IsSupportedWGC(), first);
#ifndef Q_OS_WIN
    QVERIFY(!first);
#endif
}

void TestWgcSupport::overrideTrue()
{
    OverrideSupportedWGC(true);
    QVERIFY(IsSupportedWGC());
    QVERIFY(IsSupportedWGC());
}

void TestWgcSupport::overrideFalse()
{
    OverrideSupportedWGC(true);
    OverrideSupportedWGC(false);
    QVERIFY(!IsSupportedWGC());
}

void TestWgcSupport::resetReturnsToTheSystemAnswer()
{
    const bool system = IsSupportedWGC();
    OverrideSupportedWGC(!system);
    QCOMPARE(IsSupportedWGC(), !system);
    OverrideSupportedWGC(std::nullopt);
    QCOMPARE(IsSupportedWGC(), system);
#ifndef Q_OS_WIN
    QVERIFY(!IsSupportedWGC());
#endif
}

QTEST_GUILESS_MAIN(TestWgcSupport)
#include "tst_wgcsupport.moc"
