<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>Add source</translation>
    </message>
    <message>
        <source>Added</source>
        <comment>Widget</comment>
        <translation>Added</translation>
    </message>
    <message>
        <source>AddNdiMedia</source>
        <comment>Widget</comment>
        <translation>Add NDI Source</translation>
    </message>
    <message>
        <source>AddStreaming</source>
        <comment>Widget</comment>
        <translation>Add Network Stream</translation>
    </message>
    <message>
        <source>AddWebMedia</source>
        <comment>Widget</comment>
        <translation>Add Web Page</translation>
    </message>
    <message>
        <source>AddWebTab</source>
        <comment>Widget</comment>
        <translation>Add Tab</translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Widget</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>captResolutionError_1</source>
        <comment>Widget</comment>
        <translation>The capture device could not switch to </translation>
    </message>
    <message>
        <source>captResolutionError_2</source>
        <comment>Widget</comment>
        <translation>. The device may not support this format. Please choose another one.</translation>
    </message>
    <message>
        <source>CaptureCard</source>
        <comment>Widget</comment>
        <translation>Capture Card</translation>
    </message>
    <message>
        <source>ClearCheckText</source>
        <comment>Widget</comment>
        <translation>Also remove sources that are in use</translation>
    </message>
    <message>
        <source>ClearInputSource</source>
        <comment>Widget</comment>
        <translation>Clear All Sources</translation>
    </message>
    <message>
        <source>ClearText</source>
        <comment>Widget</comment>
        <translation>Remove all input sources? Capture devices are kept.</translation>
    </message>
    <message>
        <source>Close</source>
        <comment>Widget</comment>
        <translation>Close</translation>
    </message>
    <message>
        <source>CpuExceedsTheThreshold</source>
        <comment>Widget</comment>
        <translation>CPU usage has stayed above %2 for %1 seconds.</translation>
    </message>
    <message>
        <source>Delete</source>
        <comment>Widget</comment>
        <translation>Delete</translation>
    </message>
    <message>
        <source>DeleteBatchText</source>
        <comment>Widget</comment>
        <translation>Some of the selected sources are in use. Delete them anyway?</translation>
    </message>
    <message>
        <source>DeleteText</source>
        <comment>Widget</comment>
        <translation>This source is in use. Delete it anyway?</translation>
    </message>
    <message>
        <source>DeleteWebTab</source>
        <comment>Widget</comment>
        <translation>Delete tab %1</translation>
    </message>
    <message>
        <source>DisablePreview</source>
        <comment>Widget</comment>
        <translation>Turn off preview</translation>
    </message>
    <message>
        <source>Dpi</source>
        <comment>Widget</comment>
        <translation>Resolution</translation>
    </message>
    <message>
        <source>Edit</source>
        <comment>Widget</comment>
        <translation>Edit</translation>
    </message>
    <message>
        <source>EditWebsiteAddress</source>
        <comment>Widget</comment>
        <translation>Edit Web Addresses</translation>
    </message>
    <message>
        <source>EnablePreview</source>
        <comment>Widget</comment>
        <translation>Turn on preview</translation>
    </message>
    <message>
        <source>Fps</source>
        <comment>Widget</comment>
        <translation>Frame rate</translation>
    </message>
    <message>
        <source>GoCheck</source>
        <comment>Widget</comment>
        <translation>Check Now</translation>
    </message>
    <message>
        <source>GpuExceedsTheThreshold</source>
        <comment>Widget</comment>
        <translation>GPU usage has stayed above %2 for %1 seconds.</translation>
    </message>
    <message>
        <source>InputSource</source>
        <comment>Widget</comment>
        <translation>Input Sources</translation>
    </message>
    <message>
        <source>IPAddress</source>
        <comment>Widget</comment>
        <translation>IP Address</translation>
    </message>
    <message>
        <source>LocalCaptureDevice</source>
        <comment>Widget</comment>
        <translation>Local Capture Device</translation>
    </message>
    <message>
        <source>MediaName</source>
        <comment>Widget</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>MemoryExceedsTheThreshold</source>
        <comment>Widget</comment>
        <translation>Memory usage has stayed above %2 for %1 seconds.</translation>
    </message>
    <message>
        <source>Name</source>
        <comment>Widget</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>NameAlreadyExists</source>
        <comment>Widget</comment>
        <translation>This name is already in use. Please enter a different name.</translation>
    </message>
    <message>
        <source>NativeMode</source>
        <comment>Widget</comment>
        <translation>Native mode</translation>
    </message>
    <message>
        <source>NDIRefreshed</source>
        <comment>Widget</comment>
        <translation>NDI sources refreshed</translation>
    </message>
    <message>
        <source>NDIRefreshing</source>
        <comment>Widget</comment>
        <translation>Refreshing NDI sources…</translation>
    </message>
    <message>
        <source>NdiSenderName</source>
        <comment>Widget</comment>
        <translation>Sender Name</translation>
    </message>
    <message>
        <source>NotAdded</source>
        <comment>Widget</comment>
        <translation>Not added</translation>
    </message>
    <message>
        <source>NotUseWGC</source>
        <comment>Widget</comment>
        <translation>Screenshot mode is unavailable: this system does not support window capture (Windows 10 version 1903 or later is required).</translation>
    </message>
    <message>
        <source>OK</source>
        <comment>Widget</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>PleaseEnter</source>
        <comment>Widget</comment>
        <translation>Enter the stream URL</translation>
    </message>
    <message>
        <source>ReceiverName</source>
        <comment>Widget</comment>
        <translation>Receiver Name</translation>
    </message>
    <message>
        <source>Refresh</source>
        <comment>Widget</comment>
        <translation>Refresh</translation>
    </message>
    <message>
        <source>Rename</source>
        <comment>Widget</comment>
        <translation>Rename</translation>
    </message>
    <message>
        <source>SameNativeWebOnPatchs</source>
        <comment>Widget</comment>
        <translation>The same native-mode web page is open on more than one layer.</translation>
    </message>
    <message>
        <source>ScreenshotMode</source>
        <comment>Widget</comment>
        <translation>Screenshot mode</translation>
    </message>
    <message>
        <source>SelectAll</source>
        <comment>Widget</comment>
        <translation>Select all</translation>
    </message>
    <message>
        <source>State</source>
        <comment>Widget</comment>
        <translation>Status</translation>
    </message>
    <message>
        <source>Streaming</source>
        <comment>Widget</comment>
        <translation>Stream</translation>
    </message>
    <message>
        <source>SupportAddingFormats</source>
        <comment>Widget</comment>
        <translation>Supported formats: rtsp://, rtmp://</translation>
    </message>
    <message>
        <source>Url</source>
        <comment>Widget</comment>
        <translation>Address</translation>
    </message>
    <message>
        <source>WebMode</source>
        <comment>Widget</comment>
        <translation>Mode</translation>
    </message>
    <message>
        <source>WebName</source>
        <comment>Widget</comment>
        <translation>Page Name</translation>
    </message>
    <message>
        <source>WebPage</source>
        <comment>Widget</comment>
        <translation>Web Page </translation>
    </message>
    <message>
        <source>WebResourceName</source>
        <comment>Widget</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>WebTab</source>
        <comment>Widget</comment>
        <translation>Tab </translation>
    </message>
    <message>
        <source>WebTabAddressField</source>
        <comment>Widget</comment>
        <translation>Tab %1 address</translation>
    </message>
    <message>
        <source>WebTabNameField</source>
        <comment>Widget</comment>
        <translation>Tab %1 name</translation>
    </message>
    <message>
        <source>WebTabs</source>
        <comment>Widget</comment>
        <translation>Tabs</translation>
    </message>
    <message>
        <source>WebUrl</source>
        <comment>Widget</comment>
        <translation>URL</translation>
    </message>
</context>
</TS>
