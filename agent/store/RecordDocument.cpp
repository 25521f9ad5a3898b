#include "agent/store/RecordDocument.h"

#include <algorithm>
#include <optional>
#include <variant>

#include "agent/database/Path.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {
namespace {

constexpr std::size_t kNowhere = JsonBuilder::kNoOffset;

std::vector<std::string_view> stepsOf(std::string_view mount, std::string_view path) {
    std::vector<std::string_view> steps{mount};
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        steps.push_back(path.substr(begin, end - begin));
        begin = end + 1;
    }
    return steps;
}

}  // namespace

std::string RecordDocument::add(std::string_view mount, std::string_view path,
                                std::string_view record) {
    const JsonResult parsed = parseJson(record);
    if (const auto* fault = std::get_if<Fault>(&parsed)) return fault->message;
    if (!enter(stepsOf(mount, path))) return "it is not where a record can be";
    const JsonValue value = std::get<Json>(parsed).root();
    open_.back().isObject = value.is(JsonKind::object);
    if (!open_.back().isObject) {
        builder_.copy(value, kNowhere);
        return {};
    }
    // What is below the record may follow.
    builder_.beginObject(kNowhere);
    for (const JsonMember& member : value.members())
        builder_.key(member.key, kNowhere).copy(member.value, kNowhere);
    return {};
}

/// Closes what the steps are not part of, and opens what they are, up to the key of the last.
bool RecordDocument::enter(const std::vector<std::string_view>& steps) {
    std::size_t common = 0;
    while (common < open_.size() && common < steps.size() && open_[common].step == steps[common])
        ++common;
    if (common == steps.size() || (common > 0 && !open_[common - 1].isObject)) return false;
    closeTo(common);
    for (std::size_t i = common; i < steps.size(); ++i) {
        // The mount is one name; a key may be escaped.
        const auto name = i == 0 ? std::string(steps[i]) : keyFromStep(steps[i]);
        if (!name) return false;
        builder_.key(*name, kNowhere);
        const bool isLast = i + 1 == steps.size();
        if (!isLast) builder_.beginObject(kNowhere);
        open_.push_back({std::string(steps[i]), !isLast});
    }
    return true;
}

void RecordDocument::closeTo(std::size_t depth) {
    for (; open_.size() > depth; open_.pop_back())
        if (open_.back().isObject) builder_.end();
}

Json RecordDocument::take() {
    closeTo(0);
    builder_.end();
    return builder_.take();
}

}  // namespace QosAgent
