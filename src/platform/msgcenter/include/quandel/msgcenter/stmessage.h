// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace quandel::msgcenter {

/// A button offered with a message: its label and what pressing it does.
struct STMessageAction
{
    QString label;                  ///< the button's text; empty means no button
    std::function<void()> callback; ///< run on the thread that triggers the action
};

/// One message to the operator. A plain value.
struct STMessage
{
    /// How serious the message is.
    enum Level
    {
        Info = 0,    ///< for the record
        Notice = 1,  ///< worth a look
        Warning = 2, ///< something needs the operator's attention
        Error = 3    ///< something failed
    };

    QString text;           ///< what the operator reads
    int level = Info;       ///< one of Level
    int displayMs = -1;     ///< how long a pop-up shows it; -1 keeps it until dismissed
    STMessageAction action; ///< an optional button
};

} // namespace quandel::msgcenter
