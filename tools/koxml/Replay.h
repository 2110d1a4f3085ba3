#ifndef KOXML_TOOL_REPLAY_H
#define KOXML_TOOL_REPLAY_H

#include <KoXmlLib10.h>

#include <cstddef>
#include <set>
#include <string>

namespace koxml {

// Writes a parsed tree through any writer: elements, attributes and text.
// Namespace declarations are left to the writer, which declares what it uses.
void ReplayTree(const KoXmlLib10::CXmlDocument& document, KoXmlLib10::CXmlWriter& writer,
                bool stripWhitespace);

struct TreeStats {
  size_t elements = 0;
  size_t attributes = 0;
  size_t maxDepth = 0;
  std::set<std::string> names;       // "{namespace}local" of elements and attributes
  std::set<std::string> namespaces;  // non-empty namespace URIs in use
};

TreeStats CollectStats(const KoXmlLib10::CXmlElement* root);

bool IsWhitespaceOnly(const std::string& text);

}  // namespace koxml

#endif
