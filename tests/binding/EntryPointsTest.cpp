#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>
#include <vector>

#include "KoXmlLib10/XmlObjectHelper.h"
#include "support/TestModel.h"
#include "support/Throws.h"

using namespace testmodel;
using testsupport::Throws;

namespace {

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

CSmartPtr<CPerson> Person(const char* name = "Ada") {
  CSmartPtr<CPerson> person(new CPerson());
  person->id = 1;
  person->name = name;
  person->tags->Add(std::string(300, 'x'));  // long enough to compress
  return person;
}

// A scratch directory, removed with everything in it.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string pattern = ::testing::TempDir() + "engine-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    EXPECT_NE(mkdtemp(buffer.data()), nullptr);
    m_path = buffer.data();
  }
  ~ScratchDirectory() {
    for (const std::string& name : Entries()) std::remove(Path(name.c_str()).c_str());
    rmdir(m_path.c_str());
  }
  std::string Path(const char* name) const { return m_path + "/" + name; }
  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    if (DIR* dir = opendir(m_path.c_str())) {
      while (dirent* entry = readdir(dir))
        if (std::string(entry->d_name) != "." && std::string(entry->d_name) != "..") names.push_back(entry->d_name);
      closedir(dir);
    }
    return names;
  }

 private:
  std::string m_path;
};

std::string Contents(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream out;
  out << in.rdbuf();
  return out.str();
}

void Put(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// Restores the process-wide switch.
struct AsyncWriting {
  explicit AsyncWriting(bool on) { AsyncToXmlFile(on); }
  ~AsyncWriting() { AsyncToXmlFile(false); }
};

// ---- files ------------------------------------------------------------------------

TEST(EntryPoints, TextFilesSynchronousAndAsynchronousAreTheSame) {
  ScratchDirectory dir;
  const std::string sync = dir.Path("sync.xml"), async = dir.Path("async.xml");
  Person()->ToXmlFile(sync.c_str(), true, true, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone);
  {
    AsyncWriting on(true);
    Person()->ToXmlFile(async.c_str(), true, true, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone);
  }
  const CBinaryData bytes =
      Person()->ToXmlStream(true, true, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone);
  EXPECT_EQ(Contents(sync), std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength()));
  EXPECT_EQ(Contents(async), Contents(sync));
  for (const std::string& path : {sync, async}) {
    CSmartPtr<CPerson> back(new CPerson());
    back->FromXmlFile(path.c_str(), Default());
    EXPECT_EQ(back->name, "Ada");
  }
  EXPECT_EQ(dir.Entries().size(), 2u);  // nothing left beside the files
}

// Each writer, then the reader, which tells the forms apart by their first octets.
TEST(EntryPoints, Utf16GzipAndFastInfosetFiles) {
  ScratchDirectory dir;
  const struct {
    const char* name;
    std::function<void(const char*, CPerson&)> write;
    const char* magic;
  } forms[] = {
      {"utf16.xml", [](const char* path, CPerson& p) {
         p.ToXmlFile(path, true, false, XmlEncoding_UTF16, EOLTypeLF, Default(), CompressionTypeNone); }, "\xFF\xFE"},
      {"doc.xml.gz", [](const char* path, CPerson& p) {
         p.ToXmlFile(path, true, false, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeGzip); }, "\x1F\x8B"},
      {"doc.fi", [](const char* path, CPerson& p) {
         p.ToFastInfosetFile(path, FInfoDeclFinf, Default(), CompressionTypeNone); }, "<?"},
      {"doc.fi.gz", [](const char* path, CPerson& p) {
         p.ToFastInfosetFile(path, FInfoDeclNone, Default(), CompressionTypeGzip); }, "\x1F\x8B"},
  };
  for (const auto& form : forms) {
    SCOPED_TRACE(form.name);
    const std::string path = dir.Path(form.name);
    form.write(path.c_str(), *Person());
    {
      AsyncWriting on(true);  // compressed files are always built in memory first
      form.write(path.c_str(), *Person("Bea"));
    }
    EXPECT_EQ(Contents(path).substr(0, 2), form.magic);
    CSmartPtr<CPerson> back(new CPerson());
    back->FromXmlFile(path.c_str(), Default());
    EXPECT_EQ(back->name, "Bea");
  }
}

