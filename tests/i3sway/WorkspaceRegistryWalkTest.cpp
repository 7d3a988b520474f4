#include "core/async/TestLoop.h"
#include "core/platform/i3sway/WorkspaceNames.h"
#include "core/platform/i3sway/WorkspaceRegistry.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <charconv>
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace lumnara::testing {
namespace {

/// A window manager like i3: workspaces known by unique names, numbered ones first, containers that are given
/// away again at once, an empty workspace gone when it is left.
struct ModelWindowManager {
    struct Workspace {
        std::int64_t handle;
        std::string name;
        std::string output;
        int born = 0;
        /// The desktop that it turned out to be.
        std::string uuid = {};
    };
    std::vector<Workspace> workspaces;
    bool pluggedR = true;

    Workspace* find(const std::string& name) {
        const auto found = std::ranges::find_if(
            workspaces, [&](const auto& each) { return workspaceKey(each.name) == workspaceKey(name); });
        return found == workspaces.end() ? nullptr : &*found;
    }
    std::int64_t freeHandle() const {
        std::int64_t handle = 1;
        while (std::ranges::any_of(workspaces, [&](const auto& each) { return each.handle == handle; }))
            ++handle;
        return handle;
    }
    static unsigned number(const std::string& name) {
        unsigned number = ~0U;
        std::from_chars(name.data(), name.data() + name.size(), number);
        return number;
    }
    std::vector<std::string> outputs() const {
        return pluggedR ? std::vector<std::string>{"L", "R"} : std::vector<std::string>{"L"};
    }
    std::vector<WorkspaceRegistry::LiveDisplay> reading() {
        std::ranges::sort(workspaces, {},
                          [](const auto& each) { return std::pair(number(each.name), each.born); });
        std::vector<WorkspaceRegistry::LiveDisplay> displays;
        for (const std::string& output : outputs()) {
            auto& display = displays.emplace_back(WorkspaceRegistry::LiveDisplay{output, {}});
            for (const Workspace& each : workspaces)
                if (each.output == output) display.workspaces.push_back({each.handle, each.name});
        }
        return displays;
    }
};

class Walk {
public:
    explicit Walk(unsigned seed) : random_(seed) {
        open();
        boot();
        read();
    }

    void step() {
        switch (pick(12)) {
        case 0:
        case 1:
        case 2: create(); break;
        case 3:
        case 4: leave(); break;
        case 5: rename(); break;
        case 6:
        case 7: publish(); break;
        case 8: plug(); break;
        case 9: move(); break;
        case 10: restart(); break;
        case 11:
            if (pick(2) == 0)
                boot();
            else if (pick(4) == 0)
                open();
            break;
        }
        read();
        settle();
        read();
        check();
    }

private:
    std::size_t pick(std::size_t count) { return random_() % count; }
    template <class T> auto& any(T& list) { return list[pick(list.size())]; }
    std::string anyName() {
        static const std::vector<std::string> names{"1",    "2",   "3: x", "4", "1: Mail",
                                                    "Mail", "web", "WEB",  "a", "b"};
        return any(names);
    }

    void open() {
        registry_.reset();
        registry_ = std::make_unique<WorkspaceRegistry>(loop_, folder_ / "workspaces.json");
        registry_->beginRun();
    }
    /// A new window manager, which knows nothing.
    void boot() {
        wm_.workspaces.clear();
        for (const std::string& output : wm_.outputs()) add(output == "L" ? "1" : "2", output);
        registry_->beginRun();
    }
    void add(const std::string& name, const std::string& output) {
        const std::int64_t handle = wm_.freeHandle();
        wm_.workspaces.push_back({handle, name, output, ++born_});
        registry_->released(handle);
    }
    void create() {
        const std::string name = anyName();
        const auto outputs = wm_.outputs();
        if (!wm_.find(name)) add(name, outputs[pick(outputs.size())]);
    }
    void leave() {
        auto& workspace = any(wm_.workspaces);
        const auto here = [&](const auto& each) { return each.output == workspace.output; };
        if (std::ranges::count_if(wm_.workspaces, here) < 2) return;
        registry_->released(workspace.handle);
        wm_.workspaces.erase(wm_.workspaces.begin() + (&workspace - wm_.workspaces.data()));
    }
    void rename() {
        const std::string name = anyName();
        if (!wm_.find(name)) rename(any(wm_.workspaces), name);
    }
    void rename(ModelWindowManager::Workspace& workspace, const std::string& name) {
        workspace.name = name;
        registry_->renamed(workspace.handle, name);
    }
    void publish() {
        static const std::vector<std::string> titles{"Mail", "Code", "", "a", "2", "web"};
        std::vector<PublishedDesktop> records;
        kept_.clear();
        for (const std::string display : {"L", "R"}) {
            for (const RegisteredDesktop* desktop : registry_->spaces(display)) {
                const bool told = display == "L" || wm_.pluggedR;
                // Records of a display that is unplugged stay, though the list doesn't hold them.
                if (!told && desktop->kept) kept_.insert(desktop->uuid);
                if (!told || pick(2) == 0) continue;
                kept_.insert(desktop->uuid);
                records.push_back({desktop->uuid, desktop->id, {display}, any(titles)});
            }
        }
        registry_->setPublished(records);
    }
    void plug() {
        wm_.pluggedR = !wm_.pluggedR;
        if (wm_.pluggedR) {
            int number = 1;
            const auto taken = [&] {
                return std::ranges::any_of(wm_.workspaces, [&](const auto& each) {
                    return leadingDigits(each.name) == std::to_string(number);
                });
            };
            while (taken()) ++number;
            add(std::to_string(number), "R");
        } else {
            for (auto& workspace : wm_.workspaces) workspace.output = "L";
        }
    }
    void move() {
        if (!wm_.pluggedR) return;
        auto& workspace = any(wm_.workspaces);
        const auto here = [&](const auto& each) { return each.output == workspace.output; };
        if (std::ranges::count_if(wm_.workspaces, here) > 1)
            workspace.output = workspace.output == "L" ? "R" : "L";
    }
    /// Names stay, containers don't.
    void restart() {
        std::ranges::shuffle(wm_.workspaces, random_);
        for (std::size_t i = 0; i < wm_.workspaces.size(); ++i)
            wm_.workspaces[i].handle = static_cast<int>(i) + 1;
        registry_->beginRun();
    }
    void settle() {
        const auto name = [](const std::string& own, const std::string& title, const auto& taken) {
            return titledWorkspace(IpcDialect::i3, own, title, taken);
        };
        bool refused = false;
        bool unheard = false;
        const auto renames = registry_->settleNames(name);
        // A name that goes from one to the other unheard would tell nothing.
        const bool passedOn = std::ranges::any_of(renames, [&](const auto& due) {
            return std::ranges::any_of(
                renames, [&](const auto& other) { return workspaceKey(other.from) == workspaceKey(due.to); });
        });
        for (const auto& due : renames) {
            auto* from = wm_.find(due.from);
            ASSERT_TRUE(from) << due.from;
            const auto* taken = wm_.find(due.to);
            const bool clash = taken && taken != from;
            // One refusal leaves a name taken that the next rename may count on.
            EXPECT_TRUE(!clash || refused) << due.from << " to " << due.to;
            if (clash || pick(8) == 0) {
                refused = true;
                registry_->renameRefused(due);
            } else if (unheard || (!passedOn && pick(8) == 0)) {
                from->name = due.to;
                unheard = true;
            } else {
                rename(*from, due.to);
            }
        }
        // The connection was lost before the rest was announced.
        if (unheard) restart();
    }

    void read() { registry_->reconcile(wm_.reading()); }

    void check() {
        std::set<std::string> uuids;
        std::set<std::string> names;
        std::set<std::uint64_t> ids;
        for (const auto& display : wm_.reading()) {
            std::vector<std::string> order;
            for (const RegisteredDesktop* desktop : registry_->spaces(display.uuid))
                if (desktop->handle) order.push_back(desktop->workspace);
            std::vector<std::string> expected;
            for (const auto& workspace : display.workspaces) expected.push_back(workspace.name);
            ASSERT_EQ(order, expected);
        }
        for (auto& workspace : wm_.workspaces) {
            const RegisteredDesktop* desktop = registry_->find(workspace.handle);
            ASSERT_TRUE(desktop) << workspace.name;
            ASSERT_EQ(desktop->workspace, workspace.name);
            ASSERT_EQ(desktop->display, workspace.output);
            if (workspace.uuid.empty()) workspace.uuid = desktop->uuid;
            ASSERT_EQ(desktop->uuid, workspace.uuid) << workspace.name << " is another desktop now";
        }
        for (const char* display : {"L", "R"}) {
            for (const RegisteredDesktop* desktop : registry_->spaces(display)) {
                ASSERT_TRUE(uuids.insert(desktop->uuid).second);
                ASSERT_TRUE(ids.insert(desktop->id.raw).second && desktop->id.raw != 0);
                ASSERT_TRUE(desktop->nameOwed || names.insert(workspaceKey(desktop->workspace)).second)
                    << desktop->workspace;
            }
        }
        for (const std::string& uuid : kept_)
            ASSERT_TRUE(uuids.contains(uuid)) << "a record lost its desktop";
    }

    std::mt19937 random_;
    TemporaryFolder folder_;
    async::TestLoop loop_;
    std::unique_ptr<WorkspaceRegistry> registry_;
    ModelWindowManager wm_;
    int born_ = 0;
    /// The desktops that have records.
    std::set<std::string> kept_;
};

TEST(WorkspaceRegistryWalk, HoldsItsPromisesWhateverHappens) {
    for (unsigned seed = 1; seed <= 24; ++seed) {
        Walk walk(seed);
        for (int i = 0; i < 150 && !::testing::Test::HasFatalFailure(); ++i) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(i));
            walk.step();
        }
        if (::testing::Test::HasFailure()) return;
    }
}

} // namespace
} // namespace lumnara::testing
