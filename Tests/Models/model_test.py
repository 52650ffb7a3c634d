#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Lets spin try every order of steps of a model. Without defects none may break a claim; with each of them one must.

usage: model_test.py SPIN COMPILER MODEL [DEFECT[,DEFINITION]...]
"""
import pathlib
import subprocess
import sys
import tempfile


def search(spin, compiler, model, definitions, folder):
    """The report of the search for a broken claim through all states."""
    def run(*command):
        return subprocess.run(command, cwd=folder, check=True, capture_output=True, text=True).stdout
    run(spin, *(f'-D{definition}' for definition in definitions), '-a', model)
    # Warnings about what spin writes say nothing of the model.
    run(compiler, '-w', '-O1' if definitions else '-O2', '-DSAFETY', '-DMEMLIM=2000', '-o', 'pan', 'pan.c')
    return run('./pan', '-m10000')


def main():
    spin, compiler, model, *defects = sys.argv[1:]
    model = str(pathlib.Path(model).resolve())
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        for definitions in [defect.split(',') for defect in defects] or [[]]:
            report = search(spin, compiler, model, definitions, folder)
            complete = 'Search not completed' not in report and 'max search depth too small' not in report
            right = 'errors: 1\n' in report if definitions else complete and 'errors: 0\n' in report
            print(' '.join(definitions) or 'as it is:', 'as expected' if right else 'NOT AS EXPECTED:\n' + report)
            failed = failed or not right
    return failed


if __name__ == '__main__':
    sys.exit(main())
