// SPDX-License-Identifier: MIT
#pragma once

#include "logcategory.h"
#include "runonruntime.h"

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QLatin1String>
#include <QString>

#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace quandel {
class IZQRuntime;
} // namespace quandel

namespace vexa::inputsource {

/// The one way a widget of the library reaches the host's manager: the weak binding, the
/// runtime whose thread runs requests, and the warning when the manager has gone. Every box
/// and dialog holds one. GUI thread only, except where a member says otherwise.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT ManagerAccess
{
public:
    /// The warning every user of the manager writes when it has gone.
    static constexpr const char* goneText = "nullptr == inputSourceMgr";

    /// Binds `mgr` (also an expired one: the uses then warn).
    void setManager(std::weak_ptr<IInputSourceMgr> mgr) { m_manager = std::move(mgr); }

    /// Forgets the manager: every use warns from now on.
    void reset() { m_manager.reset(); }

    /// The bound manager, empty when unbound.
    const std::weak_ptr<IInputSourceMgr>& manager() const { return m_manager; }

    /// The runtime whose thread runs requests. Not owned.
    void setRuntime(quandel::IZQRuntime* runtime) { m_runtime = runtime; }
    quandel::IZQRuntime* runtime() const { return m_runtime; }

    /// The manager, locked for one use; null when it has gone, after logging `goneText` (or
    /// `text`) with `site`, the caller's place.
    std::shared_ptr<IInputSourceMgr> lock(const vexa::diagnostics::CallSite& site,
                                          const char* text = goneText) const;

    /// Runs `callable` on the runtime thread, the caller waiting, with `tag` (the caller's
    /// function name) and `site` for the runtime's bookkeeping; returns its result. A refused
    /// call yields the default result silently: the runtime's gate saw the call site and is the
    /// one to report it. A manager that throws, or a runtime that drops the call, must not take
    /// the panel down: the default result comes back and the log says why.
    template <typename Callable>
    auto call(const vexa::diagnostics::CallSite& site, const char* tag, Callable&& callable) const
    {
        using Result = std::invoke_result_t<std::decay_t<Callable>&>;
        try {
            return runOnRuntime(m_runtime, site.file, site.line, tag,
                                std::forward<Callable>(callable));
        } catch (const std::exception& error) {
            vexa::diagnostics::warn(site, QStringLiteral("%1: %2").arg(
                                              QLatin1String(tag), QLatin1String(error.what())));
        } catch (...) {
            vexa::diagnostics::warn(
                site, QStringLiteral("%1: unknown exception").arg(QLatin1String(tag)));
        }
        return Result();
    }

    /// Locks the manager (see lock()) and runs `request(IInputSourceMgr&)` on the runtime thread
    /// (see call()), the manager held until the request has run. The default result when the
    /// manager has gone.
    template <typename Request>
    auto send(const vexa::diagnostics::CallSite& site, const char* tag, Request&& request) const
    {
        using Result = std::invoke_result_t<std::decay_t<Request>&, IInputSourceMgr&>;
        std::shared_ptr<IInputSourceMgr> mgr = lock(site);
        if (mgr == nullptr) {
            return Result();
        }
        return call(site, tag,
                    [mgr = std::move(mgr), request = std::forward<Request>(request)]() mutable {
                        return request(*mgr);
                    });
    }

private:
    std::weak_ptr<IInputSourceMgr> m_manager;
    quandel::IZQRuntime* m_runtime = nullptr;
};

} // namespace vexa::inputsource
