// Point-list helpers shared by the geometry tests.
#ifndef TEVBASE_TESTS_GEOMETRY_POINTS_H
#define TEVBASE_TESTS_GEOMETRY_POINTS_H

#include <stdint.h>

#include <vector>

#include <gtest/gtest.h>

#include <tevbase/geometry.h>

using Pts = std::vector<gu_point_t>;

constexpr gu_coord_t kMin = INT32_MIN;
constexpr gu_coord_t kMax = INT32_MAX;
constexpr gu_coord_t U = -99; // marks an entry that must stay unwritten

inline ::testing::AssertionResult SamePoints(const Pts& want, const gu_point_t* got, int n)
{
    if (static_cast<int>(want.size()) != n)
        return ::testing::AssertionFailure() << "count " << n << ", want " << want.size();
    for (int i = 0; i < n; ++i) {
        if (want[i].x != got[i].x || want[i].y != got[i].y)
            return ::testing::AssertionFailure() << "point " << i << " is (" << got[i].x << "," << got[i].y
                                                 << "), want (" << want[i].x << "," << want[i].y << ")";
    }
    return ::testing::AssertionSuccess();
}

// want, or for a count of 0 or less, an untouched first entry.
inline ::testing::AssertionResult SameOrUntouched(const Pts& want, const gu_point_t* got, int n)
{
    return n > 0 ? SamePoints(want, got, n) : SamePoints(want.empty() ? Pts{{U, U}} : want, got, 1);
}

inline Pts Reversed(const Pts& p)
{
    return Pts(p.rbegin(), p.rend());
}

#endif
