#include "tests/support/TraceCapture.h"

#include <regex>

#include "platform/Vex/TraceHandle.h"

namespace TestSupport {

TraceCapture::TraceCapture(std::string_view handle, unsigned level) {
    Vex::traceSinkIs([this](std::string_view line) { lines_.emplace_back(line); });
    Vex::traceLevelsIs(handle, level + 1);
}

TraceCapture::~TraceCapture() {
    Vex::traceLevelsIs("*", 0);
    Vex::traceSinkIs(nullptr);
}

std::vector<std::string> TraceCapture::lines() const {
    static const std::regex timestamp("^[^ ]* ");
    static const std::regex address("0x[0-9a-f]+");
    std::vector<std::string> stripped;
    for (const std::string& line : lines_)
        stripped.push_back(
            std::regex_replace(std::regex_replace(line, timestamp, ""), address, "0x"));
    return stripped;
}

}  // namespace TestSupport
