// SPDX-License-Identifier: MIT
#include "support/ratioreporter.h"

#include <QTest>

#include <sstream>
#include <string>
#include <vector>

using benchmark::BenchmarkReporter;
using vexa::bench::RatioCheck;
using vexa::bench::RatioReporter;
using vexa::bench::RatioResult;

namespace {

using Run = BenchmarkReporter::Run;

// A run of `iterations` iterations that took `realNs` and `cpuNs` nanoseconds each.
Run iterationRun(const std::string& function, const std::string& args, double realNs, double cpuNs,
                 benchmark::IterationCount iterations = 1000)
{
    Run run;
    run.run_name.function_name = function;
    run.run_name.args = args;
    run.iterations = iterations;
    run.real_accumulated_time = realNs * 1e-9 * static_cast<double>(iterations);
    run.cpu_accumulated_time = cpuNs * 1e-9 * static_cast<double>(iterations);
    return run;
}

// An aggregate as the library reports it: the statistic multiplied by the repetition count.
Run aggregateRun(const std::string& function, const std::string& args, const std::string& aggregate,
                 double ns, int repetitions)
{
    Run run = iterationRun(function, args, ns, ns, repetitions);
    run.run_type = Run::RT_Aggregate;
    run.aggregate_name = aggregate;
    return run;
}

struct Reported
{
    std::vector<RatioResult> results;
    std::string output;
};

Reported report(std::vector<RatioCheck> checks, const std::vector<std::vector<Run>>& batches)
{
    std::ostringstream output;
    RatioReporter reporter(std::move(checks), RatioReporter::OO_None);
    reporter.SetOutputStream(&output);
    reporter.SetErrorStream(&output);
    for (const std::vector<Run>& batch : batches) {
        reporter.ReportRuns(batch);
    }
    reporter.Finalize();
    return {reporter.results(), output.str()};
}

} // namespace

class TestRatioReporter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versusComparesRealTimeByDefault();
    void versusCanCompareCpuTime();
    void scalingDividesByTheItemsCounter();
    void scalingFallsBackToTheFirstArgument();
    void scalingWithoutItemCountIsNotEvaluated();
    void medianAggregateWins();
    void medianOfRepetitionsWithoutAggregates();
    void failedRunsAreIgnored();
    void missingRunIsNotEvaluated();
    void printsOneLinePerCheckInOrder();
};

void TestRatioReporter::versusComparesRealTimeByDefault()
{
    const Reported reported = report(
        {RatioCheck::versus("BM_Copy/64", "BM_Memcpy/64", 1.15)},
        {{iterationRun("BM_Copy", "64", 107, 50)}, {iterationRun("BM_Memcpy", "64", 100, 100)}});
    QCOMPARE(reported.results.size(), std::size_t(1));
    const RatioResult& result = reported.results.front();
    QVERIFY(result.evaluated);
    QCOMPARE(result.measuredNs, 107.0);
    QCOMPARE(result.baselineNs, 100.0);
    QCOMPARE(result.ratio, 1.07);
    QVERIFY(result.met);
}

