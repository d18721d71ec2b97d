#include "component/automation/variant.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

namespace tof {
namespace {

TEST(Variant, IsEmptyUntilItHoldsAValue) {
  EXPECT_TRUE(Variant().IsEmpty());
  EXPECT_FALSE(Variant(Variant::Missing{}).IsEmpty());
  EXPECT_FALSE(Variant(0.0).IsEmpty());
  EXPECT_FALSE(Variant("").IsEmpty());
}

TEST(Variant, HoldsExactlyTheTypeItWasMadeFrom) {
  EXPECT_NE(Variant(true).As<bool>(), nullptr);
  EXPECT_NE(Variant(std::int16_t{1}).As<std::int16_t>(), nullptr);
  EXPECT_NE(Variant(1).As<std::int32_t>(), nullptr);
  EXPECT_NE(Variant(1.0).As<double>(), nullptr);
  EXPECT_NE(Variant("text").As<std::string>(), nullptr);
  EXPECT_NE(Variant(Variant::Object()).As<Variant::Object>(), nullptr);
  EXPECT_EQ(Variant(1).As<double>(), nullptr);
  EXPECT_EQ(Variant("text").As<bool>(), nullptr);
}

TEST(Variant, TellsArraysOfEitherKind) {
  EXPECT_TRUE(Variant(Variant::DoubleArray{1.0}).IsArray());
  EXPECT_TRUE(Variant(Variant::Array{Variant(1.0)}).IsArray());
  EXPECT_TRUE(Variant(Variant::DoubleArray()).IsArray());
  EXPECT_FALSE(Variant(1.0).IsArray());
  EXPECT_FALSE(Variant().IsArray());
}

TEST(Variant, EqualsOneOfTheSameTypeAndValue) {
  EXPECT_EQ(Variant(1.5), Variant(1.5));
  EXPECT_NE(Variant(1), Variant(1.0));
  EXPECT_NE(Variant(), Variant(Variant::Missing{}));
  EXPECT_EQ(Variant(Variant::Array{Variant("a"), Variant(2)}),
            Variant(Variant::Array{Variant("a"), Variant(2)}));
}

// A pointer that is no text would otherwise convert to True.
static_assert(!std::is_constructible_v<Variant, int*>);
static_assert(!std::is_constructible_v<Variant, const LateBoundObject*>);
static_assert(!std::is_constructible_v<Variant, std::nullptr_t>);
static_assert(std::is_constructible_v<Variant, char*>);

}  // namespace
}  // namespace tof
