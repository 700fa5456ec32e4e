// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace vexa::fuzz {

/// Reads a fuzzer's bytes as a stream of small decisions: each call takes what it needs from
/// the front and, once the bytes are used up, answers zero, so that every input, however short,
/// decodes into a complete sequence of operations and a mutation of one byte changes one
/// decision. Not thread-safe; the bytes must outlive the object.
class FuzzInput
{
public:
    FuzzInput(const uint8_t* data, std::size_t size);
    ~FuzzInput();

    FuzzInput(const FuzzInput&) = delete;
    FuzzInput& operator=(const FuzzInput&) = delete;

    /// Bytes not taken yet.
    std::size_t remaining() const;

    /// One byte; 0 when none are left.
    uint8_t byte();

    /// Four bytes, big-endian; missing bytes count as 0.
    uint32_t u32();

    /// A value from 0 to `count` - 1 (0 when `count` is 0), from one byte when `count` fits in
    /// one, from four otherwise.
    uint32_t below(uint32_t count);

    /// A value from `low` to `high`, both included.
    int64_t between(int64_t low, int64_t high);

    /// True or false from the low bit of one byte.
    bool flag();

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::fuzz
