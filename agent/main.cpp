#include <csignal>

#include "agent/Run.h"
#include "agent/host/StandardStreams.h"

int main(int argc, char** argv) {
    QosAgent::holdStandardStreams();
    // A reader that goes away, or a file that may not grow, is a failed write, like any other.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return QosAgent::runProgram(argc, argv);
}
