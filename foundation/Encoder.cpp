#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <stdexcept>
#include <vector>

#include "KoXmlLib10/Unicode.h"
#include "foundation/LocalText.h"

// Every locale this library meets (all that glibc supports) encodes ASCII as
// itself, so pure-ASCII text converts without the per-character locale calls;
// the results are the same either way.

namespace KoXmlLib10 {

bool ASCII_ONLY = false;

void ASCIIOnly(bool asciiOnly) { ASCII_ONLY = asciiOnly; }

namespace {

bool IsAscii(const wchar_t* w, size_t n) {
  for (size_t i = 0; i < n; ++i)
    if (static_cast<unsigned long>(w[i]) > 0x7F) return false;
  return true;
}

// Bytes up to the first NUL, as the local-code-page results always end there.
std::string UpToNul(const char* s, size_t n) { return std::string(s, strnlen(s, n)); }

bool Failed(size_t result) { return result == static_cast<size_t>(-1) || result == static_cast<size_t>(-2); }

// Wide characters in the local code page; unconvertible ones become '?'.
// cbuf is used when it has room for the result and its terminator.
std::string WideToLocal(const wchar_t* w, size_t n, char* cbuf, size_t ccap) {
  if (IsAscii(w, n)) {
    std::string text;
    text.reserve(n);
    for (size_t i = 0; i < n && w[i] != 0; ++i) text += static_cast<char>(w[i]);
    return text;
  }
  char one[MB_LEN_MAX];
  std::mbstate_t state{};
  size_t total = 0;
  for (size_t i = 0; i < n; ++i) {
    const size_t r = std::wcrtomb(one, w[i], &state);
    if (Failed(r)) state = std::mbstate_t{};
    total += Failed(r) ? 1 : r;
  }
  std::vector<char> own;
  if (!cbuf || ccap < total + 1) {
    own.resize(total + 1);
    cbuf = own.data();
  }
  state = std::mbstate_t{};
  size_t used = 0;
  for (size_t i = 0; i < n; ++i) {
    const size_t r = std::wcrtomb(one, w[i], &state);
    if (Failed(r)) {
      state = std::mbstate_t{};
      cbuf[used++] = '?';
    } else {
      std::memcpy(cbuf + used, one, r);
      used += r;
    }
  }
  cbuf[used] = '\0';
  return std::string(cbuf);
}

// Local-code-page text as wide characters; a byte that starts no valid
// character becomes '?'.
std::vector<wchar_t> LocalToWide(const char* s) {
  const size_t n = s ? std::strlen(s) : 0;
  std::vector<wchar_t> wide;
  wide.reserve(n);
  if (!DoesUTF8StrContainAnyCharsLargerThanOneByte(reinterpret_cast<unsigned char*>(const_cast<char*>(s)), n)) {
    for (size_t i = 0; i < n; ++i) wide.push_back(static_cast<unsigned char>(s[i]));
    return wide;
  }
  std::mbstate_t state{};
  bool initialState = true;
  for (size_t i = 0; i < n;) {
    // Mixed text is mostly ASCII: its bytes skip the locale call as long as
    // no shift state is pending.
    const unsigned char byte = static_cast<unsigned char>(s[i]);
    if (byte < 0x80 && initialState) {
      wide.push_back(byte);
      ++i;
      continue;
    }
    wchar_t c = 0;
    size_t r = std::mbrtowc(&c, s + i, n - i, &state);
    if (r == 0) {
      c = 0;
      r = 1;
    } else if (Failed(r)) {
      c = L'?';
      r = 1;
      state = std::mbstate_t{};
    }
    initialState = std::mbsinit(&state) != 0;
    wide.push_back(c);
    i += r;
  }
  return wide;
}

// The locale decodes the UTF-8 bytes of U+20AC as that one character.
bool LocaleIsUtf8() {
  std::mbstate_t state{};
  wchar_t c = 0;
  return std::mbrtowc(&c, "\xE2\x82\xAC", 3, &state) == 3 && c == 0x20AC;
}

CBinaryData BytesOf(const char* s) {
  const size_t n = s ? std::strlen(s) : 0;
  if (n == 0) return CBinaryData();
  return CBinaryData(reinterpret_cast<unsigned char*>(const_cast<char*>(s)), n, false);
}

CBinaryData WideToUtf8Binary(const wchar_t* w, size_t n) {
  if (n == 0) return CBinaryData();
  // Values outside 0..0x7F (negative ones too) need measuring: even an
  // invalid one takes three bytes as U+FFFD.
  const unsigned long size = IsAscii(w, n) ? n : UnicodeToUTF8(w, n, nullptr, 0);
  std::unique_ptr<unsigned char[]> buffer(new unsigned char[size]);
  const unsigned long written = UnicodeToUTF8(w, n, buffer.get(), size);
  return CBinaryData(buffer.release(), written, true);
}

int ClampedLength(size_t n) { return static_cast<int>(std::min<size_t>(n, INT_MAX)); }

}  // namespace

std::string UnicodeToMultiByte(const wchar_t* s) {
  if (!s) return std::string();
  return WideToLocal(s, std::wcslen(s), nullptr, 0);
}

CBinaryData CEncoder::LocalCodePageToUnicodeBinary(const char* s) {
  const std::vector<wchar_t> wide = LocalToWide(s);
  const unsigned char* bytes = reinterpret_cast<const unsigned char*>(wide.data());
  return CBinaryData(const_cast<unsigned char*>(bytes), wide.size() * sizeof(wchar_t), false);
}

CBinaryData CEncoder::UnicodeToUtf8Binary(const wchar_t* s) {
  return s ? WideToUtf8Binary(s, std::wcslen(s)) : CBinaryData();
}

bool LocalTextIsItsOwnUtf8(const char* text, size_t length) {
  const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
  if (ASCII_ONLY || !DoesUTF8StrContainAnyCharsLargerThanOneByte(const_cast<unsigned char*>(bytes), length))
    return true;
  // In a UTF-8 locale, well-formed UTF-8 decodes and re-encodes to itself;
  // only ill-formed text needs the character-by-character conversion.
  return LocaleIsUtf8() && ConvertUTF8toUTF32(bytes, bytes + length, nullptr, nullptr) != 0;
}

CBinaryData CEncoder::LocalCodePageToUtf8Binary(const char* s) {
  if (LocalTextIsItsOwnUtf8(s, s ? std::strlen(s) : 0)) return BytesOf(s);
  const std::vector<wchar_t> wide = LocalToWide(s);
  return WideToUtf8Binary(wide.data(), wide.size());
}

std::string CEncoder::Utf8ToLocalCodePage(unsigned char* data, int len, wchar_t* wbuf, unsigned long wcap,
                                          char* cbuf, unsigned long ccap) {
  if (!data || len <= 0) return std::string();
  const char* text = reinterpret_cast<const char*>(data);
  if (ASCII_ONLY) return std::string(text, len);
  if (!DoesUTF8StrContainAnyCharsLargerThanOneByte(data, len)) return UpToNul(text, len);

  std::vector<wchar_t> own;
  if (!wbuf || static_cast<unsigned long>(len) + 1 > wcap) {
    own.resize(len + 1);
    wbuf = own.data();
  }
  const unsigned long n = UTF8ToUnicode(data, len, wbuf, len);
  wbuf[n] = 0;
  return WideToLocal(wbuf, n, cbuf, ccap);
}

std::string CEncoder::Utf8ToLocalCodePage(unsigned char* data, int len) {
  return Utf8ToLocalCodePage(data, len, nullptr, 0, nullptr, 0);
}

std::string CEncoder::Utf8ToLocalCodePage(const char* s) { return Utf8ToLocalCodePage(s, nullptr, 0, nullptr, 0); }

std::string CEncoder::Utf8ToLocalCodePage(const char* s, wchar_t* wbuf, unsigned long wcap, char* cbuf,
                                          unsigned long ccap) {
  const int len = s ? ClampedLength(std::strlen(s)) : 0;
  return Utf8ToLocalCodePage(reinterpret_cast<unsigned char*>(const_cast<char*>(s)), len, wbuf, wcap, cbuf,
                             ccap);
}

std::string CEncoder::Utf16ToLocalCodePage(unsigned char*, int) {
  throw std::logic_error("UTF-16 text cannot be converted to the local code page");
}

}  // namespace KoXmlLib10
