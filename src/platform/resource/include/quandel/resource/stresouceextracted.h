// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace quandel::resource {

/// What the host reports with a resource once it has extracted the resource's media
/// information (its meta). A plain value.
struct STResouceExtracted
{
    uint64_t resourceId = 0; ///< the resource the extraction was about
    bool succeeded = false;  ///< true when a media description could be read
    std::string errorText;   ///< why the extraction failed; empty on success
};

} // namespace quandel::resource
