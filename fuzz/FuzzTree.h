#ifndef KOXMLLIB10_FUZZ_FUZZTREE_H
#define KOXMLLIB10_FUZZ_FUZZTREE_H

#include <KoXmlLib10.h>

#include <cstddef>
#include <cstdint>
#include <vector>

// Loads the input as a byte stream and reads everything the tree holds, so
// that the sanitizers see every node. Library exceptions are the expected
// outcome of bad input; anything else escapes and is reported.
inline void LoadAndWalk(const KoXmlLib10::CXmlSerializationContext& context, const uint8_t* data, size_t size) {
  using namespace KoXmlLib10;
  CXmlDocument document(context);
  try {
    document.LoadXmlStream(const_cast<uint8_t*>(data), size);
  } catch (const CKoException&) {
    return;
  }
  size_t total = document.LookupNamespaceFromAlias("").size();
  std::vector<const CXmlElement*> pending;
  if (document.GetDocumentElement()) pending.push_back(document.GetDocumentElement());
  while (!pending.empty()) {
    const CXmlElement* e = pending.back();
    pending.pop_back();
    total += e->GetLocalName().size() + e->GetNamespaceURI().size() + e->GetText().size();
    for (const CXmlAttribute* a : e->GetAttributes()) total += a->GetValue().size() + a->IsNamespaceAttribute();
    for (const CXmlElement* child = e->GetFirstElement(); child; child = child->GetNextSiblingElement())
      pending.push_back(child);
  }
  if (total == SIZE_MAX) __builtin_trap();  // keeps the walk from being optimised away
}

#endif
