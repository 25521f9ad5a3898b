#include "agent/service/RequestApplier.h"

#include <malloc.h>

#include <utility>

namespace QosAgent {
namespace {

/// After a longer line, its memory and that of its tree are given back to the system.
constexpr std::size_t kLongLine = std::size_t{1} << 20;

/// Collects what a request prints.
class AnswerOutput final : public StreamOutput {
public:
    void line(std::string_view text) override { lines.emplace_back(text); }
    void followIs(bool isWanted) override { follows = isWanted; }

    std::vector<std::string> lines;
    std::optional<bool> follows;
};

}  // namespace

Answer RequestApplier::apply(std::string_view line, std::string_view door, StreamOutput& output) {
    Answer answer;
    if (const auto fault = operations_.apply(line, output))
        answer.refused = Remark{fault->offset + 1, fault->message, operations_.refusedEdit()};
    for (Warning& warning : operations_.takeWarnings())
        answer.warnings.push_back({warning.offset + 1, std::move(warning.message)});
    end(line, door, record_ != nullptr && !answer.refused && operations_.mayChange());
    return answer;
}

void RequestApplier::end(std::string_view line, std::string_view door, bool isRecorded) {
    if (keeper_ == nullptr) {
        if (isRecorded) record_->append(line, door);
        return feed_.endRequest();
    }
    keeper_->endRequest();
    if (!isRecorded) return;
    keeper_->whenKept(
        [this, line = std::string(line), door = std::string(door)](const auto& fault) {
            if (fault.empty()) record_->append(line, door);
        });
}

Answer RequestApplier::apply(Request request) {
    AnswerOutput output;
    Answer answer = apply(request.line, request.door, output);
    answer.lines = std::move(output.lines);
    answer.follows = output.follows;
    const bool isLong = request.line.size() > kLongLine;
    if (answer.refused || keeper_ != nullptr) answer.line = std::move(request.line);
    request.line = {};
    if (isLong) ::malloc_trim(0);
    return answer;
}

Answer notKept(const StoreFault& fault) {
    Answer answer;
    answer.refused = Remark{1, "the store failed: " + fault};
    return answer;
}

}  // namespace QosAgent
