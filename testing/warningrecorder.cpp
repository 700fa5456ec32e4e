// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <algorithm>
#include <mutex>

namespace vexa::testing {

namespace {

// What one recorder keeps. Qt has a single handler for the whole process, a plain function,
// so the recorders that are alive form a chain that the handler walks.
struct Recording
{
    std::vector<LoggedMessage> messages;
    bool forwarding = false;
    // The handler this recorder replaced: the handler itself when a recorder was below.
    QtMessageHandler previous = nullptr;
    Recording* below = nullptr;
};

struct Chain
{
    // One mutex for the chain and every record: recording is rare enough that contention does
    // not matter, and one lock cannot be taken in two orders.
    std::mutex mutex;
    Recording* top = nullptr;
    // Qt may already have passed a message to the handler when the last recorder goes away;
    // such a message still reaches the handler that was there before any recorder.
    QtMessageHandler beneath = nullptr;
};

Chain& chain()
{
    static Chain instance;
    return instance;
}

void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const LoggedMessage message{type,
                                text,
                                QByteArray(context.file),
                                context.line,
                                QByteArray(context.function),
                                QByteArray(context.category),
                                std::this_thread::get_id()};
    QtMessageHandler passOn = nullptr;
    {
        Chain& state = chain();
        std::lock_guard<std::mutex> lock(state.mutex);
        if (state.top == nullptr) {
            passOn = state.beneath;
        }
        for (Recording* recording = state.top; recording != nullptr; recording = recording->below) {
            recording->messages.push_back(message);
            // The reason for an abort must reach the output even when nothing is forwarded.
            if (!recording->forwarding && type != QtFatalMsg) {
                break;
            }
            if (recording->previous != &handle) {
                passOn = recording->previous;
                break;
            }
        }
    }
    // Outside the lock, as the other handler may well log itself.
    if (passOn != nullptr && passOn != &handle) {
        passOn(type, context, text);
    }
}

} // namespace

struct WarningRecorder::Impl : Recording
{};

WarningRecorder::WarningRecorder()
    : d(std::make_unique<Impl>())
{
    Chain& state = chain();
    std::lock_guard<std::mutex> lock(state.mutex);
    d->previous = qInstallMessageHandler(&handle);
    d->below = state.top;
    if (state.top == nullptr) {
        state.beneath = d->previous;
    }
    state.top = d.get();
}

WarningRecorder::~WarningRecorder()
{
    Chain& state = chain();
    std::lock_guard<std::mutex> lock(state.mutex);
    if (state.top == d.get()) {
        qInstallMessageHandler(d->previous);
        state.top = d->below;
        return;
    }
    // Destroyed before a newer recorder: that one now hands on to what this one replaced.
    for (Recording* above = state.top; above != nullptr; above = above->below) {
        if (above->below == d.get()) {
            above->below = d->below;
            above->previous = d->previous;
            return;
        }
    }
}

std::vector<LoggedMessage> WarningRecorder::messages() const
{
    std::lock_guard<std::mutex> lock(chain().mutex);
    return d->messages;
}

std::optional<LoggedMessage> WarningRecorder::find(const QString& text) const
{
    std::lock_guard<std::mutex> lock(chain().mutex);
    const auto found = std::find_if(d->messages.begin(), d->messages.end(),
                                    [&text](const LoggedMessage& m) { return m.text == text; });
    if (found == d->messages.end()) {
        return std::nullopt;
    }
    return *found;
}

int WarningRecorder::count(const QString& text) const
{
    std::lock_guard<std::mutex> lock(chain().mutex);
    return static_cast<int>(
        std::count_if(d->messages.begin(), d->messages.end(),
                      [&text](const LoggedMessage& m) { return m.text == text; }));
}

void WarningRecorder::clear()
{
    std::lock_guard<std::mutex> lock(chain().mutex);
    d->messages.clear();
}

void WarningRecorder::setForwarding(bool forward)
{
    std::lock_guard<std::mutex> lock(chain().mutex);
    d->forwarding = forward;
}

bool WarningRecorder::isForwarding() const
{
    std::lock_guard<std::mutex> lock(chain().mutex);
    return d->forwarding;
}

} // namespace vexa::testing
