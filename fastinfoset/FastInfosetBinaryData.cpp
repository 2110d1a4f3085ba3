#include "KoXmlLib10/FastInfosetBinaryData.h"

#include <cstdint>
#include <cstring>

#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Unicode.h"
#include "fastinfoset/NumericOctets.h"

namespace KoXmlLib10 {

namespace {

enum Algorithm : unsigned long {
  kHexadecimal = 1,
  kBase64 = 2,
  kShort = 3,
  kInt = 4,
  kLong = 5,
  kBoolean = 6,
  kFloat = 7,
  kDouble = 8,
  kUuid = 9,
  kCdata = 10,
};

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
constexpr unsigned long kUuidLength = 16;
constexpr unsigned char kBooleanFalse = 0x30;  // 3 unused bits, value bit 0
constexpr unsigned char kBooleanTrue = 0x38;   // 3 unused bits, value bit 1

template <size_t N>
void PutBigEndian(std::string& out, uint64_t value) {
  out.resize(N);
  for (size_t i = 0; i < N; ++i) out[i] = static_cast<char>(value >> (8 * (N - 1 - i)));
}

uint64_t GetBigEndian(const unsigned char* octets, size_t count) {
  uint64_t value = 0;
  for (size_t i = 0; i < count; ++i) value = (value << 8) | octets[i];
  return value;
}

template <class To, class From>
To BitCast(From from) {
  static_assert(sizeof(To) == sizeof(From), "sizes differ");
  To to;
  std::memcpy(&to, &from, sizeof to);
  return to;
}

// Runs `toText` over each `width`-octet group and joins the texts with spaces.
template <class ToText>
std::string JoinGroups(const unsigned char* data, unsigned long length, unsigned long width,
                       const char* invalidMessage, ToText toText) {
  if (length % width != 0) throw CKoException(invalidMessage);
  std::string text;
  for (unsigned long offset = 0; offset < length; offset += width) {
    if (offset) text += ' ';
    text += toText(data + offset);
  }
  return text;
}

// The first four bits count the unused bits at the end of the last octet;
// every other bit is one value, most significant first.
std::string BooleansToString(const unsigned char* data, unsigned long length) {
  if (length == 0) return std::string();
  const unsigned long unused = data[0] >> 4;
  const unsigned long valueBits = length * 8 - 4;
  if (unused > 7 || unused > valueBits)
    throw CKoException("Invalid value for BOOLEAN byte encoding.");
  std::string text;
  for (unsigned long bit = 4; bit < length * 8 - unused; ++bit) {
    if (bit > 4) text += ' ';
    const bool value = (data[bit / 8] >> (7 - bit % 8)) & 1;
    text += CConversions::booleanToString(value);
  }
  return text;
}

}  // namespace

bool NumericOctets(unsigned long algorithm, const std::string& text, std::string& octets) {
  switch (algorithm) {
    case kShort:
      PutBigEndian<2>(octets, static_cast<uint16_t>(CConversions::i2FromString(text, kCollapse)));
      return true;
    case kInt:
      PutBigEndian<4>(octets, static_cast<uint32_t>(CConversions::i4FromString(text, kCollapse)));
      return true;
    case kLong:
      PutBigEndian<8>(octets, static_cast<uint64_t>(CConversions::i8FromString(text, kCollapse)));
      return true;
    case kBoolean:
      octets.assign(1, static_cast<char>(CConversions::booleanFromString(text, kCollapse) ? kBooleanTrue
                                                                                          : kBooleanFalse));
      return true;
    case kFloat:
      PutBigEndian<4>(octets, BitCast<uint32_t>(CConversions::r4FromString(text, kCollapse)));
      return true;
    case kDouble:
      PutBigEndian<8>(octets, BitCast<uint64_t>(CConversions::r8FromString(text, kCollapse)));
      return true;
    default:
      return false;
  }
}

CFastInfosetBinaryData::CFastInfosetBinaryData() = default;

CFastInfosetBinaryData::CFastInfosetBinaryData(const char* s) : CBinaryData(s) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(unsigned char* data, unsigned long length,
                                               bool adopt)
    : CBinaryData(data, length, adopt) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(const CBinaryData& other) : CBinaryData(other) {}

void CFastInfosetBinaryData::SetAsEncodedString(unsigned long algorithm, const char* text) {
  if (algorithm < kHexadecimal || algorithm > kCdata) throw CKoException("Unknown byte encoding.");
  const std::string value = text ? text : "";
  switch (algorithm) {
    case kHexadecimal:
      SetAsHexString(value.c_str());
      return;
    case kBase64:
      SetAsBase64(value.c_str());
      return;
    case kUuid:
      // One value is one UUID: any other number of octets would not be a
      // valid uuid-encoded string.
      SetAsHexString(value.c_str());
      if (GetLength() != kUuidLength) {
        Clear();
        throw CKoException("Invalid value for UUID byte encoding.");
      }
      return;
    case kCdata:
      CBinaryData::operator=(CEncoder::LocalCodePageToUtf8Binary(value.c_str()));
      return;
    default:
      break;
  }
  // The numeric kinds: parse first, so that bad text leaves nothing half-written.
  std::string octets;
  NumericOctets(algorithm, value, octets);
  Clear();
  Append(reinterpret_cast<unsigned char*>(octets.data()), static_cast<unsigned long>(octets.size()));
}

std::string CFastInfosetBinaryData::GetAsString(unsigned long algorithm) const {
  const unsigned char* data = GetData();
  const unsigned long length = GetLength();
  switch (algorithm) {
    case kHexadecimal:
      return GetAsHexString();
    case kBase64:
      return GetAsBase64();
    case kShort:
      return JoinGroups(data, length, 2, "Invalid value for SHORT byte encoding.",
                        [](const unsigned char* p) {
                          return CConversions::i2ToString(
                              static_cast<short>(static_cast<int16_t>(GetBigEndian(p, 2))));
                        });
    case kInt:
      return JoinGroups(data, length, 4, "Invalid value for INT byte encoding.",
                        [](const unsigned char* p) {
                          return CConversions::i4ToString(
                              static_cast<int32_t>(static_cast<uint32_t>(GetBigEndian(p, 4))));
                        });
    case kLong:
      return JoinGroups(data, length, 8, "Invalid value for LONG byte encoding.",
                        [](const unsigned char* p) {
                          return CConversions::i8ToString(static_cast<long long>(GetBigEndian(p, 8)));
                        });
    case kBoolean:
      return BooleansToString(data, length);
    case kFloat:
      return JoinGroups(data, length, 4, "Invalid value for FLOAT byte encoding.",
                        [](const unsigned char* p) {
                          return CConversions::r4ToString(
                              BitCast<float>(static_cast<uint32_t>(GetBigEndian(p, 4))));
                        });
    case kDouble:
      return JoinGroups(data, length, 8, "Invalid value for DOUBLE byte encoding.",
                        [](const unsigned char* p) {
                          return CConversions::r8ToString(BitCast<double>(GetBigEndian(p, 8)));
                        });
    case kUuid:
      return JoinGroups(data, length, kUuidLength, "Invalid value for UUID byte encoding.",
                        [](const unsigned char* p) {
                          return CBinaryData::GetAsHexString(const_cast<unsigned char*>(p),
                                                             kUuidLength);
                        });
    default:
      throw CKoException("Unknown byte encoding.");
  }
}

}  // namespace KoXmlLib10
