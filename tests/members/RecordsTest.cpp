// The member records of the three families and the attribute records, driven
// by the engine through the model of tests/support/RecordModel.h (its header
// lists which class uses which record). Reading rules run as one table (class
// x document x tolerance flags) through XML text and Fast Infoset, plain and
// compressed; writing rules and a random round trip follow.

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <utility>
#include <string>
#include <vector>

#include <KoXmlLib10.h>

#include "support/Documents.h"
#include "support/RecordModel.h"
#include "support/Throws.h"

namespace {

using namespace recordmodel;

// ---- documents ----------------------------------------------------------------------------

constexpr char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

// Every reading case runs through each of these forms of its document.
const std::vector<std::string>& EncodingNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> out;
    for (const testsupport::EncodedDocument& d : testsupport::EveryEncoding("<x/>")) out.push_back(d.name);
    return out;
  }();
  return names;
}

// ---- contexts -----------------------------------------------------------------------------

enum Flag : unsigned {
  None = 0,
  UnknownElements = 1,
  MissingMandatory = 2,
  Counts = 4,
  UnknownAttributes = 8,
  NoDefaults = 16,
  MissingChoice = 32,
};

CXmlSerializationContext Context(unsigned flags) {
  CXmlSerializationContext ctx;
  ctx.SetIgnoreUnknownElements(flags & UnknownElements);
  ctx.SetIgnoreMissingMandatoryElements(flags & MissingMandatory);
  ctx.SetIgnoreInvalidCollectionCounts(flags & Counts);
  ctx.SetIgnoreUnknownAttributes(flags & UnknownAttributes);
  ctx.SetNoOptionalAttributeDefaultOutput(flags & NoDefaults);
  ctx.SetIgnoreMissingChoice(flags & MissingChoice);
  return ctx;
}

// ---- what a property shows ------------------------------------------------------------

// A property as text: "-" unset, "nil", "none" cleared, the value, an object as its class and
// element name, a collection as its items.
std::string Show(CObject& o, int id) {
  KoVariant v = o.Get(id);
  if (!v.IsValid()) return "-";
  if (v.IsNil()) return "nil";
  CSmartPtr<CXmlObjectBase> held(v.GetXmlObject());
  if (held) {
    held->Release();
    if (auto* col = dynamic_cast<CstringCol*>(held.get())) {
      std::string s = "[";
      for (int i = 0; i < col->GetCount(); ++i) s += (i ? "," : "") + col->Item(i);
      return s + "]";
    }
    if (auto* col = dynamic_cast<Ci4Col*>(held.get())) {
      std::string s = "[";
      for (int i = 0; i < col->GetCount(); ++i) s += (i ? "," : "") + std::to_string(col->Item(i));
      return s + "]";
    }
    if (auto* col = dynamic_cast<CXmlCollection*>(held.get())) {
      std::string s = "[";
      for (CNode* n = col->GetHead(); n; n = n->next) {
        if (n != col->GetHead()) s += ",";
        if (auto* e = dynamic_cast<CElement*>(n->item)) s += "{" + e->GetNamespace() + "}" + e->GetName();
        else if (auto* a = dynamic_cast<CAttribute*>(n->item)) s += a->GetName() + "=" + a->GetValue();
        else if (auto* c = dynamic_cast<CObject*>(n->item)) s += std::to_string(c->Id()) + ":" + c->GetElementName();
      }
      return s + "]";
    }
    if (auto* e = dynamic_cast<CElement*>(held.get()))
      return "{" + e->GetNamespace() + "}" + e->GetName() + "=" + e->GetText();
    if (auto* c = dynamic_cast<CObject*>(held.get())) {
      auto* nillable = dynamic_cast<INillable*>(c);
      return std::to_string(c->Id()) + ":" + c->GetElementName() + (nillable && nillable->IsNil() ? " nil" : "");
    }
    return "?";
  }
  std::string type;
  try {
    type = v.GetType();
  } catch (const CKoException&) {
    return "none";  // a variant that holds no object: the member was cleared
  }
  if (type == "i4") return std::to_string(v.GetI4());
  return v.ToString(nullptr);
}

// ---- the reading table -------------------------------------------------------------------

struct Expect {
  int property;
  const char* shown;
};

struct ReadCase {
  const char* name;
  ClassId cls;
  const char* body;  // children (and attributes) of the root, see Doc
  unsigned flags;
  const char* error;  // the full message below the root's line, or null when the read succeeds
  std::vector<Expect> expect;
  const char* rootAttributes = "";
};

const char* RootName(ClassId c) {
  switch (c) {
    case SeqRoot: return "seq";
    case SeqMisc: return "misc";
    case ChoiceRoot: return "choice";
    case ChoiceStrict: return "strict";
    case ChoicePseudo: return "cp";
    case AllRoot: return "all";
    case AllAbs: return "allabs";
    case AllOpen: return "open";
    default: return "x";
  }
}

std::string Doc(const ReadCase& c) {
  std::string attrs = c.rootAttributes;
  if (c.cls == SeqRoot && attrs.empty()) attrs = " id='1'";
  return std::string("<") + RootName(c.cls) + " xmlns='urn:t' xmlns:o='urn:o' xmlns:xsi='" + kXsi + "'" + attrs +
         ">" + c.body + "</" + RootName(c.cls) + ">";
}

// The smallest complete body of SeqRoot, around which the cases vary.
#define SEQ_HEAD "<name>n</name>"
#define SEQ_MID "<size>small</size>"
#define SEQ_LEAF "<leaf/>"
#define SEQ_PSEUDO "<p1>1</p1>"
#define SEQ_SHAPE "<shape/>"
#define SEQ_MIN SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE

