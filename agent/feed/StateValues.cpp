#include "agent/feed/StateValues.h"

#include "agent/database/Scalars.h"
#include "platform/QosOc/ClassifierType.h"
#include "platform/Vex/NamedEnum.h"

namespace QosAgent {
namespace {

using Vex::Value;

const std::vector<Value>& fieldsOf(const Value& record) {
    return record.as<Vex::RecordValue>().fields;
}

std::string textOf(const Value& value) {
    return std::string(std::string_view(value.as<Orin::String>()));
}

std::uint8_t dscpOf(const Value& value) {
    return static_cast<std::uint8_t>(value.as<std::uint64_t>());
}

StateConditions conditionsOf(const Value& family) {
    const std::vector<Value>& fields = fieldsOf(family);
    StateConditions conditions;
    if (!fields[0].isAbsent()) conditions.dscp = dscpOf(fields[0]);
    for (const Value& value : fields[1].as<Vex::ListValue>().items)
        conditions.dscpSet.push_back(dscpOf(value));
    return conditions;
}

StateTerm termOf(const Value& value) {
    const std::vector<Value>& fields = fieldsOf(value);
    StateTerm term{textOf(fields[0]), textOf(fields[1]), !fields[2].isAbsent(), {}, {}, {}};
    if (term.hasConditions) {
        term.ipv4 = conditionsOf(fieldsOf(fields[2])[0]);
        term.ipv6 = conditionsOf(fieldsOf(fields[2])[1]);
    }
    if (!fields[3].isAbsent()) term.targetGroup = textOf(fieldsOf(fields[3])[0]);
    return term;
}

std::string typeOf(const Value& value) {
    const bool isIpv6 =
        value.as<std::uint64_t>() == static_cast<std::uint64_t>(QosOc::Classifier::Type::IPV6);
    return isIpv6 ? "IPV6" : "IPV4";
}

/// The key of the classifier in a path `classifier/C/...`, without its escapes.
std::string classifierOf(std::string_view path) {
    path.remove_prefix(path.find('/') + 1);
    std::string name;
    for (std::size_t i = 0; i < path.size() && path[i] != '/'; ++i) {
        if (path[i] == '~')
            name += path[++i] == '0' ? '~' : '/';
        else
            name += path[i];
    }
    return name;
}

}  // namespace

StateValuePtr stateValue(std::string_view path, const Change& update) {
    auto value = std::make_shared<StateValue>();
    value->classifier = classifierOf(path);
    value->json = update.valueJson();
    if (path.ends_with("/state") && path.find('/', path.find('/') + 1) == path.size() - 6)
        value->type = typeOf(fieldsOf(update.value())[1]);
    else
        value->term = termOf(update.value());
    return value;
}

}  // namespace QosAgent
