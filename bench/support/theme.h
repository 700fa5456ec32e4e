#pragma once

#include <QString>

namespace vexa::bench {

/// The widget kit's sheet followed by the repository's default theme, with the theme's icon
/// urls made absolute, as a host applies it to its application. Empty when the theme is missing.
QString defaultThemeStyleSheet();

/// The default theme's loading animation.
QString defaultLoadingAnimation();

} // namespace vexa::bench
