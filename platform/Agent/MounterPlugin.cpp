#include "platform/Agent/MounterPlugin.h"

#include <cstdio>

#include "platform/Vex/Module.h"

namespace Agent::MounterPlugin {

MounterContext::MounterContext(const Orin::Ptr<Strata::EntityManager>& entityManager)
    : entityManager_(entityManager) {}

MounterContext::~MounterContext() {
    mounterDelAll();
}

Orin::Ptr<Strata::MountGroup> MounterContext::mountGroup() const {
    return Orin::Ptr<Strata::MountGroup>::adopt(new Strata::MountGroup(entityManager_));
}

void MounterContext::mounterDelAll() {
    while (!mounters_.empty()) {
        mounters_.back()->context_ = nullptr;
        mounters_.pop_back();
    }
}

void MounterBase::init(const Orin::Ptr<MounterContext>& context) {
    context_ = context.get();
    context->mounterAdd(Orin::Ptr<MounterBase>::sharing(this));
    for (const Vex::TypeRecord* type : Vex::unregisteredTypes(typeData()))
        warn("the type " + std::string(type->fullName) + " is in no registered module");
    doMounts();
}

void MounterBase::warn(std::string_view line) const {
    std::fprintf(stderr, "%s: %.*s\n", name_.c_str(), static_cast<int>(line.size()), line.data());
}

void MounterBase::createPluginStatePhase1() {}

void MounterBase::createPluginStatePhase2() {}

void MounterBase::startPluginRunnabilitySm() {}

}  // namespace Agent::MounterPlugin
