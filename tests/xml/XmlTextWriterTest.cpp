#include <gtest/gtest.h>

#include "support/Throws.h"

#include <KoXmlLib10.h>

#include <functional>

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

const std::string kXsi = "http://www.w3.org/2001/XMLSchema-instance";

std::string Write(const std::function<void(CXmlTextWriter&)>& body, bool format = true,
                  EOLType eol = EOLTypeLF) {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(format);
  writer.SetEOLType(eol);
  body(writer);
  writer.Close();
  return stream.GetText();
}

void Element(CXmlTextWriter& w, const std::string& name, const std::string& text,
             const std::string& ns = "") {
  w.WriteStartElement(name, ns);
  w.WriteString(text, ItemType_string);
  w.WriteEndElement();
}

void Tree(CXmlTextWriter& w) {
  w.WriteStartElement("root", "");
  Element(w, "child", "1");
  Element(w, "empty", "");
  w.WriteStartElement("group", "");
  Element(w, "leaf", "x");
  w.WriteEndElement();
  w.WriteEndElement();
}


class CountingStream : public CTextStream {
 public:
  int flushes = 0;
  void Flush() override { ++flushes; }
};

}  // namespace

TEST(XmlTextWriter, LayoutWithAndWithoutFormat) {
  EXPECT_EQ(Write(Tree), "<root>\n\t<child>1</child>\n\t<empty/>\n\t<group>\n\t\t<leaf>x</leaf>\n"
                         "\t</group>\n</root>\n");
  EXPECT_EQ(Write(Tree, false), "<root><child>1</child><empty/><group><leaf>x</leaf></group></root>");
  // Indentation deeper than any fixed run of tabs.
  const int depth = 40;
  std::string expected;
  for (int level = 0; level < depth; ++level) expected += std::string(level, '\t') + "<e>\n";
  expected += std::string(depth, '\t') + "<e/>\n";
  for (int level = depth - 1; level >= 0; --level) expected += std::string(level, '\t') + "</e>\n";
  EXPECT_EQ(Write([&](CXmlTextWriter& w) {
              for (int level = 0; level <= depth; ++level) w.WriteStartElement("e", "");
              for (int level = 0; level <= depth; ++level) w.WriteEndElement();
            }),
            expected);
  EXPECT_EQ(Write(Tree, true, EOLTypeCRLF),
            "<root>\r\n\t<child>1</child>\r\n\t<empty/>\r\n\t<group>\r\n\t\t<leaf>x</leaf>\r\n"
            "\t</group>\r\n</root>\r\n");
}

TEST(XmlTextWriter, EscapingAndPassthrough) {
  auto text = [](const std::string& s, EOLType eol) {
    return Write([&](CXmlTextWriter& w) { Element(w, "a", s); }, false, eol);
  };
  const struct { std::string text; EOLType eol; const char* written; } cases[] = {
      {"a\r\nb", EOLTypeCRLF, "<a>a\r\nb</a>"}, {"a\r\nb", EOLTypeLF, "<a>a\nb</a>"},
      {"\"'&<>\t\xC3\xA9", EOLTypeLF, "<a>\"'&amp;&lt;&gt;\t\xC3\xA9</a>"},
      {std::string("ab\0<c", 5), EOLTypeLF, "<a>ab</a>"},  // text ends at a NUL
      {"<![CDATA[a & <b>]]>", EOLTypeLF, "<a><![CDATA[a & <b>]]></a>"},
      {"x<![CDATA[&]]>", EOLTypeLF, "<a>x&lt;![CDATA[&amp;]]&gt;</a>"}};
  for (const auto& c : cases) EXPECT_EQ(text(c.text, c.eol), c.written) << c.text;

  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.WriteStartElement("a", "");
              w.WriteAttributeString("v", "", "\"\n&\r<'>", ItemType_string);
              w.WriteEndElement();
            }),
            "<a v=\"&quot;&#xA;&amp;&lt;'&gt;\"/>\n");
  EXPECT_EQ(Write([](CXmlTextWriter& w) { w.WriteComment("a<b\nc"); }, false), "<!--a&lt;b\nc-->\n");
}

