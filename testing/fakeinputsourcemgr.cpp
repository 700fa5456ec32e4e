// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>

#include <algorithm>
#include <condition_variable>
#include <future>
#include <mutex>

namespace vexa::testing {

using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;

struct FakeInputSourceMgr::Impl
{
    explicit Impl(quandel::IZQRuntime* hostRuntime)
        : runtime(hostRuntime)
    {}

    quandel::IZQRuntime* const runtime;

    mutable std::mutex mutex;
    mutable std::condition_variable callArrived;
    std::vector<RecordedCall> calls;
    std::vector<ResourcePtr> resources;
    std::string generatedStreamingName = "Stream1";
    std::set<std::string> repeatedNames;
    bool renameAnswer = true;
    std::function<void(const RecordedCall&)> hook;
};

FakeInputSourceMgr::FakeInputSourceMgr(quandel::IZQRuntime* runtime)
    : d(std::make_unique<Impl>(runtime))
{}

FakeInputSourceMgr::~FakeInputSourceMgr() = default;

void FakeInputSourceMgr::record(std::string operation, std::any arguments)
{
    RecordedCall call{std::move(operation), std::move(arguments), std::this_thread::get_id(),
                      d->runtime != nullptr && d->runtime->isInRuntimeThread()};
    std::function<void(const RecordedCall&)> hook;
    {
        // Notified under the lock: a waiter that sees the call may destroy the manager at once,
        // and must not do so while this thread is still inside the notification.
        std::lock_guard<std::mutex> lock(d->mutex);
        d->calls.push_back(call);
        hook = d->hook;
        d->callArrived.notify_all();
    }
    // Outside the lock: a hook may block until the test inspects the calls.
    if (hook) {
        hook(call);
    }
}

void FakeInputSourceMgr::addInputSources(const std::vector<STInputSource>& sources)
{
    record("addInputSources", std::make_tuple(sources));
}

void FakeInputSourceMgr::deleteInputSources(const std::vector<uint64_t>& ids)
{
    record("deleteInputSources", std::make_tuple(ids));
}

void FakeInputSourceMgr::previewInputSources(const std::vector<STInputSource>& sources, bool enable)
{
    record("previewInputSources", std::make_tuple(sources, enable));
}

std::vector<FakeInputSourceMgr::ResourcePtr> FakeInputSourceMgr::getResources()
{
    record("getResources", std::tuple<>());
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->resources;
}

void FakeInputSourceMgr::setStreamingText(const std::string& text)
{
    record("setStreamingText", std::make_tuple(text));
}

std::string FakeInputSourceMgr::generateStreamingName()
{
    record("generateStreamingName", std::tuple<>());
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->generatedStreamingName;
}

FakeInputSourceMgr::ResourcePtr FakeInputSourceMgr::getResourceById(uint64_t id)
{
    record("getResourceById", std::make_tuple(id));
    std::lock_guard<std::mutex> lock(d->mutex);
    const auto found = std::find_if(d->resources.begin(), d->resources.end(),
                                    [id](const ResourcePtr& r) { return r && r->getId() == id; });
    return found != d->resources.end() ? *found : ResourcePtr();
}

bool FakeInputSourceMgr::renameInputSource(const vexa::STResourceRenamedModel& model)
{
    record("renameInputSource", std::make_tuple(model));
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->renameAnswer;
}

void FakeInputSourceMgr::renameNdiReceiver(const vexa::STResourceRenamedModel& model)
{
    record("renameNdiReceiver", std::make_tuple(model));
}

void FakeInputSourceMgr::refreshNdiSources()
{
    record("refreshNdiSources", std::tuple<>());
}

bool FakeInputSourceMgr::isNameRepeated(const std::string& name)
{
    record("isNameRepeated", std::make_tuple(name));
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->repeatedNames.count(name) != 0;
}

void FakeInputSourceMgr::webOperation(const STWebOperation& operation)
{
    record("webOperation", std::make_tuple(operation));
}

void FakeInputSourceMgr::changeCaptResolution(const STInputSource& source)
{
    record("changeCaptResolution", std::make_tuple(source));
}

void FakeInputSourceMgr::refreshCaptureDevices()
{
    record("refreshCaptureDevices", std::tuple<>());
}

void FakeInputSourceMgr::setResources(std::vector<ResourcePtr> resources)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->resources = std::move(resources);
}

void FakeInputSourceMgr::setGeneratedStreamingName(std::string name)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->generatedStreamingName = std::move(name);
}

void FakeInputSourceMgr::setRepeatedNames(std::set<std::string> names)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->repeatedNames = std::move(names);
}

void FakeInputSourceMgr::setRenameAnswer(bool accepted)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->renameAnswer = accepted;
}

void FakeInputSourceMgr::setCallHook(std::function<void(const RecordedCall&)> hook)
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->hook = std::move(hook);
}

std::vector<RecordedCall> FakeInputSourceMgr::calls() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->calls;
}

std::vector<RecordedCall> FakeInputSourceMgr::callsOf(const std::string& operation) const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    std::vector<RecordedCall> matching;
    std::copy_if(d->calls.begin(), d->calls.end(), std::back_inserter(matching),
                 [&operation](const RecordedCall& call) { return call.operation == operation; });
    return matching;
}

int FakeInputSourceMgr::callCount(const std::string& operation) const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return static_cast<int>(
        std::count_if(d->calls.begin(), d->calls.end(), [&operation](const RecordedCall& call) {
            return call.operation == operation;
        }));
}

void FakeInputSourceMgr::clearCalls()
{
    std::lock_guard<std::mutex> lock(d->mutex);
    d->calls.clear();
}

bool FakeInputSourceMgr::waitForCalls(const std::string& operation, int count,
                                      std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(d->mutex);
    return d->callArrived.wait_for(lock, timeout, [&] {
        return std::count_if(d->calls.begin(), d->calls.end(), [&](const RecordedCall& call) {
                   return call.operation == operation;
               }) >= count;
    });
}

void FakeInputSourceMgr::fireOnRuntime(const std::function<void(FakeInputSourceMgr&)>& emitter)
{
    if (d->runtime == nullptr || d->runtime->isInRuntimeThread()) {
        emitter(*this);
        return;
    }
    auto task = std::make_shared<std::packaged_task<void()>>([this, emitter] { emitter(*this); });
    std::future<void> done = task->get_future();
    d->runtime->post([task = std::move(task)] { (*task)(); }, __FILE__, __LINE__,
                     "FakeInputSourceMgr::fireOnRuntime");
    done.get();
}

} // namespace vexa::testing
