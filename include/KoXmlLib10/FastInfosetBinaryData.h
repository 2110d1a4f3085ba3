#ifndef KOXMLLIB10_FASTINFOSETBINARYDATA_H
#define KOXMLLIB10_FASTINFOSETBINARYDATA_H

#include <string>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// The octets of a Fast Infoset character string carried by one of the ten
// built-in encoding algorithms (1 hexadecimal, 2 base64, 3 short, 4 int,
// 5 long, 6 boolean, 7 float, 8 double, 9 uuid, 10 cdata), converted from and
// to the lexical text of the value.
class KOXML_API CFastInfosetBinaryData : public CBinaryData {
 public:
  CFastInfosetBinaryData();
  explicit CFastInfosetBinaryData(const char* s);
  CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool adopt);
  CFastInfosetBinaryData(const CBinaryData& other);

  // Replaces the content with the encoding of exactly one value.
  void SetAsEncodedString(unsigned long algorithm, const char* text);
  // Decodes every value the octets hold; the texts are joined by single spaces.
  std::string GetAsString(unsigned long algorithm) const;
};

}  // namespace KoXmlLib10

#endif
