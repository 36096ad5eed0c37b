#include "Report.h"

#include <MaterialTranslation/Diagnostics.h>

namespace vyr::cli
{
namespace
{

using Json = nlohmann::ordered_json;

/// Null in place of a text that there is none of.
Json textOrNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

Json toJson(const std::vector<Warning>& warnings)
{
    Json list = Json::array();
    for (const Warning& warning : warnings)
        list.push_back(
            {{"code", warning.code}, {"property", warning.property}, {"text", warning.text}});
    return list;
}

} // namespace

Report::Report()
    : _content({{"converter", MaterialTranslation::libraryVersion()}, {"materials", Json::array()}})
{
}

void Report::add(const Task& task, const Outcome& outcome)
{
    _content["materials"].push_back({
        {"id", task.material->id},
        {"name", task.name},
        {"schema", task.material->schema},
        {"file", task.material->file},
        {"status", outcome.converted ? "converted" : "failed"},
        {"document", textOrNull(outcome.document)},
        {"textures", outcome.textures},
        {"message", textOrNull(outcome.message)},
        {"warnings", toJson(outcome.warnings)},
    });
}

std::string Report::text() const
{
    return jsonText(_content);
}

std::string jsonText(const nlohmann::ordered_json& content)
{
    return content.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace vyr::cli
