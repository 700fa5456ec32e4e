// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace vexa {

/// A rename request or notification, and the description of one NDI sender in the manager's
/// sender list. A plain value.
struct STResourceRenamedModel
{
    /// The source renamed; 0 when the record is about an NDI sender rather than a source.
    uint64_t id = 0;
    /// The new name (UTF-8); for an NDI sender, the name of its receiver.
    std::string name;
    /// For an NDI sender, its IP address.
    std::string ipAddress;
    /// For an NDI sender, the name it announces on the network.
    std::string senderName;
    /// A flag word. For an NDI sender: non-zero when a source was already added for it. In a
    /// rename notification: non-zero when the asked name already exists, so the source kept the
    /// name this record carries.
    uint64_t flag = 0;
};

} // namespace vexa
