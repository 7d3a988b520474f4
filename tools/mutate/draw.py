"""Draws mutations from C++ sources, and finds kept ones again in sources that have changed."""
import bisect
import difflib
import hashlib
import random
import re
from dataclasses import dataclass
from pathlib import PurePosixPath

import cpp

# How often a kind is drawn. First the kind, then the place: constants would crowd out the rest otherwise.
WEIGHTS = {"remove": 3, "compare": 3, "exit": 2, "negate": 2, "logic": 2, "constant": 2, "swap": 2, "arithmetic": 1}

COMPARISONS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",)}
LOGIC = {"&&": "||", "||": "&&", "true": "false", "false": "true"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "+=": "-=", "-=": "+=", "++": "--", "--": "++"}
ENDS_CONDITION = ("=", ",", ";", "{", "?", ":", "return", "co_return", "+=", "<<")
LONGEST_REMOVED, LONGEST_SWAPPED = 16, 10  # lines
NEAR, FAR = 8, 24  # tokens on either side by which a place is found again
# How like a place must be, of 1, to be taken for a kept one that was edited: alone, and with what stands around it.
LIKE_ITSELF, LIKE_ENOUGH, LIKE_ENOUGH_ELSEWHERE = 0.7, 0.75, 0.85


@dataclass
class Mutation:
    file: str
    line: int
    kind: str
    rule: str  # what is done: "< -> <=", "statement removed"
    before: list  # the lines it changes, for who reads it
    after: list
    left: list  # the tokens before the place, of it and behind it, by which it is found again
    what: list
    right: list
    place: tuple  # (start, end) in the source
    replacement: str
    id: str = ""

    def apply(self, text):
        return text[:self.place[0]] + self.replacement + text[self.place[1]:]

    def anchor(self):
        return self.left[-NEAR:], self.what, self.right[:NEAR]

    def entry(self):
        """What a kept list holds of it."""
        return {"id": self.id, "file": self.file, "line": self.line, "kind": self.kind, "rule": self.rule,
                "before": self.before, "after": self.after,
                "left": " ".join(self.left), "what": " ".join(self.what), "right": " ".join(self.right)}


def identity(mutation, nth):
    """Stays when the file moves, lines move or the format changes."""
    name = PurePosixPath(mutation.file).name
    told = [name, mutation.kind, mutation.rule, *map(" ".join, mutation.anchor()), str(nth)]
    return hashlib.sha1("\0".join(told).encode()).hexdigest()[:10]


def mutations(file, text):
    """All mutations of a source, in the order of their places."""
    return _Drawer(file, text).all()


