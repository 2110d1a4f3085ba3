// `koxml generate`: C++ classes for this library from XML Schema files.
#ifndef KOXML_TOOLS_GENERATE_GENERATE_H
#define KOXML_TOOLS_GENERATE_GENERATE_H

namespace koxml::generate {

extern const char kGenerateUsage[];

// argv[0] is "generate"; returns the process exit code.
int RunGenerate(int argc, char** argv);

}  // namespace koxml::generate

#endif
