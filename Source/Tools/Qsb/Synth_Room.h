// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The room that the simulated scanner stands in: 7.2 m by 5.4 m by 2.75 m from a corner of its floor, x to
// the east, y to the north. A window in the north and the end of a corridor in the east give nothing back.
#pragma once

#include "Tools/Qsb/Synth_Scene.h"
#include "Tools/Qsb/Synth_SceneBuilder.h"

#include <cstdint>

namespace Tool {

inline constexpr Vec3C s_oRoomSize{7.2, 5.4, 2.75};
inline constexpr Vec3C s_oLampLight{4.95, 3.65, 1.60}; ///< below the shade of the lamp over the table
inline constexpr Vec3C s_oWindowMiddle{2.9, 5.4, 1.55};

/// Room, furniture and what stands about. `seed` changes small things: books, leaves, how the chairs stand.
SceneC FurnishedRoom(std::uint64_t seed);

// Its parts.
void BuildShell(SceneBuilderC& builder);
void BuildFurniture(SceneBuilderC& builder, std::uint64_t seed);
void BuildThings(SceneBuilderC& builder, std::uint64_t seed);
void BuildPerson(SceneBuilderC& builder);

} // namespace Tool
