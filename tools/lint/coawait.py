#!/usr/bin/env python3
"""Holds coroutines to the shapes that every supported compiler translates rightly.

g++ 12 miscompiles many uses of co_await in silence: a temporary of the expression is destroyed twice, or an
operand is lost. These shapes are safe:

    co_await call(arguments);
    const auto name = co_await call(arguments);
    co_return co_await call(arguments);
    while (auto name = co_await stream.next())

A brace, a conditional operator or a second co_await makes each of them unsafe again. A coroutine that is a
lambda with captures is refused too: the captures die with the lambda, before the coroutine ends.

Usage: coawait.py FILE_OR_FOLDER...   prints "file:line: statement" and exits with 1 when something is refused
       coawait.py --self-test
"""

import pathlib
import re
import sys

SUFFIXES = {".h", ".cpp"}

COMMENT_OR_LITERAL = re.compile(
    r"""//[^\n]* | /\*.*?\*/ | R"(?P<raw>[^()\s\\]*)\(.*?\)(?P=raw)" | "(?:\\.|[^"\\\n])*" | (?<!\w)'(?:\\.|[^'\\\n])+'""",
    re.DOTALL | re.VERBOSE)
DIRECTIVE = re.compile(r"^[ \t]*#(?:\\\n|[^\n])*", re.MULTILINE)

LABEL = re.compile(r"(?:case\b[^:;]*(?:::[^:;]*)*|default|\w+)\s*:(?!:)\s*")
KEYWORD = re.compile(r"(?:else|do)\b\s*")
CONTROL_HEAD = re.compile(r"(?:if(?:\s+constexpr)?|for|while|switch)\s*(?=\()")
WHILE_HEAD = re.compile(r"while\s*(?=\()")

STATEMENT = re.compile(
    r"""(?: co_return\s+
          | (?:const\s+)?[\w:]+(?:<[^;=]*>)?[\s&*]+\w+\s*=\s*      # a local and its type
          | (?:const\s+)?auto[\s&]*\[[\w\s,]+\]\s*=\s*
        )? co_await\b(?P<call>[^;]*);$""", re.VERBOSE)
WHILE_DECLARATION = re.compile(r"(?:const\s+)?auto\s+\w+\s*=\s*co_await\b(?P<call>[^;]*)$")
# What is left of one call, or of one name, without its parentheses.
CALL = re.compile(r"\*?(?:[\w:]|\.|->|<[\w:<>,*&]*>)+")

LAMBDA_HEAD = re.compile(
    r"\[(?P<captures>[^\[\]]*)\]\s*(?:\([^{};]*\))?\s*(?:mutable|noexcept)?\s*(?:->[^{};]*)?$")


def blank(match):
    """Spaces of the same length, so that offsets and lines stay."""
    return re.sub(r"[^\n]", " ", match.group())


def code_of(text):
    def literal(match):
        if match.group().startswith("/"):
            return blank(match)
        return '"' + blank(match)[1:-1] + '"'

    return DIRECTIVE.sub(blank, COMMENT_OR_LITERAL.sub(literal, text))


def statement_start(code, position):
    """Where the statement around `position` starts; a head such as "while (" around it belongs to it."""
    depth = 0
    for i in range(position - 1, -1, -1):
        if code[i] == ")":
            depth += 1
        elif code[i] == "(":
            depth = max(depth - 1, 0)
        elif depth == 0 and code[i] in ";{}":
            return i + 1
    return 0


def statement_end(code, position):
    """Behind the semicolon of the statement, or at the brace that opens a body or closes the block."""
    braces = 0
    depth = 0
    for i in range(position, len(code)):
        if code[i] == "(":
            depth += 1
        elif code[i] == ")":
            depth -= 1
        elif code[i] == "{":
            if braces == 0 and depth < 0:
                return i
            braces += 1
        elif code[i] == "}":
            if braces == 0:
                return i
            braces -= 1
        elif code[i] == ";" and braces == 0:
            return i + 1
    return len(code)


def matching_parenthesis(text, opening):
    depth = 0
    for i in range(opening, len(text)):
        depth += {"(": 1, ")": -1}.get(text[i], 0)
        if depth == 0:
            return i
    return None


def is_one_call(call):
    if re.search(r"[{}?]|\bco_await\b", call):
        return False
    outside = call
    while "(" in outside:
        shorter = re.sub(r"\([^()]*\)", "", outside)
        if shorter == outside:
            return False
        outside = shorter
    return CALL.fullmatch(re.sub(r"\s*(->|\.|::|,)\s*", r"\1", outside.strip())) is not None


def without_prefixes(statement):
    """Takes labels and the heads of unbraced control statements off, but not a head that holds the co_await."""
    while True:
        prefix = LABEL.match(statement) or KEYWORD.match(statement)
        if prefix:
            statement = statement[prefix.end():]
            continue
        head = CONTROL_HEAD.match(statement)
        closing = head and matching_parenthesis(statement, head.end())
        if not closing or re.search(r"\bco_await\b", statement[:closing]):
            return statement
        statement = statement[closing + 1:].lstrip()


