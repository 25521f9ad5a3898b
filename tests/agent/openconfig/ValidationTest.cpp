/// Holds what is printed of the state against the model, by a validator, and against what the
/// validator does not look at. The model is the project's own, of exactly what it prints and reads,
/// and the public one where that is given.
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

const fs::path kOwnExamples = OWN_EXAMPLES_DIR;
const fs::path kPublicExamples = OPENCONFIG_EXAMPLES_DIR;
const fs::path kOwnYang = OWN_YANG_DIR;
const fs::path kPublicYang = YANG_DIR;
using Folders = std::vector<fs::path>;

std::string contentOf(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

bool hasPublicModel() {
    return fs::exists(kPublicYang / "openconfig-qos.yang");
}

/// The folders of all models that are there.
Folders models() {
    return hasPublicModel() ? Folders{kOwnYang, kPublicYang} : Folders{kOwnYang};
}

/// The configurations of the project's examples, and the published ones that are there.
std::vector<fs::path> examples() {
    std::vector<fs::path> files;
    std::error_code none;
    for (const fs::path& folder : {kOwnExamples, kPublicExamples})
        for (const auto& file : fs::directory_iterator(folder, none))
            if (file.path().extension() == ".json") files.push_back(file.path());
    std::sort(files.begin(), files.end());
    return files;
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
    void SetUp() override {
        ASSERT_EQ(std::system("yanglint --version >/dev/null 2>&1"), 0)
            << "yanglint is not installed";
    }
    fs::path file(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }
    /// What the validator has to say against the files; empty if the model allows them.
    std::string faultsBy(const fs::path& model, const std::string& options,
                         const std::vector<fs::path>& files) {
        std::string command = "yanglint -p '" + model.string() + "' " + options + " '" +
                              (model / "openconfig-qos.yang").string() + "'";
        for (const fs::path& each : files)
            command += " '" + each.string() + "'";
        const fs::path said = folder_ / "said";
        const int status = std::system((command + " >'" + said.string() + "' 2>&1").c_str());
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return {};
        return command + ": status " + std::to_string(status) + "\n" + contentOf(said);
    }
    /// What the validator has to say by any model; empty if all allow the files.
    std::string faults(const std::string& options, const std::vector<fs::path>& files) {
        std::string all;
        for (const fs::path& model : models())
            all += faultsBy(model, options, files);
        return all;
    }

    ConfiguredState db;

private:
    TemporaryFolder folder_;
};

/// A state with one classifier, which has one IPv4 term.
std::string stateOf(const std::string& type, const std::string& conditions,
                    const std::string& group) {
    return R"({"openconfig-qos:qos":{"classifiers":{"classifier":[{"name":"C","state":{"name":"C",)"
           R"("type":")" +
           type + R"("},"terms":{"term":[{"id":"T","state":{"id":"T"},"conditions":{"ipv4":{)" +
           R"("state":{)" + conditions + R"(}}},"actions":{"state":{"target-group":)" + group +
           "}}}]}}]}}}";
}

TEST_F(ValidationTest, canTellAnInvalidState) {
    const std::vector<std::string> wrong{
        stateOf("IPV5", R"("dscp":46)", R"("g")"),
        stateOf("IPV4", R"("dscp":64)", R"("g")"),
        stateOf("IPV4", R"("dscp":"46")", R"("g")"),
        stateOf("IPV4", R"("dscp-set":[8,64])", R"("g")"),
        stateOf("IPV4", R"("dscp-sets":[8])", R"("g")"),
        stateOf("IPV4", R"("dscp":46)", "1"),
        R"({"openconfig-qos:qos":{"classifiers":{"classifier":[{"state":{"name":"C"}}]}}})",
    };
    for (const fs::path& model : models()) {
        const auto faultsOf = [&](const std::string& state) {
            return faultsBy(model, "-t get", {file("state.json", state)});
        };
        EXPECT_EQ(faultsOf(stateOf("IPV4", R"("dscp":63)", R"("g")")), "");
        EXPECT_EQ(faultsOf(stateOf("ETHERNET", R"("dscp-set":[0,63])", R"("g")")), "");
        for (const std::string& state : wrong)
            EXPECT_NE(faultsOf(state), "") << model << ": " << state;
    }
}

TEST_F(ValidationTest, canTellAnInvalidConfiguration) {
    const ConfigurationPlan plan{{"g"}, {{"C", "IPV4", {{"T", {46}, "g"}}}}, {{"C", ""}}};
    const std::string good = documentOf(plan);
    const auto with = [&](const std::string& from, const std::string& to) {
        std::string text = good;
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from << " in " << good;
        return at == std::string::npos ? text : text.replace(at, from.size(), to);
    };
    const std::vector<std::string> wrong{with("46", "64"),
                                         with("target-group\":\"g", "target-group\":\"h"),
                                         with("\"name\":\"C\"", "\"name\":\"D\"")};
    for (const fs::path& model : models()) {
        EXPECT_EQ(faultsBy(model, "-t config", {file("config.json", good)}), "");
        for (const std::string& text : wrong)
            EXPECT_NE(faultsBy(model, "-t config", {file("config.json", text)}), "")
                << model << ": " << text;
    }
}

TEST_F(ValidationTest, printsAnEmptyStateThatIsValid) {
    EXPECT_EQ(faults("-t get", {file("state.json", db.openConfigState())}), "");
}

TEST_F(ValidationTest, printsWhatNeedsEscapesAsValid) {
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
    EXPECT_EQ(faults("-t get", {file("state.json", db.openConfigState())}), "");
}

INSTANTIATE_TEST_SUITE_P(Sizes, BigValidationTest,
                         ::testing::Values(std::array{500u, 8u, 8u}, std::array{64u, 64u, 1u}));

/// Runs for each example.
class ExampleTest : public ValidationTest, public ::testing::WithParamInterface<fs::path> {
protected:
    /// Configures what the example says.
    OpenConfigDocument given() {
        const std::string text = contentOf(GetParam());
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
    std::map<std::string, std::string> expected;
    for (const auto& classifier : given().classifiers.inOrder())
        for (const auto& term : classifier->terms.inOrder())
            expected[ConfiguredState::keyOf(classifier->name, term->id)] =
                expectedText(*term, classifier->family());
    EXPECT_EQ(db.terms(), expected);
    StateChecker::check(db.openConfigState());
}

TEST_P(ExampleTest, publishesNothingTheSecondTimeAndGoesWithoutTrace) {
    given();
    ChangeRecorder recorder(db.database);
    given();
    EXPECT_EQ(recorder.take(), Changes{});
    ASSERT_EQ(db.configure("{}"), "");
    EXPECT_TRUE(db.terms().empty());
    EXPECT_EQ(db.at("qos/openconfig/config/classifiers"), "{}");
}

TEST_P(ExampleTest, printsAStateThatIsValidAloneAndWithItsConfiguration) {
    given();
    const fs::path state = file("state.json", db.openConfigState());
    EXPECT_EQ(faults("-t get", {state}), "");
    // Published configurations hold more than the project's own model does.
    const bool isOwn = GetParam().parent_path() == kOwnExamples;
    if (!isOwn && !hasPublicModel())
        GTEST_SKIP() << "no openconfig-qos.yang in " << kPublicYang << ", see YANG_DIR";
    for (const fs::path& model : isOwn ? models() : Folders{kPublicYang})
        EXPECT_EQ(faultsBy(model, "-m -t data", {GetParam(), state}), "");
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleTest, ::testing::ValuesIn(examples()),
                         [](const auto& file) {
                             std::string shown = file.param.filename();
                             std::replace_if(
                                 shown.begin(), shown.end(),
                                 [](unsigned char c) { return !std::isalnum(c); }, '_');
                             return shown;
                         });

}  // namespace
}  // namespace QosAgent
