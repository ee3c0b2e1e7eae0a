#!/usr/bin/env python3
"""The tool's work on setup files. Usage: setup_file_test.py TOOL"""
import re
import unittest

from harness import CAPTURES, CLOCK, ROOT, ToolTest
import vcd

REFERENCES = ROOT / "tests" / "data" / "setup"


class Convert(ToolTest):
    def test_a_capture_plays_the_same_from_its_setup_file(self):
        capture = CAPTURES / "uart_text.vcd"
        for options, out in (([], "system.pgs"), (["--instrument", "pg 1"], "module.pgs")):
            with self.subTest(out=out):
                self.run_good("convert", capture, out, *options)
                length = vcd.Vcd(capture).samples(1_000_000, {})[1]
                for source, pins in ((capture, "from_capture.vcd"), (out, "from_setup.vcd")):
                    self.run_good("run", source, "--vcd", pins, "--max-vectors", length)
                dumps = [(self.folder / name).read_text().split("$enddefinitions $end")[1]
                         for name in ("from_capture.vcd", "from_setup.vcd")]
                self.assertEqual(*dumps)

    def test_a_second_copy_equals_the_first(self):
        for name in ("without_program", "odd_views", "old_version"):
            with self.subTest(name=name):
                source, copies = REFERENCES / f"{name}.pgs", []
                for out in ("first.pgs", "second.pgs"):
                    self.run_good("convert", source, out)
                    source = out
                    date = rb"\d\d/\d\d/\d\d \d\d:\d\d [AP]M"
                    copies.append(re.sub(date, b"", (self.folder / out).read_bytes(), count=1))
                self.assertEqual(*copies)
                self.assertEqual(name == "without_program",
                                 "program: not saved" in self.run_good("info", out).stdout)

    def test_what_is_refused(self):
        self.write("clock.vcd", CLOCK)
        whole = (REFERENCES / "minimal.pgs").read_bytes()
        self.write("bad.pgs", (REFERENCES / "random_a.pgs").read_bytes()[:900])
        dump = self.run_good("dump", REFERENCES / "minimal.pgs").stdout.splitlines()
        mode = int(next(line for line in dump if "channel mode" in line).split()[0], 16)
        self.write("mode.pgs", whole[:mode] + b"\x07" + whole[mode + 1:])
        rows = [  # arguments, words on standard error
            (["convert", "clock.vcd", "out.pgs", "--instrument", "none"], "none"),
            (["convert", "clock.vcd", "missing/out.pgs"], "missing/out.pgs"),
            (["convert", REFERENCES / "simple.pgs", "out.pgs", "--period", "1us"], "--period"),
            (["run", "bad.pgs"], "bad.pgs"),
            (["check", "mode.pgs"], f"'channel mode' at byte {mode:,}"),
            (["info", "clock.vcd"], "not a setup file"),
            (["dump", "bad.pgs"], "instrument 0"),
            (["merge", REFERENCES / "simple.pgs", "--modules", "0-1", "out.pgs"], "cannot be merged"),
            (["merge", REFERENCES / "simple.pgs", "--modules", "1", "out.pgs"], "0-1"),
            (["testdata", "nonsense", "out.pgs"], "walking-ones"),
            (["run", REFERENCES / "simple.pgs", "--period", "1us"], "--period"),
        ]
        for arguments, words in rows:
            with self.subTest(arguments=arguments):
                done = self.run_tool(*arguments)
                self.assertEqual(2, done.returncode, done.stdout)
                self.assertIn(words, done.stderr)
                self.assertEqual(["bad.pgs", "clock.vcd", "mode.pgs"], self.files())


class Look(ToolTest):
    def test_info_and_dump_tell_the_same_file(self):
        source = REFERENCES / "two_modules_half.pgs"
        self.assertIn("2 modules, HALF", self.run_good("info", source).stdout)
        dump = self.run_tool("dump", source).stdout.splitlines()
        ends = [int(offset, 16) + int(size) for offset, size, *_ in map(str.split, dump)]
        self.assertEqual(ends[:-1], [int(line.split()[0], 16) for line in dump[1:]])  # without a gap
        self.assertEqual(source.stat().st_size, ends[-1])


class Make(ToolTest):
    def test_generated_programs_check_and_play(self):
        for kind, half in (("max-events", False), ("max-subsequences", False), ("max-block-size", True)):
            with self.subTest(kind=kind):
                options = ["--half"] if half else []
                self.run_good("testdata", kind, "test.pgs", *options)
                self.run_good("check", "test.pgs")
                self.run_good("run", "test.pgs", "--vcd", "pins.vcd", "--max-vectors", 500)


if __name__ == "__main__":
    unittest.main()
