#ifndef KOXMLLIB10_MEMBERS_MEMBERSMESSAGES_H
#define KOXMLLIB10_MEMBERS_MEMBERSMESSAGES_H

// The texts of the messages of member records, collections and untyped
// content. They are part of the library's interface: keep them word for word,
// misspellings included.
namespace KoXmlLib10::msg {

// Collections.
inline constexpr char kCollectionTargetNamespace[] =
    "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)";
inline constexpr char kCollectionMaximum[] = "The Maximum number of [%s] elements allowed in this collection is %d";
inline constexpr char kCollectionMinimum[] = "The Minimum number of [%s] elements allowed in this collection is %d";

// Member records (element and attribute members of generated classes).
// "attibute" is misspelt on purpose: the texts are part of the interface.
inline constexpr char kRequiredElementMissing[] = "Failed to find a required element [%s]";
inline constexpr char kMandatoryElementMissing[] = "Failed to find the mandatory element [%s]";
inline constexpr char kRequiredElementFromNamespace[] = "Failed to find the required element from namespace [%s]";
inline constexpr char kNoSubstitutionElement[] = "Failed to find a suitable substitution element for [%s]";
inline constexpr char kUnexpectedNilValue[] = "Unexpected Value [%s] for 'nil' Attribute found.";
inline constexpr char kNilOnNonNillable[] = "Invalid use of 'nil' attibute in non-nillable element [%s]";
inline constexpr char kCannotCheckRestriction[] = "Cannot CheckRestriction for type: ";
inline constexpr char kRequiredAttributeMissing[] = "Failed to find the required Attribute [%s]";
inline constexpr char kNotAnAttributeCol[] =
    "Serialization Data Error : The collection should be a CAttributeCol, it was not!";
inline constexpr char kAllAbsClsMndNotImplemented[] =
    "CElementInfoAllAbsClsMnd::ElementFromXml, has not been implemented fully, contact ";
inline constexpr char kAllAbsClsOptNotImplemented[] =
    "CElementInfoAllAbsClsOpt::ElementFromXml, has not been implemented fully, contact ";
inline constexpr char kSupportAddress[] = "support@tesselbind.example";
// Situations the generated code should never produce; reported rather than crashed on.
inline constexpr char kNoCollection[] = "Serialization Data Error : The member [%s] holds no collection";
inline constexpr char kNoObject[] = "Serialization Data Error : The member [%s] holds no object";
inline constexpr char kNotAnElementCol[] = "Serialization Data Error : The member [%s] holds no CElementCol";
inline constexpr char kNotAnElement[] = "Serialization Data Error : The member [%s] holds no CElement";
inline constexpr char kNoEnumerationText[] = "Invalid Value for %s [%ld]";

}  // namespace KoXmlLib10::msg

#endif
