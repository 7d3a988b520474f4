#include "tests/faults/Subjects.h"

#include "core/automation/AutomationStore.h"
#include "core/base/Files.h"
#include "core/names/NameStore.h"
#include "core/notes/NotesStore.h"
#include "core/platform/ewmh/DesktopMemoryFile.h"
#include "core/platform/i3sway/WorkspaceRegistry.h"
#include "core/platform/linux/JsonDefaultsStore.h"
#include "core/platform/linux/PomodoroReminder.h"
#include "tests/faults/TrackingSubject.h"
#include "tests/support/RecordingNotifications.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <map>
#include <nlohmann/json.hpp>

namespace lumnara::testing {

namespace {

namespace fs = std::filesystem;

/// State k of a file of five slots: each holds the number of the last change that fell to it.
constexpr int slotCount = 5;
using Slots = std::map<std::string, int>;

std::string slotOf(int k) { return "slot" + std::to_string(k % slotCount); }

Slots slotsIn(int state) {
    Slots slots;
    for (int k = 1; k <= state; ++k) slots[slotOf(k)] = k;
    return slots;
}

int stateOf(const Slots& slots) {
    int state = 0;
    for (const auto& [slot, k] : slots) state = std::max(state, k);
    if (slots != slotsIn(state)) throw Damage(fmt::format("the slots are not those of state {}", state));
    return state;
}

int numberIn(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        throw Damage("no number: " + std::string(text));
    return number;
}

template <class Store> std::string troubleOf(const Store& store) {
    if (store.loadError()) return store.loadError()->sentence();
    const auto& kept = store.recoveredFromCorruptFile();
    return kept ? "kept at " + kept->string() : std::string();
}

class NamesSubject : public Subject {
public:
    static constexpr double delay = 0.02;
    static fs::path file(const fs::path& folder) { return folder / "desktops.json"; }

    NamesSubject(async::Loop& loop, const fs::path& folder) : store_(loop, file(folder), delay) {}
    void change(int k) override {
        DesktopRecord record;
        record.name = std::to_string(k);
        store_.setRecord(slotOf(k), record);
    }
    void save() override { store_.saveNow(); }
    void awaitWrite() override { store_.flush(); }
    std::string trouble() const override { return troubleOf(store_); }

    static int found(async::Loop& loop, const fs::path& folder) {
        const NameStore store(loop, file(folder));
        if (!troubleOf(store).empty()) throw Damage(troubleOf(store));
        Slots slots;
        for (const auto& [key, record] : store.file()->desktops) slots[key] = numberIn(record.name);
        return stateOf(slots);
    }

private:
    NameStore store_;
};

class AutomationSubject : public Subject {
public:
    AutomationSubject(async::Loop& loop, const fs::path& folder) : store_(loop, file(folder)) {
        store_.load();
    }
    static fs::path file(const fs::path& folder) { return folder / "automations.json"; }

    void change(int k) override {
        store_.upsert(
            {.id = slotOf(k), .spaceKey = "k", .name = std::to_string(k), .icon = "i", .actions = {}});
    }
    std::string trouble() const override { return troubleOf(store_); }

    static int found(async::Loop& loop, const fs::path& folder) {
        AutomationStore store(loop, file(folder));
        store.load();
        if (!troubleOf(store).empty()) throw Damage(troubleOf(store));
        Slots slots;
        for (const Automation& each : store.file().automations) slots[each.id] = numberIn(each.name);
        return stateOf(slots);
    }

private:
    AutomationStore store_;
};

class SettingsSubject : public Subject {
public:
    SettingsSubject(async::Loop& loop, const fs::path& folder) : store_(loop, file(folder)) {}
    static fs::path file(const fs::path& folder) { return folder / "settings.json"; }

    void change(int k) override { store_.set(slotOf(k), std::int64_t{k}); }
    void save() override { store_.saveNow(); }
    void awaitWrite() override { store_.saveNow(); }
    std::string trouble() const override {
        return store_.loadError() ? store_.loadError()->sentence() : std::string();
    }

