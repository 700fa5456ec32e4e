// SPDX-License-Identifier: MIT
#pragma once

#include <zq/mediacore/imeta.h>
#include <zq/mediacore/zq_mediacore_export.h>

#include <memory>

namespace zq::mediacore {

/// Every value a ValueMeta reports, as one plain record.
struct MetaValues
{
    quandel::resource::EnResourceType resourceType =
        quandel::resource::EnResourceType::Unassigned;         ///< the kind of source
    std::string name;                                          ///< display name (UTF-8)
    std::string address;                                       ///< URL, IP address or device path
    std::string resolutionText;                                ///< for example "1920*1080"
    double frameRate = 0.0;                                    ///< frames per second
    Thumbnail thumbnail;                                       ///< a still picture, or empty
    bool lost = false;                                         ///< the source is lost or damaged
    std::vector<quandel::CaptResolutionsInfo> captResolutions; ///< formats a device offers
    quandel::CaptResolutionsInfo currentCaptResolution;        ///< format a device captures in
    int captResolutionMode = 0;  ///< 1: only the current format offered
    int webMode = 0;             ///< 0 native, 1 screen capture
    std::vector<WebTab> webTabs; ///< tabs of a web page
    int webCurrentTabIndex = 1;  ///< index of the tab shown
};

/// A media description that holds its values, for tests and simulated hosts. The values can
/// be replaced at any time from any thread; each getter reads under the same mutex.
class ZQ_MEDIACORE_EXPORT ValueMeta : public IMeta
{
public:
    /// A description reporting `values`.
    explicit ValueMeta(MetaValues values = {});
    ~ValueMeta() override;

    /// A copy of every value.
    MetaValues values() const;

    /// Replaces every value.
    void setValues(MetaValues values);

    quandel::resource::EnResourceType getResourceType() const override;
    std::string getName() const override;
    std::string getAddress() const override;
    std::string getResolutionText() const override;
    double getFrameRate() const override;
    Thumbnail getThumbnail() const override;
    bool getLost() const override;
    std::vector<quandel::CaptResolutionsInfo> getCaptResolutions() const override;
    quandel::CaptResolutionsInfo getCurrentCaptResolution() const override;
    int getCaptResolutionMode() const override;
    int getWebMode() const override;
    std::vector<WebTab> getWebTabs() const override;
    int getWebCurrentTabIndex() const override;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace zq::mediacore
