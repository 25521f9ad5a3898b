#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "agent/lmdb/LmdbStore.h"
#include "agent/store/Keeper.h"
#include "agent/store/Restore.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {

inline std::unique_ptr<Store> openedStore(const std::string& folder,
                                          Lmdb::LmdbStore::Step step = {}) {
    auto opened = Lmdb::LmdbStore::open(folder, std::move(step));
    if (const auto* fault = std::get_if<StoreFault>(&opened)) {
        ADD_FAILURE() << *fault;
        return nullptr;
    }
    return std::get<std::unique_ptr<Store>>(std::move(opened));
}

/// The inputs and the configuration, which no restart may change.
inline std::string inputsOf(const TextDatabase& database) {
    std::string text;
    for (const MountPoint& mount : mountPoints())
        if (!mount.isState) text += database.at(mount.path) + '\n';
    JsonWriter writer(text);
    database.configuration.tree().write(writer);
    return text;
}

/// A database that a store keeps, without machines.
class StoredDatabase : public TextDatabase {
public:
    explicit StoredDatabase(std::unique_ptr<Store> store) : store_(std::move(store)) {
        EXPECT_EQ(restore(*store_, database, configuration), "");
        feed_.emplace(database);
        keeper_.emplace(*store_, database, configuration, *feed_);
    }
    explicit StoredDatabase(const std::string& folder) : StoredDatabase(openedStore(folder)) {}

    /// Applies a line without waiting for it to be kept. Returns what `TextDatabase::apply` does.
    std::string begin(const std::string& line) {
        std::string refused = TextDatabase::apply(line);
        keeper_->endRequest();
        return refused;
    }
    std::string apply(const std::string& line) {
        std::string refused = begin(line);
        keeper_->flush();
        return refused;
    }
    std::string configurationText() const {
        std::string text;
        JsonWriter writer(text);
        configuration.tree().write(writer);
        return text;
    }
    /// All that is kept, as text.
    std::string contents() const { return all() + '\n' + configurationText(); }
    Keeper& keeper() { return *keeper_; }
    Feed& feed() { return *feed_; }

private:
    std::unique_ptr<Store> store_;
    std::optional<Feed> feed_;
    std::optional<Keeper> keeper_;
};

/// The same with the machines at work on it.
class StoredState : public StoredDatabase {
public:
    explicit StoredState(std::unique_ptr<Store> store)
        : StoredDatabase(std::move(store)),
          machines_(QosOc::ClassifierStateSm::ClassifierStateSmIs(
              root<const Qos::Status>("qos/status"),
              root<const Acl::Input::Config>("acl/config/cli"),
              root<const Qos::Input::Config>("qos/input/config/cli"),
              root<const QosOc::Config::ClassifiersDir>("qos/openconfig/config/classifiers"),
              root<QosOc::State::ClassifiersDir>("qos/openconfig/state/classifiers"))) {
        keeper().endRequest();
        keeper().flush();
    }
    explicit StoredState(const std::string& folder) : StoredState(openedStore(folder)) {}

private:
    template <class Root>
    Orin::Ptr<Root> root(std::string_view path) const {
        return Vex::entityCast<Root>(database.subtreeAt(path)->root);
    }

    Orin::Ptr<QosOc::ClassifierStateSm> machines_;
};

}  // namespace QosAgent
