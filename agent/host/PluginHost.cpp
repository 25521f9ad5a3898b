#include "agent/host/PluginHost.h"

#include <dlfcn.h>

#include <algorithm>

#include "agent/host/LibraryFile.h"
#include "platform/Qos/DefaultPluginLoader.h"

namespace QosAgent {
namespace {

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
    : entityManager_(entityManager) {}

PluginHost::~PluginHost() {
    // Code of the library destroys the mounters.
    while (!plugins_.empty())
        plugins_.pop_back();
    library_.reset();
}

std::optional<std::string> PluginHost::load(const std::string& file) {
    const std::string path = asPath(file);
    if (const std::string fault = libraryFileFault(path); !fault.empty()) return kNotLoaded + fault;
    library_.reset(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library_) return kNotLoaded + loadFault(path);
    if (Qos::defaultPluginLoader().registry().empty()) return "registers no plug-in";
    for (const auto* initCaller : Qos::defaultPluginLoader().initCallers()) {
        plugins_.push_back({initCaller, Orin::Ptr<Context>::adopt(new Context(entityManager_))});
        (*initCaller)(plugins_.back().context.get());
    }
    return {};
}

bool PluginHost::restart(std::string_view plugin) {
    const auto& registry = Qos::defaultPluginLoader().registry();
    const auto named = std::find_if(registry.begin(), registry.end(),
                                    [plugin](const auto& each) { return each.name == plugin; });
    if (named == registry.end()) return false;
    for (const Hosted& hosted : plugins_) {
        if (hosted.initCaller != named->initCaller) continue;
        hosted.context->mounterDelAll();
        (*hosted.initCaller)(hosted.context.get());
    }
    return true;
}

std::vector<Orin::Ptr<const Vex::TypedNode>> PluginHost::mounters() const {
    std::vector<Orin::Ptr<const Vex::TypedNode>> all;
    for (const Hosted& hosted : plugins_)
        all.insert(all.end(), hosted.context->mounters().begin(), hosted.context->mounters().end());
    return all;
}

}  // namespace QosAgent
