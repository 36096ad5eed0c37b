#include "definitions/Checks.h"

#include <algorithm>
#include <unordered_map>

#include <fmt/format.h>

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

/// MaterialX walks a chain of inheritance anew for each input, and one of graphs anew for each graph, so that
/// long ones take it minutes.
constexpr int mostAncestors = 100;
constexpr int mostInputs = 100;

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

using Elements = std::vector<mx::ElementPtr>;

/// What an element needs, one element at a time, to any depth.
class Loops
{
  public:
    /// @param sourcesOf the elements that an element needs.
    /// @param loop what is told of an element that needs itself.
    Loops(Checks& checks, Elements (*sourcesOf)(const mx::ElementPtr&), ValidationCode code,
          const char* loop)
        : _checks(checks), _sourcesOf(sourcesOf), _code(code), _loop(loop)
    {
    }

    /// Tells of loops among everything that the element needs.
    /// @return whether MaterialX can follow what it needs through the inputs of graphs.
    bool check(const mx::ElementPtr& element)
    {
        enter(element);
        while (!_way.empty())
        {
            Step& step = _way.back();
            if (step.next == step.sources.size())
            {
                leave();
                continue;
            }
            const mx::ElementPtr source = step.sources[step.next++];
            const auto known = _known.find(source.get());
            if (known == _known.end())
                enter(source);
            else if (known->second == onWay)
            {
                _checks.report(*source, _code, _loop);
                known->second = toldOf;
            }
            else
                step.inputs = std::max(step.inputs, known->second);
        }
        return _canBeFollowed;
    }

  private:
    static constexpr int onWay = -1;
    static constexpr int toldOf = -2;

    struct Step
    {
        mx::ElementPtr element;
        Elements sources;
        /// Inputs of graphs one behind the other.
        int inputs = 0;
        std::size_t next = 0;
    };

    void enter(const mx::ElementPtr& element)
    {
        if (_known.try_emplace(element.get(), onWay).second)
            _way.push_back({element, _sourcesOf(element)});
    }

    void leave()
    {
        const Step done = std::move(_way.back());
        _way.pop_back();
        const int inputs = done.inputs + (done.element->isA<mx::Input>() ? 1 : 0);
        _known[done.element.get()] = inputs;
        if (!_way.empty())
            _way.back().inputs = std::max(_way.back().inputs, inputs);
        if (inputs != mostInputs + 1 || inputs == done.inputs)
            return;
        _canBeFollowed = false;
        _checks.report(
            *done.element, ValidationCode::ConnectionDepth,
            fmt::format("its value comes through more than {} inputs of graphs", mostInputs));
    }

    Checks& _checks;
    Elements (*_sourcesOf)(const mx::ElementPtr&);
    ValidationCode _code;
    const char* _loop;
    std::vector<Step> _way;
    /// Everything that was reached: its inputs of graphs one behind the other, or whether it is on the way.
    std::unordered_map<const mx::Element*, int> _known;
    bool _canBeFollowed = true;
};

/// What a port reads: nodes, and the inputs and outputs of graphs.
void addSources(const mx::PortElement& port, Elements& sources)
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

/// What the value of a node, or of an input or output of a graph, is made of.
Elements connectedTo(const mx::ElementPtr& element)
{
    Elements sources;
    if (const auto port = element->asA<mx::PortElement>())
        addSources(*port, sources);
    else
        for (const mx::InputPtr& input : element->getChildrenOfType<mx::Input>())
            addSources(*input, sources);
    return sources;
}

/// The definitions of the nodes that implement a definition. Those of the data library need none of the
/// document's.
Elements implementedBy(const mx::ElementPtr& definition)
{
    Elements sources;
    const auto graph = std::dynamic_pointer_cast<mx::NodeGraph>(
        definition->asA<mx::NodeDef>()->getImplementation());
    if (graph)
        for (const mx::NodePtr& node : graph->getNodes())
            if (const mx::NodeDefPtr used = node->getNodeDef();
                used && used->getParent() == definition->getParent())
                sources.push_back(used);
    return sources;
}

} // namespace

bool checkInheritance(const mx::DocumentPtr& document, Checks& checks)
{
    bool canBeWalked = true;
    Inheritance inheritance(checks);
    for (const mx::ElementPtr& element : document->traverseTree())
        canBeWalked = inheritance.check(element) && canBeWalked;
    return canBeWalked;
}

bool checkStructure(const mx::DocumentPtr& document, Checks& checks)
{
    bool canBeWalked = checkInheritance(document, checks);
    Loops connections(checks, connectedTo, ValidationCode::ConnectionLoop,
                      "its connections lead back to it");
    for (const mx::ElementPtr& element : document->traverseTree())
        if (element->isA<mx::Node>() || element->isA<mx::Output>())
            canBeWalked = connections.check(element) && canBeWalked;
    // Definitions are looked up along inheritance.
    if (!canBeWalked)
        return false;
    Loops definitions(checks, implementedBy, ValidationCode::DefinitionLoop,
                      "its implementation contains it");
    for (const mx::ElementPtr& child : document->getChildren())
        if (child->isA<mx::NodeDef>())
            definitions.check(child);
    return true;
}

} // namespace vyr::MaterialTranslation::definitions
