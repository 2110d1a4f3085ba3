// The Fast Infoset reader alone: every input gets the binary header if it
// lacks one, and the vocabulary holds names, values and alphabets of many
// character widths so that index references and the bit reader are reached.
#include <cstring>
#include <string>
#include <vector>

#include "FuzzTree.h"

namespace {

const KoXmlLib10::CXmlSerializationContext& Context() {
  static KoXmlLib10::CXmlSerializationContext context = [] {
    KoXmlLib10::CXmlSerializationContext c;
    KoXmlLib10::CFastInfosetContext& fi = c.GetFIContext();
    fi.SetUseGeneratedVocabulary(true);
    KoXmlLib10::CFIVocabulary& v = *fi.GetVocabulary();
    v.AddElement("", "urn:x", "root");
    v.AddElement("p", "urn:p", "item");
    v.AddAttribute("", "", "id");
    v.AddAttributeValue("value");
    v.AddElementValue("chunk");
    std::vector<std::string>& alphabets = v.GetRestrictedAlphabets();
    alphabets.push_back("ab");                      // 3: two bits
    alphabets.push_back("abcde");                   // 4: three bits
    alphabets.push_back(std::string(40, 'x'));      // 5: six bits
    std::string wide;
    for (int i = 0; i < 700; ++i) wide += "\xC3\xA9";  // 6: ten bits, two-byte characters
    alphabets.push_back(wide);
    alphabets.push_back(std::string(200, 'y'));     // 7: eight bits
    alphabets.push_back("z");                       // 8: too short
    return c;
  }();
  return context;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const uint8_t header[] = {0xE0, 0x00, 0x00, 0x01};
  if (size >= sizeof header && std::memcmp(data, header, sizeof header) == 0) {
    LoadAndWalk(Context(), data, size);
    return 0;
  }
  std::vector<uint8_t> framed(header, header + sizeof header);
  framed.insert(framed.end(), data, data + size);
  LoadAndWalk(Context(), framed.data(), framed.size());
  return 0;
}