TEST(EntryPoints, ZlibIsRefusedForFilesBeforeTheFileIsTouched) {
  ScratchDirectory dir;
  const std::string existing = dir.Path("existing.xml"), fresh = dir.Path("fresh.xml");
  Put(existing, "old");
  const char* message = "ZLIB Compression only available for To Stream methods.";
  for (const std::string& path : {existing, fresh}) {
    EXPECT_TRUE(Throws([&] {
      Person()->ToXmlFile(path.c_str(), true, false, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeZlib);
    }, message));
    EXPECT_TRUE(Throws([&] {
      Person()->ToFastInfosetFile(path.c_str(), FInfoDeclNone, Default(), CompressionTypeZlib);
    }, message));
  }
  EXPECT_EQ(Contents(existing), "old");
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"existing.xml"});
}

TEST(EntryPoints, AFailedWriteLeavesNoPartialFile) {
  ScratchDirectory dir;
  const std::string existing = dir.Path("existing.xml"), fresh = dir.Path("fresh.xml");
  Put(existing, "old");
  // The team is written up to its leader's tags, one too many, and fails there.
  CSmartPtr<CTeam> team(new CTeam());
  team->leader = Person();
  team->leader->SetElementName("leader");
  for (const char* tag : {"1", "2", "3", "4"}) team->leader->tags->Add(tag);
  for (bool async : {false, true}) {
    SCOPED_TRACE(async ? "asynchronous" : "synchronous");
    AsyncWriting mode(async);
    for (const std::string& path : {existing, fresh}) {
      EXPECT_THROW(
          team->ToXmlFile(path.c_str(), true, true, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone),
          CKoValidationException);
      EXPECT_THROW(
          team->ToXmlFile(path.c_str(), true, true, XmlEncoding_UTF16, EOLTypeLF, Default(), CompressionTypeGzip),
          CKoValidationException);
      EXPECT_THROW(team->ToFastInfosetFile(path.c_str(), FInfoDeclNone, Default(), CompressionTypeNone),
                   CKoValidationException);
    }
    EXPECT_EQ(Contents(existing), "old");
    EXPECT_EQ(dir.Entries(), std::vector<std::string>{"existing.xml"});
  }
}

TEST(EntryPoints, AReplacedFileKeepsItsPermissions) {
  ScratchDirectory dir;
  const std::string text = dir.Path("private.xml"), fi = dir.Path("private.fi");
  for (const std::string& path : {text, fi}) {
    Put(path, "old");
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
  }
  for (bool async : {false, true}) {
    AsyncWriting mode(async);
    Person()->ToXmlFile(text.c_str(), true, false, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone);
  }
  Person()->ToFastInfosetFile(fi.c_str(), FInfoDeclNone, Default(), CompressionTypeNone);
  for (const std::string& path : {text, fi}) {
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u) << path;
    EXPECT_NE(Contents(path), "old");
  }
}

TEST(EntryPoints, AnUnwritableFileIsReportedByItsOwnName) {
  ScratchDirectory dir;
  const std::string path = dir.Path("missing-directory/doc.xml");
  const std::string message = "Failed to write data to the file [" + path + "]";
  for (bool async : {false, true}) {
    AsyncWriting mode(async);
    EXPECT_TRUE(Throws([&] {
      Person()->ToXmlFile(path.c_str(), true, false, XmlEncoding_UTF8, EOLTypeLF, Default(), CompressionTypeNone);
    }, message));
  }
  EXPECT_TRUE(Throws([&] { Person()->ToFastInfosetFile(path.c_str(), FInfoDeclNone, Default(), CompressionTypeNone); },
                     message));
  EXPECT_TRUE(dir.Entries().empty());
}

TEST(EntryPoints, ReadingAMissingOrEmptyInputFailsWithoutTouchingTheObject) {
  ScratchDirectory dir;
  CSmartPtr<CPerson> person = Person();
  EXPECT_THROW(person->FromXmlFile(dir.Path("absent.xml").c_str(), Default()), CKoException);
  EXPECT_THROW(person->FromXml("", Default()), CKoException);
  EXPECT_THROW(person->FromXml("<person", Default()), CKoException);
  EXPECT_EQ(person->name, "Ada");
  EXPECT_THROW(person->FromXmlElement(static_cast<const CXmlElement*>(nullptr), Default()), CKoException);
}

// ---- setter checks and choice bookkeeping ----------------------------------------------

