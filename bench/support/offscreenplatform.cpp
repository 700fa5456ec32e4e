// SPDX-License-Identifier: MIT
#include "support/offscreenplatform.h"

#include <QByteArray>
#include <QtGlobal>

namespace vexa::bench {

void preferOffscreenPlatform()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

} // namespace vexa::bench
