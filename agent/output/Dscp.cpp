#include "agent/output/Dscp.h"

#include <string_view>

namespace QosAgent {
namespace {

struct Codepoint {
    std::uint8_t value;
    std::string_view name;
};

constexpr Codepoint kCodepoints[] = {
    {0, "CS0"},   {8, "CS1"},   {10, "AF11"}, {12, "AF12"}, {14, "AF13"}, {16, "CS2"},
    {18, "AF21"}, {20, "AF22"}, {22, "AF23"}, {24, "CS3"},  {26, "AF31"}, {28, "AF32"},
    {30, "AF33"}, {32, "CS4"},  {34, "AF41"}, {36, "AF42"}, {38, "AF43"}, {40, "CS5"},
    {46, "EF"},   {48, "CS6"},  {56, "CS7"},
};

constexpr std::size_t kLeastRange = 3;

/// Returns the length of the run of consecutive values at the beginning.
std::size_t runLength(std::span<const std::uint8_t> values) {
    std::size_t length = 1;
    while (length < values.size() && values[length] == values[length - 1] + 1)
        ++length;
    return length;
}

std::string named(std::uint8_t value) {
    std::string text = std::to_string(value);
    for (const Codepoint& codepoint : kCodepoints)
        if (codepoint.value == value) text.append("(").append(codepoint.name).append(")");
    return text;
}

}  // namespace

std::string dscpText(std::span<const std::uint8_t> values) {
    std::string text;
    while (!values.empty()) {
        if (!text.empty()) text += ',';
        const std::size_t run = runLength(values);
        const bool isRange = run >= kLeastRange;
        if (isRange)
            text.append(std::to_string(values[0]) + '-' + std::to_string(values[run - 1]));
        else
            text += named(values[0]);
        values = values.subspan(isRange ? run : 1);
    }
    return text;
}

}  // namespace QosAgent
