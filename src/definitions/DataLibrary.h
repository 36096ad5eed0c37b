#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Definitions.h>

namespace vyr::MaterialTranslation::definitions
{

/// The namespace of our nodes.
inline constexpr const char* kvorNamespace = "kvor";
/// How the category of a node of that namespace begins.
inline constexpr const char* kvorPrefix = "kvor:";

/// What follows a colour space's name in the category of the node that makes its colours linear.
inline constexpr const char* toLinearSuffix = "_to_lin_rec709";

/// A set of definitions, and what is asked of it for every element of every document.
struct Definitions
{
    MaterialX::ConstDocumentPtr library;
    /// Categories of nodes, with their namespaces.
    std::unordered_set<std::string> categories;
    /// Names of colour spaces, in the library's order.
    std::vector<std::string> colorSpaces;
    /// The definitions of the kvor nodes alone, as children of a document; null when the set lacks them.
    MaterialX::ConstDocumentPtr kvor;

    bool knowsColorSpace(const std::string& name) const;
};

/// The shared set, read when this is its first use.
std::shared_ptr<const Definitions> definitionsOf(DefinitionSet set);

/// Gives a document a data library while it lives.
class DataLibraryScope
{
  public:
    DataLibraryScope(MaterialX::DocumentPtr document, const MaterialX::ConstDocumentPtr& library)
        : _document(std::move(document)), _former(_document->getDataLibrary())
    {
        _document->setDataLibrary(library);
    }
    ~DataLibraryScope() { _document->setDataLibrary(_former); }
    DataLibraryScope(const DataLibraryScope&) = delete;
    DataLibraryScope& operator=(const DataLibraryScope&) = delete;

  private:
    MaterialX::DocumentPtr _document;
    MaterialX::ConstDocumentPtr _former;
};

} // namespace vyr::MaterialTranslation::definitions
