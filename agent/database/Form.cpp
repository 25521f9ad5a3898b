#include "agent/database/Form.h"

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

}  // namespace QosAgent
