#pragma once

#include <QDebug>
#include <QMessageLogger>
#include <QString>
#include <QtGlobal>

namespace vexa::diagnostics {

/// Where a warning is about: the source file, the line and the full signature of a function.
/// VEXA_HERE captures the caller's; a helper that warns on its caller's behalf takes one, so
/// the log points at the caller rather than at the helper.
struct CallSite
{
    const char* file;
    int line;
    const char* function;
};

/// Logs a Qt warning whose message is `text` and whose context carries `site`. Never throws.
/// Any thread.
inline void warn(const CallSite& site, const QString& text)
{
    QMessageLogger(site.file, site.line, site.function).warning().noquote() << text;
}

/// The same for a UTF-8 C string.
inline void warn(const CallSite& site, const char* text)
{
    warn(site, QString::fromUtf8(text));
}

} // namespace vexa::diagnostics

/// The call site of the code that writes it, with the function's full signature.
#define VEXA_HERE                                                                                  \
    ::vexa::diagnostics::CallSite                                                                  \
    {                                                                                              \
        __FILE__, __LINE__, Q_FUNC_INFO                                                            \
    }

/// Logs a Qt warning whose message is `text` and whose context carries the source file, the
/// line and the full signature of the calling function, so that a host's message handler can
/// tell exactly where a precondition failed. `text` is a C string or a QString; the call
/// returns nothing and never throws. Any thread.
#define VEXA_WARNING(text) ::vexa::diagnostics::warn(VEXA_HERE, text)
