// From the schema model to the binding model: which classes and enumerations
// exist, what their members are, and every C++ name.
#include <algorithm>
#include <cctype>
#include <functional>
#include <set>

#include "Binding.h"
#include "Names.h"

namespace koxml::generate {

namespace {

constexpr int kWsPreserve = 1, kWsReplace = 2, kWsCollapse = 3;

struct Builtin {
  const char* name;
  int itemType;
  int whitespace;
  const char* pattern;
  const char* minInclusive;
  const char* maxInclusive;
};

// Every built-in simple type, with the kind that holds it and the facets its
// derivation implies.
const Builtin kBuiltins[] = {
    {"string", 23, kWsPreserve, nullptr, nullptr, nullptr},
    {"anySimpleType", 23, kWsPreserve, nullptr, nullptr, nullptr},
    {"normalizedString", 23, kWsReplace, nullptr, nullptr, nullptr},
    {"token", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"language", 23, kWsCollapse, "[a-zA-Z]{1,8}(-[a-zA-Z0-9]{1,8})*", nullptr, nullptr},
    {"Name", 23, kWsCollapse, "\\i\\c*", nullptr, nullptr},
    {"NCName", 23, kWsCollapse, "[^:\\s]+", nullptr, nullptr},
    {"ID", 23, kWsCollapse, "[^:\\s]+", nullptr, nullptr},
    {"IDREF", 23, kWsCollapse, "[^:\\s]+", nullptr, nullptr},
    {"ENTITY", 23, kWsCollapse, "[^:\\s]+", nullptr, nullptr},
    {"NMTOKEN", 23, kWsCollapse, "\\c+", nullptr, nullptr},
    {"IDREFS", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"ENTITIES", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"NMTOKENS", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"anyURI", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"QName", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"NOTATION", 23, kWsCollapse, nullptr, nullptr, nullptr},
    {"boolean", 24, kWsCollapse, nullptr, nullptr, nullptr},
    {"decimal", 25, kWsCollapse, nullptr, nullptr, nullptr},
    {"integer", 26, kWsCollapse, nullptr, nullptr, nullptr},
    {"nonNegativeInteger", 26, kWsCollapse, nullptr, "0", nullptr},
    {"positiveInteger", 26, kWsCollapse, nullptr, "1", nullptr},
    {"nonPositiveInteger", 26, kWsCollapse, nullptr, nullptr, "0"},
    {"negativeInteger", 26, kWsCollapse, nullptr, nullptr, "-1"},
    {"long", 6, kWsCollapse, nullptr, nullptr, nullptr},
    {"int", 5, kWsCollapse, nullptr, nullptr, nullptr},
    {"short", 4, kWsCollapse, nullptr, nullptr, nullptr},
    {"byte", 3, kWsCollapse, nullptr, nullptr, nullptr},
    {"unsignedLong", 10, kWsCollapse, nullptr, nullptr, nullptr},
    {"unsignedInt", 9, kWsCollapse, nullptr, nullptr, nullptr},
    {"unsignedShort", 8, kWsCollapse, nullptr, nullptr, nullptr},
    {"unsignedByte", 7, kWsCollapse, nullptr, nullptr, nullptr},
    {"float", 11, kWsCollapse, nullptr, nullptr, nullptr},
    {"double", 12, kWsCollapse, nullptr, nullptr, nullptr},
    {"duration", 13, kWsCollapse, nullptr, nullptr, nullptr},
    {"dateTime", 20, kWsCollapse, nullptr, nullptr, nullptr},
    {"date", 19, kWsCollapse, nullptr, nullptr, nullptr},
    {"time", 21, kWsCollapse, nullptr, nullptr, nullptr},
    {"gYearMonth", 14, kWsCollapse, nullptr, nullptr, nullptr},
    {"gMonthDay", 15, kWsCollapse, nullptr, nullptr, nullptr},
    {"gYear", 16, kWsCollapse, nullptr, nullptr, nullptr},
    {"gMonth", 17, kWsCollapse, nullptr, nullptr, nullptr},
    {"gDay", 18, kWsCollapse, nullptr, nullptr, nullptr},
    {"hexBinary", 1, kWsCollapse, nullptr, nullptr, nullptr},
    {"base64Binary", 2, kWsCollapse, nullptr, nullptr, nullptr},
};

const Builtin* FindBuiltin(const QName& q) {
  if (q.ns != kXsdNamespace) return nullptr;
  for (const Builtin& b : kBuiltins)
    if (q.name == b.name) return &b;
  return nullptr;
}

bool IsAnyType(const QName& q) { return q.ns == kXsdNamespace && q.name == "anyType"; }

class Mapper {
 public:
  Mapper(const SchemaSet& set, const MappingOptions& options, BindingModel& model)
      : m_set(set), m_options(options), m_model(model) {}

