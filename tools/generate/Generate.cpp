#include "Generate.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include "Binding.h"
#include "Emit.h"
#include "Schema.h"

namespace koxml::generate {

const char kGenerateUsage[] =
    "usage: koxml generate SCHEMA.xsd... --out DIR [options]\n"
    "\n"
    "Writes one header and one source per class, an umbrella header per schema\n"
    "(<Schema>Binding.h) and a namespace file per target namespace.\n"
    "\n"
    "generate options:\n"
    "  --out DIR                  output folder (created if missing)\n"
    "  --namespace-map URI=NS     C++ namespace for a target namespace (a::b allowed);\n"
    "                             otherwise one is derived from the URI\n"
    "  --location-map URI=FILE    local file for an import or include location, or\n"
    "                             for a namespace imported without a usable location\n"
    "  --include-prefix P         generated files include each other as \"P/X.h\"\n"
    "  --export-macro M           put M on every generated class and function\n"
    "  --root ELEMENT             generate only what ELEMENT needs (repeatable)\n"
    "  --report FILE              list every construct mapped with a loss\n"
    "  --shards N                 also write shard_1.cpp ... shard_N.cpp, which include\n"
    "                             all generated sources (fixed names for build systems)\n"
    "  --print-outputs            list the files that would be written, write nothing\n"
    "  --print-inputs             list the schema files read, write nothing\n"
    "  --depfile FILE TARGET      write a make dependency file: TARGET depends on every schema read\n";

namespace {

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

bool MakeDirectories(const std::string& path) {
  std::string partial;
  std::stringstream in(path);
  std::string part;
  if (!path.empty() && path[0] == '/') partial = "/";
  while (std::getline(in, part, '/')) {
    if (part.empty()) continue;
    partial += part + "/";
    if (mkdir(partial.c_str(), 0777) != 0 && errno != EEXIST) return false;
  }
  return true;
}

// Writes only when the contents differ, so that an unchanged class does not
// make a build recompile it.
void WriteIfChanged(const std::string& path, const std::string& contents) {
  {
    std::ifstream in(path, std::ios::binary);
    if (in) {
      std::string old((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
      if (old == contents) return;
    }
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << contents;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
}

std::pair<std::string, std::string> SplitMapping(const std::string& value, const char* option) {
  // The URI may hold '=' itself; the last one separates.
  const size_t eq = value.rfind('=');
  // An empty URI stands for no namespace.
  if (eq == std::string::npos || eq + 1 == value.size())
    throw UsageError(std::string(option) + " expects URI=VALUE, got '" + value + "'");
  return {value.substr(0, eq), value.substr(eq + 1)};
}

}  // namespace

int RunGenerate(int argc, char** argv) {
  try {
    std::vector<std::string> schemas;
    std::string out, reportFile, depFile, depTarget;
    LoadOptions load;
    MappingOptions mapping;
    EmitOptions emit;
    bool printOutputs = false, printInputs = false;
    for (int i = 1; i < argc; ++i) {
      const std::string arg = argv[i];
      auto value = [&]() -> std::string {
        if (i + 1 >= argc) throw UsageError("missing value after " + arg);
        return argv[++i];
      };
      if (arg == "--out") out = value();
      else if (arg == "--namespace-map") {
        auto [uri, ns] = SplitMapping(value(), "--namespace-map");
        mapping.namespaceMap[uri] = ns;
      } else if (arg == "--location-map") {
        auto [uri, file] = SplitMapping(value(), "--location-map");
        load.locationMap[uri] = file;
      } else if (arg == "--include-prefix") emit.includePrefix = value();
      else if (arg == "--export-macro") emit.exportMacro = value();
      else if (arg == "--root") mapping.roots.push_back(value());
      else if (arg == "--shards") {
        const std::string n = value();
        char* end = nullptr;
        const long count = std::strtol(n.c_str(), &end, 10);
        if (n.empty() || *end || count < 0 || count > 256) throw UsageError("--shards expects 0 to 256, got '" + n + "'");
        emit.shards = static_cast<int>(count);
      }
      else if (arg == "--report") reportFile = value();
      else if (arg == "--depfile") {
        depFile = value();
        depTarget = value();
      }
      else if (arg == "--print-outputs") printOutputs = true;
      else if (arg == "--print-inputs") printInputs = true;
      else if (arg == "--help" || arg == "-h") {
        std::fputs(kGenerateUsage, stdout);
        return 0;
      } else if (!arg.empty() && arg[0] == '-') throw UsageError("unknown option '" + arg + "'");
      else schemas.push_back(arg);
    }
    if (schemas.empty()) throw UsageError("generate needs at least one schema file");
    if (out.empty() && !printOutputs && !printInputs) throw UsageError("generate needs --out DIR");

    SchemaSet set;
    LoadSchemas(schemas, load, set);
    if (printInputs) {
      for (const auto& doc : set.documents) std::printf("%s\n", doc->path.c_str());
      if (!printOutputs) return 0;
    }
    BindingModel model;
    MapSchemas(set, schemas, mapping, model);
    const std::map<std::string, std::string> files = Emit(model, emit);
    if (printOutputs) {
      for (const auto& [name, text] : files) std::printf("%s\n", name.c_str());
      return 0;
    }
    if (!MakeDirectories(out)) throw std::runtime_error("cannot create " + out + ": " + std::strerror(errno));
    for (const auto& [name, text] : files) WriteIfChanged(out + "/" + name, text);

    std::ostringstream report;
    for (const Loss& loss : model.losses) report << loss.where.ToString() << ": " << loss.text << "\n";
    if (!reportFile.empty()) WriteIfChanged(reportFile, report.str());
    if (!depFile.empty()) {
      // Spaces in paths are escaped as make expects.
      auto escape = [](const std::string& path) {
        std::string e;
        for (char ch : path) e += ch == ' ' ? std::string("\\ ") : std::string(1, ch);
        return e;
      };
      std::string dep = escape(depTarget) + ":";
      for (const auto& doc : set.documents) dep += " \\\n  " + escape(doc->path);
      WriteIfChanged(depFile, dep + "\n");
    }
    size_t classes = model.classes.size(), enums = model.enums.size();
    std::fprintf(stderr, "koxml generate: %zu classes, %zu enumerations, %zu files in %s", classes, enums,
                 files.size(), out.c_str());
    if (!model.losses.empty())
      std::fprintf(stderr, "; %zu constructs mapped with a loss%s\n", model.losses.size(),
                   reportFile.empty() ? " (--report FILE lists them)" : (" (listed in " + reportFile + ")").c_str());
    else
      std::fprintf(stderr, "; nothing lost\n");
    return 0;
  } catch (const UsageError& e) {
    std::fprintf(stderr, "koxml generate: %s\n%s", e.what(), kGenerateUsage);
    return 2;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "koxml generate: %s\n", e.what());
    return 1;
  }
}

}  // namespace koxml::generate
