// SPDX-License-Identifier: MIT
#include "fuzzinput.h"

namespace vexa::fuzz {

struct FuzzInput::Impl
{
    const uint8_t* data = nullptr;
    std::size_t size = 0;
    std::size_t position = 0;
};

FuzzInput::FuzzInput(const uint8_t* data, std::size_t size)
    : d(std::make_unique<Impl>())
{
    d->data = data;
    d->size = data == nullptr ? 0 : size;
}

FuzzInput::~FuzzInput() = default;

std::size_t FuzzInput::remaining() const
{
    return d->size - d->position;
}

uint8_t FuzzInput::byte()
{
    return d->position < d->size ? d->data[d->position++] : 0;
}

uint32_t FuzzInput::u32()
{
    uint32_t value = 0;
    for (int index = 0; index < 4; ++index) {
        value = (value << 8) | byte();
    }
    return value;
}

uint32_t FuzzInput::below(uint32_t count)
{
    if (count == 0) {
        return 0;
    }
    return (count <= 256 ? byte() : u32()) % count;
}

int64_t FuzzInput::between(int64_t low, int64_t high)
{
    if (high <= low) {
        return low;
    }
    const uint64_t span = static_cast<uint64_t>(high - low) + 1;
    const uint64_t pick = span <= 256 ? byte() : u32();
    return low + static_cast<int64_t>(pick % span);
}

bool FuzzInput::flag()
{
    return (byte() & 1) != 0;
}

} // namespace vexa::fuzz
