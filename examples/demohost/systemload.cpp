// SPDX-License-Identifier: MIT
#include "systemload.h"

#include <QFile>
#include <QList>

#include <algorithm>
#include <utility>

namespace demohost {

namespace {

// user, nice, system, idle, iowait, irq, softirq, steal: the states that add up to the time
// that passed. Older kernels stop after fewer; the first four are always there.
constexpr int countedStates = 8;
constexpr int requiredStates = 4;
constexpr int idleState = 3;
constexpr int iowaitState = 4;

// The value of a "Key:   1234 kB" line, or none.
std::optional<uint64_t> meminfoValue(const QByteArray& meminfo, const QByteArray& key)
{
    for (const QByteArray& line : meminfo.split('\n')) {
        if (!line.startsWith(key + ':')) {
            continue;
        }
        const QList<QByteArray> words = line.mid(key.size() + 1).simplified().split(' ');
        bool ok = false;
        const uint64_t value = words.value(0).toULongLong(&ok);
        return ok ? std::optional<uint64_t>(value) : std::nullopt;
    }
    return std::nullopt;
}

QByteArray read(const QString& path)
{
    QFile file(path);
    // An empty path names no file. /proc files report a size of 0, and readAll() reads on to
    // the end regardless.
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

double clampedPercent(double part, double whole)
{
    return std::clamp(part * 100.0 / whole, 0.0, 100.0);
}

} // namespace

SystemLoad::SystemLoad()
#ifdef Q_OS_LINUX
    : SystemLoad(QStringLiteral("/proc/stat"), QStringLiteral("/proc/meminfo"))
#else
    : SystemLoad(QString(), QString())
#endif
{}

SystemLoad::SystemLoad(QString statPath, QString meminfoPath)
    : m_statPath(std::move(statPath))
    , m_meminfoPath(std::move(meminfoPath))
    , m_previous(parseCpuTimes(read(m_statPath)))
{}

double SystemLoad::cpuPercent()
{
    const std::optional<CpuTimes> now = parseCpuTimes(read(m_statPath));
    const std::optional<CpuTimes> before = std::exchange(m_previous, now);
    if (!now || !before) {
        return unknown;
    }
    return cpuPercent(*before, *now);
}

double SystemLoad::memoryPercent() const
{
    return memoryPercent(read(m_meminfoPath));
}

std::optional<SystemLoad::CpuTimes> SystemLoad::parseCpuTimes(const QByteArray& stat)
{
    for (const QByteArray& line : stat.split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        // The machine's line, not one of the "cpu0", "cpu1"... lines of single cores.
        if (words.value(0) != "cpu") {
            continue;
        }
        CpuTimes times;
        uint64_t idle = 0;
        const int states = std::min<int>(countedStates, words.size() - 1);
        if (states < requiredStates) {
            return std::nullopt;
        }
        for (int state = 0; state < states; ++state) {
            bool ok = false;
            const uint64_t ticks = words[state + 1].toULongLong(&ok);
            if (!ok) {
                return std::nullopt;
            }
            times.total += ticks;
            if (state == idleState || state == iowaitState) {
                idle += ticks;
            }
        }
        times.busy = times.total - idle;
        return times;
    }
    return std::nullopt;
}

double SystemLoad::cpuPercent(const CpuTimes& before, const CpuTimes& after)
{
    if (after.total <= before.total || after.busy < before.busy) {
        return unknown;
    }
    return clampedPercent(static_cast<double>(after.busy - before.busy),
                          static_cast<double>(after.total - before.total));
}

double SystemLoad::memoryPercent(const QByteArray& meminfo)
{
    const std::optional<uint64_t> total = meminfoValue(meminfo, "MemTotal");
    const std::optional<uint64_t> available = meminfoValue(meminfo, "MemAvailable");
    if (!total || !available || *total == 0) {
        return unknown;
    }
    const double used = *available >= *total ? 0.0 : static_cast<double>(*total - *available);
    return clampedPercent(used, static_cast<double>(*total));
}

} // namespace demohost
