#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// Roughness at 1 - glossiness = 0, 0.05, ..., 1.
const std::vector<double> curve = {0.0,    0.0125, 0.025, 0.0375, 0.05,   0.065, 0.08,
                                   0.0975, 0.115,  0.134, 0.155,  0.1775, 0.2,   0.23,
                                   0.26,   0.3,    0.35,  0.41,   0.5,    0.66,  1.0};

/// The curve between its points, in double precision and without index arithmetic near the ends.
double expectedRoughness(double glossiness)
{
    const double x = std::clamp(1 - glossiness, 0.0, 1.0) * 20;
    const auto i = std::min(static_cast<std::size_t>(x), curve.size() - 2);
    const double f = x - static_cast<double>(i);
    return curve[i] + f * (curve[i + 1] - curve[i]);
}

class Glossiness : public HostTest
{
  protected:
    /// Roughness as written, after both kinds were found equal.
    double roughness(double glossiness, int mode) const
    {
        ConverterOptions options = plainOptions();
        options.roughnessMode = mode;
        const Translation translation =
            translate(AssetBuilder().scalar("generic_glossiness", glossiness).build(), options);
        EXPECT_TRUE(translation.succeeded) << translation.report();
        const auto written = [&](const char* name)
        { return inputOf(translation.document, "M_shader", name)->getValueString(); };
        EXPECT_EQ(written("specular_roughness"), written("diffuse_roughness"));
        return std::stod(written("specular_roughness"));
    }
};

TEST_F(Glossiness, FollowsTheTableAtItsPoints)
{
    for (std::size_t i = 0; i < curve.size(); ++i)
    {
        const double glossiness = 1 - 0.05 * static_cast<double>(i);
        EXPECT_NEAR(roughness(glossiness, 1), curve[i], 2e-6) << glossiness;
    }
}

TEST_F(Glossiness, OfEveryOtherModeIsTheTable)
{
    for (const int mode : {0, 1, 3, -2, 1 << 30})
        EXPECT_NEAR(roughness(0.5, mode), 0.155, 1e-6) << mode;
    EXPECT_NEAR(roughness(0.5, 2), 0.5, 1e-6);
}

/// Just above 0 the table is at its end, just below 1 at its start.
TEST_F(Glossiness, StaysInRangeAtTheEnds)
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    for (const int mode : {1, 2})
    {
        for (const double low : {-1e30, -1.0, -0.0, 0.0, tiny, 1e-30, 1e-9, 5e-8, 1e-7})
            EXPECT_NEAR(roughness(low, mode), 1, 1e-5) << low << " in mode " << mode;
        for (const double high : {1 - 1e-9, 1.0, 1.0000001, 2.0, 1e30})
            EXPECT_NEAR(roughness(high, mode), 0, 1e-6) << high << " in mode " << mode;
    }
    EXPECT_EQ(roughness(0, 1), 1);
    EXPECT_EQ(roughness(1, 1), 0);
}

TEST_F(Glossiness, NeverJumpsOrTurns)
{
    double formerCurve = 1;
    for (int step = 0; step <= 1000; ++step)
    {
        const double glossiness = step / 1000.0;
        const double curved = roughness(glossiness, 1);
        EXPECT_NEAR(curved, expectedRoughness(glossiness), 5e-6) << glossiness;
        EXPECT_LE(curved, formerCurve + 1e-6) << glossiness;
        EXPECT_LE(curved, 1) << glossiness;
        EXPECT_GE(curved, 0) << glossiness;
        formerCurve = curved;
        EXPECT_NEAR(roughness(glossiness, 2), 1 - glossiness, 2e-6) << glossiness;
    }
}

} // namespace

} // namespace vyr::hosttests
