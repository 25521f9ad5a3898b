#pragma once

#include <string>
#include <utility>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Module.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSmMounter.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/RootTest.h"

namespace QosOc {

/// Hears what a mounter publishes, without keeping it alive.
class MounterWatch {
public:
    /// A change: its attribute's id, and what the attribute was before.
    struct Change {
        Orin::AttributeId id;
        const Vex::TypedNode* old;
        friend bool operator==(const Change&, const Change&) = default;
        friend void PrintTo(const Change& change, std::ostream* out) {
            *out << change.id << ", before " << static_cast<const void*>(change.old);
        }
    };

    explicit MounterWatch(ClassifierStateSmMounter& mounter) : mounter_(mounter) {
        record_.owner = this;
        record_.dispatch = dispatch;
        mounter_.publisher()->subscriberAdd(record_);
    }
    ~MounterWatch() {
        if (record_.isLinked()) mounter_.publisher()->subscriberDel(record_);
    }
    MounterWatch(const MounterWatch&) = delete;
    MounterWatch& operator=(const MounterWatch&) = delete;

    /// The changes since the last call.
    std::vector<Change> take() { return std::exchange(changes_, {}); }
    /// Of each change since the beginning: the root machines that were alive.
    const std::vector<std::size_t>& aliveRoots() const { return aliveRoots_; }

private:
    using Mounter = ClassifierStateSmMounter;

    template <class T>
    static const Vex::TypedNode* nodeAt(const void* key) {
        return static_cast<const T*>(key)->get();
    }
    static const Vex::TypedNode* oldValue(Orin::AttributeId id, const void* key) {
        switch (id) {
            case 642:
                return nodeAt<Mounter::QosStatus>(key);
            case 643:
                return nodeAt<Mounter::AclConfig>(key);
            case 644:
                return nodeAt<Mounter::QosConfig>(key);
            case 645:
                return nodeAt<Mounter::ConfigDir>(key);
            case 646:
                return nodeAt<StateDir>(key);
            default:
                return nodeAt<Orin::Ptr<ClassifierStateSm>>(key);
        }
    }
    static void dispatch(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId id,
                         const void* key) noexcept {
        auto& self = *static_cast<MounterWatch*>(record.owner);
        self.changes_.push_back({id, oldValue(id, key)});
        self.aliveRoots_.push_back(TestSupport::live<ClassifierStateSm>());
    }

    ClassifierStateSmMounter& mounter_;
    Orin::Subscriber record_;
    std::vector<Change> changes_;
    std::vector<std::size_t> aliveRoots_;
};

/// A mounter over inputs and a state tree that an entity manager holds.
class MounterTest : public StateTest, protected RootInputs {
protected:
    using Mounter = ClassifierStateSmMounter;
    using Change = MounterWatch::Change;

    MounterTest() {
        manager->entityIs("qos/status", qosStatus);
        manager->entityIs("acl/config/cli", aclCliConfig);
        manager->entityIs("qos/input/config/cli", qosCliConfig);
        manager->entityIs("qos/openconfig/config/classifiers", configDir);
        manager->entityIs("qos/openconfig/state/classifiers", root, Strata::Access::readAndWrite);
    }
    static Orin::Ptr<Vex::TypedNode> noEntity() { return nullptr; }
    /// What an attribute of the mounter holds.
    const Vex::TypedNode* held(const char* attribute) const {
        return machineIn(Vex::attributeNamed(mounter->typeData(), attribute)->read(mounter.get()));
    }
    /// The root machine over the fixture's inputs.
    Orin::Ptr<ClassifierStateSm> rootIs() {
        return mounter->classifierStateSmIs(qosStatus, aclCliConfig, qosCliConfig, configDir, root);
    }
    /// A trace line of the mounter.
    std::string mounterLine(const std::string& function, const std::string& rest) const {
        return "QosOpenConfigClassifierStateSmMounter/8 "
               "QosOpenConfig/QosOpenConfigClassifierStateSmMounter:N " +
               function + " QosOc::ClassifierStateSmMounter@" + addressOf(mounter.get()) +
               "virtual void QosOc::ClassifierStateSmMounter::" + function + rest;
    }

    const Orin::Ptr<Strata::EntityManager> manager =
        Orin::Ptr<Strata::EntityManager>::adopt(new Strata::EntityManager);
    Orin::Ptr<Mounter> mounter = Mounter::create();

private:
    Vex::ModuleRegistration machineTypes_{kStateSmModule};
    Vex::ModuleRegistration mounterTypes_{kMounterModule};
    Vex::TraceRegistration mounterHandle_{mounterTraceHandle};
};

}  // namespace QosOc
