#ifndef KOXMLLIB10_BINARYDATA_H
#define KOXMLLIB10_BINARYDATA_H

#include <string>

#include "KoXmlLib10/CriticalSection.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// Byte buffer with value semantics: copies share one reference-counted holder
// and the first write through any of them copies the bytes.
class KOXML_API CBinaryData {
 public:
  class KOXML_API CDataHolder {
   public:
    // With adopt the caller's new[] array is taken as it is; otherwise the
    // bytes are copied into room for at least 8192 bytes or twice the data.
    CDataHolder(unsigned char* data, unsigned long length, bool adopt);
    CDataHolder(const CDataHolder&) = delete;
    CDataHolder& operator=(const CDataHolder&) = delete;

    void AddRef();
    // Drops one reference and destroys the holder at zero. With keepData the
    // array survives the holder (its caller takes it over); that requires
    // the last reference.
    void Release(bool keepData = false);
    // A holder the caller may change alone: this one when unshared, else a
    // fresh copy (and this one loses the caller's reference).
    CDataHolder* GetExclusiveCopy();
    void Append(unsigned char* data, unsigned long length);
    unsigned char* GetData();
    unsigned long GetLength();

   private:
    ~CDataHolder();

    unsigned char* m_data;
    unsigned long m_length;
    unsigned long m_capacity;
    int m_refCount;
    CKOCriticalSection m_lock;
  };

  CBinaryData();
  CBinaryData(const CBinaryData& other);
  CBinaryData(unsigned char* data, unsigned long length, bool adopt);
  CBinaryData(const char* s);
  CBinaryData& operator=(const CBinaryData& other);
  virtual ~CBinaryData();

  unsigned char* GetData() const;
  unsigned long GetLength() const;
  unsigned char operator[](unsigned long i) const;
  // Unshares first, so writing through the reference never shows in a copy.
  unsigned char& operator[](unsigned long i);

  void Append(unsigned char* data, unsigned long length);
  void Append(const CBinaryData& other);
  void Append(const char* s);
  void Append(const std::string& s);
  void Append(char c);
  void Append(unsigned char c);

  void SetBuffer(unsigned char* data, unsigned long length);
  void SetBuffer(const char* s);
  void Clear();
  // Hands out the bytes as a new[] array the caller frees with delete[];
  // the value is left without data. Null when there is none.
  unsigned char* ReleaseData();

  std::string GetAsBase64() const;
  void SetAsBase64(const char* s);
  std::string GetAsHexString() const;
  void SetAsHexString(const char* hex);
  static std::string GetAsHexString(unsigned char* data, unsigned long length);
  // Decodes pairs of hex digits into a new[] array stored in *out.
  static unsigned long ConvertToHexData(const char* hex, unsigned char** out);

  bool operator==(const CBinaryData& other) const;
  bool operator!=(const CBinaryData& other) const;

 private:
  void CheckIndex(unsigned long i) const;

  CDataHolder* m_holder;
};

}  // namespace KoXmlLib10

// Base64 codec (RFC 4648 alphabet, no line breaks). An object holds the bit
// accumulator of one encode or decode.
class KOXML_API CBase64 {
 public:
  static const char m_sBase64Alphabet[];
  static const unsigned int m_nMask[];

  CBase64();

  std::string Encode(unsigned char* data, int length);
  // Writes the decoded bytes to out (room for strlen(text) bytes suffices)
  // and returns their count; 0 when text holds a character outside the
  // alphabet other than whitespace and '='.
  int Decode(const char* text, unsigned char* out);

  // Takes the next `bits` bits of the input from byte `position` on, most
  // significant first; *got tells how many were left (missing ones are 0).
  unsigned int Read(int bits, int* got, int& position);
  // Feeds `bits` bits of value in and writes every completed byte to
  // out[position++].
  void Write(unsigned int value, int bits, unsigned char* out, int& position);

 private:
  const unsigned char* m_input;
  int m_inputLength;
  int m_bitCount;
  unsigned int m_bitBuffer;
};

#endif
