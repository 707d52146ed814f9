#!/usr/bin/env python3
"""Tries one-line changes against the native tests: mutants.py [FILTER...]

tests/mutants.txt lists the changes, of the kind that a tidy programmer makes where the system is odd on purpose. Each
is made in a copy of the sources under build/mutants, what it touches is built and the tests of its folder are run up
to the first failure. The last line says how many changes were noticed. With FILTERs only the changes whose file or
name holds one of them are tried. Exit status: 0 when all were noticed, 1 when some were not, 2 when the list or the
unchanged sources are wrong.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "build" / "mutants"
BUILD = SOURCE / "build" / "mutants"
JOBS = str(os.cpu_count() or 2)

# The programs that test a folder, the likeliest to notice first.
PROGRAMS = {
    "component": ["component_tests"],
    "dialog": ["dialog_tests", "component_tests"],
    "catalog": ["catalog_tests", "dialog_tests"],
    "controls": ["controls_tests", "dialog_tests"],
    "platform": ["platform_tests", "controls_tests", "dialog_tests"],
}
# These take long, or want a server: they are about speed and about other programs.
SLOW = "WaitingTest.*:TwoDialogs*:LostServer*:*AnotherProgramHolds*:*ADiscIsAdded*:FaultSweep*"
PATIENCE = 180  # seconds for one program


class Change:
    def __init__(self, file, name, compiled_in):
        self.file, self.name, self.compiled_in = file, name, compiled_in
        self.old, self.new = [], []


def read_list(path):
    """`@ FILE [compiled in FILE...]`, then for each change `= NAME` and lines `- OLD` and `+ NEW`.

    The old text occurs once in the file. `compiled in` names the only sources that a change of a header alters.
    """
    changes, file, compiled_in = [], None, []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        mark, text = line[:1], line[2:]
        if mark in ("", "#"):
            continue
        if mark == "@":
            file, _, sources = text.partition(" compiled in ")
            compiled_in = sources.split()
        elif mark == "=":
            changes.append(Change(file, text, compiled_in))
        elif mark in "-+" and changes:
            (changes[-1].old if mark == "-" else changes[-1].new).append(text)
        else:
            sys.exit(f"{path}:{number}: neither of @ = - + #")
    return changes


def copy_sources():
    """Brings the copy in line with the working tree; what is unchanged keeps its time, and so its objects."""
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.splitlines()
    wanted = {name for name in names if (ROOT / name).is_file()}
    for folder, folders, files in os.walk(SOURCE):
        if pathlib.Path(folder) == SOURCE and "build" in folders:
            folders.remove("build")
        for old in (pathlib.Path(folder) / file for file in files):
            if str(old.relative_to(SOURCE)) not in wanted:
                old.unlink()
    for name in wanted:
        source, target = ROOT / name, SOURCE / name
        if target.exists() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                          **options)


def build(program):
    return run(["cmake", "--build", str(BUILD), "-j", JOBS, "--target", program])


def failure_of(program):
    """The first test that fails, or how else the program ended; None when all is well."""
    command = [str(BUILD / "tests" / program), "--gtest_fail_fast", "--gtest_brief=1", "--gtest_filter=-" + SLOW]
    try:
        result = run(command, cwd=BUILD, timeout=PATIENCE)
    except subprocess.TimeoutExpired:
        return "no end"
    if result.returncode == 0:
        return None
    failed = [line.split()[3] for line in result.stdout.splitlines() if line.startswith("[  FAILED  ] ") and "." in line]
    failed = failed or [line.split()[3].rstrip(",") for line in result.stdout.splitlines() if line.startswith("[  FAILED")]
    return failed[0] if failed else f"{program} ended with {result.returncode}"


def prepare():
    SOURCE.mkdir(parents=True, exist_ok=True)
    copy_sources()
    configure = ["cmake", "-G", "Ninja", "-S", str(SOURCE), "-B", str(BUILD), "-DCMAKE_BUILD_TYPE=None",
                 "-DCMAKE_CXX_FLAGS=-O0"]
    if shutil.which("ld.lld"):
        configure.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
    for command in [configure] + [["cmake", "--build", str(BUILD), "-j", JOBS, "--target", name]
                                  for name in sorted({name for names in PROGRAMS.values() for name in names})]:
        result = run(command)
        if result.returncode != 0:
            sys.stdout.write(result.stdout[-4000:])
            sys.exit("the unchanged sources do not build")


def try_change(change):
    """What noticed the change; None when nothing did. Raises ValueError when the change cannot be tried."""
    path = SOURCE / change.file
    text = path.read_text(encoding="utf-8")
    old, new = "\n".join(change.old), "\n".join(change.new)
    if not old or text.count(old) != 1:
        raise ValueError(f"its old text occurs {text.count(old) if old else 0} times")
    before = path.stat()

    def write(content):
        path.write_text(content, encoding="utf-8")
        if change.compiled_in:
            os.utime(path, ns=(before.st_atime_ns, before.st_mtime_ns))
            for source in change.compiled_in:
                os.utime(SOURCE / source)

    write(text.replace(old, new))
    try:
        for program in PROGRAMS[change.file.split("/")[0]]:
            built = build(program)
            if built.returncode != 0:
                raise ValueError("it does not build:\n" + built.stdout[-1500:])
            failure = failure_of(program)
            if failure:
                return failure
        return None
    finally:
        write(text)


def main():
    filters = sys.argv[1:]
    if any(word in ("-h", "--help") for word in filters):
        print(__doc__)
        return 0
    changes = [change for change in read_list(ROOT / "tests" / "mutants.txt")
               if not filters or any(word in f"{change.file} {change.name}" for word in filters)]
    if not changes:
        sys.exit("no such change")
    prepare()
    for program in sorted({name for change in changes for name in PROGRAMS[change.file.split("/")[0]]}):
        failure = failure_of(program)
        if failure:
            print(f"the unchanged sources fail: {program}: {failure}")
            return 2
    noticed, missed, broken = 0, [], []
    for change in changes:
        start = time.monotonic()
        label = f"{change.file}: {change.name}"
        try:
            failure = try_change(change)
        except ValueError as error:
            broken.append(label)
            print(f"CANNOT BE TRIED  {label}: {error}", flush=True)
            continue
        if failure:
            noticed += 1
        else:
            missed.append(label)
        print(f"{'noticed    ' if failure else 'NOT NOTICED'}  {label}  ({failure or 'nothing fails'}, "
              f"{time.monotonic() - start:.0f} s)", flush=True)
    for label in missed:
        print(f"not noticed: {label}")
    print(f"{noticed} of {len(changes)} noticed, {len(missed)} not noticed, {len(broken)} could not be tried")
    return 2 if broken else 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
