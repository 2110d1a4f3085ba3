#ifndef KOXMLLIB10_STRINGUTILS_H
#define KOXMLLIB10_STRINGUTILS_H

#include <cstdio>
#include <string>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// Replaces every occurrence of `find` (restarting from the front after each
// replacement). An empty `find`, or a `repl` that contains `find`, would never
// terminate that way; such calls replace each original occurrence once instead.
KOXML_API void FindReplace(std::string& s, const std::string& find, const std::string& repl);
KOXML_API void FindReplace(std::wstring& s, const std::wstring& find, const std::wstring& repl);

KOXML_API char* strupr(char* s);
KOXML_API long _filelength(FILE* f);

KOXML_API std::string PadZero(int value, unsigned char width);
KOXML_API std::string TrimTrainingZeros(std::string s);
// Fractional-seconds suffix (".5", ".00025", ...) of dates, times and durations.
KOXML_API std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano);

}  // namespace KoXmlLib10

#endif
