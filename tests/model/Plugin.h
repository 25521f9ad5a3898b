#pragma once

#include <map>
#include <string>
#include <string_view>

#include "tests/model/AccessLists.h"
#include "tests/model/ClassMaps.h"
#include "tests/model/ConfiguredClassifier.h"
#include "tests/model/PolicyMaps.h"

namespace Model {

/// What the plug-in does from its start on: which of the changes it hears of lead to what. It says
/// nothing when it is destroyed, and takes nothing back.
class Plugin {
public:
    Plugin(const Inputs& inputs, State& state, Trace& trace, Wrong wrong);
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    void start();
    void changed(const Thing& entity, std::string_view attribute, const std::string& key);

private:
    void handlePolicyMapType(const std::string& mapType);
    void handleClassMapType(const std::string& mapType);
    void handleAccessListType(const std::string& aclType);
    void handleClassifier(const std::string& name);
    void mounterLines();

    Context context_;
    Id mounter_ = kNobody;
    Id id_ = kNobody;
    std::map<std::string, PolicyMaps> policyMaps_;
    std::map<std::string, ClassMaps> classMaps_;
    std::map<std::string, AccessLists> accessLists_;
    std::map<std::string, ConfiguredClassifier> classifiers_;
};

}  // namespace Model