  void Run(const std::vector<std::string>& rootFiles) {
    // Names of the namespace and umbrella files are taken first.
    std::vector<std::string> umbrellaNames;
    for (const std::string& file : rootFiles) {
      std::string stem = file.substr(file.rfind('/') == std::string::npos ? 0 : file.rfind('/') + 1);
      stem = stem.substr(0, stem.find('.'));
      std::string name = UpperCamel(stem) + "Binding";
      for (int n = 2; m_names.Taken(name); ++n) name = UpperCamel(stem) + std::to_string(n) + "Binding";
      m_names.Reserve(name);
      umbrellaNames.push_back(name + ".h");
    }
    for (const auto& doc : m_set.documents) NamespaceFor(doc->targetNamespace);
    std::vector<QName> elements;
    if (m_options.roots.empty()) {
      elements = m_set.elementOrder;
    } else {
      for (const std::string& root : m_options.roots) {
        bool found = false;
        for (const QName& q : m_set.elementOrder)
          if (q.name == root || q.ToString() == root) {
            elements.push_back(q);
            found = true;
          }
        if (!found) throw SchemaError(Location{"--root", 0}, "no global element named '" + root + "'");
      }
    }
    for (const QName& q : elements) GlobalElement(q);
    if (m_options.roots.empty()) {
      for (const QName& q : m_set.complexTypeOrder)
        if (q.name.find('~') == std::string::npos) ClassForType(q, Location{});
      for (const QName& q : m_set.simpleTypeOrder) {
        const SimpleType* t = m_set.simpleTypes.at(q).get();
        if (!t->facets.enumerations.empty()) Simple(q, t->where, "");
      }
    }
    // Content is mapped breadth first, so that classes found on the way are
    // filled too.
    for (size_t i = 0; i < m_model.classes.size(); ++i) Fill(*m_model.classes[i]);
    // Umbrella headers per root schema file.
    for (size_t f = 0; f < rootFiles.size(); ++f) {
      const std::string& file = rootFiles[f];
      std::vector<std::string> headers;
      for (const auto& ns : m_model.namespaces)
        if (!ns->classes.empty() || !ns->enums.empty()) headers.push_back(ns->fileBase + "Namespace.h");
      for (const auto& e : m_model.enums) headers.push_back(e->cxxName + ".h");
      for (const auto& c : m_model.classes)
        if (c->rootFile == file || rootFiles.size() == 1) headers.push_back(c->fileBase + ".h");
      std::sort(headers.begin(), headers.end());
      headers.erase(std::unique(headers.begin(), headers.end()), headers.end());
      m_model.umbrellas.emplace_back(umbrellaNames[f], headers);
    }
    for (const auto& note : m_set.notes) m_model.losses.push_back(Loss{note.first, note.second});
  }

 private:
  // --- namespaces --------------------------------------------------------------
  NamespaceModel* NamespaceFor(const std::string& uri) {
    for (auto& ns : m_model.namespaces)
      if (ns->uri == uri) return ns.get();
    auto ns = std::make_unique<NamespaceModel>();
    ns->uri = uri;
    auto mapped = m_options.namespaceMap.find(uri);
    ns->cxx = mapped != m_options.namespaceMap.end() ? mapped->second : CxxNamespaceFromUri(uri);
    // Two URIs must not share a C++ namespace unless the user says so.
    if (mapped == m_options.namespaceMap.end()) {
      std::string candidate = ns->cxx;
      for (int n = 2; std::any_of(m_model.namespaces.begin(), m_model.namespaces.end(),
                                  [&](const auto& o) { return o->cxx == candidate; });
           ++n)
        candidate = ns->cxx + std::to_string(n);
      ns->cxx = candidate;
    }
    std::string last = ns->cxx.substr(ns->cxx.rfind(':') == std::string::npos ? 0 : ns->cxx.rfind(':') + 1);
    std::string fileBase = UpperCamel(last);
    for (int n = 2; m_names.Taken(fileBase + "Namespace"); ++n) fileBase = UpperCamel(last) + std::to_string(n);
    ns->fileBase = fileBase;
    m_names.Reserve(fileBase + "Namespace");
    m_model.namespaces.push_back(std::move(ns));
    return m_model.namespaces.back().get();
  }

  std::string CxxNamespaceFromUri(const std::string& uri) {
    if (uri.empty()) return "nons";
    std::vector<std::string> parts;
    std::string part;
    for (char c : uri) {
      if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
        part += c;
      } else {
        if (!part.empty()) parts.push_back(part);
        part.clear();
      }
    }
    if (!part.empty()) parts.push_back(part);
    static const std::set<std::string> kSkip = {"http", "https", "urn", "www", "com", "org", "net", "xsd",
                                                "schema", "schemas", "ns"};
    for (auto it = parts.rbegin(); it != parts.rend(); ++it) {
      const std::string& p = *it;
      bool digits = std::all_of(p.begin(), p.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
      if (digits || kSkip.count(Lower(p))) continue;
      return Identifier(Lower(p));
    }
    return "ns";
  }

  // --- simple types -------------------------------------------------------------
  // The mapping of a named simple type (or built-in); `context` names an
  // enumeration of an anonymous type.
  SimpleMapping Simple(const QName& name, const Location& where, const std::string& context) {
    if (const Builtin* b = FindBuiltin(name)) return FromBuiltin(*b);
    if (IsAnyType(name)) return SimpleMapping{};
    auto cached = m_simpleCache.find(name);
    if (cached != m_simpleCache.end()) return cached->second;
    auto it = m_set.simpleTypes.find(name);
    if (it == m_set.simpleTypes.end()) {
      auto complex = m_set.complexTypes.find(name);
      if (complex != m_set.complexTypes.end() && complex->second->content == ComplexType::Content::Simple)
        return SimpleOfComplex(*complex->second, where);
      throw SchemaError(where, "unknown simple type '" + name.ToString() + "'");
    }
    if (m_simpleBusy.count(name)) throw SchemaError(where, "circular definition of type '" + name.ToString() + "'");
    m_simpleBusy.insert(name);
    SimpleMapping mapping = SimpleOf(*it->second, context.empty() ? name.name : context);
    m_simpleBusy.erase(name);
    m_simpleCache[name] = mapping;
    return mapping;
  }

