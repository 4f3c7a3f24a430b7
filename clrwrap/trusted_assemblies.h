// The list of assemblies that the runtime may load.
#pragma once

#include <string>
#include <vector>

namespace clrwrap {

// All "*.dll" of the folders, sorted within each. Of several files of one name the first stays, so
// that an application folder can bring its own copy of what the runtime's folder holds too.
// Folders that can't be read are left out.
std::vector<std::string> list_assemblies(const std::vector<std::string> &folders);

} // namespace clrwrap
