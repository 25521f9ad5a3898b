#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "agent/database/Checker.h"
#include "agent/database/Editor.h"
#include "agent/database/Path.h"
#include "agent/host/PluginHost.h"
#include "agent/json/JsonReader.h"
#include "agent/openconfig/Configuration.h"
#include "agent/streams/PrintOperation.h"
#include "agent/streams/StreamOutput.h"

namespace QosAgent {

struct Verb;

/// Returns true if the line holds no operation: it is empty or a comment.
bool isPassedOver(std::string_view line);

/// Applies the operations of change streams, one JSON object on each line. It checks a line as a
/// whole before it applies any part of it.
class Operations {
public:
    /// The arguments must outlive the operations.
    Operations(Database& database, Configuration& configuration, PluginHost& host);

    /// Applies a line; no-op if the line is empty or a comment. Writes what the operation prints to
    /// `output`. Returns a fault if the line is refused; nothing has changed then.
    std::optional<Fault> apply(std::string_view line, StreamOutput& output);
    /// Returns true if the last applied line may have changed something, unlike `print`.
    bool mayChange() const { return mayChange_; }
    /// Returns the index of the refused edit of the last line, from 0; nothing if the line was not
    /// a refused `configure`.
    std::optional<std::size_t> refusedEdit() const { return refusedEdit_; }
    /// Returns the warnings of the last line, and forgets them.
    std::vector<Warning> takeWarnings() { return std::exchange(warnings_, {}); }

private:
    friend struct Verb;
    using Result = std::optional<Fault>;

    Result applyOperation();
    Result update(const JsonValue& path, const JsonValue* value);
    Result replace(const JsonValue& path, const JsonValue* value);
    Result remove(const JsonValue& path, const JsonValue* value);
    Result touch(const JsonValue& path, const JsonValue* value);
    Result openconfig(const JsonValue& document, const JsonValue* value);
    Result configure(const JsonValue& edits, const JsonValue* value);
    Result print(const JsonValue& what, const JsonValue* value);
    Result echo(const JsonValue& text, const JsonValue* value);
    Result restart(const JsonValue& plugin, const JsonValue* value);
    Result follow(const JsonValue& isWanted, const JsonValue* value);

    /// Parses the path, and checks the value if there is one.
    std::variant<Path, Fault> place(const JsonValue& path, const JsonValue* value);

    Database& database_;
    Configuration& configuration_;
    PluginHost& host_;
    StreamOutput* output_ = nullptr;  ///< of the line that is being applied
    std::optional<Json> json_;        ///< the line that is being applied
    PrintOperation printer_;
    Checker checker_;
    Editor editor_;
    bool mayChange_ = false;
    std::optional<std::size_t> refusedEdit_;
    std::vector<Warning> warnings_;
};

}  // namespace QosAgent
