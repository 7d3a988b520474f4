#include "core/catalog/DesktopCatalog.h"
#include "core/model/SpaceKitError.h"
#include "core/names/NameError.h"
#include "tests/catalog/CatalogTest.h"
#include "tests/mac/LayoutFixture.h"

namespace lumnara {
namespace {

using testing::CatalogTest;
using testing::failureOf;
using testing::makeDisplay;
using testing::makeFullscreen;
using testing::makeSpace;

using Names = std::vector<std::string>;

class DesktopCatalogTest : public CatalogTest {
protected:
    DesktopCatalogTest() {
        provider.names = {{"A", "Left"}, {"B", "Right"}};
        provider.current.displays = twoDisplays();
        start();
    }

    /// "A" with U1, U2 and U3, "B" with V1 and V2.
    static std::vector<DisplaySpaces> twoDisplays() {
        return {makeDisplay("A", {makeSpace(1, "U1"), makeSpace(2, "U2"), makeSpace(3, "U3")}),
                makeDisplay("B", {makeSpace(11, "V1"), makeSpace(12, "V2")})};
    }
};

TEST_F(CatalogTest, ShowsTheRecordedLayouts) {
    for (const std::string name : testing::layoutFixtures) {
        SCOPED_TRACE(name);
        const testing::LayoutFixture fixture(name);
        provider.current = fixture.snapshot();
        provider.names = fixture.displayNames();
        start();
        const auto& expected = fixture.expected["displays"];
        ASSERT_EQ(catalog->displays->size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const DisplayDesktops& display = catalog->displays->at(i);
            EXPECT_EQ(display.name, expected[i]["name"].get<std::string>());
            ASSERT_TRUE(display.current());
            EXPECT_EQ(display.current()->space.id.raw, expected[i]["current"].get<std::uint64_t>());
            const auto& spaces = expected[i]["spaces"];
            ASSERT_EQ(display.desktops.size(), spaces.size());
            for (std::size_t place = 0; place < spaces.size(); ++place) {
                const Desktop& desktop = display.desktops[place];
                EXPECT_EQ(desktop.displayName(), spaces[place]["name"].get<std::string>());
                const auto& key = spaces[place]["key"];
                EXPECT_EQ(desktop.key,
                          key.is_null() ? "unkeyed:" + desktop.space.id.text() : key.get<std::string>());
            }
        }
    }
}

TEST_F(DesktopCatalogTest, RefreshThatChangesNothingTellsAndWritesNothing) {
    catalog->rename("U1", "Mail");
    catalog->commitOrder({"U3", "U1", "U2"}, "A");
    store->saveNow();
    int told = 0;
    const auto onDisplays = catalog->displays.subscribe([&](const auto&) { ++told; });
    const auto onOrphans = catalog->orphans.subscribe([&](const auto&) { ++told; });
    const auto contents = store->file();
    const int refreshes = *catalog->refreshCount;
    for (int i = 0; i < 5; ++i) {
        loop.advance(2);
        show(twoDisplays());
    }
    EXPECT_EQ(told, 0);
    EXPECT_EQ(store->file(), contents);
    EXPECT_EQ(*catalog->refreshCount, refreshes + 5);
    EXPECT_EQ((*catalog->snapshot)->takenAt, loop.date());

    provider.names["A"] = "Middle"; // nothing but a display's name
    catalog->refresh();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(catalog->displays->front().name, "Middle");
}

TEST_F(DesktopCatalogTest, AFailedReadingLeavesTheModel) {
    const auto before = *catalog->displays;
    int told = 0;
    const auto onError = catalog->lastError.subscribe([&](const auto&) { ++told; });
    catalog->onRefresh = [](const SpaceSnapshot&) { FAIL(); };
    provider.failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
    catalog->refresh();
    catalog->refresh();
    EXPECT_EQ(told, 1);
    ASSERT_TRUE(*catalog->lastError);
    EXPECT_EQ((*catalog->lastError)->sentence, "Could not read the list of desktops.");
    EXPECT_THROW(std::rethrow_exception((*catalog->lastError)->error), SpaceKitError);
    EXPECT_EQ(*catalog->displays, before);
    EXPECT_EQ(*catalog->refreshCount, 3);

    catalog->rename("U1", "Mail"); // edits still work on the old model
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2, Desktop 3", "Desktop 1, Desktop 2"}));

    provider.failure = nullptr;
    catalog->onRefresh = nullptr;
    catalog->refresh();
    EXPECT_FALSE(*catalog->lastError);
}

TEST_F(DesktopCatalogTest, RenameMakesARecordAndKeepsTheRest) {
    Names renamed;
    catalog->onRenamed = [&](const std::string& key) { renamed.push_back(key); };
    catalog->setDimmed("U1", true);
    catalog->setIcon("U1", "envelope");
    EXPECT_EQ(at(0, 0).displayName(), "Desktop 1"); // a record without a name
    EXPECT_FALSE(catalog->isNamed("U1"));
    catalog->rename(catalog->desktop("U1")->key, "  Mail ");
    EXPECT_TRUE(catalog->isNamed("U1"));
    EXPECT_EQ(renamed, Names{"U1"});
    EXPECT_EQ(at(0, 0).record->name, "Mail");
    EXPECT_TRUE(at(0, 0).record->isDimmed);
    EXPECT_EQ(at(0, 0).record->icon, "envelope");
    EXPECT_EQ(at(0, 0).record->createdAt, loop.date());
    EXPECT_EQ(provider.readings, 1); // shown with no new reading

    EXPECT_EQ(failureOf<NameError>([&] { catalog->rename("U1", " "); }), NameError::empty());
    EXPECT_EQ(failureOf<NameError>([&] { catalog->setAliases("U2", {"post"}); }), NameError::empty());
    EXPECT_EQ(renamed.size(), 1u);
    EXPECT_EQ(at(0, 0).record->name, "Mail");
}

TEST_F(DesktopCatalogTest, NamesOfAnyCharactersComeBackFromTheFile) {
    const auto repeated = [](std::string_view character, int count) {
        std::string text = "a"; // a name of symbols alone can't be spoken
        while (--count > 0) text += character;
        return text;
    };
    const Names names = {repeated("👩‍👩‍👧‍👦", 40), repeated("e\u0301", 40),
                         "Tab\tand\x01\x7F \"quoted\" \\"};
    for (const std::string& name : names) {
        catalog->rename("U1", name);
        store->saveNow();
        start();
        EXPECT_EQ(at(0, 0).displayName(), name);
        EXPECT_FALSE(store->recoveredFromCorruptFile());
    }
    for (const char* character : {"👩‍👩‍👧‍👦", "e\u0301", "x"})
        EXPECT_EQ(failureOf<NameError>([&] { catalog->rename("U1", repeated(character, 41)); }),
                  NameError::tooLong(40));
    EXPECT_EQ(at(0, 0).displayName(), names.back());
}

TEST_F(DesktopCatalogTest, NamesAreUniqueOnADisplayOnly) {
    catalog->rename("U1", "Mail");
    catalog->setAliases("U1", {"Post"});
    const auto taken = NameError::duplicateOnDisplay("Mail");
    for (const char* name : {"mail", "MÁIL", "post"})
        EXPECT_EQ(failureOf<NameError>([&] { catalog->rename("U2", name); }), taken) << name;
    EXPECT_EQ(store->record("U2"), std::nullopt);
    catalog->rename("U2", "Web");
    EXPECT_EQ(failureOf<NameError>([&] { catalog->setAliases("U2", {"net", "POST"}); }), taken);
    EXPECT_TRUE(store->record("U2")->aliases.empty());

    catalog->rename("U1", "MAIL"); // itself, in another case
    catalog->rename("V1", "Mail"); // on another display
    catalog->setIcon("U3", "envelope");
    catalog->rename("V2", "Web");
    EXPECT_EQ(shown(), (Names{"MAIL, Web, Desktop 3", "Mail, Web"}));

    // The name of a desktop that is gone blocks nobody.
    show({makeDisplay("A", {makeSpace(2, "U2"), makeSpace(3, "U3")})});
    catalog->rename("U3", "Mail");
    EXPECT_EQ(orphanKeys(), (Names{"U1", "V1", "V2"}));
}

TEST_F(DesktopCatalogTest, ARecordFollowsTheUuidOfItsPlace) {
    catalog->rename("U2", "Mail");
    catalog->rename("V2", "Mail");
    catalog->commitOrder({"U2", "U1", "U3"}, "A");
    lines.clear();
    show({makeDisplay("a", {makeSpace(1, "U1"), makeSpace(2, "NEW"), makeSpace(3, "U3")}),
          makeDisplay("B", {makeSpace(11, "V1"), makeSpace(12, "V9"), makeSpace(13, "V3")})});
    EXPECT_EQ(lines,
              Names{"Lumnara: desktop uuid changed under \"Mail\"; re-attached by position 2 on Left"});
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2, Desktop 3", "Desktop 1, Desktop 2, Desktop 3"}));
    EXPECT_EQ(at(0, 0).key, "NEW");
    EXPECT_EQ(orphanKeys(), Names{"V2"}); // a Space was added there: its place can't be trusted

    show({makeDisplay("B", {makeSpace(11, "V1"), makeSpace(12, "V9")})});
    EXPECT_EQ(lines.size(), 2u); // two Spaces again, as when it was last seen
    EXPECT_EQ(shown(), Names{"Desktop 1, Mail"});
    EXPECT_EQ(orphanKeys(), Names{"NEW"});
}

TEST_F(DesktopCatalogTest, OfTwoRecordsOfOnePlaceTheFirstTakesIt) {
    DesktopRecord record;
    record.lastSeen = LastSeen{"A", "Left", 1, {}, 3};
    record.name = "Late";
    store->setRecord("X2", record);
    record.name = "Early";
    store->setRecord("X1", record);
    catalog->refresh();
    EXPECT_EQ(shown().front(), "Desktop 1, Early, Desktop 3");
    EXPECT_EQ(orphanKeys(), Names{"X2"});
    EXPECT_EQ(lines,
              Names{"Lumnara: desktop uuid changed under \"Early\"; re-attached by position 2 on Left"});
}

TEST_F(DesktopCatalogTest, WhatCannotBeTrustedStaysAnOrphan) {
    const LastSeen place{"A", "Left", 1, {}, 3};
    const auto put = [&](const char* key, const std::optional<LastSeen>& seen) {
        DesktopRecord record;
        record.name = key;
        record.lastSeen = seen;
        store->setRecord(key, record);
    };
    put("fullscreen:app", place);
    put("link:AB12CD34", place);
    put("never seen", std::nullopt);
    put("no count", LastSeen{"A", "Left", 1, {}, {}});
    put("no display", LastSeen{"C", "Left", 1, {}, 3});
    put("no place", LastSeen{"A", "Left", 3, {}, 3});
    put("negative", LastSeen{"A", "Left", -1, {}, -3});
    catalog->refresh();
    EXPECT_EQ(shown().front(), "Desktop 1, Desktop 2, Desktop 3");
    EXPECT_EQ(orphanKeys(),
              (Names{"fullscreen:app", "negative", "never seen", "no count", "no display", "no place"}));
    EXPECT_TRUE(lines.empty());
}

TEST_F(DesktopCatalogTest, UnpluggedDesktopsAreOrphansUntilTheyAreBack) {
    catalog->rename("V1", "Chat");
    catalog->rename("U1", "Mail");
    const auto seen = store->record("V1")->lastSeen;
    ASSERT_TRUE(seen);
    EXPECT_EQ(*seen, (LastSeen{"B", "Right", 0, loop.date(), 2}));
    show({twoDisplays()[0]});
    EXPECT_EQ(shown(), Names{"Mail, Desktop 2, Desktop 3"});
    EXPECT_EQ(orphanKeys(), Names{"V1"});
    EXPECT_EQ(store->record("V1")->lastSeen, seen);
    EXPECT_EQ(catalog->displayName("V1"), "Chat");
    show(twoDisplays());
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2, Desktop 3", "Chat, Desktop 2"}));
    EXPECT_TRUE(catalog->orphans->empty());
}

TEST_F(DesktopCatalogTest, AnUnkeyedDesktopCanBeNamedUntilItsIdChanges) {
    const auto withSecond = [](std::uint64_t id) {
        return std::vector{makeDisplay("A", {makeSpace(1, ""), makeSpace(id, "")})};
    };
    show(withSecond(57));
    EXPECT_EQ(at(0, 1).key, "unkeyed:57");
    catalog->rename("unkeyed:57", "Mail");
    EXPECT_EQ(shown(), Names{"Desktop 1, Mail"});
    show(withSecond(58));
    EXPECT_EQ(shown(), Names{"Desktop 1, Desktop 2"});
    EXPECT_EQ(orphanKeys(), Names{"unkeyed:57"});
}

TEST_F(DesktopCatalogTest, AttachGivesAnOrphanToALiveDesktop) {
    catalog->rename("U1", "Mail");
    catalog->rename("U2", "Web");
    catalog->rename("V1", "Chat");
    catalog->setAliases("V1", {"web"});
    show({twoDisplays()[0]});
    EXPECT_EQ(failureOf<NameError>([&] { catalog->attach("V1", "U1"); }),
              NameError::duplicateOnDisplay("Web"));
    catalog->attach("U1", "U3");     // no orphan
    catalog->attach("V1", "no one"); // no live desktop
    catalog->attach("no one", "U3");
    EXPECT_EQ(shown(), Names{"Mail, Web, Desktop 3"});

    catalog->attach(catalog->orphans->front().key, "U2"); // takes the place of the one it collides with
    EXPECT_EQ(shown(), Names{"Mail, Chat, Desktop 3"});
    EXPECT_TRUE(catalog->orphans->empty());
    EXPECT_EQ(store->file()->desktops.size(), 2u);
    EXPECT_EQ(store->record("U2")->lastSeen->displayUUID, "A");
}

TEST_F(DesktopCatalogTest, ForgetRemovesTheRecordAlone) {
    catalog->rename("U1", "Mail");
    catalog->rename("V1", "Chat");
    show({twoDisplays()[0]});
    catalog->forget("V1");
    catalog->forget("U1");
    catalog->forget("U1");
    EXPECT_TRUE(store->file()->desktops.empty());
    EXPECT_TRUE(catalog->orphans->empty());
    EXPECT_EQ(shown(), Names{"Desktop 1, Desktop 2, Desktop 3"});
}

TEST_F(DesktopCatalogTest, AClearedNameLeavesTheRestOfTheRecord) {
    catalog->rename("U1", "Mail");
    catalog->setColor("U1", "red");
    Names told;
    catalog->onRenamed = [&](const std::string& key) { told.push_back(key); };
    for (const char* key : {"U1", "U1", "U2", "gone"}) catalog->enterName(key, " ");
    EXPECT_EQ(told, (Names{"U1"})) << "the others had none";
    EXPECT_EQ(catalog->desktop("U1")->displayName(), "Desktop 1");
    EXPECT_EQ(catalog->desktop("U1")->record->color, "red");
    EXPECT_FALSE(store->record("U2"));
    catalog->rename("U2", "Mail"); // the name is free
}

TEST_F(DesktopCatalogTest, NumbersFollowTheUsersOrder) {
    const RunningApp mail{1, "org.mail", "Mail"};
    show({makeDisplay("A", {makeSpace(1, "U1"), makeFullscreen(2, "F", mail), makeSpace(3, "U3"),
                            makeSpace(4, "S", SpaceKind::system)})});
    EXPECT_EQ(shown(), Names{"Desktop 1, Mail, Desktop 2, Space 4"});
    catalog->commitOrder({"U3", "gone", "fullscreen:org.mail", "U3"}, "a");
    EXPECT_EQ(shown(), Names{"Desktop 1, Mail, Desktop 2, Space 4"});
    EXPECT_EQ(at(0, 0).key, "U3");
    EXPECT_EQ(at(0, 0).userNumber, 1);
    show({makeDisplay("A", {makeSpace(9, "U9"), makeSpace(1, "U1"), makeSpace(3, "U3")})});
    EXPECT_EQ(at(0, 0).key, "U3");
    EXPECT_EQ(at(0, 1).key, "U9"); // the rest as the window server has them
    EXPECT_EQ(at(0, 2).userNumber, 3);
}

TEST_F(DesktopCatalogTest, FindsDesktopsByKeyAndByDisplay) {
    auto displays = twoDisplays();
    displays[1].currentID = {12};
    show(displays);
    EXPECT_EQ(catalog->desktops().size(), 5u);
    EXPECT_EQ(catalog->desktops("b").size(), 2u);
    EXPECT_TRUE(catalog->desktops("C").empty());
    EXPECT_EQ(catalog->currentDesktop("b")->key, "V2");
    EXPECT_EQ(catalog->currentDesktop("C"), nullptr);
    EXPECT_EQ(catalog->desktop("V1")->display.uuid, "B");
    EXPECT_EQ(catalog->desktop("v1"), nullptr);

    provider.menuBar = DisplayID{"b"};
    EXPECT_EQ(catalog->focusedDesktop()->key, "V2");
    provider.menuBar = std::nullopt;
    EXPECT_EQ(catalog->focusedDesktop()->key, "U1");
    provider.menuBar = DisplayID{"gone"};
    EXPECT_EQ(catalog->focusedDesktop()->key, "U1");
    show({});
    EXPECT_EQ(catalog->focusedDesktop(), nullptr);
}

TEST_F(DesktopCatalogTest, DisplayNameOfAnyKey) {
    show({makeDisplay("A", {makeSpace(1, "U1"), makeFullscreen(2, "F", {})})});
    EXPECT_EQ(catalog->displayName("U1"), "Desktop 1");
    EXPECT_EQ(catalog->displayName("F"), "Fullscreen app");
    EXPECT_EQ(catalog->displayName("fullscreen:org.mail"), "Fullscreen app");
    EXPECT_EQ(catalog->displayName("primary:B"), "Desktop 1");
    EXPECT_EQ(catalog->displayName("gone"), "Desktop");
    DesktopRecord record;
    record.lastSeen = LastSeen{"B", "Right", 4, {}, 9};
    store->setRecord("seen", record);
    EXPECT_EQ(catalog->displayName("seen"), "Desktop 5");
}

TEST_F(DesktopCatalogTest, RefreshesAtEventsAndSomeTimeAfterWaking) {
    async::Signal<WorkspaceEvent> workspace;
    catalog->startObserving([&](auto call) { return workspace.subscribe(std::move(call)); });
    workspace.emit(WorkspaceEvent::activeSpaceDidChange);
    workspace.emit(WorkspaceEvent::screenParametersDidChange);
    EXPECT_EQ(provider.readings, 3);
    workspace.emit(WorkspaceEvent::didWake);
    loop.advance(0.99);
    EXPECT_EQ(provider.readings, 3);
    loop.advance(0.01);
    EXPECT_EQ(provider.readings, 4);

    workspace.emit(WorkspaceEvent::didWake);
    catalog->startRefreshTimer(2);
    catalog.reset();
    workspace.emit(WorkspaceEvent::activeSpaceDidChange);
    loop.advance(10);
    EXPECT_EQ(provider.readings, 4);
}

TEST_F(DesktopCatalogTest, RefreshesOnATimerWhileAskedTo) {
    catalog->startRefreshTimer(5);
    catalog->startRefreshTimer(2);
    loop.advance(10);
    EXPECT_EQ(provider.readings, 6);
    catalog->stopRefreshTimer();
    loop.advance(10);
    EXPECT_EQ(provider.readings, 6);
}

TEST_F(DesktopCatalogTest, AnObserverMayEditWhileItIsTold) {
    catalog->rename("V1", "Chat");
    catalog->rename("V2", "Web");
    const auto onDisplays = catalog->displays.subscribe([&](const auto&) { catalog->forget("V1"); });
    // Both would be orphans; the refresh that is interrupted must not publish what it had found.
    show({makeDisplay("A", {makeSpace(1, "U1")})});
    EXPECT_EQ(orphanKeys(), Names{"V2"});
    EXPECT_EQ(*catalog->refreshCount, 2);
    EXPECT_EQ(store->record("V1"), std::nullopt);
}

} // namespace
} // namespace lumnara
