#pragma once

#include <string>

/// Where the parts of the system lie that came with the program, in a build tree or installed.
namespace QosAgent {

/// The plug-in's library beside the program, else in the `lib` folder beside the program's.
std::string defaultPluginFile();
/// A library of the program's own, by its file name; empty if it is not installed.
std::string installedLibrary(const std::string& name);
/// The installed `etc` folder; empty if there is none.
std::string defaultToggleFolder();

}  // namespace QosAgent
