#pragma once

#include <string>

/// The paths of the files that belong to the program, in a build tree or installed.
namespace QosAgent {

/// Returns the plug-in's library: beside the program, otherwise in the `lib` folder next to it.
std::string defaultPluginFile();
/// Returns the path of one of the program's libraries, by file name; empty if it is not installed.
std::string installedLibrary(const std::string& name);
/// Returns the installed `etc` folder; empty if there is none.
std::string defaultToggleFolder();

}  // namespace QosAgent
