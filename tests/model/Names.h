#pragma once

#include <string>
#include <string_view>

/// How the names of class maps, access lists and policy maps tell what they were made from.
namespace Model {

struct TermName {
    std::string classifier;
    std::string id;
    /// False: the name was not made from a term.
    explicit operator bool() const { return !classifier.empty() && !id.empty(); }
};
TermName termNamed(std::string_view object);

struct ClassifierPair {
    std::string ipv4;
    std::string ipv6;
};
/// Both empty: the name was not made from a pair.
ClassifierPair classifiersOfPolicyMap(std::string_view policyMap);

/// The classifier that an ordinary class map stands for; empty if it stands for none.
std::string classifierOfClassMap(std::string_view classMap);

/// The name of what is made of two parts.
std::string madeOf(std::string_view first, std::string_view second);

}  // namespace Model
