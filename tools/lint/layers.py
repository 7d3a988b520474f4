#!/usr/bin/env python3
"""Holds the layers: who may include whom, and who may touch Qt, X, Wayland, JSON, the clock and threads.

The rooms and what they use are read from CMakeLists.txt, so the build and this check can't disagree.
Prints one line a violation, `file:line: what`, and exits with 1 when there is any.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ROOM = re.compile(r"lumnara_room\(\s*(\w+)\s+([\w/]+)(.*?)\)", re.S)
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
TIME = re.compile(
    r"std::(this_thread|thread|jthread|async\b|condition_variable)|(steady|system|high_resolution)_clock::now"
    r"|\b(usleep|nanosleep|clock_gettime|gettimeofday|pthread_create)\s*\(|\bQThread\b|\bQTimer\b|\bstd::time\("
)
MAY_TELL_TIME = ("core/async/", "app/qt/QtDriver", "bench/", "tests/", "fuzz/", "tools/")
MAY_USE_QT = ("app/qt/", "app/main.cpp", "tests/qt/")
MAY_USE_WAYLAND = ("app/qt/", "core/platform/i3sway/SwayIdleSource")
MAY_USE_XCB = ("app/qt/menu/TrayHost", "core/platform/x11/", "core/platform/ewmh/", "tests/", "bench/", "tools/")
LINUX_ROOMS = {"linux", "i3sway", "x11", "ewmh"}
MAC_ROOMS = {"mac", "sim"}
# What the shell may know of platforms: what every platform hands over. The window that shows the simulated Mac
# knows that too, and the program's start what all of Linux shares and who chooses.
SHELL_MAY_USE = {"platform"}
SIMULATION_WINDOW = "qtsim"
START_MAY_USE = {"choose", "linux"}


def rooms():
    """Room name -> (folder, set of rooms it uses)."""
    found = {}
    for name, folder, rest in ROOM.findall((ROOT / "CMakeLists.txt").read_text()):
        uses = re.search(r"\bUSES\b(.*?)(?:\bPRIVATE\b|$)", rest, re.S)
        words = uses.group(1).split() if uses else []
        found[name] = (folder, {w for w in words if "::" not in w})
    return found


def closure(found):
    """Room name -> all rooms it may include; fails on a circle."""
    done = {}

    def visit(name, path):
        if name in path:
            sys.exit("CMakeLists.txt: the rooms form a circle: " + " -> ".join(path + [name]))
        if name not in done:
            done[name] = {name}
            for use in found[name][1]:
                done[name] |= visit(use, path + [name])
        return done[name]

    for name in found:
        visit(name, [])
    return done


def room_of(path, found):
    """The room whose folder holds the path most closely, or None."""
    best = None
    for name, (folder, _) in found.items():
        if path.startswith(folder + "/") and (best is None or len(folder) > len(found[best][0])):
            best = name
    return best


def check_rooms(found, allowed, report):
    """Platforms are known by those alone who have to name one."""
    platforms = {name for name, (folder, _) in found.items() if folder.startswith("core/platform")}
    for room, (folder, _) in found.items():
        known = (allowed[room] & platforms) - {room}
        if room in platforms:
            known = known & MAC_ROOMS if room in LINUX_ROOMS else known & LINUX_ROOMS if room in MAC_ROOMS else set()
        elif folder.startswith("app"):
            known -= SHELL_MAY_USE | (MAC_ROOMS if room == SIMULATION_WINDOW else set())
        elif not folder.startswith("core/"):
            continue
        for other in sorted(known):
            report(f"CMakeLists.txt: room {room} may not use room {other}")


def check_file(path, found, allowed, report):
    text = (ROOT / path).read_text(errors="replace")
    production = path.startswith(("core/", "app/"))
    room = room_of(path, found) if production and path != "app/main.cpp" else None
    for number, line in enumerate(text.splitlines(), 1):
        where = f"{path}:{number}: "
        include = INCLUDE.match(line)
        if include:
            bracket, target = include.groups()
            other = room_of(target, found) if bracket == '"' else None
            if room and other and other not in allowed[room]:
                report(where + f"room {room} may not include room {other} ({target})")
            if path == "app/main.cpp" and target.startswith("core/platform/") and other not in START_MAY_USE:
                report(where + f"the start doesn't know room {other} ({target})")
            if production and target.startswith("tests/"):
                report(where + "the product includes a test")
            if re.match(r"Q[A-Z]|Qt[A-Z]|qpa/", target) and not path.startswith(MAY_USE_QT):
                report(where + "only the surfaces know Qt")
            if re.search(r"^wayland-|-client-protocol\.h$", target) and not path.startswith(MAY_USE_WAYLAND):
                report(where + "only the surfaces and the idle time of sway know Wayland")
            if re.match(r"xcb/|X11/", target) and not path.startswith(MAY_USE_XCB):
                report(where + "only core/platform/x11, ewmh and the tray know X")
            if "nlohmann/json.hpp" in target and path.startswith(("core/", "app/")) and path.endswith(".h"):
                report(where + "nlohmann/json.hpp stays in .cpp files")
        code = line.split("//")[0]
        if TIME.search(code) and not path.startswith(MAY_TELL_TIME):
            report(where + "time, tasks and threads go through core/async")


def main():
    found = rooms()
    allowed = closure(found)
    listed = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard", "*.h", "*.cpp"], cwd=ROOT, capture_output=True, text=True, check=True
    ).stdout.split()
    problems = []
    check_rooms(found, allowed, problems.append)
    for path in sorted(listed):
        if (ROOT / path).is_file():
            check_file(path, found, allowed, problems.append)
    print("\n".join(problems) if problems else f"layers: {len(listed)} files, {len(found)} rooms, all in place")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
