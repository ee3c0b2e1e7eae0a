"""What the end-to-end tests share: the tool under test, a scratch folder for each test, VCD files."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
CAPTURES = ROOT / "examples" / "captures"
sys.path.insert(0, str(ROOT / "tools"))

TOOL = sys.argv.pop(1) if len(sys.argv) > 1 and os.path.isfile(sys.argv[1]) else "quillpg"


class ToolTest(unittest.TestCase):
    """Each test runs in a folder of its own; `run` gives the finished process."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)

    def run_tool(self, *arguments, **options):
        return subprocess.run([TOOL, *map(str, arguments)], cwd=self.folder, timeout=120, text=True,
                              stdin=subprocess.DEVNULL, capture_output=True, **options)

    def run_good(self, *arguments):
        done = self.run_tool(*arguments)
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        return done

    def write(self, name, text):
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode("latin-1"))
        return path

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())


def dump(timescale, variables, changes, end):
    """A VCD text. variables: [(width, identifier, name)], changes: [(time, [token])]"""
    lines = [f"$timescale {timescale} $end", "$scope module top $end"]
    lines += [f"$var wire {width} {identifier} {name} $end" for width, identifier, name in variables]
    lines += ["$upscope $end", "$enddefinitions $end"]
    for time, tokens in changes:
        lines += [f"#{time}", *tokens]
    return "\n".join([*lines, f"#{end}", ""])


CLOCK = dump("1 us", [(1, "!", "CLOCK")], [(t, [f"{t % 2}!"]) for t in range(200)], 200)
