#!/usr/bin/env python3
"""Looks into VCD files (IEEE 1364) bit by bit, with the standard library only.

  vcd.py same A.vcd B.vcd RATE    status 0: B drives every line of A, sample by sample (RATE in Hz), for
                                  just as long; x and z of A count as 0, those of B as differences
  vcd.py bits IN.vcd OUT.vcd      the same file with each vector as scalars NAME[0], NAME[1] ...
  vcd.py downsample IN.vcd RATE   ticks between two looks at the file that miss no sample
"""
import re
import sys
from fractions import Fraction

UNITS = {"s": 0, "ms": 3, "us": 6, "ns": 9, "ps": 12, "fs": 15}


class Vcd:
    """ticks: ticks a second; lines: names of all bits; changes: [(time, bit index, value)]; end: last stamp"""

    def __init__(self, path):
        with open(path, encoding="latin-1") as file:
            tokens = iter(file.read().split())
        self.lines, self.changes, self.end, self.start = [], [], 0, None
        self.timescale, self.ticks = "", Fraction(0)
        self._bits_of = {}  # identifier -> bit indices of each variable, most significant first
        self._read_definitions(tokens)
        self._read_changes(tokens)

    def _read_definitions(self, tokens):
        for keyword in tokens:
            body = []
            for token in tokens:
                if token == "$end":
                    break
                body.append(token)
            if keyword == "$timescale":
                self.timescale = "".join(body)
                number, unit = re.fullmatch(r"(1|10|100)(s|ms|us|ns|ps|fs)", self.timescale).groups()
                self.ticks = Fraction(10 ** UNITS[unit], int(number))
            elif keyword == "$var" and body[0] not in ("real", "string"):
                self._add_variable(int(body[1]), body[2], " ".join(body[3:]))
            elif keyword == "$enddefinitions":
                return
        raise ValueError("no $enddefinitions")

    def _add_variable(self, width, identifier, name):
        indices = range(width - 1, -1, -1)
        match = re.fullmatch(r"(.*?)\s*\[(\d+):(\d+)\]", name)
        if match:
            name, first, last = match[1], int(match[2]), int(match[3])
            indices = range(first, last - 1, -1) if first >= last else range(first, last + 1)
        names = [name] if width == 1 else [f"{name}[{i}]" for i in indices]
        bits = range(len(self.lines), len(self.lines) + width)
        self._bits_of.setdefault(identifier, []).append(bits)
        self.lines += names

    def _read_changes(self, tokens):
        now = 0
        for token in tokens:
            kind = token[0]
            if kind == "#":
                now = self.end = int(token[1:])
                self.start = now if self.start is None else self.start
            elif kind in "bB":
                self._change(now, next(tokens), token[1:])
            elif kind in "01xXzZ":
                self._change(now, token[1:], kind)
            elif kind in "rRsS":
                next(tokens)
            elif token == "$comment":
                while next(tokens) != "$end":
                    pass
            elif kind != "$":
                raise ValueError(f"odd token {token!r}")

    def _change(self, now, identifier, value):
        for bits in self._bits_of.get(identifier, []):
            fill = "0" if value[0] == "1" else value[0]
            for bit, level in zip(bits, value.rjust(len(bits), fill)):
                self.changes.append((now, bit, level.lower()))

    def samples(self, rate, undriven):
        """-> {line: [(sample, level)]} without repeated levels, number of samples"""
        per_tick, start = Fraction(rate) / self.ticks, self.start or 0
        at = lambda time: int((max(time, start) - start) * per_tick + Fraction(1, 2))
        runs = [[] for _ in self.lines]
        for time, bit, level in self.changes:
            run, sample = runs[bit], at(time)
            if run and run[-1][0] == sample:
                run.pop()
            level = undriven.get(level, level)
            if not run or run[-1][1] != level:
                run.append((sample, level))
        return dict(zip(self.lines, runs)), at(self.end)


def same(path_a, path_b, rate):
    a, length_a = Vcd(path_a).samples(rate, {"x": "0", "z": "0"})
    b, length_b = Vcd(path_b).samples(rate, {})
    for line, run in a.items():
        if line not in b:
            return f"no line named {line} in {path_b}"
        if run != b[line]:
            differs = next(i for i, pair in enumerate(zip(run + [None], b[line] + [None])) if pair[0] != pair[1])
            return f"{line}, change {differs}: {(b[line] + ['none'])[differs]} instead of {(run + ['none'])[differs]}"
    return "" if length_a == length_b else f"{length_b} samples instead of {length_a}"


def write_bits(path_in, path_out):
    vcd = Vcd(path_in)
    identifiers = [chr(33 + i % 94) + (chr(33 + i // 94) if i >= 94 else "") for i in range(len(vcd.lines))]
    with open(path_out, "w", encoding="latin-1") as out:
        out.write(f"$timescale {vcd.timescale} $end\n$scope module bits $end\n")
        for identifier, line in zip(identifiers, vcd.lines):
            out.write(f"$var wire 1 {identifier} {line.replace(' ', '_')} $end\n")
        out.write("$upscope $end\n$enddefinitions $end\n")
        now = None
        for time, bit, level in vcd.changes:
            if time != now:
                now = time
                out.write(f"#{now}\n")
            out.write(level + identifiers[bit] + "\n")
        if vcd.end != now:
            out.write(f"#{vcd.end}\n")


def downsample(path, rate):
    ticks = Vcd(path).ticks
    if ticks % rate == 0:
        return int(ticks // rate)
    looks = 1
    while looks < 20 * rate:
        looks *= 10
    return max(1, int(ticks // looks))


def main(arguments):
    command, *rest = arguments or [""]
    if command == "same" and len(rest) == 3:
        difference = same(rest[0], rest[1], int(rest[2]))
        if difference:
            print(difference)
        return 1 if difference else 0
    if command == "bits" and len(rest) == 2:
        write_bits(*rest)
        return 0
    if command == "downsample" and len(rest) == 2:
        print(downsample(rest[0], int(rest[1])))
        return 0
    print(__doc__.strip(), file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
