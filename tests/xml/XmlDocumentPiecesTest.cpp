// Loads in pieces: pushed chunks, pulled sources and files read as they are
// parsed must build the tree a load from one buffer builds, fail with its
// messages, and hand the element filter the caller's state.
#include <gtest/gtest.h>
#include <zlib.h>

#include <KoXmlLib10.h>

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/TempFiles.h"
#include "support/Documents.h"
#include "support/Throws.h"
#include "support/Trees.h"

using namespace KoXmlLib10;

namespace {

std::string TempPath(const std::string& name) { return testsupport::TempPath("pieces-" + name); }

void WriteFile(const std::string& path, const std::string& content) {
  FILE* f = std::fopen(path.c_str(), "wb");
  ASSERT_NE(f, nullptr);
  std::fwrite(content.data(), 1, content.size(), f);
  std::fclose(f);
}

std::string Gzip(const std::string& bytes) {
  CBinaryData packed;
  packed.Append(bytes);
  CKoZip::CompressData(packed, CompressionTypeGzip);
  return std::string(reinterpret_cast<const char*>(packed.GetData()), packed.GetLength());
}

std::string FailureOf(const std::function<void()>& load) { return testsupport::MessageOf(load); }

// A document of `orders` elements with text that is not all ASCII, namespaces,
// attributes and CDATA: long enough to span many pieces of every size.
std::string Document(int orders) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r xmlns=\"urn:r\" xmlns:p=\"urn:p\">";
  for (int i = 0; i < orders; ++i)
    xml += "\n  <order id=\"" + std::to_string(i) + "\" p:a=\"\xC3\xA9\"><name>Zo\xC3\xAB &amp; " + std::to_string(i) +
           "</name><![CDATA[<x>]]><p:item/></order>";
  return xml + "\n</r>\n";
}

std::string DumpOfWholeLoad(const std::string& xml, const CXmlSerializationContext& ctx) {
  CXmlDocument whole(ctx);
  whole.LoadXml(xml.c_str());
  return Dump(whole.GetDocumentElement());
}

// Pushes `xml` in pieces of `size` bytes.
void LoadInChunks(CXmlDocument& document, const std::string& xml, size_t size) {
  document.BeginXmlChunks();
  for (size_t at = 0; at < xml.size(); at += size)
    document.LoadXmlChunk(xml.data() + at, std::min(size, xml.size() - at));
  document.EndXmlChunks();
}

// A source over a string that hands out at most `piece` bytes per call.
struct StringSource {
  std::string bytes;
  size_t piece;
  size_t at = 0;
  int calls = 0;
  static size_t Read(void* state, unsigned char* buffer, size_t capacity) {
    auto& self = *static_cast<StringSource*>(state);
    ++self.calls;
    const size_t n = std::min({capacity, self.piece, self.bytes.size() - self.at});
    std::copy_n(self.bytes.data() + self.at, n, buffer);
    self.at += n;
    return n;
  }
};

}  // namespace

TEST(XmlDocumentPieces, ChunksOfEverySizeBuildTheTreeOfAWholeLoad) {
  const std::string xml = Document(3000);
  for (bool stripCdata : {true, false}) {
    CXmlSerializationContext ctx;
    ctx.SetStripCDATA(stripCdata);
    const std::string expected = DumpOfWholeLoad(xml, ctx);
    // 1 byte splits every multi-byte character; 7 and 4093 fall anywhere.
    for (size_t size : {size_t(1), size_t(7), size_t(4093), xml.size()}) {
      CXmlDocument document(ctx);
      LoadInChunks(document, xml, size);
      EXPECT_FALSE(document.IsReadingChunks());
      EXPECT_EQ(Mismatch(Dump(document.GetDocumentElement()), expected), "") << "pieces of " << size;
      EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "urn:p");
    }
  }
  // UTF-16 with its byte-order mark, split inside the units.
  CXmlDocument wide;
  wide.LoadXml(L"<a x=\"1\">t<b/>u</a>");
  std::string utf16 = "\xFF\xFE";
  for (char c : std::string("<a x=\"1\">t<b/>u</a>")) utf16 += std::string{c, '\0'};
  CXmlDocument chunked;
  LoadInChunks(chunked, utf16, 3);
  EXPECT_EQ(Dump(chunked.GetDocumentElement()), Dump(wide.GetDocumentElement()));
}