  static SimpleMapping FromBuiltin(const Builtin& b) {
    SimpleMapping m;
    m.itemType = b.itemType;
    m.whitespace = b.whitespace;
    if (b.pattern) m.restrictions.pattern = b.pattern;
    if (b.minInclusive) m.restrictions.minInclusive = b.minInclusive;
    if (b.maxInclusive) m.restrictions.maxInclusive = b.maxInclusive;
    return m;
  }

  SimpleMapping SimpleOfComplex(const ComplexType& t, const Location& where) {
    if (t.simpleRestriction) return SimpleOf(*t.simpleRestriction, t.name.name);
    return Simple(t.base, where, t.name.name);
  }

  // One derivation step on top of its base.
  SimpleMapping SimpleOf(const SimpleType& t, const std::string& enumName) {
    if (t.variety != SimpleType::Variety::Restriction) {
      Lose(t.where, std::string(t.variety == SimpleType::Variety::List ? "xs:list" : "xs:union") +
                        " is held as a string; its items are not checked");
      SimpleMapping m;
      m.whitespace = kWsCollapse;
      return m;
    }
    SimpleMapping m = t.anonymousBase ? SimpleOf(*t.anonymousBase, enumName) : Simple(t.base, t.where, enumName);
    const Facets& f = t.facets;
    Restrictions& r = m.restrictions;
    if (!f.patterns.empty()) {
      if (!r.pattern.empty() && !m.enumeration)
        Lose(f.where, "pattern of the base type is replaced by this step's pattern (the run time holds one)");
      if (f.patterns.size() == 1) {
        r.pattern = f.patterns[0];
      } else {
        std::string joined;
        for (const std::string& p : f.patterns) joined += (joined.empty() ? "(" : "|(") + p + ")";
        r.pattern = joined;
      }
    }
    if (f.minInclusive) r.minInclusive = *f.minInclusive, r.minExclusive.clear();
    if (f.maxInclusive) r.maxInclusive = *f.maxInclusive, r.maxExclusive.clear();
    if (f.minExclusive) r.minExclusive = *f.minExclusive, r.minInclusive.clear();
    if (f.maxExclusive) r.maxExclusive = *f.maxExclusive, r.maxInclusive.clear();
    if (f.length) r.length = *f.length;
    if (f.minLength) r.minLength = *f.minLength;
    if (f.maxLength) r.maxLength = *f.maxLength;
    if (f.whiteSpace) {
      m.whitespace = *f.whiteSpace == "preserve" ? kWsPreserve : *f.whiteSpace == "replace" ? kWsReplace : kWsCollapse;
    }
    if (f.totalDigits || f.fractionDigits)
      Lose(f.where, "totalDigits and fractionDigits are not checked");
    if ((r.length >= 0 || r.minLength >= 0 || r.maxLength >= 0) && m.itemType != 23 && m.itemType != 1 &&
        m.itemType != 2) {
      Lose(f.where, "length facets apply to strings and binary data only here; ignored");
      r.length = r.minLength = r.maxLength = -1;
    }
    if (!f.enumerations.empty()) {
      auto e = std::make_unique<EnumModel>();
      const std::string base = enumName.empty() ? "Enumeration" : enumName;
      e->cxxName = m_names.Unique(UpperCamel(base), {"Type", "Enum"});
      e->ns = NamespaceFor(t.name.empty() ? m_currentNamespace : t.name.ns);
      e->origin = t.name.empty() ? "anonymous simple type of " + enumName : "simple type " + t.name.name;
      e->values = f.enumerations;
      e->collapse = m.whitespace == kWsCollapse;
      std::set<std::string> used;
      for (const std::string& v : e->values) {
        std::string id = EnumIdentifier(v);
        std::string candidate = id;
        for (int n = 2; used.count(Lower(candidate)); ++n) candidate = id + "_" + std::to_string(n);
        used.insert(Lower(candidate));
        e->identifiers.push_back(candidate);
      }
      m.enumeration = e.get();
      e->ns->enums.push_back(e.get());
      m_model.enums.push_back(std::move(e));
    }
    return m;
  }

  // --- classes -----------------------------------------------------------------
  ClassModel* NewClass(const std::string& wanted, const std::string& nsUri, const std::string& origin) {
    auto c = std::make_unique<ClassModel>();
    const std::string base = m_names.Unique(UpperCamel(wanted), {"Type", "Class"});
    c->cxxName = "C" + base;
    c->fileBase = base;
    c->ns = NamespaceFor(nsUri);
    c->origin = origin;
    c->rootFile = m_currentRoot;
    c->ns->classes.push_back(c.get());
    m_model.classes.push_back(std::move(c));
    return m_model.classes.back().get();
  }

