#include "app/links/DesktopLinker.h"
#include "core/async/Task.h"
#include "core/names/DisplayLink.h"
#include "tests/app/ScriptedSession.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace lumnara::testing {
namespace {

using Case = DesktopLinker::Failure::Case;

async::Task<> noteText(async::Task<std::string> task, std::string& text, std::optional<Case>& failure) {
    try {
        const std::string told = co_await std::move(task);
        text = told;
    } catch (const DesktopLinker::Failure& error) {
        failure = error.which();
        text = error.sentence();
    } catch (const std::exception& error) {
        text = error.what();
    }
}

/// Displays A, "Left", with, and B, "Right", with B-1 and B-2. Links hold.
class DesktopLinkerTest : public ::testing::Test {
protected:
    DesktopLinkerTest() {
        session.provider->names = {{"A", "Left"}, {"B", "Right"}};
        session.start();
        catalog().setLinkMode(DisplayLinkMode::linked);
    }

    DesktopCatalog& catalog() { return session.catalog(); }
    /// The text, or the failure's sentence with `failure` set.
    std::string carryOut(const LinkRequest& request) {
        DesktopLinker linker(catalog(), canAdd ? &arranger : nullptr, kind);
        failure.reset();
        session.logged.clear();
        std::string text;
        const auto running = async::spawn(session.loop, noteText(linker.carryOut(request), text, failure));
        session.loop.advance(60); // longer than any of it takes
        return text;
    }
    std::string with(const std::string& a, const std::string& b) {
        return carryOut(LinkRequest::with(session.desktop(a), b));
    }
    std::string create(const std::string& of) { return carryOut(LinkRequest::create(session.desktop(of))); }
    bool areLinked(const std::string& a, const std::string& b) {
        return session.desktop(a).isLinked() && session.desktop(a).key == session.desktop(b).key;
    }

