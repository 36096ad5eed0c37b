#include "materials/Evaluator.h"

#include <functional>
#include <map>

#include <gtest/gtest.h>

namespace vyr::materialtests
{

namespace mx = MaterialX;

namespace
{

using Get = std::function<Value(const char* input)>;

/// Channel by channel; a single number stands for all channels.
Value combine(const Value& a, const Value& b, double (*operation)(double, double))
{
    Value result;
    for (std::size_t i = 0; i < a.size(); ++i)
        result.push_back(operation(a[i], b.size() == 1 ? b[0] : b.at(i)));
    return result;
}

Value multiply(const Value& a, const Value& b)
{
    return combine(a, b, [](double x, double y) { return x * y; });
}

Value subtract(const Value& a, const Value& b)
{
    return combine(a, b, [](double x, double y) { return x - y; });
}

const std::map<std::string, Value (*)(const Get&)> operations{
    {"constant", [](const Get& in) { return in("value"); }},
    {"extract",
     [](const Get& in) { return Value{in("in").at(static_cast<std::size_t>(in("index")[0]))}; }},
    {"multiply", [](const Get& in) { return multiply(in("in1"), in("in2")); }},
    {"subtract", [](const Get& in) { return subtract(in("in1"), in("in2")); }},
    {"ifgreatereq",
     [](const Get& in) { return in("value1")[0] >= in("value2")[0] ? in("in1") : in("in2"); }},
    {"combine3", [](const Get& in) { return Value{in("in1")[0], in("in2")[0], in("in3")[0]}; }},
    // bg - (bg - fg) * mix
    {"mix", [](const Get& in)
     { return subtract(in("bg"), multiply(subtract(in("bg"), in("fg")), in("mix"))); }},
};

} // namespace

Value Evaluator::operator()(const mx::InputPtr& input) const
{
    if (input && input->hasValueString())
    {
        Value numbers;
        for (const std::string& part : mx::splitString(input->getValueString(), ","))
            numbers.push_back(std::stod(part));
        return numbers;
    }
    if (const mx::InputPtr published = input ? input->getInterfaceInput() : nullptr)
        return (*this)(published);
    if (const mx::NodePtr node = input ? input->getConnectedNode() : nullptr)
        return result(node);
    ADD_FAILURE() << (input ? input->getNamePath() : "a missing input") << " reads nothing";
    return {0.0, 0.0, 0.0};
}

Value Evaluator::result(const mx::NodePtr& node) const
{
    if (node->getCategory() == "kvor:bitmap")
        return _image;
    if (const auto found = operations.find(node->getCategory()); found != operations.end())
        return found->second([&](const char* name) { return (*this)(node->getInput(name)); });
    ADD_FAILURE() << node->getNamePath() << " is of an unknown category " << node->getCategory();
    return {0.0, 0.0, 0.0};
}

} // namespace vyr::materialtests
