// koxml: converts documents between XML text and Fast Infoset, optionally
// compressed, and describes what a document holds.
#include <KoXmlLib10.h>

#include <cctype>
#include <cerrno>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "Generate.h"
#include "Replay.h"

using namespace KoXmlLib10;

namespace {

const char kUsage[] =
    "usage: koxml convert IN OUT [options]\n"
    "       koxml info FILE\n"
    "       koxml generate SCHEMA.xsd... --out DIR [options]  (koxml generate --help)\n"
    "       koxml --help | --version\n"
    "\n"
    "IN and OUT may be '-' for standard input and output. IN may be XML text or\n"
    "Fast Infoset, either of them gzip- or zlib-compressed.\n"
    "\n"
    "convert options:\n"
    "  --to xml|fi                output format (default from OUT's extension:\n"
    "                             .fi/.finf Fast Infoset, otherwise XML; a final\n"
    "                             .gz also selects gzip compression)\n"
    "  --compress none|gzip|zlib  compress the output\n"
    "  --indent                   XML: indent with tabs, one element per line\n"
    "  --crlf                     XML: CR LF line ends (default LF)\n"
    "  --encoding utf-8|utf-16    XML: output encoding (default utf-8)\n"
    "  --decl NAME                Fast Infoset: XML declaration before the document:\n"
    "                             none, finf, finf-standalone-yes, finf-standalone-no,\n"
    "                             1.0, 1.0-standalone-yes, 1.0-standalone-no, 1.1,\n"
    "                             1.1-standalone-yes, 1.1-standalone-no (default none)\n"
    "  --strip-whitespace         drop whitespace-only text\n"
    "  --stats                    print input size, output size, read and write\n"
    "                             times (ms) on standard error\n";

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class Format { Xml, FastInfoset };

struct ConvertOptions {
  std::string in, out;
  bool formatGiven = false, compressGiven = false;
  Format format = Format::Xml;
  CompressionType compression = CompressionTypeNone;
  bool indent = false, crlf = false, stripWhitespace = false, stats = false;
  XmlEncoding encoding = XmlEncoding_UTF8;
  FInfoDecl declaration = FInfoDeclNone;
};

bool EndsWith(const std::string& s, const std::string& suffix) {
  return s.size() >= suffix.size() && s.compare(s.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

FInfoDecl ParseDeclaration(const std::string& name) {
  static const char* const kNames[] = {
      "none", "finf", "finf-standalone-yes", "finf-standalone-no", "1.0",
      "1.0-standalone-yes", "1.0-standalone-no", "1.1", "1.1-standalone-yes",
      "1.1-standalone-no"};
  const std::string wanted = Lower(name);
  for (int i = 0; i < 10; ++i)
    if (wanted == kNames[i] || wanted == std::to_string(i)) return static_cast<FInfoDecl>(i);
  throw UsageError("unknown --decl value '" + name + "'");
}

std::string NextValue(int& i, int argc, char** argv) {
  if (i + 1 >= argc) throw UsageError(std::string("missing value after ") + argv[i]);
  return argv[++i];
}

ConvertOptions ParseConvert(int argc, char** argv) {
  ConvertOptions o;
  std::vector<std::string> positional;
  for (int i = 2; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--to") {
      const std::string v = Lower(NextValue(i, argc, argv));
      if (v == "xml") o.format = Format::Xml;
      else if (v == "fi" || v == "finf") o.format = Format::FastInfoset;
      else throw UsageError("unknown --to value '" + v + "'");
      o.formatGiven = true;
    } else if (arg == "--compress") {
      const std::string v = Lower(NextValue(i, argc, argv));
      if (v == "none") o.compression = CompressionTypeNone;
      else if (v == "gzip") o.compression = CompressionTypeGzip;
      else if (v == "zlib") o.compression = CompressionTypeZlib;
      else throw UsageError("unknown --compress value '" + v + "'");
      o.compressGiven = true;
    } else if (arg == "--encoding") {
      const std::string v = Lower(NextValue(i, argc, argv));
      if (v == "utf-8" || v == "utf8") o.encoding = XmlEncoding_UTF8;
      else if (v == "utf-16" || v == "utf16") o.encoding = XmlEncoding_UTF16;
      else throw UsageError("unknown --encoding value '" + v + "'");
    } else if (arg == "--decl") {
      o.declaration = ParseDeclaration(NextValue(i, argc, argv));
    } else if (arg == "--indent") {
      o.indent = true;
    } else if (arg == "--crlf") {
      o.crlf = true;
    } else if (arg == "--strip-whitespace") {
      o.stripWhitespace = true;
    } else if (arg == "--stats") {
      o.stats = true;
    } else if (arg.size() > 1 && arg[0] == '-') {
      throw UsageError("unknown option '" + arg + "'");
    } else {
      positional.push_back(arg);
    }
  }
  if (positional.size() != 2) throw UsageError("convert needs IN and OUT");
  o.in = positional[0];
  o.out = positional[1];

  std::string name = Lower(o.out);
  if (EndsWith(name, ".gz")) {
    if (!o.compressGiven) o.compression = CompressionTypeGzip;
    name.resize(name.size() - 3);
  }
  if (!o.formatGiven && (EndsWith(name, ".fi") || EndsWith(name, ".finf")))
    o.format = Format::FastInfoset;
  return o;
}

// Closes a file the program opened; standard input stays open.
struct FileCloser {
  void operator()(FILE* f) const {
    if (f != stdin) std::fclose(f);
  }
};

std::vector<unsigned char> ReadAll(const std::string& path) {
  // Owned from here on, so that a buffer that cannot grow does not leak it.
  const std::unique_ptr<FILE, FileCloser> f(path == "-" ? stdin : std::fopen(path.c_str(), "rb"));
  if (!f) throw CKoException(FormatString("Failed to open the file [%s]", path.c_str()));
  std::vector<unsigned char> bytes;
  unsigned char chunk[1 << 16];
  size_t n;
  while ((n = std::fread(chunk, 1, sizeof chunk, f.get())) > 0) bytes.insert(bytes.end(), chunk, chunk + n);
  if (std::ferror(f.get())) throw CKoException(FormatString("Failed to read the file [%s]", path.c_str()));
  return bytes;
}

// Writes next to the target and renames, so a failure never leaves a partial file.
void WriteAll(const std::string& path, const unsigned char* data, size_t length) {
  if (path == "-") {
    if (std::fwrite(data, 1, length, stdout) != length || std::fflush(stdout) != 0)
      throw CKoException("Failed to write data to standard output");
    return;
  }
  std::string temp = path + ".koxml-XXXXXX";
  const int fd = mkstemp(&temp[0]);
  if (fd < 0) throw CKoException(FormatString("Failed to write data to the file [%s]", path.c_str()));
  // mkstemp creates the file private to its owner; give it the permissions a
  // plain create would have, as the user's umask allows.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
  FILE* f = fdopen(fd, "wb");
  bool ok = f && std::fwrite(data, 1, length, f) == length;
  ok = (f ? std::fclose(f) == 0 : (close(fd), false)) && ok;
  if (!ok || std::rename(temp.c_str(), path.c_str()) != 0) {
    std::remove(temp.c_str());
    throw CKoException(FormatString("Failed to write data to the file [%s]", path.c_str()));
  }
}

void Load(CXmlDocument& document, std::vector<unsigned char>& bytes, const std::string& path) {
  if (bytes.empty()) throw CKoException(FormatString("The input [%s] is empty", path.c_str()));
  document.LoadXmlStream(bytes.data(), static_cast<unsigned long>(bytes.size()));
}

CBinaryData WriteXml(const CXmlDocument& document, const ConvertOptions& o) {
  CTextStream stream(o.encoding);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(o.indent);
  writer.SetEOLType(o.crlf ? EOLTypeCRLF : EOLTypeLF);
  writer.WriteStartDocument();
  koxml::ReplayTree(document, writer, o.stripWhitespace);
  writer.Close();
  CBinaryData text = stream.GetEncodedStream();
  if (o.encoding != XmlEncoding_UTF16) return text;
  // UTF-16 files start with a byte-order mark, as the library's file streams write them.
  CBinaryData withMark("\xFF\xFE");
  withMark.Append(text);
  return withMark;
}

CBinaryData WriteFastInfoset(const CXmlDocument& document, const CXmlSerializationContext& context,
                             const ConvertOptions& o) {
  CBinaryStream stream;
  CFastInfosetWriter writer(context.GetFIContext(), stream);
  writer.WriteStartDocument(o.declaration);
  koxml::ReplayTree(document, writer, o.stripWhitespace);
  writer.WriteEndDocument();
  return stream.GetBinaryStream();
}

int Convert(int argc, char** argv) {
  const ConvertOptions o = ParseConvert(argc, argv);
  using Clock = std::chrono::steady_clock;
  auto ms = [](Clock::time_point from) {
    return std::chrono::duration<double, std::milli>(Clock::now() - from).count();
  };
  std::vector<unsigned char> input = ReadAll(o.in);
  CXmlSerializationContext context;
  CXmlDocument document(context);
  const auto readStart = Clock::now();
  Load(document, input, o.in);
  const double readMs = ms(readStart);

  const auto writeStart = Clock::now();
  CBinaryData output = o.format == Format::FastInfoset ? WriteFastInfoset(document, context, o)
                                                       : WriteXml(document, o);
  CKoZip::CompressData(output, o.compression);
  WriteAll(o.out, output.GetData(), output.GetLength());
  if (o.stats)
    std::fprintf(stderr, "%zu %lu %.1f %.1f\n", input.size(), output.GetLength(), readMs,
                 ms(writeStart));
  return 0;
}

std::string DetectCompression(const std::vector<unsigned char>& b) {
  if (b.size() >= 2 && b[0] == 0x1F && b[1] == 0x8B) return "gzip";
  if (b.size() >= 2 && (b[0] & 0x0F) == 8 && ((b[0] << 8) | b[1]) % 31 == 0) return "zlib";
  return "none";
}

std::string DetectFormat(const unsigned char* data, size_t length) {
  const std::string head(reinterpret_cast<const char*>(data), std::min<size_t>(length, 64));
  if (length >= 4 && data[0] == 0xE0 && data[1] == 0 && data[2] == 0 && data[3] == 1)
    return "Fast Infoset";
  if (head.compare(0, 5, "<?xml") == 0 && head.find("'finf'") != std::string::npos)
    return "Fast Infoset (with XML declaration)";
  return "XML text";
}

int Info(int argc, char** argv) {
  if (argc != 3) throw UsageError("info needs exactly one FILE");
  const std::string path = argv[2];
  std::vector<unsigned char> input = ReadAll(path);
  if (input.empty()) throw CKoException(FormatString("The input [%s] is empty", path.c_str()));
  const std::string compression = DetectCompression(input);

  // Inflate a copy to see what the compressed input holds.
  CXmlSerializationContext context;
  unsigned long length = static_cast<unsigned long>(input.size());
  std::unique_ptr<unsigned char[]> copy(new unsigned char[length]);
  std::memcpy(copy.get(), input.data(), length);
  unsigned char* inflated = copy.get();
  CKoZip::Decompress(&inflated, &length, context.GetInflateLimits());
  if (inflated != copy.get()) {
    (void)copy.release();  // Decompress has freed it
    copy.reset(inflated);
  }
  const std::string format = DetectFormat(copy.get(), length);

  CXmlDocument document(context);
  const auto start = std::chrono::steady_clock::now();
  Load(document, input, path);
  const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  const koxml::TreeStats s = koxml::CollectStats(document.GetDocumentElement());
  std::printf("file:          %s\n", path.c_str());
  std::printf("format:        %s\n", format.c_str());
  std::printf("compression:   %s\n", compression.c_str());
  std::printf("size:          %zu bytes\n", input.size());
  std::printf("uncompressed:  %lu bytes\n", length);
  std::printf("elements:      %zu\n", s.elements);
  std::printf("attributes:    %zu\n", s.attributes);
  std::printf("distinct names: %zu\n", s.names.size());
  std::printf("namespaces:    %zu\n", s.namespaces.size());
  std::printf("max depth:     %zu\n", s.maxDepth);
  std::printf("load time:     %.1f ms\n", ms);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  // Text inside the library is in the local code page; a UTF-8 one makes the
  // conversions lossless for every document.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  try {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "--help" || command == "-h" || command == "help") {
      std::fputs(kUsage, stdout);
      return 0;
    }
    if (command == "--version") {
      std::printf("koxml %d.%d (KoXmlLib10)\n", RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR);
      return 0;
    }
    if (command == "convert") return Convert(argc, argv);
    if (command == "info") return Info(argc, argv);
    if (command == "generate") return koxml::generate::RunGenerate(argc - 1, argv + 1);
    throw UsageError(command.empty() ? "no command given" : "unknown command '" + command + "'");
  } catch (const UsageError& e) {
    std::fprintf(stderr, "koxml: %s\n%s", e.what(), kUsage);
    return 2;
  } catch (const CKoException& e) {
    std::string message = e.GetFullMessage();
    for (char& c : message)
      if (c == '\n') c = ' ';
    std::fprintf(stderr, "koxml: %s\n", message.c_str());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "koxml: %s\n", e.what());
    return 1;
  }
}
