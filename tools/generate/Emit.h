// Writes the binding model as C++ files.
#ifndef KOXML_TOOLS_GENERATE_EMIT_H
#define KOXML_TOOLS_GENERATE_EMIT_H

#include <map>
#include <string>

#include "Binding.h"

namespace koxml::generate {

struct EmitOptions {
  std::string includePrefix;  // prepended to the includes of generated headers
  std::string exportMacro;    // placed on every generated class
  // When positive, also shard_1.cpp ... shard_<n>.cpp that include every
  // generated source among them.
  int shards = 0;
};

// File name -> contents, in a deterministic order.
std::map<std::string, std::string> Emit(const BindingModel& model, const EmitOptions& options);

}  // namespace koxml::generate

#endif
