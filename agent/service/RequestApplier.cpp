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
    else if (record_ != nullptr && operations_.mayChange())
        record_->append(line, door);
    for (Warning& warning : operations_.takeWarnings())
        answer.warnings.push_back({warning.offset + 1, std::move(warning.message)});
    feed_.endRequest();
    return answer;
}

Answer RequestApplier::apply(Request request) {
    AnswerOutput output;
    Answer answer = apply(request.line, request.door, output);
    answer.lines = std::move(output.lines);
    answer.follows = output.follows;
    const bool isLong = request.line.size() > kLongLine;
    if (answer.refused) answer.line = std::move(request.line);
    request.line = {};
    if (isLong) ::malloc_trim(0);
    return answer;
}

}  // namespace QosAgent
