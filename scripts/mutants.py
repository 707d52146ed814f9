#!/usr/bin/env python3
"""Tries one-line changes against the native tests.

scripts/mutants/*.txt list the changes: repairs that a tidy programmer makes where the system is odd on purpose, and
plausible mistakes. A copy of the sources is built once under build/mutants, without optimisation. For each change
only the changed source is compiled, linked before the libraries of the programs that test its folder, and these run
up to the first failure; as many changes at a time as there are processors. The last line says how many changes were
noticed. Exit status: 0 when all were noticed, 1 when some were not, 2 when the list or the unchanged sources are
wrong.
"""
import argparse
import concurrent.futures
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
LISTS = ROOT / "scripts" / "mutants"
SOURCE = ROOT / "build" / "mutants"
BUILD = SOURCE / "build" / "mutants"
JOBS = os.cpu_count() or 2

# The programs that test a folder, the likeliest to notice first.
PROGRAMS = {
    "component": ["component_tests"],
    "dialog": ["dialog_tests", "component_tests"],
    "catalog": ["catalog_tests", "dialog_tests"],
    "controls": ["controls_tests", "dialog_tests"],
    "engine": ["engine_tests", "catalog_tests"],
    "platform": ["platform_tests", "controls_tests", "dialog_tests"],
}
# These take long, or want a server: they are about speed and about other programs.
SLOW = "WaitingTest.*:TwoDialogs*:*AnotherProgramHolds*:*ADiscIsAdded*:FaultSweep*:SqliteWaiting.*"
# These are the last ones to be run: most changes are noticed sooner by others.
LATE = ("DesktopDamage.AtRandom*:DesktopMarks.ChangeOneBit*:JetSql.Depth*:*.GivesTurns*:"
        "*.AnswerWhatThePanelsAsk*:LikePattern.*")
PATIENCE = 300  # seconds for one program


class Change:
    def __init__(self, file, name, compiled_in):
        self.file, self.name = file, name
        self.sources = compiled_in or [file]
        self.old, self.new = [], []

    def __str__(self):
        return f"{self.file}: {self.name}"

    def apply(self, root=SOURCE):
        """The text of the changed file."""
        if not (root / self.file).is_file():
            raise ValueError("there is no such file")
        text = (root / self.file).read_text(encoding="utf-8")
        old, new = "\n".join(self.old), "\n".join(self.new)
        if not old or text.count(old) != 1:
            raise ValueError(f"its old text occurs {text.count(old) if old else 0} times")
        return text.replace(old, new)


