#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "agent/streams/Operations.h"
#include "agent/streams/StreamOutput.h"
#include "tests/model/State.h"

namespace Model {

/// The agent with the plug-in that was built, as the program has it, and what it does.
class SeenAgent {
public:
    explicit SeenAgent(bool isTraced);
    ~SeenAgent();
    SeenAgent(const SeenAgent&) = delete;
    SeenAgent& operator=(const SeenAgent&) = delete;

    /// Why a document or a line was refused; empty if it was not.
    std::string load(const std::string& document);
    std::string start(const std::string& plugin);
    std::string apply(const std::string& line);
    /// Destroys the plug-in's mounter. Nothing is started anew.
    void tearDown() { host_.reset(); }

    Published published() const;
    /// The state tree as it is printed.
    std::string stateText() const;
    /// The trace lines since the last call.
    std::vector<std::string> takeLines() { return std::exchange(lines_, {}); }

private:
    QosAgent::Database database_;
    QosAgent::Configuration configuration_{database_};
    std::optional<QosAgent::PluginHost> host_;
    std::optional<QosAgent::Operations> operations_;
    std::vector<std::string> lines_;
};

/// Compares trace lines: each machine of the model must have an address of its own for as long as
/// it is heard of.
class LineMatcher {
public:
    /// What differs; empty if nothing does.
    std::string difference(const std::vector<Line>& expected, const std::vector<std::string>& seen);

private:
    bool matches(const Line& expected, std::string_view seen);
    bool isAddressOf(Id machine, std::string_view address);

    std::map<Id, std::string> addressOf_;
    std::map<std::string, Id, std::less<>> machineAt_;
};

}  // namespace Model
