// SPDX-License-Identifier: MIT
#include "systemmonitor.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <algorithm>
#include <utility>
#include <vector>

namespace vexa::inputsource {

namespace {

#if !defined(Q_OS_WIN) && !defined(Q_OS_MACOS)
// The monitors of the common desktops, each with the desktop names that XDG_CURRENT_DESKTOP
// uses for it.
const std::vector<std::pair<QStringList, QString>>& knownMonitors()
{
    static const std::vector<std::pair<QStringList, QString>> monitors = {
        {{QStringLiteral("GNOME"), QStringLiteral("Unity"), QStringLiteral("Budgie")},
         QStringLiteral("gnome-system-monitor")},
        {{QStringLiteral("KDE")}, QStringLiteral("plasma-systemmonitor")},
        {{QStringLiteral("KDE")}, QStringLiteral("ksysguard")},
        {{QStringLiteral("XFCE")}, QStringLiteral("xfce4-taskmanager")},
        {{QStringLiteral("MATE")}, QStringLiteral("mate-system-monitor")},
        {{QStringLiteral("LXDE"), QStringLiteral("LXQt")}, QStringLiteral("lxtask")},
    };
    return monitors;
}

// The full path, so that the action started later does not depend on PATH then.
QString installedMonitor()
{
    const QStringList desktops = QProcessEnvironment::systemEnvironment()
                                     .value(QStringLiteral("XDG_CURRENT_DESKTOP"))
                                     .split(QLatin1Char(':'), Qt::SkipEmptyParts);
    // The running desktop's own monitor first: it is the one the operator knows.
    for (const auto& [owners, program] : knownMonitors()) {
        const bool own =
            std::any_of(owners.begin(), owners.end(), [&desktops](const QString& owner) {
                return desktops.contains(owner, Qt::CaseInsensitive);
            });
        const QString found = own ? QStandardPaths::findExecutable(program) : QString();
        if (!found.isEmpty()) {
            return found;
        }
    }
    for (const auto& entry : knownMonitors()) {
        const QString found = QStandardPaths::findExecutable(entry.second);
        if (!found.isEmpty()) {
            return found;
        }
    }
    return QString();
}
#endif

} // namespace

QStringList SystemMonitor::command()
{
#if defined(Q_OS_WIN)
    return {QStringLiteral("taskmgr.exe")};
#elif defined(Q_OS_MACOS)
    return {QStringLiteral("open"), QStringLiteral("-a"), QStringLiteral("Activity Monitor")};
#else
    const QString program = installedMonitor();
    return program.isEmpty() ? QStringList() : QStringList{program};
#endif
}

bool SystemMonitor::start(const QStringList& command)
{
    if (command.isEmpty()) {
        return false;
    }
    return QProcess::startDetached(command.front(), command.mid(1));
}

} // namespace vexa::inputsource
