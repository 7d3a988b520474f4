#!/usr/bin/env python3
"""Plants faults in the sources, one at a time, and tells which test catches each.

  ./dev mutate list    [--rooms A,B… --count N --seed N | --list FILE]
                       draws mutations and prints them, or says where those of a kept list stand now
  ./dev mutate run     [--rooms A,B… --count N --seed N [--keep FILE] | --list FILE]
                       [--name NAME] [--resume] [--thorough] [--jobs N]
                       builds and tests each; prints a table and writes build/mutate/NAME.json
  ./dev mutate show    RESULT          prints the table of a result
  ./dev mutate compare BEFORE AFTER
                       what was caught before and isn't now; exits with 1 when there is any
  ./dev mutate --self-test

A room is named as in CMakeLists.txt (names), by its folder (app/links) or by a pattern of files
(core/platform/i3sway/Workspace*). A mutation turns a comparison or moves its boundary, changes a constant, turns
a logic or arithmetic sign, negates a condition, removes a statement or an early exit, or swaps two neighbouring
steps. All such places of a room are drawn from by the seed alone: first the kind, then the place, the rooms in
turn. One that doesn't build is told apart and another drawn, until N have been built.

A run works in build/mutate/tree, a copy of the sources as they are, built in build/mutate/build with the preset
quick and without warnings. It builds the test programs that concern the mutated room (rooms.py says which), one after the other,
the narrowest first, and stops at the first that fails. A failure must repeat to count; a program that takes far
longer than without the mutation has caught it ("timed out"). --resume goes on with the run of that name where it
ended. --thorough runs what is slow too and left out otherwise; a run that is resumed with it tries again
what survived without.

--keep FILE writes the mutations that were built as a list for later runs; without --rooms, run takes
lists/house.json. A kept mutation is found again by the text of its statement and of the lines around it, also after
its file was moved or the statement edited a little; where it no longer exists, it is "gone".

A mutation that can't change behaviour is excused in excused.txt: its id and the reason, one line each. It is
then neither drawn nor run.
"""
import argparse
import json
import os
import signal
import sys
import time
from collections import Counter
from pathlib import Path

import draw
from rooms import ROOT, SLOW, SLOW_CASES, Rooms
from scratch import BuildFailed, Scratch

HERE = Path(__file__).resolve().parent
HOUSE = HERE / "lists/house.json"
PATIENCE, PATIENT_TIMES = 20, 8  # seconds, and times what a program takes without a mutation
LONGEST = 1800  # seconds, without a mutation


def say(*words):
    print(*words, flush=True)


def excused():
    lines = (HERE / "excused.txt").read_text().splitlines()
    return dict(line.split(maxsplit=1) for line in lines if line.strip() and not line.startswith("#"))


def read_list(path):
    return json.loads(Path(path).read_text())["mutations"]


def write_json(path, contents):
    path.parent.mkdir(parents=True, exist_ok=True)
    new = path.with_suffix(".new")
    new.write_text(json.dumps(contents, indent=1, ensure_ascii=False) + "\n")
    new.replace(path)


def drawn(rooms, names, seed):
    """Mutations of the rooms named, without end of kinds and places but those excused."""
    found = {}
    for name in names:
        files = rooms.sources_of(name)
        if not files:
            sys.exit(f"{name}: no such room, folder or files")
        found[name] = [each for file in files for each in draw.mutations(file, (ROOT / file).read_text())]
    reasons = excused()
    return (each for each in draw.draw(found, seed) if each.id not in reasons)


def found_again(rooms, entries):
    finder = draw.Finder(rooms.sources, lambda file: (ROOT / file).read_text())
    return finder.find(entries)


# Running.

