"""Reads C++ as far as drawing mutations needs it: tokens, and the statements of function bodies.

No compiler stands behind it. It leans on the format the house is held to (a comparison has blanks around it,
the bracket of a template has not), and where it is wrong the mutation doesn't build and another is drawn.
"""
import re
from dataclasses import dataclass, field

TOKEN = re.compile(
    r"""(?P<skip>\s+ | //[^\n]* | /\*.*?\*/ | ^[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<text>(?:u8|[uUL])?R"(?P<raw>[^()\s\\]*)\(.*?\)(?P=raw)" | (?:u8|[uUL])?"(?:\\.|[^"\\\n])*"
                | (?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
      | (?P<number>\.?\d(?:[eEpP][+-]|'?[\w.])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<sign>\[\[|\]\]|<=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|&&|\|\||[<>=!+\-*/%&|^]=|.)""",
    re.DOTALL | re.VERBOSE | re.MULTILINE)

CLOSING = {"(": ")", "[": "]", "{": "}"}


@dataclass
class Token:
    kind: str  # text, number, name or sign
    text: str
    start: int  # offsets into the source
    end: int
    line: int  # from 1


@dataclass
class Statement:
    """Tokens first..last, both included. `kind` is the keyword of a compound statement or of a jump,
    "declaration" or "expression"."""
    kind: str
    first: int
    last: int
    condition: tuple = None  # of if and while: the tokens between the parentheses, [from, to)
    body: "Statement" = None  # what an if, a loop or a case governs
    otherwise: "Statement" = None  # of an if
    declares: str = None  # the name a declaration makes
    children: list = field(default_factory=list)  # of a block

    @property
    def is_simple(self):
        return self.kind not in ("if", "for", "while", "switch", "do", "try", "block")


@dataclass
class Source:
    text: str
    tokens: list = field(default_factory=list)
    partner: dict = field(default_factory=dict)  # index of a bracket -> index of the one that matches
    blocks: list = field(default_factory=list)  # of function bodies: lists of neighbouring Statements
    statements: list = field(default_factory=list)  # all of them, the nested ones too


JUMPS = ("return", "co_return", "co_yield", "throw", "break", "continue", "goto")
NOT_A_TYPE = JUMPS + ("delete", "new", "co_await", "else", "case", "default", "using", "typedef", "static_assert")


def tokenize(text):
    tokens = []
    line, seen = 1, 0
    for match in TOKEN.finditer(text):
        if match.lastgroup == "skip":
            continue
        line += text.count("\n", seen, match.start())
        seen = match.start()
        kind = next(group for group in ("text", "number", "name", "sign") if match[group] is not None)
        tokens.append(Token(kind, match.group(), match.start(), match.end(), line))
    return without_attributes(split_subscripts(tokens))


def split_subscripts(tokens):
    """`]]` ends an attribute only where `[[` began one: a[b[c]] ends two subscripts."""
    depth, found = 0, []
    for token in tokens:
        if token.text == "[[":
            depth += 1
        elif token.text == "]]":
            if depth == 0:
                middle = token.start + 1
                found.append(Token("sign", "]", token.start, middle, token.line))
                found.append(Token("sign", "]", middle, token.end, token.line))
                continue
            depth -= 1
        found.append(token)
    return found


def without_attributes(tokens):
    found, inside = [], False
    for token in tokens:
        if token.text == "[[":
            inside = True
        elif token.text == "]]":
            inside = False
        elif not inside:
            found.append(token)
    return found


def match_brackets(tokens):
    partner, stack = {}, []
    for index, token in enumerate(tokens):
        if token.kind != "sign":
            continue
        if token.text in CLOSING:
            stack.append(index)
        elif token.text in CLOSING.values() and stack and CLOSING[tokens[stack[-1]].text] == token.text:
            partner[index] = stack.pop()
            partner[partner[index]] = index
    return partner


def read(text):
    source = Source(text)
    source.tokens = tokenize(text)
    source.partner = match_brackets(source.tokens)
    _Reader(source).declarations(0, len(source.tokens))
    return source


