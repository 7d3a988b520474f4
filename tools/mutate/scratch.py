"""A checkout of its own in build/mutate/, in which mutated sources are built and tested."""
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass

PRESET = "quick"
LONGEST_BUILD = 3600  # seconds
MOST_MEMORY, LARGEST_FILE = 6 << 30, 1 << 30  # bytes, for a test program that has run wild

RUN = re.compile(r"^\[ RUN      \] ([\w./]+)", re.MULTILINE)
FAILED = re.compile(r"^\[  FAILED  \] ([\w./]+)", re.MULTILINE)
ERROR = re.compile(r"^.*(?:error|undefined symbol): .*$", re.MULTILINE)


class BuildFailed(Exception):
    """Says what the compiler or the linker said first."""


@dataclass
class Outcome:
    passed: bool
    test: str = ""  # the case that failed first, or was under way
    how: str = ""  # failed, crashed or timed out
    seconds: float = 0


class Scratch:
    def __init__(self, root, jobs):
        self.root = root
        self.folder = root / "build/mutate"
        self.tree = self.folder / "tree"
        self.built = self.folder / "build"
        self.jobs = jobs

    def sync(self, files):
        """Makes the checkout the same as the sources of now. Files that are the same keep their times."""
        self.tree.mkdir(parents=True, exist_ok=True)
        wanted = set(files)
        for path in list(self.tree.rglob("*")):
            if not path.is_dir() and str(path.relative_to(self.tree)) not in wanted:
                path.unlink()
        for file in files:
            source, copy = self.root / file, self.tree / file
            if not copy.is_file() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, copy)
                shutil.copymode(source, copy)
        if not (self.built / "build.ninja").is_file():
            self.configure()

    def configure(self):
        # A removed statement leaves unused names behind: no warning may hide a mutation.
        done = subprocess.run(["cmake", "--preset", PRESET, "-B", self.built, "-DCMAKE_CXX_FLAGS=-w"], cwd=self.tree,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise SystemExit(done.stdout)

    def build(self, *programs):
        command = ["cmake", "--build", self.built, "-j", str(self.jobs), "--target", *programs]
        status, said = self.bounded(command, self.tree, LONGEST_BUILD, None)
        if status != 0:
            error = ERROR.search(said)
            lines = said.strip().split("\n")
            raise BuildFailed(error.group().replace(f"{self.tree}/", "") if error else lines[-1])

    def test(self, program, limit, only="*"):
        """Runs a test program up to its first failure, for at most `limit` seconds."""
        command = [self.built / program, "--gtest_fail_fast", f"--gtest_filter={only}"]
        with tempfile.TemporaryDirectory(prefix="mutate-") as home:
            # What a mutated program writes or removes is its own.
            kept = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
            begun = time.monotonic()
            status, said = self.bounded(command, self.built, limit, kept | {"HOME": home, "TMPDIR": home})
            seconds = time.monotonic() - begun
            make_removable(home)
        if status == 0:
            return Outcome(True, seconds=seconds)
        failed, begun = FAILED.search(said), RUN.findall(said)
        how = "timed out" if status is None else "failed" if failed else "crashed"
        test = failed.group(1) if failed and status is not None else begun[-1] if begun else ""
        return Outcome(False, test, how, seconds)

    @staticmethod
    def bounded(command, folder, limit, environment):
        """Its exit status, None if it took longer than `limit` seconds, and what it wrote."""
        with tempfile.TemporaryFile() as output:
            process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                                       stderr=subprocess.STDOUT, start_new_session=True,
                                       preexec_fn=limit_resources if environment else None)
            try:
                status = process.wait(limit)
            except subprocess.TimeoutExpired:
                status = None
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)  # with what it has started
                except ProcessLookupError:
                    pass
                process.wait()
            output.seek(0)
            return status, output.read().decode(errors="replace")


def make_removable(folder):
    for path, names, _ in os.walk(folder):
        for name in names:
            if not os.path.islink(os.path.join(path, name)):
                os.chmod(os.path.join(path, name), 0o700)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (LARGEST_FILE, LARGEST_FILE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
