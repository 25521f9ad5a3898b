#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Thing.h"
#include "tests/model/Trace.h"
#include "tests/model/Wrong.h"

namespace Model {

/// Of a classifier: 0 is IPv4.
enum class Family { ipv4, ipv6 };
std::string nameOf(Family family);

struct Conditions {
    std::optional<unsigned> dscp;
    std::vector<unsigned> dscpSet;
    bool operator==(const Conditions&) const = default;
};

struct PublishedTerm {
    std::string id;
    std::string stateId;
    std::optional<std::array<Conditions, 2>> conditions;  ///< by family
    std::optional<std::string> targetGroup;               ///< present: the term has actions
    bool operator==(const PublishedTerm&) const = default;
};

struct PublishedClassifier {
    std::string name;
    Family type;
    std::optional<std::vector<PublishedTerm>> terms;  ///< in order of entry
    bool operator==(const PublishedClassifier&) const = default;

    PublishedTerm* term(const std::string& id);
};

/// What is published: classifiers in order of entry.
using Published = std::vector<PublishedClassifier>;
/// What was left behind by an earlier run.
Published publishedFrom(const Thing& stateDir);
Json documentOf(const Published& published);
std::string shown(const PublishedTerm& term);
std::string shown(const Published& published);

/// The state tree and the functions that write it, each with its trace line.
class State {
public:
    State(Trace& trace, Wrong wrong) : trace_(trace), wrong_(wrong) {}

    Published published;
    /// What class maps have deleted, as `C` or `C` and a line break and `T`.
    std::vector<std::string> deleted;

    void addClassifier(const std::string& name, Family type);
    void deleteClassifier(const std::string& name);
    void addTerm(const std::string& name, Family type, const std::string& id);
    void deleteTerm(const std::string& name, const std::string& id);
    void addCondition(const std::string& name, Family type, const std::string& id,
                      const std::vector<unsigned>& values);
    void deleteCondition(const std::string& name, const std::string& id, bool removesContainer);
    void addAction(const std::string& name, Family type, const std::string& id,
                   const std::string& targetGroup);
    void deleteAction(const std::string& name, const std::string& id);

private:
    PublishedClassifier* classifier(const std::string& name);
    /// Null where the classifier, its terms or the term is absent.
    PublishedTerm* term(const std::string& name, const std::string& id);

    Trace& trace_;
    Wrong wrong_;
};

}  // namespace Model
