#include "tests/support/Printers.h"

#include <sstream>

namespace TestSupport {
namespace {

void print(std::ostream& out, const Vex::Value& value);

template <class Items, class Print>
void printAll(std::ostream& out, const char* ends, const Items& items, Print printItem) {
    out << ends[0];
    const char* separator = "";
    for (const auto& item : items) {
        out << separator;
        printItem(item);
        separator = ", ";
    }
    out << ends[1];
}

struct Printer {
    std::ostream& out;

    void operator()(std::monostate) const { out << '-'; }
    void operator()(bool value) const { out << (value ? "true" : "false"); }
    void operator()(std::uint64_t value) const { out << value; }
    void operator()(const Orin::String& value) const { out << '"' << value << '"'; }
    void operator()(const Vex::NodeRef& node) const {
        if (!node) {
            out << "null";
            return;
        }
        out << node->typeData().fullName << '@' << static_cast<const void*>(node.get());
    }
    void operator()(const Vex::RecordValue& record) const {
        printAll(out, "()", record.fields, [this](const auto& item) { print(out, item); });
    }
    void operator()(const Vex::ListValue& list) const {
        printAll(out, "[]", list.items, [this](const auto& item) { print(out, item); });
    }
    void operator()(const Vex::MapValue& map) const {
        printAll(out, "{}", map.members, [this](const Vex::MapMember& member) {
            print(out, member.key);
            out << ": ";
            print(out, member.value);
        });
    }
};

void print(std::ostream& out, const Vex::Value& value) {
    using Variant = std::variant<std::monostate, bool, std::uint64_t, Orin::String, Vex::NodeRef,
                                 Vex::RecordValue, Vex::ListValue, Vex::MapValue>;
    std::visit(Printer{out}, static_cast<const Variant&>(value));
}

}  // namespace

std::string textOf(const Vex::Value& value) {
    std::ostringstream out;
    print(out, value);
    return out.str();
}

}  // namespace TestSupport

namespace Vex {

void PrintTo(const Value& value, std::ostream* out) {
    *out << TestSupport::textOf(value);
}

void PrintTo(FwkType type, std::ostream* out) {
    *out << type.module << '.' << type.type;
}

std::ostream& operator<<(std::ostream& out, Shape shape) {
    constexpr const char* kNames[] = {"boolean", "number", "text", "enumeration",
                                      "record",  "list",   "map",  "entity"};
    return out << kNames[static_cast<std::size_t>(shape)];
}

std::ostream& operator<<(std::ostream& out, Role role) {
    constexpr const char* kNames[] = {"plain", "key", "outerKey", "keyCopy", "input", "child"};
    return out << kNames[static_cast<std::size_t>(role)];
}

}  // namespace Vex

namespace Strata {

std::ostream& operator<<(std::ostream& out, MountStatus status) {
    constexpr const char* kNames[] = {"mountUnknown", "mountRequested", "mountInProgress",
                                      "mountFailed", "mountSuccess"};
    return out << kNames[static_cast<std::size_t>(status)];
}

}  // namespace Strata
