// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/iinputsourcemgr.h>

namespace vexa::inputsource {

IInputSourceMgr::IInputSourceMgr() = default;

IInputSourceMgr::~IInputSourceMgr() = default;

} // namespace vexa::inputsource