class _Drawer:
    def __init__(self, file, text):
        self.file = file
        self.source = cpp.read(text)
        self.tokens = self.source.tokens
        self.offsets = [token.start for token in self.tokens]
        self.lines = text.split("\n")
        self.starts = [0]
        for line in self.lines:
            self.starts.append(self.starts[-1] + len(line) + 1)
        self.found = []

    def all(self):
        self.of_tokens()
        for statement in self.source.statements:
            self.of_conditions(statement)
        for block in self.source.blocks:
            self.of_block(block)
        self.found.sort(key=lambda each: (each.place, each.kind, each.rule))
        counts = {}
        for each in self.found:
            first = identity(each, 0)
            each.id = identity(each, counts.get(first, 0))
            counts[first] = counts.get(first, 0) + 1
        return self.found

    def add(self, kind, rule, start, end, replacement):
        text = self.source.text
        first = text.count("\n", 0, start)
        last = first + text.count("\n", start, max(start, end - 1))
        before = "\n".join(self.lines[first:last + 1])
        offset = self.starts[first]
        after = before[:start - offset] + replacement + before[end - offset:]
        begin, behind = bisect.bisect_left(self.offsets, start), bisect.bisect_left(self.offsets, end)
        self.found.append(Mutation(
            self.file, first + 1, kind, rule, stripped(before), stripped(after), self.words(begin - FAR, begin),
            self.words(begin, behind), self.words(behind, behind + FAR), (start, end), replacement))

    def words(self, begin, end):
        """The tokens of the places [begin, end); what is blank in a literal is a dot."""
        return [re.sub(r"\s+", "·", token.text) for token in self.tokens[max(begin, 0):end]]

    def text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def span(self, first, last):
        return self.source.text[self.tokens[first].start:self.tokens[last].end]

    def spaced(self, index):
        """Whether blanks stand on both sides: an operator, and no bracket of a template nor a reference."""
        token, text = self.tokens[index], self.source.text
        return text[token.start - 1:token.start].isspace() and text[token.end:token.end + 1].isspace()

    # Single tokens.

    def of_tokens(self):
        for index, token in enumerate(self.tokens):
            if self.text(index - 1) == "operator" or self.is_asserted(index):
                continue
            if token.kind == "number":
                self.of_number(index, token)
            elif token.kind == "text":
                continue
            elif token.text in COMPARISONS and self.spaced(index):
                for other in COMPARISONS[token.text]:
                    self.replace("compare", token, other)
            elif token.text in ("true", "false") or token.text in LOGIC and self.spaced(index):
                self.replace("logic", token, LOGIC[token.text])
            elif token.text == "!":
                self.add("logic", "! dropped", token.start, token.end, "")
            elif token.text in ("++", "--") or token.text in ARITHMETIC and self.spaced(index):
                self.replace("arithmetic", token, ARITHMETIC[token.text])
            elif token.text == "?":
                self.of_choice(index)

    def replace(self, kind, token, other):
        self.add(kind, f"{token.text} -> {other}", token.start, token.end, other)

    def is_asserted(self, index):
        """What the compiler checks is no code that runs."""
        line = self.lines[self.tokens[index].line - 1].lstrip()
        return line.startswith(("static_assert", "template <", "requires "))

    def of_number(self, index, token):
        text = self.source.text
        in_template = text[token.start - 1] == "<" and text[token.start - 2] != "<" or (
            text[token.end] == ">" and self.text(index + 1) != ">>")
        is_pure = self.text(index - 1) == "=" and self.text(index + 1) == ";" and (
            self.text(index - 2) in (")", "const", "noexcept", "override"))
        if in_template or is_pure:
            return
        for other in other_numbers(token.text):
            self.replace("constant", token, other)

    def of_choice(self, index):
        """condition ? a : b"""
        at = index - 1
        while at >= 0 and self.text(at) not in ENDS_CONDITION + ("(", "["):
            at = self.source.partner.get(at, at) if self.text(at) in (")", "]", "}") else at
            at -= 1
        self.negate(at + 1, index)

    # Conditions.

    def of_conditions(self, statement):
        if not statement.condition:
            return
        begin, end = statement.condition
        inner = [i for i in range(begin, end) if self.is_outermost(i, begin)]
        for i in inner:
            if self.text(i) == ";":
                begin = i + 1
        if "=" in (self.text(i) for i in inner if i >= begin):
            self.negate_declared(statement, begin, end)
        else:
            self.negate(begin, end)

    def is_outermost(self, index, begin):
        depth = 0
        for i in range(begin, index):
            depth += (self.text(i) in ("(", "[", "{")) - (self.text(i) in (")", "]", "}"))
        return depth == 0

    def negate(self, begin, end):
        """Tokens [begin, end). A lone ! or comparison is turned as a token already."""
        if begin >= end:
            return
        signs = {self.text(i) for i in range(begin, end) if self.spaced(i)}
        if not {"&&", "||"} & signs and (self.text(begin) == "!" or signs & set(COMPARISONS)):
            return
        condition = self.span(begin, end - 1)
        is_plain = end - begin == 1 or re.fullmatch(r"[\w.:>-]+(\([^()]*\))?", condition)
        self.add("negate", "condition negated", self.tokens[begin].start, self.tokens[end - 1].end,
                 f"!{condition}" if is_plain else f"!({condition})")

    def negate_declared(self, statement, begin, end):
        """if (auto found = …) becomes if (auto found = …; !found)"""
        names = [self.text(i - 1) for i in range(begin, end) if self.text(i) == "=" and self.is_outermost(i, begin)]
        if statement.kind == "if" and begin == statement.condition[0]:
            behind = self.tokens[end - 1].end
            self.add("negate", "condition negated", self.tokens[begin].start, behind,
                     self.span(begin, end - 1) + f"; !{names[0]}")

    # Statements.

    def of_block(self, block):
        for index, statement in enumerate(block):
            self.of_statement(statement, block[index + 1:])
            if index > 0:
                self.of_neighbours(block[index - 1], statement)

    def of_statement(self, statement, later):
        if statement.kind == "if" and not statement.otherwise and self.leaves(statement.body):
            self.remove("exit", "early exit removed", statement)
        elif statement.kind in ("if", "for", "while", "try", "expression", "break", "continue", "throw"):
            self.remove("remove", "statement removed", statement)
        elif statement.kind in ("return", "co_return"):
            if later and statement.last - statement.first == 1:
                self.remove("remove", "statement removed", statement)
        elif statement.kind == "declaration" and "(" in self.names(statement):
            if not any(statement.declares in self.names(each) for each in later):
                self.remove("remove", "statement removed", statement)
        self.of_governed(statement)

    def of_governed(self, statement):
        """The statements that an if or a loop governs without braces."""
        for each in (statement.body, statement.otherwise):
            if not each or each.kind == "block":
                continue
            if statement.otherwise:
                self.of_statement(each, [])
            else:
                self.of_governed(each)  # without it nothing would be left of the whole, which is removed elsewhere

    def leaves(self, statement):
        last = statement.children[-1] if statement.children else statement
        return last.kind in cpp.JUMPS

    def names(self, statement):
        return {self.text(i) for i in range(statement.first, statement.last + 1)}

    def remove(self, kind, rule, statement):
        if self.height(statement, statement) > LONGEST_REMOVED:
            return
        if statement.kind == "expression" and ("reserve" in self.names(statement) or self.text(statement.first) == "("):
            return  # room made beforehand, and casts to void, change nothing
        if statement.first == statement.last:
            return  # a lone semicolon
        self.add(kind, rule, self.tokens[statement.first].start, self.tokens[statement.last].end, ";")

    def height(self, first, last):
        return self.tokens[last.last].line - self.tokens[first.first].line + 1

    def of_neighbours(self, one, other):
        if self.height(one, other) > LONGEST_SWAPPED or not self.order_matters(one, other):
            return
        start, middle = self.tokens[one.first].start, self.tokens[one.last].end
        end = self.tokens[other.last].end
        between = self.source.text[middle:self.tokens[other.first].start]
        self.add("swap", "neighbours swapped", start, end,
                 self.span(other.first, other.last) + between + self.span(one.first, one.last))

    def order_matters(self, one, other):
        kinds = (one.kind, other.kind)
        if any(kind in cpp.JUMPS + ("label", "other", "block") for kind in kinds):
            return False
        if kinds == ("declaration", "declaration") or one.declares and one.declares in self.names(other):
            return False
        if self.span(one.first, one.last) == self.span(other.first, other.last):
            return False
        first, second = self.names(one), self.names(other)
        shared = {name for name in first & second if re.match(r"[A-Za-z_]", name)} - {"std", "const", "auto", "move"}
        return bool(shared) or "(" in first and "(" in second