  static std::string StripTypeSuffix(const std::string& name) {
    if (name.size() > 4 && name.compare(name.size() - 4, 4, "Type") == 0) return name.substr(0, name.size() - 4);
    if (name.size() > 5 && name.compare(name.size() - 5, 5, "_type") == 0) return name.substr(0, name.size() - 5);
    return name;
  }

  ClassModel* ClassForType(const QName& name, const Location& where) {
    auto known = m_typeClasses.find(name);
    if (known != m_typeClasses.end()) return known->second;
    auto it = m_set.complexTypes.find(name);
    if (it == m_set.complexTypes.end()) throw SchemaError(where, "unknown complex type '" + name.ToString() + "'");
    const ComplexType& t = *it->second;
    auto root = m_set.typeRoot.find(name);
    if (root != m_set.typeRoot.end()) m_currentRoot = root->second;
    ClassModel* c = NewClass(StripTypeSuffix(name.name), name.ns, "complex type " + name.name);
    c->typeName = name.name;
    c->typeNamespace = name.ns;
    c->defaultElement = name.name;
    c->elementNamespace = name.ns;
    c->source = &t;
    c->sourceName = name;
    c->isAbstract = t.isAbstract;
    m_typeClasses[name] = c;
    return c;
  }

  void GlobalElement(const QName& q) {
    const ElementDecl& d = *m_set.elements.at(q);
    m_currentRoot = m_set.elementRoot.at(q);
    m_currentNamespace = q.ns;
    if (d.anonymousComplex) {
      ClassModel* c = NewClass(q.name, q.ns, "global element " + q.name);
      c->typeName = q.name;
      c->typeNamespace = q.ns;
      c->defaultElement = q.name;
      c->elementNamespace = q.ns;
      c->source = d.anonymousComplex.get();
      c->nillable = d.nillable;
      m_elementClasses[q] = c;
      m_anonymous[d.anonymousComplex.get()] = c;
    } else if (!d.type.empty() && m_set.complexTypes.count(d.type)) {
      ClassModel* c = ClassForType(d.type, d.where);
      if (!m_defaultTaken.count(c)) {
        c->defaultElement = q.name;
        c->elementNamespace = q.ns;
        m_defaultTaken.insert(c);
      }
      if (d.nillable) c->nillable = true;
      m_elementClasses[q] = c;
    } else if (!d.type.empty() && IsAnyType(d.type)) {
      Lose(d.where, "global element '" + q.name + "' of type xs:anyType has no class; use CElement");
    } else {
      // A document whose root holds a simple value.
      ClassModel* c = NewClass(q.name, q.ns, "global element " + q.name);
      c->typeName = q.name;
      c->typeNamespace = q.ns;
      c->defaultElement = q.name;
      c->elementNamespace = q.ns;
      c->nillable = d.nillable;
      c->simpleContent = d.anonymousSimple ? SimpleOf(*d.anonymousSimple, q.name)
                         : d.type.empty()  ? SimpleMapping{}
                                           : Simple(d.type, d.where, "");
      c->mapped = true;
      m_elementClasses[q] = c;
    }
  }

  void Fill(ClassModel& c) {
    if (c.mapped || !c.source) return;
    c.mapped = true;
    const ComplexType& t = *c.source;
    m_currentNamespace = c.typeNamespace;
    ClassModel* base = nullptr;
    if (t.derivation != ComplexType::Derivation::None && m_set.complexTypes.count(t.base)) {
      base = ClassForType(t.base, t.where);
      Fill(*base);
      c.base = base;
      base->derived.push_back(&c);
      c.writeTypeAttribute = true;
      for (const Member& m : base->elements) c.inherited.insert(Lower(m.property));
      for (const Member& m : base->attributes) c.inherited.insert(Lower(m.property));
      c.inherited.insert(Lower(base->valueProperty));
      c.inherited.insert(base->inherited.begin(), base->inherited.end());
      c.groupType = base->groupType;
      c.simpleContent = base->simpleContent;
    }
    if (t.mixed) Lose(t.where, "mixed content: text between child elements is not kept");
    if (t.content == ComplexType::Content::Simple) {
      if (t.simpleRestriction) {
        c.simpleContent = SimpleOf(*t.simpleRestriction, c.typeName.empty() ? c.defaultElement : c.typeName);
      } else if (!base) {
        c.simpleContent = Simple(t.base, t.where, c.typeName);
      }
    } else if (t.derivation == ComplexType::Derivation::Restriction && base) {
      Lose(t.where, "restriction of complex type '" + t.base.name + "' is read and written with the base's content");
    } else if (t.particle) {
      const bool baseHasElements = base && HasElements(*base);
      if (baseHasElements) {
        // An extension follows the base's content with its own.
        const Particle* own = t.particle.get();
        const ModelGroup* group = GroupOf(*own);
        if (base->groupType == 0 && own->minOccurs == 1 && own->maxOccurs == 1 &&
            (own->kind != Particle::Kind::Group && own->kind != Particle::Kind::GroupRef
                 ? true
                 : group->kind == ModelGroup::Kind::Sequence)) {
          if (group && (own->kind == Particle::Kind::Group || own->kind == Particle::Kind::GroupRef))
            for (const Particle& p : group->particles) AddParticle(c, p, ModelGroup::Kind::Sequence);
          else
            AddParticle(c, *own, ModelGroup::Kind::Sequence);
        } else if (base->groupType == 0) {
          AddParticle(c, *own, ModelGroup::Kind::Sequence);
        } else {
          Lose(t.where, "extension of a choice or all group: the added content is read as untyped elements");
          AddUntypedRest(c, t.where);
        }
      } else {
        TopParticle(c, *t.particle);
      }
    }
    AddAttributes(c, t.attributes, t.derivation == ComplexType::Derivation::Restriction && base);
  }