// The message of the innermost exception `action` throws.
template <class Action>
std::string InnermostOf(Action action) {
  try {
    action();
  } catch (const CKoException& e) {
    const CKoException* p = &e;
    while (p->GetInnerException()) p = p->GetInnerException();
    return p->GetMessage();
  }
  return "nothing thrown";
}

const std::vector<ReadCase>& ReadCases() {
  using namespace seqroot;
  static const std::vector<ReadCase> cases = {
      // sequence: primitive and enumeration members, the nil rule
      {"SeqMinimal", SeqRoot, SEQ_MIN, None, nullptr,
       {{name, "n"}, {note, "-"}, {size, "0"}, {shade, "-"}, {shape, "2:shape"}, {extra, "-"}}},
      {"SeqAllSingles", SeqRoot,
       SEQ_HEAD "<note>hi</note><size>large</size><shade>medium</shade><leaf code='3'><text>t</text></leaf>"
                "<extra/>" SEQ_PSEUDO "<p2>large</p2><shape xsi:type='DerivedType'><d>4</d></shape>"
                "<shape2/><blob>b</blob>",
       None, nullptr,
       {{note, "hi"}, {size, "2"}, {shade, "1"}, {extra, "0:extra"}, {shape, "3:shape"}, {shape2, "2:shape2"},
        {blob, "{urn:t}blob=b"}}},
      {"NilOnNillablePrim", SeqRoot, SEQ_HEAD "<note xsi:nil='TRUE'>ignored</note>" SEQ_MID SEQ_LEAF SEQ_PSEUDO
       SEQ_SHAPE, None, nullptr, {{note, "nil"}}},
      {"NilOneOnNillableEnum", SeqRoot, SEQ_HEAD "<size xsi:nil='1'/>" SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, None,
       nullptr, {{size, "nil"}}},
      {"NilFalseParsesText", SeqRoot, SEQ_HEAD "<note xsi:nil='false'>x</note>" SEQ_MID SEQ_LEAF SEQ_PSEUDO
       SEQ_SHAPE, None, nullptr, {{note, "x"}}},
      {"NilZeroParsesText", SeqRoot, SEQ_HEAD "<note xsi:nil='0'>y</note>" SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE,
       None, nullptr, {{note, "y"}}},
      {"NilYesRejected", SeqRoot, SEQ_HEAD "<note xsi:nil='yes'/>" SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, None,
       "Unexpected Value [yes] for 'nil' Attribute found.", {}},
      {"NilOnNonNillablePrim", SeqRoot, "<name xsi:nil='true'/>" SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, None,
       "Invalid use of 'nil' attibute in non-nillable element [name]", {}},
      {"NilOnNonNillableEnum", SeqRoot, SEQ_HEAD SEQ_MID "<shade xsi:nil='true'/>" SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE,
       None, "Invalid use of 'nil' attibute in non-nillable element [shade]", {}},
      {"NilOnClassMember", SeqRoot, SEQ_HEAD SEQ_MID "<leaf xsi:nil='true'><text>skipped</text></leaf>" SEQ_PSEUDO
       SEQ_SHAPE, None, nullptr, {{leaf, "0:leaf nil"}}},
      {"NilOnNonNillableClass", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO "<shape xsi:nil='true'/>", None,
       "Failed to process the element [shape]\nInvalid use of 'nil' attibute in non-nillable element [shape]", {}},
      {"FacetNotCheckedOnReading", SeqRoot, "<name>far too long</name>" SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE,
       None, nullptr, {{name, "far too long"}}},
      // the mandatory search
      {"MissingMandatory", SeqRoot, SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, None,
       "Failed to find a required element [name]", {}},
      {"MissingMandatoryTolerated", SeqRoot, SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, MissingMandatory, nullptr,
       {{name, "-"}, {size, "0"}}},
      {"UnknownBeforeMandatory", SeqRoot, "<o:junk/>" SEQ_MIN, None, "Failed to find a required element [name]", {}},
      {"UnknownBeforeMandatorySkipped", SeqRoot, "<o:junk/><o:junk/>" SEQ_MIN, UnknownElements, nullptr,
       {{name, "n"}}},
      // Searching for a missing member skips everything up to the end.
      {"UnknownBeforeMissingMandatory", SeqRoot, "<o:junk/>" SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, UnknownElements,
       "Failed to find a required element [name]", {}},
      {"OptionalNeverSkips", SeqRoot, SEQ_HEAD "<o:junk/><note>x</note>" SEQ_MID SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE,
       UnknownElements, nullptr, {{note, "-"}, {size, "0"}}},
      {"UnknownBetweenMembers", SeqRoot, SEQ_HEAD SEQ_MID "<o:junk/>" SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE, None,
       "Failed to find a required element [leaf]", {}},
      {"UnknownBetweenMembersSkipped", SeqRoot, SEQ_HEAD SEQ_MID "<o:junk/>" SEQ_LEAF SEQ_PSEUDO SEQ_SHAPE,
       UnknownElements, nullptr, {{leaf, "0:leaf"}, {shape, "2:shape"}}},
      {"UnknownAfterMembers", SeqRoot, SEQ_MIN "<junk/>", None,
       "Failed read all the elements held within the element [seq]. The unexpected element [junk] remains un "
       "processed",
       {}},
      {"UnknownAfterMembersSkipped", SeqRoot, SEQ_MIN "<junk/>", UnknownElements, nullptr, {{name, "n"}}},
      // derivable members through the element factory
      {"AbsUnknownType", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO "<shape xsi:type='Nope'/>", None,
       "Failed to find a suitable substitution element for [shape]", {}},
      {"AbsUnknownTypeUnknownElementsIgnored", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO
       "<shape xsi:type='Nope'/>", UnknownElements, "Failed to find a suitable substitution element for [shape]", {}},
      {"AbsUnknownTypeMissingIgnored", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO "<shape xsi:type='Nope'/>",
       MissingMandatory, "Failed to find a suitable substitution element for [shape]", {}},
      {"AbsTypeOfAnotherNamespace", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO
       "<shape xmlns:q='urn:q' xsi:type='q:DerivedType'/>", None,
       "Failed to find a suitable substitution element for [shape]", {}},
      {"AbsMissing", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO, MissingMandatory,
       "Failed to find a suitable substitution element for [shape]", {}},
      {"AbsOptUnknownTypeAbsent", SeqRoot, SEQ_MIN "<shape2 xsi:type='Nope'/>", UnknownElements, nullptr,
       {{shape2, "-"}}},
      {"AbsPrefixedType", SeqRoot, SEQ_HEAD SEQ_MID SEQ_LEAF SEQ_PSEUDO "<shape xmlns:p='urn:t' xsi:type='p:DerivedType'/>",
       None, nullptr, {{shape, "3:shape"}}},
      // repeated members
      {"Collections", SeqRoot,
       SEQ_MIN "<tag>a</tag><tag>b</tag><level>x</level><item/><item code='2'/><figure/>"
               "<figure xsi:type='DerivedType'/><raw>5</raw>",
       None, nullptr,
       {{tag, "[a,b]"}, {level, "[x]"}, {item, "[0:item,0:item]"}, {figure, "[2:figure,3:figure]"}, {raw, "[5]"}}},
      {"TooManyIntItems", SeqRoot, SEQ_MIN "<raw>1</raw><raw>2</raw><raw>3</raw>", None,
       "The Maximum number of [raw] elements allowed in this collection is 2", {}},
      {"TooManyItems", SeqRoot, SEQ_MIN "<tag>a</tag><tag>b</tag><tag>c</tag><tag>d</tag>", None,
       "The Maximum number of [tag] elements allowed in this collection is 3", {}},
      {"TooManyItemsTolerated", SeqRoot, SEQ_MIN "<tag>a</tag><tag>b</tag><tag>c</tag><tag>d</tag>", Counts, nullptr,
       {{tag, "[a,b,c,d]"}}},
      {"RunInterruptedByUnknown", SeqRoot, SEQ_MIN "<tag>a</tag><o:junk xmlns:o='urn:t'/><tag>b</tag>",
       UnknownElements, nullptr, {{tag, "[a,b]"}}},
      {"RunInterruptedRejected", SeqRoot, SEQ_MIN "<tag>a</tag><junk/><tag>b</tag>", None,
       "Failed read all the elements held within the element [seq]. The unexpected element [junk] remains un "
       "processed",
       {}},
      // attributes
      {"AttributesRead", SeqRoot, SEQ_MIN, None, nullptr,
       {{id, "4"}, {ratio, "2.5"}, {kind, "2"}, {anyAttr, "[x=y]"}},
       " id='4' ratio='2.5' kind='large' o:x='y'"},
      {"RequiredAttributeMissing", SeqRoot, SEQ_MIN, None, "Failed to find the required Attribute [id]", {},
       " ratio='1'"},
      // The wildcard takes attributes of other namespaces (no namespace included): only the
      // target namespace is left unknown.
      {"UnknownAttribute", SeqRoot, SEQ_MIN, None, "Unexpected Attribute [bogus] found.", {},
       " id='1' xmlns:t='urn:t' t:bogus='1'"},
      {"UnknownAttributeTolerated", SeqRoot, SEQ_MIN, UnknownAttributes, nullptr, {{id, "1"}, {anyAttr, "[]"}},
       " id='1' xmlns:t='urn:t' t:bogus='1'"},
      {"WildcardTakesUnqualifiedAttribute", SeqRoot, SEQ_MIN, None, nullptr, {{anyAttr, "[bogus=1]"}},
       " id='1' bogus='1'"},
      {"OptionalAttributeDefaultNotApplied", SeqRoot, SEQ_MIN, None, nullptr, {{ratio, "-"}, {kind, "-"}}},
      {"PrimitiveAttributeOtherNamespace", SeqRoot, SEQ_MIN, UnknownAttributes, nullptr, {{ratio, "-"}},
       " id='1' xmlns:q='urn:q' q:ratio='3'"},
      // untyped and pseudo members
      {"MiscMinimal", SeqMisc, "<o:any>1</o:any><named>2</named><p1>3</p1>", None, nullptr,
       {{seqmisc::any, "{urn:o}any=1"}, {seqmisc::named, "{urn:t}named=2"}, {seqmisc::pseudoOpt, "-"}}},
      {"MiscOptionalPseudoAndLockedNames", SeqMisc,
       "<o:any/><named/><p1>3</p1><p1>4</p1><p2>small</p2><note>a</note><note>b</note>", None, nullptr,
       {{seqmisc::pseudoOpt, "1:opt"}, {seqmisc::notes, "[{urn:t}note,{urn:t}note]"}, {seqmisc::rest, "[]"}}},
      // The collection's own restriction (##other) does not filter what it reads.
      {"UntypedCollectionTakesAnyNamespace", SeqMisc, "<o:any/><named/><p1>3</p1><note>a</note><x/><o:y/>", None,
       nullptr, {{seqmisc::notes, "[{urn:t}note]"}, {seqmisc::rest, "[{urn:t}x,{urn:o}y]"}}},
      {"UntypedMandatoryWrongNamespace", SeqMisc, "<any/><named/><p1>3</p1>", None,
       "Failed to find the required element from namespace [urn:t]", {}},
      {"UntypedMandatoryAtEnd", SeqMisc, "", None, "Failed to find a required element [AnyElement]", {}},
      {"PseudoContentRequired", SeqMisc, "<o:any/><named/>", None, "Failed to find a required element [req]", {}},
      {"PseudoContentRequiredNothingTaken", SeqMisc, "<o:any/><named/><other/>", None,
       "Failed to find a required element [req]", {}},
      // choice
      {"ChoicePrim", ChoiceRoot, "<c1>5</c1>", None, nullptr, {{choiceroot::c1, "5"}, {choiceroot::c2, "-"}}},
      {"ChoiceNil", ChoiceRoot, "<c2 xsi:nil='true'/>", None, nullptr, {{choiceroot::c2, "nil"}}},
      {"ChoicePrimNil", ChoiceRoot, "<c1 xsi:nil='1'>text ignored</c1>", None, nullptr, {{choiceroot::c1, "nil"}}},
      {"ChoiceClassNil", ChoiceRoot, "<c3 xsi:nil='true'/>", None, nullptr, {{choiceroot::c3, "0:c3 nil"}}},
      {"ChoiceNestedFailureNamesThePath", ChoiceRoot, "<c3><text xsi:nil='maybe'/></c3>", None,
       "Failed to process the element [c3]\nUnexpected Value [maybe] for 'nil' Attribute found.", {}},
      {"ChoiceClass", ChoiceRoot, "<c3 code='1'/>", None, nullptr, {{choiceroot::c3, "0:c3"}}},
      {"ChoiceAbs", ChoiceRoot, "<c4 xsi:type='DerivedType'/>", None, nullptr, {{choiceroot::c4, "3:c4"}}},
      {"ChoiceAbsUnknownType", ChoiceRoot, "<c4 xsi:type='Nope'/>", None,
       "Failed read all the elements held within the element [choice]. The unexpected element [c4] remains un "
       "processed",
       {}},
      {"ChoiceUntyped", ChoiceRoot, "<c5>u</c5>", None, nullptr, {{choiceroot::c5, "{urn:t}c5=u"}}},
      {"ChoiceCollection", ChoiceRoot, "<c6>a</c6><c6>b</c6>", None, nullptr, {{choiceroot::c6, "[a,b]"}}},
      {"ChoiceCollectionTooFew", ChoiceRoot, "<c6>a</c6>", None,
       "The Minimum number of [c6] elements allowed in this collection is 2", {}},
      {"ChoiceCollections", ChoiceRoot, "<c8/><c8/>", None, nullptr, {{choiceroot::c8, "[0:c8,0:c8]"}}},
      {"ChoiceAbsCollection", ChoiceRoot, "<c9/>", None, nullptr, {{choiceroot::c9, "[2:c9]"}}},
      {"ChoiceIntCollection", ChoiceRoot, "<c10>1</c10><c10>2</c10>", None, nullptr, {{choiceroot::c10, "[1,2]"}}},
      {"ChoiceUntypedCollection", ChoiceRoot, "<c11/><c11/>", None, nullptr,
       {{choiceroot::c11, "[{urn:t}c11,{urn:t}c11]"}}},
      {"ChoiceEnumCollection", ChoiceRoot, "<c7>x</c7>", None, nullptr, {{choiceroot::c7, "[x]"}}},
      {"ChoiceEmptyWithOptionals", ChoiceRoot, "", None, nullptr, {{choiceroot::c1, "-"}}},
      {"ChoiceEmptyStrict", ChoiceStrict, "", None,
       "No child elements within the element [strict] were populated. The element represents a choice, so one and "
       "only one element should be populated. The element contained no sutable child elements",
       {}},
      {"ChoiceEmptyStrictTolerated", ChoiceStrict, "", MissingChoice, nullptr, {{choicestrict::s1, "[]"}}},
      {"ChoiceUnknownSkipped", ChoiceRoot, "<o:junk/><c1>2</c1>", UnknownElements, nullptr, {{choiceroot::c1, "2"}}},
      {"ChoiceCollectionTooMany", ChoiceStrict, "<s1>a</s1><s1>b</s1><s1>c</s1>", None,
       "The Maximum number of [s1] elements allowed in this collection is 2", {}},
      {"ChoiceCollectionTooManyTolerated", ChoiceStrict, "<s1>a</s1><s1>b</s1><s1>c</s1>", Counts, nullptr,
       {{choicestrict::s1, "[a,b,c]"}}},
      {"ChoiceUnknownNotSkipped", ChoiceStrict, "<o:junk/><s1>a</s1>", None,
       "No child elements within the element [strict] were populated. The element represents a choice, so one and "
       "only one element should be populated. The element contained no sutable child elements",
       {}},
      {"ChoicePseudoAlternative", ChoicePseudo, "<p1>1</p1><p2>large</p2>", None, nullptr,
       {{choicepseudo::alt, "1:alt"}, {choicepseudo::other, "[]"}}},
      {"ChoicePseudoCollection", ChoicePseudo, "<q1>1</q1><q1>2</q1>", None, nullptr,
       {{choicepseudo::alt, "none"}, {choicepseudo::other, "[11:,11:]"}}},
      // The pseudo alternative needs p1: p2 alone is no alternative at all.
      {"ChoicePseudoIncomplete", ChoicePseudo, "<p2>small</p2>", None,
       "Failed read all the elements held within the element [cp]. The unexpected element [p2] remains un processed",
       {}},
      // all
      {"AllAnyOrder", AllRoot,
       "<a8/><a3>large</a3><a12>s</a12><a6/><a1>1</a1><a12>t</a12><a5 code='4'/><a9>x</a9><a2>two</a2>"
       "<a4 xsi:nil='true'/><a10>e</a10><a11>7</a11><a13/><a14 xsi:type='DerivedType'/><p1>9</p1>",
       None, nullptr,
       {{allroot::a1, "1"}, {allroot::a2, "two"}, {allroot::a3, "2"}, {allroot::a4, "nil"}, {allroot::a6, "0:a6"},
        {allroot::a8, "{urn:t}a8="}, {allroot::a9, "{urn:t}a9=x"}, {allroot::a10, "[e]"}, {allroot::a11, "[7]"},
        {allroot::a12, "[s,t]"}, {allroot::a13, "[0:a13]"}, {allroot::a14, "[3:a14]"}, {allroot::p, "1:"}}},
      {"AllMissingMandatory", AllRoot, "<a3>small</a3><a8/><p1>1</p1>", None,
       "Failed to find the mandatory element [a1]", {}},
      {"AllMissingMandatoryNotTolerated", AllRoot, "<a3>small</a3><a8/><p1>1</p1>", MissingMandatory,
       "Failed to find the mandatory element [a1]", {}},
      {"AllMissingPseudoMandatory", AllRoot, "<a1>1</a1><a3>small</a3><a8/>", None,
       "Failed to find the mandatory element [p]", {}},
      {"AllClassMemberMayBeMissing", AllRoot, "<a1 xsi:nil='true'/><a3>small</a3><a8/><p1>1</p1>", None, nullptr,
       {{allroot::a1, "nil"}, {allroot::a5, "0:a5"}, {allroot::a6, "-"}}},
      {"AllUnknownLeft", AllRoot, "<a1>1</a1><a3>small</a3><a8/><p1>1</p1><o:z/>", None,
       "Failed read all the elements held within the element [all]. The unexpected element [z] remains un "
       "processed",
       {}},
      {"AllUnknownLeftTolerated", AllRoot, "<a1>1</a1><a3>small</a3><a8/><p1>1</p1><o:z/>", UnknownElements, nullptr,
       {{allroot::a1, "1"}}},
      // An all group does not skip: members behind an unknown element stay unread.
      {"AllUnknownBetweenNotSkipped", AllRoot, "<a1>1</a1><o:z/><a3>small</a3><a8/><p1>1</p1>", UnknownElements,
       "Failed to find the mandatory element [a3]", {}},
      {"AllNilOnNonNillable", AllRoot, "<a1>1</a1><a3 xsi:nil='true'/><a8/><p1>1</p1>", None,
       "Invalid use of 'nil' attibute in non-nillable element [a3]", {}},
      {"AllOpenRestAfterMember", AllOpen, "<k>1</k><x/><o:y/>", None, nullptr,
       {{allopen::k, "1"}, {allopen::rest, "[{urn:t}x,{urn:o}y]"}}},
      // The untyped collection takes whatever is at the cursor on its turn, members included.
      {"AllOpenRestSwallowsMember", AllOpen, "<x/><k>1</k>", None, "Failed to find the mandatory element [k]", {}},
      {"AllNoCountCheckOnReading", AllRoot, "<a1>1</a1><a3>small</a3><a8/><p1>1</p1><a12>1</a12><a12>2</a12><a12>3</a12>",
       None, nullptr, {{allroot::a12, "[1,2,3]"}}},
      {"AllAbsReadingNotProvided", AllAbs, "<m/>", None,
       "CElementInfoAllAbsClsMnd::ElementFromXml, has not been implemented fully, contact support@tesselbind.example",
       {}},
      {"AllAbsOptReadingNotProvided", AllAbs, "<o/>", None,
       "CElementInfoAllAbsClsOpt::ElementFromXml, has not been implemented fully, contact support@tesselbind.example",
       {}},
      {"AllAbsMissingMandatory", AllAbs, "", None, "Failed to find the mandatory element [m]", {}},
  };
  return cases;
}

