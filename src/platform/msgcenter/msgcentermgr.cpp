// SPDX-License-Identifier: MIT
#include <quandel/msgcenter/msgcentermgr.h>

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace quandel::msgcenter {

struct MsgCenterMgr::Impl
{
    explicit Impl(int maxMessages)
        : capacity(static_cast<std::size_t>(std::max(1, maxMessages)))
    {}

    // Ids are handed out under the same lock as the insertion, so the container stays sorted
    // by id and a message is found by binary search.
    std::deque<PostedMessage>::iterator find(quint64 id)
    {
        const auto it = std::lower_bound(
            messages.begin(), messages.end(), id,
            [](const PostedMessage& posted, quint64 wanted) { return posted.id < wanted; });
        return it != messages.end() && it->id == id ? it : messages.end();
    }

    const std::size_t capacity;
    // A std::mutex rather than a QMutex: QMutex waits inside Qt's library, where the thread
    // sanitizer cannot see the ordering it provides, and would report races on `messages`.
    std::mutex mutex;
    std::deque<PostedMessage> messages;
    quint64 nextId = 1;
};

MsgCenterMgr::MsgCenterMgr(int capacity, QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Impl>(capacity))
{}

MsgCenterMgr::~MsgCenterMgr() = default;

void MsgCenterMgr::postMessage(const STMessage& message)
{
    PostedMessage posted;
    posted.message = message;
    // Dropped messages are destroyed outside the lock too, as their actions may own objects
    // whose destructors call back into the centre.
    std::vector<PostedMessage> dropped;
    {
        std::lock_guard lock(d->mutex);
        posted.id = d->nextId++;
        posted.postedAt = QDateTime::currentDateTime();
        d->messages.push_back(posted);
        while (d->messages.size() > d->capacity) {
            dropped.push_back(std::move(d->messages.front()));
            d->messages.pop_front();
        }
    }
    // Outside the lock: a directly connected slot may call back into the centre.
    for (const PostedMessage& old : dropped) {
        Q_EMIT messageRemoved(old.id);
    }
    Q_EMIT messagePosted(posted.id);
}

QVector<PostedMessage> MsgCenterMgr::messages() const
{
    std::lock_guard lock(d->mutex);
    return QVector<PostedMessage>(d->messages.begin(), d->messages.end());
}

std::optional<PostedMessage> MsgCenterMgr::message(quint64 id) const
{
    std::lock_guard lock(d->mutex);
    const auto it = d->find(id);
    if (it == d->messages.end()) {
        return std::nullopt;
    }
    return *it;
}

bool MsgCenterMgr::triggerAction(quint64 id)
{
    std::function<void()> callback;
    {
        std::lock_guard lock(d->mutex);
        const auto it = d->find(id);
        if (it == d->messages.end()) {
            return false;
        }
        callback = it->message.action.callback;
    }
    if (!callback) {
        return false;
    }
    // Run without the lock, so that the action may post, dismiss or trigger messages itself.
    callback();
    return true;
}

void MsgCenterMgr::dismiss(quint64 id)
{
    PostedMessage removed;
    {
        std::lock_guard lock(d->mutex);
        const auto it = d->find(id);
        if (it == d->messages.end()) {
            return;
        }
        removed = std::move(*it);
        d->messages.erase(it);
    }
    Q_EMIT messageRemoved(id);
}

void MsgCenterMgr::clear()
{
    std::deque<PostedMessage> removed;
    {
        std::lock_guard lock(d->mutex);
        removed.swap(d->messages);
    }
    for (const PostedMessage& posted : removed) {
        Q_EMIT messageRemoved(posted.id);
    }
}

} // namespace quandel::msgcenter
