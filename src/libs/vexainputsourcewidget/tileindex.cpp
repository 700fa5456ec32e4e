// SPDX-License-Identifier: MIT
#include "tileindex.h"

#include <vexainputsourcewidget/inputsourceitem.h>

#include <algorithm>
#include <mutex>
#include <thread>

namespace vexa::inputsource {

TileIndex::TileIndex() = default;

TileIndex::~TileIndex() = default;

std::unique_lock<std::shared_mutex> TileIndex::lockForWriting()
{
    m_writerWaiting.store(true);
    std::unique_lock<std::shared_mutex> guard(m_lock);
    m_writerWaiting.store(false);
    return guard;
}

void TileIndex::add(uint64_t id, InputSourceItem* tile)
{
    const std::unique_lock<std::shared_mutex> guard = lockForWriting();
    m_tiles[id].push_back(tile);
}

void TileIndex::remove(uint64_t id, const InputSourceItem* tile)
{
    // Looked up without the lock first: the GUI thread is the only writer, and most calls come
    // from a tile's destruction after the box already removed it.
    const auto found = m_tiles.find(id);
    if (found == m_tiles.end() ||
        std::find(found->second.begin(), found->second.end(), tile) == found->second.end()) {
        return;
    }
    const std::unique_lock<std::shared_mutex> guard = lockForWriting();
    Tiles& tiles = found->second;
    tiles.erase(std::find(tiles.begin(), tiles.end(), tile));
    if (tiles.empty()) {
        m_tiles.erase(found);
    }
}

void TileIndex::clear()
{
    const std::unique_lock<std::shared_mutex> guard = lockForWriting();
    m_tiles.clear();
}

InputSourceItem* TileIndex::find(uint64_t id) const
{
    const auto found = m_tiles.find(id);
    return found == m_tiles.end() ? nullptr : found->second.back();
}

bool TileIndex::deliver(uint64_t id, const zq::mediacore::IFrame* frame) const
{
    while (m_writerWaiting.load()) {
        std::this_thread::yield();
    }
    const std::shared_lock<std::shared_mutex> guard(m_lock);
    const auto found = m_tiles.find(id);
    if (found == m_tiles.end()) {
        return false;
    }
    found->second.back()->updateFrame(frame);
    return true;
}

} // namespace vexa::inputsource
