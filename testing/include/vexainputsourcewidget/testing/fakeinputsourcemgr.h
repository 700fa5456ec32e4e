// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <vexainputsourcewidget/iinputsourcemgr.h>

#include <quandel/runtime/izqruntime.h>

#include <any>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace vexa::testing {

/// One request as the double received it.
struct RecordedCall
{
    /// The operation's name, for example "deleteInputSources".
    std::string operation;
    /// Copies of the arguments, as a std::tuple of their plain types (empty tuple for none).
    std::any arguments;
    /// The thread the request ran on.
    std::thread::id thread;
    /// True when the runtime said the request ran on its thread.
    bool onRuntimeThread = false;
};

/// A manager for tests of widgets and hosts: implements every request by recording it, with
/// its arguments and the thread it ran on, answers the queries from values the test sets, and
/// fires any of its signals on the runtime thread on demand, as a real manager would.
///
/// Every member may be called from any thread.
class VEXAINPUTSOURCEWIDGET_TESTING_EXPORT FakeInputSourceMgr
    : public vexa::inputsource::IInputSourceMgr
{
public:
    /// A double whose signals fire on `runtime`'s thread (not owned; may be null, and then
    /// signals fire on the calling thread).
    explicit FakeInputSourceMgr(quandel::IZQRuntime* runtime = nullptr);
    ~FakeInputSourceMgr() override;

    void addInputSources(const std::vector<vexa::inputsource::STInputSource>& sources) override;
    void deleteInputSources(const std::vector<uint64_t>& ids) override;
    void previewInputSources(const std::vector<vexa::inputsource::STInputSource>& sources,
                             bool enable) override;
    std::vector<ResourcePtr> getResources() override;
    void setStreamingText(const std::string& text) override;
    std::string generateStreamingName() override;
    ResourcePtr getResourceById(uint64_t id) override;
    bool renameInputSource(const vexa::STResourceRenamedModel& model) override;
    void renameNdiReceiver(const vexa::STResourceRenamedModel& model) override;
    void refreshNdiSources() override;
    bool isNameRepeated(const std::string& name) override;
    void webOperation(const vexa::inputsource::STWebOperation& operation) override;
    void changeCaptResolution(const vexa::inputsource::STInputSource& source) override;
    void refreshCaptureDevices() override;

    /// The resources getResources() returns and getResourceById() searches.
    void setResources(std::vector<ResourcePtr> resources);
    /// What generateStreamingName() returns.
    void setGeneratedStreamingName(std::string name);
    /// The names isNameRepeated() answers true for.
    void setRepeatedNames(std::set<std::string> names);
    /// What renameInputSource() returns (true at first).
    void setRenameAnswer(bool accepted);
    /// Called on the request's thread right after each request is recorded; it may block (to
    /// hold the runtime) or throw (to test failures). An empty function removes the hook.
    void setCallHook(std::function<void(const RecordedCall&)> hook);

    /// Every request so far, in the order they arrived.
    std::vector<RecordedCall> calls() const;
    /// The requests of one operation, in order.
    std::vector<RecordedCall> callsOf(const std::string& operation) const;
    /// How many requests of one operation arrived.
    int callCount(const std::string& operation) const;
    /// Forgets the recorded requests.
    void clearCalls();
    /// Waits until `count` requests of `operation` have arrived; false on time-out.
    bool waitForCalls(const std::string& operation, int count,
                      std::chrono::milliseconds timeout = std::chrono::seconds(5)) const;

    /// The arguments of the last request of `operation`, with the plain types the operation
    /// takes, e.g. lastArguments<std::vector<uint64_t>>("deleteInputSources"). Throws
    /// std::logic_error when there was none or the types differ.
    template <typename... Args>
    std::tuple<Args...> lastArguments(const std::string& operation) const
    {
        const std::vector<RecordedCall> recorded = callsOf(operation);
        if (recorded.empty()) {
            throw std::logic_error("no call of " + operation);
        }
        const auto* arguments = std::any_cast<std::tuple<Args...>>(&recorded.back().arguments);
        if (arguments == nullptr) {
            throw std::logic_error("other argument types for " + operation);
        }
        return *arguments;
    }

    /// Runs `emitter` with this manager on the runtime thread and waits until it returned, so
    /// that every signal it fires reaches its receivers as a real manager's would, e.g.
    /// fireOnRuntime([&](auto& mgr) { mgr.signalResourcesDeleted({1, 2}); }). An exception
    /// thrown by the emitter is re-thrown here.
    void fireOnRuntime(const std::function<void(FakeInputSourceMgr&)>& emitter);

private:
    void record(std::string operation, std::any arguments);

    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::testing
