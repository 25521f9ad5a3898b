#include "platform/Agent/MounterPlugin.h"

namespace Agent::MounterPlugin {

MounterContext::MounterContext(const Orin::Ptr<Strata::EntityManager>& entityManager)
    : entityManager_(entityManager) {}

MounterContext::~MounterContext() {
    mounterDelAll();
}

void MounterContext::mounterDelAll() {
    while (!mounters_.empty()) {
        mounters_.back()->context_ = nullptr;
        mounters_.pop_back();
    }
}

void MounterBase::init(const Orin::Ptr<MounterContext>& context) {
    context_ = context.get();
    context->mounterAdd(Orin::Ptr<MounterBase>(this));
    doMounts();
}

void MounterBase::createPluginStatePhase1() {}

void MounterBase::createPluginStatePhase2() {}

void MounterBase::startPluginRunnabilitySm() {}

}  // namespace Agent::MounterPlugin