struct ReadParam {
  const ReadCase* c;
  size_t encoding;  // index into EveryEncoding
};

class ReadRule : public ::testing::TestWithParam<ReadParam> {};

TEST_P(ReadRule, ReadsAsTheRuleSays) {
  const ReadCase& c = *GetParam().c;
  const std::string xml = Doc(c);
  CSmartPtr<CXmlObjectBase> object = New(c.cls, RootName(c.cls));
  auto& o = static_cast<CObject&>(*object);
  const CXmlSerializationContext ctx = Context(c.flags);
  try {
    o.FromXmlStream(testsupport::EveryEncoding(xml).at(GetParam().encoding).bytes, ctx);
    ASSERT_EQ(c.error, nullptr) << "nothing thrown for " << xml;
  } catch (const CKoException& e) {
    ASSERT_NE(c.error, nullptr) << e.GetFullMessage() << "\n" << xml;
    // The full message is the path of elements from the root, then the failure.
    EXPECT_EQ(e.GetFullMessage(), std::string("Failed to process the element [") + RootName(c.cls) + "]\n" + c.error);
    return;
  }
  for (const Expect& x : c.expect) EXPECT_EQ(Show(o, x.property), x.shown) << "property " << x.property;
}

std::vector<ReadParam> AllReadParams() {
  std::vector<ReadParam> out;
  for (const ReadCase& c : ReadCases())
    for (size_t e = 0; e < EncodingNames().size(); ++e) out.push_back({&c, e});
  return out;
}

