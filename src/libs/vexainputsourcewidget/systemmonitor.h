// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QStringList>

namespace vexa::inputsource {

/// The system's own view of processes and load, which a load warning offers to open: the task
/// manager "taskmgr.exe" on Windows, Activity Monitor on macOS, and elsewhere the desktop's
/// system monitor when one is installed (the one of the running desktop first, as
/// XDG_CURRENT_DESKTOP names it, then any other known one found on PATH). Any thread.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT SystemMonitor
{
public:
    /// The program (a full path where it was looked up on PATH) and its arguments that open
    /// the monitor; empty when this system has none.
    /// Looked up anew at each call, so a monitor installed meanwhile is found.
    static QStringList command();

    /// Starts `command` as a detached process; false when it is empty or could not be started.
    static bool start(const QStringList& command);
};

} // namespace vexa::inputsource
