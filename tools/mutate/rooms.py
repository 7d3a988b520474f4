"""The rooms, their sources, and the test programs that concern them: read from the CMake files."""
import fnmatch
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "tools/lint"))
import layers  # noqa: E402

# Which test programs concern a room: its own, and those of the rooms that use it themselves. Beyond these:
WHOLE = {"app"}  # the whole program is put together there, whatever it is linked with
ALSO = {
    "sim": {"switching", "arranging"},  # the engines run there on a Mac that is played
    "faults": {"base"},  # the stores are killed and starved there
}
ONLY_FOR = {"qt": {"qt", "qtsim"}}  # slow to build, and tests what is seen
SLOW = {"test_faults"}  # only for --thorough
SLOW_CASES = {"test_sim": "*Runs.*"}  # likewise: thousands of random runs
NEVER = {"session"}  # minutes of real window managers, for each mutation

LINKS = re.compile(r"target_link_libraries\(\s*(?:test|lumnara)_(\w+)\s+(?:PUBLIC|PRIVATE)\s([^)]*)\)")


class Rooms:
    def __init__(self, root=ROOT):
        self.root = root
        self.found = layers.rooms()
        self.uses = {room: set(uses) for room, (_, uses) in self.found.items()}
        cmake = [root / "CMakeLists.txt", *sorted((root / "cmake").glob("*.cmake"))]
        for name, libraries in LINKS.findall("".join(path.read_text() for path in cmake)):
            used = {library[len("lumnara_"):] for library in libraries.split() if library.startswith("lumnara_")}
            self.uses.setdefault(name, set()).update(used & set(self.found) - {name})
        listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=root, capture_output=True,
                                text=True, check=True).stdout.split("\n")
        self.files = sorted({path for path in listed if path and (root / path).is_file()})
        self.sources = [path for path in self.files if path.startswith(("core/", "app/"))
                        and path.endswith((".h", ".cpp")) and path != "app/main.cpp"]
        tests = {path.split("/")[1] for path in self.files if re.fullmatch(r"tests/\w+/.*\.cpp", path)}
        self.programs = sorted((tests - NEVER - {"support", "simruns"}) & set(self.uses))

    def of(self, file):
        return layers.room_of(file, self.found)

    def sources_of(self, what):
        """Of a room by its name, of a folder, or of files by a pattern."""
        if what in self.found:
            return [path for path in self.sources if self.of(path) == what]
        pattern = what.rstrip("/") + "/*"
        return [path for path in self.sources if fnmatch.fnmatch(path, pattern) or fnmatch.fnmatch(path, what)]

    def concerned(self, file):
        """The test programs that concern a source, the narrowest first."""
        room = self.of(file)
        far = {program: self.distance(program, room) for program in self.programs}
        near = [program for program in self.programs if far[program] is not None
                and (far[program] <= 1 or program in WHOLE or room in ALSO.get(program, ()))
                and room in ONLY_FOR.get(program, {room})]
        return [f"test_{program}" for program in sorted(near, key=lambda each: (far[each], self.width(each), each))]

    def distance(self, program, room):
        reached, ring, steps = {program}, {program}, 0
        while ring:
            if room in ring:
                return steps
            ring = {use for each in ring for use in self.uses.get(each, ())} - reached
            reached |= ring
            steps += 1
        return None

    def width(self, program):
        return sum(self.distance(program, room) is not None for room in self.found)
