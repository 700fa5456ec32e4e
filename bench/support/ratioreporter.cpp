// SPDX-License-Identifier: MIT
#include "support/ratioreporter.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <map>
#include <optional>
#include <ostream>
#include <utility>

namespace vexa::bench {

namespace {

struct Sample
{
    double realNs = 0;
    double cpuNs = 0;
    benchmark::UserCounters counters;
    std::string args;
};

Sample sampleOf(const benchmark::BenchmarkReporter::Run& run)
{
    // An aggregate stores its statistic multiplied by its count, so this division gives the
    // time per iteration for plain runs and aggregates alike.
    const double iterations =
        static_cast<double>(std::max<benchmark::IterationCount>(1, run.iterations));
    Sample sample;
    sample.realNs = run.real_accumulated_time / iterations * 1e9;
    sample.cpuNs = run.cpu_accumulated_time / iterations * 1e9;
    sample.counters = run.counters;
    sample.args = run.run_name.args;
    return sample;
}

double timeOf(const Sample& sample, RatioCheck::Clock clock)
{
    return clock == RatioCheck::Clock::Real ? sample.realNs : sample.cpuNs;
}

// The first of a run's arguments: 10000 of "10000/3", 64 of "size:64".
std::optional<double> firstArgument(const std::string& args)
{
    std::string first = args.substr(0, args.find('/'));
    if (const auto colon = first.find(':'); colon != std::string::npos) {
        first.erase(0, colon + 1);
    }
    char* end = nullptr;
    const double value = std::strtod(first.c_str(), &end);
    if (first.empty() || end != first.c_str() + first.size()) {
        return std::nullopt;
    }
    return value;
}

const char* clockName(RatioCheck::Clock clock)
{
    return clock == RatioCheck::Clock::Real ? "real time" : "CPU time";
}

} // namespace

struct RatioReporter::Impl
{
    explicit Impl(std::vector<RatioCheck> ratioChecks)
        : checks(std::move(ratioChecks))
    {}

    // A median reported by the library wins; without repetitions, or when the aggregates were
    // not reported, the median of the kept repetitions stands in.
    std::optional<double> medianTime(const std::string& name, RatioCheck::Clock clock,
                                     const Sample** representative) const
    {
        if (const auto median = medians.find(name); median != medians.end()) {
            *representative = &median->second;
            return timeOf(median->second, clock);
        }
        const auto found = repetitions.find(name);
        if (found == repetitions.end() || found->second.empty()) {
            return std::nullopt;
        }
        const std::vector<Sample>& samples = found->second;
        std::vector<double> times;
        times.reserve(samples.size());
        for (const Sample& sample : samples) {
            times.push_back(timeOf(sample, clock));
        }
        std::sort(times.begin(), times.end());
        *representative = &samples.front();
        const std::size_t middle = times.size() / 2;
        return times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2;
    }

    // Time per item for scaling checks, plain time otherwise.
    std::optional<double> timeFor(const RatioCheck& check, const std::string& name,
                                  std::string* problem) const
    {
        const Sample* sample = nullptr;
        const std::optional<double> time = medianTime(name, check.clock, &sample);
        if (!time) {
            *problem = "no successful run named " + name;
            return std::nullopt;
        }
        if (!check.perItem) {
            return time;
        }
        std::optional<double> items;
        if (const auto counter = sample->counters.find(check.itemsCounter);
            counter != sample->counters.end()) {
            items = counter->second.value;
        } else {
            items = firstArgument(sample->args);
        }
        if (!items || *items <= 0) {
            *problem = "no item count for " + name;
            return std::nullopt;
        }
        return *time / *items;
    }

    RatioResult evaluate(const RatioCheck& check) const
    {
        RatioResult result;
        result.check = check;
        const std::optional<double> measured = timeFor(check, check.measured, &result.problem);
        const std::optional<double> baseline =
            measured ? timeFor(check, check.baseline, &result.problem) : std::nullopt;
        if (!measured || !baseline || *baseline <= 0) {
            if (result.problem.empty()) {
                result.problem = "the baseline took no time";
            }
            return result;
        }
        result.evaluated = true;
        result.measuredNs = *measured;
        result.baselineNs = *baseline;
        result.ratio = *measured / *baseline;
        result.met = result.ratio <= check.maxRatio;
        return result;
    }

    static void print(std::ostream& out, const RatioResult& result)
    {
        const RatioCheck& check = result.check;
        const char* const per = check.perItem ? "per-item " : "";
        out << "ratio  " << per << check.measured << " / " << per << check.baseline;
        if (!result.evaluated) {
            out << ": not measured (" << result.problem << ")\n";
            return;
        }
        out << std::fixed << std::setprecision(2) << " = " << result.ratio << "  ("
            << std::setprecision(3) << result.measuredNs << " ns / " << result.baselineNs << " ns, "
            << clockName(check.clock) << "; target <= " << std::setprecision(2) << check.maxRatio
            << ": " << (result.met ? "met" : "MISSED") << ")\n";
        out << std::defaultfloat;
    }

    const std::vector<RatioCheck> checks;
    std::map<std::string, std::vector<Sample>> repetitions;
    std::map<std::string, Sample> medians;
    std::vector<RatioResult> results;
};

RatioReporter::RatioReporter(std::vector<RatioCheck> checks, OutputOptions options)
    : ConsoleReporter(options)
    , d(std::make_unique<Impl>(std::move(checks)))
{}

RatioReporter::~RatioReporter() = default;

void RatioReporter::ReportRuns(const std::vector<Run>& runs)
{
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.error_occurred || run.report_big_o || run.report_rms) {
            continue;
        }
        const std::string name = run.run_name.str();
        if (run.run_type == Run::RT_Iteration) {
            d->repetitions[name].push_back(sampleOf(run));
        } else if (run.aggregate_name == "median") {
            d->medians[name] = sampleOf(run);
        }
    }
}

void RatioReporter::Finalize()
{
    ConsoleReporter::Finalize();
    d->results.clear();
    std::ostream& out = GetOutputStream();
    if (!d->checks.empty()) {
        out << '\n';
    }
    for (const RatioCheck& check : d->checks) {
        d->results.push_back(d->evaluate(check));
        Impl::print(out, d->results.back());
    }
    out.flush();
}

const std::vector<RatioResult>& RatioReporter::results() const
{
    return d->results;
}

} // namespace vexa::bench
