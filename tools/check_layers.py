#!/usr/bin/env python3
"""Checks the layers of the tree: no include upwards, no circle.

The table is layers.txt beside this file. Only direct includes count. Prints each include that is not
allowed, and each circle; exit status 1 when there is one.
"""
import fnmatch
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
INCLUDE_ROOTS = ("include", "server", "tests", "benches", "apps/quillpg", "fuzz")


def read_table(path):
    layers, exceptions = [], []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        line = line.strip()
        if not line or line.startswith("#"):
            continue
        if line.startswith("except "):
            source, target = line[len("except "):].split("->")
            exceptions.append((source.strip(), target.strip()))
            continue
        fields = [field.strip() for field in line.split(":")]
        if len(fields) != 3:
            sys.exit(f"{path}:{number}: not 'layer : patterns : may include'")
        layers.append((fields[0], fields[1].split(), set(fields[2].split())))
    return layers, exceptions


def layer_of(name, layers):
    for layer, patterns, _ in layers:
        if any(fnmatch.fnmatch(name, pattern) for pattern in patterns):
            return layer
    return None


def resolve(include, source):
    for folder in (str(pathlib.PurePosixPath(source).parent), *INCLUDE_ROOTS):
        candidate = ROOT / folder / include
        if candidate.is_file():
            return str(candidate.resolve().relative_to(ROOT))
    return None


def find_circle(graph):
    """One circle of the include graph as a list of files, or None."""
    done, active = set(), []

    def visit(name):
        if name in active:
            return active[active.index(name):] + [name]
        if name in done:
            return None
        active.append(name)
        for target in graph.get(name, ()):
            circle = visit(target)
            if circle:
                return circle
        active.pop()
        done.add(name)
        return None

    for name in graph:
        circle = visit(name)
        if circle:
            return circle
    return None


def main():
    layers, exceptions = read_table(pathlib.Path(__file__).with_name("layers.txt"))
    allowed = {layer: targets | {layer} for layer, _, targets in layers}
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "*.h", "*.cpp", "*.def"],
                            cwd=ROOT, capture_output=True, text=True, check=True)
    files = [name for name in listed.stdout.split()
             if (ROOT / name).is_file() and not name.startswith("tests/install/")]
    faults, graph = [], {}
    for name in files:
        layer = layer_of(name, layers)
        if layer is None:
            faults.append(f"{name}: belongs to no layer")
            continue
        for include in INCLUDE.findall((ROOT / name).read_text(encoding="utf-8")):
            target = resolve(include, name)
            if target is None:
                faults.append(f"{name}: \"{include}\" is not in the tree")
                continue
            graph.setdefault(name, []).append(target)
            excepted = any(fnmatch.fnmatch(name, s) and fnmatch.fnmatch(target, t) for s, t in exceptions)
            if layer_of(target, layers) not in allowed[layer] and not excepted:
                faults.append(f"{name} ({layer}) includes {target} ({layer_of(target, layers)})")
    circle = find_circle(graph)
    if circle:
        faults.append("circle: " + " -> ".join(circle))
    print("\n".join(faults) if faults else f"layers: {len(files)} files, no include upwards, no circle")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
