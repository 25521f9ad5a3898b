#pragma once

#include <poll.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/agent/support/Program.h"

namespace QosAgent {

inline const char* const kDocument = R"({"qos/status":{"cmapTypeStatus":{"mapQos":{"cmapStatus":{
  "voice":{"match":{"matchIpv6AccessGroup":"voice6"}}}}}}})";
inline const char* const kVoice =
    R"({"classifier":{"voice":{"state":{"name":"voice","type":"IPV6"}}}})";
inline const std::string kCmaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus/";
inline const std::string kState = "qos/openconfig/state/classifiers/classifier/";

class RunTest : public ProgramTest {
protected:
    void expectRefused(const std::vector<std::string>& arguments, const std::string& line) {
        EXPECT_EQ(run(arguments), (Ended{2, "", line + '\n'}));
    }
    std::string document() { return file("d.json", kDocument); }
    /// What comes up to a line's end, within ten seconds.
    static std::string readLine(int fd) {
        std::string line;
        pollfd waited{fd, POLLIN, 0};
        char byte = 0;
        while (!line.ends_with('\n') && ::poll(&waited, 1, 10'000) > 0)
            if (::read(fd, &byte, 1) == 1) line += byte;
        return line;
    }
};

}  // namespace QosAgent
