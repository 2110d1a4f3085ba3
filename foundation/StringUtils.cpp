#include "KoXmlLib10/StringUtils.h"

#include <cctype>

namespace KoXmlLib10 {

namespace {

template <class String>
void FindReplaceImpl(String& s, const String& find, const String& repl) {
  if (find.empty()) return;
  if (repl.find(find) != String::npos) {
    // Restarting from the front would loop forever; replace left to right once.
    for (size_t pos = s.find(find); pos != String::npos; pos = s.find(find, pos + repl.size()))
      s.replace(pos, find.size(), repl);
    return;
  }
  for (size_t pos = s.find(find); pos != String::npos; pos = s.find(find))
    s.replace(pos, find.size(), repl);
}

}  // namespace

void FindReplace(std::string& s, const std::string& find, const std::string& repl) {
  FindReplaceImpl(s, find, repl);
}

void FindReplace(std::wstring& s, const std::wstring& find, const std::wstring& repl) {
  FindReplaceImpl(s, find, repl);
}

char* strupr(char* s) {
  for (char* p = s; *p; ++p) *p = static_cast<char>(std::toupper(static_cast<unsigned char>(*p)));
  return s;
}

long _filelength(FILE* f) {
  const long here = std::ftell(f);
  if (here < 0 || std::fseek(f, 0, SEEK_END) != 0) return -1;
  const long length = std::ftell(f);
  if (length < 0 || std::fseek(f, here, SEEK_SET) != 0) return -1;
  return length;
}

std::string PadZero(int value, unsigned char width) {
  char buffer[256];
  std::snprintf(buffer, sizeof buffer, "%0*d", static_cast<int>(width), value);
  return buffer;
}

std::string TrimTrainingZeros(std::string s) {
  const size_t last = s.find_last_not_of('0');
  if (last == std::string::npos) return s.empty() ? s : std::string("0");
  s.resize(last + 1);
  return s;
}

std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano) {
  if (nano != 0) return "." + PadZero(milli, 3) + PadZero(micro, 3) + TrimTrainingZeros(PadZero(nano, 3));
  if (micro != 0) return "." + PadZero(milli, 3) + TrimTrainingZeros(PadZero(micro, 3));
  if (milli != 0) return "." + TrimTrainingZeros(PadZero(milli, 3));
  return std::string();
}

}  // namespace KoXmlLib10
