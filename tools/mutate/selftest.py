"""Checks the drawing: what is drawn from a source that holds the traps, and what is found again after changes."""
import cpp
import draw

SOURCE = r'''
#include <map> // if (a < b) return 1;
#define LIMIT 7 < 8
namespace lumnara {
/* x == 3; */
template <class T, bool = (2 > 1)>
struct Cell { std::array<int, 4> values; int count{2}; virtual int of(int a) const = 0; };
static_assert(sizeof(int) == 4);
Cell::Cell(T&& other) : count{5}, name_(R"(a == 1; "b")") {
    if (auto* found = find(other)) touch(*found);
}
[[gnu::hot]] int walk(const std::vector<std::map<int, int>>& all, int from) {
    if (all.empty()) return -1;
    int sum = 0;
    for (int i = from; i < 10; ++i) {
        sum += i;
        add(sum);
    }
    each(all, [&](const auto& one) {
        if (!one.empty() && one[0] > from) count(one);
        return true;
    });
    switch (sum) {
    case 4: stop(); break;
    default: go();
    }
    return sum == 0x10 ? 1'000 : 2.5;
}
} // namespace lumnara
'''

DRAWN = {
    "arithmetic": {"++ -> --", "+= -> -="},
    "compare": {"< -> <=", "< -> >=", "> -> >=", "> -> <=", "== -> !="},
    "constant": {"2 -> 4", "2 -> 3", "2 -> 0", "5 -> 10", "5 -> 6", "5 -> 0", "1 -> 2", "1 -> 0", "0 -> 1", "10 -> 20",
                 "10 -> 11", "10 -> 0", "4 -> 8", "4 -> 5", "4 -> 0", "0x10 -> 32", "0x10 -> 17", "0x10 -> 0",
                 "1'000 -> 2000", "1'000 -> 1001", "1'000 -> 0", "2.5 -> 5.0", "2.5 -> 3.5", "2.5 -> 0.0"},
    "exit": {"if (all.empty()) return -1;"},
    "logic": {"! dropped", "&& -> ||", "true -> false"},
    "negate": {"if (auto* found = find(other); !found) touch(*found);", "if (!all.empty()) return -1;",
               "if (!(!one.empty() && one[0] > from)) count(one);"},
    "remove": {"if (auto* found = find(other)) touch(*found);", "for (int i = from; i < 10; ++i) {", "sum += i;",
               "add(sum);", "each(all, [&](const auto& one) {", "if (!one.empty() && one[0] > from) count(one);",
               "case 4: stop(); break;", "default: go();"},
    "swap": {"sum += i;", "for (int i = from; i < 10; ++i) {", "each(all, [&](const auto& one) {"},
}

EDITED = [  # how a source changes, and the file it is then in: what was drawn from it is found again
    (lambda text: text, "core/names/Walk.cpp"),
    (lambda text: text.replace("namespace lumnara {", "namespace lumnara {\nint more = 1;\n\n"), "core/names/Walk.cpp"),
    (lambda text: text.replace("; ", ";\n    ").replace("\n    ", "\n      "), "app/way/Walk.cpp"),
    (lambda text: text.replace("all", "every"), "core/names/Walk.cpp"),
]


def told(mutation):
    if mutation.kind in ("exit", "remove", "swap"):
        return mutation.before[0].strip()
    return mutation.after[0].strip() if mutation.kind == "negate" else mutation.rule


def check(right, *what):
    if not right:
        raise SystemExit(" ".join(["mutate:", *map(str, what)]))


def run():
    file = "core/names/Walk.cpp"
    found = draw.mutations(file, SOURCE)
    kinds = {kind: {told(each) for each in found if each.kind == kind} for kind in DRAWN}
    for kind, wanted in DRAWN.items():
        check(kinds[kind] == wanted, kind, "missing:", wanted - kinds[kind], "wrong:", kinds[kind] - wanted)
    check(len({each.id for each in found}) == len(found), "two mutations have one id")
    for each in found:
        brackets = cpp.read(each.apply(SOURCE))
        check(len(brackets.partner) == len(cpp.read(SOURCE).partner) or each.kind in ("exit", "remove", "negate"),
              "unbalanced:", each.after)
    check([each.id for each in draw.draw({"names": found}, 7)] == [each.id for each in draw.draw({"names": found}, 7)],
          "the seed doesn't decide")

    for edit, place in EDITED:
        text = edit(SOURCE)
        again = draw.Finder([place], lambda _: text).find([each.entry() for each in found])
        lost = [each.before for each, now in zip(found, again) if not now or now.kind != each.kind]
        check(not lost, "lost:", lost)
        check(len({now.place + (now.kind, now.rule) for now in again}) == len(found), "two are found at one place")
    gone = SOURCE.replace("add(sum);", "").replace("one[0] > from", "most(one)")
    again = draw.Finder([file], lambda _: gone).find([each.entry() for each in found])
    lost = {told(each) for each, now in zip(found, again) if not now}
    check({"add(sum);", "sum += i;", "> -> <="} <= lost, "found though gone:", lost)
    print(f"mutate: {len(found)} mutations drawn and found again")
    return 0
