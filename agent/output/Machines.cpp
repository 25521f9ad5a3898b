#include "agent/output/Machines.h"

#include "agent/database/Printer.h"
#include "agent/json/Visible.h"
#include "agent/output/MachineText.h"
#include "agent/output/MachineWalk.h"

namespace QosAgent {
namespace {

using Text = std::optional<std::string>;

class JsonSink : public MachineSink {
public:
    explicit JsonSink(JsonWriter& writer) : writer_(writer) {}

    void beginMachine(std::string_view label, std::string_view type, const Text& key) override {
        begin(label).beginObject().key("type").text(type).key("key");
        textOrNull(key);
        writer_.key("attributes").beginObject();
    }
    void endMachine() override { writer_.endObject().endObject(); }
    void beginMembers(std::string_view label) override { begin(label).beginArray(); }
    void endMembers() override { writer_.endArray(); }
    void member(const TypedValue& key, const TypedValue& value) override {
        writer_.beginObject().key("key");
        writeValue(writer_, key.type, key.value);
        writer_.key("value");
        writeValue(writer_, value.type, value.value);
        writer_.endObject();
    }
    void input(std::string_view label, std::string_view type, const Text& name) override {
        begin(label).beginObject().key("type").text(type).key("name");
        textOrNull(name);
        writer_.endObject();
    }
    void nothing(std::string_view label) override { begin(label).null(); }
    void value(std::string_view label, const TypedValue& value) override {
        if (value.value.isAbsent())
            begin(label).null();
        else
            writeValue(begin(label), value.type, value.value);
    }

private:
    JsonWriter& begin(std::string_view label) {
        return label.empty() ? writer_ : writer_.key(label);
    }
    void textOrNull(const Text& text) {
        if (text)
            writer_.text(*text);
        else
            writer_.null();
    }

    JsonWriter& writer_;
};

class TreeSink : public MachineSink {
public:
    explicit TreeSink(MachineText& tree) : tree_(tree) {}

    void beginMachine(std::string_view label, std::string_view type, const Text& key) override {
        tree_.beginMachine(label, type, key);
    }
    void endMachine() override { tree_.end(); }
    void beginMembers(std::string_view label) override { tree_.beginMembers(label); }
    void endMembers() override { tree_.end(); }
    void member(const TypedValue& key, const TypedValue& value) override {
        tree_.value({}, json(key) + ": " + json(value));
    }
    void input(std::string_view label, std::string_view type, const Text& name) override {
        tree_.named(label, type, name);
    }
    void nothing(std::string_view label) override { tree_.value(label, "none"); }
    void value(std::string_view label, const TypedValue& value) override {
        const auto* list = std::get_if<Vex::ListValue>(&value.value);
        if (list == nullptr || !list->items.empty()) {
            tree_.value(label, json(value));
            return;
        }
        tree_.beginMembers(label);
        tree_.end();
    }

private:
    static std::string json(const TypedValue& value) {
        if (value.value.isAbsent()) return "none";
        std::string text;
        JsonWriter writer(text);
        writeValue(writer, value.type, value.value);
        return visible(text);
    }

    MachineText& tree_;
};

}  // namespace

void writeMachines(JsonWriter& writer, const Database& database, MachineOwners owners) {
    JsonSink sink(writer);
    writer.beginArray();
    walkMachines(sink, database, owners);
    writer.endArray();
}

std::string machineTree(const Database& database, MachineOwners owners) {
    MachineText tree;
    TreeSink sink(tree);
    walkMachines(sink, database, owners);
    return tree.text();
}

}  // namespace QosAgent
