#pragma once

#include <list>
#include <string>
#include <utility>

#include "tests/model/Context.h"

namespace Model {

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

}  // namespace Model
