// SPDX-License-Identifier: MIT
#include "fuzzapplication.h"

#include <QApplication>
#include <QByteArray>

namespace vexa::fuzz {

QApplication& guiApplication()
{
    // QApplication keeps references to argc and argv, so they live as long as the process.
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    // Never destroyed: libFuzzer may end the process from inside an input, where tearing down
    // Qt under the harness's widgets would only add noise to a report. Reachable through this
    // pointer, so leak checkers do not report it.
    static QApplication* const application = [] {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        return new QApplication(argc, argv);
    }();
    return *application;
}

} // namespace vexa::fuzz