class Run:
    def __init__(self, rooms, path, arguments, earlier):
        self.rooms = rooms
        self.path = path
        self.scratch = Scratch(ROOT, arguments.jobs)
        self.thorough = arguments.thorough
        self.result = earlier
        if self.thorough:
            earlier["mutations"] = [each for each in earlier["mutations"]
                                    if each["outcome"] != "survived" or each["thorough"]]
        self.done = {each["id"]: each for each in earlier["mutations"]}
        self.limits = {}

    def concerned(self, file):
        return [program for program in self.rooms.concerned(file) if self.thorough or program not in SLOW]

    def cases(self, program):
        return f"-{SLOW_CASES[program]}" if program in SLOW_CASES and not self.thorough else "*"

    def prepare(self, files):
        """Builds what concerns these sources; it must pass as it is."""
        for file in files:
            if not self.concerned(file):
                sys.exit(f"{file}: no test program concerns it")
        self.scratch.sync(self.rooms.files)
        programs = list(dict.fromkeys(program for file in files for program in self.concerned(file)))
        say(f"Building {', '.join(programs)}")
        try:
            self.scratch.build_as_is(*programs)
        except BuildFailed as error:
            sys.exit(f"The sources don't build as they are: {error}")
        for program in programs:
            outcome = self.scratch.test(self.scratch.built / program, LONGEST, self.cases(program))
            if not outcome.passed:
                sys.exit(f"{program} {outcome.how} without a mutation: {outcome.test}")
            say(f"{program} takes {outcome.seconds:.1f} s")
            self.limits[program] = PATIENCE + PATIENT_TIMES * outcome.seconds

    def carry_out(self, entry, mutation):
        """The entry's outcome: that of an earlier run if it has one."""
        if entry["id"] in self.done:
            return self.done[entry["id"]]
        begun = time.monotonic()
        done = dict(entry)
        if entry["id"] in excused():
            done |= {"outcome": "excused"}
        elif not mutation:
            done |= {"outcome": "gone"}
        else:
            if (mutation.file, mutation.before) != (entry["file"], entry["before"]):
                done |= {"found": {"file": mutation.file, "before": mutation.before, "after": mutation.after}}
            done |= {"file": mutation.file, "line": mutation.line, "room": self.rooms.of(mutation.file)}
            done |= self.tested(mutation)
        done["seconds"] = round(time.monotonic() - begun, 1)
        self.done[entry["id"]] = done
        self.result["mutations"].append(done)
        write_json(self.path, self.result)
        say(row(done))
        return done

    def tested(self, mutation):
        text = mutation.apply((self.scratch.tree / mutation.file).read_text())
        try:
            with self.scratch.plant(mutation.file, text) as build:
                for program in self.concerned(mutation.file):
                    outcome = self.failure(program, build(program))
                    if outcome:
                        return {"outcome": "caught", "program": program, "test": outcome.test, "how": outcome.how}
            return {"outcome": "survived", "thorough": self.thorough}
        except BuildFailed as error:
            return {"outcome": "does not build", "error": str(error)}

    def failure(self, program, path):
        """A failure that repeats, or None."""
        limit, cases = self.limits[program], self.cases(program)
        outcome = self.scratch.test(path, limit, cases)
        if outcome.passed or outcome.how == "timed out":
            return None if outcome.passed else outcome
        if not self.scratch.test(path, limit, outcome.test or cases).passed:
            return outcome
        outcome = self.scratch.test(path, limit, cases)
        return None if outcome.passed else outcome


def run_drawn(run, rooms, arguments):
    names = arguments.rooms.split(",")
    run.prepare([file for name in names for file in rooms.sources_of(name)])
    built = []
    for mutation in drawn(rooms, names, arguments.seed):
        if len(built) == arguments.count:
            break
        entry = mutation.entry() | {"seed": arguments.seed}
        if run.carry_out(entry, mutation)["outcome"] != "does not build":
            built.append(entry)
    if arguments.keep:
        write_json(Path(arguments.keep), {"mutations": built})
        say(f"{len(built)} mutations are kept in {arguments.keep}")


def run_list(run, rooms, arguments):
    entries = read_list(arguments.list)
    pairs = list(zip(entries, found_again(rooms, entries)))
    there = [mutation.file for entry, mutation in pairs if mutation and entry["id"] not in run.done]
    run.prepare(sorted(set(there)))
    for entry, mutation in pairs:
        run.carry_out(entry, mutation)


def run(arguments):
    os.nice(10)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("stopped"))  # and take along what it has started
    rooms = Rooms()
    path = ROOT / f"build/mutate/{arguments.name}.json"
    asked = {"list": Path(arguments.list).name}
    if arguments.rooms:
        asked = {"rooms": arguments.rooms, "seed": arguments.seed}
    earlier = {"asked": asked, "mutations": []}
    if arguments.resume and path.is_file():
        earlier = json.loads(path.read_text())
        if earlier["asked"] != asked:
            sys.exit(f"{path.name} is the result of another run: {earlier['asked']}")
    (run_drawn if arguments.rooms else run_list)(Run(rooms, path, arguments, earlier), rooms, arguments)
    say()
    show(path)


# Telling.

def row(each):
    how = f"{each['program']}: {each['test']}" if each["outcome"] == "caught" else ""
    if each.get("how", "failed") != "failed":
        how += f" ({each['how']})"
    return f"{each['id']}  {each['outcome']:14}  {each['file']}:{each['line']}  {each['rule']}  {how}".rstrip()


