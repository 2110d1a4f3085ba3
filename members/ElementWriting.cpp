// The writing operations that every element record shares, whatever its group.

#include <cstring>
#include <string>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/MetaData.h"
#include "KoXmlLib10/XmlCollectionBase.h"
#include "KoXmlLib10/XmlGeneratedClass.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "KoXmlLib10/XmlWriter.h"
#include "binding/VariantItemType.h"
#include "members/MembersMessages.h"
#include "members/RecordCore.h"
#include "types/VariantAccess.h"
#include "types/VariantText.h"

namespace KoXmlLib10Data {

namespace {

using KoXmlLib10::CKoException;
using KoXmlLib10::CKoInvalidValueException;
using KoXmlLib10::FormatString;
namespace msg = KoXmlLib10::msg;

// A nil value is an empty element carrying xsi:nil, whether or not the
// member is nillable, and without any facet check.
void WriteNilElement(const CElementInfo& record, CXmlWriter* writer) {
  writer->WriteStartElement(record.elementName, record.elementNamespace);
  writer->WriteAttributeNil();
  writer->WriteEndElement();
}

void WriteTextElement(const CElementInfo& record, CXmlWriter* writer, const std::string& text, ItemType type) {
  writer->WriteSimpleElement(record.elementName, record.elementNamespace, text, type);
}

}  // namespace

// Writing never reports a missing value, for mandatory members neither.
bool CElementInfo::ElementToXmlPrim(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                                    CXmlWriter* writer) const {
  KoVariant value;
  ReadProperty(owner, value);
  if (!value.IsValid()) return false;
  if (value.IsNil()) {
    WriteNilElement(*this, writer);
    return true;
  }
  CheckRestriction(value);
  const ItemType type = KoXmlLib10::ItemTypeOf(value);
  std::string scratch;
  WriteTextElement(*this, writer, KoXmlLib10::VariantText(value, numberFormat.c_str(), scratch), type);
  return true;
}

bool CElementInfo::ElementToXmlEnum(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                                    CXmlWriter* writer, const char* (*enumToText)(int)) const {
  KoVariant value;
  ReadProperty(owner, value);
  if (!value.IsValid()) return false;
  if (value.IsNil()) {
    WriteNilElement(*this, writer);
    return true;
  }
  const long number = value.GetI4();
  const char* text = enumToText(static_cast<int>(number));
  // A value the generated code cannot name is refused rather than crashed on.
  if (!text) throw CKoInvalidValueException(FormatString(msg::kNoEnumerationText, elementName.c_str(), number));
  WriteTextElement(*this, writer, text, KoXmlLib10::ItemType_string);
  return true;
}

// The object writes its own element (or only its content, as a pseudo element).
// It is used through the variant's reference: taking references of our own
// would lock the object twice more for every member written.
bool CElementInfo::ElementToXmlCls(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                   CXmlWriter* writer, bool choiceMayBeEmpty) const {
  KoVariant value;
  ReadProperty(owner, value);
  const CXmlObjectBase* object = KoXmlLib10::KoVariantAccess::Object(value);
  if (!object) return false;
  CXmlObjectBase::ToXml_Int(object, writer, false, elementNamespace.c_str(), ctx, choiceMayBeEmpty);
  return true;
}

// The collection writes one element per item; an empty one writes nothing.
bool CElementInfo::ElementToXmlCol(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                   CXmlWriter* writer) const {
  KoVariant value;
  ReadProperty(owner, value);
  auto* collection = dynamic_cast<KoXmlLib10::CXmlCollectionBase*>(KoXmlLib10::KoVariantAccess::Object(value));
  if (!collection) return false;
  if (collection->GetCount() <= 0) return false;
  CXmlObjectBase::ToXml_Int(collection, writer, false, elementNamespace.c_str(), ctx, false);
  return true;
}

void CElementInfo::CheckRestriction(const KoVariant& value) const {
  if (!isPrimitive) throw CKoException(msg::kCannotCheckRestriction + value.GetType());
  KoXmlLib10::CXmlObjectHelper::CheckRestriction(elementName.c_str(), value, itemType, restrictions);
}

std::string CElementInfo::GetAnyDefaultNamespace(const char* namespaceRestriction, const char* ownerNamespace,
                                                  const char* targetNamespace) {
  const std::string r = namespaceRestriction ? namespaceRestriction : "";
  const std::string owner = ownerNamespace ? ownerNamespace : "";
  if (r == "##any") return owner;
  // An element in no namespace would belong to the owner's namespace when
  // that is empty; the placeholder keeps it apart.
  if (r == "##other") return owner.empty() ? "DefaultNamespace" : "";
  if (r == "##local") return "";
  if (r == "##targetNamespace") return targetNamespace ? targetNamespace : "";
  const std::string::size_type blank = r.find(' ');
  if (blank != std::string::npos && r.size() > 2 && r.compare(0, 2, "##") == 0)
    return GetAnyDefaultNamespace(r.substr(0, blank).c_str(), ownerNamespace, targetNamespace);
  return "";
}

}  // namespace KoXmlLib10Data