void TestRatioReporter::versusCanCompareCpuTime()
{
    const Reported reported =
        report({RatioCheck::versus("BM_Dispatch", "BM_Task", 1.5, RatioCheck::Clock::Cpu)},
               {{iterationRun("BM_Dispatch", "", 100, 40), iterationRun("BM_Task", "", 100, 20)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(result.evaluated);
    QCOMPARE(result.ratio, 2.0);
    QVERIFY(!result.met);
}

void TestRatioReporter::scalingDividesByTheItemsCounter()
{
    Run small = iterationRun("BM_Add", "100", 1000, 1000);
    small.counters["items"] = 100;
    Run large = iterationRun("BM_Add", "10000", 120000, 120000);
    large.counters["items"] = 10000;
    const Reported reported =
        report({RatioCheck::scaling("BM_Add/10000", "BM_Add/100", 1.3)}, {{small, large}});
    const RatioResult& result = reported.results.front();
    QVERIFY(result.evaluated);
    QCOMPARE(result.measuredNs, 12.0);
    QCOMPARE(result.baselineNs, 10.0);
    QCOMPARE(result.ratio, 1.2);
    QVERIFY(result.met);
}

void TestRatioReporter::scalingFallsBackToTheFirstArgument()
{
    const Reported reported =
        report({RatioCheck::scaling("BM_Update/n:1000/4", "BM_Update/n:10/4", 1.3)},
               {{iterationRun("BM_Update", "n:10/4", 50, 50),
                 iterationRun("BM_Update", "n:1000/4", 7000, 7000)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(result.evaluated);
    QCOMPARE(result.measuredNs, 7.0);
    QCOMPARE(result.baselineNs, 5.0);
    QCOMPARE(result.ratio, 1.4);
    QVERIFY(!result.met);
}

void TestRatioReporter::scalingWithoutItemCountIsNotEvaluated()
{
    const Reported reported =
        report({RatioCheck::scaling("BM_Large", "BM_Small", 1.3)},
               {{iterationRun("BM_Large", "", 10, 10), iterationRun("BM_Small", "", 10, 10)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(!result.evaluated);
    QCOMPARE(result.problem, std::string("no item count for BM_Large"));
}

void TestRatioReporter::medianAggregateWins()
{
    const Reported reported = report(
        {RatioCheck::versus("BM_A", "BM_B", 2.0)},
        {{iterationRun("BM_A", "", 100, 100), iterationRun("BM_A", "", 300, 300),
          iterationRun("BM_A", "", 500, 500), aggregateRun("BM_A", "", "mean", 300, 3),
          aggregateRun("BM_A", "", "median", 240, 3), aggregateRun("BM_A", "", "stddev", 200, 3)},
         {aggregateRun("BM_B", "", "median", 200, 3)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(result.evaluated);
    QCOMPARE(result.measuredNs, 240.0);
    QCOMPARE(result.baselineNs, 200.0);
    QCOMPARE(result.ratio, 1.2);
}

void TestRatioReporter::medianOfRepetitionsWithoutAggregates()
{
    const Reported reported =
        report({RatioCheck::versus("BM_A", "BM_B", 2.0)},
               {{iterationRun("BM_A", "", 500, 500), iterationRun("BM_A", "", 100, 100),
                 iterationRun("BM_A", "", 300, 300)},
                {iterationRun("BM_B", "", 100, 100), iterationRun("BM_B", "", 400, 400)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(result.evaluated);
    QCOMPARE(result.measuredNs, 300.0);
    QCOMPARE(result.baselineNs, 250.0);
}

void TestRatioReporter::failedRunsAreIgnored()
{
    Run failed = iterationRun("BM_A", "", 1, 1);
    failed.error_occurred = true;
    failed.error_message = "wrong result";
    const Reported reported = report({RatioCheck::versus("BM_A", "BM_B", 2.0)},
                                     {{failed}, {iterationRun("BM_B", "", 100, 100)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(!result.evaluated);
    QCOMPARE(result.problem, std::string("no successful run named BM_A"));
}

void TestRatioReporter::missingRunIsNotEvaluated()
{
    const Reported reported = report({RatioCheck::versus("BM_A", "BM_Missing", 2.0)},
                                     {{iterationRun("BM_A", "", 100, 100)}});
    const RatioResult& result = reported.results.front();
    QVERIFY(!result.evaluated);
    QCOMPARE(result.problem, std::string("no successful run named BM_Missing"));
    QVERIFY(reported.output.find("ratio  BM_A / BM_Missing: not measured (no successful run "
                                 "named BM_Missing)\n") != std::string::npos);
}

void TestRatioReporter::printsOneLinePerCheckInOrder()
{
    Run small = iterationRun("BM_Add", "100", 1000, 1000);
    Run large = iterationRun("BM_Add", "10000", 105000, 105000);
    const Reported reported =
        report({RatioCheck::versus("BM_Copy", "BM_Memcpy", 1.15),
                RatioCheck::scaling("BM_Add/10000", "BM_Add/100", 1.3, RatioCheck::Clock::Cpu)},
               {{iterationRun("BM_Copy", "", 214, 214), iterationRun("BM_Memcpy", "", 100, 100)},
                {small, large}});
    const std::string expected =
        "ratio  BM_Copy / BM_Memcpy = 2.14  (214.000 ns / 100.000 ns, real time; "
        "target <= 1.15: MISSED)\n"
        "ratio  per-item BM_Add/10000 / per-item BM_Add/100 = 1.05  (10.500 ns / 10.000 ns, "
        "CPU time; target <= 1.30: met)\n";
    const std::size_t ratios = reported.output.find("ratio  ");
    QVERIFY(ratios != std::string::npos);
    QCOMPARE(reported.output.substr(ratios), expected);
}

QTEST_APPLESS_MAIN(TestRatioReporter)
#include "tst_ratioreporter.moc"
