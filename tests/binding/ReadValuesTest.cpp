// Values read out of a loaded tree: texts of any length one after another,
// a value read while another one is being parsed, and classes with more
// attribute records than fit the reader's fixed room.

#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>
#include <vector>

#include "support/CustomClass.h"
#include "support/GeneratorVersion.h"

namespace {

using namespace testmodel;

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// The records of one test class, made on first use and freed at exit.
struct Records {
  CParentElementInfo* info = nullptr;
  CElementInfo** elements = nullptr;
  CAttributeInfo** attributes = nullptr;
  ~Records() { CXmlGeneratedClass::CleanMetaData(info, elements, attributes); }
};

CParentElementInfo* SequenceInfo(const char* typeName) {
  return new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, typeName, kNs, true, false, -1,
                                ItemType_none, nullptr, false);
}

// <texts><a/><b/><c/></texts>: three strings and a decimal in a row.
class CTexts : public CXmlGeneratedClass {
 public:
  enum { kA, kB, kC, kD };
  CTexts() { SetElementName("texts"); }
  std::string a, b, c;
  CDecimal d;

  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int id, bool get, KoVariant& value) override {
    std::string* text = id == kA ? &a : id == kB ? &b : id == kC ? &c : nullptr;
    if (text) return get ? value.SetString(*text) : void(*text = value.GetString());
    if (id == kD) return get ? value.SetDecimal(d) : void(d = value.GetDecimal());
  }
  CParentElementInfo* GetClassInfo() override { return Meta().info; }
  CElementInfo** GetClassElementInfo() override { return Meta().elements; }
  CAttributeInfo** GetClassAttributeInfo() override { return Meta().attributes; }
  void Init() override {
    a.clear();
    b.clear();
    c.clear();
    d = CDecimal();
  }

 private:
  static Records& Meta() {
    static Records records = [] {
      Records r;
      r.info = SequenceInfo("Texts");
      r.elements = new CElementInfo*[5]{
          new CElementInfoSeqPrimMnd("a", kNs, kA, false, ItemType_string, nullptr, kPreserve,
                                     CPrimitiveRestrictions()),
          new CElementInfoSeqPrimMnd("b", kNs, kB, false, ItemType_string, nullptr, kCollapse,
                                     CPrimitiveRestrictions()),
          new CElementInfoSeqPrimMnd("c", kNs, kC, false, ItemType_string, nullptr, kPreserve,
                                     CPrimitiveRestrictions()),
          new CElementInfoSeqPrimMnd("d", kNs, kD, false, ItemType_decimal, nullptr, kCollapse,
                                     CPrimitiveRestrictions()),
          nullptr};
      r.attributes = new CAttributeInfo*[1]{nullptr};
      return r;
    }();
    return records;
  }
};

std::string TextsDocument(const std::string& a, const std::string& b, const std::string& c, const std::string& d) {
  return std::string("<texts xmlns=\"") + kNs + "\"><a>" + a + "</a><b>" + b + "</b><c>" + c + "</c><d>" + d +
         "</d></texts>";
}

class ReadValues : public WithGeneratorVersion {};

TEST_F(ReadValues, TextsOfAnyLengthFollowEachOtherWithoutTraces) {
  const std::string longText(100000, 'x');  // beyond what a reader keeps between values
  const std::vector<std::vector<std::string>> cases = {
      {longText, "  two  words ", "", "12.50"},
      {"short", longText + " y", "three", " -0.125 "},
      {"", "b", longText, "7"},
      {"a\nb", "\tc\r\nd ", "x", "1e2"},
  };
  CTexts texts;
  for (const auto& c : cases) {
    texts.FromXml(TextsDocument(c[0], c[1], c[2], c[3]).c_str(), CXmlSerializationContext::m_defaultContext);
    EXPECT_EQ(texts.a, CWhitespaceUtils::ApplyRule(kPreserve, c[0]));
    EXPECT_EQ(texts.b, CWhitespaceUtils::ApplyRule(kCollapse, c[1]));
    EXPECT_EQ(texts.c, c[2]);
    EXPECT_EQ(texts.d.ToString(), CDecimal(CWhitespaceUtils::ApplyRule(kCollapse, c[3]).c_str()).ToString());
  }
}

