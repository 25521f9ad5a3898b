#include "agent/output/FollowOutput.h"

#include <chrono>
#include <variant>

#include "agent/json/JsonReader.h"

namespace QosAgent {

FollowOutput::FollowOutput(Output& output, FollowForm form) : output_(output) {
    if (form == FollowForm::text) text_.emplace();
}

void FollowOutput::stateIs(std::string_view state) {
    const JsonResult json = parseJson(state);
    if (text_ && std::holds_alternative<Json>(json)) text_->stateIs(std::get<Json>(json).root());
}

void FollowOutput::line(std::string_view line) {
    if (text_)
        output_.line(text_->textOf(line, std::chrono::system_clock::now()));
    else
        output_.line(line);
}

}  // namespace QosAgent
