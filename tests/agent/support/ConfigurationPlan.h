#pragma once

#include <string>
#include <vector>

/// OpenConfig configurations as tests make them up.
namespace QosAgent {

struct TermPlan {
    std::string id;
    std::vector<unsigned> dscp;  ///< a single value is written as `dscp`, several as `dscp-set`
    std::string group = {};      ///< empty: no target group
    bool isSet = false;          ///< a single value as `dscp-set`, too

    friend bool operator==(const TermPlan&, const TermPlan&) = default;
};

struct ClassifierPlan {
    std::string name;
    std::string type;  ///< empty: none
    std::vector<TermPlan> terms;

    bool isIpv6() const { return type == "IPV6"; }
    const TermPlan* term(const std::string& id) const {
        for (const TermPlan& term : terms)
            if (term.id == id) return &term;
        return nullptr;
    }
};

/// What an interface has attached; empty: nothing.
struct AttachmentPlan {
    std::string ipv4;
    std::string ipv6;
    std::string id = {};  ///< of the interface; empty: by its place, `eth0` and so on
};

struct ConfigurationPlan {
    std::vector<std::string> groups;
    std::vector<ClassifierPlan> classifiers;
    std::vector<AttachmentPlan> interfaces;

    const ClassifierPlan* classifier(const std::string& name) const {
        for (const ClassifierPlan& classifier : classifiers)
            if (classifier.name == name) return &classifier;
        return nullptr;
    }
};

/// Pairs of an IPv4 and an IPv6 classifier with `terms` terms each, every pair on an interface of
/// its own. A term matches `values` DSCPs of those that follow one another; eight groups take
/// turns.
inline ConfigurationPlan bigConfiguration(unsigned classifiers, unsigned terms, unsigned values) {
    ConfigurationPlan plan;
    for (unsigned group = 0; group < 8; ++group)
        plan.groups.push_back("group-" + std::to_string(group));
    for (unsigned c = 0; c < classifiers; ++c) {
        ClassifierPlan classifier{"classifier-" + std::to_string(c), c % 2 ? "IPV6" : "IPV4", {}};
        for (unsigned t = 0; t < terms; ++t) {
            TermPlan term{"term-" + std::to_string(t), {}, plan.groups[t % 8]};
            for (unsigned v = 0; v < values; ++v)
                term.dscp.push_back((t * values + v) % 64);
            classifier.terms.push_back(term);
        }
        plan.classifiers.push_back(classifier);
        if (c % 2) plan.interfaces.push_back({plan.classifiers[c - 1].name, classifier.name});
    }
    return plan;
}

}  // namespace QosAgent
