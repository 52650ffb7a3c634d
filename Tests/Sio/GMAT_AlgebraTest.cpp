// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Matrices: layout, row checks, inverse, and the mapping of positions bit for bit.
#include "API_Hdr/GMAT_Algebra.h"
#include "Support/PlainDecoder.h"
#include "Support/ReportCapture.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace {

using GMAT::Matrix2C;
using GMAT::Matrix3C;
using GMAT::Matrix4C;

constexpr char s_szAlgebra[] = R"(..\..\Components\GeoMath\Source\API_Hdr\GMAT_Algebra)";

Matrix4C MatrixOf(const std::vector<double>& elements)
{
    Matrix4C matrix;
    std::memcpy(static_cast<void*>(&matrix), elements.data(), sizeof matrix);
    return matrix;
}

std::vector<double> ElementsOf(const Matrix4C& matrix)
{
    std::vector<double> elements(16);
    std::memcpy(elements.data(), &matrix, sizeof matrix);
    return elements;
}

template<int N>
GMAT::SquareMatrixT<N> Product(const GMAT::SquareMatrixT<N>& a, const GMAT::SquareMatrixT<N>& b)
{
    GMAT::SquareMatrixT<N> product;
    for (int i = 0; i < N; ++i) {
        for (int j = 0; j < N; ++j) {
            product.At(i, j) = 0;
            for (int k = 0; k < N; ++k)
                product.At(i, j) += a.At(i, k) * b.At(k, j);
        }
    }
    return product;
}

template<int N>
void ExpectIdentity(const GMAT::SquareMatrixT<N>& matrix, double tolerance)
{
    for (int i = 0; i < N; ++i) {
        for (int j = 0; j < N; ++j)
            EXPECT_NEAR(matrix.At(i, j), i == j ? 1.0 : 0.0, tolerance) << i << ' ' << j;
    }
}

template<int N>
void ExpectInverseOfRandomMatrices()
{
    std::mt19937 random(N);
    std::uniform_real_distribution<double> number(-10, 10);
    for (int run = 0; run < 100; ++run) {
        GMAT::SquareMatrixT<N> matrix, inverse;
        for (int i = 0; i < N * N; ++i)
            matrix.At(i / N, i % N) = number(random);
        for (int i = 0; i < N; ++i)
            matrix.At(i, i) += 40;
        ASSERT_TRUE(matrix.Inverse(inverse));
        ExpectIdentity(Product(matrix, inverse), 1e-12);
    }
}

template<int N>
void ExpectRowsReported(const char* text)
{
    const Support::ReportCapture reports;
    GMAT::SquareMatrixT<N> matrices[3]; // so that the rows before and behind the middle one exist
    const GMAT::SquareMatrixT<N>& constant = matrices[1];
    EXPECT_EQ(static_cast<void*>(&matrices[1][0]), &matrices[1]);
    EXPECT_EQ(&constant[N - 1], &constant.v[N - 1]);
    EXPECT_EQ(reports.Reports().size(), 0u);
    EXPECT_EQ(static_cast<void*>(&matrices[1][N]), &matrices[2]);
    EXPECT_EQ(static_cast<const void*>(&constant[-1]), &matrices[0].v[N - 1]);
    ASSERT_EQ(reports.Count(text), 2u);
    EXPECT_EQ(reports.Reports()[0].file, s_szAlgebra);
}

TEST(Matrix, ADefaultMatrixIsTheIdentity)
{
    ExpectIdentity(Matrix4C(), 0.0);
    ExpectIdentity(Matrix3C(), 0.0);
    ExpectIdentity(Matrix2C(), 0.0);
}

TEST(Matrix, ElementRowColumnIsTheDoubleAtFourTimesRowPlusColumn)
{
    Matrix4C matrix;
    matrix.v[2].m_tuple[3] = 7.0;
    EXPECT_EQ(ElementsOf(matrix)[4 * 2 + 3], 7.0);
    EXPECT_EQ(matrix.At(2, 3), 7.0);
    EXPECT_EQ(sizeof(Matrix4C), 128u);
    EXPECT_EQ(sizeof(Matrix3C), 72u);
    EXPECT_EQ(sizeof(Matrix2C), 32u);
}

TEST(Matrix, ARowOutsideAFourByFourMatrixIsReportedAndAnsweredAsComputed)
{
    ExpectRowsReported<4>("i >= 0 && i < 4");
}

TEST(Matrix, ARowOutsideAThreeByThreeMatrixIsReportedAndAnsweredAsComputed)
{
    ExpectRowsReported<3>("i >= 0 && i < 3");
}

