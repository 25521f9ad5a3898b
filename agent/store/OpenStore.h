#pragma once

#include <memory>
#include <string>
#include <variant>

#include "agent/database/Database.h"
#include "agent/feed/Feed.h"
#include "agent/host/InstalledLibrary.h"
#include "agent/openconfig/Configuration.h"
#include "agent/store/Keeper.h"
#include "agent/store/Store.h"

namespace QosAgent {

/// A store that is open for one run of the program.
class OpenStore {
public:
    /// Opens the store, and fills the database and the configuration, both empty, with what it
    /// keeps. From then on it keeps what changes. Returns the store, or why it cannot be used. The
    /// caller keeps alive what it passes.
    static std::variant<std::unique_ptr<OpenStore>, StoreFault> open(
        const InstalledLibrary& library, const std::string& url, Database& database,
        Configuration& configuration, Feed& feed);

    /// Whether something was kept already.
    bool hadContents() const { return hadContents_; }
    Keeper& keeper() { return keeper_; }
    /// Waits until all that has changed so far is kept. Returns why it is not; then the inputs are
    /// back to what is kept.
    StoreFault keepAll();

private:
    OpenStore(std::unique_ptr<Store> store, Database& database, Configuration& configuration,
              Feed& feed)
        : store_(std::move(store)),
          hadContents_(store_->lastNumber() > 0),
          keeper_(*store_, database, configuration, feed) {}

    std::unique_ptr<Store> store_;
    bool hadContents_;
    Keeper keeper_;
};

}  // namespace QosAgent
