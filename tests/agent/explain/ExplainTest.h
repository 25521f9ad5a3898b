#pragma once

#include <gtest/gtest.h>

#include <string>

#include "agent/explain/Explainer.h"
#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/ConfiguredState.h"

namespace QosAgent {

inline std::string codesOf(const FindingRows& findings) {
    std::string codes;
    for (const Finding* finding : findings)
        codes.append(codes.empty() ? "" : " ").append(finding->code);
    return codes;
}

/// The classifier `edge` with the term `voice`, configured, attached, and in the state as
/// configured.
class ExplainTest : public ::testing::Test {
protected:
    static ConfigurationPlan edge() {
        return {{"voice", "gold"}, {{"edge", "IPV4", {{"voice", {46}, "voice"}}}}, {{"edge", ""}}};
    }
    void SetUp() override { ASSERT_EQ(db.configure(documentOf(edge())), ""); }

    void update(const std::string& path, const std::string& value) {
        ASSERT_EQ(db.update(path, value), "") << path;
    }
    void remove(const std::string& path) { ASSERT_EQ(db.remove(path), "") << path; }
    /// Changes the class of a term in a policy map, and has the policy map read again.
    void classIs(const std::string& action, const std::string& pmapName = "openconfig:edge:") {
        const std::string value = R"({"version":)" + std::to_string(++version_) +
                                  R"(,"classes":{"openconfig:edge:voice":{"action":)" + action +
                                  "}}}";
        update(kPmaps + pmapName, value);
    }
    void pmapIsReadAgain() {
        update(kPmaps + "openconfig:edge:/version", std::to_string(++version_));
    }

    std::string termFindings(const std::string& classifier = "edge",
                             const std::string& term = "voice") {
        const Explanation explanation = explainer.explain({classifier, term});
        return explanation.terms.empty() ? "unknown" : codesOf(explanation.terms[0].findings);
    }
    std::string classifierFindings(const std::string& classifier = "edge") {
        return codesOf(explainer.explain({classifier, {}}).findings);
    }
    std::string explained(const Question& question) {
        std::string text;
        JsonWriter writer(text);
        writeExplanation(writer, explainer.explain(question));
        return text;
    }
    std::string differences() {
        std::string text;
        JsonWriter writer(text);
        explainer.writeDifferences(writer);
        return text;
    }

    inline static const std::string kCmaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus/";
    inline static const std::string kPmaps = "qos/status/pmapTypeStatus/mapQos/pmapStatus/";
    inline static const std::string kLists = "acl/config/cli/aclTypeConfig/ipv4/aclConfig/";
    inline static const std::string kConfigured = "qos/openconfig/config/classifiers/classifier/";
    inline static const std::string kObj = "openconfig:edge:voice";

    ConfiguredState db;
    Explainer explainer{db.database};

private:
    unsigned version_ = 1;
};

}  // namespace QosAgent
