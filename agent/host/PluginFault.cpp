#include "agent/host/PluginFault.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <typeinfo>

namespace QosAgent {
namespace {

/// Returns the type name of the exception that is being handled.
std::string typeOfException() {
    const char* const name = abi::__cxa_current_exception_type()->name();
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return "an exception of type " + std::string(status == 0 ? readable.get() : name);
}

}  // namespace

std::optional<std::string> faultOfPlugin(const std::function<void()>& code) {
    try {
        code();
        return {};
    } catch (const std::bad_alloc&) {
        // A new exception: the class of the thrown one may be the plug-in's.
        throw std::bad_alloc();
    } catch (const std::exception& thrown) {
        const std::string text = thrown.what();
        return text.empty() ? typeOfException() : text;
    } catch (...) {
        return typeOfException();
    }
}

}  // namespace QosAgent
