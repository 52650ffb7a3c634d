/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The ScanReader developers
 *
 * Marks what the shared libraries export. A host needs to define nothing; the build of the libraries themselves defines
 * SCANREADER_BUILD or SCANREADER_C_BUILD, a static link of their parts SCANREADER_STATIC.
 */
#ifndef SCANREADER_EXPORT_H
#define SCANREADER_EXPORT_H

#if defined(SCANREADER_STATIC)
#define SCANREADER_EXPORTED
#define SCANREADER_IMPORTED
#elif defined(_WIN32)
#define SCANREADER_EXPORTED __declspec(dllexport)
#define SCANREADER_IMPORTED __declspec(dllimport)
#else
#define SCANREADER_EXPORTED __attribute__((visibility("default")))
#define SCANREADER_IMPORTED __attribute__((visibility("default")))
#endif

/* The C++ classes, library ScanReader. */
#if defined(SCANREADER_BUILD)
#define SCANREADER_API SCANREADER_EXPORTED
#else
#define SCANREADER_API SCANREADER_IMPORTED
#endif

/* The C functions, library ScanReaderC. */
#if defined(SCANREADER_C_BUILD)
#define SCANREADER_C_API SCANREADER_EXPORTED
#else
#define SCANREADER_C_API SCANREADER_IMPORTED
#endif

#endif
