// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace vexa::inputsource {

/// One tab of a web page source, as it travels in records to and from the manager.
struct STWebTab
{
    /// The tab's display name (UTF-8).
    std::string name;
    /// The address the tab shows.
    std::string url;
    /// The tab's index within its source, counted from 1.
    int32_t tabIndex = 1;
};

/// Field-wise equality.
inline bool operator==(const STWebTab& a, const STWebTab& b)
{
    return a.name == b.name && a.url == b.url && a.tabIndex == b.tabIndex;
}

/// Field-wise inequality.
inline bool operator!=(const STWebTab& a, const STWebTab& b)
{
    return !(a == b);
}

} // namespace vexa::inputsource