INSTANTIATE_TEST_SUITE_P(Records, ReadRule, ::testing::ValuesIn(AllReadParams()),
                         [](const ::testing::TestParamInfo<ReadParam>& info) {
                           std::string n = std::string(info.param.c->name) + "_" + EncodingNames()[info.param.encoding];
                           for (char& ch : n)
                             if (!isalnum(static_cast<unsigned char>(ch))) ch = '_';
                           return n;
                         });

// ---- writing ---------------------------------------------------------------------------------

CSmartPtr<CObject> MinimalSeq() {
  CSmartPtr<CXmlObjectBase> object = New(SeqRoot, "seq");
  auto* o = static_cast<CObject*>(object.get());
  o->FromXml(Doc({"", SeqRoot, SEQ_MIN, None, nullptr, {}}).c_str(), Context(None));
  return CSmartPtr<CObject>(o);
}

std::string Write(const CObject& o, unsigned flags = None) {
  return o.ToXml(false, false, EOLTypeLF, Context(flags));
}

KoVariant Text(const char* s) {
  KoVariant v;
  v.SetString(s);
  return v;
}
KoVariant Number(long n) {
  KoVariant v;
  v.SetI4(n);
  return v;
}
KoVariant Real(double d) {
  KoVariant v;
  v.SetR8(d);
  return v;
}

