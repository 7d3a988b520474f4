#pragma once

#include "core/async/TestLoop.h"
#include "core/base/Log.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/names/NameStore.h"
#include "tests/model/Layouts.h"
#include "tests/support/ScriptedProvider.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace lumnara::testing {

/// A catalog over a provider that the test drives and a store in a folder of its own.
class CatalogTest : public ::testing::Test {
protected:
    CatalogTest() : previousSink_(setLogSink([this](std::string_view line) { lines.emplace_back(line); })) {}
    ~CatalogTest() override { setLogSink(previousSink_); }

    void start() {
        catalog.reset();
        store.reset();
        store = std::make_unique<NameStore>(loop, url, debounce);
        catalog = std::make_unique<DesktopCatalog>(loop, provider, *store);
    }
    /// Replaces the layout and reads it.
    void show(std::vector<DisplaySpaces> displays) {
        provider.current = {std::move(displays), loop.date()};
        catalog->refresh();
    }
    const Desktop& at(std::size_t display, std::size_t place) const {
        return catalog->displays->at(display).desktops.at(place);
    }
    /// The names that are shown, a display a line: "Mail, Desktop 2".
    std::vector<std::string> shown() const {
        std::vector<std::string> names;
        for (const DisplayDesktops& display : *catalog->displays) {
            std::string line;
            for (const Desktop& desktop : display.desktops)
                line += (line.empty() ? "" : ", ") + desktop.displayName();
            names.push_back(line);
        }
        return names;
    }
    std::vector<std::string> orphanKeys() const {
        std::vector<std::string> keys;
        for (const Orphan& orphan : *catalog->orphans) keys.push_back(orphan.key);
        return keys;
    }

    TemporaryFolder folder;
    const std::filesystem::path url = folder.path() / "Lumnara" / "desktops.json";
    double debounce = 0.25;
    std::vector<std::string> lines;
    async::TestLoop loop;
    ScriptedProvider provider{SpaceSnapshot{}};
    std::unique_ptr<NameStore> store;
    std::unique_ptr<DesktopCatalog> catalog;

private:
    LogSink previousSink_;
};

/// The failure that a call throws, or nothing.
template <class Error, class Call> std::optional<Error> failureOf(Call call) {
    try {
        call();
        return std::nullopt;
    } catch (const Error& error) {
        return error;
    }
}

} // namespace lumnara::testing
