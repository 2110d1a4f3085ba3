// Converts between XML text and Fast Infoset with the reference Java implementation, and prints
// a normalised event listing of either, so that two documents' infosets compare with a diff.
import com.sun.xml.fastinfoset.Decoder;
import com.sun.xml.fastinfoset.sax.SAXDocumentParser;
import com.sun.xml.fastinfoset.sax.SAXDocumentSerializer;

import java.io.ByteArrayInputStream;
import java.io.ByteArrayOutputStream;
import java.io.FileInputStream;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;

import javax.xml.XMLConstants;
import javax.xml.parsers.SAXParserFactory;
import javax.xml.transform.OutputKeys;
import javax.xml.transform.TransformerFactory;
import javax.xml.transform.sax.SAXTransformerFactory;
import javax.xml.transform.sax.TransformerHandler;
import javax.xml.transform.stream.StreamResult;

import org.xml.sax.Attributes;
import org.xml.sax.ContentHandler;
import org.xml.sax.InputSource;
import org.xml.sax.XMLReader;
import org.xml.sax.helpers.DefaultHandler;

public final class FiInterop {
    private static final String USAGE =
        "usage: FiInterop xml2fi IN OUT    XML text to Fast Infoset\n"
      + "       FiInterop fi2xml IN OUT    Fast Infoset to XML text (UTF-8)\n"
      + "       FiInterop events IN [OUT]  normalised event listing of IN\n"
      + "       FiInterop compare A B      exit 0 when the listings of A and B are equal,\n"
      + "                                  else print the first difference and exit 1\n"
      + "IN, A and B may be XML text or Fast Infoset (detected); '-' is stdin/stdout.\n"
      + "Exit status 2 on bad usage or when a document cannot be read.\n";

    private FiInterop() {}

    public static void main(String[] args) {
        try {
            System.exit(run(args));
        } catch (Exception e) {
            System.err.println("FiInterop: " + e);
            System.exit(2);
        }
    }

    private static int run(String[] args) throws Exception {
        String command = args.length > 0 ? args[0] : "";
        if (command.equals("xml2fi") && args.length == 3) {
            byte[] in = read(args[1]);
            ByteArrayOutputStream out = new ByteArrayOutputStream();
            xmlToFi(in, out);
            write(args[2], out.toByteArray());
            return 0;
        }
        if (command.equals("fi2xml") && args.length == 3) {
            byte[] in = read(args[1]);
            ByteArrayOutputStream out = new ByteArrayOutputStream();
            fiToXml(in, out);
            write(args[2], out.toByteArray());
            return 0;
        }
        if (command.equals("events") && (args.length == 2 || args.length == 3)) {
            StringBuilder text = new StringBuilder();
            for (String line : listing(read(args[1]))) {
                text.append(line).append('\n');
            }
            write(args.length == 3 ? args[2] : "-", text.toString().getBytes(StandardCharsets.UTF_8));
            return 0;
        }
        if (command.equals("compare") && args.length == 3) {
            return compare(args[1], listing(read(args[1])), args[2], listing(read(args[2])));
        }
        System.err.print(USAGE);
        return 2;
    }

    // A Fast Infoset document starts with its identification bits, or with an XML declaration
    // whose encoding is 'finf' followed by them.
    static boolean isFastInfoset(byte[] document) throws IOException {
        if (Decoder.isFastInfosetDocument(new ByteArrayInputStream(document))) {
            return true;
        }
        String head = new String(document, 0, Math.min(document.length, 64), StandardCharsets.ISO_8859_1);
        int end = head.indexOf("?>");
        return head.startsWith("<?xml ") && end > 0 && head.substring(0, end).contains("finf");
    }

    static void xmlToFi(byte[] xml, OutputStream out) throws Exception {
        SAXDocumentSerializer serializer = new SAXDocumentSerializer();
        serializer.setOutputStream(out);
        XMLReader reader = newXmlReader();
        reader.setContentHandler(serializer);
        reader.setProperty("http://xml.org/sax/properties/lexical-handler", serializer);
        reader.parse(new InputSource(new ByteArrayInputStream(xml)));
    }

    static void fiToXml(byte[] fi, OutputStream out) throws Exception {
        SAXTransformerFactory factory = (SAXTransformerFactory) TransformerFactory.newInstance();
        TransformerHandler identity = factory.newTransformerHandler();
        identity.getTransformer().setOutputProperty(OutputKeys.ENCODING, "UTF-8");
        identity.setResult(new StreamResult(out));
        SAXDocumentParser parser = new SAXDocumentParser();
        parser.setContentHandler(identity);
        parser.setLexicalHandler(identity);
        parser.parse(new ByteArrayInputStream(fi));
    }

    static List<String> listing(byte[] document) throws Exception {
        ListingHandler handler = new ListingHandler();
        parse(document, handler);
        return handler.lines;
    }

