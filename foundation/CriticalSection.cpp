#include "KoXmlLib10/CriticalSection.h"

CKOCriticalSection::CKOCriticalSection() { pthread_mutex_init(&m_mutex, nullptr); }

CKOCriticalSection::CKOCriticalSection(const CKOCriticalSection&) : CKOCriticalSection() {}

CKOCriticalSection& CKOCriticalSection::operator=(const CKOCriticalSection&) { return *this; }

CKOCriticalSection::~CKOCriticalSection() { pthread_mutex_destroy(&m_mutex); }

void CKOCriticalSection::Enter() { pthread_mutex_lock(&m_mutex); }

void CKOCriticalSection::Leave() { pthread_mutex_unlock(&m_mutex); }
