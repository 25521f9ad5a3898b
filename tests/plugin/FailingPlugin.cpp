#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/Qos/DefaultPluginLoader.h"

/// A plug-in that fails as the environment variable `FAILS` tells it: `WHEN HOW`, for example
/// `init own`.
namespace {

using Context = Agent::MounterPlugin::MounterContext;

/// Its code is gone when the library is.
class OwnFailure : public std::exception {
public:
    const char* what() const noexcept override { return "the queue\nis stuck"; }
};

class OwnMemoryFailure : public std::bad_alloc {
public:
    const char* what() const noexcept override { return "no room for queues"; }
};

class SilentFailure : public std::exception {
public:
    const char* what() const noexcept override { return ""; }
};

[[noreturn]] void fail(std::string_view how) {
    if (how == "own") throw OwnFailure();
    if (how == "memory") throw OwnMemoryFailure();
    if (how == "silent") throw SilentFailure();
    if (how == "runtime") throw std::runtime_error("no such queue");
    throw 42;
}

void failIfTold(const std::string& when) {
    const char* const told = std::getenv("FAILS");
    if (told != nullptr && std::string_view(told).starts_with(when + ' '))
        fail(std::string_view(told).substr(when.size() + 1));
}

class FailingPlugin : public PluginBase<Context> {
public:
    FailingPlugin() { failIfTold("load"); }
    void init(Context*) override {
        failIfTold(isInitialised_ ? "restart" : "init");
        isInitialised_ = true;
    }

private:
    bool isInitialised_ = false;
};

FailingPlugin plugin;
const Plugin::PluginRegistration<Context> registration("Failing", Qos::defaultPluginLoader(),
                                                       plugin);

}  // namespace
