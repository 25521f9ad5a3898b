#include "agent/database/Checker.h"

#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"

namespace QosAgent {

std::optional<Fault> Checker::check(const Form& form, const Keys& keys, const JsonValue& value) {
    Faults faults;
    checkAll(form, keys, value, faults);
    if (faults.empty()) return {};
    return faults.found().front();
}

void Checker::checkAll(const Form& form, const Keys& keys, const JsonValue& value, Faults& faults) {
    if (faults.isFull() || (form.isNullable && value.is(JsonKind::null))) return;
    if (form.isKeyed())
        checkKeyed(form, keys, value, faults);
    else if (form.hasNamedMembers())
        checkNamed(form, keys, value, faults);
    else if (form.type->shape == Vex::Shape::list)
        checkList(*form.type, value, faults);
    else
        checkScalar(form, keys, value, faults);
}

void Checker::checkNamed(const Form& form, const Keys& keys, const JsonValue& value,
                         Faults& faults) {
    if (!value.is(JsonKind::object))
        faults.add(value.offset(), unexpected("an object", value.kind()));
    for (const JsonMember& member : value.members()) {
        if (faults.isFull()) return;
        const auto* attribute = namedInText(*form.type->record, member.key);
        if (attribute == nullptr) {
            faults.add(member.keyOffset, unknownMember(*form.type->record, member.key));
            continue;
        }
        const Form inner = formOf(*attribute);
        // A single entity has no key.
        checkAll(inner, inner.isEntity() ? Keys{} : keys, member.value, faults);
    }
}

void Checker::checkKeyed(const Form& form, const Keys& keys, const JsonValue& value,
                         Faults& faults) {
    if (!value.is(JsonKind::object))
        faults.add(value.offset(), unexpected("an object", value.kind()));
    const Form inner = memberForm(form);
    for (const JsonMember& member : value.members()) {
        if (faults.isFull()) return;
        if (const auto key = keyFrom(*form.keyType, member.key, interner_))
            checkAll(inner, keys.under(*key), member.value, faults);
        else
            faults.add(member.keyOffset, keyFault(*form.keyType, member.key));
    }
}

void Checker::checkList(const Vex::Type& type, const JsonValue& value, Faults& faults) {
    if (!value.is(JsonKind::array))
        faults.add(value.offset(), unexpected("an array", value.kind()));
    for (const JsonValue& element : value.elements()) {
        if (faults.isFull()) return;
        if (!scalarFrom(*type.element, element, interner_))
            faults.add(element.offset(), scalarFault(*type.element, element));
    }
}

void Checker::checkScalar(const Form& form, const Keys& keys, const JsonValue& value,
                          Faults& faults) {
    const auto scalar = scalarFrom(*form.type, value, interner_);
    if (!scalar) {
        faults.add(value.offset(), scalarFault(*form.type, value));
        return;
    }
    if (!form.repeatsKey()) return;
    const Vex::Value& repeated = keys.repeatedBy(form.role);
    if (*scalar != repeated)
        faults.add(value.offset(),
                   "does not agree with the key " + excerpt(keyText(*form.type, repeated)));
}

}  // namespace QosAgent
