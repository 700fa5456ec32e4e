// SPDX-License-Identifier: MIT
#include <zqctuils/indexgenerator.h>

#include <vector>

namespace zqctuils {

namespace {

// The number written after the prefix, or 0 when the suffix is not a plain decimal number
// without sign or leading zeros. Numbers above `limit` are reported as 0 as well: they can
// never be the answer, and stopping there keeps large or overflowing suffixes harmless.
int suffixNumber(const QStringRef& suffix, int limit)
{
    if (suffix.isEmpty() || suffix.front() == QLatin1Char('0')) {
        return 0;
    }
    qint64 value = 0;
    for (const QChar c : suffix) {
        // QChar::isDigit() would also accept digits of other scripts.
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return 0;
        }
        value = value * 10 + (c.unicode() - '0');
        if (value > limit) {
            return 0;
        }
    }
    return static_cast<int>(value);
}

} // namespace

int IndexGenerator::generateIndex(const QStringList& names, const QString& prefix)
{
    // With n names at most n numbers are taken, so one of 1..n+1 is always free and larger
    // numbers never need to be remembered.
    const int limit = names.size() + 1;
    std::vector<bool> taken(static_cast<std::size_t>(limit) + 1, false);
    for (const QString& name : names) {
        if (!name.startsWith(prefix)) {
            continue;
        }
        const int number = suffixNumber(name.midRef(prefix.size()), limit);
        if (number > 0) {
            taken[static_cast<std::size_t>(number)] = true;
        }
    }
    int index = 1;
    while (taken[static_cast<std::size_t>(index)]) {
        ++index;
    }
    return index;
}

} // namespace zqctuils
