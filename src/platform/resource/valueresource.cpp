// SPDX-License-Identifier: MIT
#include <quandel/resource/valueresource.h>

#include <mutex>
#include <utility>

namespace quandel::resource {

struct ValueResource::Impl
{
    Impl(uint64_t resourceId, EnResourceType resourceType, std::string resourceName)
        : id(resourceId)
        , type(resourceType)
        , name(std::move(resourceName))
    {}

    // Never change after construction, so they are read without the lock.
    const uint64_t id;
    const EnResourceType type;

    mutable std::mutex mutex;
    std::string name;
    std::shared_ptr<zq::mediacore::IMeta> meta;
};

ValueResource::ValueResource(uint64_t id, EnResourceType type, std::string name)
    : d(std::make_unique<Impl>(id, type, std::move(name)))
{}

ValueResource::~ValueResource() = default;

uint64_t ValueResource::getId() const
{
    return d->id;
}

EnResourceType ValueResource::getType() const
{
    return d->type;
}

std::string ValueResource::getName() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->name;
}

std::shared_ptr<zq::mediacore::IMeta> ValueResource::getMeta() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->meta;
}

void ValueResource::setName(std::string name)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->name = std::move(name);
}

void ValueResource::setMeta(std::shared_ptr<zq::mediacore::IMeta> meta)
{
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->meta.swap(meta);
    }
    // If this was the last owner of the previous meta, its destructor runs here: outside the
    // lock, so a meta whose destructor calls back into this resource cannot deadlock.
}

} // namespace quandel::resource
