// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/resource/enresourcetype.h>
#include <quandel/resource/quandel_resource_export.h>

#include <cstdint>
#include <memory>
#include <string>

namespace zq::mediacore {
class IMeta;
}

namespace quandel::resource {

/// One of the host's resources (a source of pictures), always held by std::shared_ptr.
/// The host creates and updates resources on its runtime thread; readers on other threads
/// receive them through shared pointers and only call the const members below, which an
/// implementation must make safe to call from any thread.
class QUANDEL_RESOURCE_EXPORT IResource
{
public:
    virtual ~IResource();

    /// The identifier the host assigned; never 0 for a real resource.
    virtual uint64_t getId() const = 0;

    /// The resource's kind.
    virtual EnResourceType getType() const = 0;

    /// The resource's display name (UTF-8).
    virtual std::string getName() const = 0;

    /// The media description; empty until the host has extracted one. Shared with the host.
    virtual std::shared_ptr<zq::mediacore::IMeta> getMeta() const = 0;

protected:
    IResource() = default;
    IResource(const IResource&) = default;
    IResource& operator=(const IResource&) = default;
};

} // namespace quandel::resource
