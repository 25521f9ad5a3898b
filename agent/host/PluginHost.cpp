#include "agent/host/PluginHost.h"

#include <dlfcn.h>

#include <algorithm>

#include "agent/host/PluginFault.h"
#include "agent/json/Excerpt.h"
#include "platform/Qos/DefaultPluginLoader.h"

namespace QosAgent {
namespace {

constexpr const char* kNotLoaded = "cannot be loaded: ";
constexpr const char* kNotStarted = "cannot be started: ";

/// Here a file named `-` does not mean standard input.
std::string asPath(const std::string& file) {
    return file.find('/') == std::string::npos ? "./" + file : file;
}

/// Returns the C library's error message without the file name at its beginning.
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
    file_.emplace(asPath(file));
    if (const std::string fault = file_->fault(); !fault.empty()) return kNotLoaded + fault;
    const std::string name = file_->loadName();
    // Static objects of the library may throw. The library then stays mapped for good.
    const auto thrown =
        faultOfPlugin([&] { library_.reset(::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL)); });
    if (thrown) return kNotStarted + *thrown;
    if (!library_) return kNotLoaded + loadFault(name);
    if (Qos::defaultPluginLoader().registry().empty()) return "registers no plug-in";
    for (const auto* initCaller : Qos::defaultPluginLoader().initCallers()) {
        plugins_.push_back({initCaller, Orin::Ptr<Context>::adopt(new Context(entityManager_))});
        if (auto fault = start(plugins_.back())) return fault;
    }
    return {};
}

std::optional<std::string> PluginHost::start(const Hosted& hosted) {
    const auto thrown = faultOfPlugin([&] { (*hosted.initCaller)(hosted.context.get()); });
    if (!thrown) return {};
    hosted.context->mounterDelAll();
    return kNotStarted + *thrown;
}

std::optional<std::string> PluginHost::restart(std::string_view plugin) {
    const auto& registry = Qos::defaultPluginLoader().registry();
    const auto named = std::find_if(registry.begin(), registry.end(),
                                    [plugin](const auto& each) { return each.name == plugin; });
    if (named == registry.end()) return "no plug-in is called " + excerpt(plugin);
    for (const Hosted& hosted : plugins_) {
        if (hosted.initCaller != named->initCaller) continue;
        hosted.context->mounterDelAll();
        if (auto fault = start(hosted)) return fault;
    }
    return {};
}

std::vector<Orin::Ptr<const Vex::TypedNode>> PluginHost::mounters() const {
    std::vector<Orin::Ptr<const Vex::TypedNode>> all;
    for (const Hosted& hosted : plugins_)
        all.insert(all.end(), hosted.context->mounters().begin(), hosted.context->mounters().end());
    return all;
}

}  // namespace QosAgent
