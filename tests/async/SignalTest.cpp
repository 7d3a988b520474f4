#include "core/async/Signal.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

namespace lumnara::async {
namespace {

TEST(Signal, TellsInOrderWhileSubscriptionsLive) {
    Signal<int, const std::string&> signal;
    std::string heard;
    auto first =
        signal.subscribe([&](int n, const std::string& s) { heard += "1:" + std::to_string(n) + s + " "; });
    {
        auto second = signal.subscribe([&](int, const std::string&) { heard += "2 "; });
        signal.emit(7, "x");
        auto moved = std::move(second);
        signal.emit(8, "y");
    }
    signal.emit(9, "z");
    EXPECT_EQ(heard, "1:7x 2 1:8y 2 1:9z ");
    first = Subscription();
    signal.emit(0, "");
    EXPECT_EQ(heard, "1:7x 2 1:8y 2 1:9z ");
}

TEST(Signal, SubscriptionsMayChangeWhileItEmits) {
    Signal<> signal;
    std::string heard;
    std::optional<Subscription> own;
    std::optional<Subscription> victim;
    std::optional<Subscription> late;
    own = signal.subscribe([&, text = std::string(100, 'x')] {
        heard += "own ";
        own.reset();
        victim.reset();
        late = signal.subscribe([&] { heard += "late "; });
        EXPECT_EQ(text.size(), 100u); // the closure lives to the end of its call
    });
    victim = signal.subscribe([&] { heard += "victim "; });
    auto last = signal.subscribe([&] { heard += "last "; });
    signal.emit();
    EXPECT_EQ(heard, "own last ");
    signal.emit();
    EXPECT_EQ(heard, "own last last late ");
}

TEST(Signal, MayGoWhileItEmitsAndBeforeItsSubscriptions) {
    auto signal = std::make_unique<Signal<>>();
    std::string heard;
    auto first = signal->subscribe([&] {
        heard += "first ";
        signal.reset();
    });
    auto second = signal->subscribe([&] { heard += "second "; });
    signal->emit();
    EXPECT_EQ(heard, "first ");
}

// The closure of a subscriber owns the subscription of another, as owners of models do.
TEST(Signal, EndingASubscriptionMayEndOthers) {
    Signal<> signal;
    int calls = 0;
    auto inner = std::make_shared<Subscription>(signal.subscribe([&] { ++calls; }));
    Subscription outer = signal.subscribe([inner] {});
    inner.reset();
    outer.cancel();
    signal.emit();
    EXPECT_EQ(calls, 0);
}

TEST(Observable, TellsOnlyOfChanges) {
    Observable<int> value(1);
    std::string heard;
    auto subscription = value.subscribe([&](const int& now) { heard += std::to_string(now) + " "; });
    value.set(1);
    value.set(2);
    value.set(2);
    value.set(1);
    EXPECT_EQ(heard, "2 1 ");
    EXPECT_EQ(value.get(), 1);
}

TEST(Observable, ASubscriberThatSetsItAgainLeavesNobodyWithAnOldValue) {
    Observable<int> value;
    std::string heard;
    auto clamp = value.subscribe([&](const int& now) {
        if (now > 10) value.set(10);
    });
    auto listener = value.subscribe([&](const int& now) { heard += std::to_string(now) + " "; });
    value.set(50);
    EXPECT_EQ(heard, "10 10 ");
    EXPECT_EQ(*value, 10);
}

} // namespace
} // namespace lumnara::async
