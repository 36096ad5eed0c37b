#include <bit>
#include <cstdint>
#include <limits>
#include <locale>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/Inputs.h"
#include "graph/TypeStrings.h"
#include "graph/ValueStrings.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

struct SomethingElse
{
};

TEST(TypeStrings, AreThoseOfMaterialX)
{
    // The converter's table against MaterialX's own, which knows the types by their values.
    EXPECT_EQ(typeStringOf<mx::Color3>(), mx::getTypeString<mx::Color3>());
    EXPECT_EQ(typeStringOf<mx::Color4>(), mx::getTypeString<mx::Color4>());
    EXPECT_EQ(typeStringOf<mx::Vector2>(), mx::getTypeString<mx::Vector2>());
    EXPECT_EQ(typeStringOf<mx::Vector3>(), mx::getTypeString<mx::Vector3>());
    EXPECT_EQ(typeStringOf<mx::Vector4>(), mx::getTypeString<mx::Vector4>());
    EXPECT_EQ(typeStringOf<mx::Matrix33>(), mx::getTypeString<mx::Matrix33>());
    EXPECT_EQ(typeStringOf<mx::Matrix44>(), mx::getTypeString<mx::Matrix44>());
    EXPECT_EQ(typeStringOf<float>(), mx::getTypeString<float>());
    EXPECT_EQ(typeStringOf<int>(), mx::getTypeString<int>());
    EXPECT_EQ(typeStringOf<bool>(), mx::getTypeString<bool>());
    EXPECT_EQ(typeStringOf<std::string>(), mx::getTypeString<std::string>());
}

TEST(TypeStrings, OfOtherTypesAreStableAndInLowerCase)
{
    const std::string& name = typeStringOf<SomethingElse>();
    EXPECT_NE(name.find("somethingelse"), std::string::npos) << name;
    EXPECT_EQ(name.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), std::string::npos) << name;
    static_cast<void>(typeStringOf<std::vector<SomethingElse>>());
    EXPECT_EQ(&typeStringOf<SomethingElse>(), &name) << "references stay valid";
}

/// Numbers at which writers differ: where the form changes, where digits carry over, and the ends.
std::vector<float> hardNumbers()
{
    using Limits = std::numeric_limits<float>;
    std::vector<float> numbers{0.0f,
                               1.0f,
                               0.1f,
                               0.3f,
                               1.0f / 3.0f,
                               1e-5f,
                               9.999995e-5f,
                               0.0001f,
                               0.00012345678f,
                               0.9999995f,
                               99999.95f,
                               999999.4f,
                               999999.5f,
                               1e6f,
                               1234567.0f,
                               123456789.0f,
                               16777216.0f,
                               1e10f,
                               Limits::min(),
                               Limits::denorm_min(),
                               1e-40f,
                               Limits::max(),
                               Limits::epsilon(),
                               Limits::infinity(),
                               Limits::quiet_NaN()};
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
    const mx::Color3 color(-0.0f, 1e-5f, 123456789.0f);
    EXPECT_EQ(valueString(color), mx::toValueString(color));
    const mx::Vector2 pair(0.1f, 1e-40f);
    EXPECT_EQ(valueString(pair), mx::toValueString(pair));
    const mx::Vector3 vector(0.1f, 0.0f, -1e30f);
    EXPECT_EQ(valueString(vector), mx::toValueString(vector));
}

TEST(ValueStrings, HaveMaterialXsBytes)
{
    expectSameBytes();
    EXPECT_EQ(valueString(true), "true");
    EXPECT_EQ(valueString(-7), "-7");
    EXPECT_EQ(valueString(std::string("a, b")), "a, b");
}

/// What the host has asked MaterialX for holds for the converter's numbers too.
TEST(ValueStrings, FollowTheHostsFormat)
{
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

struct CommaPoint : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(ValueStrings, DoNotHangOnTheLocale)
{
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    const std::string text = valueString(mx::Vector3(1234.5f, 0.25f, 1e-5f));
    const std::string precise = []
    {
        const mx::ScopedFloatFormatting formatting(mx::Value::FloatFormatFixed, 2);
        return valueString(12345.5f);
    }();
    std::locale::global(before);
    EXPECT_EQ(text, "1234.5, 0.25, 1e-05");
    EXPECT_EQ(precise, "12345.50");
}

TEST(InputValues, AreTypedByTheValueOrByTheCaller)
{
    const mx::DocumentPtr document = mx::createDocument();
    const mx::NodePtr node = document->addNode("image", "image", "color3");
    EXPECT_EQ(addTypedInput(node, "a", 1)->getType(), "integer");
    EXPECT_EQ(addTypedInput(node, "b", true)->getValueString(), "true");
    EXPECT_EQ(addTypedInput(node, "c", mx::Vector2(1.0f, 2.0f))->getType(), "vector2");

    const mx::InputPtr input = node->addInput("d", "color3");
    setInputValue(input, 0.5f);
    EXPECT_EQ(input->getType(), "float") << "the value's type replaces another";
    setInputValue(input, std::string("a.png"), "filename");
    EXPECT_EQ(input->getType(), "filename");
    EXPECT_EQ(input->getValueString(), "a.png");
    EXPECT_FALSE(addFileInput(node, "a.png", "")->hasColorSpace());
}

} // namespace

} // namespace vyr::MaterialTranslation::graph
