#include "KoXmlLib10/XmlObjectBase.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Untyped.h"
#include "KoXmlLib10/Version.h"
#include "KoXmlLib10/XmlCollectionBase.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "binding/BindingMessages.h"
#include "foundation/ScopedLock.h"

namespace KoXmlLib10 {

bool ASYNC_TOXMLFILE = false;

void AsyncToXmlFile(bool async) { ASYNC_TOXMLFILE = async; }

namespace {

bool GeneratorVersionMatches(int& major, int& minor) {
  GetGeneratorVersion(major, minor);
  return major == RUNTIME_VERSION_MAJOR && minor == RUNTIME_VERSION_MINOR;
}

void PrintVersionBanner(std::FILE* stream, int major, int minor) {
  std::fputs(msg::kVersionBannerRule, stream);
  std::fputs(msg::kVersionBannerTitle, stream);
  std::fputs(FormatString(msg::kVersionBannerAdvice, RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR, major, minor)
                 .c_str(),
             stream);
  std::fflush(stream);
}

void PrintVersionBanners(int major, int minor) {
  PrintVersionBanner(stdout, major, minor);
  PrintVersionBanner(stderr, major, minor);
}

// Every entry point starts here: generated code of another generator version
// would describe itself in records this engine may misread.
void CheckVersion() {
  int major, minor;
  if (GeneratorVersionMatches(major, minor)) return;
  PrintVersionBanners(major, minor);
  throw CKoException(
      FormatString(msg::kWrongVersion, RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR, major, minor));
}

// Only the first object of the process announces a mismatch on construction.
std::atomic<bool> g_constructionBannerDone{false};

void RefuseZlibForFiles(CompressionType compression) {
  if (compression == CompressionTypeZlib) throw CKoException(msg::kZlibOnlyForStreams);
}

// A file is written beside its target and renamed over it only once it is
// complete, so a failure leaves an existing file as it was and no new file.
class CReplacementFile {
 public:
  explicit CReplacementFile(const char* target) : m_target(target ? target : "") {
    static std::atomic<unsigned> counter{0};
    m_temporary = FormatString("%s.%ld.%u.tmp", m_target.c_str(), static_cast<long>(getpid()), counter++);
  }
  ~CReplacementFile() {
    if (!m_committed) std::remove(m_temporary.c_str());
  }
  CReplacementFile(const CReplacementFile&) = delete;
  CReplacementFile& operator=(const CReplacementFile&) = delete;

  const char* TemporaryName() const { return m_temporary.c_str(); }
  void Commit() {
    // A replaced file keeps its permissions, as it would if it had been
    // overwritten in place.
    struct stat existing;
    if (stat(m_target.c_str(), &existing) == 0) chmod(m_temporary.c_str(), existing.st_mode & 07777);
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0)
      throw CKoException(FormatString(msg::kFileReplaceFailed, m_target.c_str()));
    m_committed = true;
  }

 private:
  std::string m_target;
  std::string m_temporary;
  bool m_committed = false;
};

void WriteBytesToFile(const char* fileName, XmlEncoding encoding, CBinaryData& bytes) {
  CReplacementFile file(fileName);
  try {
    CFileBinaryStream stream(file.TemporaryName(), encoding, bytes);
    stream.ToFile();
  } catch (const CKoException&) {
    // The stream names the file it wrote; the caller knows only the target.
    throw CKoException(FormatString(msg::kFileReplaceFailed, fileName ? fileName : ""));
  }
  file.Commit();
}

// Reads the document element of a loaded document into `object`.
void ReadDocument(CXmlObjectBase* object, CXmlDocument& document, const CXmlSerializationContext& ctx) {
  CXmlElement* root = document.GetDocumentElement();
  if (!root) throw CKoException(msg::kNoDocumentElement);
  CXmlObjectBase::FromXml_Int(object, root, root->GetFirstElement(), ctx);
}

}  // namespace

CXmlObjectBase::CXmlObjectBase() : m_refCount(0) {
  if (!g_constructionBannerDone.exchange(true)) {
    int major, minor;
    if (!GeneratorVersionMatches(major, minor)) PrintVersionBanners(major, minor);
  }
}

CXmlObjectBase::CXmlObjectBase(const CXmlObjectBase& other)
    : IEventSink(other), m_elementName(other.m_elementName), m_refCount(0) {}

CXmlObjectBase& CXmlObjectBase::operator=(const CXmlObjectBase& other) {
  m_elementName = other.m_elementName;
  return *this;
}

CXmlObjectBase::~CXmlObjectBase() = default;

void CXmlObjectBase::OnEvent(CXmlObjectBase*, MsgType, void*) {}

int CXmlObjectBase::AddRef() {
  CScopedLock hold(m_lock);
  return ++m_refCount;
}

int CXmlObjectBase::Release() {
  int count;
  {
    CScopedLock hold(m_lock);
    count = --m_refCount;
  }
  // The lock is a member: it must be left before the object goes.
  if (count == 0) delete this;
  return count;
}

// ---- writing -------------------------------------------------------------

