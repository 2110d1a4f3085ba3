// A tour of what the library can do so far.
#include <KoXmlLib10.h>

#include <cstdio>

int main() {
  using namespace KoXmlLib10;
  SetGeneratorVersion(RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR);
  std::printf("KoXmlLib10 %d.%d\n", RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR);
  try {
    try {
      throw CKoInvalidValueException(FormatString("The value [%s] is to large to fit in a i2", "70000"));
    } catch (const CKoException& e) {
      throw CKoValidationException("Failed to read element <price>", e);
    }
  } catch (const CKoException& e) {
    std::printf("Exception chain:\n%s\n", e.GetFullMessage().c_str());
  }
  return 0;
}
