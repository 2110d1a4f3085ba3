#ifndef KOXMLLIB10_BINDING_BINDINGMESSAGES_H
#define KOXMLLIB10_BINDING_BINDINGMESSAGES_H

// The texts of the binding engine's messages. They are part of the library's
// interface, reproduced word for word by callers' tests and logs: their
// misspellings ("requrires", "bay be", "node be", "attibute", "sutable",
// "un processed", "Unknow") are deliberate and must not be corrected.
namespace KoXmlLib10::msg {

// Version handshake with generated code.
inline constexpr char kVersionBannerRule[] = "\n-----------------Version Mismatch-----------------\n";
inline constexpr char kVersionBannerTitle[] = "Tesselbind - Version Mismatch Error\n";
inline constexpr char kVersionBannerAdvice[] =
    "Please ensure your generated code is the same version as this library (Tessel Runtime: v%d.%d, Generator: "
    "v%d.%d).\n";
inline constexpr char kWrongVersion[] = "Wrong Version (Tessel Runtime: v%d.%d, Generator: v%d.%d)";

// Entry points.
inline constexpr char kZlibOnlyForStreams[] = "ZLIB Compression only available for To Stream methods.";
inline constexpr char kFileReplaceFailed[] = "Failed to write data to the file [%s]";
inline constexpr char kNoDocumentElement[] = "The document has no document element.";
inline constexpr char kNullElement[] = "No element was given to read from.";

// Checks of generated property setters and choice bookkeeping.
inline constexpr char kPropertyMandatory[] = "The Property [%s] is mandatory, it may node be NULL";
inline constexpr char kElementNameDiffers[] =
    "This property requrires an element with the name %s the element being set has the element name %s";
inline constexpr char kChoiceAlreadySet[] =
    "The Property [%s] is already set. Only one element within this class bay be set at a time";
inline constexpr char kChoiceAlreadySetUnbracketed[] =
    "The Property %s is already set. Only one element within this class bay be set at a time";

// Namespace rules.
inline constexpr char kInvalidNamespace[] =
    "Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s]";

}  // namespace KoXmlLib10::msg

#endif