std::string CXmlObjectBase::ToXml(bool includeDocHeader, bool formatted, EOLType eol,
                                  const CXmlSerializationContext& ctx) const {
  CheckVersion();
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(formatted);
  writer.SetEOLType(eol);
  if (includeDocHeader) writer.WriteStartDocument();
  ToXml_Int(&writer, true, GetTargetNamespace().c_str(), ctx, false);
  writer.Close();
  return std::string(stream.GetText(), stream.GetLength());
}

CBinaryData CXmlObjectBase::ToXmlStream(bool includeDocHeader, bool formatted, XmlEncoding encoding, EOLType eol,
                                        const CXmlSerializationContext& ctx, CompressionType compression) const {
  CheckVersion();
  CTextStream stream(encoding);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(formatted);
  writer.SetEOLType(eol);
  if (includeDocHeader) writer.WriteStartDocument();
  ToXml_Int(&writer, true, GetTargetNamespace().c_str(), ctx, false);
  writer.Close();
  CBinaryData bytes = stream.GetEncodedStream();
  if (compression != CompressionTypeNone) CKoZip::CompressData(bytes, compression);
  return bytes;
}

void CXmlObjectBase::ToXmlFile(const char* fileName, bool includeDocHeader, bool formatted, XmlEncoding encoding,
                               EOLType eol, const CXmlSerializationContext& ctx,
                               CompressionType compression) const {
  RefuseZlibForFiles(compression);
  if (ASYNC_TOXMLFILE && compression == CompressionTypeNone) {
    CheckVersion();
    CReplacementFile file(fileName);
    {
      CFileTextStream stream(file.TemporaryName(), encoding);
      CXmlTextWriter writer(stream);
      try {
        writer.Open();
      } catch (const CKoException&) {
        throw CKoException(FormatString(msg::kFileReplaceFailed, fileName ? fileName : ""));
      }
      writer.SetFormat(formatted);
      writer.SetEOLType(eol);
      if (includeDocHeader) writer.WriteStartDocument();
      ToXml_Int(&writer, true, GetTargetNamespace().c_str(), ctx, false);
      writer.Close();
    }
    file.Commit();
    return;
  }
  CBinaryData bytes = ToXmlStream(includeDocHeader, formatted, encoding, eol, ctx, compression);
  WriteBytesToFile(fileName, encoding, bytes);
}

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl decl, const CXmlSerializationContext& ctx,
                                                CompressionType compression) const {
  CheckVersion();
  CBinaryStream stream;
  {
    CFastInfosetWriter writer(ctx.GetFIContext(), stream);
    // The stream is read once the document is ended: octets may go in blocks.
    writer.SetBatchedOutput(true);
    writer.Open();
    writer.WriteStartDocument(decl);
    ToXml_Int(&writer, true, GetTargetNamespace().c_str(), ctx, false);
    writer.WriteEndDocument();
    writer.Close();
  }
  CBinaryData bytes = stream.GetBinaryStream();
  if (compression != CompressionTypeNone) CKoZip::CompressData(bytes, compression);
  return bytes;
}

void CXmlObjectBase::ToFastInfosetFile(const char* fileName, FInfoDecl decl, const CXmlSerializationContext& ctx,
                                       CompressionType compression) const {
  RefuseZlibForFiles(compression);
  CBinaryData bytes = ToFastInfosetStream(decl, ctx, compression);
  WriteBytesToFile(fileName, XmlEncoding_None, bytes);
}

// ---- reading ---------------------------------------------------------------

void CXmlObjectBase::FromXmlFile(const char* fileName, const CXmlSerializationContext& ctx) {
  CheckVersion();
  CXmlDocument document(ctx);
  document.Load(fileName);
  ReadDocument(this, document, ctx);
}

void CXmlObjectBase::FromXml(const char* xmlText, const CXmlSerializationContext& ctx) {
  CheckVersion();
  CXmlDocument document(ctx);
  document.LoadXml(xmlText);
  ReadDocument(this, document, ctx);
}

void CXmlObjectBase::FromXml(const wchar_t* xmlText, const CXmlSerializationContext& ctx) {
  CheckVersion();
  CXmlDocument document(ctx);
  document.LoadXml(xmlText);
  ReadDocument(this, document, ctx);
}

void CXmlObjectBase::FromXmlStream(unsigned char* data, unsigned long length, const CXmlSerializationContext& ctx) {
  CheckVersion();
  CXmlDocument document(ctx);
  document.LoadXmlStream(data, length);
  ReadDocument(this, document, ctx);
}

void CXmlObjectBase::FromXmlStream(const CBinaryData& data, const CXmlSerializationContext& ctx) {
  FromXmlStream(data.GetData(), data.GetLength(), ctx);
}

void CXmlObjectBase::FromXmlElement(const CXmlElement* element, const CXmlSerializationContext& ctx) {
  CheckVersion();
  if (!element) throw CKoInvalidParamException(msg::kNullElement);
  // The engine reads through the element without changing it.
  CXmlElement* readable = const_cast<CXmlElement*>(element);
  FromXml_Int(readable, readable->GetFirstElement(), ctx, false);
}

