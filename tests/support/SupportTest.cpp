#include <stdexcept>

#include "support/AssetBuilder.h"
#include "support/Documents.h"

namespace vyr::support
{

namespace
{

namespace mx = MaterialX;

/// The other suites rely on these detectors: each must notice the fault that it is there for.
TEST(Support, NoticesWhatTheInterfacesRuleOut)
{
    resetHost();
    kpa::IAssetInstance* asset =
        AssetBuilder().connect("slot", bitmapAsset("a.png")).build().release();
    const AssetPtr clone(asset->Clone());
    const AssetPtr connected(asset->FindProperty("slot")->GetConnectedAsset(0));
    EXPECT_EQ(liveAssets(), 3u);
    EXPECT_TRUE(contractBreaches().empty());
    asset->GetProperty(1);
    asset->GetProperty(0)->GetConnectedAsset(1);
    scalarValue({})->GetBoolean(0);
    EXPECT_EQ(contractBreaches().size(), 3u);
    asset->Release();
    EXPECT_EQ(liveAssets(), 2u);
    asset->Release();
    EXPECT_THROW(asset->GetPropertyCount(), std::logic_error);
    EXPECT_EQ(contractBreaches().size(), 5u);
}

TEST(Support, TellsUnsoundDocumentsAndOtherValues)
{
    const auto document = mx::createDocument();
    const mx::InputPtr input =
        document->addNode("constant", "node", "color3")->addInput("value", "color3");
    EXPECT_FALSE(isSound(document)) << "an input without value or connection";
    input->setValueString("0.5, 0, 1");
    EXPECT_TRUE(isSound(document));
    EXPECT_TRUE(hasInputs(document, "node", {{"value", "0.500001, 0, 1"}}));
    for (const char* other : {"0.5001, 0, 1", "0.5, 1e-9, 1", "0.5, 0", "false"})
        EXPECT_FALSE(hasInputs(document, "node", {{"value", other}})) << other;
    document->addNode("kvor:unheard", "other", "float");
    EXPECT_FALSE(isSound(document)) << "a node without definition";
}

} // namespace

} // namespace vyr::support
