#pragma once

#include <string>

#include "agent/json/JsonWriter.h"
#include "tests/agent/support/ConfigurationPlan.h"

/// The configurations that tests make up, as documents.
namespace QosAgent {

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
            const std::string place = "eth" + std::to_string(next++);
            key("interface-id", attached.id.empty() ? place : attached.id);
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

}  // namespace QosAgent