TEST(RecordWriting, UnsetMembersWriteNothingAndNilWritesAnEmptyNilElement) {
  CSmartPtr<CObject> o = MinimalSeq();
  const std::string plain = Write(*o);
  EXPECT_EQ(plain.find("<note"), std::string::npos) << plain;
  KoVariant nil;
  nil.SetNil();
  o->Set(seqroot::note, nil);
  o->Set(seqroot::shade, nil);  // not nillable: written as nil all the same
  const std::string out = Write(*o);
  const std::string nilAttr = std::string(" xmlns:AB=\"") + kXsi + "\" AB:nil=\"true\"/>";
  EXPECT_NE(out.find("<AA:note" + nilAttr), std::string::npos) << out;
  EXPECT_NE(out.find("<AA:shade" + nilAttr), std::string::npos) << out;
  // A mandatory member that is unset is not reported when writing.
  o->Set(seqroot::name, KoVariant());
  EXPECT_EQ(Write(*o).find("<name"), std::string::npos);
}

// The full message of a failed write, through the text writer or Fast Infoset.
std::string WriteFailure(const CObject& o, bool fastInfoset) {
  try {
    if (fastInfoset)
      o.ToFastInfosetStream(FInfoDeclNone, Context(None), CompressionTypeNone);
    else
      Write(o);
  } catch (const CKoException& e) {
    return e.GetFullMessage();
  }
  return "nothing thrown";
}

