#include "agent/output/Diagnostics.h"

#include <unistd.h>

#include "agent/output/Output.h"

namespace QosAgent {
namespace {

std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20) c = '?';
    return line;
}

}  // namespace

std::string refusal(std::string_view file, std::string_view message) {
    return oneLine(file) + ": " + oneLine(message);
}

std::string refusal(std::string_view file, const TextPlace& place, std::string_view message) {
    return oneLine(file) + ':' + std::to_string(place.line) + ':' + std::to_string(place.column) +
           ": " + oneLine(message);
}

std::string refusal(std::string_view file, std::string_view text, const Fault& fault) {
    return refusal(file, placeOf(text, fault.offset), fault.message);
}

std::string warningLine(std::string_view file, const TextPlace& place, std::string_view message) {
    return refusal(file, place, "warning: " + std::string(message));
}

void report(std::string_view line) {
    Output(STDERR_FILENO).line(line);
}

}  // namespace QosAgent
