// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a camera on the scanner sees: the colour of a place under the lights of the room, with shadows.
#pragma once

#include "Tools/Qsb/Synth_Random.h"
#include "Tools/Qsb/Synth_Scene.h"

namespace Tool {

/// The colour as bytes, 0 to 255. `random` is the camera's noise.
void Shade(const SceneC& scene, const HitC& hit, const SurfaceC& surface, RandomC& random,
           double (&color)[3]) noexcept;

} // namespace Tool
