#ifndef KOXMLLIB10_MEMBERS_READTEXT_H
#define KOXMLLIB10_MEMBERS_READTEXT_H

// Reading values out of a loaded tree without allocating per element.
// Internal: not installed.
//
// The conversions take their text as a std::string. GetText() would give one
// but turns the element's stored text into a string of its own, an
// allocation for every value read; the text is instead copied into a buffer
// that each thread keeps from one value to the next.

#include <string>
#include <string_view>

#include "KoXmlLib10/XmlDocument.h"

namespace KoXmlLib10::readtext {

// A buffer that grew beyond this is given back after use.
constexpr size_t kKeptScratchBytes = size_t(16) << 10;

// The text of `element` as a string, valid while this object lives. The
// thread's buffer is used unless an enclosing ScopedText holds it (code run
// while a value is parsed might read another element); that one then gets a
// string of its own.
class ScopedText {
 public:
  explicit ScopedText(const CXmlElement& element)
      : m_thread(Thread()), m_shared(!m_thread.inUse), m_text(m_shared ? m_thread.scratch : m_own) {
    const std::string_view view = element.GetTextView();
    m_text.assign(view.data(), view.size());
    if (m_shared) m_thread.inUse = true;  // only once nothing can throw any more
  }
  ~ScopedText() {
    if (!m_shared) return;
    if (m_text.capacity() > kKeptScratchBytes)
      std::string().swap(m_text);
    else
      m_text.clear();
    m_thread.inUse = false;
  }
  ScopedText(const ScopedText&) = delete;
  ScopedText& operator=(const ScopedText&) = delete;
  const std::string& Get() const { return m_text; }

 private:
  // The thread's buffer and whether a ScopedText holds it, found once per
  // value: thread-local storage of a shared library costs a call to reach.
  struct ThreadScratch {
    std::string scratch;
    bool inUse = false;
  };
  static ThreadScratch& Thread() {
    thread_local ThreadScratch state;
    return state;
  }
  ThreadScratch& m_thread;
  const bool m_shared;
  std::string m_own;
  std::string& m_text;
};

// The value of the attribute with this local name and namespace, or null:
// GetAttribute wants both names as strings, two temporaries per lookup.
inline const std::string* FindAttribute(const CXmlElement& element, std::string_view localName,
                                        std::string_view namespaceUri) {
  for (size_t index = 0, total = element.GetAttributeCount(); index < total; ++index) {
    const CXmlAttribute* attribute = element.GetAttributeAt(index);
    if (attribute->GetLocalName() == localName && attribute->GetNamespaceURI() == namespaceUri)
      return &attribute->GetValue();
  }
  return nullptr;
}

}  // namespace KoXmlLib10::readtext

#endif
