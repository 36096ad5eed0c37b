#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/TypeStrings.h"
#include "graph/ValueStrings.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

template <class... Types> void expectMaterialXsNames()
{
    EXPECT_EQ((std::vector<std::string>{typeStringOf<Types>()...}),
              (std::vector<std::string>{mx::getTypeString<Types>()...}));
}

struct SomethingElse
{
};

TEST(TypeStrings, AreThoseOfMaterialX)
{
    expectMaterialXsNames<mx::Color3, mx::Color4, mx::Vector2, mx::Vector3, mx::Vector4,
                          mx::Matrix33, mx::Matrix44, float, int, bool, std::string>();
    EXPECT_NE(typeStringOf<SomethingElse>().find("somethingelse"), std::string::npos);
}

/// Numbers at which writers differ: where the form changes, where digits carry over, and the ends.
std::vector<float> hardNumbers()
{
    std::vector<float> numbers = {0.0f,     1.0f,         0.1f,      0.333333343f, 9.999995e-5f,
                                  0.0001f,  0.9999995f,   99999.95f, 999999.4f,    999999.5f,
                                  1e6f,     123456789.0f, FLT_MIN,   1e-45f,       FLT_MAX,
                                  INFINITY, NAN};
    // A walk over all exponents with ever new digits.
    std::uint32_t bits = 1;
    for (int i = 0; i < 4000; ++i)
    {
        bits = bits * 1664525u + 1013904223u;
        numbers.push_back(std::bit_cast<float>(bits));
    }
    return numbers;
}

void expectSameBytes()
{
    for (const float number : hardNumbers())
        for (const float value : {number, -number})
            ASSERT_EQ(valueString(value), mx::toValueString(value)) << std::hexfloat << value;
    const auto expectSame = [](const auto& value)
    { EXPECT_EQ(valueString(value), mx::toValueString(value)); };
    expectSame(mx::Color3(-0.0f, 1e-5f, 123456789.0f));
    expectSame(mx::Vector2(0.1f, 1e-40f));
    expectSame(mx::Vector3(0.1f, 0.0f, -1e30f));
}

/// What the host has asked MaterialX for holds for the converter's numbers too.
TEST(ValueStrings, HaveMaterialXsBytesInTheHostsFormat)
{
    expectSameBytes();
    using Formats = mx::Value;
    for (const auto format :
         {Formats::FloatFormatDefault, Formats::FloatFormatFixed, Formats::FloatFormatScientific})
        for (const int precision : {0, 1, 5, 6, 7, 9, 17, 40})
        {
            SCOPED_TRACE(std::to_string(format) + " " + std::to_string(precision));
            const mx::ScopedFloatFormatting formatting(format, precision);
            expectSameBytes();
        }
    expectSameBytes();
}

} // namespace

} // namespace vyr::MaterialTranslation::graph
