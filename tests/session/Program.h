#pragma once

#include "tests/session/Session.h"

#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace lumnara::testing {

/// The program as a user starts it, in a session under a window manager.
class Program {
public:
    explicit Program(const Session& session) : session_(session) {}

    void start() {
        const int before = count("Lumnara: ready");
        child_ = session_.start({programUnderTest()});
        ASSERT_TRUE(waitUntil([&] { return count("Lumnara: ready") > before; })) << log();
    }
    int stop(int signal = SIGTERM) {
        child_->send(signal);
        return child_->waitForExit().value_or(-1);
    }
    bool running() const { return child_->running(); }

    std::string log() const {
        std::ifstream file(session_.folder() / "lumnara.log");
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }
    int count(const std::string& text) const {
        const std::string all = log();
        int found = 0;
        for (std::size_t at = 0; (at = all.find(text, at)) != std::string::npos; at += text.size()) ++found;
        return found;
    }
    /// desktops.json under the session's HOME, wherever the session has its data.
    std::filesystem::path file(const std::string& name) const {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(session_.folder()))
            if (entry.path().filename() == name) return entry.path();
        return {};
    }

private:
    const Session& session_;
    std::unique_ptr<Child> child_;
};

} // namespace lumnara::testing
