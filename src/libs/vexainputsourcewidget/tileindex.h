// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <atomic>
#include <cstdint>
#include <memory_resource>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

namespace zq::mediacore {
class IFrame;
} // namespace zq::mediacore

namespace vexa::inputsource {

class InputSourceItem;

/// The tiles of a box by source id, for the paths that must not walk the layout: frames from
/// any thread, and the per-tile notifications on the GUI thread.
///
/// Only the GUI thread adds and removes, so it reads without a lock. Frame threads read under
/// the shared lock for the whole hand-over, and the GUI thread removes under the exclusive one,
/// so once remove() has returned no frame thread is inside the tile or can reach it again.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT TileIndex
{
public:
    TileIndex();
    ~TileIndex();
    TileIndex(const TileIndex&) = delete;
    TileIndex& operator=(const TileIndex&) = delete;

    /// Files `tile` under `id` as the newest tile of that id. GUI thread.
    void add(uint64_t id, InputSourceItem* tile);

    /// Drops `tile` from the entries of `id`, waiting for frame threads inside it to leave; a
    /// tile not filed is ignored. The pointer is only compared, so it may be half destroyed.
    /// GUI thread.
    void remove(uint64_t id, const InputSourceItem* tile);

    /// Drops every tile. GUI thread.
    void clear();

    /// The newest tile of `id`, or null. GUI thread.
    InputSourceItem* find(uint64_t id) const;

    /// Hands `frame` to the newest tile of `id`; false when there is none. Any thread.
    bool deliver(uint64_t id, const zq::mediacore::IFrame* frame) const;

private:
    std::unique_lock<std::shared_mutex> lockForWriting();

    using Tiles = std::pmr::vector<InputSourceItem*>;

    mutable std::shared_mutex m_lock;
    // glibc's rwlock lets new readers in while a writer waits, so frame threads taking turns at
    // the shared lock could keep the GUI thread out for as long as frames flow. The writer
    // announces itself and readers hold back until it is through.
    std::atomic<bool> m_writerWaiting{false};
    // The entries come from a pool of their own rather than from between the tiles' much larger
    // allocations, so that a walk over thousands of ids stays within few pages.
    std::pmr::unsynchronized_pool_resource m_pool;
    // Several tiles may share an id; each vector keeps them in the order they were added.
    std::pmr::unordered_map<uint64_t, Tiles> m_tiles{&m_pool};
};

} // namespace vexa::inputsource