def lines_of(each):
    changed = each.get("found", each)
    return "\n".join([f"    - {line}" for line in changed["before"]] + [f"    + {line}" for line in changed["after"]])


def show(path):
    mutations = json.loads(Path(path).read_text())["mutations"]
    for each in mutations:
        say(row(each))
    survivors = [each for each in mutations if each["outcome"] == "survived"]
    if survivors:
        say("\nSurvived:")
    for each in survivors:
        say(f"{each['id']}  {each['file']}:{each['line']}  {each['rule']}\n{lines_of(each)}")
    say()
    counts = Counter((each.get("room", "-"), each["outcome"]) for each in mutations)
    outcomes = ["caught", "survived", "does not build", "gone", "excused"]
    say(f"{'room':14}" + "".join(f"{outcome:>16}" for outcome in outcomes))
    for room in sorted({room for room, _ in counts}):
        say(f"{room:14}" + "".join(f"{counts[room, outcome]:16}" for outcome in outcomes))
    totals = Counter(each["outcome"] for each in mutations)
    say(f"{'all':14}" + "".join(f"{totals[outcome]:16}" for outcome in outcomes))


def compare(arguments):
    before, after = ({each["id"]: each for each in read_list(path)} for path in (arguments.before, arguments.after))
    caught = [each for each in before.values() if each["outcome"] == "caught"]
    now = {each["id"]: after[each["id"]]["outcome"] if each["id"] in after else "not run" for each in caught}
    lost = [each for each in caught if now[each["id"]] == "survived"]
    for each in lost:
        say(row(after[each["id"]]))
        say(f"    was caught by {each['program']}: {each['test']}")
        say(lines_of(after[each["id"]]))
    for each in caught:
        if now[each["id"]] not in ("caught", "survived"):
            say(f"{each['id']}  {now[each['id']]:14}  {each['file']}:{each['line']}  {each['rule']}")
    told = ", ".join(f"{count} {outcome}" for outcome, count in Counter(now.values()).most_common())
    gained = sum(each["outcome"] == "survived" and after.get(id, {}).get("outcome") == "caught"
                 for id, each in before.items())
    say(f"Of {len(caught)} caught before, now: {told}. Of those that survived, {gained} are caught now.")
    return 1 if lost else 0


def show_list(arguments):
    rooms = Rooms()
    if arguments.rooms:
        some = zip(range(arguments.count), drawn(rooms, arguments.rooms.split(","), arguments.seed))
        pairs = [(mutation.entry(), mutation) for _, mutation in some]
    else:
        entries = read_list(arguments.list)
        pairs = list(zip(entries, found_again(rooms, entries)))
    for entry, mutation in pairs:
        if not mutation:
            say(f"{entry['id']}  gone  {entry['file']}:{entry['line']}  {entry['rule']}\n{lines_of(entry)}")
            continue
        say(f"{entry['id']}  {mutation.file}:{mutation.line}  {mutation.rule}\n{lines_of(mutation.entry())}")
    say(f"{len(pairs)} mutations, {sum(not mutation for _, mutation in pairs)} of them gone")


def main():
    parser = argparse.ArgumentParser(prog="./dev mutate", usage="./dev mutate COMMAND …, see ./dev mutate --help")
    parser.format_help = lambda: __doc__
    parser.add_argument("--self-test", action="store_true")
    commands = parser.add_subparsers(dest="command")
    for name in ("list", "run"):
        command = commands.add_parser(name)
        what = command.add_mutually_exclusive_group()
        what.add_argument("--rooms")
        what.add_argument("--list", default=HOUSE)
        command.add_argument("--count", type=int, default=60)
        command.add_argument("--seed", type=int, default=1)
        if name == "run":
            command.add_argument("--name")
            command.add_argument("--keep")
            command.add_argument("--resume", action="store_true")
            command.add_argument("--thorough", action="store_true")
            command.add_argument("--jobs", type=int, default=1)
    commands.add_parser("show").add_argument("result")
    command = commands.add_parser("compare")
    command.add_argument("before")
    command.add_argument("after")
    arguments = parser.parse_args()

    if arguments.self_test:
        import selftest
        return selftest.run()
    if arguments.command == "run":
        arguments.name = arguments.name or ("drawn" if arguments.rooms else Path(arguments.list).stem)
        return run(arguments)
    if arguments.command == "list":
        return show_list(arguments)
    if arguments.command == "show":
        return show(arguments.result)
    if arguments.command == "compare":
        return compare(arguments)
    parser.print_help()
    return 2


if __name__ == "__main__":
    sys.exit(main())