TEST(XmlDocumentPieces, ChunkFailuresAreThoseOfAWholeLoadAndEndTheLoad) {
  CXmlDocument document;
  // Line numbers count across pieces.
  EXPECT_EQ(FailureOf([&] { LoadInChunks(document, "<a>\n<b>\n\n</a>", 2); }), "mismatched tag at line 4");
  EXPECT_FALSE(document.IsReadingChunks());
  EXPECT_EQ(FailureOf([&] { document.LoadXmlChunk("<a/>", 4); }), "No document is being read in pieces.");
  EXPECT_EQ(FailureOf([&] { document.EndXmlChunks(); }), "No document is being read in pieces.");
  EXPECT_EQ(FailureOf([&] { LoadInChunks(document, "<a>\n<b/>", 3); }), "no element found at line 2");
  EXPECT_EQ(FailureOf([&] { LoadInChunks(document, "", 1); }), "XML Stream is empty!");

  std::string deep;
  for (int i = 0; i <= 10000; ++i) deep += "<a>";
  EXPECT_EQ(FailureOf([&] { LoadInChunks(document, deep, 1000); }),
            "The document is nested too deeply: more than 10000 levels of elements.");

  // A failed load keeps the tree built so far, until the next load.
  EXPECT_EQ(FailureOf([&] { LoadInChunks(document, "<r><a>x</a><b>y</b><c>", 5); }), "no element found at line 1");
  ASSERT_NE(document.GetDocumentElement(), nullptr);
  EXPECT_EQ(Dump(document.GetDocumentElement()), "(r{}[](a{}[x])(b{}[y])(c{}[]))");
  // Starting again empties the document; so does Cleanup in the middle.
  document.BeginXmlChunks();
  EXPECT_EQ(document.GetDocumentElement(), nullptr);
  document.LoadXmlChunk("<r>", 3);
  document.Cleanup();
  EXPECT_FALSE(document.IsReadingChunks());
  LoadInChunks(document, "<ok/>", 2);
  EXPECT_EQ(document.GetDocumentElement()->GetLocalName(), "ok");
}

namespace {

struct FilterState {
  std::vector<std::string> seen;
  bool throwOnThird = false;
};

bool RecordAndDropItems(CXmlElement* element, void* state) {
  auto& s = *static_cast<FilterState*>(state);
  s.seen.push_back(element->GetLocalName() + "=" + element->GetText());
  if (s.throwOnThird && s.seen.size() == 3) throw CKoValidationException("third element refused");
  return element->GetLocalName() == "item";
}

}  // namespace

TEST(XmlDocumentPieces, FilterWithStateSeesEachEndedElementAndDropsWhatItConsumed) {
  FilterState state;
  CXmlDocument document(RecordAndDropItems, &state);
  LoadInChunks(document, "<r><item>1</item><keep>k</keep><item>2<sub/></item></r>", 4);
  EXPECT_EQ(state.seen, (std::vector<std::string>{"item=1", "keep=k", "sub=", "item=2", "r="}));
  EXPECT_EQ(Dump(document.GetDocumentElement()), "(r{}[](keep{}[k]))");

  // The same filter on every loader, from a given context.
  CXmlSerializationContext ctx;
  FilterState again;
  CXmlDocument withContext(RecordAndDropItems, &again, ctx);
  withContext.LoadXml("<r><item>1</item></r>");
  EXPECT_EQ(again.seen.size(), 2u);  // the item, then the document element
  EXPECT_EQ(withContext.GetDocumentElement()->GetFirstElement(), nullptr);

  // The filter's exception ends the load and reaches the caller as it was.
  FilterState throwing;
  throwing.throwOnThird = true;
  document.SetElementFilter(RecordAndDropItems, &throwing);
  EXPECT_THROW(LoadInChunks(document, "<r><a/><b/><c/><d/></r>", 2), CKoValidationException);
  EXPECT_EQ(throwing.seen.size(), 3u);
  EXPECT_FALSE(document.IsReadingChunks());

  // A plain filter replaces it, and null removes any.
  document.SetElementFilter([](CXmlElement* e) { return e->GetLocalName() == "a"; });
  document.LoadXml("<r><a/><b/></r>");
  EXPECT_EQ(Dump(document.GetDocumentElement()), "(r{}[](b{}[]))");
  document.SetElementFilter(nullptr, nullptr);
  document.LoadXml("<r><a/><b/></r>");
  EXPECT_EQ(Dump(document.GetDocumentElement()), "(r{}[](a{}[])(b{}[]))");
}

TEST(XmlDocumentPieces, EveryEncodingFromASourceAndAFileAsFromABuffer) {
  // Fast Infoset and zlib are gathered and read whole, the rest in pieces;
  // either way the tree is the buffer's, and the source is asked many times.
  std::string xml = "<r xmlns=\"urn:r\">";
  for (int i = 0; i < 3000; ++i) xml += "<o id=\"" + std::to_string(i) + "\"><n>name " + std::to_string(i) + "</n></o>";
  xml += "</r>";
  for (const testsupport::EncodedDocument& encoded : testsupport::EveryEncoding(xml)) {
    const std::string bytes(reinterpret_cast<const char*>(encoded.bytes.GetData()), encoded.bytes.GetLength());
    CXmlDocument buffer;
    ASSERT_TRUE(LoadBytes(buffer, bytes)) << encoded.name;
    const std::string expected = Dump(buffer.GetDocumentElement());

    StringSource source{bytes, 999};
    CXmlDocument fromSource;
    fromSource.LoadXmlFromSource(StringSource::Read, &source);
    EXPECT_EQ(Mismatch(Dump(fromSource.GetDocumentElement()), expected), "") << encoded.name;
    EXPECT_GT(source.calls, 3) << encoded.name;

    const std::string path = TempPath("every.bin");
    WriteFile(path, bytes);
    CXmlDocument fromFile;
    fromFile.Load(path.c_str());
    EXPECT_EQ(Mismatch(Dump(fromFile.GetDocumentElement()), expected), "") << encoded.name;
    std::remove(path.c_str());
  }
}

