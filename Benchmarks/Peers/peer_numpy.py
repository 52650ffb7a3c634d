# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Reads the stored points of a scan with numpy and transforms them, whenever it is told to.

usage: peer_numpy.py SCAN OFFSET"""
import sys, time

try:
    import numpy as np
except ImportError as error:
    print(error)
    sys.exit(1)

POINT = np.dtype([("position", "<f4", 3), ("intensity", "<u2"), ("color", "u1", 4)])
MATRIX = np.array([[0.8, -0.6, 0, 10], [0.6, 0.8, 0, 20], [0, 0, 1, 30], [0, 0, 0, 1.0]])
path, offset = sys.argv[1], int(sys.argv[2])

def decode(stored):
    stored_positions = stored["position"].astype(np.float64)
    positions = stored_positions @ MATRIX[:3, :3].T + MATRIX[:3, 3]
    positions /= (stored_positions @ MATRIX[3, :3] + MATRIX[3, 3])[:, np.newaxis]
    return positions, stored["intensity"].copy(), stored["color"][:, :3].copy()

def stream():
    total = 0.0
    with open(path, "rb") as file:
        file.seek(offset)
        while len(stored := np.fromfile(file, POINT, 10000)):
            total += decode(stored)[0][len(stored) // 2, 0]
    return total

def keep():
    return decode(np.fromfile(path, POINT, offset=offset))[0][-1, 0]

print("ready numpy", np.__version__, flush=True)
for line in sys.stdin:
    begin = time.perf_counter()
    {"stream": stream, "keep": keep}[line.strip()]()
    print(f"{time.perf_counter() - begin:.6f}", flush=True)
