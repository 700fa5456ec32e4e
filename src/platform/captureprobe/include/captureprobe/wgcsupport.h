// SPDX-License-Identifier: MIT
#pragma once

#include <captureprobe/quandel_captureprobe_export.h>

#include <optional>

/// True only where the system's window capture API (Windows Graphics Capture) can be used:
/// Windows 10 version 1903 (build 18362) or later. False on every other system. An answer set
/// with OverrideSupportedWGC() takes precedence. Any thread.
QUANDEL_CAPTUREPROBE_EXPORT bool IsSupportedWGC();

/// Makes IsSupportedWGC() give `answer` from now on, whatever the system; an empty optional
/// returns to probing the system. For hosts that know better, and for tests. Any thread.
QUANDEL_CAPTUREPROBE_EXPORT void OverrideSupportedWGC(std::optional<bool> answer);
