// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A PNG file as pixels, for tests.
#pragma once

#include <array>
#include <cstdint>
#include <png.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace Support {

using RgbaT = std::array<std::uint8_t, 4>;

inline constexpr RgbaT s_aTransparent{0, 0, 0, 0};

class PngPicture
{
public:
    explicit PngPicture(const std::string& path)
    {
        m_image.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&m_image, path.c_str()) == 0)
            throw std::runtime_error(m_image.message);
        m_image.format = PNG_FORMAT_RGBA;
        m_bytes.resize(PNG_IMAGE_SIZE(m_image));
        if (png_image_finish_read(&m_image, nullptr, m_bytes.data(), 0, nullptr) == 0) {
            throw std::runtime_error(m_image.message);
        }
    }

    std::uint32_t Width() const { return m_image.width; }
    std::uint32_t Height() const { return m_image.height; }

    RgbaT At(std::uint32_t x, std::uint32_t y) const
    {
        const std::size_t at = (std::size_t{y} * Width() + x) * 4;
        return {m_bytes.at(at), m_bytes.at(at + 1), m_bytes.at(at + 2), m_bytes.at(at + 3)};
    }

    std::size_t CountOpaque() const
    {
        std::size_t count = 0;
        for (std::size_t at = 3; at < m_bytes.size(); at += 4)
            count += m_bytes[at] == 255 ? 1 : 0;
        return count;
    }

private:
    png_image m_image{};
    std::vector<std::uint8_t> m_bytes;
};

} // namespace Support
