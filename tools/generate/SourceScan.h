// A light scan of a schema's text that recovers what the parsed tree does not
// keep: the line of every start tag and the namespace declarations it makes.
#ifndef KOXML_TOOLS_GENERATE_SOURCESCAN_H
#define KOXML_TOOLS_GENERATE_SOURCESCAN_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace koxml::generate {

struct StartTag {
  int line = 0;
  // (prefix, URI) pairs of the xmlns attributes of the tag; the empty prefix
  // is the default namespace.
  std::vector<std::pair<std::string, std::string>> declarations;
};

// The start tags of `text` in document order, which is the pre-order of the
// parsed tree's elements. Comments, CDATA sections, processing instructions
// and declarations are skipped.
std::vector<StartTag> ScanStartTags(std::string_view text);

}  // namespace koxml::generate

#endif
