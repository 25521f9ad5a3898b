#include <csignal>

#include "agent/Run.h"
#include "agent/host/StandardStreams.h"

int main(int argc, char** argv) {
    QosAgent::holdStandardStreams();
    // A reader that goes away is a failed write, like any other.
    std::signal(SIGPIPE, SIG_IGN);
    return QosAgent::runProgram(argc, argv);
}
