// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/resource/iresource.h>
#include <quandel/resource/quandel_resource_export.h>

#include <memory>

namespace quandel::resource {

/// A resource that holds its values, for tests and simulated hosts. The setters and getters
/// may be used from any thread at once: each value is read and written under one mutex.
class QUANDEL_RESOURCE_EXPORT ValueResource : public IResource
{
public:
    /// A resource with the given identity and no meta yet.
    ValueResource(uint64_t id, EnResourceType type, std::string name);
    ~ValueResource() override;

    uint64_t getId() const override;
    EnResourceType getType() const override;
    std::string getName() const override;
    std::shared_ptr<zq::mediacore::IMeta> getMeta() const override;

    /// Renames the resource.
    void setName(std::string name);

    /// Replaces the media description; an empty pointer removes it.
    void setMeta(std::shared_ptr<zq::mediacore::IMeta> meta);

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace quandel::resource
