#include "Arguments.h"

namespace vyr::cli
{

CLI::Validator pathText()
{
    const auto check = [](const std::string& path) -> std::string
    {
        if (path.empty())
            return "an empty path";
        if (path.front() == '-')
            return "\"" + path + "\" looks like an option (\"./" + path + "\" names such a file)";
        return {};
    };
    return CLI::Validator(check, "");
}

CLI::Option* addPath(CLI::App& app, const std::string& name, std::string& path,
                     const std::string& help)
{
    return app.add_option(name, path, help)->check(pathText());
}

CLI::Option* addRepeatable(CLI::App& app, const std::string& name, std::vector<std::string>& texts,
                           const std::string& help)
{
    return app.add_option(name, texts, help)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

} // namespace vyr::cli
