// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/stwebtab.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vexa::inputsource {

/// The web description of one web page source: the web fields of STInputSource, as a web
/// operation carries them.
struct STWebDescription
{
    /// The source's display name (UTF-8).
    std::string name;
    /// The address of the current tab.
    std::string address;
    /// The name as the web description carries it.
    std::string webName;
    /// Index (STWebTab::tabIndex) of the tab shown.
    int32_t currentTabIndex = 1;
    /// 0 rendered natively, 1 by screen capture.
    int32_t webMode = 0;
    /// The tabs, in their order.
    std::vector<STWebTab> webTabs;
};

} // namespace vexa::inputsource
