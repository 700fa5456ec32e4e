// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <vexa/diagnostics/warning.h>

#include <QLoggingCategory>

namespace vexa::inputsource {

// The one category of every warning the library writes, "vexa.inputsource", so that a host
// enables or silences them with QT_LOGGING_RULES. Exported to the tests, which instantiate the
// library's warning templates (runOnRuntime, ManagerAccess::call) in their own code.
VEXAINPUTSOURCEWIDGET_TEST_EXPORT const QLoggingCategory& lcInputSource();

} // namespace vexa::inputsource

// VEXA_WARNING and VEXA_HERE read this where they are written; any file of the library that
// includes this header logs into the library's category.
#undef VEXA_LOGGING_CATEGORY
#define VEXA_LOGGING_CATEGORY ::vexa::inputsource::lcInputSource