def stripped(text):
    lines = text.split("\n")
    indents = [len(line) - len(line.lstrip()) for line in lines if line.strip()]
    first = len(lines[0]) - len(lines[0].lstrip())
    return [line[min(indents + [first]):].rstrip() for line in lines]


def other_numbers(text):
    plain = text.replace("'", "")
    if match := re.fullmatch(r"(0[xX][0-9a-fA-F]+|0[bB][01]+|\d+)([uUlLzZ]*)", plain):
        value, suffix = int(match[1], 0) if not re.fullmatch(r"0\d+", match[1]) else int(match[1], 8), match[2]
        others = [f"{value * 2}{suffix}", f"{value + 1}{suffix}", f"0{suffix}"]
    elif match := re.fullmatch(r"((?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?)([fFlL]?)", plain):
        value, suffix = float(match[1]), match[2]
        others = [f"{value * 2!r}{suffix}", f"{value + 1!r}{suffix}", f"0.0{suffix}"]
    else:
        return []
    if value == 0:
        return others[1:2]
    return list(dict.fromkeys(others))


def draw(rooms, seed):
    """Yields mutations of {room: [mutation, …]} without end of rooms: one of each in turn, until all are drawn.

    What a room yields depends on its own sources and the seed alone.
    """
    turns = [_draw_room(found, random.Random(f"{seed} {room}")) for room, found in rooms.items()]
    while turns:
        for turn in list(turns):
            try:
                yield next(turn)
            except StopIteration:
                turns.remove(turn)