TEST(Matrix, ARowOutsideATwoByTwoMatrixIsReportedAndAnsweredAsComputed)
{
    ExpectRowsReported<2>("i >= 0 && i < 2");
}

TEST(Matrix, AMatrixTimesItsInverseIsTheIdentity)
{
    ExpectInverseOfRandomMatrices<4>();
    ExpectInverseOfRandomMatrices<3>();
    ExpectInverseOfRandomMatrices<2>();
}

TEST(Matrix, TheInverseOfATranslationIsExact)
{
    Matrix4C inverse;
    ASSERT_TRUE(MatrixOf({1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1}).Inverse(inverse));
    EXPECT_EQ(ElementsOf(inverse),
              (std::vector<double>{1, 0, 0, -10, 0, 1, 0, -20, 0, 0, 1, -30, 0, 0, 0, 1}));
}

TEST(Matrix, AZeroOnTheDiagonalDoesNotStopTheInverse)
{
    const Support::ReportCapture reports;
    Matrix4C inverse;
    const std::vector<double> swap{0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0};
    ASSERT_TRUE(MatrixOf(swap).Inverse(inverse));
    EXPECT_EQ(ElementsOf(inverse), swap);
    EXPECT_EQ(reports.Reports().size(), 0u);
}

TEST(Matrix, ASingularMatrixIsReportedAndLeavesTheResultAsItWas)
{
    const Support::ReportCapture reports;
    Matrix3C singular, result;
    singular.At(1, 1) = 0.0;
    result.At(0, 2) = 5.0;
    EXPECT_FALSE(singular.Inverse(result));
    EXPECT_EQ(result.At(0, 2), 5.0);
    ASSERT_EQ(reports.Count("a.v[j].m_tuple[j] != 0.0"), 1u);
    EXPECT_EQ(reports.Reports()[0].file, s_szAlgebra);
}

TEST(TransformPosition, AddsTheTranslation)
{
    double x = 1, y = 2, z = 3;
    GMAT::TransformPosition(MatrixOf({1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1}), x, y, z);
    EXPECT_EQ(x, 11);
    EXPECT_EQ(y, 22);
    EXPECT_EQ(z, 33);
}

TEST(TransformPosition, TheLastRowDivides)
{
    double x = 1, y = 2, z = 3;
    GMAT::TransformPosition(MatrixOf({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2}), x, y, z);
    EXPECT_EQ(x, 0.5);
    EXPECT_EQ(y, 1.0);
    EXPECT_EQ(z, 1.5);
}

TEST(TransformPosition, AWOfZeroGivesInfinityOrNotANumber)
{
    double x = 1, y = -2, z = 0;
    GMAT::TransformPosition(MatrixOf({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}), x, y, z);
    EXPECT_EQ(x, std::numeric_limits<double>::infinity());
    EXPECT_EQ(y, -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(z));
}

TEST(TransformPosition, EveryBitIsThatOfTheLongComputation)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> usual(-1000, 1000);
    for (int run = 0; run < 20000; ++run) {
        const auto number = [&] { return run % 4 == 0 ? Support::OddNumber(random) : usual(random); };
        std::vector<double> elements(16);
        for (double& element : elements)
            element = number();
        Support::PlainPoint plain;
        double x = plain.x = number();
        double y = plain.y = number();
        double z = plain.z = number();
        GMAT::TransformPosition(MatrixOf(elements), x, y, z);
        Support::PlainTransform(elements, plain);
        ASSERT_TRUE(Support::IsSame(x, plain.x) && Support::IsSame(y, plain.y) && Support::IsSame(z, plain.z))
            << run;
    }
}

TEST(TransformPosition, TheInverseMappingLeadsBack)
{
    const Matrix4C matrix = MatrixOf({0, -1, 0, 10, 1, 0, 0, 20, 0, 0, 2, 30, 0, 0, 0, 1});
    double x = 1, y = 2, z = 3;
    GMAT::TransformPosition(matrix, x, y, z);
    ASSERT_TRUE(GMAT::InverseTransformPosition(matrix, x, y, z));
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 2);
    EXPECT_EQ(z, 3);
}

TEST(TransformPosition, TheInverseMappingOfASingularMatrixLeavesThePosition)
{
    const Support::ReportCapture reports;
    Matrix4C singular;
    singular.At(2, 2) = 0;
    double x = 1, y = 2, z = 3;
    EXPECT_FALSE(GMAT::InverseTransformPosition(singular, x, y, z));
    EXPECT_EQ(x + y + z, 6);
    EXPECT_EQ(reports.Count("a.v[j].m_tuple[j] != 0.0"), 1u);
}

} // namespace
