// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Marks what the shared library exports. A host needs to define nothing; the library's own build defines
// SCANREADER_BUILD, a static link of its parts SCANREADER_STATIC.
#ifndef SCANREADER_EXPORT_H
#define SCANREADER_EXPORT_H

#if defined(SCANREADER_STATIC)
#define SCANREADER_API
#elif defined(_WIN32)
#if defined(SCANREADER_BUILD)
#define SCANREADER_API __declspec(dllexport)
#else
#define SCANREADER_API __declspec(dllimport)
#endif
#else
#define SCANREADER_API __attribute__((visibility("default")))
#endif

#endif
