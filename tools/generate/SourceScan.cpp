#include "SourceScan.h"

namespace koxml::generate {

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The value of an attribute with the five predefined entities and character
// references replaced (enough for namespace URIs).
std::string Unescape(std::string_view raw) {
  std::string out;
  for (size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] != '&') {
      out += raw[i];
      continue;
    }
    const size_t semi = raw.find(';', i);
    if (semi == std::string_view::npos) {
      out += raw.substr(i);
      break;
    }
    const std::string_view entity = raw.substr(i + 1, semi - i - 1);
    if (entity == "amp") out += '&';
    else if (entity == "lt") out += '<';
    else if (entity == "gt") out += '>';
    else if (entity == "quot") out += '"';
    else if (entity == "apos") out += '\'';
    else if (!entity.empty() && entity[0] == '#') {
      unsigned long code = entity.size() > 1 && (entity[1] == 'x' || entity[1] == 'X')
                               ? std::stoul(std::string(entity.substr(2)), nullptr, 16)
                               : std::stoul(std::string(entity.substr(1)), nullptr, 10);
      if (code < 0x80) out += static_cast<char>(code);
      else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
      } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
      } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
      }
    } else {
      out.append(raw.substr(i, semi - i + 1));
    }
    i = semi;
  }
  return out;
}

}  // namespace

std::vector<StartTag> ScanStartTags(std::string_view text) {
  std::vector<StartTag> tags;
  int line = 1;
  size_t i = 0;
  const size_t n = text.size();
  auto advanceTo = [&](size_t end) {
    for (; i < end && i < n; ++i)
      if (text[i] == '\n') ++line;
  };
  auto skipPast = [&](std::string_view terminator) {
    const size_t end = text.find(terminator, i);
    advanceTo(end == std::string_view::npos ? n : end + terminator.size());
  };
  while (i < n) {
    if (text[i] != '<') {
      if (text[i] == '\n') ++line;
      ++i;
      continue;
    }
    const std::string_view rest = text.substr(i);
    if (rest.substr(0, 4) == "<!--") {
      skipPast("-->");
    } else if (rest.substr(0, 9) == "<![CDATA[") {
      skipPast("]]>");
    } else if (rest.substr(0, 2) == "<?") {
      skipPast("?>");
    } else if (rest.substr(0, 2) == "<!") {
      // A declaration such as DOCTYPE, with an internal subset in brackets
      // and quoted literals that may hold any character.
      int depth = 0;
      char quote = 0;
      for (; i < n; ++i) {
        const char c = text[i];
        if (c == '\n') ++line;
        if (quote) {
          if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
          quote = c;
        } else if (c == '[') {
          ++depth;
        } else if (c == ']') {
          --depth;
        } else if (c == '>' && depth <= 0) {
          ++i;
          break;
        } else if (c == '<' && depth > 0 && text.substr(i, 4) == "<!--") {
          const size_t end = text.find("-->", i);
          for (size_t j = i; j < (end == std::string_view::npos ? n : end + 2); ++j)
            if (text[j] == '\n') ++line;
          i = end == std::string_view::npos ? n - 1 : end + 2;
        }
      }
    } else if (rest.substr(0, 2) == "</") {
      skipPast(">");
    } else {
      StartTag tag;
      tag.line = line;
      ++i;
      // The element name, then attributes up to '>' or '/>'.
      while (i < n && !IsSpace(text[i]) && text[i] != '>' && text[i] != '/') ++i;
      while (i < n && text[i] != '>') {
        if (IsSpace(text[i]) || text[i] == '/') {
          if (text[i] == '\n') ++line;
          ++i;
          continue;
        }
        const size_t nameStart = i;
        while (i < n && text[i] != '=' && !IsSpace(text[i]) && text[i] != '>') ++i;
        const std::string_view name = text.substr(nameStart, i - nameStart);
        while (i < n && (IsSpace(text[i]) || text[i] == '=')) {
          if (text[i] == '\n') ++line;
          ++i;
        }
        if (i >= n || (text[i] != '"' && text[i] != '\'')) continue;
        const char quote = text[i++];
        const size_t valueStart = i;
        while (i < n && text[i] != quote) {
          if (text[i] == '\n') ++line;
          ++i;
        }
        const std::string_view value = text.substr(valueStart, i - valueStart);
        if (i < n) ++i;
        if (name == "xmlns") tag.declarations.emplace_back("", Unescape(value));
        else if (name.substr(0, 6) == "xmlns:") tag.declarations.emplace_back(std::string(name.substr(6)), Unescape(value));
      }
      if (i < n) ++i;
      tags.push_back(std::move(tag));
    }
  }
  return tags;
}

}  // namespace koxml::generate
