#ifndef KOXMLLIB10_XMLOBJECTBASE_H
#define KOXMLLIB10_XMLOBJECTBASE_H

#include <cstdint>
#include <string>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/CriticalSection.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/FastInfosetWriter.h"
#include "KoXmlLib10/KoZip.h"
#include "KoXmlLib10/SerializationContext.h"
#include "KoXmlLib10/Streams.h"
#include "KoXmlLib10/XmlTextWriter.h"

namespace KoXmlLib10Data {
class CElementInfo;
class CAttributeInfo;
}  // namespace KoXmlLib10Data

namespace KoXmlLib10 {

class CXmlObjectBase;
class CXmlCollectionBase;
class CXmlWriter;
class CXmlElement;
class CElement;

// Receives the events a collection fires about its items.
class KOXML_API IEventSink {
 public:
  enum MsgType : std::int32_t {
    MsgTypeCollectionChange = 0,          // data: null
    MsgTypeCollectionAdd = 1,             // data: the item about to be added
    MsgTypeCollectionAddComplete = 2,     // data: the item added
    MsgTypeCollectionRemove = 3,          // data: int* index, or null for index -1
    MsgTypeCollectionRemoveComplete = 4,  // data: as for MsgTypeCollectionRemove
  };

  virtual void OnEvent(CXmlObjectBase* sender, MsgType msg, void* data) = 0;

 protected:
  ~IEventSink() = default;
};

// Implemented by generated classes whose element may carry xsi:nil; the
// engine finds it by a dynamic cross-cast from the object.
class KOXML_API INillable {
 public:
  virtual bool IsNil() = 0;
  virtual void SetNil(bool nil) = 0;

 protected:
  ~INillable() = default;
};

// Root of every bindable object: generated classes, collections and untyped
// content. It owns the public entry points that write an object as a
// document and fill it from one, the element name the object is written
// under, and an intrusive reference count.
//
// Objects are created with a count of 0, kept through AddRef (normally by
// CSmartPtr), and deleted by the Release that brings the count to exactly 0.
// AddRef and Release are safe from any thread; everything else is used by
// one thread at a time.
//
// The virtual operations are declared in their fixed slot order: generated
// code derives from this class, so the order is part of the interface.
class KOXML_API CXmlObjectBase : public IEventSink {
 public:
  CXmlObjectBase();
  // A copy is a new object: it starts unreferenced and keeps the name.
  CXmlObjectBase(const CXmlObjectBase& other);
  // Assignment copies the element name and never touches either count.
  CXmlObjectBase& operator=(const CXmlObjectBase& other);

  // 1. Collections report their changes to their owner here; nothing by default.
  void OnEvent(CXmlObjectBase* sender, MsgType msg, void* data) override;
  // 2. The object as CXmlObjectBase.
  virtual CXmlObjectBase* GetBase() = 0;
  // 3-7. Writing. Every entry point checks the generator version first.
  // Compression 2 (zlib) is only for the stream methods; the file methods
  // refuse it. A failing file method leaves no partial file behind.
  virtual void ToXmlFile(const char* fileName, bool includeDocHeader, bool formatted, XmlEncoding encoding,
                         EOLType eol, const CXmlSerializationContext& ctx,
                         CompressionType compression) const;
  virtual void ToFastInfosetFile(const char* fileName, FInfoDecl decl, const CXmlSerializationContext& ctx,
                                 CompressionType compression) const;
  virtual std::string ToXml(bool includeDocHeader, bool formatted, EOLType eol,
                            const CXmlSerializationContext& ctx) const;
  virtual CBinaryData ToXmlStream(bool includeDocHeader, bool formatted, XmlEncoding encoding, EOLType eol,
                                  const CXmlSerializationContext& ctx, CompressionType compression) const;
  virtual CBinaryData ToFastInfosetStream(FInfoDecl decl, const CXmlSerializationContext& ctx,
                                          CompressionType compression) const;
  // 8-14. Reading. Byte streams and files may hold XML text or Fast Infoset,
  // either possibly compressed. A failed read keeps what had been stored.
  virtual void FromXmlFile(const char* fileName, const CXmlSerializationContext& ctx);
  virtual void FromXml(const char* xmlText, const CXmlSerializationContext& ctx);
  virtual void FromXml(const wchar_t* xmlText, const CXmlSerializationContext& ctx);
  virtual void FromXmlStream(unsigned char* data, unsigned long length, const CXmlSerializationContext& ctx);
  virtual void FromXmlStream(const CBinaryData& data, const CXmlSerializationContext& ctx);
  virtual void FromXmlElement(const CXmlElement* element, const CXmlSerializationContext& ctx);
  virtual void FromXmlElement(const CElement* element, const CXmlSerializationContext& ctx);
  // 15.
  virtual ~CXmlObjectBase();
  // 16. Namespace of the object's element when it is a document's root.
  virtual std::string GetTargetNamespace() const = 0;
  // 17. Namespace handed to the object's member records while reading.
  virtual std::string GetNamespace() const = 0;

