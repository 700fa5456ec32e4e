// SPDX-License-Identifier: MIT
#include <captureprobe/wgcsupport.h>

#include <atomic>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace {

enum Override : int
{
    NoOverride,
    OverrideFalse,
    OverrideTrue
};

std::atomic<int> overrideAnswer{NoOverride};

#ifdef _WIN32
bool probeSystem()
{
    // GetVersionEx() reports the version the executable's manifest claims to support, not the
    // running system's; RtlGetVersion() is not subject to that and is always in ntdll.
    using RtlGetVersionFunction = LONG(WINAPI*)(PRTL_OSVERSIONINFOW);
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    if (ntdll == nullptr) {
        return false;
    }
    // Through void (*)() because casting one function pointer type straight to an unrelated
    // one is warned about by GCC.
    const auto function = reinterpret_cast<RtlGetVersionFunction>(
        reinterpret_cast<void (*)()>(GetProcAddress(ntdll, "RtlGetVersion")));
    if (function == nullptr) {
        return false;
    }
    RTL_OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof(info);
    if (function(&info) != 0) {
        return false;
    }
    return info.dwMajorVersion >= 10 && info.dwBuildNumber >= 18362;
}
#else
bool probeSystem()
{
    return false;
}
#endif

bool systemSupportsWgc()
{
    static const bool supported = probeSystem();
    return supported;
}

} // namespace

bool IsSupportedWGC()
{
    switch (overrideAnswer.load()) {
    case OverrideFalse:
        return false;
    case OverrideTrue:
        return true;
    default:
        return systemSupportsWgc();
    }
}

void OverrideSupportedWGC(std::optional<bool> answer)
{
    overrideAnswer.store(!answer ? NoOverride : (*answer ? OverrideTrue : OverrideFalse));
}
