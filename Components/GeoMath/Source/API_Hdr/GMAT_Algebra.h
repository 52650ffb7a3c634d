// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Small square matrices of doubles: Matrix2C, Matrix3C, Matrix4C. Stored row by row, so the elements are
// contiguous and element (i, j) is the double at index n * i + j. A default matrix is the identity. Positions
// are column vectors: the translation of a 4 x 4 matrix is its last column, its last row is the projective
// one. Plain values without locks: distinct matrices are independent. Knows nothing of files or points.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_Report.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace GMAT {

/// One row of an N x N matrix.
template<int N>
struct TupleT
{
    double m_tuple[N];
};

namespace Detail {

inline constexpr char s_szSourceName[] = R"(..\..\Components\GeoMath\Source\API_Hdr\GMAT_Algebra)";

/// The text that a row access outside the matrix is reported with.
template<int N>
inline constexpr const char* s_pszRowCheck = nullptr;
template<>
inline constexpr const char* s_pszRowCheck<2> = "i >= 0 && i < 2";
template<>
inline constexpr const char* s_pszRowCheck<3> = "i >= 0 && i < 3";
template<>
inline constexpr const char* s_pszRowCheck<4> = "i >= 0 && i < 4";

} // namespace Detail

/// N x N matrix of doubles, row-major.
template<int N>
struct SquareMatrixT
{
    TupleT<N> v[N];

    /// The identity.
    SquareMatrixT()
    {
        for (int i = 0; i < N; ++i) {
            for (int j = 0; j < N; ++j)
                v[i].m_tuple[j] = i == j ? 1.0 : 0.0;
        }
    }

    /// Row i. An index outside 0..N-1 is reported as an assertion and answered with the address that the row
    /// would have; reading through it is the caller's error.
    TupleT<N>& operator[](int i)
    {
        CheckRow(i);
        return *const_cast<TupleT<N>*>(RowAddress(i));
    }

    const TupleT<N>& operator[](int i) const
    {
        CheckRow(i);
        return *RowAddress(i);
    }

    /// Element (i, j); both indices within the matrix.
    double& At(int i, int j) { return v[i].m_tuple[j]; }
    double At(int i, int j) const { return v[i].m_tuple[j]; }

    /// The inverse by Gauss-Jordan elimination with partial pivoting. Returns false, and leaves `result` as
    /// it was, when a pivot is zero: the matrix is singular, which is also reported as an assertion.
    [[nodiscard]] bool Inverse(SquareMatrixT& result) const;

private:
    static void CheckRow(int i)
    {
        if (i >= 0 && i < N) return;
        BSS::ERR::AssertFailed(Detail::s_pszRowCheck<N>, 0, 0, Detail::s_szSourceName, __LINE__);
    }

    const TupleT<N>* RowAddress(int i) const
    {
        // Through the integer: an index outside the array is reported above, not optimised upon.
        return reinterpret_cast<const TupleT<N>*>(
            reinterpret_cast<std::uintptr_t>(&v) +
            static_cast<std::uintptr_t>(static_cast<std::ptrdiff_t>(i)) * sizeof(TupleT<N>));
    }
};

using Matrix2C = SquareMatrixT<2>;
using Matrix3C = SquareMatrixT<3>;
using Matrix4C = SquareMatrixT<4>;

static_assert(sizeof(Matrix4C) == 16 * sizeof(double), "the elements are contiguous");

template<int N>
bool SquareMatrixT<N>::Inverse(SquareMatrixT& result) const
{
    SquareMatrixT a = *this;
    SquareMatrixT inverse;
    for (int j = 0; j < N; ++j) {
        int pivot = j;
        for (int i = j + 1; i < N; ++i) {
            if (std::fabs(a.At(i, j)) > std::fabs(a.At(pivot, j))) pivot = i;
        }
        std::swap(a.v[pivot], a.v[j]);
        std::swap(inverse.v[pivot], inverse.v[j]);
        if (!(a.v[j].m_tuple[j] != 0.0)) {
            BSS::ERR::AssertFailed("a.v[j].m_tuple[j] != 0.0", 0, 0, Detail::s_szSourceName, __LINE__);
            return false;
        }
        const double scale = a.At(j, j);
        for (int k = 0; k < N; ++k) {
            a.At(j, k) /= scale;
            inverse.At(j, k) /= scale;
        }
        for (int i = 0; i < N; ++i) {
            const double factor = a.At(i, j);
            if (i == j || factor == 0.0) continue;
            for (int k = 0; k < N; ++k) {
                a.At(i, k) -= factor * a.At(j, k);
                inverse.At(i, k) -= factor * inverse.At(j, k);
            }
        }
    }
    result = inverse;
    return true;
}

/// Maps (x, y, z) by `m` in place, in double precision, with the full projective divide: a matrix whose last
/// row is (0, 0, 0, 1) divides by exactly 1, and a w of zero gives infinities or NaN as IEEE 754 says. The
/// order of the operations is fixed, since every decoding path must give the same bits.
inline void TransformPosition(const Matrix4C& m, double& x, double& y, double& z)
{
    const double w = m.At(3, 0) * x + m.At(3, 1) * y + m.At(3, 2) * z + m.At(3, 3);
    const double tx = (m.At(0, 0) * x + m.At(0, 1) * y + m.At(0, 2) * z + m.At(0, 3)) / w;
    const double ty = (m.At(1, 0) * x + m.At(1, 1) * y + m.At(1, 2) * z + m.At(1, 3)) / w;
    const double tz = (m.At(2, 0) * x + m.At(2, 1) * y + m.At(2, 2) * z + m.At(2, 3)) / w;
    x = tx;
    y = ty;
    z = tz;
}

/// Maps (x, y, z) back by the inverse of `m`. Returns false, and leaves the position as it was, when `m` is
/// singular.
[[nodiscard]] inline bool InverseTransformPosition(const Matrix4C& m, double& x, double& y, double& z)
{
    Matrix4C inverse;
    if (!m.Inverse(inverse)) return false;
    TransformPosition(inverse, x, y, z);
    return true;
}

} // namespace GMAT
