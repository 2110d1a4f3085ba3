#include "KoXmlLib10/ElementInfoChoice.h"

#include "KoXmlLib10/Exceptions.h"

// The engine recognises the optional alternatives of a choice by the dynamic
// type of their records, which needs the type information of every choice
// record class. These weak definitions provide it (through the virtual
// operations that carry it) for as long as the library is built without the
// choice records themselves; the real definitions, when linked in, replace
// every one of them. Delete this file once the choice records are part of
// the library.
namespace KoXmlLib10Data {

namespace {
[[noreturn]] void Missing() {
  throw KoXmlLib10::CKoException("The choice member records are not part of this build of the library");
}
}  // namespace

#define KOXML_WEAK __attribute__((weak))

KOXML_WEAK bool CElementInfoChoicePrimOpt::ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoicePrimOpt::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }
KOXML_WEAK bool CElementInfoChoiceEnumOpt::ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceEnumOpt::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }
KOXML_WEAK bool CElementInfoChoiceClsOpt::ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceClsOpt::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }
KOXML_WEAK void CElementInfoChoiceClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*,
    CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceAbsClsOpt::ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceAbsClsOpt::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }
KOXML_WEAK void CElementInfoChoiceAbsClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*,
    CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceUntpdOpt::ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceUntpdOpt::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }
KOXML_WEAK bool CElementInfoChoiceCol::ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceCol::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }
KOXML_WEAK void CElementInfoChoiceClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*,
    CXmlWriter*) const { Missing(); }
KOXML_WEAK void CElementInfoChoiceAbsClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*,
    CXmlWriter*) const { Missing(); }
KOXML_WEAK bool CElementInfoChoiceUntpdCol::ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
    const char*, XmlElementType) { Missing(); }

#undef KOXML_WEAK

}  // namespace KoXmlLib10Data
