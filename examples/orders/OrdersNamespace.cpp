#include "OrdersNamespace.h"

#include <KoXmlLib10.h>

namespace orders {

namespace {
// Before main: the version must be known before the first object is built,
// and the base class is built before any constructor body of ours runs.
const bool g_announced = (KoXmlLib10::SetGeneratorVersion(10, 1), true);
}  // namespace

void AnnounceGeneratorVersion() { (void)g_announced; }

bool IsHeldAlone(KoXmlLib10::CXmlObjectBase* member) {
  if (!member) return false;
  const int references = member->AddRef();
  member->Release();
  return references == 2;
}

}  // namespace orders
