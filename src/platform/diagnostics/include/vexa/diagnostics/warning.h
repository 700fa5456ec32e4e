// SPDX-License-Identifier: MIT
#pragma once

#include <QDebug>
#include <QLoggingCategory>
#include <QMessageLogger>
#include <QString>
#include <QtGlobal>

namespace vexa::diagnostics {

/// Where a warning is about: the source file, the line, the full signature of a function and
/// the logging category of the code there. VEXA_HERE captures the caller's; a helper that
/// warns on its caller's behalf takes one, so the log points at the caller rather than at the
/// helper.
struct CallSite
{
    const char* file;
    int line;
    const char* function;
    const QLoggingCategory* category;
};

/// Qt's "default" category, in which code that names no category of its own warns.
inline const QLoggingCategory& defaultCategory()
{
    return *QLoggingCategory::defaultCategory();
}

/// Logs a Qt warning whose message is `text`, whose context carries `site` and whose category
/// is the site's; nothing when that category's warnings are disabled (QT_LOGGING_RULES,
/// QLoggingCategory::setFilterRules). Never throws. Any thread.
inline void warn(const CallSite& site, const QString& text)
{
    QMessageLogger(site.file, site.line, site.function).warning(*site.category).noquote() << text;
}

/// The same for a UTF-8 C string.
inline void warn(const CallSite& site, const char* text)
{
    warn(site, QString::fromUtf8(text));
}

} // namespace vexa::diagnostics

// The category a warning goes to is the one that VEXA_LOGGING_CATEGORY names where the macros
// below are written: a function returning `const QLoggingCategory&`, as Q_LOGGING_CATEGORY
// defines. A library defines it in a header of its own that its files include; code that
// defines none (a host, a test) warns in "default". A library that compiles with
// VEXA_LOGGING_CATEGORY_REQUIRED gets no fallback, so a file that forgot its header fails to
// build.
#if !defined(VEXA_LOGGING_CATEGORY) && !defined(VEXA_LOGGING_CATEGORY_REQUIRED)
#define VEXA_LOGGING_CATEGORY ::vexa::diagnostics::defaultCategory
#endif

/// The call site of the code that writes it, with the function's full signature and the
/// logging category of that code.
#define VEXA_HERE                                                                                  \
    ::vexa::diagnostics::CallSite                                                                  \
    {                                                                                              \
        __FILE__, __LINE__, Q_FUNC_INFO, &VEXA_LOGGING_CATEGORY()                                  \
    }

/// Logs a Qt warning whose message is `text` and whose context carries the source file, the
/// line and the full signature of the calling function, so that a host's message handler can
/// tell exactly where a precondition failed; its category is the caller's (see above), so
/// that a host filters it with QT_LOGGING_RULES. `text` is a C string or a QString; the call
/// returns nothing and never throws. Any thread.
#define VEXA_WARNING(text) ::vexa::diagnostics::warn(VEXA_HERE, text)
