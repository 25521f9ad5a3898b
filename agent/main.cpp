#include <csignal>
#include <exception>

#include "agent/ExitCodes.h"
#include "agent/Run.h"
#include "agent/host/StandardStreams.h"
#include "agent/output/Diagnostics.h"

int main(int argc, char** argv) {
    QosAgent::holdStandardStreams();
    // A reader that goes away is a failed write, like any other.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const auto options = QosAgent::parseOptions(argc, argv);
        if (const auto* ended = std::get_if<QosAgent::ExitStatus>(&options)) return ended->status;
        return QosAgent::run(std::get<QosAgent::Options>(options));
    } catch (const std::exception& failure) {
        QosAgent::report(QosAgent::refusal("qos-agent", failure.what()));
        return QosAgent::kUnusable;
    }
}
