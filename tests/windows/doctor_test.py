#!/usr/bin/env python3
"""doctor_test.py VXR BUNDLE UNRULY: `vxr doctor` under Wine with the bundle, with one that misbehaves, and without a plug-in."""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

WINE = Path(__file__).resolve().parents[2] / "script" / "wine"
VXR, BUNDLE, UNRULY = (str(Path(argument).resolve()) for argument in sys.argv[1:4])


def doctor(path, how="", timeout=60):
    done = subprocess.run(
        [WINE, VXR, "doctor", "--json", "--timeout", str(timeout), path],
        stdin=subprocess.DEVNULL, capture_output=True, check=False, env=os.environ | {"VXR_UNRULY": how},
    )
    return done.returncode, json.loads(done.stdout)


def answers(diagnosis):
    return [verdict["lists"] for verdict in diagnosis["verdicts"]]


def codes(diagnosis):
    return [finding["code"] for finding in diagnosis["findings"]]


class Doctor(unittest.TestCase):
    def test_the_bundle_is_listed_by_todays_hosts_and_loaded_by_both_generations(self):
        code, diagnosis = doctor(BUNDLE)
        self.assertEqual(codes(diagnosis), [])
        self.assertEqual(answers(diagnosis), [True, False, False, False, True, True])
        self.assertEqual(code, 0)

    def test_a_name_in_any_script_is_found(self):
        with tempfile.TemporaryDirectory() as folder:
            copy = Path(folder) / "\u00dcn\u00efc\u00f6d\u00e9 \u65e5\u672c" / "copy.aex"
            copy.parent.mkdir()
            shutil.copy(BUNDLE, copy)
            code, diagnosis = doctor(str(copy))
        self.assertEqual((code, codes(diagnosis)), (0, []))

    def test_a_plug_in_that_misbehaves_ends_its_own_process_alone(self):
        for how, finding in [("exit", "load-crashed"), ("abort", "load-crashed"), ("hang", "load-timed-out"),
                             ("fail", "entry-failed"), ("", "registers-nothing")]:
            with self.subTest(how):
                _, diagnosis = doctor(UNRULY, how, timeout=5 if how == "hang" else 60)
                told = [one for one in codes(diagnosis) if one == finding]
                self.assertEqual(len(told), 2, codes(diagnosis))

    def test_other_files_are_no_plug_ins(self):
        code, diagnosis = doctor(__file__)
        self.assertEqual((code, codes(diagnosis)), (1, ["not-a-binary"]))
        code, diagnosis = doctor("Z:\\nowhere\\a.aex")
        self.assertEqual((code, codes(diagnosis)), (3, ["cannot-read"]))


unittest.main(argv=sys.argv[:1])
