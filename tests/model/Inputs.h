#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/model/Change.h"
#include "tests/model/Thing.h"

namespace Model {

/// The database without the state tree, as documents and change streams make it: what they change,
/// in which order, and which changes are published.
class Inputs {
public:
    /// Told of each published change, when it has been made; `key` is that of the member.
    using Listener = std::function<void(const Thing& entity, std::string_view attribute,
                                        const std::string& key)>;

    Inputs();

    const Ref& root(const Mount& mount) const;
    /// Nobody listens: null.
    void listenerIs(Listener listener) { listener_ = std::move(listener); }

    /// Merges the subtree's value in.
    void merge(std::string_view mount, const Json& value);
    /// Any change but a restart.
    void apply(const Change& change);
    /// All that is there, as a document.
    Json document() const;

    /// A new entity with what the value says of it.
    static Ref built(const Type& type, const std::string& key, const Json& value);

private:
    /// Where a path ends: at an attribute of an entity, or inside the value there.
    struct Spot {
        Thing* entity;
        const Attribute* attribute;
        std::string key;
        std::vector<std::string> inside;
    };

    Thing* rootAt(std::string_view path) const;
    /// No entity: one on the way does not exist.
    Spot spotOf(const Change& change) const;
    void remove(const Spot& spot);
    void touch(const Spot& spot) const;

    void mergeEntity(Thing& entity, const Json& value);
    void mergeCollection(Thing& entity, const Attribute& attribute, const Json& value);
    void mergeMember(Thing& entity, const Attribute& attribute, const std::string& key,
                     const Json& value);
    void mergeOne(Thing& entity, const Attribute& attribute, const Json& value);
    void removeOthers(Thing& entity, const Json& value);
    void removeOtherMembers(Thing& entity, const Attribute& attribute, const Json* value);

    void oneIs(Thing& entity, const Attribute& attribute, const Ref& thing);
    void memberIs(Thing& entity, const Attribute& attribute, const std::string& key,
                  const Ref& thing);
    void memberDel(Thing& entity, const Attribute& attribute, const std::string& key);
    void publish(const Thing& entity, const Attribute& attribute, const std::string& key) const;

    std::vector<std::pair<std::string_view, Ref>> roots_;
    Listener listener_;
};

}  // namespace Model
