#include "tests/faults/Kills.h"

#include "core/async/PollLoop.h"
#include "core/async/TestLoop.h"
#include "tests/faults/Subjects.h"
#include "tests/faults/Writer.h"
#include "tests/support/InterruptedChild.h"
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

void expectNothing(const std::string& left) {
    if (!left.empty()) throw Damage("left behind: " + left);
}

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

    fs::path data() const { return folder_->path() / "Lumnara"; }

    std::mt19937 random_;
    LogLines log_;
    async::PollLoop loop_;
    std::unique_ptr<TemporaryFolder> folder_;
    /// By store: the state on disk before the present child, and what that has told since.
    std::vector<int> found_, promised_, begun_;
    KillReport report_;
};

/// One store, killed at each of its system calls.
class StepwiseKills {
public:
    StepwiseKills(const SubjectKind& kind, int stride) : tally{.store = kind.name}, kind_(kind) {
        const TemporaryFolder filled;
        fill(filled / "Lumnara");
        bool ended = false;
        for (int step = 0; !ended; step += stride) {
            const TemporaryFolder folder;
            fs::copy(filled.path(), folder.path(), fs::copy_options::recursive);
            const fs::path data = folder / "Lumnara";
            ended = endsBeforeSystemCall(step, [&] {
                async::TestLoop loop;
                kind_.open(loop, data)->change(state + 1);
            });
            try {
                check(data, ended);
            } catch (const std::exception& damage) {
                ++tally.lost;
                losses.push_back(fmt::format("{} at call {}: {}", kind_.name, step, damage.what()));
            }
            ++tally.kills;
        }
        --tally.kills; // the last one came to its end
    }

    KillTally tally;
    std::vector<std::string> losses;

private:
    static constexpr int state = 4;

    void fill(const fs::path& data) {
        async::TestLoop loop;
        const auto subject = kind_.open(loop, data);
        for (int k = 1; k <= state; ++k) subject->change(k);
    }

    void check(const fs::path& data, bool ended) {
        async::TestLoop loop;
        const int found = kind_.found(loop, data);
        if (found != state + 1 && (ended || found != state)) throw Damage(fmt::format("state {}", found));
        tally.interrupted += found == state;
        kind_.open(loop, data);
        expectNothing(leftoversIn(data));
        kind_.open(loop, data)->change(found + 1);
        if (kind_.found(loop, data) != found + 1) throw Damage("it doesn't go on");
        expectNothing(leftoversAndJournalIn(data));
    }

    const SubjectKind& kind_;
};

} // namespace

KillReport runKillsAtCalls(int stride) {
    const LogLines quiet;
    KillReport report;
    for (const SubjectKind& kind : subjectKinds()) {
        if (kind.delay > 0) continue;
        const StepwiseKills run(kind, stride);
        report.stores.push_back(run.tally);
        report.kills += run.tally.kills;
        report.killsLost += run.tally.lost;
        report.losses.insert(report.losses.end(), run.losses.begin(), run.losses.end());
    }
    return report;
}

KillReport runKills(int kills, unsigned seed) { return KillRun(kills, seed).report(); }

} // namespace lumnara::testing
