// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Storing the elements of a record that have several numbers.
#pragma once

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbRecordLayout.h"

namespace SIO {

inline void StoreColor(char* pDestination, const QsbPointC& point)
{
    StoreLittleEndian(pDestination, point.red);
    StoreLittleEndian(pDestination + 1, point.green);
    StoreLittleEndian(pDestination + 2, point.blue);
    StoreLittleEndian(pDestination + 3, s_ucFourthChannel);
}

/// The indices take as many bytes as T.
template<typename T>
void StoreGrid(char* pDestination, const QsbPointC& point)
{
    StoreLittleEndian(pDestination, static_cast<T>(point.gridIndex0));
    StoreLittleEndian(pDestination + sizeof(T), static_cast<T>(point.gridIndex1));
}

} // namespace SIO
