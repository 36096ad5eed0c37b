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
using kelvor::platform::assets::IScalarValue;

/// The other suites rely on these detectors: each must notice the fault that it is there for.
class Support : public ::testing::Test
{
  protected:
    Support() { resetHost(); }
    void TearDown() override { resetHost(); }
};

TEST_F(Support, CountsReferences)
{
    {
        const AssetPtr texture = bitmapAsset("wood.png");
        const AssetPtr asset = AssetBuilder().connect("generic_diffuse", texture).build();
        const AssetPtr clone(asset->Clone());
        EXPECT_EQ(liveAssets(), 3u);
        const AssetPtr connected(asset->FindProperty("generic_diffuse")->GetConnectedAsset(0));
        EXPECT_EQ(connected.get(), texture.get());
    }
    EXPECT_EQ(liveAssets(), 0u);
    EXPECT_TRUE(contractBreaches().empty());
}

TEST_F(Support, NoticesUseAfterTheLastReference)
{
    kelvor::platform::assets::IAssetInstance* asset = AssetBuilder().build().release();
    asset->Release();
    asset->Release();
    EXPECT_EQ(contractBreaches().size(), 1u);
    EXPECT_THROW(asset->GetPropertyCount(), std::logic_error);
    EXPECT_EQ(contractBreaches().size(), 2u);
    EXPECT_EQ(liveAssets(), 0u);
}

TEST_F(Support, NoticesIndicesAndKindsThatAreNotThere)
{
    const AssetPtr asset = AssetBuilder().scalars("empty", {}).build();
    const auto* value = dynamic_cast<const IScalarValue*>(asset->FindProperty("empty")->GetValue());
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
    EXPECT_TRUE(asset->HasWorkingPropertyNames());
    EXPECT_FALSE(cancelFailure());
}

TEST_F(Support, TellsUnsoundDocuments)
{
    const auto document = mx::createDocument();
    EXPECT_TRUE(isSound(document));

    const mx::NodePtr node = document->addNode("constant", "value", "float");
    node->addInput("value", "float");
    EXPECT_FALSE(isSound(document)) << "an input without value or connection";
    node->getInput("value")->setValue(1.0f);
    EXPECT_TRUE(isSound(document));

    document->addNode("kvor:unheard", "other", "float");
    EXPECT_FALSE(isSound(document)) << "a node without definition";
}

TEST_F(Support, ComparesInputs)
{
    const auto document = mx::createDocument();
    const mx::NodePtr node = document->addNode("constant", "value", "color3");
    node->setInputValue("value", mx::Color3(0.5f, 0, 1));
    EXPECT_TRUE(hasInputs(document, "value", {{"value", "0.500001, 0, 1"}}));
    EXPECT_FALSE(hasInputs(document, "value", {{"value", "0.5001, 0, 1"}}));
    EXPECT_FALSE(hasInputs(document, "value", {{"value", "0.5, 1e-9, 1"}}));
    EXPECT_FALSE(hasInputs(document, "value", {{"value", "0.5, 0"}}));
    EXPECT_FALSE(hasInputs(document, "value", {{"other", "1"}}));
}

} // namespace

} // namespace vyr::support
