#include "agent/openconfig/OpenConfigTranslator.h"

#include <utility>

namespace QosAgent {
namespace {

template <class Root>
Orin::Ptr<Root> rootAt(const Database& database, std::string_view path) {
    return Vex::entityCast<Root>(database.subtreeAt(path)->root);
}

}  // namespace

OpenConfigTranslator::OpenConfigTranslator(const Database& database)
    : groups_(rootAt<Qos::Input::Config>(database, "qos/input/config/cli"), found_),
      accessLists_(rootAt<Acl::Input::Config>(database, "acl/config/cli"), found_),
      classMaps_(rootAt<Qos::Status>(database, "qos/status"), found_),
      classifiers_(
          rootAt<QosOc::Config::ClassifiersDir>(database, "qos/openconfig/config/classifiers"),
          found_),
      policyMaps_(rootAt<Qos::Status>(database, "qos/status"), found_) {}

void OpenConfigTranslator::apply(OpenConfigDocument later) {
    if (!std::exchange(isFirst_, false)) groups_.number(earlier_, later);
    const Difference difference{earlier_, later};
    groups_.writeComing(difference);
    // What goes of a term comes before what comes: when the family changes, the same term has both.
    accessLists_.removeGoing(difference);
    classMaps_.writeComing(difference);
    accessLists_.writeComing(difference);
    // Policy maps that go give their classifiers back to the configuration, so it is right by then,
    // and so are the policy maps that take over.
    classifiers_.write(difference);
    policyMaps_.writeComing(difference);
    policyMaps_.removeGoing(difference);
    classifiers_.tellTermsOfGonePairs(difference);
    // Terms go with their class maps, which nothing may use any more.
    classMaps_.removeGoing(difference);
    groups_.removeGoing(difference);
    earlier_ = std::move(later);
}

}  // namespace QosAgent
