#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "tests/QosOpenConfig/StateTest.h"
#include "tests/support/LiveCounts.h"

namespace QosOc {

/// Acts once: at the first notification at which `when` holds.
class Once {
public:
    Once(
        Orin::Publisher* publisher, std::function<void()> act,
        std::function<bool()> when = [] { return true; })
        : publisher_(publisher), act_(std::move(act)), when_(std::move(when)) {
        record_.owner = this;
        record_.dispatch = [](Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                              const void*) noexcept {
            auto& once = *static_cast<Once*>(record.owner);
            if (once.act_ && once.when_()) std::exchange(once.act_, {})();
        };
        publisher_->subscriberAdd(record_);
    }
    ~Once() {
        if (record_.isLinked()) publisher_->subscriberDel(record_);
    }
    Once(const Once&) = delete;
    Once& operator=(const Once&) = delete;

private:
    Orin::Publisher* publisher_;
    std::function<void()> act_;
    std::function<bool()> when_;
    Orin::Subscriber record_;
};

/// All inputs of the root machine, for subscribers of the state to change.
class ReentrantInputs : public StateTest {
protected:
    ReentrantInputs() {
        qos->cmapTypeStatusIs(cmaps);
        qos->pmapTypeStatusIs(pmaps);
        acl->aclTypeConfigIs(lists);
        cli->forwardingGroupNameToTcMapIs(groups);
        groups->tcIs("gold", 1);
    }
    void start() {
        machine = ClassifierStateSm::ClassifierStateSmIs(qos, acl, cli, configured, root);
    }
    void addClassMap(const char* name) {
        const auto cmap = Qos::ClassMapStatus::create(Orin::String(name));
        cmap->matchIs(Qos::ClassMapMatchOption::matchIpAccessGroup, "");
        cmaps->cmapStatusIs(cmap);
    }
    Orin::Ptr<Acl::AclConfig> addList(const char* name) {
        const auto list = Acl::AclConfig::create(Orin::String(name), Acl::AclType::ipv4);
        lists->aclConfigIs(list->aclName(), list);
        list->aclSubConfigIs(rules());
        return list;
    }
    static Orin::Ptr<Acl::AclSubConfig> rules() {
        Acl::IpRuleConfig rule;
        rule.filter.dscpEnabled = true;
        rule.filter.dscpValue = 46;
        const auto sub = Acl::AclSubConfig::create();
        sub->ipRuleByIdIs({1}, rule);
        sub->ruleIdBySequenceIs(10, {1});
        return sub;
    }
    static Qos::PolicyMapClass classTo(std::uint32_t tc) {
        Qos::PolicyMapClass to;
        to.action.is(Qos::PolicyMapClass::kSetTrafficClass, tc);
        return to;
    }
    Orin::Ptr<Qos::PolicyMapStatus> addPolicyMap(const char* className) {
        const auto pmap = Qos::PolicyMapStatus::create(Orin::String("openconfig:voice:"));
        pmap->classIs(className, classTo(1));
        pmaps->pmapStatusIs(pmap);
        return pmap;
    }
    Orin::Publisher* terms() { return root->classifier("voice")->terms()->publisher(); }
    void writeStale(const char* id) {
        State::Term term{Orin::String(id)};
        term.conditions.emplace();
        addClassifier(root, "voice", Classifier::Type::IPV4);
        root->classifierIs("voice")->termsIs()->termIs(term);
    }

    Orin::Ptr<Qos::Status> qos = Qos::Status::create();
    Orin::Ptr<Acl::Input::Config> acl = Acl::Input::Config::create();
    Orin::Ptr<Qos::Input::Config> cli = Qos::Input::Config::create();
    Orin::Ptr<Config::ClassifiersDir> configured = Config::ClassifiersDir::create();
    Orin::Ptr<Qos::ClassMapTypeStatus> cmaps =
        Qos::ClassMapTypeStatus::create(Qos::MapType::mapQos);
    Orin::Ptr<Qos::PolicyMapTypeStatus> pmaps =
        Qos::PolicyMapTypeStatus::create(Qos::MapType::mapQos);
    Orin::Ptr<Acl::Input::AclTypeConfig> lists =
        Acl::Input::AclTypeConfig::create(Acl::AclType::ipv4);
    Orin::Ptr<Qos::ForwardingGroupNameToTcMap> groups = Qos::ForwardingGroupNameToTcMap::create();
    Orin::Ptr<ClassifierStateSm> machine;
};

/// A subscriber of the state changes the inputs as soon as it is notified. The state is the same
/// with the trace off and on.
class ReentrancyTest : public ReentrantInputs, public ::testing::WithParamInterface<bool> {
protected:
    ReentrancyTest() {
        if (GetParam()) trace_.emplace();
    }

private:
    std::optional<TestSupport::TraceCapture> trace_;
};

inline const auto kTraceOffAndOn = ::testing::Bool();
inline std::string traceName(const ::testing::TestParamInfo<bool>& info) {
    return info.param ? "on" : "off";
}

}  // namespace QosOc
