#ifndef KOXMLLIB10_STRINGBUFFER_H
#define KOXMLLIB10_STRINGBUFFER_H

#include <string>
#include <vector>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// Growable text made of fixed-size blocks, so appending never moves what is
// already written. GetText() joins the blocks into one on demand; the pointer
// it returns belongs to the buffer and stays valid until the next change.
class KOXML_API CStringBuffer {
 public:
  CStringBuffer();
  // Blocks of blockSize - 1 characters (plus their terminator).
  explicit CStringBuffer(unsigned long blockSize);
  CStringBuffer(const CStringBuffer&) = delete;
  CStringBuffer& operator=(const CStringBuffer&) = delete;
  virtual ~CStringBuffer();

  void Append(char c);
  void Append(const char* s);
  void Append(const std::string& s);
  // The first `length` bytes of `s`, which need not be NUL-terminated.
  void Append(const char* s, unsigned long length);
  void SetText(const char* s);
  char* GetText();
  unsigned long GetLength() const;
  // Empties the text but keeps a single block for reuse.
  void Empty();
  // Frees every block.
  void Clear();
  void AddNewBlock();

 private:
  friend class CStringBufferCursor;  // appends in place for the text writer
  friend class CTextStream;          // encodes straight from the blocks

  std::vector<char*> m_blocks;
  std::vector<unsigned long> m_blockSizes;
  unsigned long m_blockSize;
  unsigned long m_used;
  unsigned long m_capacity;
  char* m_current;
  unsigned long m_length;
};

}  // namespace KoXmlLib10

#endif
