// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/captresolutionsinfo.h>
#include <quandel/resource/enresourcetype.h>
#include <zq/mediacore/thumbnail.h>
#include <zq/mediacore/webtab.h>
#include <zq/mediacore/zq_mediacore_export.h>

#include <string>
#include <vector>

namespace zq::mediacore {

/// The media description of a source, as the host extracted it: what the source is, where it
/// comes from, what it delivers, and the settings of its kind (capture formats of a capture
/// device, the tabs of a web page). Held by std::shared_ptr and shared across threads, so every
/// member is const and an implementation makes each safe to call from any thread.
class ZQ_MEDIACORE_EXPORT IMeta
{
public:
    virtual ~IMeta();

    /// The kind of source described.
    virtual quandel::resource::EnResourceType getResourceType() const = 0;

    /// The source's display name (UTF-8).
    virtual std::string getName() const = 0;

    /// Where the source comes from: a stream URL, an NDI sender's IP address, a capture device's
    /// path, or the address of a web page's current tab.
    virtual std::string getAddress() const = 0;

    /// The picture size as text, width "*" height, for example "1920*1080"; empty when unknown.
    virtual std::string getResolutionText() const = 0;

    /// Frames per second; 0 when unknown.
    virtual double getFrameRate() const = 0;

    /// A still picture of the source; empty when the host has none.
    virtual Thumbnail getThumbnail() const = 0;

    /// True when the source is lost or damaged: it no longer delivers what it describes.
    virtual bool getLost() const = 0;

    /// Capture devices: every format the device offers, in the device's order.
    virtual std::vector<quandel::CaptResolutionsInfo> getCaptResolutions() const = 0;

    /// Capture devices: the format the device captures in now.
    virtual quandel::CaptResolutionsInfo getCurrentCaptResolution() const = 0;

    /// Capture devices: 1 when the device offers only its current format, 0 otherwise.
    virtual int getCaptResolutionMode() const = 0;

    /// Web pages: 0 rendered natively, 1 captured from the screen.
    virtual int getWebMode() const = 0;

    /// Web pages: the tabs, in their order.
    virtual std::vector<WebTab> getWebTabs() const = 0;

    /// Web pages: the index (WebTab::index) of the tab shown.
    virtual int getWebCurrentTabIndex() const = 0;

protected:
    IMeta() = default;
    IMeta(const IMeta&) = delete;
    IMeta& operator=(const IMeta&) = delete;
};

} // namespace zq::mediacore
