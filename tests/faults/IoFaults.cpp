#include "tests/faults/IoFaults.h"

#include "core/async/TestLoop.h"
#include "tests/faults/Subjects.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <fmt/format.h>
#include <optional>

namespace lumnara::testing {

namespace {

namespace fs = std::filesystem;

/// What is going on when the disk fails.
enum class Moment { start, save };

const char* nameOf(Moment moment) { return moment == Moment::start ? "start" : "save"; }

/// The states of one trial: on disk before it, made during the fault, made after it.
constexpr int before = 8, during = 9, after = 10;

class Trial {
public:
    /// `filled` holds the store in the state `before`.
    Trial(const SubjectKind& kind, Moment moment, const fs::path& filled) : kind_(kind), moment_(moment) {
        fs::copy(filled, data_, fs::copy_options::recursive);
    }

    /// False when no call failed, since there are not so many. Throws Damage for a loss.
    bool run(std::optional<CallFault> fault) {
        FileCalls calls(data_);
        calls.run([&] { moment_ == Moment::start ? failTheStart(calls, fault) : failASave(calls, fault); });
        for (std::size_t i = 0; i < callKindCount; ++i) counts_[i] = calls.count(static_cast<CallKind>(i));
        return calls.failures() > 0;
    }

    int count(CallKind kind) const { return counts_[static_cast<std::size_t>(kind)]; }
    bool wasTold() const { return wasTold_; }

private:
    /// Does it while the disk fails, and notes whether it told of that.
    template <class Work>
    void underFault(FileCalls& calls, const std::optional<CallFault>& fault, Work work) {
        calls.arm(fault);
        try {
            work();
        } catch (const std::exception& error) {
            wasTold_ = error.what()[0] != '\0';
        }
        calls.disarm();
        wasTold_ = wasTold_ || !log_.take().empty();
    }

    void failASave(FileCalls& calls, const std::optional<CallFault>& fault) {
        auto subject = kind_.open(loop_, data_);
        underFault(calls, fault, [&] {
            subject->change(during);
            subject->save();
        });
        expectOnDisk(wasTold_ ? before : during, during);

        subject->retry(during);
        subject->change(after);
        subject->save();
        subject.reset();
        expectOnDisk(after, after);
        expectTidyStart();
    }

    void failTheStart(FileCalls& calls, const std::optional<CallFault>& fault) {
        std::unique_ptr<Subject> subject;
        underFault(calls, fault, [&] { subject = kind_.open(loop_, data_); });
        wasTold_ = wasTold_ || (subject && !subject->trouble().empty());
        expectOnDisk(before, before);

        // What is then changed is kept, or refused so that the file stays as it is.
        if (subject) {
            try {
                subject->change(during);
                subject->save();
            } catch (const std::exception&) {
                if (!wasTold_) throw Damage("a start that seemed to go well saves nothing");
            }
            subject.reset();
        }
        expectOnDisk(wasTold_ ? before : during, during);
        expectTidyStart();
    }

    void expectOnDisk(int least, int most) {
        const int state = kind_.found(loop_, data_);
        if (state < least || state > most)
            throw Damage(fmt::format("state {} of {} to {}", state, least, most));
    }

    void expectTidyStart() {
        kind_.open(loop_, data_)->change(after + 1);
        if (const std::string left = leftoversAndJournalIn(data_); !left.empty())
            throw Damage("left behind: " + left);
    }

    const SubjectKind& kind_;
    const Moment moment_;
    async::TestLoop loop_;
    LogLines log_;
    TemporaryFolder folder_;
    const fs::path data_ = folder_ / "Lumnara";
    bool wasTold_ = false;
    std::array<int, callKindCount> counts_{};
};

class FaultRun {
public:
    explicit FaultRun(bool isThorough) : isThorough_(isThorough) {
        for (const SubjectKind& kind : subjectKinds()) {
            const TemporaryFolder folder;
            const fs::path filled = folder / "Lumnara";
            fill(kind, filled);
            for (const Moment moment : {Moment::start, Moment::save}) failEachCall(kind, moment, filled);
        }
    }
    FaultReport report() && { return std::move(report_); }

private:
    static void fill(const SubjectKind& kind, const fs::path& folder) {
        async::TestLoop loop;
        const auto subject = kind.open(loop, folder);
        for (int k = 1; k <= before; ++k) subject->change(k);
        subject->save();
    }

    void failEachCall(const SubjectKind& kind, Moment moment, const fs::path& filled) {
        Trial unharmed(kind, moment, filled);
        unharmed.run(std::nullopt);
        constexpr std::array errors = {ENOSPC, EIO, EACCES};
        constexpr int forms = 2 * errors.size(); // each once and lasting
        for (std::size_t i = 0; i < callKindCount; ++i) {
            const auto call = static_cast<CallKind>(i);
            for (int number = 0; number < unharmed.count(call); ++number)
                for (int form = 0; form < forms; ++form)
                    if (isThorough_ || form == number % forms) // otherwise the calls of a kind take turns
                        fail(kind, moment, filled,
                             {call, number, errors[static_cast<std::size_t>(form) % errors.size()],
                              form % 2 == 1});
        }
    }

    void fail(const SubjectKind& kind, Moment moment, const fs::path& filled, const CallFault& fault) {
        Trial trial(kind, moment, filled);
        FaultTally& tally = report_.tallies[{kind.name, fault.kind}];
        try {
            if (!trial.run(fault)) return;
        } catch (const std::exception& loss) {
            ++tally.lost;
            ++report_.lost;
            report_.losses.push_back(fmt::format(
                "{}: {}: {} {}{}: {}: {}", kind.name, nameOf(moment), lumnara::testing::nameOf(fault.kind),
                fault.number, fault.lasts ? " and on" : "", std::strerror(fault.error), loss.what()));
        }
        ++tally.faults;
        ++report_.faults;
        tally.told += trial.wasTold();
    }

    const bool isThorough_;
    FaultReport report_;
};

} // namespace

FaultReport runIoFaults(bool isThorough) { return FaultRun(isThorough).report(); }

} // namespace lumnara::testing
