#include "agent/openconfig/Configuration.h"

#include <utility>

namespace QosAgent {

Configuration::Configuration(Database& database, Strictness strictness)
    : interner_(database.interner()), strictness_(strictness), translator_(database) {}

std::variant<std::vector<Warning>, Fault> Configuration::apply(const JsonValue& document) {
    OpenConfigReader reader(interner_, strictness_);
    auto read = reader.read(document);
    if (auto* fault = std::get_if<Fault>(&read)) return std::move(*fault);
    translator_.apply(std::get<OpenConfigDocument>(std::move(read)));
    return reader.warnings();
}

}  // namespace QosAgent
