# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Everything that computes is compiled so that no multiplication and addition become one step.

Results are the same bit for bit on every path, compiler and processor. A fused multiply-add rounds once instead of
twice, and compilers use it wherever they may as soon as a target has it, in intrinsics too.

usage: compile_flags_test.py compile_commands.json SOURCE-FOLDER
"""
import json
import pathlib
import shlex
import sys

LOOSE = {"-ffast-math", "-Ofast", "-funsafe-math-optimizations", "-fassociative-math", "-freciprocal-math"}
MUST_BE_THERE = {"Sio_QsbDecodeAvx2.cpp", "Sio_QsbDecodeBaseline.cpp", "Sio_QsbDecodePlain.cpp",
                 "SIO_QsbPointDefElements.cpp"}


def complaint(arguments):
    """What is wrong with the arguments of one compilation, or nothing."""
    contract = [a for a in arguments if a.startswith("-ffp-contract=")]
    if not contract:
        return "says nothing of -ffp-contract"
    if contract[-1] != "-ffp-contract=off":
        return "ends with " + contract[-1]
    loose = LOOSE.intersection(arguments)
    return "has " + " ".join(sorted(loose)) if loose else None


def arguments_of(entry):
    return entry["arguments"] if "arguments" in entry else shlex.split(entry["command"])


def self_test():
    assert complaint(["c++", "-O2"])
    assert complaint(["c++", "-ffp-contract=off", "-ffp-contract=fast"])
    assert complaint(["c++", "-ffp-contract=off", "-ffast-math"])
    assert complaint(["c++", "-ffp-contract=off", "-mfma"]) is None


def main(commands, folder):
    self_test()
    sources = pathlib.Path(folder).resolve()
    seen, bad = set(), []
    for entry in json.loads(pathlib.Path(commands).read_text(encoding="utf-8")):
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if sources not in path.parents or path.suffix != ".cpp":
            continue
        seen.add(path.name)
        if problem := complaint(arguments_of(entry)):
            bad.append(f"{path.relative_to(sources)}: {problem}")
    bad += [f"{name}: is not compiled" for name in sorted(MUST_BE_THERE - seen)]
    print("\n".join(bad) if bad else f"{len(seen)} sources are compiled without contraction")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
