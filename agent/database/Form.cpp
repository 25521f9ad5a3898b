#include "agent/database/Form.h"

#include <vector>

#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"

namespace QosAgent {

Form rootForm(const Vex::Type& type) {
    return {.type = &type, .isRoot = true};
}

Form formOf(const Vex::AttributeRecord& attribute) {
    const Vex::Type& type = *attribute.type;
    if (attribute.collection != nullptr)
        return {.type = &type,
                .keyType = attribute.collection->key,
                .isMemberNullable = attribute.isNullable};
    if (type.shape == Vex::Shape::map) return {.type = type.element, .keyType = type.key};
    return {.type = &type, .role = attribute.role, .isNullable = type.isOptional};
}

Form memberForm(const Form& keyed) {
    return {.type = keyed.type, .isMember = true, .isNullable = keyed.isMemberNullable};
}

const Vex::AttributeRecord* namedInText(const Vex::TypeRecord& type, std::string_view name) {
    const Vex::AttributeRecord* attribute = Vex::attributeNamed(type, name);
    return attribute == nullptr || attribute->isHidden ? nullptr : attribute;
}

std::string unknownMember(const Vex::TypeRecord& type, std::string_view name,
                          std::string_view where) {
    std::vector<std::string_view> known;
    for (const Vex::AttributeRecord& attribute : type.attributes)
        if (!attribute.isHidden) known.push_back(attribute.name);
    return "unknown member " + excerpt(name).append(where) + suggestion(name, known);
}

}  // namespace QosAgent
