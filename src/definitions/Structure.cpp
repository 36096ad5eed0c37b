#include "definitions/Checks.h"

#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

/// MaterialX walks a chain of inheritance anew for each input, so that a long one takes it minutes.
constexpr int mostAncestors = 100;

/// The lengths of the chains of inheritance that were walked.
class Inheritance
{
  public:
    explicit Inheritance(Checks& checks) : _checks(checks) {}

    /// @return whether MaterialX can walk the element's chain.
    bool check(const mx::ElementPtr& element)
    {
        std::vector<mx::ElementPtr> chain;
        mx::ElementPtr at = element;
        while (at && at->hasInheritString() && _lengths.try_emplace(at.get(), unfinished).second)
        {
            chain.push_back(at);
            at = at->getInheritsFrom();
        }
        const auto known = at ? _lengths.find(at.get()) : _lengths.end();
        int length = known == _lengths.end() ? 0 : known->second;
        if (length == unfinished)
            report(*at, fmt::format("\"{}\" inherits from itself", at->getName()));
        const bool loops = length == unfinished;
        for (; !chain.empty(); chain.pop_back())
        {
            length = loops ? mostAncestors + 2 : std::min(length + 1, mostAncestors + 2);
            _lengths[chain.back().get()] = length;
            if (!loops && length == mostAncestors + 1)
                report(*chain.back(),
                       fmt::format("inherits through more than {} elements", mostAncestors));
        }
        return _good;
    }

  private:
    static constexpr int unfinished = -1;

    void report(const mx::Element& element, std::string text)
    {
        _good = false;
        _checks.report(element, ValidationCode::Inheritance, std::move(text));
    }

    Checks& _checks;
    std::unordered_map<const mx::Element*, int> _lengths;
    bool _good = true;
};

/// Nodes, and the inputs and outputs of graphs, in the order in which values pass through them.
class Connections
{
  public:
    explicit Connections(Checks& checks) : _checks(checks) {}

    /// Tells of loops among everything that the element depends on.
    void check(const mx::ElementPtr& element)
    {
        enter(element);
        while (!_way.empty())
        {
            Step& step = _way.back();
            if (step.next == step.sources.size())
            {
                _isOnWay[step.element.get()] = false;
                _way.pop_back();
                continue;
            }
            const mx::ElementPtr source = step.sources[step.next++];
            const auto known = _isOnWay.find(source.get());
            if (known == _isOnWay.end())
                enter(source);
            else if (known->second)
                _checks.report(*source, ValidationCode::ConnectionLoop,
                               "its connections lead back to it");
        }
    }

  private:
    struct Step
    {
        mx::ElementPtr element;
        std::vector<mx::ElementPtr> sources;
        std::size_t next = 0;
    };

    void enter(const mx::ElementPtr& element)
    {
        if (_isOnWay.try_emplace(element.get(), true).second)
            _way.push_back({element, sourcesOf(element)});
    }

    static std::vector<mx::ElementPtr> sourcesOf(const mx::ElementPtr& element)
    {
        std::vector<mx::ElementPtr> sources;
        if (const auto port = element->asA<mx::PortElement>())
            addSources(*port, sources);
        else
            for (const mx::InputPtr& input : element->getChildrenOfType<mx::Input>())
                addSources(*input, sources);
        return sources;
    }

    static void addSources(const mx::PortElement& port, std::vector<mx::ElementPtr>& sources)
    {
        mx::ConstElementPtr scope = port.getParent();
        if (port.isA<mx::Input>() && scope)
            scope = scope->getParent();
        if (!scope)
            return;
        const auto add = [&](const mx::ElementPtr& source)
        {
            if (source)
                sources.push_back(source);
        };
        if (port.hasAttribute(mx::ValueElement::INTERFACE_NAME_ATTRIBUTE))
            if (const auto graph = scope->asA<mx::NodeGraph>())
                add(graph->getInput(port.getAttribute(mx::ValueElement::INTERFACE_NAME_ATTRIBUTE)));
        for (const std::string& name : {port.getNodeName(), port.getNodeGraphString()})
        {
            const mx::ElementPtr source = name.empty() ? nullptr : scope->getChild(name);
            const auto graph = source ? source->asA<mx::NodeGraph>() : nullptr;
            if (!graph)
                add(source);
            else
                for (const mx::OutputPtr& output : graph->getOutputs())
                    if (!port.hasOutputString() || output->getName() == port.getOutputString())
                        add(output);
        }
    }

    Checks& _checks;
    std::vector<Step> _way;
    /// Everything that was reached, and whether it is on the way.
    std::unordered_map<const mx::Element*, bool> _isOnWay;
};

} // namespace

bool checkStructure(const mx::DocumentPtr& document, Checks& checks)
{
    bool canBeWalked = true;
    Inheritance inheritance(checks);
    Connections connections(checks);
    for (const mx::ElementPtr& element : document->traverseTree())
    {
        canBeWalked = inheritance.check(element) && canBeWalked;
        if (element->isA<mx::Node>() || element->isA<mx::Output>())
            connections.check(element);
    }
    return canBeWalked;
}

} // namespace vyr::MaterialTranslation::definitions
