// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/msgcenter/quandel_msgcenter_export.h>
#include <quandel/msgcenter/stmessage.h>

namespace quandel::msgcenter {

/// The host's message centre: the one place where the application's components tell the
/// operator about something. Widgets hold it as a raw pointer and never own it.
class QUANDEL_MSGCENTER_EXPORT IMsgCenterMgr
{
public:
    virtual ~IMsgCenterMgr();

    /// Hands a message to the centre, which shows it as it sees fit. Any thread.
    virtual void postMessage(const STMessage& message) = 0;

protected:
    IMsgCenterMgr() = default;
    IMsgCenterMgr(const IMsgCenterMgr&) = delete;
    IMsgCenterMgr& operator=(const IMsgCenterMgr&) = delete;
};

} // namespace quandel::msgcenter
