#ifndef KOXMLLIB10_XML_LOCALTEXT_H
#define KOXMLLIB10_XML_LOCALTEXT_H

#include <memory>
#include <string>
#include <string_view>

namespace KoXmlLib10 {

// Working memory of a reader for converting names and text out of UTF-8:
// wide characters in the first part, narrow text from the middle on, so
// that short strings need no allocation of their own.
class CLocalTextScratch {
 public:
  static constexpr unsigned long kSize = 1024;

  void Allocate();
  void Free();
  bool Allocated() const { return m_buffer != nullptr; }
  // The local representation of `utf8`. Pure ASCII (and everything while
  // ASCIIOnly is set) is its own local form and comes back as the same view;
  // other text is converted into `converted`, which the view then refers to.
  std::string_view ToLocal(std::string_view utf8, std::string& converted, bool useScratch = true) const;

 private:
  std::unique_ptr<unsigned char[]> m_buffer;
};

}  // namespace KoXmlLib10

#endif