def is_safe(statement):
    statement = without_prefixes(statement)
    head = WHILE_HEAD.match(statement)
    if head:
        closing = matching_parenthesis(statement, head.end())
        match = closing and WHILE_DECLARATION.match(statement[head.end() + 1:closing])
    else:
        match = STATEMENT.match(statement)
    return bool(match) and is_one_call(match["call"])


def inside_capturing_lambda(code, position):
    depth = 0
    for i in range(position - 1, -1, -1):
        if code[i] == "}":
            depth += 1
        elif code[i] == "{" and depth > 0:
            depth -= 1
        elif code[i] == "{":
            head = LAMBDA_HEAD.search(code[statement_boundary(code, i):i])
            if head:
                return head["captures"].strip() != ""
    return False


def statement_boundary(code, position):
    return max(code.rfind(mark, 0, position) for mark in ";{}") + 1


def findings(text):
    """Pairs of a line number and the refused statement on one line."""
    code = code_of(text)
    for match in re.finditer(r"\bco_(?:await|return|yield)\b", code):
        start = statement_start(code, match.start())
        statement = " ".join(code[start:statement_end(code, match.end())].split())
        # The awaiter's own operator is a declaration, not a use.
        if re.search(r"\boperator\s*$", code[:match.start()]):
            continue
        unsafe = match.group() == "co_await" and not is_safe(statement)
        if unsafe or inside_capturing_lambda(code, match.start()):
            yield code.count("\n", 0, match.start()) + 1, statement


def files_of(arguments):
    for argument in map(pathlib.Path, arguments):
        if argument.is_dir():
            yield from sorted(path for path in argument.rglob("*") if path.suffix in SUFFIXES)
        else:
            yield argument


GOOD = """
co_await f();
co_await detail::RaceAwaiter(state, first, second);
co_await std::move(task);
(co_awaited);
const auto x = co_await f(a, b(c));
const std::vector<std::string> names = co_await reader->names(key);
std::optional<std::pair<int, int>> pair = co_await f<T>(a);
const auto [name, count] = co_await f(a);
T value = co_await std::move(task);
const bool ok = co_await sleepUnlessCancelled(
    c.pollInterval);
co_return co_await f(a);
while (auto e = co_await s.next()) { use(*e); }
while (auto e = co_await stream_->next()) use(*e);
if (ready) co_await f(a);
for (int i = 0; i < 3; ++i) co_await f(i);
if constexpr (std::is_void_v<T>) { co_await f(); } else { const T t = co_await f(); }
switch (kind) { case Kind::first: co_await f(a); break; default: co_await g(a); }
try { co_await f(a); } catch (const Cancelled&) {}
// if (co_await f()) {}
log("if (co_await f()) ?");
spawn(loop, [](Loop& l) -> Task<> { co_await f(l); }(loop));
Awaiter operator co_await() && noexcept { return Awaiter(handle_); }
auto hop = [&queue] { return queue.size(); }; co_await f(hop);
const char mark = '\\''; const int big = 1'000'000; co_await f(big);
"""

BAD = """
if (co_await f()) return;
if (!co_await f()) return;
if (auto e = co_await f()) use(e);
if (a && co_await f()) return;
switch (co_await f()) {}
while (co_await f()) {}
while (n < 3 && co_await f()) {}
do { } while (co_await f());
for (auto& x : co_await list()) use(x);
for (co_await f(); true;) {}
use(co_await f());
const auto x = b ? co_await f() : 0;
const auto x = co_await f(b ? 1 : 2);
const auto x = co_await f({1, 2});
const auto x = co_await f(Point{1, 2});
co_await f([s] { return s; });
co_await M{}.get();
const auto n = co_await f() + 1;
const bool v = co_await f() && co_await g();
const auto n = co_await f(co_await g());
const auto n = (co_await f()).size();
total += co_await f();
std::vector<int> v{co_await f()};
std::optional<int> v(co_await f());
Pair p{.a = co_await f(), .b = 1};
co_return Pair{co_await f(), 1};
auto run = [this] { co_return; };
spawn(loop, [&](Loop& l) -> Task<> { co_await f(l); }(loop));
auto run = [x = std::move(y)](int n) mutable -> Task<int> { if (n) { co_await f(n); } };
"""


def self_test():
    # One line is one case, but an indented line continues the one before.
    def cases(text):
        return re.sub(r"\n ", " ", text.strip()).split("\n")

    failures = [f"refused: {case}" for case in cases(GOOD) if list(findings(f"void f() {{\n{case}\n}}\n"))]
    failures += [f"passed: {case}" for case in cases(BAD) if not list(findings(f"void f() {{\n{case}\n}}\n"))]
    spread = "int f() {\n  // co_await\n  if (a &&\n      co_await g(\n          b)) {}\n}\n"
    if list(findings(spread)) != [(4, "if (a && co_await g( b))")]:
        failures.append(f"wrong place: {list(findings(spread))}")
    print("\n".join(failures) or "coawait: the self-test passes")
    return 1 if failures else 0


def main(arguments):
    if arguments == ["--self-test"]:
        return self_test()
    if not arguments:
        sys.exit(__doc__.strip())
    refused = 0
    for path in files_of(arguments):
        for line, statement in findings(path.read_text(encoding="utf-8")):
            print(f"{path}:{line}: {statement}")
            refused += 1
    return 1 if refused else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
