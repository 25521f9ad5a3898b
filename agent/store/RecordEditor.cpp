#include "agent/store/RecordEditor.h"

#include <variant>

#include "agent/database/Path.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {

std::string RecordEditor::put(std::string_view path, std::string_view record) {
    const JsonResult json = parseJson(record);
    if (const auto* fault = std::get_if<Fault>(&json)) return fault->message;
    const auto place = parsePath(database_, path);
    if (const auto* fault = std::get_if<std::string>(&place)) return *fault;
    const auto& [subtree, steps, form, keys] = std::get<Path>(place);
    const JsonValue value = std::get<Json>(json).root();
    if (const auto fault = checker_.check(form, keys, value)) return fault->message;
    editor_.set(std::get<Path>(place), value);
    return {};
}

void RecordEditor::remove(std::string_view path) {
    const auto place = parsePath(database_, path);
    const Path* found = std::get_if<Path>(&place);
    if (found != nullptr && (found->form.isMember || found->form.isNullable))
        editor_.remove(*found);
}

}  // namespace QosAgent
