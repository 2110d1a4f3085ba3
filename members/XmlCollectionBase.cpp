#include "KoXmlLib10/XmlCollectionBase.h"

#include <algorithm>

#include "KoXmlLib10/Exceptions.h"
#include "members/MembersMessages.h"

namespace KoXmlLib10 {

CXmlCollectionBase::CXmlCollectionBase() : m_minOccurs(0), m_maxOccurs(-1) {}

CXmlCollectionBase::CXmlCollectionBase(const char* elementName, const char* elementNamespace, int minOccurs,
                                       int maxOccurs)
    : m_namespace(elementNamespace ? elementNamespace : ""), m_minOccurs(minOccurs), m_maxOccurs(maxOccurs) {
  SetElementName(elementName);
}

CXmlCollectionBase::~CXmlCollectionBase() = default;

CXmlObjectBase* CXmlCollectionBase::GetBase() { return this; }

std::string CXmlCollectionBase::GetTargetNamespace() const { throw CKoException(msg::kCollectionTargetNamespace); }

std::string CXmlCollectionBase::GetNamespace() const { return m_namespace; }

bool CXmlCollectionBase::IsValidCount(const CXmlSerializationContext& ctx) const {
  if (ctx.GetIgnoreInvalidCollectionCounts()) return true;
  const int count = GetCount();
  if (m_maxOccurs != -1 && count > m_maxOccurs) return false;
  return count >= m_minOccurs;
}

void CXmlCollectionBase::ValidateCount(const CXmlSerializationContext& ctx) const {
  if (ctx.GetIgnoreInvalidCollectionCounts()) return;
  const int count = GetCount();
  if (m_maxOccurs != -1 && count > m_maxOccurs)
    throw CKoValidationException(FormatString(msg::kCollectionMaximum, GetElementName().c_str(), m_maxOccurs));
  if (count < m_minOccurs)
    throw CKoValidationException(FormatString(msg::kCollectionMinimum, GetElementName().c_str(), m_minOccurs));
}

void CXmlCollectionBase::AddEventListener(IEventSink* listener) { m_listeners.push_back(listener); }

void CXmlCollectionBase::RemoveEventListener(IEventSink* listener) {
  m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), listener), m_listeners.end());
}

// Listeners are told in the order they registered. A listener may register
// or unregister others while it is told, so the list is walked by index.
void CXmlCollectionBase::FireOnCollectionAdd(void* item) {
  for (size_t i = 0; i < m_listeners.size(); ++i) FireOnCollectionAddEvent(m_listeners[i], this, item);
}

void CXmlCollectionBase::FireOnCollectionAddComplete(void* item) {
  for (size_t i = 0; i < m_listeners.size(); ++i) FireOnCollectionAddCompleteEvent(m_listeners[i], this, item);
}

void CXmlCollectionBase::FireOnCollectionRemove(int index) {
  for (size_t i = 0; i < m_listeners.size(); ++i) FireOnCollectionRemoveEvent(m_listeners[i], this, index);
}

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int index) {
  for (size_t i = 0; i < m_listeners.size(); ++i) FireOnCollectionRemoveCompleteEvent(m_listeners[i], this, index);
}

void CXmlCollectionBase::FireOnCollectionChange() {
  for (size_t i = 0; i < m_listeners.size(); ++i) FireOnCollectionChangeEvent(m_listeners[i], this);
}

}  // namespace KoXmlLib10
