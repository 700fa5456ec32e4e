#pragma once

#include <QDebug>
#include <QMessageLogger>
#include <QtGlobal>

/// Logs a Qt warning whose message is `text` and whose context carries the source file, the
/// line and the full signature of the calling function, so that a host's message handler can
/// tell exactly where a precondition failed. `text` is a C string or a QString; the call
/// returns nothing and never throws. Any thread.
#define VEXA_WARNING(text)                                                                         \
    QMessageLogger(__FILE__, __LINE__, Q_FUNC_INFO).warning().noquote() << (text)
