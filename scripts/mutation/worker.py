"""Where scripts/mutate makes its changes: a copy of the tree with its own build.

The idea: the change is written into the copy, ninja compiles what depends on it, and each test
executable is linked only when it is its turn. Afterwards the file and the objects are restored,
so that the next change compiles only its own file.

What complicates it: a change may make the module loop for ever or use all memory. So every run
has limits, and is killed together with all its children.
"""
import os
import re
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

OBJECTS = "vs_pfs_objects"  # the target that compiles the module

# A change of the module's own headers has these compiled again, so they come last for it.
LOOKING_INSIDE = {"module_tests"}
EXECUTABLES = {
    "module_tests": "tests/module/module_tests",
    "document_tests": "tests/document_tests",
    "model_tests": "tests/model/model_tests",
    "robustness_tests": "tests/robustness/robustness_tests",
    "host_tests": "tests/lib/host_tests",
}

# A run that takes longer than this many times the unchanged module's does not end.
PATIENCE = 6
LEAST_SECONDS = 10
BUILD_SECONDS = 600
MOST_MEMORY_KB = 4 << 20
MOST_FILE_BLOCKS = 1 << 24  # of 512 bytes; a test makes a sparse file of some gigabytes


@dataclass
class Outcome:
    kind: str  # a key of KINDS
    by: str = ""
    test: str = ""


KINDS = {
    "killed": "killed",
    "timeout": "did not end",
    "survived": "survived",
    "unchanged": "same object code",
    "uncompilable": "does not compile",
}
COUNTED = ("killed", "timeout", "survived")


def tree_files(root):
    """The work tree's files as they stand, those included that git does not know yet."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=root, check=True, capture_output=True)
    names = listed.stdout.decode().rstrip("\0").split("\0")
    return [name for name in names if (root / name).is_file()]


def run(command, directory, seconds, output):
    """The exit status, or None when the time was up; all that it started has ended then."""
    with open(output, "wb") as file:
        process = subprocess.Popen(
            command, cwd=directory, stdin=subprocess.DEVNULL, stdout=file, stderr=file,
            start_new_session=True,
            env={**os.environ, "TMPDIR": str(Path(output).parent)})
    deadline = time.monotonic() + seconds
    while not (ended := has_ended(process)) and time.monotonic() < deadline:
        time.sleep(0.02)
    os.killpg(process.pid, signal.SIGKILL)
    status = process.wait()
    return status if ended else None


def has_ended(process):
    """Whether it has, without taking its id from it: the id stands for its whole session."""
    how = os.WEXITED | os.WNOHANG | os.WNOWAIT
    return os.waitid(os.P_PID, process.pid, how) is not None


class NotPrepared(Exception):
    """The unchanged tree does not build or does not pass its tests."""


class Worker:
    """A copy of the tree with a build of its own, in which changes are made one at a time."""

    def __init__(self, root, directory):
        self.root = root
        self.tree = directory / "tree"
        self.build = directory / "build"
        self.output = directory / "output.txt"
        self.seconds = {}
        self.objects = {}
        self.failure = ""

    def prepare(self):
        try:
            self.build_unchanged()
            self.test_unchanged()
        except NotPrepared as failure:
            self.failure = str(failure)

    def build_unchanged(self):
        self.copy_tree()
        self.configure()
        self.must_succeed(["ninja", "-j1", *EXECUTABLES], BUILD_SECONDS * 10)
        for path in self.build.rglob("*.o"):
            self.objects[path] = (path.read_bytes(), path.stat().st_mtime_ns)

    def test_unchanged(self):
        for name in EXECUTABLES:
            started = time.monotonic()
            self.must_succeed(self.test_command(name), BUILD_SECONDS)
            self.seconds[name] = time.monotonic() - started

    def copy_tree(self):
        """Only what differs is written, so that a second run builds next to nothing."""
        for name in tree_files(self.root):
            wanted = (self.root / name).read_bytes()
            path = self.tree / name
            if not path.is_file() or path.read_bytes() != wanted:
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(wanted)
                path.chmod((self.root / name).stat().st_mode)

    def configure(self):
        linker = "-fuse-ld=lld" if shutil.which("ld.lld") else ""
        self.build.mkdir(parents=True, exist_ok=True)
        self.must_succeed(
            ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja",
             "-DCMAKE_C_COMPILER=gcc", "-DCMAKE_CXX_COMPILER=g++",
             "-DCMAKE_BUILD_TYPE=Release",
             "-DCMAKE_C_FLAGS_RELEASE=-O1", "-DCMAKE_CXX_FLAGS_RELEASE=-O1",
             f"-DCMAKE_EXE_LINKER_FLAGS={linker}", f"-DCMAKE_SHARED_LINKER_FLAGS={linker}",
             "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"],
            BUILD_SECONDS)

    def must_succeed(self, command, seconds):
        if run(command, self.build, seconds, self.output) != 0:
            tail = self.output.read_text(errors="replace")[-3000:]
            raise NotPrepared(f"{tail}\nfailed without any change: {command}")

    def test_command(self, name):
        limits = f"ulimit -v {MOST_MEMORY_KB}; ulimit -f {MOST_FILE_BLOCKS}; ulimit -c 0"
        return ["sh", "-c", f'{limits}; exec "$0" "$@"', self.build / EXECUTABLES[name],
                "--gtest_fail_fast", "--gtest_brief=1"]

    def builds(self, target):
        return run(["ninja", "-j1", target], self.build, BUILD_SECONDS, self.output) == 0

    def order(self, mutant):
        inside = LOOKING_INSIDE if mutant.path.endswith(".h") else set()
        return sorted(EXECUTABLES, key=lambda name: (name in inside, self.seconds[name]))

    def try_mutant(self, mutant):
        path = self.tree / mutant.path
        times = (path.stat().st_atime_ns, path.stat().st_mtime_ns)
        path.write_text(mutant.text)
        try:
            return self.judge(mutant)
        finally:
            path.write_text(mutant.source.text)
            os.utime(path, ns=times)
            self.restore_objects()

    def judge(self, mutant):
        if not self.builds(OBJECTS):
            return Outcome("uncompilable")
        if not self.changed_objects():
            return Outcome("unchanged")
        for name in self.order(mutant):
            if not self.builds(name):
                return Outcome("uncompilable")
            outcome = self.run_tests(name)
            if outcome is not None:
                return outcome
        return Outcome("survived")

    def run_tests(self, name):
        limit = max(LEAST_SECONDS, PATIENCE * self.seconds[name])
        status = run(self.test_command(name), self.build, limit, self.output)
        if status == 0:
            return None
        if status is None:
            return Outcome("timeout", name)
        failed = re.search(rb"\[  FAILED  \] ([\w/]+\.[\w/]+)", self.output.read_bytes())
        return Outcome("killed", name, failed.group(1).decode() if failed else "crash")

    def changed_objects(self):
        return [path for path, (content, _) in self.objects.items()
                if OBJECTS in str(path) and path.read_bytes() != content]

    def restore_objects(self):
        """Puts back what was compiled, no newer than ninja knows it, so that nothing is compiled
        again for the source that has been put back. What was linked from the change is newer
        than that, and would stay if it were not removed."""
        for path, (content, built) in self.objects.items():
            now = path.stat().st_mtime_ns if path.exists() else built
            if now != built or not path.exists():
                path.write_bytes(content)
                os.utime(path, ns=(now, now))
                self.objects[path] = (content, now)
        for path in (self.build / "vs_pfs").glob("libvs_pfs*"):
            path.unlink()
