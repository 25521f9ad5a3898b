#include "agent/StreamRun.h"

#include <cstring>

#include "agent/host/File.h"
#include "agent/json/JsonReader.h"
#include "agent/output/Diagnostics.h"
#include "agent/streams/LineReader.h"

namespace QosAgent {
namespace {

bool unusable(const std::string& file, int error) {
    report(refusal(file, std::strerror(error)));
    return false;
}

}  // namespace

bool StreamRun::run() {
    const StopSignals stop;
    for (const std::string& stream : options_.streams) {
        if (stop.isStopRequested()) break;
        if (!applyStream(stream, stop)) return false;
    }
    return true;
}

bool StreamRun::applyStream(const std::string& name, const StopSignals& stop) {
    const File file = File::toReadLater(name);
    if (file.error() != 0) return unusable(name, file.error());
    LineReader lines(file.fd(), Limits{}.lineBytes, stop);
    while (goesOn_ && outputs_.out.fault().empty() && lines.next()) {
        Answer answer = applier_.apply(lines.line(), name, outputs_.lines);
        if (answer.refused) answer.line = lines.line();
        goesOn_ = outputs_.answered({name, file.isKept(), lines.number(), answer});
        if (keeper_ != nullptr) keep(name, file.isKept(), lines.number());
    }
    if (keeper_ != nullptr) keeper_->flush();
    return goesOn_ && (lines.error() == 0 || unusable(name, lines.error()));
}

/// Has the line that was applied kept while others are read.
void StreamRun::keep(const std::string& name, bool isKept, std::size_t number) {
    keeper_->whenKept([this, name, isKept, number](const StoreFault& fault) {
        if (fault.empty()) return;
        const Answer refused = notKept(fault);
        if (!outputs_.answered({name, isKept, number, refused})) goesOn_ = false;
    });
    if (keeper_->isFull())
        keeper_->flush();
    else
        keeper_->poll();
}

}  // namespace QosAgent
