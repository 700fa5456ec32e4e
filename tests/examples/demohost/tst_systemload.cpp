// SPDX-License-Identifier: MIT
#include "systemload.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using demohost::SystemLoad;

namespace {

// A /proc/stat of a two-core machine, as recent kernels write it.
const QByteArray statText = "cpu  4705 356 584 3699 23 0 15 7 0 0\n"
                            "cpu0 1393 280 188 1841 12 0 8 3 0 0\n"
                            "cpu1 3312 76 396 1858 11 0 7 4 0 0\n"
                            "intr 114930548 113199788 3 0 5 263 0 4 [...]\n"
                            "ctxt 1990473\n"
                            "btime 1062191376\n";

const QByteArray meminfoText = "MemTotal:       16000000 kB\n"
                               "MemFree:         1000000 kB\n"
                               "MemAvailable:    4000000 kB\n"
                               "Buffers:          200000 kB\n";

bool write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size();
}

} // namespace

class TestSystemLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theMachinesCpuLineIsSummed();
    void malformedOrMissingCpuLinesAreNone_data();
    void malformedOrMissingCpuLinesAreNone();
    void olderKernelsWithFewerStatesAreRead();
    void cpuPercentIsTheBusyShareOfTheTimeThatPassed();
    void cpuPercentIsUnknownWhenNoTimePassedOrCountersWentBack();
    void memoryPercentIsWhatIsNotAvailable();
    void memoryPercentIsUnknownWithoutBothFigures_data();
    void memoryPercentIsUnknownWithoutBothFigures();
    void readsTheFilesItIsGiven();
    void unreadableFilesGiveUnknown();
    void thisMachineReadsWithinRange();
};

void TestSystemLoad::theMachinesCpuLineIsSummed()
{
    const auto times = SystemLoad::parseCpuTimes(statText);
    QVERIFY(times.has_value());
    // user..steal; guest and guest_nice are already part of user and nice.
    QCOMPARE(times->total, uint64_t(4705 + 356 + 584 + 3699 + 23 + 0 + 15 + 7));
    // Idle and iowait are the time not spent working.
    QCOMPARE(times->busy, times->total - uint64_t(3699 + 23));
}

void TestSystemLoad::malformedOrMissingCpuLinesAreNone_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("only cores") << QByteArray("cpu0 1 2 3 4 5 6 7 8\n");
    QTest::newRow("too few states") << QByteArray("cpu 1 2 3\n");
    QTest::newRow("not a number") << QByteArray("cpu 1 2 x 4 5 6 7 8\n");
    QTest::newRow("negative") << QByteArray("cpu 1 2 -3 4 5 6 7 8\n");
}

void TestSystemLoad::malformedOrMissingCpuLinesAreNone()
{
    QFETCH(QByteArray, text);
    QVERIFY(!SystemLoad::parseCpuTimes(text).has_value());
}

void TestSystemLoad::olderKernelsWithFewerStatesAreRead()
{
    const auto times = SystemLoad::parseCpuTimes("cpu 10 0 10 80\n");
    QVERIFY(times.has_value());
    QCOMPARE(times->total, uint64_t(100));
    QCOMPARE(times->busy, uint64_t(20));
}

void TestSystemLoad::cpuPercentIsTheBusyShareOfTheTimeThatPassed()
{
    const SystemLoad::CpuTimes before{1000, 200};
    QCOMPARE(SystemLoad::cpuPercent(before, {1200, 250}), 25.0);
    QCOMPARE(SystemLoad::cpuPercent(before, {1100, 300}), 100.0);
    QCOMPARE(SystemLoad::cpuPercent(before, {1400, 200}), 0.0);
    // Idle going back while busy advances cannot make more than all of the time.
    QCOMPARE(SystemLoad::cpuPercent(before, {1100, 400}), 100.0);
}

void TestSystemLoad::cpuPercentIsUnknownWhenNoTimePassedOrCountersWentBack()
{
    const SystemLoad::CpuTimes before{1000, 200};
    QCOMPARE(SystemLoad::cpuPercent(before, before), SystemLoad::unknown);
    QCOMPARE(SystemLoad::cpuPercent(before, {900, 250}), SystemLoad::unknown);
    QCOMPARE(SystemLoad::cpuPercent(before, {1200, 100}), SystemLoad::unknown);
}

