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

/* The next length bytes, or what is left of them. */
inline BYTES TakeSlice(BYTES *bytes, size_t length)
{
    const BYTES slice = {bytes->data, length < bytes->left ? length : bytes->left};
    bytes->data += slice.left;
    bytes->left -= slice.left;
    return slice;
}

template <typename VALUE> VALUE Take(BYTES *bytes)
{
    VALUE value = {};
    const BYTES slice = TakeSlice(bytes, sizeof value);
    if (slice.left) memcpy(&value, slice.data, slice.left);
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

/* One of the values. */
template <typename VALUE, size_t COUNT> VALUE TakeOne(BYTES *bytes, const VALUE (&values)[COUNT])
{
    static_assert(COUNT <= 256, "picked by one byte");
    return values[Take<uint8_t>(bytes) % COUNT];
}

inline bool TakeBool(BYTES *bytes)
{
    return Take<uint8_t>(bytes) & 1;
}

/* A number of ordinary size from least to most, now and then any number at all. */
inline int32_t TakeNumber(BYTES *bytes, int32_t least, int32_t most)
{
    return Take<uint8_t>(bytes) >= 250 ? Take<int32_t>(bytes) : TakeRange(bytes, least, most);
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
