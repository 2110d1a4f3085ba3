#ifndef KOXMLLIB10_VERSION_H
#define KOXMLLIB10_VERSION_H

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// The run-time version of this library.
constexpr int RUNTIME_VERSION_MAJOR = 10;
constexpr int RUNTIME_VERSION_MINOR = 1;

// Generated code announces the generator version it was produced by before it
// creates its first object; the entry points compare it with the run time.
KOXML_API void SetGeneratorVersion(int major, int minor);
KOXML_API void GetGeneratorVersion(int& major, int& minor);

}  // namespace KoXmlLib10

#endif
