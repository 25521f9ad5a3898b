#include <random>

#include "agent/explain/Differences.h"
#include "tests/agent/explain/ExplainTest.h"
#include "tests/support/TraceCapture.h"

namespace QosAgent {
namespace {

using QosOc::Classifier::Type;

bool operator==(const MadeFromTerm& a, const MadeFromTerm& b) {
    return a.hasClassMap == b.hasClassMap && a.hasIpv4List == b.hasIpv4List &&
           a.hasIpv6List == b.hasIpv6List && a.policyMaps == b.policyMaps;
}

bool isEqual(const NameIndex& a, const NameIndex& b) {
    return std::equal(a.classifiers().begin(), a.classifiers().end(), b.classifiers().begin(),
                      b.classifiers().end(), [](const auto& left, const auto& right) {
                          const MadeFromClassifier& x = left.second;
                          const MadeFromClassifier& y = right.second;
                          return left.first == right.first &&
                                 x.ipv4PolicyMaps == y.ipv4PolicyMaps &&
                                 x.ipv6PolicyMaps == y.ipv6PolicyMaps &&
                                 std::equal(x.terms.begin(), x.terms.end(), y.terms.begin(),
                                            y.terms.end(), [](const auto& l, const auto& r) {
                                                return l.first == r.first && l.second == r.second;
                                            });
                      });
}

/// Draws configurations, and lines that meddle with what they made.
class Meddler {
public:
    explicit Meddler(unsigned seed) : random_(seed) {}

    unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
    ConfigurationPlan plan() {
        ConfigurationPlan plan{{"g0", "g1", "g2"}, {}, {}};
        for (unsigned c = 0; c < 3; ++c) {
            ClassifierPlan classifier{name(c), kTypes[below(3)], {}};
            for (unsigned t = below(4); t > 0; --t)
                classifier.terms.push_back(term(t));
            if (below(2) == 0)
                plan.interfaces.push_back(classifier.isIpv6() ? AttachmentPlan{"", name(c)}
                                                              : AttachmentPlan{name(c), ""});
            plan.classifiers.push_back(classifier);
        }
        return plan;
    }
    std::string line() {
        const std::string c = name(below(4));
        const std::string obj = "openconfig:" + c + ":t" + std::to_string(1 + below(3));
        const std::string list = below(2) == 0 ? "ipv4" : "ipv6";
        const std::string lists = "acl/config/cli/aclTypeConfig/" + list + "/aclConfig/";
        const std::string cmaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus/";
        const std::string pmaps = "qos/status/pmapTypeStatus/mapQos/pmapStatus/";
        const std::string pmap =
            below(2) == 0 ? "openconfig:" + c + ":" : "openconfig:" + name(below(3)) + ":" + c;
        const std::string number = std::to_string(below(4));
        switch (below(16)) {
            case 0:
                return remove(cmaps + obj);
            case 1:
                return update(cmaps + obj + "/match/matchIpAccessGroup", "\"\"");
            case 2:
                return remove(lists + obj);
            case 3:
                return "{\"replace\":\"" + lists + obj + "\",\"value\":null}";
            case 4:
                return update(lists + obj + "/aclSubConfig", rulesWith(number));
            case 5:
                return remove(lists + obj + "/aclSubConfig");
            case 6:
                return remove(lists + obj + "/aclSubConfig/ruleIdBySequence/10");
            case 7:
                return remove(pmaps + pmap);
            case 8:
                return remove(pmaps + pmap + "/classes/" + obj);
            case 9:
                return update(pmaps + pmap, R"({"version":)" + std::to_string(++version_) +
                                                R"(,"classes":{")" + obj + R"(":{"action":{"4":)" +
                                                number + "}}}}");
            case 10:
                return update("qos/input/config/cli/forwardingGroupNameToTcMap/tc/g" + number,
                              std::to_string(below(5)));
            case 11:
                return update(kConfigured + c + "/terms/term/t1/actions/targetGroup",
                              "\"g" + number + "\"");
            case 12:
                return touch(lists + obj + "/aclSubConfig/ruleIdBySequence/10");
            case 13:
                return touch(kConfigured + c + "/terms/term/t1");
            case 14:
                return update(cmaps + c + "/match/matchIpv6AccessGroup", "\"\"");
            default:
                return remove(below(4) == 0 ? "qos/status/pmapTypeStatus/mapQos" : cmaps + c);
        }
    }

private:
    static std::string name(unsigned number) { return "c" + std::to_string(number); }
    static std::string update(const std::string& path, const std::string& value) {
        return "{\"update\":\"" + path + "\",\"value\":" + value + "}";
    }
    static std::string touch(const std::string& path) { return "{\"touch\":\"" + path + "\"}"; }
    static std::string remove(const std::string& path) { return "{\"delete\":\"" + path + "\"}"; }
    static std::string rulesWith(const std::string& dscp) {
        return R"({"ruleIdBySequence":{"5":5},"ipRuleById":{"5":{"filter":{"dscpValue":)" + dscp +
               R"(,"dscpEnabled":true}}},"ip6RuleById":{"5":)"
               R"({"filter":{"trafficClass":8,"trafficClassMask":255}}}})";
    }
    TermPlan term(unsigned number) {
        TermPlan term{"t" + std::to_string(number), {}};
        for (unsigned dscp = below(4); dscp > 0; --dscp)
            term.dscp.push_back(dscp * 7);
        if (below(2) == 0) term.group = "g" + std::to_string(below(3));
        return term;
    }

