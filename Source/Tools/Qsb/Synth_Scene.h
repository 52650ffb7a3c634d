// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A scene of solids that rays can be sent into. Once built it does not change and may be used from many
// threads.
#pragma once

#include "Tools/Qsb/Synth_Shape.h"

#include <cstdint>
#include <vector>

namespace Tool {

/// What a ray meets, in world coordinates.
struct HitC
{
    double dDistance = 0.0;
    Vec3C oPoint;
    Vec3C oNormal;
    const ShapeC* poShape = nullptr; ///< owned by the scene
    SurfacePlaceC oPlace;            ///< the same place as the shape's material sees it
};

class SceneC
{
public:
    /// Takes the solids and sorts them into a tree of boxes.
    explicit SceneC(std::vector<ShapeC> shapes);

    /// The nearest solid along the ray up to `farthest`. False when there is none.
    bool Meet(const RayC& ray, double farthest, HitC& hit) const noexcept;

    /// Whether any solid stands in the way before `farthest`.
    bool IsBlocked(const RayC& ray, double farthest) const noexcept;

    const std::vector<ShapeC>& GetShapes() const noexcept { return m_vecShapes; }

private:
    struct NodeC
    {
        ExtentC oExtent;
        std::uint32_t uiFirst =
            0; ///< first shape of a leaf, else the second child; the first child follows the node
        std::uint32_t nShapes = 0; ///< 0: not a leaf
    };

    std::uint32_t Build(std::uint32_t uiFirst, std::uint32_t uiEnd);
    template<typename VisitT>
    void Walk(const RayC& ray, double& farthest, VisitT visit) const noexcept;

    std::vector<ShapeC> m_vecShapes;
    std::vector<NodeC> m_vecNodes;
};

} // namespace Tool
