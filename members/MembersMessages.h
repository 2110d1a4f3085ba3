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

}  // namespace KoXmlLib10::msg

#endif