TEST(RecordWriting, FacetFailuresNameTheWholePath) {
  CSmartPtr<CObject> o = MinimalSeq();
  o->Member<CObject>(seqroot::leaf)->Set(leafp::text, Text("eleven chars"));
  for (bool fi : {false, true})
    EXPECT_EQ(WriteFailure(*o, fi),
              "Failed to convert the element [seq] to XML\nFailed to convert the element [leaf] to XML\n"
              "Invalid Value for text [eleven chars]");
  // A nil value escapes the facets.
  KoVariant nil;
  nil.SetNil();
  o->Member<CObject>(seqroot::leaf)->Set(leafp::text, nil);
  EXPECT_NO_THROW(Write(*o));
  // Attribute facets: read without a check, refused when written.
  o->FromXml(Doc({"", SeqRoot, SEQ_MIN, None, nullptr, {}, " id='5000'"}).c_str(), Context(None));
  EXPECT_EQ(Show(*o, seqroot::id), "5000");
  for (bool fi : {false, true})
    EXPECT_EQ(WriteFailure(*o, fi),
              "Failed to convert the element [seq] to XML\nFailed to convert attributes to XML\n"
              "Invalid Value for id [5000]");
}

TEST(RecordWriting, AttributeDefaultsWrittenUnlessSuppressedByExactText) {
  CSmartPtr<CObject> o = MinimalSeq();
  o->Set(seqroot::ratio, Real(1));
  o->Set(seqroot::kind, Number(0));  // "small", the default
  EXPECT_NE(Write(*o).find("ratio=\"1\""), std::string::npos);
  EXPECT_NE(Write(*o).find("kind=\"small\""), std::string::npos);
  const std::string suppressed = Write(*o, NoDefaults);
  EXPECT_EQ(suppressed.find("ratio="), std::string::npos) << suppressed;
  EXPECT_EQ(suppressed.find("kind="), std::string::npos) << suppressed;
  // The mandatory attribute is written whatever its value.
  EXPECT_NE(suppressed.find("id=\"1\""), std::string::npos);
  o->Set(seqroot::ratio, Real(1.5));
  EXPECT_NE(Write(*o, NoDefaults).find("ratio=\"1.5\""), std::string::npos);
  // An optional attribute without default is written whatever the flag.
  o->Member<CObject>(seqroot::leaf)->Set(leafp::colour, Number(1));
  EXPECT_NE(Write(*o, NoDefaults).find("colour=\"medium\""), std::string::npos);
}

TEST(RecordWriting, CollectionCountsCheckedBeforeWriting) {
  CSmartPtr<CObject> o = MinimalSeq();
  auto* tags = o->Member<CstringCol>(seqroot::tag);
  for (const char* t : {"a", "b", "c", "d"}) tags->Add(t);
  EXPECT_EQ(InnermostOf([&] { Write(*o); }), "The Maximum number of [tag] elements allowed in this collection is 3");
  EXPECT_NE(Write(*o, Counts).find("<AA:tag>d</AA:tag>"), std::string::npos);
}

