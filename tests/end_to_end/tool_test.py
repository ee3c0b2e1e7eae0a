#!/usr/bin/env python3
"""The tool as its user meets it: exit statuses, files that are left or not, interrupts, the progress bar.
Usage: tool_test.py TOOL"""
import os
import pty
import signal
import subprocess
import time
import unittest

from harness import CAPTURES, CLOCK, TOOL, ToolTest, dump
import vcd

ONE = [(1, "!", "A")]


class Usage(ToolTest):
    ROWS = [  # arguments, exit status, what must stand on stdout or stderr
        ([], 2, "modules"),
        (["--help"], 0, "modules"),
        (["run", "--help"], 0, "--max-vectors"),
        (["--version"], 0, "quillpg 1."),
        (["run"], 2, "FILE"),
        (["run", "clock.vcd", "more.vcd"], 2, "more.vcd"),
        (["run", "clock.vcd", "--max-vectors", "9223372036854775808"], 2, "max-vectors"),
        (["run", "clock.vcd", "--step", "2147483648"], 2, "step"),
        (["run", "clock.vcd", "--period", "soon"], 2, "soon"),
        (["run", "clock.vcd", "--stimulus", "none.txt"], 2, "none.txt"),
        (["check", "clock.vcd", "--vcd", "x"], 2, "--vcd"),
        (["run", "none.vcd"], 2, "none.vcd"),
        (["run", "."], 2, "folder"),
    ]

    def test_exit_status_and_word(self):
        self.write("clock.vcd", CLOCK)
        for arguments, status, word in self.ROWS:
            with self.subTest(arguments=arguments):
                done = self.run_tool(*arguments)
                self.assertEqual(status, done.returncode, done.stderr)
                self.assertIn(word, done.stdout + done.stderr)
                if status != 0:
                    self.assertEqual("", done.stdout)
                self.assertEqual(["clock.vcd"], self.files())


class Outputs(ToolTest):
    def test_what_cannot_be_written_is_refused_and_nothing_is_left(self):
        self.write("clock.vcd", CLOCK)
        (self.folder / "folder").mkdir()
        before = self.files()
        for out in ("missing/out.vcd", "folder", "/dev/full", "clock.vcd", "./clock.vcd", "/proc/out.vcd"):
            for option in ("--vcd", "--trace"):
                with self.subTest(out=out, option=option):
                    done = self.run_tool("run", "clock.vcd", option, out)
                    self.assertEqual(2, done.returncode)
                    self.assertIn(os.path.basename(out), done.stderr)
                    self.assertEqual(before, self.files())
        self.assertEqual(2, self.run_tool("run", "clock.vcd", "--vcd", "x", "--trace", "x").returncode)
        self.assertEqual(CLOCK, (self.folder / "clock.vcd").read_text())

    def test_simulation_configuration_never_replaces_its_setup_file(self):
        self.run_good("testdata", "cell", "--modules", "2", "cell.pg")
        setup = (self.folder / "cell.pg").read_bytes()
        for out in ("cell.pg", "./cell.pg", "missing/sim.ini"):
            with self.subTest(out=out):
                done = self.run_tool("sim-config", "cell.pg", out)
                self.assertEqual(2, done.returncode)
                self.assertIn(out, done.stderr)
                self.assertEqual(setup, (self.folder / "cell.pg").read_bytes())
        self.run_good("sim-config", "cell.pg", "sim.ini")
        written = (self.folder / "sim.ini").read_text()
        self.assertIn("\n2748 1064 3 1 V\n", written)
        self.assertEqual(2, written.count("\n2748 1064"))

    def test_full_standard_output_is_an_error(self):
        with open("/dev/full", "w") as full:
            done = subprocess.run([TOOL, "modules"], stdout=full, stderr=subprocess.PIPE, text=True)
        self.assertEqual(2, done.returncode)
        self.assertIn("standard output", done.stderr)


