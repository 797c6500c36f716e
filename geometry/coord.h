// Conversions between computed values and coordinates, shared by the geometry sources.
#ifndef TEVBASE_GEOMETRY_COORD_H
#define TEVBASE_GEOMETRY_COORD_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <cmath>

#include <tevbase/geometry.h>

namespace gu {

// 2pi as the arc code compares and divides with it.
constexpr double kTwoPi = 6.283185307179586;

// mth_round(v) is defined exactly for these v (NaN fails both tests).
inline bool RoundFits(double v)
{
    return v > -2147483647.5 && v < 2147483647.5;
}

// Truncation to a coordinate is defined exactly for these v.
inline bool TruncFits(double v)
{
    return v > -2147483649.0 && v < 2147483648.0;
}

inline bool CoordFits(int64_t v)
{
    return v >= INT32_MIN && v <= INT32_MAX;
}

// mth_round without its int range: halves away from zero, the same value wherever both are defined.
inline double RoundAway(double v)
{
    return v >= 0 ? std::floor(v + 0.5) : -std::floor(0.5 - v);
}

// b - a without int overflow.
inline double Diff(gu_coord_t b, gu_coord_t a)
{
    return static_cast<double>(b) - static_cast<double>(a);
}

// A 32-bit count narrowed to 16 bits, sign taken from bit 15.
inline int16_t Narrow16(int v)
{
    const uint32_t low = static_cast<uint32_t>(v) & 0xFFFFu;
    const int32_t v16 = low >= 0x8000u ? static_cast<int32_t>(low) - 0x10000 : static_cast<int32_t>(low);
    return static_cast<int16_t>(v16);
}

// Point i of an array whose points lie `stride` bytes apart, each starting with its x and y (read
// bytewise: strides need not keep the coordinates aligned).
inline gu_point_t PointAt(const void* base, unsigned stride, unsigned i)
{
    gu_point_t p;
    memcpy(&p, static_cast<const char*>(base) + static_cast<size_t>(i) * stride, sizeof p);
    return p;
}

} // namespace gu

#endif
