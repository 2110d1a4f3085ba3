#ifndef KOXMLLIB10_FASTINFOSET_NUMERICOCTETS_H
#define KOXMLLIB10_FASTINFOSET_NUMERICOCTETS_H

#include <string>

namespace KoXmlLib10 {

// The octets of the short, int, long, boolean, float and double encoding
// algorithms (3 to 8) for a value's text, read with the collapsing
// conversions and failing as they fail. False, with `octets` untouched, for
// any other algorithm. Both CFastInfosetBinaryData::SetAsEncodedString and
// the writer's in-place encoding use it, so the two cannot drift apart.
bool NumericOctets(unsigned long algorithm, const std::string& text, std::string& octets);

}  // namespace KoXmlLib10

#endif
