#pragma once

#include <QString>

namespace demohost {

/// The demo window's own text for `key` (context "DemoHost", comment "Window") in the current
/// language of the library's translator, which loads the demo's language files beside the
/// library's. GUI thread.
QString windowText(const char* key);

} // namespace demohost
