// Classes generated from orders.xsd at build time read a document and write
// it back unchanged, as XML text, Fast Infoset and gzip-compressed.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "OrdersBinding.h"

using namespace KoXmlLib10;

namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The canonical form of a document, whitespace-only text dropped; empty
// when xmllint is not installed.
std::string Canonical(const std::string& xml, const std::string& name) {
  const std::string xmllint = KOXML_XMLLINT;
  if (xmllint.empty()) return std::string();
  const std::string path = name + ".xml";
  std::ofstream(path, std::ios::binary) << xml;
  FILE* pipe = popen((xmllint + " --noblanks --c14n " + path).c_str(), "r");
  std::string out;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, n);
  EXPECT_EQ(pclose(pipe), 0) << "xmllint failed on " << path;
  return out;
}

const std::string kInput = ReadFile(std::string(KOXML_GENERATOR_DATA) + "/orders.xml");
const CXmlSerializationContext& Ctx() { return CXmlSerializationContext::m_defaultContext; }

TEST(GeneratedOrders, ReadsTheDocumentIntoTypedMembers) {
  CSmartPtr<orders::COrders> doc(new orders::COrders);
  doc->FromXml(kInput.c_str(), Ctx());
  ASSERT_EQ(doc->GetOrders()->GetCount(), 2);
  orders::COrder* first = doc->GetOrders()->Item(0);
  EXPECT_EQ(first->GetId(), 1);
  ASSERT_TRUE(first->IsSetStatus());
  EXPECT_EQ(first->GetStatus(), orders::OrderStatus::shipped);
  EXPECT_EQ(first->GetCustomer()->GetName(), "Ana & Co");
  EXPECT_TRUE(first->GetCustomer()->GetVip());
  EXPECT_EQ(first->GetCustomer()->GetAddress()->GetZip(), "69001");
  ASSERT_EQ(first->GetItems()->GetCount(), 2);
  EXPECT_EQ(first->GetItems()->Item(0)->GetDescription(), "Widget  with spaces ");
  EXPECT_EQ(first->GetItems()->Item(0)->GetQty().ToString(), "2");
  EXPECT_TRUE(first->GetItems()->Item(0)->IsSetWeight());
  EXPECT_FALSE(first->GetItems()->Item(1)->IsSetWeight());
  EXPECT_EQ(first->GetTags()->GetCount(), 2);
  orders::COrder* second = doc->GetOrders()->Item(1);
  EXPECT_FALSE(second->IsSetStatus());
  EXPECT_FALSE(second->IsSetNote());
  EXPECT_EQ(second->GetCustomer()->GetPhone(), "+33 1 23");
}

// Values survive, not their lexical forms: the instance writes decimals as
// the library does, and the output uses the input's default namespace so
// that the canonical forms (which keep prefixes) compare.
TEST(GeneratedOrders, RoundTripsThroughTextFastInfosetAndGzip) {
  CSmartPtr<orders::COrders> doc(new orders::COrders);
  doc->FromXml(kInput.c_str(), Ctx());
  CXmlSerializationContext unprefixed;
  unprefixed.SetDefaultNamespaceURI(orders::kTargetNamespace);
  EXPECT_EQ(Canonical(doc->ToXml(false, false, EOLTypeLF, unprefixed), "orders-text"), Canonical(kInput, "orders-in"));
  const std::string text = doc->ToXml(false, false, EOLTypeLF, Ctx());

  for (CompressionType compression : {CompressionTypeNone, CompressionTypeGzip}) {
    CSmartPtr<orders::COrders> back(new orders::COrders);
    back->FromXmlStream(doc->ToFastInfosetStream(FInfoDeclNone, Ctx(), compression), Ctx());
    EXPECT_EQ(back->ToXml(false, false, EOLTypeLF, Ctx()), text) << "compression " << compression;
    CSmartPtr<orders::COrders> gz(new orders::COrders);
    gz->FromXmlStream(doc->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, Ctx(), compression), Ctx());
    EXPECT_EQ(gz->ToXml(false, false, EOLTypeLF, Ctx()), text) << "compression " << compression;
  }
}

TEST(GeneratedOrders, FacetsAndRequiredContentAreEnforced) {
  CSmartPtr<orders::COrders> doc(new orders::COrders);
  doc->FromXml(kInput.c_str(), Ctx());
  doc->GetOrders()->Item(0)->SetCurrency("euro");  // pattern [A-Z]{3}
  EXPECT_THROW(doc->ToXml(false, false, EOLTypeLF, Ctx()), CKoException);

  const std::string missing = "<orders xmlns='urn:example:orders'><order id='1'><customer/></order></orders>";
  CSmartPtr<orders::COrders> bad(new orders::COrders);
  EXPECT_THROW(bad->FromXml(missing.c_str(), Ctx()), CKoValidationException);
  const std::string badEnum = "<orders xmlns='urn:example:orders'><order id='1' status='lost'/></orders>";
  EXPECT_THROW(bad->FromXml(badEnum.c_str(), Ctx()), CKoException);
}

TEST(GeneratedOrders, BuildsADocumentFromCode) {
  CSmartPtr<orders::COrders> doc(new orders::COrders);
  CSmartPtr<orders::COrder> order = doc->GetOrders()->Add();
  order->SetId(7);
  order->SetStatus(orders::OrderStatus::cancelled);
  order->SetPaid(false);
  order->SetPlaced(CConversions::datetimeFromString("2024-01-02T03:04:05Z", CWhitespaceUtils::WhitespaceRule_Collapse));
  order->GetCustomer()->SetName("Cy");
  order->GetCustomer()->SetEmail("c@y.z");
  order->GetCustomer()->GetAddress()->SetZip("12345");
  order->GetCustomer()->GetAddress()->SetCountry("DE");
  CSmartPtr<orders::CLineItem> item = order->GetItems()->Add();
  item->SetSku("AAA-0000");
  item->SetQty(CBigInteger(3));
  const std::string text = doc->ToXml(false, false, EOLTypeLF, Ctx());
  CSmartPtr<orders::COrders> back(new orders::COrders);
  back->FromXml(text.c_str(), Ctx());
  ASSERT_EQ(back->GetOrders()->GetCount(), 1);
  EXPECT_EQ(back->GetOrders()->Item(0)->GetStatus(), orders::OrderStatus::cancelled);
  EXPECT_EQ(back->GetOrders()->Item(0)->GetItems()->Item(0)->GetSku(), "AAA-0000");
  EXPECT_EQ(back->ToXml(false, false, EOLTypeLF, Ctx()), text);
}

}  // namespace
