// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>
#include <vexainputsourcewidget/vexainputsourcewidget_version.h>

namespace vexa::inputsource {

/// The library's version as "major.minor.patch", as it was built: the one the host runs with,
/// which may be newer than VEXAINPUTSOURCEWIDGET_VERSION_STRING, the one it was compiled
/// against. Any thread.
VEXAINPUTSOURCEWIDGET_EXPORT const char* libraryVersion();

} // namespace vexa::inputsource
