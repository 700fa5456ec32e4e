// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace zq::mediacore {

/// One tab of a web page source. A plain value.
struct WebTab
{
    std::string name; ///< the tab's display name (UTF-8)
    std::string url;  ///< the address the tab shows
    int index = 0;    ///< the tab's index within its source, counted from 1
};

inline bool operator==(const WebTab& a, const WebTab& b)
{
    return a.name == b.name && a.url == b.url && a.index == b.index;
}

inline bool operator!=(const WebTab& a, const WebTab& b)
{
    return !(a == b);
}

} // namespace zq::mediacore
