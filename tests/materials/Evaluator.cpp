#include "materials/Evaluator.h"

#include <functional>
#include <map>

#include <gtest/gtest.h>

namespace vyr::materialtests
{

namespace mx = MaterialX;

namespace
{

Value undefined(const std::string& why)
{
    ADD_FAILURE() << why;
    return {0.0};
}

/// Channel by channel; a single number stands for all channels.
Value combine(const Value& a, const Value& b,
              const std::function<double(double, double)>& operation)
{
    Value result;
    for (std::size_t i = 0; i < a.size(); ++i)
        result.push_back(operation(a[i], b.size() == 1 ? b[0] : b.at(i)));
    return result;
}

Value numbersOf(const std::string& text)
{
    Value numbers;
    for (const std::string& part : mx::splitString(text, ","))
        numbers.push_back(std::stod(part));
    return numbers;
}

using Get = std::function<Value(const char* input)>;

const std::map<std::string, std::function<Value(const Get&)>>& operations()
{
    static const std::map<std::string, std::function<Value(const Get&)>> table{
        {"constant", [](const Get& in) { return in("value"); }},
        {"extract", [](const Get& in)
         { return Value{in("in").at(static_cast<std::size_t>(in("index")[0]))}; }},
        {"multiply",
         [](const Get& in) { return combine(in("in1"), in("in2"), std::multiplies<>()); }},
        {"subtract", [](const Get& in) { return combine(in("in1"), in("in2"), std::minus<>()); }},
        {"ifgreatereq",
         [](const Get& in) { return in("value1")[0] >= in("value2")[0] ? in("in1") : in("in2"); }},
        {"combine3", [](const Get& in) { return Value{in("in1")[0], in("in2")[0], in("in3")[0]}; }},
        {"mix",
         [](const Get& in)
         {
             const double factor = in("mix")[0];
             return combine(in("fg"), in("bg"), [factor](double fg, double bg)
                            { return fg * factor + bg * (1.0 - factor); });
         }},
    };
    return table;
}

} // namespace

Value Evaluator::operator()(const mx::InputPtr& input) const
{
    if (!input)
        return undefined("no input");
    if (input->hasValueString())
        return numbersOf(input->getValueString());
    if (const mx::InputPtr published = input->getInterfaceInput())
        return (*this)(published);
    if (const mx::NodePtr node = input->getConnectedNode())
        return (*this)(node);
    return undefined(input->getNamePath() + " reads nothing");
}

Value Evaluator::operator()(const mx::NodePtr& node) const
{
    if (node->getCategory() == "kvor:bitmap")
        return _image;
    const auto operation = operations().find(node->getCategory());
    if (operation == operations().end())
        return undefined(node->getNamePath() + " is of an unknown category " + node->getCategory());
    return operation->second([&](const char* name) { return input(node, name); });
}

Value Evaluator::input(const mx::NodePtr& node, const char* name) const
{
    const mx::InputPtr found = node->getInput(name);
    return found ? (*this)(found) : undefined(node->getNamePath() + " has no input " + name);
}

} // namespace vyr::materialtests
