// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A first look at the values of some fields, for what their types do not tell: which encoding holds them all.
#pragma once

#include "Tools/Qsb/Tool_PointSource.h"

#include <functional>
#include <limits>
#include <vector>

namespace Tool {

/// Called after each batch with the number of points in it.
using BatchDoneT = std::function<void(std::size_t)>;

struct FieldSurveyC
{
    double dLeast = std::numeric_limits<double>::infinity(); ///< of the values that are no NaN
    double dGreatest = -std::numeric_limits<double>::infinity();
};

/// Reads every point; the result has one entry per field of `fields`.
std::vector<FieldSurveyC> SurveyFields(PointSourceI& source, const std::vector<std::size_t>& fields,
                                       const BatchDoneT& batchDone);

} // namespace Tool
