// SPDX-License-Identifier: MIT
#include <zq/mediacore/valuemeta.h>

#include <mutex>
#include <utility>

namespace zq::mediacore {

struct ValueMeta::Impl
{
    explicit Impl(MetaValues initial)
        : values(std::move(initial))
    {}

    mutable std::mutex mutex;
    MetaValues values;
};

ValueMeta::ValueMeta(MetaValues values)
    : d(std::make_unique<Impl>(std::move(values)))
{}

ValueMeta::~ValueMeta() = default;

MetaValues ValueMeta::values() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values;
}

void ValueMeta::setValues(MetaValues values)
{
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        std::swap(d->values, values);
    }
    // The previous values, thumbnail pixels included, are freed here so that readers are not
    // kept waiting on the lock while that memory is released.
}

quandel::resource::EnResourceType ValueMeta::getResourceType() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.resourceType;
}

std::string ValueMeta::getName() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.name;
}

std::string ValueMeta::getAddress() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.address;
}

std::string ValueMeta::getResolutionText() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.resolutionText;
}

double ValueMeta::getFrameRate() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.frameRate;
}

Thumbnail ValueMeta::getThumbnail() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.thumbnail;
}

bool ValueMeta::getLost() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.lost;
}

std::vector<quandel::CaptResolutionsInfo> ValueMeta::getCaptResolutions() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.captResolutions;
}

quandel::CaptResolutionsInfo ValueMeta::getCurrentCaptResolution() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.currentCaptResolution;
}

int ValueMeta::getCaptResolutionMode() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.captResolutionMode;
}

int ValueMeta::getWebMode() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.webMode;
}

std::vector<WebTab> ValueMeta::getWebTabs() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.webTabs;
}

int ValueMeta::getWebCurrentTabIndex() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->values.webCurrentTabIndex;
}

} // namespace zq::mediacore
