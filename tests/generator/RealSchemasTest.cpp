// Classes generated from the xsdcxx example schemas (written elsewhere, for
// another tool) read the examples' instance documents and write them back
// with the same information, as XML text, Fast Infoset and gzip.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "support/GeneratedRoundTrip.h"

#include "email/EmailBinding.h"
#include "hello/HelloBinding.h"
#include "library/LibraryBinding.h"
#include "people/PeopleBinding.h"
#include "position/PositionBinding.h"
#include "protocol/ProtocolBinding.h"
#include "supermen/SupermenBinding.h"
#include "transactions/TransactionsBinding.h"

using namespace KoXmlLib10;

namespace {

const std::string kExamples = KOXML_XSDCXX_EXAMPLES;

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The example's document `xml` against the schema `xsd`, both below the
// example folder `folder`.
template <class T>
void Example(const std::string& folder, const std::string& xsd, const std::string& xml,
             const std::string& elementName = "") {
  const std::string input = ReadFile(kExamples + "/" + folder + "/" + xml);
  ASSERT_FALSE(input.empty()) << folder << "/" << xml;
  std::string name = folder + "-" + xml;
  for (char& c : name)
    if (c == '/') c = '-';
  ExpectGeneratedRoundTrip<T>(input, elementName, KOXML_XMLLINT, kExamples + "/" + folder + "/" + xsd, name);
}

TEST(RealSchemas, Library) { Example<real::library::CCatalog>("tree/library", "library.xsd", "library.xml"); }
TEST(RealSchemas, Hello) { Example<real::hello::CHelloT>("tree/hello", "hello.xsd", "hello.xml"); }
TEST(RealSchemas, XpathPeople) { Example<real::people::CDirectory>("tree/xpath", "people.xsd", "people.xml"); }
TEST(RealSchemas, StreamingPosition) { Example<real::op::CObject>("tree/streaming", "position.xsd", "position.xml"); }
TEST(RealSchemas, WildcardEmail) { Example<real::email::CEnvelope>("tree/wildcard", "email.xsd", "email.xml"); }
TEST(RealSchemas, OrderedTransactions) {
  Example<real::transactions::CBatch>("tree/order/element", "transactions.xsd", "transactions.xml");
}

// Derived types named by xsi:type and a substitution group.
TEST(RealSchemas, PolymorphicSupermen) {
  Example<real::supermen::CSupermen>("tree/polymorphism", "supermen.xsd", "supermen.xml");
}

// Several root elements share types: the class is created with the
// element's name.
TEST(RealSchemas, MessagingRoots) {
  Example<real::protocol::CAccountT>("tree/messaging", "protocol.xsd", "balance.xml", "balance");
  Example<real::protocol::CChangeT>("tree/messaging", "protocol.xsd", "deposit.xml", "deposit");
  Example<real::protocol::CChangeT>("tree/messaging", "protocol.xsd", "withdraw.xml", "withdraw");
}

}  // namespace
