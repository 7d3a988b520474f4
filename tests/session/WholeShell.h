#pragma once

#include "app/AppState.h"
#include "app/board/QuickSwitcherController.h"
#include "app/overlay/SwitchOverlayController.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/RecordingExecutor.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara::testing {

/// The whole program on a platform, but for what draws: it listens, records, and shows its cards and its
/// Board to nobody.
class WholeShell {
public:
    /// The loop and the platform outlive it.
    WholeShell(async::Loop& loop, Platform& platform, const std::filesystem::path& folder)
        : state(loop, settings, platform, executor, folder),
          board(state, panels_),
          overlay_(
              {loop, state.catalog(), settings, platform.screens.get(), state.notices(), state.announcer(),
               state.linkedSwitching().settled},
              [this] { return std::make_unique<Card>(cards); },
              [this](const ScreenInfo& screen) { return !board.covers(screen); }) {}

    /// Types on the panel of the Board that has the keyboard.
    void type(const std::string& text) { panels_.withKeyboard->onKey({std::nullopt, {}, text, false}); }
    /// The desktop that the catalog knows a display to show, by its Space key.
    std::string shownOn(const std::string& display) {
        const Desktop* current = state.catalog().currentDesktop(display);
        return current ? current->spaceKey : "";
    }

    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    RecordingExecutor executor;
    /// How many cards have been put up.
    int cards = 0;
    AppState state;

private:
    class Card : public OverlaySurface {
    public:
        explicit Card(int& shown) : shown_(shown) {}
        void show(const OverlayCard&, const ScreenInfo&) override { ++shown_; }
        void hide() override {}

    private:
        int& shown_;
    };
    struct Panels : BoardSurfaceFactory {
        std::unique_ptr<BoardSurface> makeSurface(QuickSwitcherModel&) override {
            return std::make_unique<Panel>(*this);
        }
        BoardSurface* withKeyboard = nullptr;
    };
    class Panel : public BoardSurface {
    public:
        explicit Panel(Panels& all) : all_(all) {}
        void prepare(const ScreenInfo&) override {}
        void show(const ScreenInfo&) override {}
        void hide() override {}
        void redraw() override {}
        void takeKeyboard() override { all_.withKeyboard = this; }
        std::optional<std::string> tileAt(Point) const override { return std::nullopt; }
        void openMenu(const std::string&, const std::vector<DesktopMenuItem>&) override {}

    private:
        Panels& all_;
    };
    Panels panels_;

public:
    QuickSwitcherController board;

private:
    SwitchOverlayController overlay_;
};

} // namespace lumnara::testing
