// SPDX-License-Identifier: MIT
#include <zq/mediacore/imeta.h>

namespace zq::mediacore {

// Defined here so that the vtable and type information live in this library only, and a
// dynamic_cast across library boundaries sees one IMeta.
IMeta::~IMeta() = default;

} // namespace zq::mediacore
