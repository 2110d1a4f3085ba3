#include "KoXmlLib10/BinaryData.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "KoXmlLib10/Exceptions.h"
#include "foundation/ScopedLock.h"

namespace KoXmlLib10 {

namespace {

constexpr unsigned long kMinCopyCapacity = 8192;

void CopyBytes(unsigned char* to, const unsigned char* from, unsigned long n) {
  if (n > 0) std::memcpy(to, from, n);
}

unsigned long DoubledCapacity(unsigned long needed) {
  if (needed > std::numeric_limits<unsigned long>::max() / 2) throw std::bad_alloc();
  return 2 * needed;
}

unsigned char* BytesOf(const char* s) { return reinterpret_cast<unsigned char*>(const_cast<char*>(s)); }

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

// ---- CDataHolder -------------------------------------------------------------

CBinaryData::CDataHolder::CDataHolder(unsigned char* data, unsigned long length, bool adopt)
    : m_data(nullptr), m_length(data ? length : 0), m_capacity(0), m_refCount(1) {
  if (adopt) {
    m_data = data;
    m_capacity = m_length;
    return;
  }
  m_capacity = std::max(kMinCopyCapacity, DoubledCapacity(m_length));
  m_data = new unsigned char[m_capacity];
  CopyBytes(m_data, data, m_length);
}

CBinaryData::CDataHolder::~CDataHolder() { delete[] m_data; }

void CBinaryData::CDataHolder::AddRef() {
  CScopedLock lock(m_lock);
  ++m_refCount;
}

void CBinaryData::CDataHolder::Release(bool keepData) {
  {
    CScopedLock lock(m_lock);
    if (keepData && m_refCount > 1)
      throw CKoException(FormatString("Failed to release data. [RefCount=%d]", m_refCount - 1));
    if (--m_refCount != 0) return;
  }
  // The last reference is gone: nobody else can reach the holder any more.
  if (keepData) m_data = nullptr;
  delete this;
}

CBinaryData::CDataHolder* CBinaryData::CDataHolder::GetExclusiveCopy() {
  CScopedLock lock(m_lock);
  if (m_refCount <= 1) return this;
  CDataHolder* copy = new CDataHolder(m_data, m_length, false);
  --m_refCount;  // still shared by someone else, so it stays alive
  return copy;
}

void CBinaryData::CDataHolder::Append(unsigned char* data, unsigned long length) {
  CScopedLock lock(m_lock);
  if (m_refCount >= 2) throw CKoException(FormatString("Failed to append. [RefCount=%d]", m_refCount));
  if (!data || length == 0) return;
  if (length > std::numeric_limits<unsigned long>::max() - m_length) throw std::bad_alloc();
  if (m_length + length > m_capacity) {
    const unsigned long capacity = DoubledCapacity(m_length + length);
    unsigned char* grown = new unsigned char[capacity];
    CopyBytes(grown, m_data, m_length);
    // `data` may point into the old array (appending a value to itself).
    CopyBytes(grown + m_length, data, length);
    delete[] m_data;
    m_data = grown;
    m_capacity = capacity;
  } else {
    std::memmove(m_data + m_length, data, length);
  }
  m_length += length;
}

unsigned char* CBinaryData::CDataHolder::GetData() { return m_data; }

unsigned long CBinaryData::CDataHolder::GetLength() { return m_length; }

// ---- CBinaryData ---------------------------------------------------------------

CBinaryData::CBinaryData() : m_holder(nullptr) {}

CBinaryData::CBinaryData(const CBinaryData& other) : m_holder(other.m_holder) {
  if (m_holder) m_holder->AddRef();
}

CBinaryData::CBinaryData(unsigned char* data, unsigned long length, bool adopt)
    : m_holder(new CDataHolder(data, length, adopt)) {}

CBinaryData::CBinaryData(const char* s)
    : m_holder(s ? new CDataHolder(BytesOf(s), std::strlen(s), false) : nullptr) {}

CBinaryData& CBinaryData::operator=(const CBinaryData& other) {
  CDataHolder* shared = other.m_holder;  // taken first: `other` may be this value
  if (shared) shared->AddRef();
  Clear();
  m_holder = shared;
  return *this;
}

CBinaryData::~CBinaryData() { Clear(); }

unsigned char* CBinaryData::GetData() const { return m_holder ? m_holder->GetData() : nullptr; }

unsigned long CBinaryData::GetLength() const { return m_holder ? m_holder->GetLength() : 0; }

void CBinaryData::CheckIndex(unsigned long i) const {
  if (i >= GetLength()) throw CKoException(FormatString("Index Out of range [%d]", static_cast<int>(i)));
}

unsigned char CBinaryData::operator[](unsigned long i) const {
  CheckIndex(i);
  return m_holder->GetData()[i];
}

unsigned char& CBinaryData::operator[](unsigned long i) {
  CheckIndex(i);
  m_holder = m_holder->GetExclusiveCopy();
  return m_holder->GetData()[i];
}

void CBinaryData::Append(unsigned char* data, unsigned long length) {
  if (!m_holder) {
    m_holder = new CDataHolder(data, length, false);
    return;
  }
  m_holder = m_holder->GetExclusiveCopy();
  m_holder->Append(data, length);
}

void CBinaryData::Append(const CBinaryData& other) { Append(other.GetData(), other.GetLength()); }

void CBinaryData::Append(const char* s) { Append(BytesOf(s), s ? std::strlen(s) : 0); }

void CBinaryData::Append(const std::string& s) { Append(BytesOf(s.data()), s.size()); }

void CBinaryData::Append(char c) { Append(reinterpret_cast<unsigned char*>(&c), 1); }

void CBinaryData::Append(unsigned char c) { Append(&c, 1); }

void CBinaryData::SetBuffer(unsigned char* data, unsigned long length) {
  Clear();
  m_holder = new CDataHolder(data, length, false);
}

void CBinaryData::SetBuffer(const char* s) { SetBuffer(BytesOf(s), s ? std::strlen(s) : 0); }

void CBinaryData::Clear() {
  CDataHolder* holder = m_holder;
  m_holder = nullptr;
  if (holder) holder->Release(false);
}

unsigned char* CBinaryData::ReleaseData() {
  if (!m_holder) return nullptr;
  CDataHolder* holder = m_holder->GetExclusiveCopy();
  m_holder = nullptr;
  unsigned char* data = holder->GetData();
  holder->Release(true);
  return data;
}

std::string CBinaryData::GetAsBase64() const {
  if (!m_holder) return std::string();
  return CBase64().Encode(GetData(), static_cast<int>(GetLength()));
}

void CBinaryData::SetAsBase64(const char* s) {
  Clear();
  std::unique_ptr<unsigned char[]> decoded(new unsigned char[(s ? std::strlen(s) : 0) + 1]);
  const int length = CBase64().Decode(s, decoded.get());
  m_holder = new CDataHolder(decoded.get(), static_cast<unsigned long>(length), true);
  decoded.release();
}

std::string CBinaryData::GetAsHexString() const {
  return m_holder ? GetAsHexString(GetData(), GetLength()) : std::string();
}

void CBinaryData::SetAsHexString(const char* hex) {
  Clear();
  unsigned char* bytes = nullptr;
  const unsigned long length = ConvertToHexData(hex, &bytes);
  m_holder = new CDataHolder(bytes, length, true);
}

std::string CBinaryData::GetAsHexString(unsigned char* data, unsigned long length) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  hex.reserve(2 * length);
  for (unsigned long i = 0; i < length; ++i) {
    hex += kDigits[data[i] >> 4];
    hex += kDigits[data[i] & 0x0F];
  }
  return hex;
}

unsigned long CBinaryData::ConvertToHexData(const char* hex, unsigned char** out) {
  const size_t length = hex ? std::strlen(hex) : 0;
  if (length % 2 != 0) throw CKoException("Invalid length in hex string");
  std::unique_ptr<unsigned char[]> bytes(new unsigned char[length / 2]);
  for (size_t i = 0; i < length; i += 2) {
    const int high = HexDigitValue(hex[i]);
    const int low = HexDigitValue(hex[i + 1]);
    if (high < 0 || low < 0)
      throw CKoException(FormatString("Invalid char in hex string [%c]", high < 0 ? hex[i] : hex[i + 1]));
    bytes[i / 2] = static_cast<unsigned char>((high << 4) | low);
  }
  *out = bytes.release();
  return length / 2;
}

bool CBinaryData::operator==(const CBinaryData& other) const {
  if (!m_holder || !other.m_holder) return !m_holder && !other.m_holder;
  const unsigned long length = GetLength();
  return length == other.GetLength() && (length == 0 || std::memcmp(GetData(), other.GetData(), length) == 0);
}

bool CBinaryData::operator!=(const CBinaryData& other) const { return !(*this == other); }

}  // namespace KoXmlLib10

