// SPDX-License-Identifier: MIT
#include <zq/mediacore/iframe.h>

namespace zq::mediacore {

// Defined here so that the vtable and type information live in this library only, and a
// dynamic_cast across library boundaries sees one IFrame.
IFrame::~IFrame() = default;

} // namespace zq::mediacore
