#include "platform/HostValue.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

// Two values the host passes are the same only when kind, shape and every
// element agree: scripts compare what a call gave back with what they sent.
TEST(HostValueEqualityTest, ValuesAreEqualOnlyInKindShapeAndEveryElement)
{
    EXPECT_EQ(HostValue::cellOfStrings({"a", "b"}), HostValue::cellOfStrings({"a", "b"}));
    EXPECT_EQ(HostValue::doubleMatrix(1, 2, {1, 2}), HostValue::doubleMatrix(1, 2, {1, 2}));
    const std::pair<HostValue, HostValue> different[] = {
        {HostValue::string("a"), HostValue::string("b")},
        {HostValue::doubleScalar(1), HostValue::doubleScalar(2)},
        {HostValue::logicalScalar(true), HostValue::logicalScalar(false)},
        {HostValue::doubleMatrix(1, 2, {1, 2}), HostValue::doubleMatrix(2, 1, {1, 2})},
        {HostValue::string("1"), HostValue::cellOfStrings({"1"})},
        {HostValue::cellOfStrings({"a", "b"}), HostValue::cellOfStrings({"a", "c"})},
    };
    for (const auto& [left, right] : different) {
        EXPECT_NE(left, right) << left.toString();
        EXPECT_NE(right, left) << right.toString();
    }
}

} // namespace
} // namespace LibraryBrowser