// ---- CBase64 -------------------------------------------------------------------

const char CBase64::m_sBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
const unsigned int CBase64::m_nMask[] = {0, 1, 3, 7, 15, 31, 63, 127, 255};

namespace {

constexpr int kSkip = -1;
constexpr int kInvalid = -2;

// Value of each 7-bit character in a Base64 text: 0..63, or skipped, or invalid.
struct Base64Table {
  int value[128];
  Base64Table() {
    std::fill(std::begin(value), std::end(value), kInvalid);
    for (int i = 0; i < 64; ++i) value[static_cast<unsigned char>(CBase64::m_sBase64Alphabet[i])] = i;
    for (char c : {' ', '\t', '\r', '\n', '='}) value[static_cast<unsigned char>(c)] = kSkip;
  }
};

const Base64Table& DecodeTable() {
  static const Base64Table table;
  return table;
}

}  // namespace

CBase64::CBase64() : m_input(nullptr), m_inputLength(0), m_bitCount(0), m_bitBuffer(0) {}

unsigned int CBase64::Read(int bits, int* got, int& position) {
  bits = std::clamp(bits, 0, 8);
  while (m_bitCount < bits && position < m_inputLength) {
    m_bitBuffer = (m_bitBuffer << 8) | m_input[position++];
    m_bitCount += 8;
  }
  const int available = std::min(bits, m_bitCount);
  *got = available;
  // Missing low bits of a final, short group are zero.
  const unsigned int value = ((m_bitBuffer >> (m_bitCount - available)) & m_nMask[available])
                             << (bits - available);
  m_bitCount -= available;
  m_bitBuffer &= m_nMask[m_bitCount];
  return value;
}