def _draw_room(found, chance):
    places = {}  # kind -> place -> what may be done there
    for each in found:
        places.setdefault(each.kind, {}).setdefault((each.file, each.place), []).append(each)
    left = {kind: sorted(of_kind) for kind, of_kind in sorted(places.items())}
    for rest in left.values():
        chance.shuffle(rest)
    while left:
        kinds = list(left)
        kind = chance.choices(kinds, [WEIGHTS[each] for each in kinds])[0]
        yield chance.choice(places[kind][left[kind].pop()])
        if not left[kind]:
            del left[kind]


class Finder:
    """Finds kept mutations in the sources of now. `read(file)` gives a source, `files` are all there are."""

    def __init__(self, files, read):
        self.files = files
        self.read = read
        self.known = {}
        self.taken = set()

    def mutations(self, file):
        if file not in self.known:
            self.known[file] = mutations(file, self.read(file))
        return self.known[file]

    def find(self, entries):
        """A mutation for each entry, or None where its statement is gone. The exact ones choose first."""
        found = [self.exact(entry) for entry in entries]
        return [found[i] or self.like(entry) for i, entry in enumerate(entries)]

    def exact(self, entry):
        same = [each for file in self.nearest_files(entry) for each in self.alike(file, entry)
                if tuple(map(" ".join, each.anchor())) == kept_anchor(entry)]
        return self.best(entry, same, 0)

    def like(self, entry):
        """A place that has been edited, in its file or in another."""
        near = [each for file in self.nearest_files(entry) for each in self.alike(file, entry)]
        return self.best(entry, near, LIKE_ENOUGH) or self.best(
            entry, [each for file in self.files for each in self.alike(file, entry)], LIKE_ENOUGH_ELSEWHERE)

    def alike(self, file, entry):
        return [each for each in self.mutations(file) if each.kind == entry["kind"] and each.rule == entry["rule"]
                and (each.file, each.id) not in self.taken]

    def best(self, entry, some, least):
        scored = [(score, each) for each in some if (score := likeness(entry, each, least)) >= least]
        if not scored:
            return None
        found = max(scored, key=lambda pair: pair[0])[1]
        self.taken.add((found.file, found.id))
        return found

    def nearest_files(self, entry):
        if entry["file"] in self.files:
            return [entry["file"]]
        return [file for file in self.files if PurePosixPath(file).name == PurePosixPath(entry["file"]).name]


def kept_anchor(entry):
    return " ".join(entry["left"].split()[-NEAR:]), entry["what"], " ".join(entry["right"].split()[:NEAR])


def likeness(entry, mutation, least):
    """From 0 to 1, or 0 if it is less than `least`; the nearest tokens count twice."""
    left, what, right = (entry[key].split() for key in ("left", "what", "right"))
    if ratio(what, mutation.what, LIKE_ITSELF) < min(least, LIKE_ITSELF):
        return 0
    near = ratio(left[-NEAR:] + what + right[:NEAR], sum(mutation.anchor(), []), 2 * least - 1)
    return near and (near + ratio(left + what + right, mutation.left + mutation.what + mutation.right, 0)) / 2


def ratio(one, other, least):
    matcher = difflib.SequenceMatcher(None, one, other, autojunk=False)
    if matcher.real_quick_ratio() < least or matcher.quick_ratio() < least:
        return 0
    return matcher.ratio()
