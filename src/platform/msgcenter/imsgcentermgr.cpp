// SPDX-License-Identifier: MIT
#include <quandel/msgcenter/imsgcentermgr.h>

namespace quandel::msgcenter {

// Out of line so that the vtable and type information live in this library only.
IMsgCenterMgr::~IMsgCenterMgr() = default;

} // namespace quandel::msgcenter
