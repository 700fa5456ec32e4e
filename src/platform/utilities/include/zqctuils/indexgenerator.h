// SPDX-License-Identifier: MIT
#pragma once

#include <zqctuils/zqctuils_export.h>

#include <QString>
#include <QStringList>

namespace zqctuils {

/// Numbering of default names such as "WebPage1", "WebPage2".
class ZQCTUILS_EXPORT IndexGenerator
{
public:
    /// The smallest positive n such that `prefix` followed by n in decimal is none of `names`.
    /// Names are compared exactly (case-sensitive); a name counts only when what follows the
    /// prefix is a plain decimal number without sign or leading zeros, so "WebPage01" does not
    /// take 1. Gaps are reused: with "WebPage1" and "WebPage3" in use the answer is 2. Linear in
    /// the number of names. Pure; any thread.
    static int generateIndex(const QStringList& names, const QString& prefix);
};

} // namespace zqctuils