    ScriptedSession session{twoDisplays()};
    AddingArranger arranger{*session.provider};
    bool canAdd = false;
    PlatformKind kind = PlatformKind::mac;
    std::optional<Case> failure;
};

TEST_F(DesktopLinkerTest, linksTwoDesktops) {
    catalog().rename("A-1", "Mail");
    catalog().rename("B-2", "Web");
    EXPECT_EQ(with("A-1", "B-2"), "“Mail” is now on both screens.");
    EXPECT_EQ(session.logged, Texts{"Lumnara link: Mail (A-1) with B-2 on B"});
    EXPECT_TRUE(areLinked("A-1", "B-2"));
    EXPECT_EQ(with("A-1", "B-1"), "Displays linked. Say “Mail” and both screens go there.");
    EXPECT_EQ(session.logged,
              (Texts{"Lumnara link " + session.logged.front().substr(13, 8) + ": left for another link",
                     "Lumnara link: Mail (A-1) with B-1 on B"}));
    EXPECT_TRUE(areLinked("A-1", "B-1"));
    EXPECT_EQ(session.desktop("B-2").displayName(), "Web");
    EXPECT_EQ(with("A-2", "B-2"), "“Web” is now on both screens."); // the only name that there is
    EXPECT_EQ(failure, std::nullopt);
}

TEST_F(DesktopLinkerTest, endsALink) {
    catalog().rename("A-1", "Mail");
    catalog().rename("B-2", "Web");
    with("A-1", "B-2");
    EXPECT_EQ(carryOut(LinkRequest::unlink(session.desktop("A-1"))),
              "The desktop linked to it on the other display goes back to its own name, “Web”");
    ASSERT_EQ(session.logged.size(), 1u);
    EXPECT_TRUE(session.logged[0].ends_with(": unlinked by the user"));
    EXPECT_FALSE(session.desktop("A-1").isLinked());
    EXPECT_EQ(carryOut(LinkRequest::unlink(session.desktop("A-1"))),
              "“Mail” is not linked to another desktop.");
    EXPECT_EQ(failure, Case::notLinked);

    with("B-1", "A-2"); // neither has a name
    EXPECT_EQ(carryOut(LinkRequest::unlink(session.desktop("A-2"))),
              "The desktop linked to it on the other display goes back to its own name, “Desktop 1”");
}

TEST_F(DesktopLinkerTest, whatCannotBeLinkedStaysAsItIs) {
    const auto before = catalog().store().file();
    with("A-1", "A-2");
    EXPECT_EQ(failure, Case::sameDisplay);
    EXPECT_EQ(with("A-1", "gone"), "That desktop is not there any more.");
    EXPECT_EQ(failure, Case::notFound);
    Desktop gone = session.desktop("A-1");
    gone.spaceKey = "gone";
    for (const LinkRequest& request :
         {LinkRequest::with(gone, "B-1"), LinkRequest::create(gone), LinkRequest::unlink(gone)}) {
        carryOut(request);
        EXPECT_EQ(failure, Case::notFound);
    }
    EXPECT_EQ(create("A-1"),
              "Lumnara can't add a desktop here. Add one on the other display, then link the two.");
    EXPECT_EQ(failure, Case::cannotCreate);
    session.provider->current.displays.pop_back();
    session.tell();
    create("A-1");
    EXPECT_EQ(failure, Case::noOtherDisplay);
    EXPECT_EQ(catalog().store().file(), before);
}

TEST_F(DesktopLinkerTest, createTakesTheDesktopThatHasTheNameAlready) {
    canAdd = true;
    catalog().rename("A-1", "Mail");
    catalog().rename("B-2", "mail");
    EXPECT_EQ(create("A-1"), "Right already had “mail”, so the two are linked; no desktop was added.");
    EXPECT_EQ(session.logged.front(),
              "Lumnara link: Right already has an unlinked mail (B-2); linking that instead of adding one");
    EXPECT_TRUE(areLinked("A-1", "B-2"));
    EXPECT_EQ(session.provider->current.displays[1].spaces.size(), 2u);

    session.provider->names["A"] = "";
    catalog().rename("A-2", "Web");
    catalog().rename("B-1", "Web");
    EXPECT_EQ(create("B-1"),
              "the other display already had “Web”, so the two are linked; no desktop was added.");
}

TEST_F(DesktopLinkerTest, createAddsADesktopWhereThereIsNoneToTake) {
    canAdd = true;
    catalog().rename("A-1", "Mail");
    catalog().rename("A-2", "Web");
    catalog().rename("B-2", "Web");
    with("A-2", "B-2"); // the one with that name is taken
    EXPECT_EQ(create("A-1"), "Displays linked. Say “Mail” and both screens go there.");
    EXPECT_TRUE(areLinked("A-1", "added-90"));
    create("A-3"); // no name to look for
    EXPECT_EQ(failure, std::nullopt);
    EXPECT_TRUE(areLinked("A-3", "added-91"));
    EXPECT_TRUE(areLinked("A-1", "added-90"));
}

TEST_F(DesktopLinkerTest, createFailsWithASentence) {
    canAdd = true;
    const std::string unknown =
        "macOS added the desktop but Lumnara could not tell which one it is. Link it by "
        "hand from Settings, Desktops.";
    arranger.adds = 2; // somebody else added one too
    EXPECT_EQ(create("A-1"), unknown);
    EXPECT_EQ(failure, Case::notIdentified);
    kind = PlatformKind::windowManager;
    EXPECT_TRUE(create("A-1").starts_with("The window manager added the desktop"));
    arranger.adds = 1;
    arranger.onAdded = [&] {
        auto& spaces = session.provider->current.displays.front().spaces;
        spaces.erase(spaces.begin());
    };
    create("A-1");
    EXPECT_EQ(failure, Case::notFound);
    arranger.failure = std::make_exception_ptr(std::runtime_error("no permission"));
    EXPECT_EQ(create("A-2"), "no permission");
    EXPECT_EQ(catalog().store().file()->links, std::nullopt);
}

} // namespace
} // namespace lumnara::testing
