#include "agent/host/ToggleFolder.h"

#include <cerrno>
#include <cstring>

#include "agent/database/Scalars.h"
#include "agent/host/File.h"
#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

using Toggles = ToggleFolder::Toggles;

constexpr std::size_t kMostBytes = std::size_t{1} << 20;

std::variant<Toggles, Fault> togglesIn(const JsonValue& json) {
    if (!json.is(JsonKind::object))
        return Fault{json.offset(), unexpected("an object", json.kind())};
    Toggles toggles;
    for (const JsonMember& member : json.members()) {
        if (!member.value.is(JsonKind::boolean))
            return Fault{member.value.offset(), unexpected("true or false", member.value.kind())};
        toggles.emplace(member.key, member.value.boolean());
    }
    return toggles;
}

}  // namespace

std::variant<Toggles, Diagnostic> ToggleFolder::read(std::string_view file) const {
    if (folder_.empty()) return Toggles{};
    const std::string name = nameOf(file);
    if (isSpecialFile(name)) return refusal(name, kSpecialFile);
    const Limits limits{.lineBytes = kMostBytes};
    const FileText read = readFile(name, kMostBytes);
    if (read.error == ENOENT || read.error == ENOTDIR) return Toggles{};
    if (read.error != 0) return refusal(name, std::strerror(read.error));
    const JsonResult json = parseJsonLine(read.text, limits);
    if (const auto* fault = std::get_if<Fault>(&json)) return refusal(name, read.text, *fault);
    auto toggles = togglesIn(std::get<Json>(json).root());
    if (const auto* fault = std::get_if<Fault>(&toggles)) return refusal(name, read.text, *fault);
    return std::get<Toggles>(std::move(toggles));
}

bool ToggleFolder::state(std::string_view toggle, std::string_view file, bool fallback) {
    const auto read = this->read(file);
    const auto* toggles = std::get_if<Toggles>(&read);
    if (toggles == nullptr) return fallback;
    const auto at = toggles->find(toggle);
    if (at == toggles->end()) return fallback;
    if (!at->second && warnedOf_.emplace(toggle).second)
        report(warning(nameOf(file),
                       "the toggle " + excerpt(toggle) + " is off: what it enables does not run"));
    return at->second;
}

}  // namespace QosAgent
