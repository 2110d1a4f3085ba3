#include "KoXmlLib10/Version.h"

#include <atomic>

namespace KoXmlLib10 {

namespace {
// Set once at start-up by generated code; atomics keep a late reader well-defined.
std::atomic<int> g_generatorMajor{0};
std::atomic<int> g_generatorMinor{0};
}  // namespace

void SetGeneratorVersion(int major, int minor) {
  g_generatorMajor = major;
  g_generatorMinor = minor;
}

void GetGeneratorVersion(int& major, int& minor) {
  major = g_generatorMajor;
  minor = g_generatorMinor;
}

}  // namespace KoXmlLib10
