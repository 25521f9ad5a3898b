#include "agent/output/Machines.h"

#include "agent/database/Printer.h"
#include "agent/json/Visible.h"
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
    explicit TreeSink(std::string& out) : out_(out) {}

    void beginMachine(std::string_view label, std::string_view type, const Text& key) override {
        begin(label).append(type);
        appendName(key);
        ++depth_;
    }
    void endMachine() override { --depth_; }
    void beginMembers(std::string_view label) override {
        begin(label);
        out_.pop_back();  // the space after the label
        ++depth_;
    }
    void endMembers() override { --depth_; }
    void member(const TypedValue& key, const TypedValue& value) override {
        begin({}).append(json(key)).append(": ").append(json(value));
    }
    void input(std::string_view label, std::string_view type, const Text& name) override {
        begin(label).append(type);
        appendName(name);
    }
    void nothing(std::string_view label) override { begin(label).append("none"); }
    void value(std::string_view label, const TypedValue& value) override {
        begin(label).append(json(value));
    }

private:
    std::string& begin(std::string_view label) {
        if (!out_.empty()) out_ += '\n';
        out_.append(2 * depth_, ' ');
        if (!label.empty()) out_.append(label).append(": ");
        return out_;
    }
    void appendName(const Text& name) {
        if (!name) return;
        out_.append(" ").append(visibleName(*name));
    }
    static std::string json(const TypedValue& value) {
        if (value.value.isAbsent()) return "none";
        std::string text;
        JsonWriter writer(text);
        writeValue(writer, value.type, value.value);
        return visible(text);
    }

    std::string& out_;
    std::size_t depth_ = 0;
};

}  // namespace

void writeMachines(JsonWriter& writer, const Database& database, MachineOwners owners) {
    JsonSink sink(writer);
    writer.beginArray();
    walkMachines(sink, database, owners);
    writer.endArray();
}

std::string machineTree(const Database& database, MachineOwners owners) {
    std::string tree;
    TreeSink sink(tree);
    walkMachines(sink, database, owners);
    return tree;
}

}  // namespace QosAgent
