#include "tests/faults/Kills.h"

#include "core/async/PollLoop.h"
#include "tests/faults/Subjects.h"
#include "tests/faults/Writer.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <csignal>
#include <ctime>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <random>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lumnara::testing {

namespace {

namespace fs = std::filesystem;

/// A writer in a child process, from its start to its end.
class WritingChild {
public:
    WritingChild(const fs::path& folder, unsigned seed, const std::vector<int>& from) {
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("pipe failed");
        pipe_ = ends[0];
        process_ = ::fork();
        if (process_ < 0) throw std::runtime_error("fork failed");
        if (process_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::close(ends[0]);
            writeUntilKilled(folder, seed, from, ends[1]);
        }
        ::close(ends[1]);
    }
    WritingChild(const WritingChild&) = delete;
    ~WritingChild() {
        kill();
        ::close(pipe_);
    }

    /// Nothing when the child is gone and all that it told was read.
    std::optional<WriterLine> next() {
        WriterLine line;
        return ::read(pipe_, &line, sizeof line) == sizeof line ? std::optional(line) : std::nullopt;
    }

    /// Whether it lived until then.
    bool kill() {
        if (process_ <= 0) return false;
        ::kill(process_, SIGKILL);
        int status = 0;
        ::waitpid(std::exchange(process_, -1), &status, 0);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }

private:
    int pipe_ = -1;
    pid_t process_ = -1;
};

class KillRun {
public:
    KillRun(int kills, unsigned seed) : random_(seed) {
        for (const SubjectKind& kind : subjectKinds()) report_.stores.push_back({.store = kind.name});
        for (int i = 0; i < kills; ++i) {
            if (i % startAnewEvery == 0) startAnew();
            killOne(i);
        }
    }

    KillReport report() && { return std::move(report_); }

private:
    static constexpr int startAnewEvery = 5;

    void startAnew() {
        folder_ = std::make_unique<TemporaryFolder>();
        found_.assign(subjectKinds().size(), 0);
    }

    void killOne(int number) {
        begun_ = promised_ = found_;
        WritingChild child(data(), random_(), found_);
        constexpr unsigned mostLines = 60;
        for (unsigned left = random_() % mostLines; left > 0; --left) note(child.next());
        constexpr long mostNanoseconds = 4'000'000;
        const timespec moment{0, static_cast<long>(random_()) % mostNanoseconds};
        ::nanosleep(&moment, nullptr);
        const bool lived = child.kill();
        while (const auto line = child.next()) note(line);
        if (!lived) throw std::runtime_error("the writer ended by itself");

        ++report_.kills;
        const std::size_t lossesBefore = report_.losses.size();
        for (std::size_t i = 0; i < found_.size(); ++i) check(number, i);
        checkRestart(number);
        if (report_.losses.size() > lossesBefore) {
            ++report_.killsLost;
            startAnew(); // one loss must not count again with the next kill
        }
    }

    void note(const std::optional<WriterLine>& line) {
        if (!line) return;
        auto& states = line->what == WriterLine::What::begins ? begun_ : promised_;
        int& state = states[static_cast<std::size_t>(line->store)];
        state = std::max(state, line->state);
    }

    void check(int number, std::size_t index) {
        const SubjectKind& kind = subjectKinds()[index];
        KillTally& tally = report_.stores[index];
        ++tally.kills;
        tally.promises += promised_[index] - found_[index];
        tally.interrupted += begun_[index] > promised_[index];
        try {
            found_[index] = kind.found(loop_, data());
            if (found_[index] < promised_[index] || found_[index] > begun_[index])
                throw Damage(fmt::format("state {}, promised {}, begun {}", found_[index], promised_[index],
                                         begun_[index]));
        } catch (const std::exception& damage) {
            ++tally.lost;
            report_.losses.push_back(fmt::format("kill {}: {}: {}", number, kind.name, damage.what()));
        }
    }

    /// As the program starts again: what was left open is closed, and nothing lies about.
    void checkRestart(int number) {
        try {
            expectRepairedIntervals(loop_, data());
            for (const SubjectKind& kind : subjectKinds()) kind.open(loop_, data());
            expectNothing(leftoversIn(data()));
            if (number % startAnewEvery == startAnewEvery - 1) changeOnceMore();
        } catch (const std::exception& damage) {
            report_.losses.push_back(fmt::format("kill {}: restart: {}", number, damage.what()));
        }
    }

    /// For the last time in this folder.
    void changeOnceMore() {
        for (std::size_t i = 0; i < found_.size(); ++i) {
            const SubjectKind& kind = subjectKinds()[i];
            const auto subject = kind.open(loop_, data());
            subject->change(++found_[i]);
            subject->save();
            if (kind.found(loop_, data()) != found_[i]) throw Damage(std::string(kind.name) + " don't go on");
        }
        expectNothing(leftoversAndJournalIn(data()));
    }

    static void expectNothing(const std::string& left) {
        if (!left.empty()) throw Damage("left behind: " + left);
    }

    fs::path data() const { return folder_->path() / "Lumnara"; }

    std::mt19937 random_;
    LogLines log_;
    async::PollLoop loop_;
    std::unique_ptr<TemporaryFolder> folder_;
    /// By store: the state on disk before the present child, and what that has told since.
    std::vector<int> found_, promised_, begun_;
    KillReport report_;
};

} // namespace

KillReport runKills(int kills, unsigned seed) { return KillRun(kills, seed).report(); }

} // namespace lumnara::testing
