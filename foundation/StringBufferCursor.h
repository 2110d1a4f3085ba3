#ifndef KOXMLLIB10_FOUNDATION_STRINGBUFFERCURSOR_H
#define KOXMLLIB10_FOUNDATION_STRINGBUFFERCURSOR_H

#include <algorithm>
#include <cstring>
#include <string_view>

#include "KoXmlLib10/StringBuffer.h"

namespace KoXmlLib10 {

// Appends many short pieces to a CStringBuffer without a call per piece: the
// write position is kept here and handed back to the buffer by Sync() (or on
// destruction, also when an exception leaves the scope). Until then the
// buffer does not count the new text, so nothing else may use the buffer
// while a cursor is open. The blocks fill exactly as CStringBuffer::Append
// would fill them.
class CStringBufferCursor {
 public:
  explicit CStringBufferCursor(CStringBuffer& buffer) : m_buffer(buffer) { Load(); }
  ~CStringBufferCursor() { Sync(); }
  CStringBufferCursor(const CStringBufferCursor&) = delete;
  CStringBufferCursor& operator=(const CStringBufferCursor&) = delete;

  // Put() is inlined at every call: a call per piece would cost more than
  // copying most pieces.
  [[gnu::always_inline]] void Put(char c) {
    if (m_pos == m_end) NextBlock();
    *m_pos++ = c;
  }
  [[gnu::always_inline]] void Put(std::string_view text) {
    if (text.size() <= static_cast<size_t>(m_end - m_pos)) {
      CopyShort(m_pos, text.data(), text.size());
      m_pos += text.size();
    } else {
      PutAcrossBlocks(text);
    }
  }
  // The buffer's length including what was put since the last Sync().
  unsigned long Length() const { return m_buffer.m_length + static_cast<unsigned long>(m_pos - m_start); }
  void Sync() {
    const unsigned long added = static_cast<unsigned long>(m_pos - m_start);
    m_buffer.m_used += added;
    m_buffer.m_length += added;
    m_start = m_pos;
  }

 private:
  // Most pieces are names and short values: two overlapping fixed-size moves
  // are much cheaper for them than a call into the C library.
  [[gnu::always_inline]] static void CopyShort(char* to, const char* from, size_t count) {
    if (count >= 8 && count <= 16) {
      std::memcpy(to, from, 8);
      std::memcpy(to + count - 8, from + count - 8, 8);
    } else if (count >= 4 && count < 8) {
      std::memcpy(to, from, 4);
      std::memcpy(to + count - 4, from + count - 4, 4);
    } else if (count < 4) {
      for (size_t i = 0; i < count; ++i) to[i] = from[i];
    } else {
      std::memcpy(to, from, count);
    }
  }

  void Load() {
    char* block = m_buffer.m_current;
    m_start = m_pos = block ? block + m_buffer.m_used : nullptr;
    m_end = block ? block + m_buffer.m_capacity : nullptr;
  }
  [[gnu::noinline]] void NextBlock() {
    Sync();
    m_buffer.AddNewBlock();
    Load();
  }
  [[gnu::noinline]] void PutAcrossBlocks(std::string_view text) {
    for (;;) {
      const size_t chunk = std::min(text.size(), static_cast<size_t>(m_end - m_pos));
      if (chunk > 0) std::memcpy(m_pos, text.data(), chunk);
      m_pos += chunk;
      text.remove_prefix(chunk);
      if (text.empty()) return;
      NextBlock();
    }
  }

  CStringBuffer& m_buffer;
  char* m_start;  // where the text not yet synced begins
  char* m_pos;
  char* m_end;
};

}  // namespace KoXmlLib10

#endif
