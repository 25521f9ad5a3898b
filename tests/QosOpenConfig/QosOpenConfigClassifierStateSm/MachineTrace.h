#pragma once

#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Vex/TypeRecord.h"
#include "tests/support/TraceCapture.h"

/// Trace lines and type records of machines, in a form that tests compare.
namespace QosOc {

using Lines = std::vector<std::string>;
/// What the address of a machine is called in a line.
using Names = std::vector<std::pair<const void*, std::string>>;

inline constexpr const char* kSourceText = "QosOpenConfig/QosOpenConfigClassifierStateSm";
inline constexpr const char* kPmapSourceText = "/src/QosOpenConfig/QosOpenConfigClassifierStateSm";

/// The line number of a trace point without a fixed one is `own` when it stands where the trace
/// point does, in the source of the class.
inline std::string ownLine(const std::string& type, const std::string& number,
                           const std::string& function) {
    if (!std::regex_match(type, std::regex("Pmap.*|Classifier.*"))) return number;
    std::ifstream file(kSourceText + ("/" + type) + ".cpp");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::size_t at = 0;
    for (unsigned long line = 1; line != std::stoul(number) && at != text.npos; ++line)
        at = text.find('\n', at) + 1;
    const std::size_t start = text.rfind(';', at) + 1;
    const std::string statement = text.substr(start, text.find(';', at + 1) - start);
    return statement.find("racePoint") != statement.npos &&
                   statement.find('"' + function + '"') != statement.npos
               ? "own"
               : number;
}

/// The captured lines: `SOURCE:LINE FUNCTION NAME BODY` of machines (or of those of one type only),
/// NAME that of its address; `FUNCTION ARGUMENTS` of the state writer.
inline Lines linesOf(const TestSupport::TraceCapture& capture, const Names& names,
                     const std::string& onlyType = "") {
    static const std::regex machineLine(
        R"(\S+ OpenConfigQosClfStateSm/8 (\S+):(\d+) (\S+) (0x[0-9a-f]+)(\S+ QosOc::(\w+)::.*))");
    static const std::regex writerLine(
        R"(\S+ OpenConfigQosClfStateSm/8 (\S+):(\d+) (\S+) void QosOc::\w+\([^)]*\)(.*))");
    Lines lines;
    std::smatch match;
    for (const std::string& line : capture.rawLines()) {
        if (std::regex_match(line, match, machineLine)) {
            if (!onlyType.empty() && match[6] != onlyType) continue;
            std::string name = match[4];
            for (const auto& [machine, called] : names)
                if (std::stoull(name, nullptr, 16) == reinterpret_cast<std::uintptr_t>(machine)) {
                    name = called;
                    break;
                }
            lines.push_back(match[1].str() + ":" + ownLine(match[6], match[2], match[3]) + " " +
                            match[3].str() + " " + name + " " + match[5].str());
        } else if (onlyType.empty()) {
            lines.push_back(
                std::regex_match(line, match, writerLine) ? match[3].str() + match[4].str() : line);
        }
    }
    return lines;
}

/// A line of a policy-map machine as `linesOf` gives it. `function` is the short name.
inline std::string pmapLine(const std::string& function, const std::string& name,
                            const std::string& body) {
    return std::string(kPmapSourceText) + ":own " + function + " " + name + " " + body;
}
/// A line of any other machine. `line` is a number, or `own`.
inline std::string machineLine(const std::string& line, const std::string& function,
                               const std::string& name, const std::string& body) {
    return std::string(kSourceText) + ":" + line + " " + function + " " + name + " " + body;
}

/// The attributes of a type in words: `pmapStatus 1 input watched Qos::PolicyMapStatus`,
/// `pmapStatusSm 6 child by key QosOc::PmapStatusSm`.
inline Lines attributesOf(const Vex::TypeRecord& type) {
    static constexpr std::string_view kRoles[] = {"plain",   "key",   "outerKey",
                                                  "keyCopy", "input", "child"};
    Lines lines;
    for (const Vex::AttributeRecord& attribute : type.attributes) {
        std::string line = std::string(attribute.name) + " " + std::to_string(attribute.id) + " " +
                           std::string(kRoles[static_cast<std::size_t>(attribute.role)]);
        if (attribute.isWatched) line += " watched";
        if (attribute.collection != nullptr) line += " by key";
        if (attribute.type->record != nullptr)
            line += " " + std::string(attribute.type->record->fullName);
        lines.push_back(line);
    }
    return lines;
}

inline Vex::TypedNode* machineIn(const Vex::Value& value) {
    if (value.isAbsent()) return nullptr;
    return const_cast<Vex::TypedNode*>(value.as<Vex::NodeRef>().get());
}
/// The child machine under that name; null if there is none.
template <class Sm>
Sm* childOf(const Vex::TypedNode& machine, std::string_view attribute) {
    const auto* record = Vex::attributeNamed(machine.typeData(), attribute);
    return static_cast<Sm*>(machineIn(record->read(&machine)));
}
/// The child machine under a key of that collection; null if there is none.
template <class Sm>
Sm* childOf(const Vex::TypedNode& machine, std::string_view attribute, const Vex::Value& key) {
    const auto* record = Vex::attributeNamed(machine.typeData(), attribute);
    return static_cast<Sm*>(machineIn(record->collection->get(&machine, key)));
}

}  // namespace QosOc
