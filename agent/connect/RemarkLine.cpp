#include "agent/connect/RemarkLine.h"

#include "agent/json/JsonReader.h"

namespace QosAgent {
namespace {

constexpr std::string_view kRefused = R"({"refused":{"line":)";
constexpr std::string_view kWarning = R"({"warning":{"line":)";

std::optional<Remark> remarkFrom(const JsonValue& line) {
    if (line.size() != 1) return {};
    const JsonValue remark = (*line.members().begin()).value;
    const auto column = remark.find("column");
    const auto message = remark.find("message");
    if (remark.size() != 3 || !column || !message || !message->value.is(JsonKind::string))
        return {};
    const auto number = column->value.plainNumber();
    if (!number) return {};
    return Remark{*number, std::string(message->value.text())};
}

}  // namespace

bool takeRemark(std::string_view line, Answer& answer) {
    const bool isRefusal = line.starts_with(kRefused);
    if (!isRefusal && !line.starts_with(kWarning)) return false;
    const JsonResult json = parseJsonLine(line);
    if (!std::holds_alternative<Json>(json)) return false;
    auto remark = remarkFrom(std::get<Json>(json).root());
    if (!remark) return false;
    if (isRefusal)
        answer.refused = std::move(*remark);
    else
        answer.warnings.push_back(std::move(*remark));
    return true;
}

}  // namespace QosAgent