TEST_F(ReadValues, ReadingFromAnElementLeavesTheTreeAsItWas) {
  CXmlDocument document;
  document.LoadXml(TextsDocument("first", " second ", "third", "1.5").c_str());
  const CXmlElement* root = document.GetDocumentElement();
  CTexts texts;
  texts.FromXmlElement(root, CXmlSerializationContext::m_defaultContext);
  EXPECT_EQ(texts.b, "second");
  std::vector<std::string> seen;
  for (const CXmlElement* e = root->GetFirstElement(); e; e = e->GetNextSiblingElement())
    seen.emplace_back(e->GetTextView());
  EXPECT_EQ(seen, (std::vector<std::string>{"first", " second ", "third", "1.5"}));
}

// <custom><e>second</e></custom>, where turning the text of e into its
// enumeration value reads another document first.
std::string g_seenAfterNestedRead;
std::string g_nestedValue;

const char* SecondText(int) { return "second"; }

int NestedTextToEnum(const char* text) {
  CTexts nested;
  nested.FromXml(TextsDocument("nested a", "nested b", "nested c", "2").c_str(),
                 CXmlSerializationContext::m_defaultContext);
  g_nestedValue = nested.b;
  g_seenAfterNestedRead = text;  // the outer text must have survived the nested read
  return 2;
}

TEST_F(ReadValues, AValueReadWhileAnotherIsParsedLeavesItsTextAlone) {
  auto* record = new CElementInfoSeqEnumMnd("e", kNs, 0, false, &SecondText, &NestedTextToEnum);
  CSmartPtr<CCustom> outer(new CCustom(XmlElementGroupTypeSequence, {record}));
  outer->FromXml((std::string("<custom xmlns=\"") + kNs + "\"><e>second</e></custom>").c_str(),
                 CXmlSerializationContext::m_defaultContext);
  EXPECT_EQ(outer->value.GetI4(), 2);
  EXPECT_EQ(g_nestedValue, "nested b");
  EXPECT_EQ(g_seenAfterNestedRead, "second");
}

// A class with 40 required attributes a0..a39.
constexpr int kManyAttributes = 40;

class CMany : public CXmlGeneratedClass {
 public:
  CMany() { SetElementName("many"); }
  std::vector<long> values = std::vector<long>(kManyAttributes, -1);

  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int id, bool get, KoVariant& value) override {
    get ? value.SetI4(values[id]) : void(values[id] = value.GetI4());
  }
  CParentElementInfo* GetClassInfo() override { return Meta().info; }
  CElementInfo** GetClassElementInfo() override { return Meta().elements; }
  CAttributeInfo** GetClassAttributeInfo() override { return Meta().attributes; }
  void Init() override { values.assign(kManyAttributes, -1); }

 private:
  static Records& Meta() {
    static Records records = [] {
      static std::vector<std::string> names;
      for (int i = 0; i < kManyAttributes; ++i) names.push_back("a" + std::to_string(i));
      Records r;
      r.info = SequenceInfo("Many");
      r.elements = new CElementInfo*[1]{nullptr};
      r.attributes = new CAttributeInfo*[kManyAttributes + 1]();
      for (int i = 0; i < kManyAttributes; ++i)
        r.attributes[i] = new CAttributeInfoPrimitive(names[i].c_str(), "", i, false, ItemType_i4, nullptr, kCollapse,
                                                      CPrimitiveRestrictions(), nullptr);
      return r;
    }();
    return records;
  }
};

std::string ManyDocument(int left) {
  std::string xml = std::string("<many xmlns=\"") + kNs + "\"";
  for (int i = 0; i < kManyAttributes; ++i)
    if (i != left) xml += " a" + std::to_string(i) + "=\"" + std::to_string(100 + i) + "\"";
  return xml + "/>";
}

TEST_F(ReadValues, EveryOneOfManyAttributeRecordsIsTrackedAndValidated) {
  CMany many;
  many.FromXml(ManyDocument(-1).c_str(), CXmlSerializationContext::m_defaultContext);
  for (int i = 0; i < kManyAttributes; ++i) EXPECT_EQ(many.values[i], 100 + i) << i;

  for (int left : {0, 31, 32, 39}) {
    std::string message = "<nothing thrown>";
    try {
      CMany().FromXml(ManyDocument(left).c_str(), CXmlSerializationContext::m_defaultContext);
    } catch (const CKoException& e) {
      message = e.GetFullMessage();
    }
    EXPECT_NE(message.find("Failed to find the required Attribute [a" + std::to_string(left) + "]"),
              std::string::npos)
        << message;
  }
}

}  // namespace
