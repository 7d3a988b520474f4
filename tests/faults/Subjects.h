#pragma once

#include "core/async/Loop.h"

#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

namespace lumnara::testing {

/// One of the system's stores, driven by numbers: change(1), change(2) and so on bring it from state to
/// state, and each state can be told from its files.
class Subject {
public:
    virtual ~Subject() = default;

    /// From state k - 1 to k. Throws what the store throws.
    virtual void change(int k) = 0;
    /// Writes what the store would write later by itself; throws what the store throws.
    virtual void save() {}
    /// Waits for the write that has become due by itself.
    virtual void awaitWrite() {}
    /// Asks again for a change that failed, where the store doesn't keep it in memory.
    virtual void retry(int) {}
    /// What the store told when it was opened; empty when all was well.
    virtual std::string trouble() const { return {}; }
};

/// What stands on disk is no whole state.
class Damage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct SubjectKind {
    const char* name;
    /// Seconds after which a change is written by itself; 0 for at once.
    double delay;
    /// Each change begins the delay anew.
    bool isPutOff;
    /// Opens the store as the program does at its start. Throws what the store throws.
    std::unique_ptr<Subject> (*open)(async::Loop& loop, const std::filesystem::path& folder);
    /// The state on disk, read with the store's own classes; 0 for none. Throws Damage.
    int (*found)(async::Loop& loop, const std::filesystem::path& folder);
};

/// All that the program keeps, in one folder.
std::span<const SubjectKind> subjectKinds();

/// What a crash may leave beside the files, but for the database's journal: that goes with the first write.
std::string leftoversIn(const std::filesystem::path& folder);
/// The same with the journal.
std::string leftoversAndJournalIn(const std::filesystem::path& folder);

/// Opens the record of times as the program does after a crash. Throws Damage unless each interval that was
/// open is then closed at its last heartbeat, or 120 seconds after its start when it had none.
void expectRepairedIntervals(async::Loop& loop, const std::filesystem::path& folder);

} // namespace lumnara::testing
