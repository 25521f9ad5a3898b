#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "agent/json/JsonWriter.h"

/// OpenConfig configurations as tests make them up, and as documents.
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

/// Writes a configuration as an RFC 7951 document.
class ConfigurationWriter {
public:
    static std::string document(const ConfigurationPlan& plan) {
        std::string text;
        JsonWriter json(text);
        json.beginObject().key("openconfig-qos:qos").beginObject();
        ConfigurationWriter(json).write(plan);
        json.endObject().endObject();
        return text;
    }

private:
    explicit ConfigurationWriter(JsonWriter& json) : json_(json) {}

    void write(const ConfigurationPlan& plan) {
        list("forwarding-groups", "forwarding-group", plan.groups,
             [this](const std::string& group) {
                 key("name", group);
                 json_.endObject();
             });
        list("classifiers", "classifier", plan.classifiers,
             [this](const ClassifierPlan& classifier) { write(classifier); });
        unsigned next = 0;
        list("interfaces", "interface", plan.interfaces, [&](const AttachmentPlan& attached) {
            key("interface-id", "eth" + std::to_string(next++));
            json_.endObject();
            write(attached);
        });
    }
    template <class Entries, class Write>
    void list(const char* container, const char* name, const Entries& entries, Write write) {
        if (entries.empty()) return;
        json_.key(container).beginObject().key(name).beginArray();
        for (const auto& entry : entries) {
            json_.beginObject();
            write(entry);
            json_.endObject();
        }
        json_.endArray().endObject();
    }
    /// The key of a list entry, and its `config` as far as it repeats that.
    void key(const char* name, const std::string& value) {
        json_.key(name).text(value).key("config").beginObject().key(name).text(value);
    }
    void write(const ClassifierPlan& classifier) {
        key("name", classifier.name);
        if (!classifier.type.empty()) json_.key("type").text(classifier.type);
        json_.endObject();
        list("terms", "term", classifier.terms,
             [&](const TermPlan& term) { write(term, classifier.isIpv6()); });
    }
    void write(const TermPlan& term, bool isIpv6) {
        key("id", term.id);
        json_.endObject();
        if (!term.dscp.empty()) writeConditions(term, isIpv6);
        if (term.group.empty()) return;
        json_.key("actions").beginObject().key("config").beginObject();
        json_.key("target-group").text(term.group).endObject().endObject();
    }
    void writeConditions(const TermPlan& term, bool isIpv6) {
        json_.key("conditions").beginObject().key(isIpv6 ? "ipv6" : "ipv4").beginObject();
        json_.key("config").beginObject();
        if (term.dscp.size() == 1 && !term.isSet) {
            json_.key("dscp").number(term.dscp.front());
        } else {
            json_.key("dscp-set").beginArray();
            for (const unsigned value : term.dscp)
                json_.number(value);
            json_.endArray();
        }
        json_.endObject().endObject().endObject();
    }
    void write(const AttachmentPlan& attached) {
        json_.key("input").beginObject().key("classifiers").beginObject();
        json_.key("classifier").beginArray();
        if (!attached.ipv4.empty()) write("IPV4", attached.ipv4);
        if (!attached.ipv6.empty()) write("IPV6", attached.ipv6);
        json_.endArray().endObject().endObject();
    }
    void write(const std::string& type, const std::string& classifier) {
        json_.beginObject();
        key("type", type);
        json_.key("name").text(classifier).endObject().endObject();
    }

    JsonWriter& json_;
};

inline std::string documentOf(const ConfigurationPlan& plan) {
    return ConfigurationWriter::document(plan);
}

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