def read_list(path):
    """`@ FILE [compiled in FILE...]`, then for each change `= NAME` and lines `- OLD` and `+ NEW`; `#` a comment.

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
                          cwd=BUILD, **options)


def carry_out(command):
    result = run(command, shell=isinstance(command, str))
    if result.returncode != 0:
        raise ValueError("it does not build:\n" + result.stdout[-1500:])


def failure_of(program, folder, without):
    """The first test that fails, or how else the program ended; None when all is well. Files go into `folder`."""
    folder.chmod(0o755)  # one test works as another user
    for tests in (f"-{SLOW}:{LATE}:{without}", f"{LATE}-{SLOW}:{without}"):
        command = [program, "--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={tests}"]
        try:
            result = run(command, timeout=PATIENCE, env=os.environ | {"TMPDIR": str(folder)})
        except subprocess.TimeoutExpired:
            return "no end"
        if result.returncode != 0:
            failed = [line.split()[3].rstrip(",") for line in result.stdout.splitlines()
                      if line.startswith("[  FAILED  ] ")]
            failed = [name for name in failed if "." in name]
            return failed[0] if failed else f"{pathlib.Path(program).name} ended with {result.returncode}"
    return None


class Commands:
    """How the build compiles each source and links each program."""

    def __init__(self, changes):
        objects = {}
        for line in run(["ninja", "-t", "targets", "all"]).stdout.splitlines():
            target = line.split(":")[0]
            if target.endswith(".cpp.o"):
                folder, _, name = target.partition("CMakeFiles/")
                objects[folder + name.partition(".dir/")[2][:-2]] = target
        self.objects = {source: objects[source] for change in changes for source in change.sources}
        self.compile = {source: self.ask(target) for source, target in self.objects.items()}
        self.link = {name: self.ask("tests/" + name) for name in programs_of(changes)}

    @staticmethod
    def ask(target):
        return run(["ninja", "-t", "commands", "-s", target]).stdout.splitlines()[-1]


def programs_of(changes):
    return sorted({name for change in changes for name in PROGRAMS[change.file.split("/")[0]]})


def prepare(changes):
    SOURCE.mkdir(parents=True, exist_ok=True)
    copy_sources()
    BUILD.mkdir(parents=True, exist_ok=True)
    configure = ["cmake", "-G", "Ninja", "-S", str(SOURCE), "-B", str(BUILD), "-DCMAKE_BUILD_TYPE=None",
                 "-DCMAKE_CXX_FLAGS=-O0"]
    if shutil.which("ld.lld"):
        configure.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
    try:
        carry_out(configure)
        carry_out(["cmake", "--build", str(BUILD), "-j", str(JOBS), "--target"] + programs_of(changes))
    except ValueError as error:
        sys.exit(f"the unchanged sources: {error}")


def try_change(change, commands, folder, without):
    """What noticed the change; None when nothing did. Raises ValueError when the change cannot be tried."""
    changed = folder / change.file
    changed.parent.mkdir(parents=True)
    changed.write_text(change.apply(), encoding="utf-8")
    objects = {}
    for source in change.sources:
        target = str(folder / source.replace("/", "_")) + ".o"
        text = commands.compile[source].replace(commands.objects[source], target).replace(" -I", f" -iquote {folder} -I", 1)
        if source == change.file:
            text = text.replace(str(SOURCE / source), str(changed))
        carry_out(text)
        objects[source] = target
    for name in PROGRAMS[change.file.split("/")[0]]:
        program = str(folder / name)
        text = commands.link[name].replace(f"-o tests/{name}", f"-o {program}")
        before = []  # the libraries, which are then not asked for what these define
        for source, target in objects.items():
            if commands.objects[source] in text:
                text = text.replace(commands.objects[source], target)
            else:
                before.append(target)
        carry_out(text.replace(" -o ", " " + " ".join(before) + " -o ", 1))
        failure = failure_of(program, folder, without)
        if failure:
            return failure
    return None


def read_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("filter", nargs="*", help="tries only changes whose file or name contains one of these")
    parser.add_argument("--check", action="store_true", help="only tells which changes no longer fit the sources")
    parser.add_argument("--list", type=pathlib.Path, help="a list in place of scripts/mutants/*.txt")
    parser.add_argument("--sample", type=int, help="tries this many of them, every time the same")
    parser.add_argument("--without", default="", metavar="TESTS",
                        help="a GoogleTest filter: runs without these tests, to find what they alone notice")
    return parser.parse_args()


def check(changes):
    unfit = 0
    for change in changes:
        try:
            change.apply(ROOT)
        except ValueError as error:
            print(f"{change}: {error}")
            unfit += 1
    print(f"{len(changes) - unfit} of {len(changes)} changes fit the sources")
    return 2 if unfit else 0


def main():
    arguments = read_arguments()
    paths = [arguments.list] if arguments.list else sorted(LISTS.glob("*.txt"))
    without = arguments.without
    changes = [change for path in paths for change in read_list(path)
               if not arguments.filter or any(word in str(change) for word in arguments.filter)]
    if arguments.sample and arguments.sample < len(changes):
        changes = random.Random(len(changes)).sample(changes, arguments.sample)
    if not changes:
        sys.exit("no such change")
    if arguments.check:
        return check(changes)
    prepare(changes)
    commands = Commands(changes)
    memory = "/dev/shm" if os.path.isdir("/dev/shm") else None  # syncing real files would take most of the time

    def attempt(change):
        start = time.monotonic()
        with tempfile.TemporaryDirectory(prefix="kx-mutant-", dir=memory) as folder:
            try:
                failure = try_change(change, commands, pathlib.Path(folder), without)
            except ValueError as error:
                print(f"CANNOT BE TRIED  {change}: {error}", flush=True)
                return "broken"
        print(f"{'noticed    ' if failure else 'NOT NOTICED'}  {change}  ({failure or 'nothing fails'}, "
              f"{time.monotonic() - start:.0f} s)", flush=True)
        return "noticed" if failure else "missed"

    with tempfile.TemporaryDirectory(prefix="kx-mutant-", dir=memory) as folder:
        for name in programs_of(changes):
            failure = failure_of(str(BUILD / "tests" / name), pathlib.Path(folder), without)
            if failure:
                print(f"the unchanged sources fail: {name}: {failure}")
                return 2
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        results = list(pool.map(attempt, changes))
    for change, result in zip(changes, results):
        if result == "missed":
            print(f"not noticed: {change}")
    missed, broken = results.count("missed"), results.count("broken")
    print(f"{results.count('noticed')} of {len(changes)} noticed, {missed} not noticed, {broken} could not be tried")
    return 2 if broken else 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
