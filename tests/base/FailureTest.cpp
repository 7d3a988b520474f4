#include "core/base/Failure.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

class TeaError : public FailureOf<TeaError, std::string, int> {
public:
    enum class Case { tooHot, spilt };
    static constexpr Sentence<Case> sentences[] = {
        {Case::tooHot, "{0} has {1} degrees."},
        {Case::spilt, "There is no tea."},
    };
    explicit TeaError(Case which) : FailureOf(which) {}
    TeaError(std::string cup, int degrees) : FailureOf(Case::tooHot, std::move(cup), degrees) {}
};

TEST(Failure, SaysAndComparesByCaseAndPayload) {
    EXPECT_EQ(TeaError("Mine", 90).sentence(), "Mine has 90 degrees.");
    EXPECT_STREQ(TeaError(TeaError::Case::spilt).what(), "There is no tea.");
    EXPECT_EQ(TeaError(TeaError::Case::spilt).which(), TeaError::Case::spilt);
    EXPECT_EQ(TeaError("Mine", 90), TeaError("Mine", 90));
    EXPECT_NE(TeaError("Mine", 90), TeaError("Mine", 91));
    EXPECT_NE(TeaError("", 0), TeaError(TeaError::Case::spilt));
}

} // namespace
} // namespace lumnara