TEST(ObjectBase, SetterChecks) {
  CSmartPtr<CPerson> person = Person();
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { person->Throw_IfPropertyIsNull(nullptr, "Address"); },
                                               "The Property [Address] is mandatory, it may node be NULL"));
  person->Throw_IfPropertyIsNull(person.get(), "Address");
  CSmartPtr<CAddress> address(new CAddress());
  person->Throw_IfElementNameDiffers(address.get(), "address");
  person->Throw_IfElementNameDiffers(nullptr, "anything");
  EXPECT_TRUE(Throws<CKoInvalidParamException>(
      [&] { person->Throw_IfElementNameDiffers(address.get(), "Address"); },
      "This property requrires an element with the name Address the element being set has the element name "
      "address"));
}

TEST(ObjectBase, ChoiceBookkeeping) {
  CSmartPtr<CAddress> value(new CAddress());
  std::string selected;
  CXmlObjectBase::Choice_SelectElement("a", value.get(), selected);
  EXPECT_EQ(selected, "a");
  CXmlObjectBase::Choice_SelectElement("a", value.get(), selected);
  EXPECT_EQ(selected, "a");
  CXmlObjectBase::Choice_SelectElement("b", nullptr, selected);  // clearing another changes nothing
  EXPECT_EQ(selected, "a");
  EXPECT_TRUE(Throws<CKoInvalidStateException>(
      [&] { CXmlObjectBase::Choice_SelectElement("b", value.get(), selected); },
      "The Property [a] is already set. Only one element within this class bay be set at a time"));
  CXmlObjectBase::Choice_SelectElement("a", nullptr, selected);
  EXPECT_EQ(selected, "");

  CXmlObjectBase::Choice_CollectionChanged("c", 0, selected);
  EXPECT_EQ(selected, "");
  CXmlObjectBase::Choice_CollectionChanged("c", 2, selected);
  EXPECT_EQ(selected, "c");
  CXmlObjectBase::Choice_CollectionChanged("d", 0, selected);
  EXPECT_TRUE(Throws<CKoInvalidStateException>(
      [&] { CXmlObjectBase::Choice_CollectionChanged("d", 1, selected); },
      "The Property [c] is already set. Only one element within this class bay be set at a time"));
  CXmlObjectBase::Choice_CollectionChanged("c", 0, selected);
  EXPECT_EQ(selected, "");

  CXmlObjectBase::Choice_SetElementValid(true, "e", selected);
  CXmlObjectBase::Choice_SetElementValid(true, "e", selected);
  EXPECT_EQ(selected, "e");
  EXPECT_TRUE(Throws<CKoInvalidStateException>(
      [&] { CXmlObjectBase::Choice_SetElementValid(true, "f", selected); },
      "The Property e is already set. Only one element within this class bay be set at a time"));
  CXmlObjectBase::Choice_SetElementValid(false, "f", selected);  // any false clears
  EXPECT_EQ(selected, "");

  // A collection already read is not read again.
  long count = 1;
  CXmlElement* cursor = nullptr;
  CXmlObjectBase::Choice_Read_Collection(nullptr, nullptr, cursor, count, Default());
  EXPECT_EQ(count, 1);
}

// ---- namespace rules ---------------------------------------------------------------------

TEST(NamespaceRules, Restrictions) {
  struct Case {
    const char* uri;
    const char* restriction;
    bool valid;
  };
  const Case cases[] = {
      {"urn:x", "##any", true},          {"", "##any", true},
      {"urn:x", "##other", true},        {"urn:t", "##other", false},
      {"", "##other", true},             {"", "##local", true},
      {"urn:t", "##local", false},       {"urn:t", "##targetNamespace", true},
      {"urn:x", "##targetNamespace", false},
      {"urn:t", "##targetNamespace ##local", true},
      {"", "##targetNamespace ##local", true},
      {"urn:x", "##targetNamespace ##local", false},
      {"urn:b", "urn:a urn:b", true},    {"urn:c", "urn:a urn:b", false},
      {"", "urn:a urn:b", true},  // a listed URI lets the empty namespace through
      {"", "", true},                    {"urn:x", "", false},
      {"urn:x", "##local  urn:x", true},  // an empty token between two spaces
      {"urn:x", "##local ", false},
  };
  CSmartPtr<CPerson> person = Person();
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.uri) + " in [" + c.restriction + "]");
    EXPECT_EQ(CXmlObjectHelper::IsNamespaceValid(c.uri, c.restriction, "urn:t"), c.valid);
    EXPECT_EQ(person->IsNamespaceValid(c.uri, c.restriction, "urn:t"), c.valid);
    EXPECT_EQ(CAttributeInfo::IsNamespaceValid(c.uri, c.restriction, "urn:t"), c.valid);
  }
  const char* message =
      "Invalid namespace [urn:x]. The namespace must be one of [##local] where the target namespace is [urn:t]";
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>(
      [] { CXmlObjectHelper::TestNamespace("urn:x", "##local", "urn:t"); }, message));
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([&] { person->TestNamespace("urn:x", "##local", "urn:t"); },
                                                   message));
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>(
      [] { CAttributeInfo::TestNamespace("urn:x", "##local", "urn:t"); }, message));
  person->TestNamespace("", "##local", "urn:t");
}

