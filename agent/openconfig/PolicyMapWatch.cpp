#include "agent/openconfig/PolicyMapWatch.h"

#include <optional>
#include <utility>
#include <vector>

#include "agent/database/Path.h"
#include "agent/openconfig/Place.h"
#include "platform/Qos/Status.h"

namespace QosAgent {
namespace {

/// Null while the database has none.
const Qos::PolicyMapTypeStatus::PmapStatus* policyMapsOf(const Database& database) {
    const auto& root = *database.subtreeAt("qos/status")->root;
    const auto& status = static_cast<const Qos::Status&>(root);
    const auto* ofType = status.pmapTypeStatus().find(Qos::MapType::mapQos);
    return ofType == nullptr ? nullptr : &(*ofType)->pmapStatus();
}

bool isAtOrAbovePolicyMaps(std::string_view path) {
    return Places::kPolicyMaps.starts_with(path) &&
           (path.size() == Places::kPolicyMaps.size() || Places::kPolicyMaps[path.size()] == '/');
}

/// The name of the policy map that a path names; nothing if it names anything else.
std::optional<std::string> policyMapAt(std::string_view path) {
    if (!path.starts_with(Places::kPolicyMaps)) return {};
    path.remove_prefix(Places::kPolicyMaps.size());
    if (!path.starts_with('/')) return {};
    path.remove_prefix(1);
    if (path.find('/') != std::string_view::npos) return {};
    return keyFromStep(path);
}

}  // namespace

PolicyMapWatch::PolicyMapWatch(Database& database) : database_(database) {
    database_.inputChanges().listenerAdd(*this);
}

PolicyMapWatch::~PolicyMapWatch() {
    database_.inputChanges().listenerDel(*this);
}

void PolicyMapWatch::inputChanged(InputChanges::Kind, std::string_view path) {
    if (isAtOrAbovePolicyMaps(path))
        isAllReported_ = true;
    else if (auto name = policyMapAt(path))
        reported_.insert(*std::move(name));
}

const PolicyMapNames& PolicyMapWatch::names() {
    if (std::exchange(isAllReported_, false)) {
        readAll();
    } else if (!reported_.empty()) {
        const auto* policyMaps = policyMapsOf(database_);
        for (const std::string& name : reported_) {
            if (policyMaps != nullptr && policyMaps->find(Orin::String(name)) != nullptr)
                names_.insert(name);
            else
                names_.erase(name);
        }
    }
    reported_.clear();
    return names_;
}

void PolicyMapWatch::readAll() {
    const auto* policyMaps = policyMapsOf(database_);
    std::vector<std::string> gone;
    names_.each([&](const std::string& name) {
        if (policyMaps == nullptr || policyMaps->find(Orin::String(name)) == nullptr)
            gone.push_back(name);
    });
    for (const std::string& name : gone)
        names_.erase(name);
    if (policyMaps == nullptr) return;
    for (const auto& [name, policyMap] : *policyMaps)
        names_.insert(std::string(name.view()));
}

}  // namespace QosAgent
