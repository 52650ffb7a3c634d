// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Least and greatest values, batch by batch.
#include "Tools/Qsb/Tool_FieldSurvey.h"

namespace Tool {

std::vector<FieldSurveyC> SurveyFields(PointSourceI& source, const std::vector<std::size_t>& fields,
                                       const BatchDoneT& batchDone)
{
    std::vector<FieldSurveyC> surveys(fields.size());
    std::vector<std::vector<double>> columns;
    source.Select(fields);
    while (const std::size_t nPoints = source.Read(columns)) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            for (const double dValue : columns[i]) {
                // Comparisons with NaN are false, so it changes nothing.
                if (dValue < surveys[i].dLeast) surveys[i].dLeast = dValue;
                if (dValue > surveys[i].dGreatest) surveys[i].dGreatest = dValue;
            }
        }
        batchDone(nPoints);
    }
    return surveys;
}

} // namespace Tool
