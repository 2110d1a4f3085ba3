#include "Names.h"

#include <cctype>

namespace koxml::generate {

namespace {

const char* const kKeywords[] = {
    "alignas",   "alignof",      "and",          "and_eq",   "asm",       "auto",          "bitand",
    "bitor",     "bool",         "break",        "case",     "catch",     "char",          "char16_t",
    "char32_t",  "class",        "compl",        "const",    "constexpr", "const_cast",    "continue",
    "decltype",  "default",      "delete",       "do",       "double",    "dynamic_cast",  "else",
    "enum",      "explicit",     "export",       "extern",   "false",     "float",         "for",
    "friend",    "goto",         "if",           "inline",   "int",       "long",          "mutable",
    "namespace", "new",          "noexcept",     "not",      "not_eq",    "nullptr",       "operator",
    "or",        "or_eq",        "private",      "protected", "public",   "register",      "reinterpret_cast",
    "return",    "short",        "signed",       "sizeof",   "static",    "static_assert", "static_cast",
    "struct",    "switch",       "template",     "this",     "thread_local", "throw",      "true",
    "try",       "typedef",      "typeid",       "typename", "union",     "unsigned",      "using",
    "virtual",   "void",         "volatile",     "wchar_t",  "while",     "xor",           "xor_eq",
    "concept",   "requires",     "co_await",     "co_return", "co_yield", "char8_t",       "final",
    "override",  "import",       "module",       "std",      "KoXmlLib10", "KoXmlLib10Data", "errno",
    "assert",    "NULL",         "EOF",          "TRUE",     "FALSE",     "stdin",         "stdout",
    "stderr",    "DELETE",       "IN",           "OUT",      "ERROR",     "OPTIONAL",      "linux",
    "unix"};

bool IsAlnum(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

}  // namespace

bool IsKeyword(const std::string& word) {
  for (const char* k : kKeywords)
    if (word == k) return true;
  return false;
}

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

std::string Identifier(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (IsAlnum(c) || c == '_') out += c;
    else if (static_cast<unsigned char>(c) >= 0x80) {
      static const char kHex[] = "0123456789abcdef";
      out += 'x';
      out += kHex[(static_cast<unsigned char>(c) >> 4) & 15];
      out += kHex[static_cast<unsigned char>(c) & 15];
    } else if (!out.empty() && out.back() != '_') {
      out += '_';
    }
  }
  while (!out.empty() && out.back() == '_') out.pop_back();
  // Double underscores and a leading underscore before a capital are reserved.
  std::string clean;
  for (char c : out)
    if (!(c == '_' && !clean.empty() && clean.back() == '_')) clean += c;
  while (!clean.empty() && clean[0] == '_') clean.erase(0, 1);
  if (clean.empty()) clean = "value";
  if (std::isdigit(static_cast<unsigned char>(clean[0]))) clean = "n" + clean;
  if (IsKeyword(clean)) clean += "_";
  return clean;
}

std::string UpperCamel(const std::string& name) {
  std::string out;
  bool upper = true;
  for (char c : name) {
    if (IsAlnum(c)) {
      out += upper ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
      upper = false;
    } else if (static_cast<unsigned char>(c) >= 0x80) {
      static const char kHex[] = "0123456789abcdef";
      out += 'x';
      out += kHex[(static_cast<unsigned char>(c) >> 4) & 15];
      out += kHex[static_cast<unsigned char>(c) & 15];
      upper = false;
    } else {
      upper = true;
    }
  }
  if (out.empty()) out = "Value";
  if (std::isdigit(static_cast<unsigned char>(out[0]))) out = "N" + out;
  return out;
}

std::string LowerCamel(const std::string& name) {
  std::string out = UpperCamel(name);
  out[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(out[0])));
  if (IsKeyword(out)) out += "_";
  return out;
}

std::string Plural(const std::string& name) {
  auto ends = [&](const char* s) {
    const std::string suffix(s);
    return name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
  };
  if (ends("s") || ends("x") || ends("z") || ends("ch") || ends("sh")) return name + "es";
  if (name.size() > 1 && ends("y") && std::string("aeiouAEIOU").find(name[name.size() - 2]) == std::string::npos)
    return name.substr(0, name.size() - 1) + "ies";
  return name + "s";
}

std::string EnumIdentifier(const std::string& value) {
  if (value.empty()) return "empty";
  std::string id;
  for (char c : value) {
    if (IsAlnum(c) || c == '_') id += c;
    else if (c == '-' || c == '.' || c == ' ' || c == ':' || c == '/') id += '_';
    else if (c == '+') id += "plus";
    else {
      static const char kHex[] = "0123456789abcdef";
      id += 'x';
      id += kHex[(static_cast<unsigned char>(c) >> 4) & 15];
      id += kHex[static_cast<unsigned char>(c) & 15];
    }
  }
  return Identifier(id);
}

std::string NameSet::Unique(const std::string& wanted, std::initializer_list<const char*> suffixes) {
  std::string candidate = wanted;
  if (Taken(candidate)) {
    for (const char* suffix : suffixes) {
      if (!Taken(wanted + suffix)) {
        candidate = wanted + suffix;
        break;
      }
    }
  }
  for (int n = 2; Taken(candidate); ++n) candidate = wanted + std::to_string(n);
  Reserve(candidate);
  return candidate;
}

}  // namespace koxml::generate
