#include "OrdersNamespace.h"

#include <KoXmlLib10.h>

namespace orders {

void AnnounceGeneratorVersion() {
  static const bool announced = (KoXmlLib10::SetGeneratorVersion(10, 1), true);
  (void)announced;
}

}  // namespace orders
