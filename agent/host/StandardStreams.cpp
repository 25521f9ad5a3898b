#include "agent/host/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace QosAgent {

void holdStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) >= 0) continue;
        // This opens the lowest free number, which is this one, in the wrong direction.
        ::open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}  // namespace QosAgent
