#ifndef KOXMLLIB10_MEMBERS_MEMBERSMESSAGES_H
#define KOXMLLIB10_MEMBERS_MEMBERSMESSAGES_H

// The texts of the messages of member records, collections and untyped
// content. They are part of the library's interface: keep them word for word,
// misspellings included.
#include "binding/BindingMessages.h"

namespace KoXmlLib10::msg {

// Collections.
inline constexpr char kCollectionTargetNamespace[] =
    "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic error)";
inline constexpr char kCollectionMaximum[] = "The Maximum number of [%s] elements allowed in this collection is %d";
inline constexpr char kCollectionMinimum[] = "The Minimum number of [%s] elements allowed in this collection is %d";

// ---- Object collections, primitive collections and untyped content ----
inline constexpr char kIndexOutOfRange[] = "Index out of range";
inline constexpr char kIndexOutOfRangeUse[] = "Index %d is out of range, use 0 - %d";
inline constexpr char kObjectNotInCollection[] = "The object was not found in the collection";
inline constexpr char kDatesMustBeDate[] = "Dates added to this collection must be of type dt_date";
inline constexpr char kDatesMustBeDateTime[] = "Dates added to this collection must be of type dt_dateTime";
inline constexpr char kDatesMustBeTime[] = "Dates added to this collection must be of type dt_time";
inline constexpr char kDatesMustBeMonthDay[] = "Dates added to this collection must be of type dt_gMonthDay";
inline constexpr char kDatesMustBeYearMonth[] = "Dates added to this collection must be of type dt_gYearMonth";
inline constexpr char kElementNameRequired[] = "Element Name must have a value";
inline constexpr char kRestrictionRequired[] = "Namespace Restriction must have a value";
inline constexpr char kTargetNamespaceRequired[] = "Target Namespace must have a value";
inline constexpr char kKeywordAsNamespace[] = "Invalid Namespace [%s]";
inline constexpr char kAttributeNamespaceInappropriate[] =
    "Invalid Attribute [%s]. The attributes namespace is Inappropriate.";
inline constexpr char kInvalidElementInElement[] = "Invalid Element [%s] found in element [%s]";
inline constexpr char kAttributeReadByCollection[] = "This should be done by the collection";
inline constexpr char kCollectionWithoutNamespace[] = "A Namespace has not been set for this Collection";
inline constexpr char kNamespaceAgainstRestriction[] =
    "The namespace %s in the class %s is invalid against restriction %s";
inline constexpr char kNoObjectToCopy[] = "No object was given to copy.";
inline constexpr char kNullNode[] = "No node was given to remove.";

// Member records (element and attribute members of generated classes).
// "attibute" is misspelt on purpose: the texts are part of the interface.
inline constexpr char kRequiredElementMissing[] = "Failed to find a required element [%s]";
inline constexpr char kMandatoryElementMissing[] = "Failed to find the mandatory element [%s]";
inline constexpr char kRequiredElementFromNamespace[] = "Failed to find the required element from namespace [%s]";
inline constexpr char kNoSubstitutionElement[] = "Failed to find a suitable substitution element for [%s]";
// The nil rule's two messages (kUnexpectedNilValue, kNilOnNonNillable) are
// the engine's: records and the engine apply the same rule.
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
