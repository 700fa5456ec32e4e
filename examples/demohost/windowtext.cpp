#include "windowtext.h"

#include <vexainputsourcewidget/inputsourcetranslatemanager.h>

namespace demohost {

QString windowText(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "DemoHost", "Window", key);
}

} // namespace demohost