class _Reader:
    def __init__(self, source):
        self.source = source
        self.tokens = source.tokens
        self.partner = source.partner

    def text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def close(self, index, end):
        """The index behind the bracket that matches the one at `index`."""
        return min(self.partner.get(index, end), end) + 1

    # Declarations: namespaces, classes, and the bodies of functions in them.

    def declarations(self, at, end):
        while at < end:
            at = self.declaration(at, end)

    def declaration(self, begin, end):
        at, has_list, has_value, in_initializers = begin, False, False, False
        while at < end:
            text = self.text(at)
            if text == ";":
                return at + 1
            if text == "{":
                behind = self.close(at, end)
                words = [self.text(i) for i in range(begin, at)]
                if not has_list and "enum" not in words and not has_value and any(
                        w in words for w in ("namespace", "class", "struct", "union", "extern")):
                    self.declarations(at + 1, behind - 1)
                    return behind
                is_member = in_initializers and (self.tokens[at - 1].kind == "name" or self.text(at - 1) == ">")
                if has_list and not has_value and not is_member:
                    self.block(at)
                    return behind
                self.lambdas(at + 1, behind - 1)
                at = behind
                continue
            if text in ("(", "["):
                has_list = has_list or text == "("
                behind = self.close(at, end)
                self.lambdas(at + 1, behind - 1)
                at = behind
                continue
            if text == "=" and self.text(at - 1) != "operator":
                has_value = True
            if text == ":" and has_list:
                in_initializers = True
            if text == ":" and self.text(at - 1) in ("public", "private", "protected"):
                return at + 1
            at += 1
        return end

    def lambdas(self, at, end):
        """Reads the bodies of lambdas that stand in an expression."""
        while at < end:
            if self.text(at) == "{" and self.begins_lambda(at):
                self.block(at)
                at = self.close(at, end)
            else:
                at += 1

    def begins_lambda(self, brace):
        at = brace - 1
        for _ in range(40):  # the type behind an arrow, if there is one
            if self.text(at) in (")", "]"):
                break
            if self.tokens[at].kind != "name" and self.text(at) not in ("->", "::", "<", ">", ">>", "*", "&", ","):
                return False
            at -= 1
        if self.text(at) == ")":
            if brace - at > 1 and self.text(at + 1) not in ("->", "mutable", "noexcept"):
                return False
            at = self.partner.get(at, 0) - 1
            if self.text(at) == ">":
                while at > 0 and self.text(at) != "<":
                    at -= 1
                at -= 1
        elif brace - at > 1:
            return False
        if self.text(at) != "]":
            return False
        before = self.partner.get(at, 0) - 1
        return not (self.tokens[before].kind == "name" and self.text(before) not in JUMPS
                    or self.text(before) in (")", "]"))

    # Statements.

    def block(self, brace):
        end = self.partner.get(brace, len(self.tokens))
        found, at = [], brace + 1
        while at < end:
            statement = self.statement(at, end)
            found.append(statement)
            at = statement.last + 1
        self.source.blocks.append(found)
        return Statement("block", brace, end, children=found)

    def statement(self, at, end):
        statement = self.read_statement(at, end)
        self.source.statements.append(statement)
        return statement

    def read_statement(self, at, end):
        text = self.text(at)
        if text == "{":
            return self.block(at)
        if text == "if":
            return self.read_if(at, end)
        if text in ("for", "while", "switch"):
            head = at + 1
            behind = self.close(head, end)
            self.lambdas(head + 1, behind - 1)
            body = self.statement(behind, end)
            return Statement(text, at, body.last, (head + 1, behind - 1) if text == "while" else None, body)
        if text == "do":
            body = self.statement(at + 1, end)
            head = body.last + 2
            behind = self.close(head, end)
            return Statement("do", at, behind, (head + 1, behind - 1), body)
        if text == "try":
            last = self.block(at + 1).last
            while self.text(last + 1) == "catch":
                last = self.block(self.close(last + 2, end)).last
            return Statement("try", at, last)
        if text == "case" or text == "default":
            return Statement("label", at, self.end_of_label(at, end))
        return self.read_simple(at, end)

    def read_if(self, at, end):
        head = at + 1
        if self.text(head) == "constexpr":
            head += 1
        behind = self.close(head, end)
        self.lambdas(head + 1, behind - 1)
        body = self.statement(behind, end)
        otherwise = self.statement(body.last + 2, end) if self.text(body.last + 1) == "else" else None
        condition = (head + 1, behind - 1) if head == at + 1 else None
        return Statement("if", at, (otherwise or body).last, condition, body, otherwise)

    def end_of_label(self, at, end):
        while at < end and self.text(at) != ":":
            at += 1
        return at

    def read_simple(self, begin, end):
        at = begin
        while at < end and self.text(at) != ";":
            if self.text(at) == "{" and self.begins_lambda(at):
                self.block(at)
                at = self.close(at, end)
            elif self.text(at) in CLOSING:
                behind = self.close(at, end)
                if self.text(at) != "{" or self.text(begin) not in ("struct", "class", "enum", "union"):
                    self.lambdas(at + 1, behind - 1)
                at = behind
            else:
                at += 1
        last = min(at, end - 1)
        first = self.text(begin)
        if first in JUMPS:
            return Statement(first, begin, last)
        if first in NOT_A_TYPE and first not in ("delete", "new", "co_await") or first in ("struct", "class", "enum"):
            return Statement("other", begin, last)
        name = self.declared_name(begin, last)
        return Statement("declaration" if name else "expression", begin, last, declares=name)

    def declared_name(self, begin, last):
        """The name that `Type name(…)`, `Type name = …` or `auto [name, …] = …` makes, or None."""
        at = begin
        while self.text(at) in ("const", "constexpr", "static", "thread_local", "inline", "volatile", "typename"):
            at += 1
        if self.tokens[at].kind != "name":
            return None
        at += 1
        while at < last:
            text = self.text(at)
            if text == "::":
                at += 2
            elif text == "<" and self.tokens[at].start == self.tokens[at - 1].end:
                at = self.behind_angle(at, last)
            elif text == "const" or text in ("*", "&", "&&") and self.tokens[at - 1].end == self.tokens[at].start:
                at += 1
            elif text == "[" and "auto" in (self.text(i) for i in range(begin, at)):
                return self.text(at + 1)
            else:
                break
        if at > begin and self.tokens[at].kind == "name" and self.text(at + 1) in ("=", "(", "{", ";", "[", ","):
            return self.text(at)
        return None

    def behind_angle(self, at, last):
        depth = 0
        while at < last:
            depth += {"<": 1, ">": -1, ">>": -2}.get(self.text(at), 0)
            at += 1
            if depth <= 0:
                break
        return at
