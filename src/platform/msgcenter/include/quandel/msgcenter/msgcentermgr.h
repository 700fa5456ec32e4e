// SPDX-License-Identifier: MIT
#pragma once

#include <quandel/msgcenter/imsgcentermgr.h>
#include <quandel/msgcenter/quandel_msgcenter_export.h>

#include <QDateTime>
#include <QObject>
#include <QVector>

#include <memory>
#include <optional>

namespace quandel::msgcenter {

/// A message as the centre keeps it.
struct PostedMessage
{
    quint64 id = 0;     ///< unique within one centre, counting up from 1
    QDateTime postedAt; ///< when postMessage() received it
    STMessage message;  ///< the message as posted
};

/// Reference message centre: keeps the latest messages in posting order, tells the host's
/// view about each through Qt signals, and runs a message's action when asked. Messages may be
/// posted from any thread; the signals are emitted on the posting thread, so a view living on
/// the GUI thread receives them queued. All members may be called from any thread.
class QUANDEL_MSGCENTER_EXPORT MsgCenterMgr : public QObject, public IMsgCenterMgr
{
    Q_OBJECT

public:
    /// Keeps at most `capacity` messages (at least 1); the oldest go first.
    explicit MsgCenterMgr(int capacity = 500, QObject* parent = nullptr);
    ~MsgCenterMgr() override;

    /// Stores the message, dropping the oldest when full, then emits messagePosted().
    void postMessage(const STMessage& message) override;

    /// The kept messages, oldest first.
    QVector<PostedMessage> messages() const;

    /// The kept message with `id`, if any.
    std::optional<PostedMessage> message(quint64 id) const;

    /// Runs the action of message `id` on the calling thread. False when the message is gone
    /// or has no action. The message stays; the host dismisses it when it wants to.
    bool triggerAction(quint64 id);

    /// Removes message `id`; emits messageRemoved() when it was there.
    void dismiss(quint64 id);

    /// Removes every message; emits messageRemoved() for each.
    void clear();

Q_SIGNALS:
    /// A message was stored under `id`.
    void messagePosted(quint64 id);

    /// Message `id` was dismissed, cleared or pushed out by newer ones.
    void messageRemoved(quint64 id);

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace quandel::msgcenter
