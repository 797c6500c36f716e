// Point-list helpers shared by the geometry tests.
#ifndef TEVBASE_TESTS_GEOMETRY_POINTS_H
#define TEVBASE_TESTS_GEOMETRY_POINTS_H

#include <stdint.h>

#include <algorithm>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include <tevbase/geometry.h>

using Pts = std::vector<gu_point_t>;

constexpr gu_coord_t kMin = INT32_MIN;
constexpr gu_coord_t kMax = INT32_MAX;
constexpr gu_coord_t U = -99; // marks an entry that must stay unwritten

inline bool operator==(gu_point_t a, gu_point_t b)
{
    return a.x == b.x && a.y == b.y;
}

inline std::ostream& operator<<(std::ostream& os, gu_point_t p)
{
    return os << '(' << p.x << ',' << p.y << ')';
}

// The first n entries of out; for a count of 0 or less none, provided out[0] is still unwritten.
inline Pts Head(const Pts& out, int n)
{
    if (n <= 0)
        return out[0] == gu_point_t{U, U} ? Pts{} : Pts{out[0]};
    return Pts(out.begin(), out.begin() + std::min<size_t>(size_t(n), out.size()));
}

#endif
