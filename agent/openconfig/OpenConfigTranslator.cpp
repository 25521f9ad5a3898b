#include "agent/openconfig/OpenConfigTranslator.h"

#include <utility>

#include "agent/database/Editor.h"

namespace QosAgent {
namespace {

template <class Root>
Orin::Ptr<Root> rootAt(const Database& database, std::string_view path) {
    return Vex::entityCast<Root>(database.subtreeAt(path)->root);
}

}  // namespace

OpenConfigTranslator::OpenConfigTranslator(Database& database)
    : database_(database),
      ownership_(database.inputChanges()),
      groups_(rootAt<Qos::Input::Config>(database, "qos/input/config/cli"), ownership_),
      accessLists_(rootAt<Acl::Input::Config>(database, "acl/config/cli"), ownership_),
      classMaps_(rootAt<Qos::Status>(database, "qos/status"), ownership_),
      classifiers_(
          rootAt<QosOc::Config::ClassifiersDir>(database, "qos/openconfig/config/classifiers"),
          ownership_),
      policyMaps_(rootAt<Qos::Status>(database, "qos/status"), ownership_) {}

OpenConfigTranslator::~OpenConfigTranslator() {
    database_.inputChanges().listenerDel(ownership_);
    database_.inputChanges().listenerDel(touched_);
}

void OpenConfigTranslator::apply(OpenConfigDocument later) {
    // What is reported while nobody listens here is the configuration's own doing.
    suspend();
    groups_.learn(earlier_, touched_);
    if (!std::exchange(isFirst_, false)) groups_.number(earlier_, later, touched_);
    write({earlier_, later, touched_});
    removeHollow();
    earlier_ = std::move(later);
    touched_.clear();
    listen();
}

void OpenConfigTranslator::suspend() {
    database_.inputChanges().listenerDel(ownership_);
    database_.inputChanges().listenerDel(touched_);
}

void OpenConfigTranslator::restore(std::optional<OpenConfigDocument> document) {
    isFirst_ = !document;
    earlier_ = document ? *std::move(document) : OpenConfigDocument();
    // What others changed before is not known: all has to be compared.
    touched_.inputChanged(InputChanges::Kind::changed, "");
    listen();
}

void OpenConfigTranslator::listen() {
    if (!earlier_.empty()) database_.inputChanges().listenerAdd(touched_);
    if (!earlier_.empty() || !ownership_.isEmpty())
        database_.inputChanges().listenerAdd(ownership_);
}

void OpenConfigTranslator::write(const Difference& difference) {
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
}

void OpenConfigTranslator::removeHollow() {
    Editor editor(database_);
    for (const std::string& path : ownership_.takeHollow())
        editor.remove(std::get<Path>(parsePath(database_, path)));
}

}  // namespace QosAgent
