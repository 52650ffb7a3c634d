// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Decoding with plain arithmetic, in the order that is fixed. Compiled everywhere, so that machines without
// instructions of their own here run what is tested on the others.
#include "Sio/Sio_QsbDecodeLoop.h"

#include <cstring>

namespace SIO {

namespace {

class TransformerC
{
public:
    explicit TransformerC(const double* m) { std::memcpy(m_ad, m, sizeof m_ad); }

    void operator()(double x, double y, double z, QsbPointC& point) const
    {
        const double* m = m_ad;
        const double w = m[12] * x + m[13] * y + m[14] * z + m[15];
        point.x = (m[0] * x + m[1] * y + m[2] * z + m[3]) / w;
        point.y = (m[4] * x + m[5] * y + m[6] * z + m[7]) / w;
        point.z = (m[8] * x + m[9] * y + m[10] * z + m[11]) / w;
    }

private:
    double m_ad[16];
};

} // namespace

void DecodePlain(const QsbDecodeStretchT& stretch)
{
    DecodeInLoop<TransformerC>(stretch);
}

} // namespace SIO
