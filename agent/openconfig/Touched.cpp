#include "agent/openconfig/Touched.h"

#include <algorithm>
#include <string>

#include "agent/openconfig/Place.h"
#include "platform/QosOc/Naming.h"

namespace QosAgent {
namespace {

/// Takes the next key off the path, without its escapes. `rest` begins behind a slash.
Orin::String takeKey(std::string_view& rest) {
    const std::size_t end = std::min(rest.find('/'), rest.size());
    std::string key;
    for (std::size_t at = 0; at < end; ++at) {
        if (rest[at] != '~' || at + 1 == end)
            key += rest[at];
        else
            key += rest[++at] == '0' ? '~' : '/';
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return Orin::String(key);
}

/// Takes the collection and a slash off the path; false if it leads somewhere else.
bool takeCollection(std::string_view& path, std::string_view collection) {
    if (path.size() <= collection.size() || !path.starts_with(collection) ||
        path[collection.size()] != '/')
        return false;
    path.remove_prefix(collection.size() + 1);
    return true;
}

/// Nothing of the configuration's can be there: the inputs have other types, too.
bool isOfAnotherType(std::string_view path) {
    for (const std::string_view types :
         {"qos/status/cmapTypeStatus/", "qos/status/pmapTypeStatus/"})
        if (path.starts_with(types) && !path.substr(types.size()).starts_with("mapQos"))
            return true;
    return path.starts_with("acl/config/cli/aclTypeConfig/mac");
}

}  // namespace

void Touched::inputChanged(InputChanges::Kind, std::string_view path) {
    if (isAll_ || isOfAnotherType(path)) return;
    if (takeCollection(path, Places::kClassMaps) || takeCollection(path, Places::kIpLists) ||
        takeCollection(path, Places::kIp6Lists))
        noteTermObject(takeKey(path));
    else if (takeCollection(path, Places::kClassifiers))
        noteClassifier(path);
    else if (takeCollection(path, Places::kPolicyMaps))
        pairs_.insert(takeKey(path));
    else if (takeCollection(path, Places::kGroups))
        groups_.insert(takeKey(path));
    else
        isAll_ = true;
}

void Touched::noteTermObject(std::string_view name) {
    const auto [classifier, term] = QosOc::classifierKeyFromConfigObjName(Orin::String(name));
    if (!classifier.empty()) terms_.insert({classifier, term});
}

void Touched::noteClassifier(std::string_view rest) {
    constexpr std::string_view kTerms = "terms/term/";
    const Orin::String classifier = takeKey(rest);
    if (!rest.starts_with(kTerms)) {
        classifiers_.insert(classifier);
        return;
    }
    rest.remove_prefix(kTerms.size());
    terms_.insert({classifier, takeKey(rest)});
}

}  // namespace QosAgent
