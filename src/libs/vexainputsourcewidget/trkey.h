// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QString>

namespace vexa::inputsource {

/// The text of `key` in the current language, looked up in the library's scopes ("InputSource",
/// "Widget"); the key itself when the language has none. Every visible text of the library goes
/// through here, so that the language files can be checked against the keys the code uses.
/// GUI thread.
VEXAINPUTSOURCEWIDGET_TEST_EXPORT QString trKey(const char* key);

} // namespace vexa::inputsource