void CXmlObjectBase::FromXmlElement(const CElement* element, const CXmlSerializationContext& ctx) {
  CheckVersion();
  if (!element) throw CKoInvalidParamException(msg::kNullElement);
  const std::string text =
      element->ToXml(false, false, EOLTypeLF, CXmlSerializationContext::m_defaultContext);
  FromXml(text.c_str(), ctx);
}

// ---- doors for records and collections ----------------------------------------

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter*, const CXmlSerializationContext&) const {}

void CXmlObjectBase::ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                               const char* elementNamespace, const CXmlSerializationContext& ctx,
                               bool choiceMayBeEmpty) {
  object->ToXml_Int(writer, isRoot, elementNamespace, ctx, choiceMayBeEmpty);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* element, CXmlElement* firstChild,
                                         const CXmlSerializationContext& ctx) {
  return object->FromXml_Int(element, firstChild, ctx, false);
}

void CXmlObjectBase::AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                         const CXmlSerializationContext& ctx) {
  object->AttributesToXml_Int(writer, ctx);
}

// ---- events ------------------------------------------------------------------

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection) {
  sink->OnEvent(collection->GetBase(), MsgTypeCollectionChange, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item) {
  sink->OnEvent(collection->GetBase(), MsgTypeCollectionAdd, item);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection,
                                                      void* item) {
  sink->OnEvent(collection->GetBase(), MsgTypeCollectionAddComplete, item);
}

void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index) {
  sink->OnEvent(collection->GetBase(), MsgTypeCollectionRemove, index == -1 ? nullptr : &index);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection,
                                                         int index) {
  sink->OnEvent(collection->GetBase(), MsgTypeCollectionRemoveComplete, index == -1 ? nullptr : &index);
}

// ---- checks of generated setters ------------------------------------------------

void CXmlObjectBase::Throw_IfPropertyIsNull(CXmlObjectBase* value, const char* propertyName) {
  if (!value) throw CKoInvalidParamException(FormatString(msg::kPropertyMandatory, propertyName));
}

void CXmlObjectBase::Throw_IfElementNameDiffers(CXmlObjectBase* value, const char* requiredName) {
  if (!value) return;
  const std::string actual = value->GetBase()->GetElementName();
  if (actual != requiredName)
    throw CKoInvalidParamException(FormatString(msg::kElementNameDiffers, requiredName, actual.c_str()));
}

void CXmlObjectBase::Choice_SelectElement(const char* propertyName, CXmlObjectBase* value, std::string& selected) {
  if (selected == propertyName) {
    if (!value) selected.clear();
  } else if (selected.empty()) {
    selected = propertyName;
  } else if (value) {
    throw CKoInvalidStateException(FormatString(msg::kChoiceAlreadySet, selected.c_str()));
  }
}

void CXmlObjectBase::Choice_CollectionChanged(const char* propertyName, long count, std::string& selected) {
  if (selected == propertyName) {
    if (count == 0) selected.clear();
  } else if (selected.empty()) {
    if (count > 0) selected = propertyName;
  } else if (count != 0) {
    throw CKoInvalidStateException(FormatString(msg::kChoiceAlreadySet, selected.c_str()));
  }
}

void CXmlObjectBase::Choice_SetElementValid(bool valid, const char* propertyName, std::string& selected) {
  if (!valid) {
    selected.clear();
  } else if (selected.empty() || selected == propertyName) {
    selected = propertyName;
  } else {
    throw CKoInvalidStateException(FormatString(msg::kChoiceAlreadySetUnbracketed, selected.c_str()));
  }
}

void CXmlObjectBase::Choice_Read_Collection(CXmlCollectionBase* collection, CXmlElement* parentElement,
                                            CXmlElement*& cursor, long& count, const CXmlSerializationContext& ctx) {
  if (count > 0) return;
  CXmlObjectBase* object = collection;
  CXmlElement* next = object->FromXml_Int(parentElement, cursor, ctx, false);
  if (next == cursor) return;
  cursor = next;
  collection->ValidateCount(ctx);
  ++count;
}

// ---- namespace rules ----------------------------------------------------------------

bool CXmlObjectBase::IsNamespaceValid(const char* namespaceUri, const char* restriction,
                                      const char* targetNamespace) const {
  return CXmlObjectHelper::IsNamespaceValid(namespaceUri ? namespaceUri : "", restriction ? restriction : "",
                                            targetNamespace ? targetNamespace : "");
}

void CXmlObjectBase::TestNamespace(const char* namespaceUri, const char* restriction,
                                   const char* targetNamespace) const {
  CXmlObjectHelper::TestNamespace(namespaceUri ? namespaceUri : "", restriction ? restriction : "",
                                  targetNamespace ? targetNamespace : "");
}

bool CXmlObjectBase::DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                                          const char* localName, const char* namespaceUri) const {
  return CXmlObjectHelper::DoesElementNameMatch(ctx, element, localName ? localName : "",
                                                namespaceUri ? namespaceUri : "");
}

}  // namespace KoXmlLib10
