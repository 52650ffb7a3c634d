#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""The worked example of Docs/file-format.md is a scan, and the example host says of it what the page says.

usage: doc_example_test.py DOC READ_SCAN QSB"""
import pathlib, re, subprocess, sys, tempfile

def fenced(text, kind):
    return re.search(rf"^```{kind}\n(.*?)^```$", text, re.M | re.S)[1]

def without_speed(text):
    return re.sub(r"( points), [0-9.e+]+ million points/s", r"\1", text)

document, read_scan, qsb = sys.argv[1:]
page = pathlib.Path(document).read_text(encoding="utf-8").split("## A worked example")[1]
with tempfile.TemporaryDirectory() as folder:
    scan = pathlib.Path(folder, "example.qsb")
    scan.write_bytes(bytes.fromhex("".join(line[6:] for line in fenced(page, "text").splitlines())))
    assert scan.stat().st_size == 188, "the page says 188 bytes"
    subprocess.run([qsb, "check", "--deep", scan], check=True)
    said = subprocess.run([read_scan, scan], check=True, capture_output=True, text=True).stdout
if without_speed(said) != fenced(page, "console"):
    sys.exit(f"the page shows\n{fenced(page, 'console')}\nbut the host says\n{said}")