TEST(XmlTextWriter, EscapingAtEveryPositionOfALongText) {
  // Long texts are scanned several bytes at a time: each special byte must be
  // found wherever it falls, alone among plain bytes.
  const struct { char special; const char* inText; const char* inAttribute; } cases[] = {
      {'&', "&amp;", "&amp;"}, {'<', "&lt;", "&lt;"}, {'>', "&gt;", "&gt;"}, {'"', "\"", "&quot;"},
      {'\n', "\n", "&#xA;"},   {'\r', "", ""},        {'\0', nullptr, nullptr}};
  for (const auto& c : cases)
    for (size_t at = 0; at < 24; ++at) {
      std::string value(24, 'x');
      value[at] = c.special;
      const std::string before = value.substr(0, at);
      const std::string after = c.inText ? value.substr(at + 1) : "";  // a NUL ends the text
      EXPECT_EQ(Write([&](CXmlTextWriter& w) { Element(w, "a", value); }, false),
                "<a>" + before + (c.inText ? c.inText : "") + after + "</a>")
          << int(c.special) << " at " << at;
      EXPECT_EQ(Write([&](CXmlTextWriter& w) {
                  w.WriteStartElement("a", "");
                  w.WriteAttributeString("v", "", value, ItemType_string);
                  w.WriteEndElement();
                }, false),
                "<a v=\"" + before + (c.inAttribute ? c.inAttribute : "") + after + "\"/>")
          << int(c.special) << " at " << at;
    }
}

TEST(XmlTextWriter, NamespacesDeclaredOnFirstUse) {
  EXPECT_EQ(Write([](CXmlTextWriter& w) { Element(w, "root", "t", "urn:a"); }),
            "<AA:root xmlns:AA=\"urn:a\">t</AA:root>\n");
  // An attribute in the default namespace still needs a prefix.
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.SetDefaultNamespace("urn:a");
              w.WriteStartElement("root", "urn:a");
              w.WriteAttributeString("name", "urn:a", "v", ItemType_string);
              w.WriteEndElement();
            }),
            "<root xmlns=\"urn:a\" xmlns:AA=\"urn:a\" AA:name=\"v\"/>\n");
  // Aliases in URI order, never the XML namespace; generated prefixes avoid them.
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.AddNamespace("AA", "urn:z");
              w.AddNamespace("y", "urn:b");
              w.WriteStartElement("root", "urn:c");
              w.WriteAttributeString("lang", CXmlWriter::XML_NAMESPACE, "en", ItemType_string);
              w.WriteStartElement("x", "urn:b");
              w.WriteEndElement();
              w.WriteEndElement();
            }, false),
            "<AB:root xmlns:AB=\"urn:c\" xmlns:y=\"urn:b\" xmlns:AA=\"urn:z\" xml:lang=\"en\">"
            "<y:x/></AB:root>");
  // A declaration made on a child is redone on its sibling, never on the parent.
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.WriteStartElement("root", "");
              w.WriteAttributeString("k", "urn:k", "v", ItemType_string);
              w.WriteStartElement("a", "urn:c");
              Element(w, "b", "1", "urn:c");
              w.WriteEndElement();
              Element(w, "a", "2", "urn:c");
              EXPECT_EQ(w.GetCurrentContext()->GetNamespaceMap()->size(), 2u);
              w.WriteEndElement();
            }, false),
            "<root xmlns:AA=\"urn:k\" AA:k=\"v\"><AB:a xmlns:AB=\"urn:c\"><AB:b>1</AB:b></AB:a>"
            "<AB:a xmlns:AB=\"urn:c\">2</AB:a></root>");
}

