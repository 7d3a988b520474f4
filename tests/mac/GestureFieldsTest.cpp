#include "core/platform/mac/engines/GestureFields.h"

#include <bit>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(GestureFields, SetsSevenFieldsInTheirOrderAndToTheBit) {
    const SyntheticEvent event = GestureFields::dockSwipe(GesturePhase::changed, -1, 2000);
    using Field = SyntheticEvent::Field;
    const std::vector<Field> expected{{55, std::int64_t{30}}, {110, std::int64_t{23}},
                                      {132, std::int64_t{2}}, {124, -1.401298464324817e-45},
                                      {123, std::int64_t{1}}, {129, -2000.0},
                                      {130, -2000.0}};
    EXPECT_EQ(event.fields, expected);
    const SyntheticEvent positive = GestureFields::dockSwipe(GesturePhase::began, 1, 6000);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(*positive.real(124)), 0x36A0000000000000u);
    EXPECT_EQ(positive.real(129), 6000.0);
    EXPECT_EQ(positive.integer(132), 1);
    EXPECT_EQ(GestureFields::dockSwipe(GesturePhase::ended, 1, 6000).integer(132), 4);
}

TEST(GestureFields, AreReadBackFromAnEventAndFromAnEmptyOne) {
    EXPECT_EQ(GestureFields::of(GestureFields::dockSwipe(GesturePhase::ended, -1, 4000)),
              (GestureFields{30, 23, 4, 1, -0x1p-149, -4000, -4000}));
    EXPECT_EQ(GestureFields::of({}), GestureFields());
}

TEST(SyntheticEvent, TheLastValueOfAFieldCountsAsTheNumberThatItIs) {
    SyntheticEvent event;
    event.set(7, 1.5);
    EXPECT_EQ(event.integer(7), std::nullopt);
    event.set(7, std::int64_t{3});
    EXPECT_EQ(event.integer(7), 3);
    EXPECT_EQ(event.real(7), std::nullopt);
    EXPECT_EQ(event.integer(8), std::nullopt);
}

} // namespace
} // namespace lumnara
