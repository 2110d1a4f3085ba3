#ifndef KOXMLLIB10_H
#define KOXMLLIB10_H

// Umbrella header: everything public in the library.
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/Version.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/ItemType.h"
#include "KoXmlLib10/StringUtils.h"
#include "KoXmlLib10/CriticalSection.h"
#include "KoXmlLib10/StringBuffer.h"
#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Unicode.h"
#include "KoXmlLib10/FastInfosetContext.h"
#include "KoXmlLib10/FastInfosetBinaryData.h"
#include "KoXmlLib10/SerializationContext.h"
#include "KoXmlLib10/DateTimeSpan.h"
#include "KoXmlLib10/DateTime.h"
#include "KoXmlLib10/KoZip.h"
#include "KoXmlLib10/BigInteger.h"
#include "KoXmlLib10/Decimal.h"
#include "KoXmlLib10/Streams.h"
#include "KoXmlLib10/XmlWriter.h"
#include "KoXmlLib10/XmlTextWriter.h"
#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlObjectBase.h"
#include "KoXmlLib10/XmlCollectionBase.h"
#include "KoXmlLib10/SmartPtr.h"
#include "KoXmlLib10/Variant.h"
#include "KoXmlLib10/Facets.h"
#include "KoXmlLib10/XmlObjectHelper.h"

#endif
