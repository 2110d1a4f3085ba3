#ifndef KOXMLLIB10_TYPES_NUMBERLIMITS_H
#define KOXMLLIB10_TYPES_NUMBERLIMITS_H

#include "KoXmlLib10/BigInteger.h"

namespace KoXmlLib10 {

// The range limits of the decimal conversions, built from their text on first
// use. Library code uses these rather than the CBigInteger::MAX_... members,
// whose initialisation may not have run yet during static initialisation.
struct NumberLimits {
  CBigInteger maxLong;
  CBigInteger minLong;
  CBigInteger maxLongLong;
  CBigInteger minLongLong;
  CBigInteger maxDouble;
  CBigInteger minDouble;
};

const NumberLimits& GetNumberLimits();

}  // namespace KoXmlLib10

#endif
