#pragma once

#include <utility>
#include <vector>

#include <MaterialXCore/Document.h>

namespace vyr::materialtests
{

/// The channels of a colour, or one number.
using Value = std::vector<double>;

/// Computes what nodes of a document yield, by what MaterialX says of the standard nodes. Images
/// yield a value of the test's choice.
class Evaluator
{
  public:
    explicit Evaluator(Value image) : _image(std::move(image)) {}

    /// What an input gets: from a node graph's output, a sibling node, an input of the graph around
    /// it, or its own value. The test fails for anything else.
    Value operator()(const MaterialX::InputPtr& input) const;

  private:
    Value result(const MaterialX::NodePtr& node) const;

    Value _image;
};

} // namespace vyr::materialtests
