// SPDX-License-Identifier: MIT
#include <quandel/runtime/izqruntime.h>

namespace quandel {

// Defined here so that the vtable and type information live in this library only, and a
// dynamic_cast across library boundaries sees one IZQRuntime.
IZQRuntime::~IZQRuntime() = default;

} // namespace quandel