void TestSystemLoad::memoryPercentIsWhatIsNotAvailable()
{
    QCOMPARE(SystemLoad::memoryPercent(meminfoText), 75.0);
    QCOMPARE(SystemLoad::memoryPercent("MemAvailable: 10 kB\nMemTotal: 10 kB\n"), 0.0);
    // More available than there is, as a racy read might give: nothing is in use.
    QCOMPARE(SystemLoad::memoryPercent("MemTotal: 10 kB\nMemAvailable: 12 kB\n"), 0.0);
}

void TestSystemLoad::memoryPercentIsUnknownWithoutBothFigures_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no MemAvailable (kernels before 3.14)")
        << QByteArray("MemTotal: 16000000 kB\nMemFree: 1000000 kB\n");
    QTest::newRow("no MemTotal") << QByteArray("MemAvailable: 4000000 kB\n");
    QTest::newRow("zero total") << QByteArray("MemTotal: 0 kB\nMemAvailable: 0 kB\n");
    QTest::newRow("not a number") << QByteArray("MemTotal: lots kB\nMemAvailable: 1 kB\n");
    // A key that only starts like the wanted one is another key.
    QTest::newRow("look-alike key") << QByteArray("MemTotalX: 10 kB\nMemAvailable: 1 kB\n");
}

void TestSystemLoad::memoryPercentIsUnknownWithoutBothFigures()
{
    QFETCH(QByteArray, text);
    QCOMPARE(SystemLoad::memoryPercent(text), SystemLoad::unknown);
}

void TestSystemLoad::readsTheFilesItIsGiven()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString stat = dir.filePath(QStringLiteral("stat"));
    const QString meminfo = dir.filePath(QStringLiteral("meminfo"));
    QVERIFY(write(stat, "cpu 100 0 100 800 0 0 0 0\n"));
    QVERIFY(write(meminfo, meminfoText));

    SystemLoad load(stat, meminfo);
    QCOMPARE(load.memoryPercent(), 75.0);
    // The first reading covers the time since construction; each later one since the last.
    QVERIFY(write(stat, "cpu 150 0 150 900 0 0 0 0\n"));
    QCOMPARE(load.cpuPercent(), 50.0);
    QVERIFY(write(stat, "cpu 150 0 150 1000 0 0 0 0\n"));
    QCOMPARE(load.cpuPercent(), 0.0);
    // No time passed: nothing to tell.
    QCOMPARE(load.cpuPercent(), SystemLoad::unknown);
}

void TestSystemLoad::unreadableFilesGiveUnknown()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    SystemLoad missing(dir.filePath(QStringLiteral("stat")), dir.filePath(QStringLiteral("mem")));
    QCOMPARE(missing.cpuPercent(), SystemLoad::unknown);
    QCOMPARE(missing.memoryPercent(), SystemLoad::unknown);

    SystemLoad none{QString(), QString()};
    QCOMPARE(none.cpuPercent(), SystemLoad::unknown);
    QCOMPARE(none.memoryPercent(), SystemLoad::unknown);

    // A file that turns up later gives a baseline first, and figures from the next reading.
    const QString stat = dir.filePath(QStringLiteral("stat"));
    QVERIFY(write(stat, "cpu 100 0 100 800\n"));
    SystemLoad late(stat, QString());
    QVERIFY(QFile::remove(stat));
    QCOMPARE(late.cpuPercent(), SystemLoad::unknown);
    QVERIFY(write(stat, "cpu 100 0 100 800\n"));
    QCOMPARE(late.cpuPercent(), SystemLoad::unknown);
    QVERIFY(write(stat, "cpu 200 0 100 900\n"));
    QCOMPARE(late.cpuPercent(), 50.0);
}

void TestSystemLoad::thisMachineReadsWithinRange()
{
    SystemLoad load;
    QTest::qWait(50);
    const double cpu = load.cpuPercent();
    const double memory = load.memoryPercent();
#ifdef Q_OS_LINUX
    QVERIFY2(memory > 0.0 && memory <= 100.0, qPrintable(QString::number(memory)));
    QVERIFY2(cpu == SystemLoad::unknown || (cpu >= 0.0 && cpu <= 100.0),
             qPrintable(QString::number(cpu)));
#else
    QCOMPARE(cpu, SystemLoad::unknown);
    QCOMPARE(memory, SystemLoad::unknown);
#endif
}

QTEST_GUILESS_MAIN(TestSystemLoad)

#include "tst_systemload.moc"