    static constexpr const char* kTypes[] = {"IPV4", "IPV6", ""};
    inline static const std::string kConfigured = "qos/openconfig/config/classifiers/classifier/";
    std::mt19937 random_;
    unsigned version_ = 10;
};

/// Compares what is configured with the state, in the plainest way.
class Comparison {
public:
    explicit Comparison(const Database& database)
        : configured_(static_cast<const QosOc::Config::ClassifiersDir&>(
              *database.subtreeAt("qos/openconfig/config/classifiers")->root)),
          state_(static_cast<const QosOc::State::ClassifiersDir&>(*database.stateTree().root)) {}

    /// The names of classifiers and terms, `C` and `C/T`, that are not as configured.
    std::set<std::string> differing() const {
        std::set<std::string> names;
        for (const auto& each : configured_.classifier()) {
            const std::string name(each.key.view());
            const auto* state = state_.classifier(each.key);
            const Type family = each.value->config().type.value_or(Type::IPV4);
            if (state == nullptr || state->state().type != family) names.insert(name);
            if (!each.value->terms()) continue;
            for (const auto& term : each.value->terms()->term())
                if (!isApplied(term.value, stored(state, term.key), family))
                    names.insert(name + '/' + std::string(term.key.view()));
        }
        return names;
    }

private:
    static const QosOc::State::Term* stored(const QosOc::State::Classifier* classifier,
                                            const Orin::String& id) {
        return classifier == nullptr || classifier->terms() == nullptr
                   ? nullptr
                   : classifier->terms()->term(id);
    }
    static std::vector<int> values(const QosOc::Config::Term& term, Type family) {
        std::vector<int> values;
        if (!term.conditions) return values;
        const auto& of = family == Type::IPV6 ? term.conditions->ipv6 : term.conditions->ipv4;
        if (of.dscp) values.push_back(*of.dscp);
        values.insert(values.end(), of.dscpSet.begin(), of.dscpSet.end());
        return values;
    }
    static bool isApplied(const QosOc::Config::Term& configured, const QosOc::State::Term* state,
                          Type family) {
        if (state == nullptr) return false;
        const std::vector<int> wanted = values(configured, family);
        if (!wanted.empty() && values(*state, family) != wanted) return false;
        return !configured.actions || configured.actions->targetGroup.empty() ||
               (state->actions && state->actions->targetGroup == configured.actions->targetGroup);
    }

