// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

namespace demohost {

/// The machine's own CPU and memory use, as the host's web pages would load them: read from
/// the kernel's /proc/stat (CPU time since the previous reading) and /proc/meminfo (memory not
/// available to new programs). Where the files cannot be read, as on systems without /proc, a
/// reading is unknown (-1).
///
/// Not thread-safe: one thread reads (the manager's runtime thread). The parsing and the
/// percentage maths are static, for the tests.
class SystemLoad
{
public:
    /// What a reading is when the system does not tell.
    static constexpr double unknown = -1.0;

    /// The CPU time counters of the "cpu" line of /proc/stat, in clock ticks.
    struct CpuTimes
    {
        /// Every state the counters name: user, nice, system, idle, iowait, irq, softirq,
        /// steal (guest time is already counted in user and nice).
        uint64_t total = 0;
        /// The part of it spent neither idle nor waiting for input or output.
        uint64_t busy = 0;
    };

    /// Reads the Linux files; elsewhere every reading is unknown.
    SystemLoad();

    /// Reads `statPath` and `meminfoPath` instead; an empty path is never readable. The CPU
    /// counters are read once here, so that the first cpuPercent() covers the time since.
    SystemLoad(QString statPath, QString meminfoPath);

    /// CPU use in percent (0 to 100) since the previous call (or construction); unknown when
    /// the counters cannot be read or did not advance.
    double cpuPercent();

    /// Memory in use in percent (0 to 100) now; unknown when it cannot be read.
    double memoryPercent() const;

    /// The counters of the "cpu" line of a /proc/stat text; none without a well-formed one.
    static std::optional<CpuTimes> parseCpuTimes(const QByteArray& stat);

    /// CPU use between two readings, in percent, 0 to 100; unknown when the total did not
    /// advance or went back (a counter reset).
    static double cpuPercent(const CpuTimes& before, const CpuTimes& after);

    /// Memory in use in a /proc/meminfo text: MemTotal less MemAvailable, in percent of
    /// MemTotal; unknown without both or with a zero total.
    static double memoryPercent(const QByteArray& meminfo);

private:
    QString m_statPath;
    QString m_meminfoPath;
    std::optional<CpuTimes> m_previous;
};

} // namespace demohost