  bool HasElements(const ClassModel& c) const {
    for (const ClassModel* k = &c; k; k = k->base)
      if (!k->elements.empty()) return true;
    return false;
  }

  const ModelGroup* GroupOf(const Particle& p) {
    if (p.kind == Particle::Kind::Group) return p.group.get();
    if (p.kind == Particle::Kind::GroupRef) {
      auto it = m_set.groups.find(p.ref);
      if (it == m_set.groups.end()) throw SchemaError(p.where, "unknown group '" + p.ref.ToString() + "'");
      return it->second->group.get();
    }
    return nullptr;
  }

  void TopParticle(ClassModel& c, const Particle& p) {
    const ModelGroup* group = GroupOf(p);
    if (group && p.minOccurs == 1 && p.maxOccurs == 1) {
      c.groupType = static_cast<int>(group->kind);
      if (group->kind == ModelGroup::Kind::All && group->particles.size() > 1)
        Lose(group->where, "xs:all: elements are read in any order and written in declaration order");
      for (const Particle& q : group->particles) AddParticle(c, q, group->kind);
    } else {
      c.groupType = 0;
      AddParticle(c, p, ModelGroup::Kind::Sequence);
    }
  }

  static Occurrence OccurrenceOf(int minOccurs, int maxOccurs) {
    if (maxOccurs == 1) return minOccurs == 0 ? Occurrence::Optional : Occurrence::Mandatory;
    return Occurrence::Collection;
  }

  // Whether the particle can match no element at all.
  bool Emptiable(const Particle& p, int depth = 0) {
    if (p.minOccurs == 0) return true;
    if (depth > 64) return false;
    if (p.kind == Particle::Kind::Element || p.kind == Particle::Kind::Any) return false;
    const ModelGroup* g = GroupOf(p);
    if (!g || g->particles.empty()) return true;
    if (g->kind == ModelGroup::Kind::Choice) {
      for (const Particle& q : g->particles)
        if (Emptiable(q, depth + 1)) return true;
      return false;
    }
    for (const Particle& q : g->particles)
      if (!Emptiable(q, depth + 1)) return false;
    return true;
  }

  void AddParticle(ClassModel& c, const Particle& p, ModelGroup::Kind parentKind) {
    switch (p.kind) {
      case Particle::Kind::Element:
        AddElement(c, p, parentKind);
        return;
      case Particle::Kind::Any: {
        Member m;
        m.kind = MemberKind::Untyped;
        m.xmlName = "AnyElement";
        m.xmlNamespace = "";
        m.wildcard = p.any.namespaces;
        m.minOccurs = p.minOccurs;
        m.maxOccurs = p.maxOccurs;
        m.occurrence = OccurrenceOf(p.minOccurs, p.maxOccurs);
        if (parentKind == ModelGroup::Kind::Choice && m.occurrence == Occurrence::Mandatory)
          m.occurrence = Occurrence::Optional;
        m.property = PropertyName(c, m.occurrence == Occurrence::Collection ? "AnyElements" : "AnyElement");
        if (p.any.processContents != "skip" && p.any.processContents != "lax")
          Lose(p.where, "xs:any content is kept as untyped elements and not validated");
        c.elements.push_back(std::move(m));
        return;
      }
      case Particle::Kind::Group:
      case Particle::Kind::GroupRef: {
        const ModelGroup* g = GroupOf(p);
        if (g->particles.empty()) return;
        if (parentKind == ModelGroup::Kind::Sequence && g->kind == ModelGroup::Kind::Sequence && p.minOccurs == 1 &&
            p.maxOccurs == 1) {
          for (const Particle& q : g->particles) AddParticle(c, q, ModelGroup::Kind::Sequence);
          return;
        }
        // Its own class without an element: the order of its elements
        // survives in the owner's content.
        std::string name = p.kind == Particle::Kind::GroupRef ? p.ref.name
                           : g->kind == ModelGroup::Kind::Choice
                               ? "Choice"
                               : (g->kind == ModelGroup::Kind::All ? "All" : "Sequence");
        ClassModel* pseudo = NewClass(StripCxx(c.cxxName) + UpperCamel(name), c.ns->uri, "group in " + c.origin);
        pseudo->pseudo = true;
        pseudo->typeName = name;
        pseudo->typeNamespace = c.typeNamespace;
        pseudo->defaultElement = name;
        pseudo->elementNamespace = c.elementNamespace;
        pseudo->groupType = static_cast<int>(g->kind);
        pseudo->mapped = true;
        pseudo->rootFile = c.rootFile;
        for (const Particle& q : g->particles) AddParticle(*pseudo, q, g->kind);
        Member m;
        m.kind = MemberKind::Cls;
        m.cls = pseudo;
        m.xmlName = name;
        m.xmlNamespace = c.elementNamespace;
        m.minOccurs = p.minOccurs;
        m.maxOccurs = p.maxOccurs;
        m.occurrence = OccurrenceOf(p.minOccurs, p.maxOccurs);
        if (parentKind == ModelGroup::Kind::Choice && m.occurrence == Occurrence::Mandatory)
          m.occurrence = Occurrence::Optional;
        m.contentRequired = !Emptiable(p) && p.minOccurs > 0;
        if (m.occurrence == Occurrence::Collection) pseudo->needsCollection = true;
        m.property = PropertyName(c, m.occurrence == Occurrence::Collection ? Plural(UpperCamel(name)) : UpperCamel(name));
        c.elements.push_back(std::move(m));
        return;
      }
    }
  }

