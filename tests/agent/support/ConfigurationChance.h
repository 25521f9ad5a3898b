#pragma once

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "tests/agent/support/ConfigurationPlan.h"

namespace QosAgent {

/// Makes up configurations in which the same few names come, go and change all the time.
class Chance {
public:
    explicit Chance(unsigned seed) : random_(seed) {}

    /// 0 to `bound` - 1.
    unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
    template <class Choices>
    const auto& of(const Choices& choices) {
        return choices[below(static_cast<unsigned>(std::size(choices)))];
    }

    ConfigurationPlan configuration() {
        ConfigurationPlan plan;
        for (const char* group : {"g0", "g1", "g2", "g3"})
            if (below(3) != 0) plan.groups.emplace_back(group);
        std::shuffle(plan.groups.begin(), plan.groups.end(), random_);
        for (const char* name : {"a", "b", "c", "d"})
            if (below(5) != 0) plan.classifiers.push_back(classifier(name, plan.groups));
        for (unsigned count = below(4); count > 0; --count)
            plan.interfaces.push_back(attachment(plan));
        return plan;
    }

private:
    ClassifierPlan classifier(const std::string& name, const std::vector<std::string>& groups) {
        static constexpr std::array kTypes{"IPV4", "IPV6", ""};
        // Mostly the same type, so that terms stay alike.
        const bool isUsual = below(4) != 0;
        ClassifierPlan classifier{
            name, isUsual ? (name < "c" ? "IPV4" : "IPV6") : kTypes[below(3)], {}};
        for (const char* id : {"1", "2", "3"})
            if (below(4) != 0) classifier.terms.push_back(term(id, groups));
        std::shuffle(classifier.terms.begin(), classifier.terms.end(), random_);
        return classifier;
    }
    TermPlan term(const std::string& id, const std::vector<std::string>& groups) {
        static const std::vector<std::vector<unsigned>> kDscp{{}, {1}, {2}, {1, 2}, {2, 1, 3}};
        TermPlan term{id, kDscp[below(5)]};
        if (!groups.empty() && below(3) != 0) term.group = groups[below(2) % groups.size()];
        return term;
    }
    AttachmentPlan attachment(const ConfigurationPlan& plan) {
        AttachmentPlan attached;
        for (const ClassifierPlan& classifier : plan.classifiers)
            if (below(2) == 0)
                (classifier.isIpv6() ? attached.ipv6 : attached.ipv4) = classifier.name;
        return attached;
    }

    std::mt19937 random_;
};

}  // namespace QosAgent
