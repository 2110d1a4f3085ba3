#include "KoXmlLib10/StringBuffer.h"

#include <algorithm>
#include <cstring>

namespace KoXmlLib10 {

namespace {
constexpr unsigned long kDefaultBlockSize = 4095;
}

CStringBuffer::CStringBuffer() : CStringBuffer(kDefaultBlockSize + 1) {}

// A block must hold at least one character, whatever the caller asks for.
CStringBuffer::CStringBuffer(unsigned long blockSize)
    : m_blockSize(blockSize > 1 ? blockSize - 1 : 1),
      m_used(0),
      m_capacity(0),
      m_current(nullptr),
      m_length(0) {}

CStringBuffer::~CStringBuffer() { Clear(); }

void CStringBuffer::AddNewBlock() {
  // Opening a block early leaves the current one part-filled: record what it
  // really holds, or joining the blocks would copy past the text.
  if (m_current) m_blockSizes.back() = m_used;
  char* block = new char[m_blockSize + 1]();
  m_blocks.push_back(block);
  m_blockSizes.push_back(m_blockSize);
  m_current = block;
  m_used = 0;
  m_capacity = m_blockSize;
}

void CStringBuffer::Append(char c) {
  if (m_used == m_capacity) AddNewBlock();
  m_current[m_used++] = c;
  ++m_length;
}

void CStringBuffer::Append(const char* s) {
  if (s) Append(s, std::strlen(s));
}

void CStringBuffer::Append(const std::string& s) { Append(s.data(), s.size()); }

void CStringBuffer::Append(const char* s, unsigned long n) {
  m_length += n;
  while (n > 0) {
    if (m_used == m_capacity) AddNewBlock();
    const unsigned long chunk = std::min(n, m_capacity - m_used);
    std::memcpy(m_current + m_used, s, chunk);
    m_used += chunk;
    s += chunk;
    n -= chunk;
  }
}

void CStringBuffer::SetText(const char* s) {
  Clear();
  Append(s);
}

char* CStringBuffer::GetText() {
  static char empty[1] = {0};
  if (m_blocks.empty()) return empty;
  if (m_blocks.size() == 1) return m_current;

  const unsigned long length = m_length;
  char* joined = new char[length + 1];
  char* out = joined;
  const size_t last = m_blocks.size() - 1;
  for (size_t i = 0; i < last; ++i) {
    std::memcpy(out, m_blocks[i], m_blockSizes[i]);
    out += m_blockSizes[i];
  }
  std::memcpy(out, m_current, m_used);
  out[m_used] = '\0';
  Clear();
  // The joined text is one full block: the next append opens a new one.
  m_blocks.push_back(joined);
  m_blockSizes.push_back(length);
  m_current = joined;
  m_used = m_capacity = m_length = length;
  return joined;
}

unsigned long CStringBuffer::GetLength() const { return m_length; }

void CStringBuffer::Empty() {
  if (m_blocks.size() != 1) {
    Clear();
    return;
  }
  std::memset(m_current, 0, m_capacity + 1);
  m_used = 0;
  m_length = 0;
}

void CStringBuffer::Clear() {
  for (char* block : m_blocks) delete[] block;
  m_blocks.clear();
  m_blockSizes.clear();
  m_current = nullptr;
  m_used = m_capacity = m_length = 0;
}

}  // namespace KoXmlLib10
