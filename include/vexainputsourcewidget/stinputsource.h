// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/stwebtab.h>

#include <quandel/captresolutionsinfo.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vexa::inputsource {

/// One input source as the panel asks for it to be created, previewed or changed, and as the
/// manager reports it back. A plain value, copied into every request and notification; a
/// default-constructed record holds the defaults below, and requests set only what they need.
struct STInputSource
{
    /// The source's identifier, assigned by the host; 0 for a source not created yet.
    uint64_t id = 0;
    /// Display name (UTF-8): stream name, NDI receiver name or web source name.
    std::string name;
    /// Stream address, NDI sender's IP address, or the address of a web source's current tab.
    std::string address;
    /// Resource type code (quandel::resource::EnResourceType): 7 NDI, 8 capture device, 9 web
    /// page, 13 network stream; 14 until a creator sets it.
    int32_t sourceType = 14;
    /// When the host created the source and last changed it, milliseconds since the epoch.
    std::array<uint64_t, 2> createdAndChangedAtMs{{0, 0}};
    /// Frames per second the source delivers, as a whole number; 0 when unknown.
    int32_t frameRate = 0;
    /// True asks for, or reports, an open preview of the source.
    bool preview = false;
    /// User name for a stream that needs credentials.
    std::string userName;
    /// True decodes the source on the graphics hardware where the host can.
    bool useHardwareDecoding = false;
    /// Password for a stream that needs credentials.
    std::string password;
    /// The system's path of a capture device.
    std::string devicePath;
    /// True mutes the source's audio.
    bool muted = false;
    /// Brightness, contrast and saturation adjustments, each in percent around 0.
    std::array<int32_t, 3> colorAdjustments{{0, 0, 0}};
    /// Gain applied to the source's audio, in decibels.
    float audioGainDb = 0.0F;
    /// Transport of a network stream ("tcp" or "udp"); empty lets the host choose.
    std::string transportProtocol;
    /// Capture formats: in a capture-format request the one format asked for, in a
    /// capture-format notification the device's current format first.
    std::vector<quandel::CaptResolutionsInfo> captResolutions;
    /// True lets the host reconnect the source by itself when it drops.
    bool autoReconnect = true;
    /// A web source's name as its web description carries it (the web dialog repeats the
    /// display name here).
    std::string webName;
    /// Which channel of a multi-channel device or stream to use, counted from 1.
    int32_t channelIndex = 1;
    /// Index (STWebTab::tabIndex) of the tab a web source shows.
    int32_t currentTabIndex = 1;
    /// How a web source is rendered: 0 natively, 1 by screen capture.
    int32_t webMode = 0;
    /// The tabs of a web source, in their order.
    std::vector<STWebTab> webTabs;
    /// Output picture width in pixels (1600 for a web source in screen-capture mode).
    int32_t resolutionWidth = 1920;
    /// Output picture height in pixels (900 for a web source in screen-capture mode).
    int32_t resolutionHeight = 1080;
    /// The host's output patch the source is bound to; 0 for none.
    uint64_t patchId = 0;
    /// Width in pixels of the window in which a web source is rendered.
    int32_t webWindowWidth = 1600;
    /// Height in pixels of the window in which a web source is rendered.
    int32_t webWindowHeight = 900;
};

} // namespace vexa::inputsource