    static int found(async::Loop& loop, const fs::path& folder) {
        JsonDefaultsStore store(loop, file(folder));
        if (store.loadError()) throw Damage(store.loadError()->sentence());
        Slots slots;
        for (int k = 0; k < slotCount; ++k)
            if (const auto value = store.get<std::int64_t>(slotOf(k)))
                slots[slotOf(k)] = static_cast<int>(*value);
        return stateOf(slots);
    }

private:
    JsonDefaultsStore store_;
};

/// A change replaces a text with its picture, then its panel's state, then makes or deletes another note.
class NotesSubject : public Subject {
public:
    NotesSubject(async::Loop& loop, const fs::path& folder) : store_(loop, folder / "Notes") {}

    void change(int k) override {
        store_.saveText("a", textOf(k));
        store_.saveMeta("a", {.edgeOffset = static_cast<double>(k)});
        if (isThere(k))
            store_.saveText("b", textOf(k));
        else
            store_.deleteNote("b");
    }

    static int found(async::Loop& loop, const fs::path& folder) {
        const NotesStore store(loop, folder / "Notes");
        const int text = textIn(store, "a");
        const bool hasMeta = fs::exists(store.directory() / "a.json");
        const int meta = hasMeta ? static_cast<int>(store.loadMeta("a").edgeOffset) : 0;
        if (text != meta && text != meta + 1)
            throw Damage(fmt::format("text {} with panel state {}", text, meta));
        const int other = textIn(store, "b");
        for (const int state : {meta, meta - 1})
            if (other == (isThere(state) ? state : 0)) return std::max(state, 0);
        throw Damage(fmt::format("note {} with panel state {}", other, meta));
    }

private:
    static bool isThere(int k) { return k > 0 && k % 2 == 0; }

    static RichText textOf(int k) {
        RichText text = RichText::plain("note " + std::to_string(k) + " ");
        const std::string name =
            text.addAttachment("p.png", std::string(9000, static_cast<char>('a' + k % 26)));
        text.paragraphs.back().append(TextAttachment{name, 1, 1}, {});
        return text;
    }
    static int textIn(const NotesStore& store, const char* key) {
        if (!store.hasNote(key)) return 0;
        const RichText text = store.loadText(key);
        const std::string words = text.plainText();
        if (!words.starts_with("note ")) throw Damage("the note reads \"" + words + "\"");
        const int k = numberIn(std::string_view(words).substr(5, words.find(' ', 5) - 5));
        if (text != textOf(k)) throw Damage(fmt::format("note {} is not whole", k));
        return k;
    }

    NotesStore store_;
};

class PomodoroSubject : public Subject {
public:
    PomodoroSubject(async::Loop& loop, const fs::path& folder) : reminder_(loop, silent_, file(folder)) {}
    static fs::path file(const fs::path& folder) { return folder / "pomodoro.json"; }

    void change(int k) override { reminder_.start(farAway, k); }

    static int found(async::Loop& loop, const fs::path& folder) {
        if (!fs::exists(file(folder))) return 0;
        RecordingNotifications silent;
        if (!PomodoroReminder(loop, silent, file(folder)).due()) throw Damage("pomodoro.json is damaged");
        return nlohmann::json::parse(readFile(file(folder))).at("breakMinutes").get<int>();
    }

private:
    static constexpr int farAway = 100'000;

    RecordingNotifications silent_;
    PomodoroReminder reminder_;
};

/// Each change saves the state of one panel.
class PanelSubject : public Subject {
public:
    PanelSubject(async::Loop& loop, const fs::path& folder) : store_(loop, folder / "Panels") {}

    void change(int k) override { store_.saveMeta("k", {.edgeOffset = static_cast<double>(k)}); }

    static int found(async::Loop& loop, const fs::path& folder) {
        const NotesStore store(loop, folder / "Panels");
        if (!fs::exists(store.directory() / "k.json")) return 0;
        const NoteMeta meta = store.loadMeta("k");
        if (meta == NoteMeta{.updatedAt = loop.date()}) throw Damage("the panel's state is damaged");
        return static_cast<int>(meta.edgeOffset);
    }

private:
    NotesStore store_;
};

/// Each change adds a desktop; their names count them.
class WorkspacesSubject : public Subject {
public:
    WorkspacesSubject(async::Loop& loop, const fs::path& folder)
        : registry_(loop, folder / "workspaces.json") {}

