#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"
#include "tests/support/StateTree.h"
#include "tests/support/TraceCapture.h"

namespace QosOc {

using Lines = std::vector<std::string>;

/// The lines that `act` writes, without their timestamps.
template <class Act>
Lines traced(Act act) {
    static const std::regex timestamp(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z )");
    const TestSupport::TraceCapture capture;
    act();
    Lines lines;
    for (const std::string& line : capture.rawLines())
        lines.push_back(std::regex_replace(line, timestamp, ""));
    return lines;
}

/// How a trace line shows an address.
inline std::string addressOf(const void* machine) {
    std::ostringstream out;
    out << std::hex << "0x" << reinterpret_cast<std::uintptr_t>(machine);
    return out.str();
}

/// What stands in front of the body of each line of this library; `line` is N where the source's
/// own number stands.
inline std::string lead(const std::string& function, const std::string& line = "N") {
    return "OpenConfigQosClfStateSm/8 QosOpenConfig/QosOpenConfigClassifierStateSm:" + line + " " +
           function + " ";
}

/// A line of a machine.
inline std::string lineOf(const void* machine, const std::string& function, unsigned line,
                          const std::string& body) {
    return lead(function, std::to_string(line)) + addressOf(machine) + body;
}

/// The lines with N for the number of each line of the source that is not fixed from outside.
inline Lines withoutNumbers(const Lines& lines) {
    static const std::regex number(R"(^(\S+ \S+):[1-9]\d* )");
    Lines without;
    for (const std::string& line : lines)
        without.push_back(std::regex_replace(line, number, "$1:N "));
    return without;
}

/// A state tree, all that is published in it, and the trace handle of the machines.
class StateTest : public ::testing::Test {
protected:
    std::string state() const { return TestSupport::textOf(*root); }

    const StateDir root = State::ClassifiersDir::create();
    TestSupport::StateRecorder heard{root};

private:
    Vex::TraceRegistration handle_{traceHandle};
};

}  // namespace QosOc
