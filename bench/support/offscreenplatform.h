// SPDX-License-Identifier: MIT
#pragma once

namespace vexa::bench {

/// Makes Qt use its offscreen platform unless QT_QPA_PLATFORM already names one, so that a
/// benchmark of widgets runs without a display. Call before the QApplication is created.
void preferOffscreenPlatform();

} // namespace vexa::bench
