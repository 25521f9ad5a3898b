#include "agent/database/Checker.h"

#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"

namespace QosAgent {

std::optional<Fault> Checker::check(const Form& form, const Keys& keys, const JsonValue& value) {
    if (form.isNullable && value.is(JsonKind::null)) return {};
    if (form.isKeyed()) return checkKeyed(form, keys, value);
    if (form.hasNamedMembers()) return checkNamed(form, keys, value);
    if (form.type->shape == Vex::Shape::list) return checkList(*form.type, value);
    return checkScalar(form, keys, value);
}

std::optional<Fault> Checker::checkNamed(const Form& form, const Keys& keys,
                                         const JsonValue& value) {
    if (!value.is(JsonKind::object))
        return Fault{value.offset(), unexpected("an object", value.kind())};
    for (const JsonMember& member : value.members()) {
        const auto* attribute = namedInText(*form.type->record, member.key);
        if (attribute == nullptr)
            return Fault{member.keyOffset, unknownMember(*form.type->record, member.key)};
        const Form inner = formOf(*attribute);
        // A single entity is kept under no key.
        if (auto fault = check(inner, inner.isEntity() ? Keys{} : keys, member.value)) return fault;
    }
    return {};
}

std::optional<Fault> Checker::checkKeyed(const Form& form, const Keys& keys,
                                         const JsonValue& value) {
    if (!value.is(JsonKind::object))
        return Fault{value.offset(), unexpected("an object", value.kind())};
    const Form inner = memberForm(form);
    for (const JsonMember& member : value.members()) {
        const auto key = keyFrom(*form.keyType, member.key, interner_);
        if (!key) return Fault{member.keyOffset, keyFault(*form.keyType, member.key)};
        if (auto fault = check(inner, keys.under(*key), member.value)) return fault;
    }
    return {};
}

std::optional<Fault> Checker::checkList(const Vex::Type& type, const JsonValue& value) {
    if (!value.is(JsonKind::array))
        return Fault{value.offset(), unexpected("an array", value.kind())};
    for (const JsonValue& element : value.elements())
        if (!scalarFrom(*type.element, element, interner_))
            return Fault{element.offset(), scalarFault(*type.element, element)};
    return {};
}

std::optional<Fault> Checker::checkScalar(const Form& form, const Keys& keys,
                                          const JsonValue& value) {
    const auto scalar = scalarFrom(*form.type, value, interner_);
    if (!scalar) return Fault{value.offset(), scalarFault(*form.type, value)};
    if (!form.repeatsKey()) return {};
    const Vex::Value& repeated = keys.repeatedBy(form.role);
    if (*scalar == repeated) return {};
    return Fault{value.offset(),
                 "does not agree with the key " + excerpt(keyText(*form.type, repeated))};
}

}  // namespace QosAgent
