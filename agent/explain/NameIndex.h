#pragma once

#include <map>
#include <set>
#include <string_view>

#include "agent/database/Database.h"
#include "agent/explain/KeyWatch.h"
#include "platform/Orin/String.h"
#include "platform/QosOc/ClassifierType.h"

namespace QosAgent {

/// Orders texts by their bytes, whatever type they have.
struct ByBytes {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const { return left < right; }
};
using Names = std::set<Orin::String, ByBytes>;

/// What was made from one term.
struct MadeFromTerm {
    bool hasClassMap = false;
    bool hasIpv4List = false;
    bool hasIpv6List = false;
    Names policyMaps;  ///< that have a class made from the term

    bool isEmpty() const {
        return !hasClassMap && !hasIpv4List && !hasIpv6List && policyMaps.empty();
    }
};

/// What was made from the terms of one classifier, and which policy maps use it.
struct MadeFromClassifier {
    std::map<Orin::String, MadeFromTerm, ByBytes> terms;  ///< only terms from which something was
    Names ipv4PolicyMaps;  ///< that name the classifier in the place for IPv4
    Names ipv6PolicyMaps;  ///< that name the classifier in the place for IPv6

    bool isEmpty() const {
        return terms.empty() && ipv4PolicyMaps.empty() && ipv6PolicyMaps.empty();
    }
};

/// Finds what was made from a classifier and its terms without a walk over the database.
///
/// The database finds class maps, access lists and classes by their names only. So the index reads
/// all names once, at construction, in linear time and memory; from then on it subscribes to the
/// collections and follows their changes. It looks at class maps and policy maps of type `mapQos`
/// and at access lists of types `ipv4` and `ipv6`.
class NameIndex {
public:
    /// The database must outlive the index.
    explicit NameIndex(const Database& database);

    /// Null if nothing was made from the classifier and no policy map uses it. The result is valid
    /// until the database changes.
    const MadeFromClassifier* find(std::string_view classifier) const;
    const std::map<Orin::String, MadeFromClassifier, ByBytes>& classifiers() const {
        return classifiers_;
    }

private:
    template <class Change>
    void change(const Orin::String& classifier, Change change);
    template <class Change>
    void changeTerm(const Orin::String& objName, Change change);
    bool handleClassMap(const KeyWatch::Keys& keys, bool isPresent);
    bool handleAccessList(const KeyWatch::Keys& keys, bool isPresent);
    bool handlePolicyMap(const KeyWatch::Keys& keys, bool isPresent);
    void handlePolicyMapName(const Orin::String& pmapName, bool isPresent);

    std::map<Orin::String, MadeFromClassifier, ByBytes> classifiers_;
    KeyWatch::Report classMapReport_;
    KeyWatch::Report accessListReport_;
    KeyWatch::Report policyMapReport_;
    KeyWatch classMaps_;
    KeyWatch accessLists_;
    KeyWatch policyMaps_;
};

}  // namespace QosAgent