    const QosOc::Config::ClassifiersDir& configured_;
    const QosOc::State::ClassifiersDir& state_;
};

/// What `differences` printed of a classifier or term.
struct Entry {
    std::set<std::string> members;  ///< that differ
    std::set<std::string> findings;
};

Entry entryOf(const JsonValue& thing) {
    Entry entry;
    for (const JsonMember& member : thing.members())
        if (member.key == "findings")
            for (const JsonValue& code : member.value.elements())
                entry.findings.emplace(code.text());
        else if (member.key != "terms")
            entry.members.emplace(member.key);
    return entry;
}

/// By `C` or `C/T`.
std::map<std::string, Entry> entriesIn(const std::string& text) {
    std::map<std::string, Entry> entries;
    const JsonResult json = parseJson(text);
    for (const JsonMember& classifier : std::get<Json>(json).root().members()) {
        const std::string name(classifier.key);
        Entry own = entryOf(classifier.value);
        if (!own.members.empty() || !own.findings.empty()) entries.emplace(name, std::move(own));
        for (const JsonMember& member : classifier.value.members())
            if (member.key == "terms")
                for (const JsonMember& term : member.value.members())
                    entries.emplace(name + '/' + std::string(term.key), entryOf(term.value));
    }
    return entries;
}

/// The findings that explain why a member differs.
const std::map<std::string, std::set<std::string>> kExplanations{
    {"type", {"not-in-state", "first-type"}},
    {"dscp",
     {"not-in-state", "no-access-list", "list-not-configured", "no-counting-rule",
      "access-list-decides"}},
    {"target-group", {"not-in-state", "policy-map-decides", "group-not-written"}},
};

bool isExplained(const std::string& member, const std::set<std::string>& findings) {
    const std::set<std::string>& explaining = kExplanations.at(member);
    return std::any_of(findings.begin(), findings.end(),
                       [&](const std::string& code) { return explaining.count(code) != 0; });
}

class DifferencesTest : public ExplainTest {
protected:
    void expectDifferencesAreTrue() {
        const std::string text = differences();
        const auto entries = entriesIn(text);
        const std::set<std::string> differing = Comparison(db.database).differing();
        for (const std::string& name : differing)
            EXPECT_EQ(entries.count(name), 1u) << name << " is missing in " << text;
        for (const auto& [name, entry] : entries) {
            EXPECT_NE(entry.findings, std::set<std::string>()) << name << " in " << text;
            for (const std::string& member : entry.members)
                EXPECT_TRUE(isExplained(member, entry.findings)) << name << " in " << text;
            // A group that is not configured differs only where a policy map sets one.
            if (entry.findings.count("policy-map-decides") == 1) continue;
            EXPECT_EQ(differing.count(name), 1u) << name << " does not differ: " << text;
        }
    }
    void expectPrintingChangesNothing() {
        const TestSupport::TraceCapture traces;
        EXPECT_EQ(db.apply(R"({"print":"differences"})"), "");
        EXPECT_EQ(db.apply(R"({"print":{"explain":{"classifier":"c1"}}})"), "");
        EXPECT_EQ(recorder_->take(), Changes{});
        EXPECT_EQ(traces.rawLines(), std::vector<std::string>{});
    }

    std::unique_ptr<ChangeRecorder> recorder_;
};

TEST_F(DifferencesTest, areTrueWhateverIsConfiguredAndWhoeverMeddles) {
    Meddler meddler(17);
    const NameIndex index(db.database);
    for (unsigned round = 0; round < 40; ++round) {
        ASSERT_EQ(db.configure(documentOf(meddler.plan())), "");
        for (unsigned line = 0; line < 25; ++line) {
            const std::string meddling = meddler.line();
            SCOPED_TRACE(meddling);
            ASSERT_EQ(db.apply(meddling), "");
            ASSERT_TRUE(isEqual(index, NameIndex(db.database)));
            ASSERT_NO_FATAL_FAILURE(expectDifferencesAreTrue());
            if (HasFailure()) return;
        }
        recorder_ = std::make_unique<ChangeRecorder>(db.database);
        expectPrintingChangesNothing();
        recorder_.reset();
    }
}

TEST_F(DifferencesTest, areNoneRightAfterAConfiguration) {
    Meddler meddler(5);
    for (unsigned round = 0; round < 40; ++round) {
        ConfiguredState fresh;
        ConfigurationPlan plan = meddler.plan();
        // A classifier without terms that is not attached is nowhere in the state.
        for (ClassifierPlan& classifier : plan.classifiers)
            if (classifier.terms.empty()) classifier.terms.push_back({"t", {1}});
        ASSERT_EQ(fresh.configure(documentOf(plan)), "");
        EXPECT_EQ(fresh.apply(R"({"print":"differences"})"), "");
        EXPECT_EQ(fresh.out.text(), "{}\n") << documentOf(plan);
    }
}

}  // namespace
}  // namespace QosAgent
