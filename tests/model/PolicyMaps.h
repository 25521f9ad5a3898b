#pragma once

#include <list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "tests/model/Context.h"
#include "tests/model/Names.h"

namespace Model {

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

}  // namespace Model
