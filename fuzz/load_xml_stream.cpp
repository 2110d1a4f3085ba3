// Whole loading path of byte streams: inflation, format detection, and the
// Fast Infoset or the expat-based reader, in both namespace modes.
#include "FuzzTree.h"

namespace {

const KoXmlLib10::CXmlSerializationContext& WithoutNamespaces() {
  static KoXmlLib10::CXmlSerializationContext context = [] {
    KoXmlLib10::CXmlSerializationContext c;
    c.SetSchemaType(KoXmlLib10::SchemaTypeNoNamespaces);
    c.SetStripCDATA(false);
    return c;
  }();
  return context;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  LoadAndWalk(KoXmlLib10::CXmlSerializationContext::m_defaultContext, data, size);
  LoadAndWalk(WithoutNamespaces(), data, size);
  return 0;
}
