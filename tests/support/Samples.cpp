#include "tests/support/Samples.h"

#include <algorithm>
#include <string>

namespace TestSupport {

Vex::Value Samples::entity(const Vex::TypeRecord& type, unsigned n) {
    Orin::Ptr<Vex::TypedNode>& node = entities_[{&type, n}];
    if (!node) node = type.construct(argumentsOf(type));
    return Vex::NodeRef(node);
}

Vex::Value Samples::record(const Vex::TypeRecord& type, unsigned n) {
    Vex::RecordValue fields;
    for (const Vex::AttributeRecord& attribute : type.attributes)
        fields.fields.push_back(of(*attribute.type, n));
    return fields;
}

Vex::Value Samples::of(const Vex::Type& type, unsigned n) {
    if (type.isOptional && n == 0)
        return type.shape == Vex::Shape::entity ? Vex::Value(Vex::NodeRef()) : Vex::Value();
    switch (type.shape) {
        case Vex::Shape::boolean:
            return n % 2 == 1;
        case Vex::Shape::number:
            return std::min<std::uint64_t>(n * 7, type.maximum);
        case Vex::Shape::text:
            return Orin::String(std::string_view("text " + std::to_string(n)));
        case Vex::Shape::enumeration:
            return type.names[n % type.names.size()].value;
        case Vex::Shape::record:
            return record(*type.record, n);
        case Vex::Shape::entity:
            return entity(*type.record, n);
        case Vex::Shape::list:
            return Vex::ListValue{{of(*type.element, n), of(*type.element, 0)}};
        case Vex::Shape::map:
            return Vex::MapValue{{{of(*type.key, 1), of(*type.element, n)},
                                  {of(*type.key, 2), of(*type.element, 0)}}};
    }
    return {};
}

std::vector<Vex::Value> Samples::argumentsOf(const Vex::TypeRecord& type) {
    std::vector<Vex::Value> arguments;
    for (const Vex::AttributeRecord& attribute : type.attributes) {
        const bool isGiven = attribute.role == Vex::Role::key ||
                             attribute.role == Vex::Role::outerKey ||
                             attribute.role == Vex::Role::input;
        if (!isGiven) break;
        arguments.push_back(of(*attribute.type, 1));
    }
    return arguments;
}

}  // namespace TestSupport
