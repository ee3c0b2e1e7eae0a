#!/usr/bin/env python3
"""Replays captures with the tool: what comes out of the pins must be the capture, sample by sample, and
must decode to the same text. Usage: replay_test.py TOOL"""
import json
import random
import shutil
import subprocess
import unittest

from harness import CAPTURES, ToolTest, dump
import vcd

DECODERS = [line.split("\t") for line in (CAPTURES / "decoders.tsv").read_text().splitlines()
            if not line.startswith("#")]


class CapturesOfTheTree(ToolTest):
    def replay(self, name, *options):
        self.run_good("run", CAPTURES / f"{name}.vcd", "--vcd", "pins.vcd", *options)
        return self.folder / "pins.vcd"

    def test_pins_are_the_capture(self):
        for name, rate, *_ in DECODERS:
            for options in ([], ["--bits"], ["--step", "777"]):
                with self.subTest(name=name, options=options):
                    pins = self.replay(name, *options)
                    self.assertEqual("", vcd.same(CAPTURES / f"{name}.vcd", pins, int(rate)))

    @unittest.skipUnless(shutil.which("sigrok-cli"), "sigrok-cli is not installed")
    def test_pins_decode_to_the_same_text(self):
        for name, *_ in DECODERS:
            with self.subTest(name=name):
                decoded = subprocess.run([CAPTURES / "decode", name, self.replay(name, "--bits")],
                                         check=True, capture_output=True).stdout
                self.assertEqual((CAPTURES / f"{name}.txt").read_bytes(), decoded)

    def test_trace_holds_the_whole_download(self):
        self.replay("memory_bus", "--trace", "calls.jsonl")
        calls = [json.loads(line) for line in (self.folder / "calls.jsonl").read_text().splitlines()]
        operations = [(call["module"], call["op"]) for call in calls]
        self.assertIn((0, "DataVectorsSM"), operations)
        self.assertIn((0, "Start"), operations)
        self.assertNotIn((1, "Start"), operations)  # follows module 0
        self.assertFalse([op for _, op in operations if op.startswith(("Get", "Is"))])


class GeneratedCaptures(ToolTest):
    """Rates, widths, names and activities that real analyzers give; the seeds are fixed."""

    ROWS = [  # rate in Hz, ticks a second, text of a tick, scalars, vectors, changes, most idle samples
        (1_000_000, 10**6, "1 us", 1, 0, 400, 5),
        (24_000_000, 10**10, "100 ps", 8, 0, 700, 20),
        (24_000_000, 10**9, "1 ns", 3, 1, 500, 300),
        (16_000_000, 10**10, "100ps", 6, 2, 300, 3),
        (3_300_000, 10**12, "1 ps", 2, 0, 600, 9),
        (500_000, 10**9, "1 ns", 34, 0, 800, 40_000),
        (100_000_000, 10**9, "1ns", 0, 3, 900, 2),
        (12_000_000, 10**11, "10 ps", 64, 2, 300, 100),
        (200_000_000, 10**9, "1ns", 4, 0, 500, 4),  # HALF mode alone plays 5 ns
    ]
    NAMES = ["D+", "D-", "/M1", "0", "7", "A#", "CLK", "clk", "CS_n", "$x", "a.b", "None"]

    def capture(self, row, seed):
        rate, ticks, tick, scalars, vectors, changes, idle = row
        source = random.Random(seed)
        widths = [1] * scalars + [source.randint(2, 20) for _ in range(vectors)]
        names = (self.NAMES + [f"S{i}" for i in range(len(widths))])[:len(widths)]
        identifiers = [chr(33 + i) for i in range(len(widths))]
        variables = [(w, i, n if w == 1 else f"{n} [{w - 1}:0]")
                     for w, i, n in zip(widths, identifiers, names)]
        values = [0] * len(widths)
        token = lambda i: (f"{values[i]}{identifiers[i]}" if widths[i] == 1
                           else f"b{values[i]:b} {identifiers[i]}")
        sample, out = 0, [(0, [token(i) for i in range(len(widths))])]
        for _ in range(changes):
            sample += source.randint(1, source.choice([1, 2, idle]))
            changed = source.sample(range(len(widths)), source.randint(1, min(3, len(widths))))
            for i in changed:
                values[i] ^= source.randint(1, 2 ** widths[i] - 1)
            out.append((round(sample * ticks / rate), [token(i) for i in changed]))
        end = round((sample + source.randint(1, idle)) * ticks / rate)
        return dump(tick, variables, out, end)

    def test_pins_are_the_capture(self):
        for seed, row in enumerate(self.ROWS):
            with self.subTest(row=row):
                self.write("capture.vcd", self.capture(row, seed))
                for options in ([], ["--bits"]):
                    self.run_good("run", "capture.vcd", "--vcd", "pins.vcd", *options)
                    difference = vcd.same(self.folder / "capture.vcd", self.folder / "pins.vcd", row[0])
                    self.assertEqual("", difference)


if __name__ == "__main__":
    unittest.main()
