// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The PNG library reports errors by a jump, which must not pass over C++ objects that need destroying: each
// call into the library stands in a function of its own that has none.
#include "Tools/Qsb/Render_Png.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Tools/Qsb/Tool_Error.h"

#include <csetjmp>
#include <cstdio>
#include <fmt/format.h>
#include <memory>
#include <png.h>

namespace Tool {

namespace {

void Jump(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void Ignore(png_structp, png_const_charp) {}

bool Begin(png_structp png, png_infop info, std::FILE* stream, png_uint_32 width, png_uint_32 height)
{
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_init_io(png, stream);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Scans are noisy: stronger compression takes several times as long and saves next to nothing.
    png_set_compression_level(png, 3);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB | PNG_FILTER_UP);
    png_write_info(png, info);
    return true;
}

bool WriteRow(png_structp png, png_const_bytep row)
{
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_write_row(png, row);
    return true;
}

bool End(png_structp png)
{
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    png_write_end(png, nullptr);
    return true;
}

/// The library's two structures.
class PngC
{
public:
    PngC() : m_pPng(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Jump, Ignore))
    {
        if (m_pPng != nullptr) m_pInfo = png_create_info_struct(m_pPng);
    }

    PngC(const PngC&) = delete;
    PngC& operator=(const PngC&) = delete;
    ~PngC() { png_destroy_write_struct(&m_pPng, &m_pInfo); }

    bool IsUsable() const { return m_pInfo != nullptr; }

    png_structp m_pPng;
    png_infop m_pInfo = nullptr;
};

struct CloseC
{
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

bool WriteAll(PngC& png, std::FILE* stream, std::uint32_t width, std::uint32_t height, const PngRowT& fill)
{
    if (!png.IsUsable() || !Begin(png.m_pPng, png.m_pInfo, stream, width, height)) return false;
    std::vector<std::uint8_t> row(std::size_t{width} * 4);
    for (std::uint32_t y = 0; y < height; ++y) {
        fill(y, row);
        if (!WriteRow(png.m_pPng, row.data())) return false;
    }
    return End(png.m_pPng);
}

} // namespace

void WritePng(const std::string& path, const std::string& name, std::uint32_t width, std::uint32_t height,
              const PngRowT& fill)
{
    std::unique_ptr<std::FILE, CloseC> stream(BSS::HAL::OpenStream(BSS::HAL::WidePath(path), "wb"));
    PngC png;
    const bool bWritten = stream != nullptr && WriteAll(png, stream.get(), width, height, fill);
    if (!bWritten || std::fclose(stream.release()) != 0) {
        throw ToolErrorC(s_iFailed, fmt::format("{}: cannot be written; is there room left?", name));
    }
}

} // namespace Tool