  void AddUntypedRest(ClassModel& c, const Location&) {
    Member m;
    m.kind = MemberKind::Untyped;
    m.occurrence = Occurrence::Collection;
    m.xmlName = "AnyElement";
    m.wildcard = "##any";
    m.minOccurs = 0;
    m.maxOccurs = kUnbounded;
    m.property = PropertyName(c, "ExtensionElements");
    c.elements.push_back(std::move(m));
  }

  // The global elements that may stand for `head` (its substitution group,
  // transitively), in declaration order.
  std::vector<const ElementDecl*> Substitutes(const QName& head) {
    std::vector<const ElementDecl*> out;
    std::set<QName> seen{head};
    std::vector<QName> pending{head};
    while (!pending.empty()) {
      const QName h = pending.front();
      pending.erase(pending.begin());
      for (const QName& q : m_set.elementOrder) {
        const ElementDecl* e = m_set.elements.at(q).get();
        if (e->substitutionGroup == h && seen.insert(q).second) {
          out.push_back(e);
          pending.push_back(q);
        }
      }
    }
    return out;
  }

  // A reference to the head of a substitution group becomes a choice
  // pseudo-element class over the head and its substitutes, so that whichever
  // element the document holds is read with its own type and written back
  // under its own name.
  void AddSubstitutionGroup(ClassModel& c, const Particle& p, const ElementDecl& head,
                            const std::vector<const ElementDecl*>& substitutes, ModelGroup::Kind parentKind) {
    ClassModel* pseudo = nullptr;
    auto known = m_substitutionClasses.find(head.name);
    if (known != m_substitutionClasses.end()) {
      pseudo = known->second;
    } else {
      pseudo = NewClass(head.name.name + "Substitution", head.name.ns, "substitution group of element " + head.name.name);
      m_substitutionClasses[head.name] = pseudo;
      pseudo->pseudo = true;
      pseudo->typeName = head.name.name;
      pseudo->typeNamespace = head.name.ns;
      pseudo->defaultElement = head.name.name;
      pseudo->elementNamespace = head.name.ns;
      pseudo->groupType = static_cast<int>(ModelGroup::Kind::Choice);
      pseudo->mapped = true;
      pseudo->rootFile = c.rootFile;
      std::vector<const ElementDecl*> members;
      if (!head.isAbstract) members.push_back(&head);
      for (const ElementDecl* e : substitutes)
        if (!e->isAbstract) members.push_back(e);
      for (const ElementDecl* e : members) {
        Particle alternative;
        alternative.where = e->where;
        alternative.element = std::make_unique<ElementDecl>();
        alternative.element->ref = e->name;
        alternative.element->where = e->where;
        m_inSubstitution = true;
        AddElement(*pseudo, alternative, ModelGroup::Kind::Choice);
        m_inSubstitution = false;
      }
    }
    Member m;
    m.kind = MemberKind::Cls;
    m.cls = pseudo;
    m.xmlName = head.name.name;
    m.xmlNamespace = head.name.ns;
    m.minOccurs = p.minOccurs;
    m.maxOccurs = p.maxOccurs;
    m.occurrence = OccurrenceOf(p.minOccurs, p.maxOccurs);
    if (parentKind == ModelGroup::Kind::Choice && m.occurrence == Occurrence::Mandatory)
      m.occurrence = Occurrence::Optional;
    m.contentRequired = p.minOccurs > 0;
    if (m.occurrence == Occurrence::Collection) pseudo->needsCollection = true;
    if (parentKind == ModelGroup::Kind::All)
      Lose(p.where, "substitution group of '" + head.name.name + "' in an all group: its elements are read in any order only as a whole");
    const std::string wanted = UpperCamel(head.name.name);
    m.property = PropertyName(c, m.occurrence == Occurrence::Collection ? Plural(wanted) : wanted);
    c.elements.push_back(std::move(m));
  }

  // Whether members of a complex type may hold another class: the type is
  // abstract or some type derives from it.
  bool Derivable(const QName& type) const {
    auto it = m_set.complexTypes.find(type);
    if (it == m_set.complexTypes.end()) return false;
    if (it->second->isAbstract) return true;
    for (const auto& [name, t] : m_set.complexTypes)
      if (t->base == type && t->derivation != ComplexType::Derivation::None) return true;
    return false;
  }

