#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

namespace vexa::inputsource {

/// The library's version as "major.minor.patch", as it was built. Any thread.
VEXAINPUTSOURCEWIDGET_EXPORT const char* libraryVersion();

} // namespace vexa::inputsource