// ---- records ------------------------------------------------------------------------------

// Counts how many records were deleted.
class CCountedRecord : public CElementInfoSeq {
 public:
  explicit CCountedRecord(int& deleted) : CElementInfoSeq("r", "", 0), m_deleted(deleted) {}
  ~CCountedRecord() override { ++m_deleted; }
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const override {
    return false;
  }
  bool ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
                      const char*, XmlElementType) override {
    return true;
  }

 private:
  int& m_deleted;
};

class CCountedAttribute : public CAttributeInfo {
 public:
  explicit CCountedAttribute(int& deleted) : CAttributeInfo("a", nullptr, 0, true, nullptr), m_deleted(deleted) {}
  ~CCountedAttribute() override { ++m_deleted; }
  void AttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const override {}
  bool AttributeFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlAttribute*) override {
    return false;
  }
  void Validate(const CXmlSerializationContext&, bool) const override {}

 private:
  int& m_deleted;
};

TEST(MetaData, CleanMetaDataDeletesEverythingUpToTheFirstNull) {
  int deleted = 0;
  auto* info = new CParentElementInfo(XmlElementGroupTypeAll, XmlElementTypeElement, nullptr, nullptr, false, false,
                                      -1, ItemType_none, nullptr, false);
  CElementInfo** elements = Elements({new CCountedRecord(deleted), new CCountedRecord(deleted)});
  CAttributeInfo** attributes = Attributes({new CCountedAttribute(deleted)});
  CXmlGeneratedClass::CleanMetaData(info, elements, attributes);
  EXPECT_EQ(deleted, 3);
  EXPECT_EQ(info, nullptr);
  EXPECT_EQ(elements, nullptr);
  EXPECT_EQ(attributes, nullptr);
  CXmlGeneratedClass::CleanMetaData(info, elements, attributes);  // null arguments are skipped
  EXPECT_EQ(deleted, 3);
}

// The records of a generated class: created on first use only, freed when
// the program ends (here, when the holder goes).
int g_created = 0, g_deleted = 0;
void CreateCounted(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  ++g_created;
  info = new CParentElementInfo(XmlElementGroupTypeAll, XmlElementTypeElement, nullptr, nullptr, false, false, -1,
                                ItemType_none, nullptr, false);
  elements = Elements({new CCountedRecord(g_deleted)});
  attributes = Attributes({new CCountedAttribute(g_deleted)});
}

TEST(MetaData, GeneratedRecordsAreCreatedOnceAndFreedAtTheEnd) {
  {
    CGeneratedMetaData meta(CreateCounted);
    EXPECT_EQ(g_created, 0);
    CElementInfo** elements = meta.Elements();
    EXPECT_EQ(meta.Info()->groupType, XmlElementGroupTypeAll);
    EXPECT_EQ(meta.Elements(), elements);
    EXPECT_NE(meta.Attributes()[0], nullptr);
    EXPECT_EQ(g_created, 1);
    EXPECT_EQ(g_deleted, 0);
  }
  EXPECT_EQ(g_deleted, 2);
}

// Null texts given to the records become empty strings.
TEST(MetaData, NullTextsAreEmpty) {
  const CParentElementInfo bare(XmlElementGroupTypeChoice, XmlElementTypePseudo, nullptr, nullptr, true, true, -1,
                                ItemType_i4, nullptr, false);
  EXPECT_EQ(bare.typeName + bare.typeNamespace + bare.valueFormat, "");
  EXPECT_FALSE(bare.HasSimpleContent());  // no property
  EXPECT_FALSE(CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "T", "urn:t", false, false, 3,
                                  ItemType_none, "0.00", true).HasSimpleContent());  // no item type
  CElementInfoSeqPrimCol plain("r", nullptr, 5);
  EXPECT_EQ(plain.elementNamespace, "");
  CAttributeInfoPrimitive attribute("a", nullptr, 6, true, ItemType_string, nullptr,
                                    CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), nullptr);
  EXPECT_EQ(attribute.attributeNamespace + attribute.defaultValue, "");
}

