#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Prints what read_records.cpp prints, through the C interface as another language sees it, with ctypes alone.

usage: read_records.py LIBRARY FOLDER"""
import ctypes, pathlib, struct, sys
from ctypes import POINTER, byref, c_char_p, c_double, c_int, c_size_t, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p

class Point(ctypes.Structure):
    _fields_ = [("x", c_double), ("y", c_double), ("z", c_double), ("red", c_uint8), ("green", c_uint8), ("blue", c_uint8),
                ("reserved", c_uint8), ("intensity", c_uint16), ("noise", c_uint16), ("row", c_uint32), ("column", c_uint32)]

class Facts(ctypes.Structure):
    _fields_ = [("points", c_uint64), ("rows", c_uint64), ("columns", c_uint64), ("instrument_height", c_double),
                ("transformation", c_double * 16), ("content", c_uint32), ("reserved", c_uint32)]

def load(path):
    library = ctypes.CDLL(path)
    for name, result, arguments in (("qsb_version", c_uint32, []),
                                    ("qsb_open", c_void_p, [c_char_p, c_char_p, c_size_t]),
                                    ("qsb_close", None, [c_void_p]),
                                    ("qsb_get_facts", c_int, [c_void_p, POINTER(Facts), c_size_t]),
                                    ("qsb_read", c_int, [c_void_p, POINTER(Point), c_size_t, c_size_t, POINTER(c_size_t)]),
                                    ("qsb_last_message", c_char_p, [c_void_p])):
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    return library

def checksum(data):
    """FNV-1a."""
    value = 0xCBF29CE484222325
    for byte in data:
        value = (value ^ byte) * 0x100000001B3 & 0xFFFFFFFFFFFFFFFF
    return f"{value:016x}"

def number(value):
    """A number that is none counts as one and the same."""
    return struct.pack("<d", value) if value == value else struct.pack("<Q", 0x7FF8 << 48)

def packed(point):
    return (number(point.x) + number(point.y) + number(point.z) + struct.pack(
        "<BBBHHII", point.red, point.green, point.blue, point.intensity, point.noise, point.row, point.column))

def describe(qsb, path):
    message = ctypes.create_string_buffer(128)
    reader = qsb.qsb_open(path, message, len(message))
    if not reader:
        return message.value.decode()
    facts = Facts()
    assert qsb.qsb_get_facts(reader, byref(facts), ctypes.sizeof(facts)) == 0
    pose = checksum(b"".join(map(number, facts.transformation)) + number(facts.instrument_height))
    batch, count, data, delivered = (Point * 4096)(), c_size_t(), bytearray(), 0
    while qsb.qsb_read(reader, batch, ctypes.sizeof(Point), len(batch), byref(count)) == 0 and count.value > 0:
        data += b"".join(map(packed, batch[:count.value]))
        delivered += count.value
    last = qsb.qsb_last_message(reader).decode()
    qsb.qsb_close(reader)
    return (f"{facts.points} points, grid {facts.rows} x {facts.columns}, content {facts.content}, pose {pose}, "
            f"{delivered} read, {checksum(data)}, {last}")

qsb, folder = load(sys.argv[1]), pathlib.Path(sys.argv[2])
assert ctypes.sizeof(Point) == 40 and ctypes.sizeof(Facts) == 168 and qsb.qsb_version() >> 16 == 1
names = (folder / "list.txt").read_bytes().splitlines()
assert names
for name in names:
    sys.stdout.buffer.write(name + b": " + describe(qsb, bytes(folder) + b"/" + name).encode() + b"\n")
