#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>

#include "agent/database/ChangeReport.h"
#include "agent/database/Database.h"
#include "agent/database/Patch.h"

namespace QosAgent {

/// Changes the database as text asks, through the type records alone. Expects what has been
/// checked; publishes each change once, and only if something changed. Reports what it did to
/// `Database::inputChanges()`.
class Editor {
public:
    explicit Editor(Database& database)
        : interner_(database.interner()), report_(database.inputChanges()) {}

    /// Told where in the source text the next member of a collection stands.
    using Progress = std::function<void(std::size_t offset)>;
    void progressIs(Progress progress) { progress_ = std::move(progress); }

    /// Merges the value in. What does not exist is built whole and then attached with one published
    /// change.
    void update(const Path& path, const JsonValue& value);
    /// What is at the path goes, and the value comes.
    void replace(const Path& path, const JsonValue& value);
    /// Merges the value into an entity; sets any other value as a whole, in one published change.
    void set(const Path& path, const JsonValue& value);
    /// Takes out what is at the path, a member of a collection or what may be unset. Nothing
    /// happens when it is absent.
    void remove(const Path& path);
    /// Publishes the change of what is at the path again. Nothing happens below what is absent.
    void touch(const Path& path);

private:
    void patchEntity(Vex::TypedNode& node, const Keys& keys, const Patch& patch);
    void patchAttribute(Vex::TypedNode& node, const Keys& keys,
                        const Vex::AttributeRecord& attribute, const Patch& patch);
    void patchCollection(Vex::TypedNode& node, const Keys& keys,
                         const Vex::AttributeRecord& attribute, const Patch& patch);
    void patchMember(Vex::TypedNode& node, const Keys& keys, const Vex::AttributeRecord& attribute,
                     const Vex::Value& key, const Patch& patch);
    void patchEntityMember(Vex::TypedNode& node, const Keys& keys,
                           const Vex::AttributeRecord& attribute, const Vex::Value& key,
                           const Patch& patch);
    void patchChild(Vex::TypedNode& node, const Vex::AttributeRecord& attribute,
                    const Patch& patch);
    Vex::NodeRef built(const Vex::TypeRecord& type, const Keys& keys, const Patch& patch);
    void removeOthers(Vex::TypedNode& node, const Patch& patch);
    void removeOtherMembers(Vex::TypedNode& node, const Vex::AttributeRecord& attribute,
                            const std::optional<Patch>& patch);

    Vex::Value takenUnlessReported(Vex::Value& value) const;
    void reportReplacedPart(const Path& path);

    Interner& interner_;
    ChangeReport report_;
    Progress progress_;
};

}  // namespace QosAgent