TEST(MetaData, SequenceAndChoiceRecordsAreNeverValidated) {
  CElementInfoSeqPrimCol sequence("r", "", 0);
  CElementInfoChoicePrimCol choice("c", "", 0);
  CSmartPtr<CBag> owner(new CBag());
  const char* message = "Not implemented, should never be called";
  EXPECT_TRUE(Throws([&] { sequence.Validate(Default(), owner.get(), true, true); }, message));
  EXPECT_TRUE(Throws([&] { choice.Validate(Default(), owner.get(), false, false); }, message));
}

// Element and attribute names, by the helper, the object and the records.
TEST(MetaData, NameMatching) {
  CXmlDocument document;
  document.LoadXml("<a:item xmlns:a=\"urn:a\" a:at=\"1\" plain=\"2\"/>");
  CXmlElement* item = document.GetDocumentElement();
  CSmartPtr<CPerson> person = Person();
  CElementInfoSeqPrimCol inA("item", "urn:a", 0), inB("item", "urn:b", 0), other("other", "urn:a", 0);
  CXmlSerializationContext ctx;
  EXPECT_TRUE(CXmlObjectHelper::DoesElementNameMatch(ctx, item, "item", "urn:a"));
  EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(ctx, item, "item", "urn:b"));
  EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(ctx, item, "Item", "urn:a"));
  EXPECT_FALSE(person->DoesElementNameMatch(ctx, item, "item", ""));
  EXPECT_TRUE(inA.IsThisElement(ctx, item));
  EXPECT_FALSE(inB.IsThisElement(ctx, item));
  EXPECT_FALSE(other.IsThisElement(ctx, item));
  EXPECT_FALSE(inA.IsThisElement(ctx, nullptr));
  auto attribute = [](const char* name, const char* ns) {
    return CAttributeInfoPrimitive(name, ns, 0, true, ItemType_i4, nullptr,
                                   CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), nullptr);
  };
  CAttributeInfoPrimitive at = attribute("at", "urn:a"), atB = attribute("at", "urn:b"), plain = attribute("plain", "");
  CXmlAttribute* first = item->GetAttributes()[0];
  CXmlAttribute* second = item->GetAttributes()[1];
  EXPECT_TRUE(at.IsThisAttribute(ctx, first));
  EXPECT_FALSE(atB.IsThisAttribute(ctx, first));
  EXPECT_TRUE(plain.IsThisAttribute(ctx, second));
  EXPECT_FALSE(plain.IsThisAttribute(ctx, first));
  EXPECT_FALSE(plain.IsThisAttribute(ctx, nullptr));
  ctx.SetIgnoreNamespaces(true);
  EXPECT_TRUE(person->DoesElementNameMatch(ctx, item, "item", "urn:b"));
  EXPECT_TRUE(inB.IsThisElement(ctx, item));
  EXPECT_TRUE(atB.IsThisAttribute(ctx, first));
  CXmlSerializationContext noNamespaces;
  noNamespaces.SetSchemaType(SchemaTypeNoNamespaces);
  EXPECT_TRUE(CXmlObjectHelper::DoesElementNameMatch(noNamespaces, item, "item", "urn:b"));
  EXPECT_TRUE(inB.IsThisElement(noNamespaces, item));
}

TEST(MetaData, EngineQueriesOfAClass) {
  CSmartPtr<CPerson> person = Person();
  EXPECT_EQ(person->GetClassElementInfoCount(), 5);
  CXmlDocument document;
  document.LoadXml("<x xmlns=\"urn:test\"><note/><bogus/></x>");
  CXmlElement* note = document.GetDocumentElement()->GetFirstElement();
  EXPECT_TRUE(person->IsElementInList(Default(), note));
  EXPECT_FALSE(person->IsElementInList(Default(), note->GetNextSiblingElement()));
  EXPECT_FALSE(person->IsElementInList(Default(), nullptr));
  // The library's optional alternatives make a choice optional.
  EXPECT_TRUE(CSmartPtr<CShape>(new CShape())->DoesElementContainOptionalElements());

  KoVariant value;
  person->ReadProperty(CPerson::P_name, value);
  EXPECT_EQ(value.GetString(), "Ada");
  CAttributeInfo* id = person->GetClassAttributeInfo()[0];
  id->ReadProperty(person.get(), value);
  EXPECT_EQ(value.GetI4(), 1);
  value.SetI4(9);
  id->AccessProperty(person.get(), false, value);
  EXPECT_EQ(person->id, 9);
  EXPECT_EQ(CAttributeInfo::GetTargetNamespace(person.get()), "urn:test");
}

}  // namespace
