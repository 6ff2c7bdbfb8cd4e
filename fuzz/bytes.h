/* bytes.h - takes values off a fuzzer's input; behind its end everything reads as 0. */
#ifndef ZR32_FUZZ_BYTES_H
#define ZR32_FUZZ_BYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace zr32fuzz {

struct BYTES {
    const uint8_t *data;
    size_t left;
};

template <typename VALUE> VALUE Take(BYTES *bytes)
{
    VALUE value = {};
    const size_t size = sizeof value < bytes->left ? sizeof value : bytes->left;
    if (size) memcpy(&value, bytes->data, size);
    bytes->data += size;
    bytes->left -= size;
    return value;
}

/* A whole number from least to most. */
inline int32_t TakeRange(BYTES *bytes, int32_t least, int32_t most)
{
    const uint64_t span = static_cast<uint64_t>(int64_t{most} - least) + 1;
    const uint64_t value = span <= 256     ? Take<uint8_t>(bytes)
                           : span <= 65536 ? Take<uint16_t>(bytes)
                                           : Take<uint32_t>(bytes);
    return static_cast<int32_t>(least + static_cast<int64_t>(value % span));
}

/* A double: mostly of ordinary size, sometimes any bits at all. */
inline double TakeDouble(BYTES *bytes)
{
    switch (Take<uint8_t>(bytes) % 8) {
    case 0: return Take<double>(bytes);
    case 1: return 0;
    default: return Take<int16_t>(bytes) / 64.0;
    }
}

} // namespace zr32fuzz

#endif
