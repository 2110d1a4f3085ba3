#ifndef KOXMLLIB10_FASTINFOSET_ZIPMESSAGES_H
#define KOXMLLIB10_FASTINFOSET_ZIPMESSAGES_H

// Messages of inflating compressed input, shared by the whole-buffer
// inflation and the documents that inflate a file as they read it. Their
// wording is part of the library's interface: callers match on it.
namespace KoXmlLib10::ZipMessages {

// The limit (%llu).
inline constexpr const char* kInflatedTooLarge =
    "Failed to inflate the compressed input: it inflates to more than %llu bytes, the limit "
    "on the inflated size.";
// Inflated bytes (%llu), compressed bytes read (%llu), the ratio (%lu), the allowance (%llu).
inline constexpr const char* kInflateRatio =
    "Failed to inflate the compressed input: %llu bytes inflated from %llu, more than %lu times "
    "the compressed size, beyond the first %llu bytes.";
// A gzip stream that breaks off, or is damaged, after part of it was read.
inline constexpr const char* kInflateDamaged =
    "Failed to inflate the compressed input: the gzip stream is damaged or cut short.";

}  // namespace KoXmlLib10::ZipMessages

#endif