TEST(XmlTextWriter, NoNamespaceUnderDefaultNamespace) {
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.SetDefaultNamespace("urn:d");
              w.WriteStartElement("root", "urn:d");
              w.WriteStartElement("plain", "");
              Element(w, "inner", "1", "urn:d");
              w.WriteEndElement();
              Element(w, "next", "2", "urn:d");
              w.WriteEndElement();
            }, false),
            "<root xmlns=\"urn:d\"><plain xmlns=\"\"><AA:inner xmlns:AA=\"urn:d\">1</AA:inner></plain>"
            "<next>2</next></root>");
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.SetDefaultNamespace("urn:d");
              Element(w, "root", "");
            }),
            "<root xmlns=\"\"/>\n");
}

TEST(XmlTextWriter, SchemaInstanceAttributes) {
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.WriteStartElement("e", "");
              w.WriteAttributeType("urn:t", "T", ItemType_none);
              w.WriteAttributeNil();
              w.WriteEndElement();
            }),
            "<e xmlns:AA=\"urn:t\"  xmlns:AB=\"" + kXsi + "\" AB:type=\"AA:T\" AB:nil=\"true\"/>\n");
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.AddNamespace("xsi", kXsi);
              w.SetDefaultNamespace("urn:t");
              w.WriteStartElement("e", "urn:t");
              w.WriteAttributeType("urn:t", "T", ItemType_none);
              w.WriteAttributeNil();
              w.WriteEndElement();
            }),
            "<e xmlns=\"urn:t\" xmlns:xsi=\"" + kXsi + "\" xsi:type=\"T\" xsi:nil=\"true\"/>\n");

  CTextStream stream;
  CXmlTextWriter w(stream);
  w.WriteStartElement("e", "");
  w.WriteString("text", ItemType_string);
  const std::function<void()> late[] = {[&] { w.WriteAttributeString("a", "", "v", ItemType_string); },
                                        [&] { w.WriteAttributeType("urn:t", "T", ItemType_none); },
                                        [&] { w.WriteAttributeNil(); }};
  for (const auto& call : late) EXPECT_TRUE(Throws<CKoException>(call, "Attributes must be added before elements"));
  EXPECT_STREQ(stream.GetText(), "<e>text");
}

TEST(XmlTextWriter, PrologueSchemaAndRawContent) {
  auto declaration = [](XmlEncoding encoding) {
    CTextStream stream(encoding);
    CXmlTextWriter w(stream);
    w.WriteStartDocument();
    return std::string(stream.GetText());
  };
  EXPECT_EQ(declaration(XmlEncoding_UTF8) + declaration(XmlEncoding_UTF16) + declaration(XmlEncoding_UTF16NoDecl) +
                declaration(XmlEncoding_None),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
            "<?xml version=\"1.0\"?>\n<?xml version=\"1.0\"?>\n");

  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.WriteHeaderDirective("<!DOCTYPE r>");
              w.WritePI("<?p x?>");
              w.WriteStartElement("r", "");
              w.WriteAttributeString("a", "", "1", ItemType_string);
              w.WriteInlineSchema("<xs:schema/>");  // becomes the first child
              Element(w, "c", "");
              EXPECT_TRUE(Throws<CKoException>([&] { w.WriteHeaderDirective("x"); },
                        "Headed directives must appear before an Element has been added."));
              w.CloseParentElm();
              w.WriteRawElement("<raw/>");
              w.WriteEndElement();
            }),
            "<!DOCTYPE r>\n<?p x?>\n\n<r a=\"1\">\n \n<xs:schema/>\n\t<c/>\n<raw/>\n</r>\n");
}

