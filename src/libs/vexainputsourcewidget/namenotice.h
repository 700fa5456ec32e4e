// SPDX-License-Identifier: MIT
#pragma once

#include "logcategory.h"

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <vexa/widgets/tipdialog.h>

#include <QString>

class QObject;

namespace vexa::inputsource {

class ManagerAccess;

/// The notice that a name is already in use: the translated "NameAlreadyExists" with one "OK"
/// button, shown modally on behalf of an object that may be destroyed meanwhile (ModalLoop).
/// GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT NameNotice
{
public:
    /// Shows the notice for `owner` and returns when it closes: true when the caller may go on
    /// using `owner`, false when `owner` went while the notice was open.
    static bool show(QObject* owner,
                     vexa::widgets::TipDialog::EnumTipType type = vexa::widgets::TipDialog::Notice);

    /// Asks the manager of `access`, directly on the GUI thread, whether `name` is used (UTF-8);
    /// when it is, shows the notice for `owner`. True when the name is used, also when `owner`
    /// went while the notice was open. Without a manager it logs "nullptr == inputSourceMgr"
    /// at `site` and answers false.
    static bool isTaken(const ManagerAccess& access, const vexa::diagnostics::CallSite& site,
                        QObject* owner, const QString& name);
};

} // namespace vexa::inputsource
