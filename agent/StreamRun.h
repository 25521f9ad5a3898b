#pragma once

#include <functional>
#include <string>

#include "agent/options/Options.h"
#include "agent/output/Output.h"
#include "agent/service/RequestApplier.h"
#include "agent/store/Keeper.h"
#include "agent/streams/AnsweredLine.h"
#include "agent/streams/StopSignals.h"

namespace QosAgent {

/// The part of a run that reads the INPUT streams itself, as no service is asked for: one after the
/// other, line by line, until they end or a signal asks to stop.
class StreamRun {
public:
    struct Outputs {
        StreamOutput& lines;  ///< for what the lines print
        const Output& out;    ///< where that is written in the end
        /// A line was answered. Returns whether the program goes on.
        std::function<bool(const AnsweredLine& line)> answered;
    };

    /// The caller keeps alive what it passes. `keeper` may be null.
    StreamRun(const Options& options, RequestApplier& applier, Keeper* keeper, Outputs outputs)
        : options_(options), applier_(applier), keeper_(keeper), outputs_(std::move(outputs)) {}

    /// Returns false if the program cannot go on; that was reported.
    bool run();

private:
    bool applyStream(const std::string& name, const StopSignals& stop);
    void keep(const std::string& name, bool isKept, std::size_t number);

    const Options& options_;
    RequestApplier& applier_;
    Keeper* keeper_;
    Outputs outputs_;
    bool goesOn_ = true;
};

}  // namespace QosAgent
