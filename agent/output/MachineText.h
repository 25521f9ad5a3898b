#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace QosAgent {

/// Formats the tree of machines for people: one object on each line, indented below its owner. An
/// empty label means a member of a collection.
class MachineText {
public:
    using Name = std::optional<std::string_view>;

    void beginMachine(std::string_view label, std::string_view type, Name key) {
        named(label, type, key);
        ++depth_;
    }
    void beginMembers(std::string_view label);
    /// The indentation of the machine or collection that began last.
    void end() { --depth_; }
    /// Adds an input: the type and name of an entity.
    void named(std::string_view label, std::string_view type, Name name);
    void value(std::string_view label, std::string_view text) { begin(label).append(text); }

    const std::string& text() const { return text_; }

private:
    std::string& begin(std::string_view label);

    std::string text_;
    std::size_t depth_ = 0;
};

}  // namespace QosAgent
