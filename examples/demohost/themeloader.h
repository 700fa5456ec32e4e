// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace demohost {

/// Finds and reads the library's default theme (themes/inputsource.qss with its icons and
/// loading animation). Qt resolves a relative url() in a style sheet against the working
/// directory, not against the sheet's file, so the loader rewrites every relative url() to an
/// absolute path in the theme's folder before the sheet reaches Qt.
///
/// Pure functions over the file system; any thread.
class ThemeLoader
{
public:
    /// The theme's style sheet file, inside themesDir().
    static constexpr char styleSheetFile[] = "inputsource.qss";

    /// The loading animation, inside themesDir().
    static constexpr char loadingAnimationFile[] = "loading.gif";

    /// The folder of the default theme: the source tree's themes/ when the demo runs from its
    /// build tree, else share/vexainputsourcewidget/themes of the prefix the executable was
    /// installed to; empty when neither holds the style sheet.
    static QString themesDir();

    /// The style sheet `file` of the folder `dir`, its relative url()s made absolute against
    /// `dir`; empty, with a warning, when the file cannot be read.
    static QString styleSheet(const QString& dir,
                              const QString& file = QLatin1String(styleSheetFile));

    /// `sheet` with every relative url() turned into an absolute path under `dir`, quoted.
    /// Absolute paths, Qt resources (":/...") and addresses with a scheme ("qrc:", "file:")
    /// stay as they are.
    static QString absoluteUrls(const QString& sheet, const QString& dir);

    /// The absolute path of the loading animation of the theme in `dir`.
    static QString loadingAnimation(const QString& dir);
};

} // namespace demohost
