#pragma once

#include <array>
#include <string>

#include "tests/agent/support/ConfigurationChance.h"
#include "tests/agent/support/Configurations.h"

namespace QosAgent {

/// Makes up change-stream lines about the few names that `Chance` configures: whole configurations,
/// edits of them, and lines of others that meddle with what the configuration made.
class RandomLines {
public:
    explicit RandomLines(unsigned seed) : chance_(seed) {}

    std::string next() {
        switch (chance_.below(8)) {
            case 0:
                return R"({"openconfig":)" + documentOf(chance_.configuration()) + "}";
            case 1:
            case 2:
                return edit();
            case 3:
                return meddle(R"({"delete":")", "");
            case 4:
                return meddle(R"({"replace":")", "value");
            default:
                return meddle(R"({"update":")", "value");
        }
    }

private:
    std::string edit() {
        const std::string classifier =
            std::string("/qos/classifiers/classifier[name=") + chance_.of(kNames) + "]";
        const std::string term = chance_.of(kTerms);
        switch (chance_.below(4)) {
            case 0:
                return R"({"configure":[{"delete":")" + classifier + "\"}]}";
            case 1:
                return R"({"configure":[{"delete":")" + classifier + "/terms/term[id=" + term +
                       "]\"}]}";
            case 2:
                return R"({"configure":[{"update":"/qos/forwarding-groups/forwarding-group[name=g)" +
                       std::to_string(chance_.below(6)) + "]\",\"value\":{}}]}";
            default:
                return R"({"configure":[{"update":")" + classifier + "/terms/term[id=" + term +
                       R"(]","value":{"config":{"id":")" + term +
                       R"("},"conditions":{"ipv4":{"config":{"dscp":)" +
                       std::to_string(chance_.below(64)) + "}}}}}]}";
        }
    }
    std::string meddle(const std::string& verb, const std::string& value) {
        const auto& [path, text] = chance_.of(kPlaces);
        const std::string name =
            "openconfig:" + std::string(chance_.of(kNames)) + ":" + chance_.of(kTerms);
        std::string line = verb + with(path, name, chance_.of(kNames)) + '"';
        if (!value.empty()) line += R"(,"value":)" + with(text, name, chance_.of(kNames));
        return line + '}';
    }
    /// The text with names for `@` and `#`.
    static std::string with(std::string text, const std::string& object, const std::string& name) {
        for (std::size_t at = 0; (at = text.find_first_of("@#", at)) != std::string::npos;) {
            const std::string& put = text[at] == '@' ? object : name;
            text.replace(at, 1, put);
            at += put.size();
        }
        return text;
    }

    struct Place {
        std::string path;
        std::string value;
    };
    static inline const std::array<std::string, 5> kNames{"a", "b", "c", "d", "x~1y z"};
    static inline const std::array<std::string, 4> kTerms{"1", "2", "3", "4"};
    static inline const std::array<Place, 14> kPlaces{{
        {"qos/status/cmapTypeStatus/mapQos/cmapStatus/@", "{}"},
        {"qos/status/cmapTypeStatus/mapQos/cmapStatus/@/match/matchIpAccessGroup", "\"@\""},
        {"qos/status/cmapTypeStatus/mapPbr/cmapStatus/#", R"({"match":{"matchVlan":"7"}})"},
        {"qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:a:", R"({"version":7})"},
        {"qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:a:/classes/@",
         R"({"action":{"4":2,"9":1}})"},
        {"qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:a:/classes/@/action/4", "3"},
        {"acl/config/cli/aclTypeConfig/ipv4/aclConfig/@", "null"},
        {"acl/config/cli/aclTypeConfig/ipv4/aclConfig/@",
         R"({"aclSubConfig":{"ruleIdBySequence":{"10":5},"ipRuleById":{"5":{"filter":)"
         R"({"dscpValue":9,"dscpEnabled":true}}}}})"},
        {"acl/config/cli/aclTypeConfig/ipv4/aclConfig/@/aclSubConfig", "{}"},
        {"acl/config/cli/aclTypeConfig/ipv4/aclConfig/@/aclSubConfig/ruleIdBySequence/20", "20"},
        {"qos/input/config/cli/forwardingGroupNameToTcMap/tc/g1", "5"},
        {"qos/openconfig/config/classifiers/classifier/#", R"({"config":{"type":"IPV6"}})"},
        {"qos/openconfig/config/classifiers/classifier/#/terms/term/2",
         R"({"conditions":{"ipv4":{"dscp":4}}})"},
        {"qos/openconfig/config/classifiers/classifier/#/terms/term/2/actions",
         R"({"targetGroup":"g1"})"},
    }};

    Chance chance_;
};

}  // namespace QosAgent