class Inputs(ToolTest):
    HEAD = "$timescale 1us $end $var wire 1 ! A $end $enddefinitions $end\n"
    BAD = [  # content, what must be said
        (b"\0\1\2\xff" * 4096, "bad.vcd"),
        (HEAD + "#0\n0!\n#5\n1!\n#4\n0!\n#9\n", "bad.vcd:6"),  # time runs back
    ]

    def test_bad_captures_are_refused_with_file_and_line_and_leave_an_older_output(self):
        self.write("pins.vcd", "kept")
        for content, word in self.BAD:
            with self.subTest(content=content[:80]):
                self.write("bad.vcd", content)
                done = self.run_tool("run", "bad.vcd", "--vcd", "pins.vcd", "--trace", "calls")
                self.assertEqual(2, done.returncode)
                self.assertIn(word, done.stderr)
                self.assertEqual(["bad.vcd", "pins.vcd"], self.files())
                self.assertEqual("kept", (self.folder / "pins.vcd").read_text())

    STIMULI = [  # content, line of the fault or None
        ("# nothing\n\n  \n0\t000000000\r\n9223372036854775807\t111111111\n", None),
        ("0\t00000000\n", 1),
        ("0\t00000000x\n", 1),
        ("0 000000000\n", 1),
        ("-1\t000000000\n", 1),
        ("0x5\t000000000\n", 1),
        ("5\t000000000\n\n5\t111111111\n", 3),
        ("9223372036854775808\t000000000\n", 1),
    ]

    def test_stimulus_lines(self):
        self.write("clock.vcd", CLOCK)
        for content, line in self.STIMULI:
            with self.subTest(content=content):
                self.write("events", content)
                done = self.run_tool("run", "clock.vcd", "--stimulus", "events")
                self.assertEqual(0 if line is None else 2, done.returncode, done.stderr)
                self.assertIn("" if line is None else f"events:{line}:", done.stderr)


class Plays(ToolTest):
    def test_vectors_that_are_played(self):
        self.write("clock.vcd", CLOCK)
        for options, samples in [([], 200), (["--max-vectors", "1"], 1), (["--max-vectors", "199"], 199),
                                 (["--max-vectors", "1000000"], 200), (["--step", "1"], 200),
                                 (["--step", "150", "--max-vectors", "151"], 151),
                                 (["--period", "500ns"], 200), (["--period", "1e-6"], 200)]:
            with self.subTest(options=options):
                self.run_good("run", "clock.vcd", "--vcd", "pins.vcd", *options)
                pins = vcd.Vcd(self.folder / "pins.vcd")
                self.assertEqual(samples, pins.samples(1_000_000, {})[1])

    def test_check_prints_the_output_window(self):
        lines = self.run_good("check", CAPTURES / "uart_text.vcd").stdout.splitlines()
        self.assertTrue(lines[0].startswith("Compiling "), lines)
        self.assertIn("0", lines[-1])

    def test_modules_lists_the_mainframe(self):
        rows = [line.split() for line in self.run_good("modules").stdout.splitlines()]
        self.assertEqual(["3", "5", "7", "9", "11"], [row[0] for row in rows[1:]])
        self.assertTrue(all("262140" in row for row in rows[1:]))


class Terminal(ToolTest):
    def standard_error(self, *arguments):
        """What the command writes to standard error when that is a terminal."""
        leader, follower = pty.openpty()
        process = subprocess.Popen([TOOL, *map(str, arguments)], cwd=self.folder, stderr=follower,
                                   stdout=subprocess.DEVNULL)
        os.close(follower)
        shown = b""
        try:
            while chunk := os.read(leader, 65536):
                shown += chunk
        except OSError:  # the other side is gone
            pass
        os.close(leader)
        self.assertEqual(0, process.wait(60))
        return shown

    def test_bar_only_on_a_terminal_and_gone_at_the_end(self):
        capture = CAPTURES / "memory_bus.vcd"
        shown = self.standard_error("run", capture)
        self.assertIn(b"%", shown)
        self.assertTrue(shown.endswith(b"\r\x1b[K"), shown[-80:])
        self.assertEqual(b"", self.standard_error("run", capture, "--quiet"))
        self.assertEqual("", self.run_tool("run", capture).stderr)


class Interrupts(ToolTest):
    def start(self, *arguments):
        return subprocess.Popen([TOOL, *arguments], cwd=self.folder, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def test_during_the_import(self):
        os.mkfifo(self.folder / "pipe")
        process = self.start("run", "pipe", "--vcd", "pins.vcd", "--trace", "calls")
        with open(self.folder / "pipe", "w") as pipe:
            pipe.write(CLOCK)
            pipe.flush()
            process.send_signal(signal.SIGINT)
            time.sleep(0.2)
            try:
                for stamp in range(300, 2_000_000):
                    pipe.write(f"#{stamp}\n{stamp % 2}!\n")
            except BrokenPipeError:
                pass
        self.assertEqual(130, process.wait(20))
        self.assertEqual(["pipe"], self.files())

    def test_during_the_play(self):
        self.write("long.vcd", dump("1 us", ONE, [(0, ["0!"]), (10**9, ["1!"])], 2 * 10**9))
        process = self.start("run", "long.vcd", "--period", "1us", "--step", "1", "--vcd", "pins.vcd")
        time.sleep(0.5)
        process.send_signal(signal.SIGINT)
        self.assertEqual(130, process.wait(20))
        self.assertEqual(["long.vcd"], self.files())


if __name__ == "__main__":
    unittest.main()
