# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Reads a binary PLY file with Open3D and transforms it, whenever it is told to.

usage: peer_open3d.py FILE"""
import sys, time

try:
    import numpy as np
    import open3d
except ImportError as error:
    print(error)
    sys.exit(1)

MATRIX = np.array([[0.8, -0.6, 0, 10], [0.6, 0.8, 0, 20], [0, 0, 1, 30], [0, 0, 0, 1.0]])
print("ready Open3D", open3d.__version__, flush=True)
for line in sys.stdin:
    begin = time.perf_counter()
    open3d.io.read_point_cloud(sys.argv[1]).transform(MATRIX)
    print(f"{time.perf_counter() - begin:.6f}", flush=True)
