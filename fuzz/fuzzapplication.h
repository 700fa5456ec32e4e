// SPDX-License-Identifier: MIT
#pragma once

class QApplication;

namespace vexa::fuzz {

/// The process's QApplication, on the offscreen platform unless QT_QPA_PLATFORM names another,
/// made at the first call and kept until the process ends: a harness runs many inputs, and a
/// QApplication cannot be made twice. GUI thread (the thread of the first call).
QApplication& guiApplication();

} // namespace vexa::fuzz
