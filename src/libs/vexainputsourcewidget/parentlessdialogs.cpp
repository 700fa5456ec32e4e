// SPDX-License-Identifier: MIT
#include "parentlessdialogs.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace vexa::inputsource {

namespace {

std::vector<QPointer<QWidget>>& dialogs()
{
    static std::vector<QPointer<QWidget>> adopted;
    return adopted;
}

// Dialogs destroyed otherwise (by a host, say) leave no entry behind.
void forgetDestroyed()
{
    std::vector<QPointer<QWidget>>& adopted = dialogs();
    adopted.erase(std::remove_if(adopted.begin(), adopted.end(),
                                 [](const QPointer<QWidget>& dialog) { return dialog.isNull(); }),
                  adopted.end());
}

void destroyAll()
{
    std::vector<QPointer<QWidget>> adopted;
    adopted.swap(dialogs());
    for (const QPointer<QWidget>& dialog : adopted) {
        delete dialog.data();
    }
}

} // namespace

void ParentlessDialogs::adoptWidget(QWidget* dialog)
{
    std::vector<QPointer<QWidget>>& adopted = dialogs();
    // Post routines run once, with the application object that is going; a later application
    // object needs the routine again. A routine registered twice finds nothing the second time.
    if (adopted.empty()) {
        qAddPostRoutine(destroyAll);
    }
    forgetDestroyed();
    adopted.emplace_back(dialog);
}

} // namespace vexa::inputsource