  int AddRef();
  int Release();

  std::string GetElementName() const { return m_elementName; }
  void SetElementName(const char* name) { m_elementName = name ? name : ""; }
  CXmlObjectBase* GetBase() const { return const_cast<CXmlObjectBase*>(this)->GetBase(); }

  // Static doors to the protected operations below, for records and collections.
  static void ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                        const char* elementNamespace, const CXmlSerializationContext& ctx,
                        bool choiceMayBeEmpty);
  // Passes false as choiceMayBeEmpty.
  static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* element, CXmlElement* firstChild,
                                  const CXmlSerializationContext& ctx);
  static void AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                  const CXmlSerializationContext& ctx);

  // Each calls sink->OnEvent(collection->GetBase(), msg, data).
  static void FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection);
  static void FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
  static void FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
  // `data` is the address of index, or null when index is -1.
  static void FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);
  static void FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);

  // Checks made by generated property setters.
  void Throw_IfPropertyIsNull(CXmlObjectBase* value, const char* propertyName);
  void Throw_IfElementNameDiffers(CXmlObjectBase* value, const char* requiredName);

  // Bookkeeping of generated choice classes; `selected` names the property
  // of the choice that is set (empty: none).
  static void Choice_SelectElement(const char* propertyName, CXmlObjectBase* value, std::string& selected);
  static void Choice_CollectionChanged(const char* propertyName, long count, std::string& selected);
  static void Choice_SetElementValid(bool valid, const char* propertyName, std::string& selected);
  static void Choice_Read_Collection(CXmlCollectionBase* collection, CXmlElement* parentElement,
                                     CXmlElement*& cursor, long& count, const CXmlSerializationContext& ctx);

  // Namespace rules, forwarded to CXmlObjectHelper.
  bool IsNamespaceValid(const char* namespaceUri, const char* restriction, const char* targetNamespace) const;
  void TestNamespace(const char* namespaceUri, const char* restriction, const char* targetNamespace) const;
  bool DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                            const char* localName, const char* namespaceUri) const;

 protected:
  // 18. Writes the object's attributes on the element the writer has open; nothing here.
  virtual void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const;
  // 19. Writes the object as an element named by its element name in elementNamespace.
  virtual void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                         const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const = 0;
  // 20. Fills the object from `element`, reading its child elements from
  // `firstChild` on; returns the first child element left unread.
  virtual CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                   const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) = 0;

 private:
  // Records reach the protected operations of the objects they hold.
  friend class KoXmlLib10Data::CElementInfo;
  friend class KoXmlLib10Data::CAttributeInfo;

  std::string m_elementName;
  CKOCriticalSection m_lock;  // guards m_refCount
  int m_refCount;
};

// Process-wide switch (initially false): when set, ToXmlFile without
// compression writes the document to the file while it is produced.
extern KOXML_API bool ASYNC_TOXMLFILE;
KOXML_API void AsyncToXmlFile(bool async);

}  // namespace KoXmlLib10

#endif
