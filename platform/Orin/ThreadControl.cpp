#include "platform/Orin/ThreadControl.h"

namespace Orin {

bool ThreadControl::severalThreadsActive_ = false;

}  // namespace Orin
