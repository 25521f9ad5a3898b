#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "agent/loop/LoopModule.h"

namespace QosAgent {

/// The loop of the build tree.
inline const LoopModule& loopModule() {
    static const LoopModule* const opened = [] {
        void* library = ::dlopen(QOS_LOOP_FILE, RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(library, nullptr) << ::dlerror();
        return reinterpret_cast<const LoopModule* (*)()>(::dlsym(library, kLoopSymbol))();
    }();
    return *opened;
}

}  // namespace QosAgent
