#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tests/model/Context.h"

namespace Model {

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
