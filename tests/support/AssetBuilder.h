#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/AssetPool.h"
#include "support/Values.h"

namespace vyr::support
{

/// Makes assets of the test library, one property a call:
///
///     const AssetPtr asset =
///         AssetBuilder("GenericSchema").name("Oak").scalar("generic_glossiness", 0.3).build();
///
/// Properties keep the order of the calls. A builder makes one asset.
class AssetBuilder
{
  public:
    /// An asset of that schema with the identifier "asset-id", the name "Test Material" and the own
    /// name "test-asset".
    explicit AssetBuilder(const std::string& schema = "GenericSchema");

    AssetBuilder& id(const std::string& identifier);
    AssetBuilder& name(const std::string& displayName);
    AssetBuilder& description(const std::string& text);
    AssetBuilder& ownName(const std::string& text);

    AssetBuilder& scalar(const std::string& name, double value, std::uint32_t unit = 0);
    AssetBuilder& scalars(const std::string& name, std::vector<double> values,
                          std::uint32_t unit = 0);
    AssetBuilder& integer(const std::string& name, std::int32_t value);
    AssetBuilder& boolean(const std::string& name, bool value);
    AssetBuilder& color(const std::string& name, double red, double green, double blue,
                        double alpha = 1.0);
    /// Type code 2.
    AssetBuilder& string(const std::string& name, const std::string& value);
    /// Type code 11.
    AssetBuilder& text(const std::string& name, const std::string& value);
    AssetBuilder& uri(const std::string& name, const std::string& stored,
                      const std::string& preferred = "");
    /// A choice list whose only selected choice is `selected`.
    AssetBuilder& choice(const std::string& name, const std::string& selected);
    /// Connects an asset to the property of that name; makes a property of type code 9, which has no
    /// value, when there is none yet. The asset may be shared with others.
    AssetBuilder& connect(const std::string& name, const AssetPtr& asset);

    /// Later properties go to the generic property table that the asset carries.
    AssetBuilder& generic();

    /// Any value, none included, under any type code.
    AssetBuilder& property(const std::string& name, std::uint32_t type, ValuePtr value);
    /// How the property that was added last presents its connected assets.
    AssetBuilder& claiming(Connections connections);
    AssetBuilder& withoutIdentity();
    AssetBuilder& withoutDefinition();
    AssetBuilder& withoutListing();
    AssetBuilder& withoutClone();

    AssetPtr build();

  private:
    std::deque<PropertyRecord>& table();

    AssetContent _content;
    bool _toGenericTable = false;
};

/// A bitmap texture over an image file.
AssetPtr bitmapAsset(const std::string& path);

} // namespace vyr::support
