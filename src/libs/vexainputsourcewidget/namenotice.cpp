// SPDX-License-Identifier: MIT
#include "namenotice.h"

#include "manageraccess.h"
#include "modalloop.h"
#include "trkey.h"

namespace vexa::inputsource {

bool NameNotice::show(QObject* owner, vexa::widgets::TipDialog::EnumTipType type)
{
    vexa::widgets::TipDialog tip(type);
    tip.setTipText(trKey("NameAlreadyExists"));
    tip.setBtnText(trKey("OK"), QString(), QString());
    return ModalLoop::run(
        owner, [&tip] { tip.run(); }, &tip);
}

bool NameNotice::isTaken(const ManagerAccess& access, const vexa::diagnostics::CallSite& site,
                         QObject* owner, const QString& name)
{
    {
        const std::shared_ptr<IInputSourceMgr> mgr = access.lock(site);
        // A read the manager allows on the GUI thread: the dialog waits for the answer.
        if (mgr == nullptr || !mgr->isNameRepeated(name.toStdString())) {
            return false;
        }
    }
    // Also when the owner went while the notice was open, the name stays refused.
    show(owner);
    return true;
}

} // namespace vexa::inputsource
