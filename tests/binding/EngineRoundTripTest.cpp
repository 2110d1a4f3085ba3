#include <gtest/gtest.h>

#include "KoXmlLib10/FastInfosetWriter.h"
#include "KoXmlLib10/XmlDocument.h"
#include "support/TestModel.h"
#include "support/Throws.h"

using namespace testmodel;

namespace {

CSmartPtr<CTeam> SampleTeam() {
  CSmartPtr<CTeam> team(new CTeam());
  team->title = "Blue & <Gold>";
  team->meta->rev = 7;
  team->meta->comment = "first";
  CSmartPtr<CPerson> leader(new CPerson());
  leader->SetElementName("leader");
  leader->id = 42;
  leader->lang = "en";
  leader->name = "Ada";
  leader->age = 36;
  for (const char* tag : {"a", "b", "c"}) leader->tags->Add(tag);
  CSmartPtr<CAddress> address(new CAddress());
  address->street = "1 Main St";
  address->zip = 12345;
  address->kind = "home";
  leader->address = address;
  team->leader = leader;
  CSmartPtr<CShape> shape(new CShape());
  shape->label = "round";
  team->shape = shape;
  return team;
}

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

std::string Text(const CXmlObjectBase& object) { return object.ToXml(false, false, EOLTypeLF, Default()); }

const char kSampleText[] =
    "<AA:team xmlns:AA=\"urn:test\" title=\"Blue &amp; &lt;Gold&gt;\" rev=\"7\">"
    "<AA:leader xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:type=\"AA:person\" id=\"42\" lang=\"en\">"
    "<AA:name>Ada</AA:name><AA:age>36</AA:age>"
    "<AA:address kind=\"home\"><AA:street>1 Main St</AA:street><AA:zip>12345</AA:zip></AA:address>"
    "<AA:tag>a</AA:tag><AA:tag>b</AA:tag><AA:tag>c</AA:tag></AA:leader>"
    "<AA:comment>first</AA:comment><AA:shape><AA:label>round</AA:label></AA:shape></AA:team>";

// The sample's text is held byte for byte, so an object that writes it again
// was read field for field.
TEST(EngineRoundTrip, FromTextNarrowAndWide) {
  EXPECT_EQ(Text(*SampleTeam()), kSampleText);
  const std::string narrow = kSampleText;
  const std::wstring wide(narrow.begin(), narrow.end());
  for (bool isWide : {false, true}) {
    CSmartPtr<CTeam> team(new CTeam());
    isWide ? team->FromXml(wide.c_str(), Default()) : team->FromXml(kSampleText, Default());
    EXPECT_EQ(Text(*team), kSampleText) << (isWide ? "wide" : "narrow");
  }
}

// Every writer and every framing reads back into the same object.
struct Format {
  const char* name;
  CBinaryData (*write)(const CXmlObjectBase&);
};

const Format kFormats[] = {
    {"utf8", [](const CXmlObjectBase& o) {
       return o.ToXmlStream(true, true, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone);
     }},
    {"utf16", [](const CXmlObjectBase& o) {
       return o.ToXmlStream(true, false, XmlEncoding_UTF16, EOLTypeCRLF, Default(), CompressionTypeNone);
     }},
    {"utf8 gzip", [](const CXmlObjectBase& o) {
       return o.ToXmlStream(true, true, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeGzip);
     }},
    {"utf8 zlib", [](const CXmlObjectBase& o) {
       return o.ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeZlib);
     }},
    {"fast infoset", [](const CXmlObjectBase& o) { return o.ToFastInfosetStream(FInfoDeclNone, Default(), CompressionTypeNone); }},
    {"fast infoset with declaration",
     [](const CXmlObjectBase& o) { return o.ToFastInfosetStream(FInfoDeclFinf, Default(), CompressionTypeNone); }},
    {"fast infoset gzip", [](const CXmlObjectBase& o) { return o.ToFastInfosetStream(FInfoDeclNone, Default(), CompressionTypeGzip); }},
    {"fast infoset zlib", [](const CXmlObjectBase& o) { return o.ToFastInfosetStream(FInfoDeclNone, Default(), CompressionTypeZlib); }},
};

TEST(EngineRoundTrip, EveryWriterAndFramingReadsBack) {
  CSmartPtr<CTeam> sample = SampleTeam();
  for (const Format& format : kFormats) {
    SCOPED_TRACE(format.name);
    CBinaryData bytes = format.write(*sample);
    ASSERT_GT(bytes.GetLength(), 0u);
    CSmartPtr<CTeam> viaBuffer(new CTeam());
    viaBuffer->FromXmlStream(bytes, Default());
    EXPECT_EQ(Text(*viaBuffer), kSampleText);

    CSmartPtr<CTeam> viaPointer(new CTeam());
    viaPointer->FromXmlStream(bytes.GetData(), bytes.GetLength(), Default());
    EXPECT_EQ(Text(*viaPointer), kSampleText);
  }
}

TEST(EngineRoundTrip, FromAParsedElement) {
  CXmlDocument document;
  document.LoadXml(kSampleText);
  CSmartPtr<CTeam> team(new CTeam());
  team->FromXmlElement(document.GetDocumentElement(), Default());
  EXPECT_EQ(Text(*team), kSampleText);
  // Any element of a tree will do, not only the document element.
  CSmartPtr<CPerson> leader(new CPerson());
  leader->FromXmlElement(document.GetDocumentElement()->GetFirstElement(), Default());
  EXPECT_EQ(leader->GetElementName(), "leader");
  EXPECT_EQ(leader->Tags(), "a,b,c");
}

}  // namespace