  // Classes for every type derived from `type`, so that the element factory
  // of its class can create them.
  void EnsureDerived(const QName& type, int depth = 0) {
    if (depth > 64) return;
    for (const QName& q : m_set.complexTypeOrder) {
      const ComplexType& t = *m_set.complexTypes.at(q);
      if (t.base == type && t.derivation != ComplexType::Derivation::None && q.name.find('~') == std::string::npos) {
        ClassForType(q, t.where);
        EnsureDerived(q, depth + 1);
      }
    }
  }

  void AddElement(ClassModel& c, const Particle& p, ModelGroup::Kind parentKind) {
    const ElementDecl* d = p.element.get();
    bool nillable = d->nillable;
    if (!d->ref.empty()) {
      auto it = m_set.elements.find(d->ref);
      if (it == m_set.elements.end()) throw SchemaError(p.where, "unknown element '" + d->ref.ToString() + "'");
      d = it->second.get();
      nillable = d->nillable;
      if (!m_inSubstitution) {
        const std::vector<const ElementDecl*> substitutes = Substitutes(d->name);
        if (!substitutes.empty()) return AddSubstitutionGroup(c, p, *d, substitutes, parentKind);
      }
    }
    Member m;
    m.xmlName = d->name.name;
    m.xmlNamespace = d->name.ns;
    m.minOccurs = p.minOccurs;
    m.maxOccurs = p.maxOccurs;
    m.occurrence = OccurrenceOf(p.minOccurs, p.maxOccurs);
    if (parentKind == ModelGroup::Kind::Choice && m.occurrence == Occurrence::Mandatory)
      m.occurrence = Occurrence::Optional;
    m.nillable = nillable;
    if (d->defaultValue || d->fixedValue)
      Lose(d->where, "default or fixed value of element '" + d->name.name + "' is not applied");
    const std::string wanted = UpperCamel(d->name.name);
    if (d->anonymousComplex) {
      ClassModel* k = nullptr;
      auto known = m_anonymous.find(d->anonymousComplex.get());
      if (known != m_anonymous.end()) {
        k = known->second;
      } else {
        const std::string saved = m_currentNamespace;
        k = NewClass(m_names.Taken(wanted) ? StripCxx(c.cxxName) + wanted : wanted, c.ns->uri,
                     "element " + d->name.name + " of " + c.origin);
        m_currentNamespace = saved;
        k->typeName = d->name.name;
        k->typeNamespace = c.typeNamespace;
        k->defaultElement = d->name.name;
        k->elementNamespace = d->name.ns;
        k->source = d->anonymousComplex.get();
        k->rootFile = c.rootFile;
        m_anonymous[d->anonymousComplex.get()] = k;
      }
      m.kind = MemberKind::Cls;
      m.cls = k;
    } else if (d->anonymousSimple) {
      m.kind = MemberKind::Prim;
      m.simple = SimpleOf(*d->anonymousSimple, d->name.name);
    } else if (d->type.empty() || IsAnyType(d->type)) {
      m.kind = MemberKind::Untyped;
      m.wildcard = d->name.ns.empty() ? "##local" : d->name.ns;
    } else if (m_set.complexTypes.count(d->type)) {
      ClassModel* k = ClassForType(d->type, p.where);
      if (!m_defaultTaken.count(k)) {
        k->defaultElement = d->name.name;
        m_defaultTaken.insert(k);
      }
      m.kind = MemberKind::Cls;
      m.cls = k;
      if (nillable) k->nillable = true;
      if (Derivable(d->type)) {
        EnsureDerived(d->type);
        if (parentKind == ModelGroup::Kind::All) {
          // The run time cannot read derivable members of an all group.
          Lose(p.where, "member '" + d->name.name + "' of derivable type '" + d->type.name +
                            "' in an all group is read as the declared type; xsi:type naming a derived type is not resolved");
        } else {
          m.kind = MemberKind::AbsCls;
          k->elementFactory = true;
        }
      }
    } else {
      m.kind = MemberKind::Prim;
      m.simple = Simple(d->type, p.where, "");
    }
    if (m.kind == MemberKind::Prim && m.simple.enumeration) m.kind = MemberKind::Enum;
    if ((m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls) && m.occurrence == Occurrence::Collection)
      m.cls->needsCollection = true;
    if ((m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls) && m.nillable) m.cls->nillable = true;
    if (m.kind == MemberKind::Untyped && m.nillable) {
      Lose(d->where, "nillable untyped element '" + d->name.name + "': xsi:nil is kept as an attribute");
      m.nillable = false;
    }
    m.property = PropertyName(c, m.occurrence == Occurrence::Collection ? Plural(wanted) : wanted);
    c.elements.push_back(std::move(m));
  }

