#pragma once

#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/model/Inputs.h"
#include "tests/model/Names.h"
#include "tests/model/State.h"

/// The four branches of the machine tree. A machine is what it watches, and an id by which trace
/// lines tell it from others.
namespace Model {

/// What all machines share.
struct Context {
    const Inputs& inputs;
    State& state;
    Trace& trace;
    Wrong wrong;
    Id lastId = kNobody;
    /// How many notifications use a classifier by policy maps.
    std::map<std::pair<std::string, Family>, unsigned> registry{};

    Id nextId() { return ++lastId; }
};

/// The class maps of one map type.
class ClassMaps {
public:
    ClassMaps(Context& context, Ref typeStatus)
        : context_(context), status_(std::move(typeStatus)) {}
    void start();
    /// A published change of an entity; not of a machine here: nothing happens.
    void changed(const Thing& entity, const std::string& key);
    void die();

private:
    struct ClassMap {
        Id id;
        std::string name;
        Ref status;
    };
    void handleClassMap(const std::string& name);
    void handleMatch(const ClassMap& classMap, const std::string& option);
    void dieOne(const ClassMap& classMap);

    Context& context_;
    Ref status_;
    Id id_ = kNobody;
    std::list<ClassMap> children_;
};

/// The policy maps of one map type.
class PolicyMaps {
public:
    PolicyMaps(Context& context, Ref typeStatus)
        : context_(context), status_(std::move(typeStatus)) {}
    void start();
    void changed(const Thing& entity, std::string_view attribute, const std::string& key);
    void die();

private:
    struct PolicyMap {
        Id id;
        std::string name;
        Ref status;
        ClassifierPair classifiers;
        Ref groups;  ///< watched
    };
    /// The target group of each term by id, by classifier.
    using Computed = std::map<std::string, std::map<std::string, std::string>>;

    void handlePolicyMap(const std::string& name);
    void countUse(const std::string& classifier, Family type, bool isAdded);
    void create(const std::string& name, const Ref& status);
    void handleVersion(const PolicyMap& policyMap);
    void handleGroups(const PolicyMap& policyMap);
    Computed updateActions(const PolicyMap& policyMap);
    void updateAction(const PolicyMap& policyMap, const Member& entry, Computed& computed);
    void clearStale(const PolicyMap& policyMap, const Computed& computed);
    void dieOne(const PolicyMap& policyMap);
    void giveBack(const std::string& name, const Thing& configured);
    Ref groups() const;

    Context& context_;
    Ref status_;
    Id id_ = kNobody;
    std::list<PolicyMap> children_;
};

/// The access lists of one type.
class AccessLists {
public:
    AccessLists(Context& context, Ref config, Family family)
        : context_(context), config_(std::move(config)), family_(family) {}
    void start();
    void changed(const Thing& entity, std::string_view attribute, const std::string& key);
    void die();

private:
    struct Sub {
        Id id;
        Ref config;
    };
    struct AccessList {
        Id id;
        std::string name;
        Ref config;
        std::optional<Sub> sub{};
    };
    void handleList(const std::string& name);
    void sweep(const std::map<std::string, std::vector<std::string>>& named);
    void create(const std::string& name, const Ref& config);
    void handleSub(AccessList& list);
    void handleRules(const AccessList& list, const Sub& sub);
    std::vector<unsigned> dscpValues(const Thing& sub) const;
    void dieSub(AccessList& list);
    void dieOne(AccessList& list);

    Context& context_;
    Ref config_;
    Family family_;
    Id id_ = kNobody;
    std::list<AccessList> children_;
};

/// One configured classifier.
class ConfiguredClassifier {
public:
    ConfiguredClassifier(Context& context, std::string name, Ref classifier)
        : context_(context), name_(std::move(name)), classifier_(std::move(classifier)) {}
    void start();
    void changed(const Thing& entity, std::string_view attribute, const std::string& key);
    void die();

private:
    struct Terms {
        Id id;
        Ref terms;
        Family type;
    };
    void handleTerms();
    void handleTerm(const std::string& id);
    void updateAction(const std::string& id, const std::string& targetGroup);
    void dieTerms();

    Context& context_;
    std::string name_;
    Ref classifier_;
    Id id_ = kNobody;
    std::optional<Terms> terms_;
};

}  // namespace Model