void CBase64::Write(unsigned int value, int bits, unsigned char* out, int& position) {
  bits = std::clamp(bits, 0, 8);
  m_bitBuffer = (m_bitBuffer << bits) | (value & m_nMask[bits]);
  m_bitCount += bits;
  while (m_bitCount >= 8) {
    m_bitCount -= 8;
    out[position++] = static_cast<unsigned char>(m_bitBuffer >> m_bitCount);
    m_bitBuffer &= m_nMask[m_bitCount];
  }
}

std::string CBase64::Encode(unsigned char* data, int length) {
  m_input = data;
  m_inputLength = data ? std::max(length, 0) : 0;
  m_bitCount = 0;
  m_bitBuffer = 0;
  std::string text;
  text.reserve((m_inputLength + 2) / 3 * 4);
  int position = 0;
  int got = 0;
  for (unsigned int group = Read(6, &got, position); got > 0; group = Read(6, &got, position))
    text += m_sBase64Alphabet[group];
  while (text.size() % 4 != 0) text += '=';
  return text;
}

int CBase64::Decode(const char* text, unsigned char* out) {
  m_bitCount = 0;
  m_bitBuffer = 0;
  if (!text || !out) return 0;
  const Base64Table& table = DecodeTable();
  int position = 0;
  for (const char* p = text; *p; ++p) {
    const int value = table.value[static_cast<unsigned char>(*p) & 0x7F];
    if (value == kSkip) continue;
    if (value == kInvalid) return 0;
    Write(static_cast<unsigned int>(value), 6, out, position);
  }
  return position;
}
