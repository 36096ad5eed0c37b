#include <stdexcept>

#include <kelvor/platform/assets/IScalarValue.h>

#include "support/AssetBuilder.h"
#include "support/Documents.h"
#include "support/Host.h"

namespace vyr::support
{

namespace
{

namespace mx = MaterialX;

/// The other suites rely on these detectors: each must notice the fault that it is there for.
class Support : public ::testing::Test
{
  protected:
    Support() { resetHost(); }
    void TearDown() override { resetHost(); }
};

TEST_F(Support, NoticesReferencesThatAreKeptOrGivenBackTwice)
{
    const AssetPtr texture = bitmapAsset("wood.png");
    kpa::IAssetInstance* asset = AssetBuilder().connect("slot", texture).build().release();
    const AssetPtr clone(asset->Clone());
    const AssetPtr connected(asset->FindProperty("slot")->GetConnectedAsset(0));
    EXPECT_EQ(connected.get(), texture.get());
    EXPECT_EQ(liveAssets(), 3u);
    asset->Release();
    EXPECT_EQ(liveAssets(), 2u);
    EXPECT_TRUE(contractBreaches().empty());
    asset->Release();
    EXPECT_THROW(asset->GetPropertyCount(), std::logic_error);
    EXPECT_EQ(contractBreaches().size(), 2u);
}

TEST_F(Support, NoticesIndicesAndKindsThatAreNotThere)
{
    const AssetPtr asset = AssetBuilder().scalars("empty", {}).build();
    const auto* value =
        dynamic_cast<const kpa::IScalarValue*>(asset->FindProperty("empty")->GetValue());
    ASSERT_NE(value, nullptr);
    value->GetScalar(0);
    value->GetBoolean(0);
    asset->GetProperty(1);
    asset->GetProperty(0)->GetConnectedAsset(0);
    EXPECT_EQ(contractBreaches().size(), 4u);
}

TEST_F(Support, FailsOnceAtTheOperationAskedFor)
{
    const AssetPtr asset = AssetBuilder().build();
    failAfter(1);
    EXPECT_TRUE(asset->HasWorkingPropertyNames());
    EXPECT_THROW(asset->HasWorkingPropertyNames(), HostFault);
    EXPECT_FALSE(cancelFailure());
}

TEST_F(Support, TellsUnsoundDocumentsAndOtherValues)
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
    EXPECT_FALSE(hasInputs(document, "node", {{"other", "1"}}));
    document->addNode("kvor:unheard", "other", "float");
    EXPECT_FALSE(isSound(document)) << "a node without definition";
}

} // namespace

} // namespace vyr::support