    private static void parse(byte[] document, ContentHandler handler) throws Exception {
        if (isFastInfoset(document)) {
            SAXDocumentParser parser = new SAXDocumentParser();
            parser.setContentHandler(handler);
            parser.parse(new ByteArrayInputStream(document));
        } else {
            XMLReader reader = newXmlReader();
            reader.setContentHandler(handler);
            reader.parse(new InputSource(new ByteArrayInputStream(document)));
        }
    }

    private static XMLReader newXmlReader() throws Exception {
        SAXParserFactory factory = SAXParserFactory.newInstance();
        factory.setNamespaceAware(true);
        return factory.newSAXParser().getXMLReader();
    }

    private static int compare(String nameA, List<String> a, String nameB, List<String> b) {
        int common = Math.min(a.size(), b.size());
        for (int i = 0; i < common; ++i) {
            if (!a.get(i).equals(b.get(i))) {
                return reportDifference(i, nameA, a.get(i), nameB, b.get(i));
            }
        }
        if (a.size() != b.size()) {
            return reportDifference(common, nameA, common < a.size() ? a.get(common) : "(end)",
                                    nameB, common < b.size() ? b.get(common) : "(end)");
        }
        return 0;
    }

    private static int reportDifference(int index, String nameA, String lineA, String nameB, String lineB) {
        System.out.println("listings differ at event " + (index + 1) + ":");
        System.out.println("  " + nameA + ": " + lineA);
        System.out.println("  " + nameB + ": " + lineB);
        System.out.flush();
        return 1;
    }

    // One event a line: "start {uri}local", then "attr {uri}local=value" sorted by (uri, local),
    // "text ..." for each run of character data that is not whitespace only (adjacent chunks
    // merged), "end {uri}local". Namespace declarations, prefixes, comments and processing
    // instructions are not listed. Backslash, line feed, carriage return and tab are written as
    // \\ \n \r \t so that every event stays on one line.
    static final class ListingHandler extends DefaultHandler {
        final List<String> lines = new ArrayList<>();
        private final StringBuilder text = new StringBuilder();

        @Override
        public void startElement(String uri, String local, String qName, Attributes atts) {
            flushText();
            lines.add("start " + name(uri, local));
            List<String[]> sorted = new ArrayList<>();
            for (int i = 0; i < atts.getLength(); ++i) {
                String attUri = atts.getURI(i);
                if (XMLConstants.XMLNS_ATTRIBUTE_NS_URI.equals(attUri) || atts.getQName(i).equals("xmlns")
                        || atts.getQName(i).startsWith("xmlns:")) {
                    continue;
                }
                sorted.add(new String[] {attUri, atts.getLocalName(i), atts.getValue(i)});
            }
            sorted.sort((x, y) -> x[0].equals(y[0]) ? x[1].compareTo(y[1]) : x[0].compareTo(y[0]));
            for (String[] att : sorted) {
                lines.add("attr " + name(att[0], att[1]) + "=" + escape(att[2]));
            }
        }

        @Override
        public void endElement(String uri, String local, String qName) {
            flushText();
            lines.add("end " + name(uri, local));
        }

        @Override
        public void characters(char[] ch, int start, int length) {
            text.append(ch, start, length);
        }

        @Override
        public void ignorableWhitespace(char[] ch, int start, int length) {
            text.append(ch, start, length);
        }

        @Override
        public void endDocument() {
            flushText();
        }

        private void flushText() {
            if (!isWhitespaceOnly(text)) {
                lines.add("text " + escape(text.toString()));
            }
            text.setLength(0);
        }

        private static boolean isWhitespaceOnly(CharSequence s) {
            for (int i = 0; i < s.length(); ++i) {
                char c = s.charAt(i);
                if (c != ' ' && c != '\t' && c != '\n' && c != '\r') {
                    return false;
                }
            }
            return true;
        }

        private static String name(String uri, String local) {
            return "{" + (uri == null ? "" : uri) + "}" + local;
        }

        private static String escape(String s) {
            StringBuilder out = new StringBuilder(s.length());
            for (int i = 0; i < s.length(); ++i) {
                char c = s.charAt(i);
                switch (c) {
                    case '\\': out.append("\\\\"); break;
                    case '\n': out.append("\\n"); break;
                    case '\r': out.append("\\r"); break;
                    case '\t': out.append("\\t"); break;
                    default: out.append(c);
                }
            }
            return out.toString();
        }
    }

    private static byte[] read(String path) throws IOException {
        if (path.equals("-")) {
            return System.in.readAllBytes();
        }
        try (InputStream in = new FileInputStream(path)) {
            return in.readAllBytes();
        }
    }

    private static void write(String path, byte[] bytes) throws IOException {
        if (path.equals("-")) {
            System.out.write(bytes);
            System.out.flush();
            return;
        }
        try (OutputStream out = new FileOutputStream(path)) {
            out.write(bytes);
        }
    }
}