TEST(XmlTextWriter, SettingsFlushAndClose) {
  CountingStream stream;
  CXmlTextWriter w(stream);
  EXPECT_TRUE(w.GetFormat());
  EXPECT_EQ(w.GetEOLType(), EOLTypeLF);
  EXPECT_TRUE(Throws<CKoException>([&] { w.SetEOLType(static_cast<EOLType>(2)); }, "Invalid EOL type."));
  EXPECT_EQ(w.GetEOLType(), EOLTypeLF);

  w.SetFormat(false);
  w.WriteStartElement("a", "");
  w.WriteString(std::string(4092, 'x'), ItemType_string);
  EXPECT_EQ(stream.GetLength(), 4095u);
  EXPECT_EQ(stream.flushes, 0);
  w.CloseParentElm();
  w.WriteRawElement("y");  // neither of these flushes
  EXPECT_EQ(stream.flushes, 0);
  w.WriteString("z", ItemType_string);
  EXPECT_EQ(stream.flushes, 1);
  EXPECT_TRUE(Throws<CKoException>([&] { w.Close(); }, "An Element has not been closed."));
  w.WriteEndElement();
  EXPECT_NO_THROW(w.Close());
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteEndElement(); }, "There is no open Element to end."));
}

// A simple element written in one call is exactly what the three calls write,
// in every namespace situation: none, the default one, one in scope, one
// declared on the element itself (and not in scope for its next sibling),
// no namespace under a default one, an alias with an empty prefix, and the
// outermost element.
TEST(XmlTextWriter, SimpleElementWritesWhatTheThreeCallsWrite) {
  const auto document = [](bool oneCall, bool format) {
    const auto simple = [oneCall](CXmlTextWriter& w, const std::string& name, const std::string& ns,
                                  const std::string& text) {
      if (oneCall)
        w.WriteSimpleElement(name, ns, text, ItemType_string);
      else
        Element(w, name, text, ns);
    };
    return Write(
        [&](CXmlTextWriter& w) {
          w.AddNamespace("p", "urn:p");
          w.AddNamespace("", "urn:empty");
          w.SetDefaultNamespace("urn:d");
          w.WriteStartElement("root", "urn:d");
          simple(w, "a", "", "text & <more>\r\nline");
          simple(w, "b", "urn:d", "");
          simple(w, "c", "urn:p", std::string("\0hidden", 7));
          simple(w, "d", "urn:new", "1");
          simple(w, "e", "urn:new", "2");
          simple(w, "f", "urn:empty", "<![CDATA[<raw & text>]]>");
          w.WriteStartElement("inner", "urn:other");
          simple(w, "g", "urn:other", "x");
          simple(w, "h", "urn:new", "y");
          w.WriteEndElement();
          w.WriteEndElement();
        },
        format);
  };
  for (bool format : {true, false}) {
    const std::string expected = document(false, format);
    EXPECT_EQ(document(true, format), expected);
    EXPECT_NE(expected.find("<AA:d xmlns:AA=\"urn:new\">1</AA:d>"), std::string::npos) << expected;
  }
  // The outermost element declares the root namespaces as ever.
  EXPECT_EQ(Write([](CXmlTextWriter& w) {
              w.AddNamespace("p", "urn:p");
              w.WriteSimpleElement("r", "urn:p", "v", ItemType_string);
            }),
            "<p:r xmlns:p=\"urn:p\">v</p:r>\n");
}

// A derived writer may have operations of its own: a simple element reaches
// them as the three calls.
TEST(XmlTextWriter, ADerivedWriterGetsSimpleElementsAsThreeCalls) {
  struct Counting : CXmlTextWriter {
    using CXmlTextWriter::CXmlTextWriter;
    void WriteStartElement(const std::string& localName, const std::string& namespaceUri) override {
      ++starts;
      CXmlTextWriter::WriteStartElement(localName, namespaceUri);
    }
    int starts = 0;
  };
  CTextStream stream(XmlEncoding_UTF8);
  Counting writer(stream);
  writer.Open();
  writer.WriteStartElement("r", "");
  writer.WriteSimpleElement("a", "", "1", ItemType_string);
  writer.WriteEndElement();
  writer.Close();
  EXPECT_EQ(writer.starts, 2);
  EXPECT_EQ(std::string(stream.GetText()), "<r>\n\t<a>1</a>\n</r>\n");
}
