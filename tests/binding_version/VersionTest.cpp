// The generator version is process-wide, and the banner of construction is
// printed once per process: this program checks both from a fresh start, so
// it must not link anything that announces a version.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/TempFiles.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Version.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlGeneratedClass.h"

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

namespace {

// The smallest generated class: an element with nothing in it.
class CEmpty : public CXmlGeneratedClass {
 public:
  CEmpty() { SetElementName("empty"); }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void AccessProperty(int, bool, KoVariant&) override {}
  CParentElementInfo* GetClassInfo() override { return Records().info; }
  CElementInfo** GetClassElementInfo() override { return Records().elements; }
  CAttributeInfo** GetClassAttributeInfo() override { return Records().attributes; }
  void Init() override {}

 private:
  struct Meta {
    Meta() {
      m_csInit.Enter();
      info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "empty", "", false, false,
                                    -1, ItemType_none, nullptr, false);
      elements = new CElementInfo*[1]{nullptr};
      attributes = new CAttributeInfo*[1]{nullptr};
      m_csInit.Leave();
    }
    ~Meta() { CleanMetaData(info, elements, attributes); }
    CParentElementInfo* info;
    CElementInfo** elements;
    CAttributeInfo** attributes;
  };
  static Meta& Records() {
    static Meta meta;  // created once, on first use
    return meta;
  }
};

std::string Banner(int major, int minor) {
  return "\n-----------------Version Mismatch-----------------\n"
         "Tesselbind - Version Mismatch Error\n"
         "Please ensure your generated code is the same version as this library (Tessel Runtime: v10.1, Generator: v" +
         std::to_string(major) + "." + std::to_string(minor) + ").\n";
}

struct Output {
  std::string out, err;
};

Output Captured(const std::function<void()>& action) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  action();
  Output output;
  output.out = ::testing::internal::GetCapturedStdout();
  output.err = ::testing::internal::GetCapturedStderr();
  return output;
}

// Every entry point, each to be refused while the version is wrong.
std::vector<std::pair<const char*, std::function<void(CEmpty&)>>> EntryPoints() {
  static CBinaryData bytes("<empty/>");
  static CXmlDocument document;
  if (!document.GetDocumentElement()) document.LoadXml("<empty/>");
  const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
  const std::string file = testsupport::TempPath("version-test.xml");
  return {
      {"ToXml", [&ctx](CEmpty& o) { o.ToXml(false, false, EOLTypeLF, ctx); }},
      {"ToXmlStream",
       [&ctx](CEmpty& o) { o.ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, ctx, CompressionTypeNone); }},
      {"ToXmlFile",
       [&ctx, file](CEmpty& o) {
         o.ToXmlFile(file.c_str(), false, false, XmlEncoding_UTF8, EOLTypeLF, ctx, CompressionTypeNone);
       }},
      {"ToXmlFile asynchronous",
       [&ctx, file](CEmpty& o) {
         AsyncToXmlFile(true);
         try {
           o.ToXmlFile(file.c_str(), false, false, XmlEncoding_UTF8, EOLTypeLF, ctx, CompressionTypeNone);
         } catch (...) {
           AsyncToXmlFile(false);
           throw;
         }
         AsyncToXmlFile(false);
       }},
      {"ToFastInfosetStream", [&ctx](CEmpty& o) { o.ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeNone); }},
      {"ToFastInfosetFile",
       [&ctx, file](CEmpty& o) { o.ToFastInfosetFile(file.c_str(), FInfoDeclNone, ctx, CompressionTypeNone); }},
      {"FromXml", [&ctx](CEmpty& o) { o.FromXml("<empty/>", ctx); }},
      {"FromXml wide", [&ctx](CEmpty& o) { o.FromXml(L"<empty/>", ctx); }},
      {"FromXmlStream bytes", [&ctx](CEmpty& o) { o.FromXmlStream(bytes.GetData(), bytes.GetLength(), ctx); }},
      {"FromXmlStream buffer", [&ctx](CEmpty& o) { o.FromXmlStream(bytes, ctx); }},
      {"FromXmlFile", [&ctx, file](CEmpty& o) { o.FromXmlFile(file.c_str(), ctx); }},
      {"FromXmlElement", [&ctx](CEmpty& o) { o.FromXmlElement(document.GetDocumentElement(), ctx); }},
  };
}

// One test, in order: what happens depends on what happened before.
TEST(GeneratorVersion, BannerAndRefusal) {
  // The first object of the process announces the mismatch, once, and is
  // still created.
  CEmpty* first = nullptr;
  Output output = Captured([&] { first = new CEmpty(); });
  CSmartPtr<CEmpty> keep(first);
  EXPECT_EQ(output.out, Banner(0, 0));
  EXPECT_EQ(output.err, Banner(0, 0));
  output = Captured([] { CSmartPtr<CEmpty> second(new CEmpty()); });
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "");

  // Every entry point refuses, after the banner on both streams, once per call.
  for (const auto& [version, minor] : {std::pair<int, int>{0, 0}, {10, 2}}) {
    SetGeneratorVersion(version, minor);
    const std::string message = "Wrong Version (Tessel Runtime: v10.1, Generator: v" + std::to_string(version) + "." +
                                std::to_string(minor) + ")";
    for (const auto& [name, call] : EntryPoints()) {
      SCOPED_TRACE(name);
      std::string thrown = "<nothing thrown>";
      output = Captured([&] {
        try {
          call(*keep);
        } catch (const CKoException& e) {
          thrown = e.GetFullMessage();
        }
      });
      EXPECT_EQ(thrown, message);
      EXPECT_EQ(output.out, Banner(version, minor));
      EXPECT_EQ(output.err, Banner(version, minor));
    }
  }

  // Zlib is refused for files before the version is looked at.
  output = Captured([&] {
    EXPECT_THROW(keep->ToXmlFile("never.xml", false, false, XmlEncoding_UTF8, EOLTypeLF,
                                 CXmlSerializationContext::m_defaultContext, CompressionTypeZlib),
                 CKoException);
  });
  EXPECT_EQ(output.out, "");

  // With the right version every entry point works and prints nothing.
  SetGeneratorVersion(10, 1);
  for (const auto& [name, call] : EntryPoints()) {
    SCOPED_TRACE(name);
    output = Captured([&] { call(*keep); });
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "");
  }
  EXPECT_EQ(keep->ToXml(false, false, EOLTypeLF, CXmlSerializationContext::m_defaultContext), "<empty/>");
  std::remove((testsupport::TempPath("version-test.xml")).c_str());
}

}  // namespace