TEST(RecordWriting, EmptyChoiceRules) {
  CSmartPtr<CXmlObjectBase> strict = New(ChoiceStrict, "strict");
  EXPECT_EQ(InnermostOf([&] { strict->ToXml(false, false, EOLTypeLF, Context(None)); }),
            "This element is a choice, and as such must have at one (and only one) valid item, currently there "
            "are none set");
  EXPECT_NO_THROW(strict->ToXml(false, false, EOLTypeLF, Context(MissingChoice)));
  CSmartPtr<CXmlObjectBase> loose = New(ChoiceRoot, "choice");
  EXPECT_NO_THROW(loose->ToXml(false, false, EOLTypeLF, Context(None)));
}

// A pseudo child's attributes stand on the owner after its own (held byte for
// byte in the engine's writing tests); so do those of an item of a collection
// of pseudo elements.
TEST(RecordWriting, PseudoItemAttributesStandOnTheOwner) {
  CSmartPtr<CXmlObjectBase> cp = New(ChoicePseudo, "cp");
  auto& choice = static_cast<CObject&>(*cp);
  CSmartPtr<CObject> item = choice.Member<CObjectCol>(choicepseudo::other)->AddNew();
  item->Set(pseudoq::qa, Text("item"));
  item->Set(pseudoq::q1, Number(1));
  const std::string written = Write(choice);
  EXPECT_NE(written.find("<AA:cp xmlns:AA=\"urn:t\" qa=\"item\">"), std::string::npos) << written;
}

TEST(RecordWriting, AllAbstractMembersAreWritten) {
  CSmartPtr<CXmlObjectBase> object = New(AllAbs, "allabs");
  auto& o = static_cast<CObject&>(*object);
  KoVariant v;
  v.SetXmlObject(New(Derived, "m").get());
  o.Set(allabs::m, v);
  const std::string out = o.ToXml(false, false, EOLTypeLF, Context(None));
  EXPECT_NE(out.find("DerivedType"), std::string::npos) << out;
}

// ---- records used on their own ------------------------------------------------------------

// The none-kind records are abstract: only a derived class can exist.
struct SeqNon : CElementInfoSeqNonCol {
  using CElementInfoSeqNonCol::CElementInfoSeqNonCol;
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const override {
    return false;
  }
  bool ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**, const char*,
                      XmlElementType) override {
    return false;
  }
};
struct AllNon : CElementInfoAllNonCol {
  using CElementInfoAllNonCol::CElementInfoAllNonCol;
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const override {
    return false;
  }
  bool ElementFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**, const char*,
                      XmlElementType) override {
    return false;
  }
  bool Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool, bool) const override {
    return true;
  }
};

TEST(RecordBasics, NoneRecordsRefuseFacetChecks) {
  SeqNon s("n", "urn:n", 3);
  AllNon a("m", nullptr, 4);  // an all record of this kind can be made at all
  EXPECT_THROW(s.Validate(CXmlSerializationContext(), nullptr, false, true), CKoException);
  EXPECT_TRUE(testsupport::Throws([&] { s.CheckRestriction(Number(1)); }, "Cannot CheckRestriction for type: i4"));
}

TEST(RecordBasics, DefaultNamespaceOfNewUntypedElements) {
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##any", "urn:o", "urn:t"), "urn:o");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other", "urn:o", "urn:t"), "");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##other", "", "urn:t"), "DefaultNamespace");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##local", "urn:o", "urn:t"), "");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##targetNamespace", "urn:o", "urn:t"), "urn:t");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("##targetNamespace urn:a", "urn:o", "urn:t"), "urn:t");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("urn:a ##any", "urn:o", "urn:t"), "");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace("urn:a", "urn:o", "urn:t"), "");
  EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace(nullptr, nullptr, nullptr), "");
}

// ---- random round trips --------------------------------------------------------------------

class Random {
 public:
  explicit Random(unsigned seed) : m_rng(seed) {}
  bool Coin() { return m_rng() % 2 == 0; }
  unsigned Below(unsigned n) { return m_rng() % n; }
  long Number(unsigned n) { return static_cast<long>(Below(n)); }
  std::string Word() {
    std::string s;
    for (unsigned i = Below(6) + 1; i; --i) s += static_cast<char>('a' + Below(26));
    return s;
  }

 private:
  std::mt19937 m_rng;
};

KoVariant ObjectValue(const CSmartPtr<CXmlObjectBase>& object) {
  KoVariant v;
  v.SetXmlObject(object.get());
  return v;
}

CSmartPtr<CXmlObjectBase> RandomLeaf(Random& r, const char* name) {
  CSmartPtr<CXmlObjectBase> leaf = New(Leaf, name);
  auto* o = static_cast<CObject*>(leaf.get());
  if (r.Coin()) o->Set(leafp::text, Text(r.Word().c_str()));
  if (r.Coin()) o->Set(leafp::code, Number(r.Number(9)));
  if (r.Coin()) o->Set(leafp::colour, Number(r.Number(3)));
  return leaf;
}

CSmartPtr<CXmlObjectBase> RandomShape(Random& r, const char* name) {
  if (r.Coin()) return New(Base, name);
  CSmartPtr<CXmlObjectBase> d = New(Derived, name);
  static_cast<CObject*>(d.get())->Set(shapep::d, Number(r.Number(50)));
  return d;
}

