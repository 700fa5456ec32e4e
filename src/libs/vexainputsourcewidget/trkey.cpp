// SPDX-License-Identifier: MIT
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>

namespace vexa::inputsource {

QString trKey(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "InputSource", "Widget", key);
}

} // namespace vexa::inputsource
