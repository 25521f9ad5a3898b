#pragma once

#include <string_view>

#include "agent/feed/Feed.h"
#include "agent/service/Record.h"
#include "agent/service/Service.h"
#include "agent/store/Keeper.h"
#include "agent/streams/Operations.h"

namespace QosAgent {

/// Applies requests one after the other, on the event thread: the operation itself, then the record
/// of it, then the news of what it changed. Every line of every stream passes here.
class RequestApplier {
public:
    /// The caller keeps alive what it passes. `record` and `keeper` may be null.
    RequestApplier(Operations& operations, Feed& feed, Record* record, Keeper* keeper = nullptr)
        : operations_(operations), feed_(feed), record_(record), keeper_(keeper) {}

    /// Applies a line; what it prints goes to `output` at once, everything else is in the answer.
    Answer apply(std::string_view line, std::string_view door, StreamOutput& output);
    /// Applies a request; the answer has its output, too, and the line if it was, or may still be,
    /// refused.
    Answer apply(Request request);

private:
    void end(std::string_view line, std::string_view door, bool isRecorded);

    Operations& operations_;
    Feed& feed_;
    Record* record_;
    Keeper* keeper_;
};

/// The answer to a request that was applied, and taken back as it could not be kept.
Answer notKept(const StoreFault& fault);

}  // namespace QosAgent
