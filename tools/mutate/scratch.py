"""A checkout of its own in build/mutate/, in which mutated sources are built and tested."""
import contextlib
import functools
import json
import os
import re
import resource
import shlex
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
        self.planted = self.folder / "planted"
        self.jobs = jobs
        self.current = set()  # programs that are built from the sources as they are

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
        self.checked(["cmake", "--build", self.built, "-j", str(self.jobs), "--target", *programs], self.tree)

    def build_as_is(self, *programs):
        self.build(*programs)
        self.current.update(programs)

    @contextlib.contextmanager
    def plant(self, file, text):
        """Gives a function that builds a test program with `text` in place of a source, and tells its path."""
        shutil.rmtree(self.planted, ignore_errors=True)
        self.planted.mkdir(parents=True)
        if file.endswith(".cpp"):
            yield functools.partial(self.link, self.compile(file, text))
            return
        path = self.tree / file
        original = path.read_text()
        self.current.clear()
        try:
            path.write_text(text)
            yield self.build_changed
        finally:
            path.write_text(original)

    def build_changed(self, program):
        self.build(program)
        return self.built / program

    def compile(self, file, text):
        """Compiles a source alone, though it may be built in a batch of several."""
        source, compiled = self.planted / os.path.basename(file), self.planted / "planted.o"
        source.write_text(text)
        command = shlex.split(self.commands()[file])
        command = command[next(i for i, word in enumerate(command) if re.search(r"\+\+[-\d]*$", word)):]
        for option, value in (("-c", source), ("-o", compiled), ("-MF", self.planted / "planted.d")):
            if option in command:
                command[command.index(option) + 1] = value
        self.checked(command, self.built)
        return compiled

    @functools.cache
    def commands(self):
        """The command that compiles each source, or the batch that it is in."""
        found = {}
        for entry in json.loads((self.built / "compile_commands.json").read_text()):
            file = os.path.join(entry["directory"], entry["file"])
            sources = [file]
            if file.startswith(str(self.built)) and os.path.isfile(file):
                with open(file) as batch:
                    sources = re.findall(r'^#include "(.+\.cpp)"', batch.read(), re.MULTILINE)
            for source in sources:
                found[os.path.relpath(os.path.join(self.tree, source), self.tree)] = entry["command"]
        return found

    def link(self, compiled, program):
        """Links a planted object first: what the libraries hold of the same names gives way to it."""
        if program not in self.current:
            self.build_as_is(program)
        linked = self.planted / program
        with_it = f" {shlex.quote(str(compiled))} -Wl,--allow-multiple-definition -o {shlex.quote(str(linked))} "
        self.checked(["sh", "-c", self.link_command(program).replace(f" -o {program} ", with_it)], self.built)
        return linked

    @functools.cache
    def link_command(self, program):
        command = ["ninja", "-t", "commands", "-s", program]
        return subprocess.run(command, cwd=self.built, capture_output=True, text=True, check=True).stdout.strip()

    def checked(self, command, folder):
        status, said = self.bounded(command, folder, LONGEST_BUILD, None)
        if status != 0:
            error = ERROR.search(said)
            said = error.group() if error else said.strip().split("\n")[-1]
            raise BuildFailed(re.sub(r"\S*/(?=[\w.]+:)", "", said))

    def test(self, program, limit, cases="*"):
        """Runs these cases of a test program, by its path, up to the first failure, for at most `limit` seconds."""
        command = [program, "--gtest_fail_fast", f"--gtest_filter={cases}"]
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
