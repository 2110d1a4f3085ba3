#ifndef KOXMLLIB10_FOUNDATION_SHORTTEXT_H
#define KOXMLLIB10_FOUNDATION_SHORTTEXT_H

#include <cstdint>
#include <cstring>
#include <string_view>

namespace KoXmlLib10 {

// Equality of texts that are mostly names and namespace URIs of a few dozen
// bytes, compared word by word inline instead of through memcmp.
inline bool SameText(std::string_view a, std::string_view b) {
  size_t n = a.size();
  if (n != b.size()) return false;
  const char* p = a.data();
  const char* q = b.data();
  if (n < 8) {
    for (size_t i = 0; i < n; ++i)
      if (p[i] != q[i]) return false;
    return true;
  }
  const auto differ = [](const char* x, const char* y) {
    uint64_t u, v;
    std::memcpy(&u, x, sizeof u);
    std::memcpy(&v, y, sizeof v);
    return u != v;
  };
  // Whole words, then the last word again (it may overlap the one before).
  for (; n > 8; n -= 8, p += 8, q += 8)
    if (differ(p, q)) return false;
  return !differ(p + n - 8, q + n - 8);
}

}  // namespace KoXmlLib10

#endif