  void AddAttributes(ClassModel& c, const AttributeSet& set, bool restriction) {
    std::vector<const AttributeDecl*> list;
    std::optional<Wildcard> any = set.anyAttribute;
    std::function<void(const AttributeSet&, int)> collect = [&](const AttributeSet& s, int depth) {
      for (const AttributeDecl& a : s.attributes) list.push_back(&a);
      for (const auto& [ref, where] : s.groupRefs) {
        auto it = m_set.attributeGroups.find(ref);
        if (it == m_set.attributeGroups.end())
          throw SchemaError(where, "unknown attribute group '" + ref.ToString() + "'");
        if (depth > 32) throw SchemaError(where, "attribute groups nest too deeply");
        collect(it->second->attributes, depth + 1);
        if (it->second->attributes.anyAttribute && !any) any = it->second->attributes.anyAttribute;
      }
    };
    collect(set, 0);
    for (const AttributeDecl* a : list) {
      const AttributeDecl* decl = a;
      if (!a->ref.empty()) {
        auto it = m_set.attributes.find(a->ref);
        if (it == m_set.attributes.end()) {
          if (a->ref.ns == "http://www.w3.org/XML/1998/namespace") {
            static AttributeDecl xmlAttribute;
            xmlAttribute.name = a->ref;
            xmlAttribute.type = QName{kXsdNamespace, "string"};
            decl = &xmlAttribute;
          } else {
            throw SchemaError(a->where, "unknown attribute '" + a->ref.ToString() + "'");
          }
        } else {
          decl = it->second.get();
        }
      }
      if (a->use == "prohibited") continue;
      if (restriction && HasAttribute(c, decl->name)) continue;
      if (HasAttribute(c, decl->name)) continue;
      Member m;
      m.xmlName = decl->name.name;
      m.xmlNamespace = decl->name.ns;
      m.occurrence = a->use == "required" ? Occurrence::Mandatory : Occurrence::Optional;
      const auto& fixed = a->fixedValue ? a->fixedValue : decl->fixedValue;
      const auto& deflt = a->defaultValue ? a->defaultValue : decl->defaultValue;
      if (fixed) {
        m.defaultValue = fixed;
        m.fixedValue = true;
      } else if (deflt) {
        m.defaultValue = deflt;
      }
      if (decl->anonymousSimple) m.simple = SimpleOf(*decl->anonymousSimple, decl->name.name);
      else if (!decl->type.empty()) m.simple = Simple(decl->type, decl->where, "");
      m.kind = m.simple.enumeration ? MemberKind::Enum : MemberKind::Prim;
      m.property = PropertyName(c, UpperCamel(decl->name.name));
      c.attributes.push_back(std::move(m));
    }
    if (any && !restriction) {
      bool inherited = false;
      for (const ClassModel* k = c.base; k; k = k->base)
        for (const Member& m : k->attributes)
          if (m.kind == MemberKind::AnyAttribute) inherited = true;
      if (!inherited) {
        Member m;
        m.kind = MemberKind::AnyAttribute;
        m.occurrence = Occurrence::Optional;
        m.xmlName = "AnyAttribute";
        m.wildcard = any->namespaces;
        m.property = PropertyName(c, "AnyAttributes");
        c.attributes.push_back(std::move(m));
      }
    }
  }

  static bool HasAttribute(const ClassModel& c, const QName& name) {
    for (const ClassModel* k = &c; k; k = k->base)
      for (const Member& m : k->attributes)
        if (m.kind != MemberKind::AnyAttribute && m.xmlName == name.name && m.xmlNamespace == name.ns) return true;
    return false;
  }

  // A property name unique in the class and its bases, that no accessor of
  // the library's base classes already uses.
  std::string PropertyName(ClassModel& c, const std::string& wanted) {
    static const std::set<std::string> kReserved = {
        "base",      "classattributeinfo", "classelementinfo", "classelementinfocount", "classinfo", "elementname",
        "namespace", "targetnamespace",    "nil",              "propertycount",         "records",   ""};
    std::string base = wanted.empty() ? "Member" : wanted;
    if (kReserved.count(Lower(base))) base += "Value";
    std::string candidate = base;
    for (int n = 2; c.inherited.count(Lower(candidate)) || UsedInClass(c, candidate); ++n)
      candidate = base + std::to_string(n);
    return candidate;
  }

  static bool UsedInClass(const ClassModel& c, const std::string& name) {
    for (const Member& m : c.elements)
      if (Lower(m.property) == Lower(name)) return true;
    for (const Member& m : c.attributes)
      if (Lower(m.property) == Lower(name)) return true;
    return c.simpleContent && Lower(name) == Lower(c.valueProperty);
  }

  static std::string StripCxx(const std::string& cxx) { return cxx.substr(1); }

  void Lose(const Location& where, const std::string& text) {
    for (const Loss& l : m_model.losses)
      if (l.where.file == where.file && l.where.line == where.line && l.text == text) return;
    m_model.losses.push_back(Loss{where, text});
  }

 private:
  const SchemaSet& m_set;
  const MappingOptions& m_options;
  BindingModel& m_model;
  NameSet m_names;
  std::map<QName, SimpleMapping> m_simpleCache;
  std::set<QName> m_simpleBusy;
  std::map<QName, ClassModel*> m_typeClasses;
  std::map<QName, ClassModel*> m_elementClasses;
  std::map<const ComplexType*, ClassModel*> m_anonymous;
  std::set<const ClassModel*> m_defaultTaken;
  std::map<QName, ClassModel*> m_substitutionClasses;
  bool m_inSubstitution = false;
  std::string m_currentRoot;
  std::string m_currentNamespace;
};

}  // namespace

void MapSchemas(const SchemaSet& set, const std::vector<std::string>& rootFiles, const MappingOptions& options,
                BindingModel& model) {
  Mapper mapper(set, options, model);
  mapper.Run(rootFiles);
}

}  // namespace koxml::generate
