#include "agent/service/ConfirmedCommits.h"

#include <utility>

#include "agent/json/Excerpt.h"
#include "agent/json/JsonReader.h"

namespace QosAgent {
namespace {

constexpr const char* kDoor = "gnmi";  ///< through which commits come, for the record

Answer refused(std::string message, bool isConflict) {
    Answer answer;
    answer.refused = Remark{1, std::move(message)};
    answer.isConflict = isConflict;
    return answer;
}

/// Whether a line edits the OpenConfig configuration.
bool isEdit(const std::string& line) {
    const JsonResult parsed = parseJson(line);
    const Json* json = std::get_if<Json>(&parsed);
    return json != nullptr && (json->root().find("configure") || json->root().find("openconfig"));
}

}  // namespace

Answer ConfirmedCommits::apply(Request request) {
    if (request.commit) {
        if (auto refusal = this->refusal(*request.commit)) return std::move(*refusal);
        const CommitAction& action = *request.commit;
        switch (action.kind) {
            case CommitAction::Kind::begin:
                return begin(std::move(request));
            case CommitAction::Kind::confirm:
                settle();
                return {};
            case CommitAction::Kind::cancel:
                return takeBack();
            case CommitAction::Kind::postpone:
                startTimer(action.time);
                keep();
                return {};
        }
    }
    if (waiting_ && isEdit(request.line))
        return refused("commit " + excerpt(waiting_->commit.id) + " waits for its confirmation",
                       true);
    return apply_(std::move(request));
}

/// Why the action cannot be; nothing if it can.
std::optional<Answer> ConfirmedCommits::refusal(const CommitAction& action) const {
    if (action.kind == CommitAction::Kind::begin) {
        if (!waiting_) return std::nullopt;
        return refused("commit " + excerpt(waiting_->commit.id) + " waits for its confirmation",
                       true);
    }
    if (!waiting_) return refused("no commit waits for its confirmation", true);
    const std::string& id = waiting_->commit.id;
    if (id == action.id) return std::nullopt;
    return refused("the commit that waits is " + excerpt(id) + ", not " + excerpt(action.id),
                   false);
}

Answer ConfirmedCommits::begin(Request request) {
    const CommitAction action = *request.commit;
    Answer before = apply_({R"({"print":"configuration"})", kDoor});
    if (before.refused || before.lines.size() != 1) return before;
    Answer answer = request.line.empty() ? Answer{} : apply_(std::move(request));
    if (answer.refused || answer.isBusy) return answer;
    waiting_.emplace(Waiting{{action.id, std::move(before.lines.front()), {}}, nullptr});
    startTimer(action.time);
    keep();
    return answer;
}

void ConfirmedCommits::resume(WaitingCommit commit) {
    using std::chrono::milliseconds;
    const auto left =
        std::chrono::ceil<milliseconds>(commit.end - std::chrono::system_clock::now());
    waiting_.emplace(Waiting{std::move(commit), nullptr});
    if (left.count() > 0)
        startTimer(left);
    else
        takeBack();
}

void ConfirmedCommits::startTimer(std::chrono::milliseconds time) {
    waiting_->commit.end = std::chrono::system_clock::now() + time;
    waiting_->timer = loop_.after(time, [this] { takeBack(); });
}

Answer ConfirmedCommits::takeBack() {
    // The timer may be the caller: it goes last.
    const Waiting waiting = std::move(*std::exchange(waiting_, std::nullopt));
    Answer answer =
        apply_({R"({"configure":[{"replace":"/","value":)" + waiting.commit.before + "}]}", kDoor});
    keep();
    return answer;
}

void ConfirmedCommits::settle() {
    waiting_.reset();
    keep();
}

void ConfirmedCommits::keep() const {
    if (keep_) keep_(waiting_ ? &waiting_->commit : nullptr);
}

}  // namespace QosAgent
