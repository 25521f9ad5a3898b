#include "agent/host/PluginHost.h"

#include <dlfcn.h>

#include <algorithm>

#include "agent/host/LibraryFile.h"
#include "platform/Qos/DefaultPluginLoader.h"

namespace QosAgent {
namespace {

using Agent::MounterPlugin::MounterContext;

constexpr const char* kNotLoaded = "cannot be loaded: ";

/// The C library looks for a bare name elsewhere than in the working folder.
std::string asPath(const std::string& file) {
    return file.find('/') == std::string::npos ? "./" + file : file;
}

/// The C library's account of what went wrong, without the file name that it begins with.
std::string loadFault(const std::string& path) {
    const std::string text = ::dlerror();
    const std::string lead = path + ": ";
    return text.starts_with(lead) ? text.substr(lead.size()) : text;
}

}  // namespace

void PluginHost::CloseLibrary::operator()(void* library) const {
    ::dlclose(library);
}

PluginHost::PluginHost(const Orin::Ptr<Strata::EntityManager>& entityManager)
    : context_(Orin::Ptr<MounterContext>::adopt(new MounterContext(entityManager))) {}

PluginHost::~PluginHost() {
    // Code of the library destroys the mounters.
    context_->mounterDelAll();
    library_.reset();
}

std::optional<std::string> PluginHost::load(const std::string& file) {
    const std::string path = asPath(file);
    if (const std::string fault = libraryFileFault(path); !fault.empty()) return kNotLoaded + fault;
    library_.reset(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library_) return kNotLoaded + loadFault(path);
    if (Qos::defaultPluginLoader().registry().empty()) return "registers no plug-in";
    Qos::defaultPluginLoader().init(context_.get());
    return {};
}

bool PluginHost::restart(std::string_view plugin) {
    const auto& registry = Qos::defaultPluginLoader().registry();
    const auto isNamed = [plugin](const auto& registered) { return registered.name == plugin; };
    if (std::none_of(registry.begin(), registry.end(), isNamed)) return false;
    context_->mounterDelAll();
    Qos::defaultPluginLoader().init(context_.get());
    return true;
}

std::vector<Orin::Ptr<const Vex::TypedNode>> PluginHost::mounters() const {
    return {context_->mounters().begin(), context_->mounters().end()};
}

}  // namespace QosAgent
