// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/version.h>

namespace vexa::inputsource {

const char* libraryVersion()
{
    return VEXAINPUTSOURCEWIDGET_VERSION_STRING;
}

} // namespace vexa::inputsource