    void change(int) override { registry_.create("L"); }
    void save() override { registry_.saveNow(); }
    void awaitWrite() override { registry_.saveNow(); }

    static int found(async::Loop& loop, const fs::path& folder) {
        const fs::path file = folder / "workspaces.json";
        const bool isThere = fs::exists(file);
        const WorkspaceRegistry registry(loop, file);
        const auto spaces = registry.spaces("L");
        if (isThere && spaces.empty()) throw Damage("workspaces.json is damaged");
        for (std::size_t i = 0; i < spaces.size(); ++i)
            if (numberIn(spaces[i]->workspace) != static_cast<int>(i) + 1) throw Damage("another desktop");
        return static_cast<int>(spaces.size());
    }

private:
    WorkspaceRegistry registry_;
};

/// Slots of which each is a desktop's name; every other one stands in place of the window manager's own,
/// which is no UTF-8.
class EwmhSubject : public Subject {
public:
    EwmhSubject(async::Loop& loop, const fs::path& folder)
        : file_(path(folder)),
          desktops_(file_.load(loop.date())) {}
    static fs::path path(const fs::path& folder) { return folder / "ewmh-desktops.json"; }

    void change(int k) override {
        const std::string name = std::to_string(k);
        auto found = std::ranges::find(desktops_, slotOf(k), &RememberedDesktop::uuid);
        if (found == desktops_.end()) found = desktops_.insert(found, {slotOf(k), {}});
        *found = {slotOf(k), name};
        if (k % 2 == 1) found->renamed = {name, "\xFF"};
        file_.save(desktops_);
    }

    static int found(async::Loop& loop, const fs::path& folder) {
        const bool isThere = fs::exists(path(folder));
        const auto desktops = DesktopMemoryFile(path(folder)).load(loop.date());
        if (isThere && desktops.empty()) throw Damage("ewmh-desktops.json is damaged");
        Slots slots;
        for (const auto& [uuid, shown, renamed] : desktops) {
            slots[uuid] = numberIn(shown);
            const bool isOurs = renamed == RememberedDesktop::Renamed{shown, "\uFFFD"};
            if (renamed ? !isOurs : slots[uuid] % 2 == 1) throw Damage("another name");
        }
        return stateOf(slots);
    }

private:
    DesktopMemoryFile file_;
    std::vector<RememberedDesktop> desktops_;
};

template <class Opened> std::unique_ptr<Subject> openSubject(async::Loop& loop, const fs::path& folder) {
    return std::make_unique<Opened>(loop, folder);
}

constexpr std::array kinds = {
    SubjectKind{"names", NamesSubject::delay, true, openSubject<NamesSubject>, NamesSubject::found},
    SubjectKind{"automations", 0, false, openSubject<AutomationSubject>, AutomationSubject::found},
    SubjectKind{"settings", JsonDefaultsStore::saveDelay, false, openSubject<SettingsSubject>,
                SettingsSubject::found},
    SubjectKind{"notes", 0, false, openSubject<NotesSubject>, NotesSubject::found},
    SubjectKind{"pomodoro", 0, false, openSubject<PomodoroSubject>, PomodoroSubject::found},
    SubjectKind{"tracking", 0, false, openSubject<TrackingSubject>, TrackingSubject::found},
    SubjectKind{"workspaces", 1, false, openSubject<WorkspacesSubject>, WorkspacesSubject::found},
    SubjectKind{"ewmh", 0, false, openSubject<EwmhSubject>, EwmhSubject::found},
    SubjectKind{"panel", 0, false, openSubject<PanelSubject>, PanelSubject::found},
};

} // namespace

std::span<const SubjectKind> subjectKinds() { return kinds; }

std::string leftoversIn(const fs::path& folder) {
    std::string left;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = entry.path().filename();
        if (name.starts_with('.') || name.find(".corrupt-") != std::string::npos) left += name + " ";
    }
    return left;
}

std::string leftoversAndJournalIn(const fs::path& folder) {
    const std::string journal = std::string(TrackingStore::fileName) + "-journal";
    return leftoversIn(folder) + (fs::exists(folder / journal) ? journal : "");
}

} // namespace lumnara::testing