CSmartPtr<CObject> RandomSeq(Random& r) {
  CSmartPtr<CObject> o = MinimalSeq();
  o->Set(seqroot::id, Number(r.Number(999)));
  o->Set(seqroot::name, Text(r.Word().c_str()));
  if (r.Coin()) o->Set(seqroot::note, Text(r.Word().c_str()));
  if (r.Coin()) o->Set(seqroot::ratio, Real(r.Below(100) / 4.0));
  if (r.Coin()) o->Set(seqroot::kind, Number(r.Number(3)));
  o->Set(seqroot::size, Number(r.Number(3)));
  if (r.Coin()) o->Set(seqroot::shade, Number(r.Number(3)));
  if (r.Coin()) o->Set(seqroot::extra, ObjectValue(RandomLeaf(r, "extra")));
  o->Set(seqroot::shape, ObjectValue(RandomShape(r, "shape")));
  if (r.Coin()) o->Set(seqroot::shape2, ObjectValue(RandomShape(r, "shape2")));
  for (unsigned i = r.Below(4); i; --i) o->Member<CstringCol>(seqroot::tag)->Add(r.Word());
  for (unsigned i = r.Below(3); i; --i) {
    CSmartPtr<CObject> item = o->Member<CObjectCol>(seqroot::item)->AddNew();
    if (r.Coin()) item->Set(leafp::text, Text(r.Word().c_str()));
    if (r.Coin()) item->Set(leafp::code, Number(r.Number(9)));
  }
  for (unsigned i = r.Below(3); i; --i) o->Member<Ci4Col>(seqroot::raw)->Add(r.Number(100));
  return o;
}

// One alternative of ChoiceRoot, chosen at random.
CSmartPtr<CObject> RandomChoice(Random& r) {
  CSmartPtr<CXmlObjectBase> object = New(ChoiceRoot, "choice");
  CSmartPtr<CObject> o(static_cast<CObject*>(object.get()));
  switch (r.Below(7)) {
    case 0: o->Set(choiceroot::c1, Number(r.Number(1000))); break;
    case 1: o->Set(choiceroot::c2, Number(r.Number(3))); break;
    case 2: o->Set(choiceroot::c3, ObjectValue(RandomLeaf(r, "c3"))); break;
    case 3: o->Set(choiceroot::c4, ObjectValue(RandomShape(r, "c4"))); break;
    case 4:
      for (unsigned i = r.Below(2) + 2; i; --i) o->Member<CstringCol>(choiceroot::c6)->Add(r.Word());
      break;
    case 5:
      for (unsigned i = r.Below(2) + 1; i; --i) o->Member<CObjectCol>(choiceroot::c8)->AddNew();
      break;
    default:
      for (unsigned i = r.Below(3) + 1; i; --i) o->Member<Ci4Col>(choiceroot::c10)->Add(r.Number(100));
  }
  return o;
}

// AllRoot with its mandatory members and a random choice of the others.
CSmartPtr<CObject> RandomAll(Random& r) {
  CSmartPtr<CXmlObjectBase> object = New(AllRoot, "all");
  CSmartPtr<CObject> o(static_cast<CObject*>(object.get()));
  o->Set(allroot::a1, Number(r.Number(1000)));
  o->Set(allroot::a3, Number(r.Number(3)));
  o->Member<CObject>(allroot::p)->Set(pseudop::p1, Number(r.Number(10)));
  if (r.Coin()) o->Member<CObject>(allroot::p)->Set(pseudop::p2, Number(r.Number(3)));
  if (r.Coin()) o->Set(allroot::a2, Text(r.Word().c_str()));
  if (r.Coin()) o->Set(allroot::a4, Number(r.Number(3)));
  if (r.Coin()) o->Set(allroot::a6, ObjectValue(RandomLeaf(r, "a6")));
  for (unsigned i = r.Below(3); i; --i) o->Member<CstringCol>(allroot::a12)->Add(r.Word());
  for (unsigned i = r.Below(3); i; --i) o->Member<CObjectCol>(allroot::a13)->AddNew();
  return o;
}

// Compression refuses output that does not shrink (a small choice often
// does not): such a form is left out, anything else that fails is reported.
bool Encode(const std::function<CBinaryData()>& write, CBinaryData& out) {
  try {
    out = write();
    return true;
  } catch (const CKoException& e) {
    if (e.GetMessage().rfind("Failed to compress data.", 0) != 0) throw;
    return false;
  }
}

// An object written and read back through every format writes the same text
// again. Returns how many compressed forms were checked.
int ExpectRoundTrips(const CObject& o, ClassId cls, const char* rootName, int round) {
  const CXmlSerializationContext ctx = Context(None);
  const std::string expected = Write(o);
  const std::vector<std::pair<bool, std::function<CBinaryData()>>> forms = {
      {false, [&] { return CBinaryData(expected.c_str()); }},
      {true, [&] { return o.ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, ctx, CompressionTypeGzip); }},
      {false, [&] { return o.ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeNone); }},
      {true, [&] { return o.ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeZlib); }}};
  int compressed = 0;
  for (const auto& [isCompressed, write] : forms) {
    CBinaryData bytes;
    if (!Encode(write, bytes)) continue;
    compressed += isCompressed;
    CSmartPtr<CXmlObjectBase> copy = New(cls, rootName);
    try {
      copy->FromXmlStream(bytes, ctx);
    } catch (const CKoException& e) {
      ADD_FAILURE() << "round " << round << ": " << e.GetFullMessage() << "\n" << expected;
      continue;
    }
    EXPECT_EQ(Write(static_cast<CObject&>(*copy)), expected) << "round " << round;
  }
  return compressed;
}

TEST(RecordRoundTrip, RandomObjectsOfEveryGroupSurviveEveryFormat) {
  Random r(1234);
  int compressed = 0;
  for (int round = 0; round < 40; ++round) {
    compressed += ExpectRoundTrips(*RandomSeq(r), SeqRoot, "seq", round);
    compressed += ExpectRoundTrips(*RandomChoice(r), ChoiceRoot, "choice", round);
    compressed += ExpectRoundTrips(*RandomAll(r), AllRoot, "all", round);
  }
  // Sequence objects are always large enough to shrink.
  EXPECT_GE(compressed, 80);
}

}  // namespace
