#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <clocale>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

#include "support/TempFiles.h"
#include "support/Throws.h"

using namespace KoXmlLib10;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes BytesOf(const CBinaryData& data) { return Bytes(data.GetData(), data.GetData() + data.GetLength()); }

Bytes FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string ErrorOf(const std::function<void()>& call) { return testsupport::MessageOf(call); }

}  // namespace

TEST(Streams, MemoryTextStreamEncodings) {
  CTextStream utf8(XmlEncoding_UTF8);
  utf8.Append('a');
  utf8.Append("<");
  utf8.Append(std::string("b"));
  EXPECT_EQ(BytesOf(utf8.GetEncodedStream()), (Bytes{0x61, 0x3C, 0x62}));
  utf8.Open();
  EXPECT_STREQ(utf8.GetText(), "");

  CTextStream none;
  none.Append("a");
  EXPECT_EQ(ErrorOf([&] { none.GetEncodedStream(); }),
            "Unknown Encoding, select UTF-8 (contact support@tesselbind.example for support)");

  const std::string saved = setlocale(LC_CTYPE, nullptr);
  setlocale(LC_CTYPE, "C.UTF-8");
  CTextStream utf16(XmlEncoding_UTF16NoDecl);
  utf16.Append("a\xC3\xA9\xF0\x9F\x98\x80");  // a, e-acute, and a character beyond the BMP
  EXPECT_EQ(BytesOf(utf16.GetEncodedStream()), (Bytes{0x61, 0x00, 0xE9, 0x00, 0x3D, 0xD8, 0x00, 0xDE}));
  setlocale(LC_CTYPE, saved.c_str());
}

TEST(Streams, TextOverManyBlocksEncodesAsOneJoinedText) {
  // Several buffer blocks of ASCII, a character split across two blocks,
  // and a NUL at which the encoding stops, as for a joined text.
  std::string ascii(10000, 'x');
  for (size_t i = 0; i < ascii.size(); i += 7) ascii[i] = static_cast<char>('a' + i % 26);
  const std::string saved = setlocale(LC_CTYPE, nullptr);
  setlocale(LC_CTYPE, "C.UTF-8");
  for (const std::string& tail : {std::string(), std::string("\xC3\xA9" "end"), std::string("ab\0cd", 5)}) {
    for (size_t split : {size_t(0), size_t(4094), size_t(4095)}) {
      CTextStream stream(XmlEncoding_UTF8);
      stream.Append(ascii.substr(0, split));
      stream.Append(ascii.substr(split));
      stream.Append(tail.data(), static_cast<unsigned long>(tail.size()));
      const std::string whole = ascii + tail;
      const std::string expected = whole.substr(0, whole.find('\0'));
      const Bytes encoded = BytesOf(stream.GetEncodedStream());
      EXPECT_EQ(std::string(encoded.begin(), encoded.end()), expected) << split << " " << tail.size();
      EXPECT_EQ(stream.GetLength(), whole.size());  // the text itself is kept
    }
  }
  // A character whose bytes end up in two blocks still encodes whole.
  CTextStream split(XmlEncoding_UTF8);
  split.Append(std::string(4094, 'y'));
  split.Append("\xC3\xA9z");
  const Bytes encoded = BytesOf(split.GetEncodedStream());
  EXPECT_EQ(std::string(encoded.begin(), encoded.end()), std::string(4094, 'y') + "\xC3\xA9z");
  setlocale(LC_CTYPE, saved.c_str());
}

TEST(Streams, FileTextStreams) {
  const std::string path = testsupport::TempPath("streams.xml");
  {
    CFileTextStream stream(path.c_str(), XmlEncoding_UTF16);
    stream.Open();
    stream.Append("ab");
    stream.Flush();
    EXPECT_EQ(stream.GetLength(), 0u);
    stream.Append("c");
    stream.Close();
  }
  EXPECT_EQ(FileBytes(path), (Bytes{0xFF, 0xFE, 'a', 0, 'b', 0, 'c', 0}));
  {
    CFileTextStream stream(path.c_str(), XmlEncoding_UTF8);
    stream.Open();
    stream.Append(std::string(5000, 'x'));
    stream.Flush();
    stream.Append("tail");
  }  // destroyed open: the buffered tail is dropped
  EXPECT_EQ(FileBytes(path).size(), 5000u);
  std::remove(path.c_str());

  const std::string missing = "/nonexistent-dir/out.xml";
  CFileTextStream unopenable(missing.c_str(), XmlEncoding_UTF8);
  EXPECT_EQ(ErrorOf([&] { unopenable.Open(); }), "Failed to write data to the file [" + missing + "]");
  // /dev/full accepts the open and fails every write that reaches it.
  CFileTextStream big("/dev/full", XmlEncoding_UTF8);
  big.Open();
  big.Append(std::string(100000, 'x'));
  EXPECT_EQ(ErrorOf([&] { big.Flush(); }), "Failed to write data to the file");
  CFileTextStream small("/dev/full", XmlEncoding_UTF8);
  small.Open();
  small.Append("x");
  EXPECT_EQ(ErrorOf([&] { small.Close(); }), "Failed to write data to the file");
}

TEST(Streams, BinaryStreams) {
  CBinaryData shared("ab");
  CBinaryStream one(shared);
  CBinaryStream two(shared);
  unsigned char more[] = {'c', 'd'};
  one.Append(more, 2);
  one.Append(static_cast<unsigned char>('e'));
  one.Append(CBinaryData("f"));
  EXPECT_EQ(BytesOf(one.GetBinaryStream()), (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
  EXPECT_EQ(BytesOf(two.GetBinaryStream()), (Bytes{'a', 'b'}));
  EXPECT_EQ(BytesOf(shared), (Bytes{'a', 'b'}));

  const std::string path = testsupport::TempPath("streams.bin");
  CBinaryData raw(more, 2, false);
  CFileBinaryStream(path.c_str(), XmlEncoding_None, raw).ToFile();
  EXPECT_EQ(FileBytes(path), (Bytes{'c', 'd'}));
  CFileBinaryStream(path.c_str(), XmlEncoding_UTF16, raw).ToFile();
  EXPECT_EQ(FileBytes(path), (Bytes{0xFF, 0xFE, 'c', 'd'}));
  std::remove(path.c_str());

  CFileBinaryStream unopenable("/nonexistent-dir/out.bin", XmlEncoding_None);
  EXPECT_EQ(ErrorOf([&] { unopenable.ToFile(); }), "Failed to write data to the file [/nonexistent-dir/out.bin]");
  CFileBinaryStream full("/dev/full", XmlEncoding_UTF16);
  EXPECT_EQ(ErrorOf([&] { full.ToFile(); }), "Failed to write data to the file [/dev/full]");
}
