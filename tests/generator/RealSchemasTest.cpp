// Classes generated from the xsdcxx example schemas (written elsewhere, for
// another tool) read the examples' instance documents and write them back
// with the same information, as XML text, Fast Infoset and gzip.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "support/GeneratedRoundTrip.h"

#include "anydata/WildcardBinding.h"
#include "calendar/CalendarBinding.h"
#include "comments/PeopleBinding.h"
#include "contacts/ContactsBinding.h"
#include "double/OrderBinding.h"
#include "email/EmailBinding.h"
#include "hello/HelloBinding.h"
#include "library/LibraryBinding.h"
#include "mixin/SchemaBinding.h"
#include "multiroot/ProtocolBinding.h"
#include "pmultiroot/ProtocolBinding.h"
#include "people/PeopleBinding.h"
#include "performance/TestBinding.h"
#include "position/PositionBinding.h"
#include "protocol/ProtocolBinding.h"
#include "supermen/SupermenBinding.h"
#include "taxonomy/PeopleBinding.h"
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

// The bytes of a gzip file, inflated.
std::string Gunzip(const std::string& packed) {
  unsigned long length = static_cast<unsigned long>(packed.size());
  auto* data = new unsigned char[length];
  std::copy(packed.begin(), packed.end(), data);
  CKoZip::Decompress(&data, &length);
  std::string text(reinterpret_cast<const char*>(data), length);
  delete[] data;
  return text;
}

// The example's document `xml` against the schema `xsd`, both below the
// example folder `folder`. A document named *.gz is inflated first.
template <class T>
void Example(const std::string& folder, const std::string& xsd, const std::string& xml,
             const std::string& elementName = "") {
  std::string input = ReadFile(kExamples + "/" + folder + "/" + xml);
  if (xml.size() > 3 && xml.compare(xml.size() - 3, 3, ".gz") == 0 && !input.empty()) input = Gunzip(input);
  ASSERT_FALSE(input.empty()) << folder << "/" << xml;
  std::string name = folder + "-" + xml;
  for (char& c : name)
    if (c == '/') c = '-';
  ExpectGeneratedRoundTrip<T>(input, elementName, KOXML_XMLLINT, kExamples + "/" + folder + "/" + xsd, name);
}

TEST(RealSchemas, Library) { Example<real::library::CCatalog>("tree/library", "library.xsd", "library.xml"); }
TEST(RealSchemas, Hello) { Example<real::hello::CHelloT>("tree/hello", "hello.xsd", "hello.xml"); }

// Copies of the library schema in other examples, read through one set of
// classes; each output is checked against its own copy. The parser examples'
// copy types dates as strings and requires "available": the documents fit both.
TEST(RealSchemas, LibraryCopies) {
  for (const char* folder : {"tree/caching", "tree/embedded", "tree/binary/boost", "tree/binary/cdr", "tree/binary/xdr",
                             "parser/library", "parser/generated"})
    Example<real::library::CCatalog>(folder, "library.xsd", "library.xml");
  Example<real::library::CCatalog>("tree/compression", "library.xsd", "library.xml.gz");
}

// The parser example names the type "hello" rather than "hello_t".
TEST(RealSchemas, ParserHello) { Example<real::hello::CHelloT>("parser/hello", "hello.xsd", "hello.xml"); }
TEST(RealSchemas, ParserWildcardEmail) {
  Example<real::email::CEnvelope>("parser/wildcard", "email.xsd", "email.xml");
}
TEST(RealSchemas, ParserPolymorphicSupermen) {
  Example<real::supermen::CSupermen>("parser/polymorphism", "supermen.xsd", "supermen.xml");
}
// Each document's root is a person, an xsi:type naming what it really is.
// A root object is made before its element is read, so the caller picks the
// class the xsi:type names; the output names it again.
TEST(RealSchemas, ParserPolyroot) {
  Example<real::supermen::CPerson>("parser/polyroot", "supermen.xsd", "person.xml", "person");
  Example<real::supermen::CSuperman>("parser/polyroot", "supermen.xsd", "superman.xml", "person");
  Example<real::supermen::CBatman>("parser/polyroot", "supermen.xsd", "batman.xml", "person");
}

TEST(RealSchemas, CustomCalendar) {
  Example<real::calendar::CEvents>("tree/custom/calendar", "calendar.xsd", "calendar.xml");
}
TEST(RealSchemas, CustomComments) {
  Example<real::comments::CCatalog>("tree/custom/comments", "people.xsd", "people.xml");
}
TEST(RealSchemas, CustomContacts) {
  Example<real::contacts::CCatalog>("tree/custom/contacts", "contacts.xsd", "contacts.xml");
}
TEST(RealSchemas, CustomTaxonomy) {
  Example<real::taxonomy::CCatalog>("tree/custom/taxonomy", "people.xsd", "people.xml");
}
TEST(RealSchemas, CustomWildcard) {
  Example<real::wildcard::CData>("tree/custom/wildcard", "wildcard.xsd", "wildcard.xml");
}

// The example ships no document: doubles written in several lexical forms.
TEST(RealSchemas, CustomDouble) {
  const std::string input =
      "<order><item name=\"a\" price=\"1.5\"/><item name=\"b\" price=\"-0.25\"/>"
      "<item name=\"c\" price=\"12345.678\"/></order>";
  ExpectGeneratedRoundTrip<real::dbl::COrder>(input, "", KOXML_XMLLINT, kExamples + "/tree/custom/double/order.xsd",
                                              "tree-custom-double-order");
}

// Types mixed into one another by derivation; the root's type is derived.
TEST(RealSchemas, ParserMixin) {
  Example<real::mixin::CDerived>("parser/mixin", "schema.xsd", "instance.xml", "root");
}

// A 50k document of records with every kind of simple value.
TEST(RealSchemas, Performance) {
  Example<real::perf::CRoot>("tree/performance", "test.xsd", "test-50k.xml");
  Example<real::perf::CRoot>("parser/performance", "test.xsd", "test-50k.xml");
}
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

// Each root element has its own type derived from request_t. The parser
// example's schema names the types without "_t"; since the output names the
// type with xsi:type, it has classes of its own.
TEST(RealSchemas, MultirootRequests) {
  Example<real::multiroot::CBalanceT>("tree/multiroot", "protocol.xsd", "balance.xml", "balance");
  Example<real::multiroot::CDepositT>("tree/multiroot", "protocol.xsd", "deposit.xml", "deposit");
  Example<real::multiroot::CWithdrawT>("tree/multiroot", "protocol.xsd", "withdraw.xml", "withdraw");
  Example<real::pmultiroot::CBalance>("parser/multiroot", "protocol.xsd", "balance.xml", "balance");
  Example<real::pmultiroot::CDeposit>("parser/multiroot", "protocol.xsd", "deposit.xml", "deposit");
  Example<real::pmultiroot::CWithdraw>("parser/multiroot", "protocol.xsd", "withdraw.xml", "withdraw");
}

// Setting a mandatory member object through the property interface stores it.
TEST(RealSchemas, MandatoryMemberObjectSetThroughProperty) {
  CSmartPtr<real::library::CBook> book(new real::library::CBook);
  CSmartPtr<real::library::CTitle> title(new real::library::CTitle);
  KoVariant value;
  value.SetXmlObject(title.get());
  book->AccessProperty(real::library::CBook::kTitle, false, value);
  KoVariant read;
  book->AccessProperty(real::library::CBook::kTitle, true, read);
  CXmlObjectBase* stored = read.GetXmlObject();
  EXPECT_EQ(stored, title.get());
  if (stored) stored->Release();
}

}  // namespace
