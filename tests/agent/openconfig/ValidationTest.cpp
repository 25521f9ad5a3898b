/// What is printed of the state, held against the public model by a validator, and against what the
/// validator does not look at.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/agent/support/Configurations.h"
#include "tests/agent/support/ConfiguredState.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

namespace fs = std::filesystem;

const fs::path kExamples = OPENCONFIG_EXAMPLES_DIR;
const fs::path kYang = YANG_DIR;

std::string contentOf(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

std::vector<std::string> exampleNames() {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& file : fs::directory_iterator(kExamples, none))
        if (file.path().extension() == ".json") names.push_back(file.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

std::string textAt(const JsonValue& object, std::initializer_list<std::string_view> path) {
    std::optional<JsonValue> at = object;
    for (const std::string_view name : path) {
        const auto member = at->find(name);
        if (!member) return "(no " + std::string(name) + ")";
        at = member->value;
    }
    return std::string(at->text());
}

/// Looks at a printed state for what the validator lets through.
class StateChecker {
public:
    static void check(const std::string& printed) {
        const Json json = std::get<Json>(parseJson(printed));
        const auto qos = json.root().find("openconfig-qos:qos");
        if (!qos) return;
        const auto list = qos->value.find("classifiers")->value.find("classifier");
        std::set<std::string> names;
        for (const JsonValue& classifier : list->value.elements()) {
            EXPECT_TRUE(names.insert(textAt(classifier, {"name"})).second);
            checkClassifier(classifier);
        }
    }

private:
    static void checkClassifier(const JsonValue& classifier) {
        EXPECT_EQ(textAt(classifier, {"state", "name"}), textAt(classifier, {"name"}));
        const auto terms = classifier.find("terms");
        if (!terms) return;
        const bool isIpv6 = textAt(classifier, {"state", "type"}) == "IPV6";
        std::set<std::string> ids;
        for (const JsonValue& term : terms->value.find("term")->value.elements()) {
            EXPECT_TRUE(ids.insert(textAt(term, {"id"})).second);
            EXPECT_EQ(textAt(term, {"state", "id"}), textAt(term, {"id"}));
            if (const auto conditions = term.find("conditions"))
                checkConditions(conditions->value, isIpv6);
        }
    }
    static void checkConditions(const JsonValue& conditions, bool isIpv6) {
        EXPECT_FALSE(conditions.find(isIpv6 ? "ipv4" : "ipv6"));
        const auto state = conditions.find(isIpv6 ? "ipv6" : "ipv4")->value.find("state");
        const auto set = state->value.find("dscp-set");
        EXPECT_NE(state->value.find("dscp").has_value(), set.has_value());
        if (!set) return;
        EXPECT_GT(set->value.size(), 1u);
        std::set<std::uint64_t> values;
        for (const JsonValue& value : set->value.elements())
            EXPECT_TRUE(values.insert(*value.plainNumber()).second);
    }
};

class ValidationTest : public ::testing::Test {
protected:
    /// Empty if the tests can be held against the model.
    static std::string missing() {
        if (!fs::exists(kYang / "openconfig-qos.yang"))
            return "no openconfig-qos.yang in " + kYang.string() + ", see YANG_DIR";
        if (std::system("yanglint --version >/dev/null 2>&1") != 0)
            return "yanglint is not installed";
        return {};
    }
    fs::path file(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }
    /// What the validator has to say against the files; empty if they are valid.
    std::string faults(const std::string& options, const std::vector<fs::path>& files) {
        std::string command = "yanglint -p '" + kYang.string() + "' " + options + " '" +
                              (kYang / "openconfig-qos.yang").string() + "'";
        for (const fs::path& each : files)
            command += " '" + each.string() + "'";
        const fs::path said = folder_ / "said";
        const int status = std::system((command + " >'" + said.string() + "' 2>&1").c_str());
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return {};
        return "status " + std::to_string(status) + "\n" + contentOf(said);
    }

    ConfiguredState db;

private:
    TemporaryFolder folder_;
};

TEST_F(ValidationTest, canTellAnInvalidState) {
    if (const std::string why = missing(); !why.empty()) GTEST_SKIP() << why;
    const auto state = [](const std::string& dscp) {
        return R"({"openconfig-qos:qos":{"classifiers":{"classifier":[{"name":"C","terms":{"term":[)"
               R"({"id":"T","conditions":{"ipv4":{"state":{"dscp":)" +
               dscp + "}}}}]}}]}}}";
    };
    EXPECT_EQ(faults("-t get", {file("good.json", state("63"))}), "");
    EXPECT_NE(faults("-t get", {file("bad.json", state("64"))}), "");
}

TEST_F(ValidationTest, printsAnEmptyStateThatIsValid) {
    if (const std::string why = missing(); !why.empty()) GTEST_SKIP() << why;
    EXPECT_EQ(faults("-t get", {file("state.json", db.openConfigState())}), "");
}

TEST_F(ValidationTest, printsWhatNeedsEscapesAsValid) {
    if (const std::string why = missing(); !why.empty()) GTEST_SKIP() << why;
    const std::string config = documentOf({{"g\"\\:%"},
                                           {{"a:b%\t/~\xc3\xa9", "", {{"\"T\\", {46}, "g\"\\:%"}}}},
                                           {{"a:b%\t/~\xc3\xa9", ""}}});
    ASSERT_EQ(db.configure(config), "");
    EXPECT_EQ(faults("-t config", {file("config.json", config)}), "");
    const fs::path state = file("state.json", db.openConfigState());
    EXPECT_EQ(faults("-t get", {state}), "");
    EXPECT_EQ(faults("-m -t data", {file("config.json", config), state}), "");
}

TEST_F(ValidationTest, printsAValidStateAfterClassifiersChangedAndWent) {
    if (const std::string why = missing(); !why.empty()) GTEST_SKIP() << why;
    const ConfigurationPlan first{
        {"g", "h"}, {{"C", "IPV4", {{"T", {1, 2}, "g"}}}, {"D", "IPV6", {}}}, {{"C", "D"}}};
    const std::string config = documentOf(first);
    ASSERT_EQ(db.configure(config), "");
    ASSERT_EQ(db.configure(documentOf({{"h"}, {{"C", "IPV4", {{"T", {3}, "h"}}}}, {{"C", ""}}})),
              "");
    const fs::path state = file("state.json", db.openConfigState());
    EXPECT_EQ(faults("-t get", {state}), "");
    EXPECT_EQ(faults("-m -t data", {file("config.json", config), state}), "");
    StateChecker::check(db.openConfigState());
}

class BigValidationTest : public ValidationTest,
                          public ::testing::WithParamInterface<std::array<unsigned, 3>> {};

TEST_P(BigValidationTest, printsAStateThatIsValid) {
    const auto [classifiers, terms, values] = GetParam();
    ASSERT_EQ(db.configure(documentOf(bigConfiguration(classifiers, terms, values))), "");
    ASSERT_EQ(db.terms().size(), classifiers * terms);
    StateChecker::check(db.openConfigState());
    if (const std::string why = missing(); !why.empty()) GTEST_SKIP() << why;
    EXPECT_EQ(faults("-t get", {file("state.json", db.openConfigState())}), "");
}

INSTANTIATE_TEST_SUITE_P(Sizes, BigValidationTest,
                         ::testing::Values(std::array{500u, 8u, 8u}, std::array{64u, 64u, 1u}));

/// Runs for each document of the examples folder, and once with no name where that is missing.
class ExampleTest : public ValidationTest, public ::testing::WithParamInterface<std::string> {
protected:
    std::string missingExample() const {
        return GetParam().empty()
                   ? "no documents in " + kExamples.string() + ", see OPENCONFIG_EXAMPLES_DIR"
                   : "";
    }
    /// Configures what the example says.
    OpenConfigDocument given() {
        const std::string text = contentOf(kExamples / GetParam());
        EXPECT_EQ(db.configure(text), "");
        const Json json = std::get<Json>(parseJson(text));
        OpenConfigReader reader(db.database.interner());
        return std::get<OpenConfigDocument>(reader.read(json.root()));
    }
    static std::string expectedText(const ConfiguredTerm& term, QosOc::Classifier::Type family) {
        const auto values = term.dscpValues();
        std::string text(term.id.view());
        if (!values.empty())
            text += family == QosOc::Classifier::Type::IPV6 ? " when ipv6 " : " when ipv4 ";
        for (std::size_t place = 0; place < values.size(); ++place)
            text += (place > 0           ? ", "
                     : values.size() > 1 ? "["
                                         : "") +
                    std::to_string(values[place]);
        if (values.size() > 1) text += "]";
        if (!term.targetGroup.empty()) text.append(" to ").append(term.targetGroup.view());
        return text;
    }
};

TEST_P(ExampleTest, isShownAsConfigured) {
    if (const std::string why = missingExample(); !why.empty()) GTEST_SKIP() << why;
    std::map<std::string, std::string> expected;
    for (const ConfiguredClassifier& classifier : given().classifiers)
        for (const ConfiguredTerm& term : classifier.terms)
            expected[ConfiguredState::keyOf(classifier.name, term.id)] =
                expectedText(term, classifier.family());
    EXPECT_EQ(db.terms(), expected);
    StateChecker::check(db.openConfigState());
}

TEST_P(ExampleTest, publishesNothingTheSecondTimeAndGoesWithoutTrace) {
    if (const std::string why = missingExample(); !why.empty()) GTEST_SKIP() << why;
    given();
    ChangeRecorder recorder(db.database);
    given();
    EXPECT_EQ(recorder.take(), Changes{});
    ASSERT_EQ(db.configure("{}"), "");
    EXPECT_TRUE(db.terms().empty());
    EXPECT_EQ(db.at("qos/openconfig/config/classifiers"), "{}");
}

TEST_P(ExampleTest, printsAStateThatIsValidAloneAndWithItsConfiguration) {
    if (const std::string why = missingExample(); !why.empty()) GTEST_SKIP() << why;
    if (const std::string why = missing(); !why.empty()) GTEST_SKIP() << why;
    given();
    const fs::path state = file("state.json", db.openConfigState());
    EXPECT_EQ(faults("-t get", {state}), "");
    EXPECT_EQ(faults("-m -t data", {kExamples / GetParam(), state}), "");
}

std::vector<std::string> examplesOrNone() {
    const auto names = exampleNames();
    return names.empty() ? std::vector<std::string>{""} : names;
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleTest, ::testing::ValuesIn(examplesOrNone()),
                         [](const auto& name) {
                             std::string shown = name.param.empty() ? "none" : name.param;
                             std::replace_if(
                                 shown.begin(), shown.end(),
                                 [](unsigned char c) { return !std::isalnum(c); }, '_');
                             return shown;
                         });

}  // namespace
}  // namespace QosAgent
