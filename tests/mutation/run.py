#!/usr/bin/env python3
"""Breaks the library by faults that a person would make, one at a time, and tells which of them the
tests notice:

    tests/mutation/run.py                      all of mutations.txt, about a minute each on two cores
    tests/mutation/run.py --only slic          those whose names match
    tests/mutation/run.py --keep before.txt    writes what was noticed, for
    tests/mutation/run.py --beside before.txt  which fails when something is no longer noticed

It works on a copy of the tracked files (see --folder), which it builds quickly rather than well; the
windows' tests are left out. A test that hangs has noticed. mutations.txt tells how faults are
written; one whose text is not in the sources any more, or there twice, stops everything.
"""
import argparse
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

here = Path(__file__).resolve().parent
root = here.parent.parent


class Mutation:
    def __init__(self, name, path, tests):
        self.name, self.tests = name, tests
        self.spellings = [(path, [], [])]  # file, old and new lines

    def find(self, folder):
        """The file and its text with the fault in it; None when it is nowhere."""
        for path, old, new in self.spellings:
            file = folder / path
            pattern = r"\s+".join(re.escape(word) for word in " ".join(old).split())
            text = file.read_text() if file.exists() else ""
            if len(re.findall(pattern, text)) == 1:
                return file, re.sub(pattern, lambda _: "\n".join(new), text)
        return None


def read_table(file):
    mutations = []
    for line in file.read_text().splitlines():
        if line.startswith("["):
            name, path, *tests = line[1:].replace("]", " ").split()
            mutations.append(Mutation(name, path, tests))
        elif line.startswith("or "):
            mutations[-1].spellings.append((line[3:].strip(), [], []))
        elif line.startswith("-"):
            path, old, new = mutations[-1].spellings[-1]
            if new:  # another spelling
                mutations[-1].spellings.append((path, [], []))
            mutations[-1].spellings[-1][1].append(line[1:])
        elif line.startswith("+"):
            mutations[-1].spellings[-1][2].append(line[1:].strip())
    return mutations


class Copy:
    """The tracked files, their build and their tests."""

    def __init__(self, folder, exclude):
        self.source, self.build = folder / "source", folder / "build"
        self.refresh()
        self.configure()
        targets = subprocess.check_output(["ninja", "-C", self.build, "-t", "targets"], text=True)
        programs = [name for name in re.findall(r"^((?:tst_|test-)[\w-]+): phony", targets, re.MULTILINE)
                    if not re.search(exclude, name)]
        if complaint := self.make(programs):
            sys.exit(complaint)
        listing = subprocess.check_output(["ctest", "--show-only=json-v1"], cwd=self.build)
        self.tests = {test["name"]: test for test in json.loads(listing)["tests"]
                      if not re.search(exclude, test["name"])}
        self.seconds = {}

    def refresh(self):
        """Writes only what differs, so that little has to be built anew."""
        names = subprocess.check_output(["git", "ls-files", "-z"], cwd=root, text=True)
        wanted = {name for name in names.split("\0") if name and (root / name).is_file()}
        for name in wanted:
            target, data = self.source / name, (root / name).read_bytes()
            if not target.exists() or target.read_bytes() != data:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(data)
                shutil.copymode(root / name, target)
        for file in [path for path in self.source.rglob("*") if path.is_file()]:
            if str(file.relative_to(self.source)) not in wanted:
                file.unlink()

    def configure(self):
        subprocess.run(["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -g0 -DNDEBUG",
                        "-DRY_PRECOMPILE_HEADERS=ON", "-DCMAKE_UNITY_BUILD=OFF",
                        "-DRY_BUILD_BENCHMARKS=OFF"], check=True, stdout=subprocess.DEVNULL)

    def program(self, test):
        return Path(self.tests[test]["command"][0]).name

    def make(self, programs):
        """What the compiler complains of; nothing when all is well."""
        run = subprocess.run(["ninja", "-C", self.build, *sorted(set(programs))], text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return run.stdout if run.returncode else ""

    def passes(self, name):
        test = self.tests[name]
        properties = {each["name"]: each["value"] for each in test.get("properties", [])}
        settings = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
        limit = 15 + 6 * self.seconds[name] if name in self.seconds else 600
        began = time.monotonic()
        process = subprocess.Popen(test["command"], cwd=self.build, env=os.environ | settings,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
        try:
            passed = process.wait(limit) == 0
        except subprocess.TimeoutExpired:
            passed = False
        try:
            os.killpg(process.pid, signal.SIGKILL)  # also what it has started
        except ProcessLookupError:
            pass
        process.wait()
        if passed:
            self.seconds.setdefault(name, time.monotonic() - began)
        return passed

    def failing_test(self, names):
        return next((name for name in names if not self.passes(name)), None)

    def try_out(self, mutation):
        """The test that notices the fault; None when none does."""
        file, text = mutation.find(self.source)
        original = file.read_text()
        likely = [name for name in mutation.tests if name in self.tests]
        others = sorted(set(self.tests) - set(likely), key=self.seconds.get)
        file.write_text(text)
        try:
            for names in filter(None, [likely, others]):
                if complaint := self.make(map(self.program, names)):
                    sys.exit(f"{mutation.name} does not compile:\n{complaint}")
                if noticed := self.failing_test(names):
                    return noticed
            return None
        finally:
            file.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--folder", type=Path, default=Path(tempfile.gettempdir()) / "ry-mutants")
    parser.add_argument("--table", type=Path, default=here / "mutations.txt")
    parser.add_argument("--only", default="", help="a regular expression for names of faults")
    parser.add_argument("--exclude", default="(?i)studio|WirePath|quality|consumer|rooms",
                        help="one for names of tests")
    parser.add_argument("--keep", type=Path)
    parser.add_argument("--beside", type=Path)
    options = parser.parse_args()

    mutations = [m for m in read_table(options.table) if re.search(options.only, m.name)]
    if lost := [m.name for m in mutations if not m.find(root)]:
        sys.exit("Not in the sources any more, or more than once: " + ", ".join(lost))
    copy = Copy(options.folder, options.exclude)
    if broken := [name for name in copy.tests if not copy.passes(name)]:
        sys.exit("Without any fault these fail: " + ", ".join(broken))

    noticed = []
    for mutation in mutations:
        test = copy.try_out(mutation)
        print(f"{mutation.name:40} {'noticed by ' + test if test else 'SURVIVES'}", flush=True)
        if test:
            noticed.append(mutation.name)
    print(f"{len(noticed)} of {len(mutations)} were noticed")
    if options.keep:
        options.keep.write_text("".join(name + "\n" for name in noticed))
    if options.beside:
        known = {mutation.name for mutation in mutations}
        before = [name for name in options.beside.read_text().split() if name in known]
        if lost := [name for name in before if name not in noticed]:
            sys.exit("Noticed before: " + ", ".join(lost))


main()
