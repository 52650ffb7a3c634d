// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The tree of boxes: each node halves its solids along the longest side of the box around their middles.
#include "Tools/Qsb/Synth_Scene.h"

#include <algorithm>
#include <utility>

namespace Tool {

namespace {

constexpr std::uint32_t s_nLeafShapes = 3;
constexpr double s_dNearest = 1e-6; ///< a ray does not meet the surface it starts on

ExtentC Joined(const ExtentC& a, const ExtentC& b)
{
    return {{std::min(a.oMin.x, b.oMin.x), std::min(a.oMin.y, b.oMin.y), std::min(a.oMin.z, b.oMin.z)},
            {std::max(a.oMax.x, b.oMax.x), std::max(a.oMax.y, b.oMax.y), std::max(a.oMax.z, b.oMax.z)}};
}

Vec3C InverseOf(const Vec3C& d)
{
    // A huge number instead of infinity keeps 0 * infinity out of the comparison below.
    const auto inverse = [](double v) { return std::fabs(v) < 1e-15 ? 1e15 : 1.0 / v; };
    return {inverse(d.x), inverse(d.y), inverse(d.z)};
}

bool Touches(const ExtentC& box, const Vec3C& from, const Vec3C& inverse, double farthest) noexcept
{
    double in = 0.0;
    double out = farthest;
    const auto narrow = [&](double low, double high, double origin, double scale) {
        const double a = (low - origin) * scale;
        const double b = (high - origin) * scale;
        in = std::max(in, std::min(a, b));
        out = std::min(out, std::max(a, b));
    };
    narrow(box.oMin.x, box.oMax.x, from.x, inverse.x);
    narrow(box.oMin.y, box.oMax.y, from.y, inverse.y);
    narrow(box.oMin.z, box.oMax.z, from.z, inverse.z);
    return in <= out;
}

} // namespace

SceneC::SceneC(std::vector<ShapeC> shapes) : m_vecShapes(std::move(shapes))
{
    if (!m_vecShapes.empty()) Build(0, static_cast<std::uint32_t>(m_vecShapes.size()));
}

std::uint32_t SceneC::Build(std::uint32_t uiFirst, std::uint32_t uiEnd)
{
    const auto begin = m_vecShapes.begin() + uiFirst;
    const auto end = m_vecShapes.begin() + uiEnd;
    ExtentC extent = ExtentOf(*begin);
    ExtentC middles{begin->oFrame.oOrigin, begin->oFrame.oOrigin};
    for (auto it = begin; it != end; ++it) {
        extent = Joined(extent, ExtentOf(*it));
        middles = Joined(middles, {it->oFrame.oOrigin, it->oFrame.oOrigin});
    }
    const auto uiNode = static_cast<std::uint32_t>(m_vecNodes.size());
    m_vecNodes.push_back({extent, uiFirst, uiEnd - uiFirst});
    if (uiEnd - uiFirst <= s_nLeafShapes) return uiNode;

    const Vec3C size = middles.oMax - middles.oMin;
    const int axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
    // A stable sort gives one order on every platform, also where middles coincide.
    std::stable_sort(begin, end, [axis](const ShapeC& a, const ShapeC& b) {
        return a.oFrame.oOrigin[axis] < b.oFrame.oOrigin[axis];
    });
    const std::uint32_t uiMiddle = uiFirst + (uiEnd - uiFirst) / 2;
    Build(uiFirst, uiMiddle);
    const std::uint32_t uiSecond = Build(uiMiddle, uiEnd);
    m_vecNodes[uiNode].uiFirst = uiSecond;
    m_vecNodes[uiNode].nShapes = 0;
    return uiNode;
}

/// Calls `visit` for each solid whose boxes the ray touches before `farthest`, which the visit may lower; a
/// true answer ends the walk.
template<typename VisitT>
void SceneC::Walk(const RayC& ray, double& farthest, VisitT visit) const noexcept
{
    if (m_vecNodes.empty()) return;
    const Vec3C inverse = InverseOf(ray.oDirection);
    std::uint32_t auiStack[64]; // The tree is balanced: 64 levels are more shapes than there is memory.
    std::size_t nStack = 0;
    auiStack[nStack++] = 0;
    while (nStack != 0) {
        const std::uint32_t uiNode = auiStack[--nStack];
        const NodeC& node = m_vecNodes[uiNode];
        if (!Touches(node.oExtent, ray.oOrigin, inverse, farthest)) continue;
        if (node.nShapes == 0) {
            auiStack[nStack++] = node.uiFirst;
            auiStack[nStack++] = uiNode + 1;
            continue;
        }
        for (std::uint32_t i = 0; i < node.nShapes; ++i) {
            if (visit(m_vecShapes[node.uiFirst + i])) return;
        }
    }
}

bool SceneC::Meet(const RayC& ray, double farthest, HitC& hit) const noexcept
{
    EntryC entry;
    const ShapeC* poNearest = nullptr;
    Walk(ray, farthest, [&](const ShapeC& shape) {
        if (Enter(shape, ray, s_dNearest, farthest, entry)) {
            farthest = entry.dDistance;
            poNearest = &shape;
        }
        return false;
    });
    if (poNearest == nullptr) return false;
    const FrameC& frame = poNearest->oFrame;
    hit = {entry.dDistance,
           ray.oOrigin + entry.dDistance * ray.oDirection,
           frame.DirectionToWorld(entry.oNormal),
           poNearest,
           {entry.oPoint, entry.oNormal, HalfExtents(*poNearest)}};
    return true;
}

bool SceneC::IsBlocked(const RayC& ray, double farthest) const noexcept
{
    bool bBlocked = false;
    Walk(ray, farthest, [&](const ShapeC& shape) {
        EntryC entry;
        bBlocked = Enter(shape, ray, s_dNearest, farthest, entry);
        return bBlocked;
    });
    return bBlocked;
}

} // namespace Tool
