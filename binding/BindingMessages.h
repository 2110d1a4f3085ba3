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

// The generated-class engine. Each level of nesting wraps what fails below
// it, so the full message reads as a path from the root to the failure.
inline constexpr char kFailedToConvertElement[] = "Failed to convert the element [%s] to XML";
inline constexpr char kFailedToConvertAttributes[] = "Failed to convert attributes to XML";
inline constexpr char kFailedToProcessElement[] = "Failed to process the element [%s]";
inline constexpr char kUnknownGroupTypeWriting[] = "Unknown XML Group Type";
inline constexpr char kUnknownGroupTypeReading[] = "Unknow Group Type";
inline constexpr char kChoiceNoneSet[] =
    "This element is a choice, and as such must have at one (and only one) valid item, currently there are "
    "none set";
inline constexpr char kElementsLeftOver[] =
    "Failed read all the elements held within the element [%s]. The unexpected element [%s] remains un "
    "processed";
inline constexpr char kChoiceNoChildPopulated[] =
    "No child elements within the element [%s] were populated. The element represents a choice, so one and "
    "only one element should be populated. The element contained no sutable child elements";
inline constexpr char kUnexpectedAttribute[] = "Unexpected Attribute [%s] found.";
inline constexpr char kUnexpectedNilValue[] = "Unexpected Value [%s] for 'nil' Attribute found.";
inline constexpr char kNilOnNonNillable[] = "Invalid use of 'nil' attibute in non-nillable element [%s]";

// Metadata records.
inline constexpr char kNotImplemented[] = "Not implemented, should never be called";

}  // namespace KoXmlLib10::msg

#endif
