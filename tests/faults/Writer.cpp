#include "tests/faults/Writer.h"

#include "core/async/PollLoop.h"
#include "core/async/Timer.h"
#include "tests/faults/Subjects.h"

#include <exception>
#include <fmt/format.h>
#include <optional>
#include <random>
#include <unistd.h>

namespace lumnara::testing {

namespace {

class Writer {
public:
    Writer(const std::filesystem::path& folder, unsigned seed, std::vector<int> from, int pipe)
        : random_(seed),
          pipe_(pipe) {
        for (const SubjectKind& kind : subjectKinds())
            stores_.push_back({kind, kind.open(loop_, folder), from[stores_.size()], nullptr});
    }

    [[noreturn]] void write() {
        for (;;) {
            // Names come rarely enough that their delay now and then ends.
            static constexpr int order[] = {0, 1, 2, 2, 3, 3, 4, 5, 5, 1, 3, 5, 6, 6, 7, 8};
            changeNext(static_cast<std::size_t>(order[random_() % std::size(order)]));
            loop_.runUntil([] { return true; }, 0);
        }
    }

private:
    struct Store {
        const SubjectKind& kind;
        std::unique_ptr<Subject> subject;
        int state;
        std::unique_ptr<async::Delayed> promise;
    };

    void changeNext(std::size_t index) {
        Store& store = stores_[index];
        const int k = ++store.state;
        tell(WriterLine::What::begins, index, k);
        store.subject->change(k);
        constexpr unsigned saveAtOnceEvery = 3;
        if (store.kind.delay == 0) {
            tell(WriterLine::What::promises, index, k);
        } else if (random_() % saveAtOnceEvery == 0) {
            store.subject->save();
            tell(WriterLine::What::promises, index, k);
        } else if (store.kind.isPutOff || !store.promise || !store.promise->pending()) {
            promiseLater(index, k);
        }
    }

    void promiseLater(std::size_t index, int k) {
        // Behind the store's own message to the loop, so that its delay ends before ours.
        loop_.inbox()->post([this, index, k] {
            Store& store = stores_[index];
            store.promise = std::make_unique<async::Delayed>(loop_, store.kind.delay, [this, index, k] {
                stores_[index].subject->awaitWrite();
                tell(WriterLine::What::promises, index, k);
            });
        });
    }

    void tell(WriterLine::What what, std::size_t store, int state) {
        const WriterLine line{what, static_cast<char>(store), state};
        if (::write(pipe_, &line, sizeof line) != sizeof line) ::_exit(1);
    }

    async::PollLoop loop_;
    std::mt19937 random_;
    const int pipe_;
    std::vector<Store> stores_;
};

} // namespace

void writeUntilKilled(const std::filesystem::path& folder, unsigned seed, std::vector<int> from, int pipe) {
    try {
        Writer(folder, seed, std::move(from), pipe).write();
    } catch (const std::exception& error) {
        fmt::print(stderr, "the writer failed: {}\n", error.what());
    }
    ::_exit(1);
}

} // namespace lumnara::testing