TEST(XmlDocumentPieces, SourceFailures) {
  CXmlDocument document;
  StringSource empty{"", 10};
  EXPECT_EQ(FailureOf([&] { document.LoadXmlFromSource(StringSource::Read, &empty); }), "XML Stream is empty!");
  EXPECT_EQ(FailureOf([&] { document.LoadXmlFromSource(nullptr, nullptr); }), "XML Stream is empty!");

  auto overrun = [](void*, unsigned char*, size_t capacity) { return capacity + 1; };
  EXPECT_EQ(FailureOf([&] { document.LoadXmlFromSource(overrun, nullptr); }),
            "The source of the document delivered more bytes than it was asked for.");

  // A source's own exception passes through, also in the middle of a document.
  struct Failing {
    int calls = 0;
    static size_t Read(void* state, unsigned char* buffer, size_t) {
      if (++static_cast<Failing*>(state)->calls > 1) throw std::runtime_error("network down");
      // More than the start a load looks at before it parses anything.
      const std::string start = "<r><a/>" + std::string(5000, ' ');
      std::copy(start.begin(), start.end(), buffer);
      return start.size();
    }
  } failing;
  EXPECT_THROW(document.LoadXmlFromSource(Failing::Read, &failing), std::runtime_error);
  EXPECT_FALSE(document.IsReadingChunks());
  ASSERT_NE(document.GetDocumentElement(), nullptr);
  EXPECT_EQ(Dump(document.GetDocumentElement()), "(r{}[" + std::string(5000, ' ') + "](a{}[]))");
}

TEST(XmlDocumentPieces, FilesAreReadInPiecesWithTheMessagesOfAWholeLoad) {
  const std::string xml = Document(20000);  // larger than a read block
  ASSERT_GT(xml.size(), 1u << 20);
  const std::string expected = DumpOfWholeLoad(xml, CXmlSerializationContext::m_defaultContext);
  const std::string plain = TempPath("plain.xml"), packed = TempPath("packed.xml.gz");
  WriteFile(plain, xml);
  WriteFile(packed, Gzip(xml));
  for (const std::string& path : {plain, packed}) {
    CXmlDocument document;
    document.Load(path.c_str());
    EXPECT_EQ(Mismatch(Dump(document.GetDocumentElement()), expected), "") << path;
  }

  // A gzip stream cut short: the part before the cut has been read, then
  // the load fails.
  const std::string gz = Gzip(xml);
  const std::string cut = TempPath("cut.xml.gz");
  WriteFile(cut, gz.substr(0, gz.size() / 2));
  CXmlDocument document;
  EXPECT_EQ(FailureOf([&] { document.Load(cut.c_str()); }),
            "Failed to inflate the compressed input: the gzip stream is damaged or cut short.");
  ASSERT_NE(document.GetDocumentElement(), nullptr);
  EXPECT_NE(document.GetDocumentElement()->GetFirstElement(), nullptr);

  // A damaged stream that breaks off before any text: read whole, as a
  // buffer would be, and so refused by the text parser.
  const std::string broken = TempPath("broken.xml.gz");
  WriteFile(broken, gz.substr(0, 30));
  CXmlDocument whole;
  std::vector<unsigned char> bytes(gz.begin(), gz.begin() + 30);
  const std::string asBuffer = FailureOf([&] { whole.LoadXmlStream(bytes.data(), bytes.size()); });
  EXPECT_FALSE(asBuffer.empty());
  EXPECT_EQ(FailureOf([&] { document.Load(broken.c_str()); }), asBuffer);

  // The inflate limits hold for a streamed file as for a buffer.
  CXmlSerializationContext limited;
  CInflateLimits limits;
  limits.maxInflatedSize = 100000;
  limited.SetInflateLimits(limits);
  CXmlDocument small(limited);
  EXPECT_EQ(FailureOf([&] { small.Load(packed.c_str()); }),
            "Failed to inflate the compressed input: it inflates to more than 100000 bytes, the limit on the "
            "inflated size.");
  CXmlDocument smallBuffer(limited);
  std::vector<unsigned char> packedBytes(gz.begin(), gz.end());
  EXPECT_EQ(FailureOf([&] { smallBuffer.LoadXmlStream(packedBytes.data(), packedBytes.size()); }),
            FailureOf([&] { small.Load(packed.c_str()); }));
  std::remove(plain.c_str());
  std::remove(packed.c_str());
  std::remove(cut.c_str());
  std::remove(broken.c_str());
}
