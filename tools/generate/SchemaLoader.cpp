// Builds the schema model from schema files, read with the library's own
// document reader. Locations are resolved against the including file; the
// network is never used.
#include <KoXmlLib10.h>

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <unordered_map>

#include "Schema.h"
#include "SourceScan.h"

using KoXmlLib10::CKoException;
using KoXmlLib10::CXmlAttribute;
using KoXmlLib10::CXmlDocument;
using KoXmlLib10::CXmlElement;

namespace koxml::generate {

namespace {

using Scope = std::map<std::string, std::string>;

struct NodeInfo {
  int line = 0;
  std::shared_ptr<const Scope> scope;
};

bool IsLocalFile(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string Directory(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// A path without "." and "dir/.." steps, so that one file reached by two
// routes is loaded once.
std::string Normalize(const std::string& path) {
  std::vector<std::string> parts;
  std::stringstream in(path);
  std::string part;
  const bool absolute = !path.empty() && path[0] == '/';
  while (std::getline(in, part, '/')) {
    if (part.empty() || part == ".") continue;
    if (part == ".." && !parts.empty() && parts.back() != "..") parts.pop_back();
    else parts.push_back(part);
  }
  std::string out = absolute ? "/" : "";
  for (size_t i = 0; i < parts.size(); ++i) out += (i ? "/" : "") + parts[i];
  return out;
}

bool IsRemote(const std::string& location) {
  const size_t colon = location.find("://");
  return colon != std::string::npos && colon < 10;
}

class Loader {
 public:
  Loader(const LoadOptions& options, SchemaSet& set) : m_options(options), m_set(set) {}

  void LoadRoot(const std::string& file) {
    m_root = file;
    Load(file, nullptr, Location{file, 0}, false);
  }

 private:
  struct Document {
    std::string path;
    std::string targetNamespace;  // effective (the includer's for a chameleon)
    bool chameleon = false;
    bool elementsQualified = false;
    bool attributesQualified = false;
    bool aligned = true;  // the source scan matched the tree
    std::unordered_map<const CXmlElement*, NodeInfo> nodes;
    // Redefinitions in progress: name -> the name of the original.
    std::map<QName, QName> redefined;
  };

  // --- reading files ---------------------------------------------------------
  void Load(const std::string& path, const std::string* chameleonNamespace, const Location& from, bool redefine,
            const CXmlElement* redefineElement = nullptr, Document* includer = nullptr) {
    const std::string normalized = Normalize(path);
    const std::string key = normalized + "\n" + (chameleonNamespace ? *chameleonNamespace : std::string("\x01"));
    if (!redefine && !m_loaded.insert(key).second) return;
    std::ifstream in(normalized, std::ios::binary);
    if (!in) throw SchemaError(from, "cannot read schema '" + path + "'");
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    CXmlDocument xml;
    try {
      std::vector<unsigned char> bytes(text.begin(), text.end());
      xml.LoadXmlStream(bytes.data(), static_cast<unsigned long>(bytes.size()));
    } catch (const CKoException& e) {
      std::string message = e.GetFullMessage();
      for (char& c : message)
        if (c == '\n') c = ' ';
      throw SchemaError(Location{normalized, 0}, message);
    }
    CXmlElement* root = xml.GetDocumentElement();
    if (!root || root->GetLocalName() != "schema" || root->GetNamespaceURI() != kXsdNamespace)
      throw SchemaError(Location{normalized, 1}, "not an XML Schema document (no xs:schema root element)");

    Document doc;
    doc.path = normalized;
    Index(text, root, doc);
    const std::string declared = Attr(root, "targetNamespace").value_or("");
    if (chameleonNamespace && declared.empty() && !chameleonNamespace->empty()) {
      doc.chameleon = true;
      doc.targetNamespace = *chameleonNamespace;
    } else {
      doc.targetNamespace = declared;
      if (chameleonNamespace && *chameleonNamespace != declared)
        throw SchemaError(from, "included schema '" + path + "' has targetNamespace '" + declared +
                                    "' instead of '" + *chameleonNamespace + "'");
    }
    doc.elementsQualified = Attr(root, "elementFormDefault").value_or("unqualified") == "qualified";
    doc.attributesQualified = Attr(root, "attributeFormDefault").value_or("unqualified") == "qualified";
    auto model = std::make_unique<SchemaDocument>();
    model->path = normalized;
    model->targetNamespace = doc.targetNamespace;
    model->elementsQualified = doc.elementsQualified;
    model->attributesQualified = doc.attributesQualified;
    m_set.documents.push_back(std::move(model));

    // Redefinitions first record which names they replace, so that the
    // included originals are stored under another name.
    if (redefine && redefineElement && includer) {
      for (CXmlElement* child = redefineElement->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
        const std::string name = Attr(child, "name").value_or("");
        if (!name.empty()) {
          const QName q{doc.targetNamespace, name};
          m_renamed[q] = QName{q.ns, name + "~original"};
        }
      }
    }
    for (CXmlElement* child = root->GetFirstElement(); child; child = child->GetNextSiblingElement())
      TopLevel(child, doc);
    if (redefine && redefineElement && includer) {
      for (CXmlElement* child = redefineElement->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
        const std::string name = Attr(child, "name").value_or("");
        if (!name.empty()) m_renamed.erase(QName{doc.targetNamespace, name});
      }
    }
  }

  void Index(const std::string& text, const CXmlElement* root, Document& doc) {
    std::vector<StartTag> tags;
    try {
      tags = ScanStartTags(text);
    } catch (const std::exception&) {
      tags.clear();
    }
    std::vector<const CXmlElement*> order;
    std::function<void(const CXmlElement*)> walk = [&](const CXmlElement* e) {
      order.push_back(e);
      for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) walk(c);
    };
    walk(root);
    const bool aligned = tags.size() == order.size();
    // Scopes along the tree: a child shares its parent's map unless it declares.
    std::function<void(const CXmlElement*, std::shared_ptr<const Scope>, size_t&)> assign =
        [&](const CXmlElement* e, std::shared_ptr<const Scope> scope, size_t& index) {
          NodeInfo info;
          if (aligned) {
            const StartTag& tag = tags[index];
            info.line = tag.line;
            if (!tag.declarations.empty()) {
              auto own = std::make_shared<Scope>(*scope);
              for (const auto& [prefix, uri] : tag.declarations) (*own)[prefix] = uri;
              scope = own;
            }
          }
          info.scope = scope;
          doc.nodes[e] = info;
          ++index;
          for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) assign(c, scope, index);
        };
    size_t index = 0;
    auto initial = std::make_shared<Scope>();
    (*initial)["xml"] = "http://www.w3.org/XML/1998/namespace";
    assign(root, initial, index);
    doc.aligned = aligned;
  }

  // --- helpers ---------------------------------------------------------------
  static std::optional<std::string> Attr(const CXmlElement* e, const char* name) {
    for (const CXmlAttribute* a : e->GetAttributes())
      if (a->GetLocalName() == name && a->GetNamespaceURI().empty()) return a->GetValue();
    return std::nullopt;
  }

  Location Where(const CXmlElement* e, const Document& doc) const {
    auto it = doc.nodes.find(e);
    return Location{doc.path, it == doc.nodes.end() ? 0 : it->second.line};
  }

  static std::string Collapse(const std::string& s) {
    std::string out;
    bool space = false;
    for (char c : s) {
      if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
        space = !out.empty();
      } else {
        if (space) out += ' ';
        space = false;
        out += c;
      }
    }
    return out;
  }

  QName Resolve(const CXmlElement* e, const std::string& rawValue, const Document& doc) const {
    const std::string value = Collapse(rawValue);
    const size_t colon = value.find(':');
    const std::string prefix = colon == std::string::npos ? "" : value.substr(0, colon);
    const std::string local = colon == std::string::npos ? value : value.substr(colon + 1);
    std::string ns;
    auto it = doc.nodes.find(e);
    bool found = false;
    if (it != doc.nodes.end() && it->second.scope) {
      auto p = it->second.scope->find(prefix);
      if (p != it->second.scope->end()) {
        ns = p->second;
        found = true;
      }
    }
    if (!found && !prefix.empty()) {
      if (!doc.aligned) {
        // Without the source scan the document-wide map is the best guess.
        ns = e->GetOwnerDocument() ? e->GetOwnerDocument()->LookupNamespaceFromAlias(prefix.c_str()) : "";
      }
      if (ns.empty()) throw SchemaError(Where(e, doc), "undeclared prefix '" + prefix + "' in '" + value + "'");
    }
    if (doc.chameleon && ns.empty()) ns = doc.targetNamespace;
    QName q{ns, local};
    auto renamed = m_renamed.find(q);
    if (renamed != m_renamed.end() && m_inRedefineOf && *m_inRedefineOf == q) return renamed->second;
    return q;
  }

  static int Occurs(const std::optional<std::string>& value, int fallback, const Location& where) {
    if (!value) return fallback;
    const std::string v = Collapse(*value);
    if (v == "unbounded") return kUnbounded;
    char* end = nullptr;
    const long n = std::strtol(v.c_str(), &end, 10);
    if (v.empty() || *end || n < 0) throw SchemaError(where, "invalid occurrence count '" + v + "'");
    return n > 1000000 ? 1000000 : static_cast<int>(n);
  }

  static bool IsXsd(const CXmlElement* e, const char* local) {
    return e->GetNamespaceURI() == kXsdNamespace && e->GetLocalName() == local;
  }

  void Note(const Location& where, const std::string& text) { m_set.notes.emplace_back(where, text); }

  // The name a top-level definition is kept under: an original that a
  // redefinition replaces moves aside.
  QName StoredName(const QName& name) const {
    if (m_inRedefineOf) return name;
    auto it = m_renamed.find(name);
    return it == m_renamed.end() ? name : it->second;
  }

  // --- top level ------------------------------------------------------------
  void TopLevel(const CXmlElement* e, Document& doc) {
    if (e->GetNamespaceURI() != kXsdNamespace) return;
    const std::string& kind = e->GetLocalName();
    const Location where = Where(e, doc);
    if (kind == "include" || kind == "redefine") {
      const std::string location = Attr(e, "schemaLocation").value_or("");
      if (location.empty()) throw SchemaError(where, "xs:" + kind + " without schemaLocation");
      const std::string path = LocalPath(location, doc, where, doc.targetNamespace);
      if (kind == "include") {
        Load(path, &doc.targetNamespace, where, false);
      } else {
        Load(path, &doc.targetNamespace, where, true, e, &doc);
        // Then the redefinitions themselves, which may refer to the originals.
        for (const CXmlElement* child = e->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
          const std::string name = Attr(child, "name").value_or("");
          const QName q{doc.targetNamespace, name};
          m_renamed[q] = QName{q.ns, name + "~original"};
          m_inRedefineOf = &q;
          TopLevel(child, doc);
          m_inRedefineOf = nullptr;
          m_renamed.erase(q);
        }
      }
    } else if (kind == "import") {
      const std::string ns = Attr(e, "namespace").value_or("");
      const std::optional<std::string> location = Attr(e, "schemaLocation");
      auto mapped = m_options.locationMap.find(ns);
      std::string path;
      if (mapped != m_options.locationMap.end()) path = mapped->second;
      else if (location && !location->empty()) path = LocalPath(*location, doc, where, ns);
      if (path.empty()) {
        if (ns == "http://www.w3.org/XML/1998/namespace") return;  // xml:lang and friends are built in
        throw SchemaError(where, "xs:import of namespace '" + ns +
                                     "' has no schemaLocation; name a file with --location-map " + ns + "=FILE");
      }
      ImportFile(path, ns, where);
    } else if (kind == "element") {
      auto decl = ElementDeclaration(e, doc, true);
      const QName q = decl->name;
      if (m_set.elements.count(q)) throw SchemaError(where, "element '" + q.name + "' declared twice");
      m_set.elementOrder.push_back(q);
      m_set.elementRoot[q] = m_root;
      m_set.elements[q] = std::move(decl);
    } else if (kind == "complexType") {
      auto type = ComplexTypeDefinition(e, doc);
      const QName q = StoredName(type->name);
      type->name = q;
      if (m_set.complexTypes.count(q) || m_set.simpleTypes.count(q))
        throw SchemaError(where, "type '" + q.name + "' defined twice");
      m_set.complexTypeOrder.push_back(q);
      m_set.typeRoot[q] = m_root;
      m_set.complexTypes[q] = std::move(type);
    } else if (kind == "simpleType") {
      auto type = SimpleTypeDefinition(e, doc);
      const QName q = StoredName(type->name);
      type->name = q;
      if (m_set.complexTypes.count(q) || m_set.simpleTypes.count(q))
        throw SchemaError(where, "type '" + q.name + "' defined twice");
      m_set.simpleTypeOrder.push_back(q);
      m_set.typeRoot[q] = m_root;
      m_set.simpleTypes[q] = std::move(type);
    } else if (kind == "attribute") {
      auto decl = std::make_unique<AttributeDecl>(AttributeDeclaration(e, doc, true));
      m_set.attributes[decl->name] = std::move(decl);
    } else if (kind == "group") {
      auto group = std::make_unique<NamedGroup>();
      group->name = StoredName(QName{doc.targetNamespace, Attr(e, "name").value_or("")});
      group->where = where;
      for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement())
        if (IsXsd(c, "sequence") || IsXsd(c, "choice") || IsXsd(c, "all")) group->group = Group(c, doc);
      if (!group->group) group->group = std::make_unique<ModelGroup>();
      m_set.groups[group->name] = std::move(group);
    } else if (kind == "attributeGroup") {
      auto group = std::make_unique<NamedAttributeGroup>();
      group->name = StoredName(QName{doc.targetNamespace, Attr(e, "name").value_or("")});
      group->where = where;
      Attributes(e, doc, group->attributes);
      m_set.attributeGroups[group->name] = std::move(group);
    } else if (kind == "annotation" || kind == "notation") {
      // Documentation only.
    } else {
      Note(where, "xs:" + kind + " at the top level is not mapped");
    }
  }

  void ImportFile(const std::string& path, const std::string& ns, const Location& where) {
    const std::string saved = m_root;
    Load(path, nullptr, where, false);
    m_root = saved;
    (void)ns;
  }

  std::string LocalPath(const std::string& location, const Document& doc, const Location& where,
                        const std::string& ns) {
    auto mapped = m_options.locationMap.find(location);
    if (mapped != m_options.locationMap.end()) return mapped->second;
    if (IsRemote(location)) {
      auto byNamespace = m_options.locationMap.find(ns);
      if (byNamespace != m_options.locationMap.end() && !ns.empty()) return byNamespace->second;
      throw SchemaError(where, "schema location '" + location +
                                   "' is not a local file (the network is never used); map it with --location-map " +
                                   (ns.empty() ? location : ns) + "=FILE");
    }
    std::string path = location;
    if (path.rfind("file://", 0) == 0) path = path.substr(7);
    if (path.empty() || path[0] != '/') path = Directory(doc.path) + path;
    if (!IsLocalFile(path)) throw SchemaError(where, "schema '" + location + "' not found (looked for " + path + ")");
    return path;
  }

  // --- declarations -----------------------------------------------------------
  std::unique_ptr<ElementDecl> ElementDeclaration(const CXmlElement* e, Document& doc, bool global) {
    auto decl = std::make_unique<ElementDecl>();
    decl->where = Where(e, doc);
    decl->global = global;
    if (auto ref = Attr(e, "ref")) {
      decl->ref = Resolve(e, *ref, doc);
      decl->name = decl->ref;
      return decl;
    }
    const std::string name = Collapse(Attr(e, "name").value_or(""));
    if (name.empty()) throw SchemaError(decl->where, "xs:element without name or ref");
    bool qualified = global || doc.elementsQualified;
    if (auto form = Attr(e, "form")) qualified = Collapse(*form) == "qualified";
    decl->name = QName{qualified ? doc.targetNamespace : "", name};
    if (auto type = Attr(e, "type")) decl->type = Resolve(e, *type, doc);
    decl->nillable = Collapse(Attr(e, "nillable").value_or("false")) == "true";
    decl->isAbstract = Collapse(Attr(e, "abstract").value_or("false")) == "true";
    decl->defaultValue = Attr(e, "default");
    decl->fixedValue = Attr(e, "fixed");
    if (auto group = Attr(e, "substitutionGroup")) decl->substitutionGroup = Resolve(e, *group, doc);
    for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (IsXsd(c, "complexType")) decl->anonymousComplex = ComplexTypeDefinition(c, doc);
      else if (IsXsd(c, "simpleType")) decl->anonymousSimple = SimpleTypeDefinition(c, doc);
      else if (IsXsd(c, "key") || IsXsd(c, "keyref") || IsXsd(c, "unique")) decl->hasIdentityConstraints = true;
    }
    if (decl->hasIdentityConstraints)
      Note(decl->where, "identity constraints (key, keyref, unique) of element '" + name + "' are not checked");
    return decl;
  }

  AttributeDecl AttributeDeclaration(const CXmlElement* e, Document& doc, bool global) {
    AttributeDecl decl;
    decl.where = Where(e, doc);
    decl.use = Collapse(Attr(e, "use").value_or("optional"));
    decl.defaultValue = Attr(e, "default");
    decl.fixedValue = Attr(e, "fixed");
    if (auto ref = Attr(e, "ref")) {
      decl.ref = Resolve(e, *ref, doc);
      decl.name = decl.ref;
      return decl;
    }
    const std::string name = Collapse(Attr(e, "name").value_or(""));
    if (name.empty()) throw SchemaError(decl.where, "xs:attribute without name or ref");
    bool qualified = global || doc.attributesQualified;
    if (auto form = Attr(e, "form")) qualified = Collapse(*form) == "qualified";
    decl.name = QName{qualified ? doc.targetNamespace : "", name};
    if (auto type = Attr(e, "type")) decl.type = Resolve(e, *type, doc);
    for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement())
      if (IsXsd(c, "simpleType")) decl.anonymousSimple = SimpleTypeDefinition(c, doc);
    return decl;
  }

  void Attributes(const CXmlElement* parent, Document& doc, AttributeSet& out) {
    for (const CXmlElement* c = parent->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (IsXsd(c, "attribute")) {
        out.attributes.push_back(AttributeDeclaration(c, doc, false));
      } else if (IsXsd(c, "attributeGroup")) {
        out.groupRefs.emplace_back(Resolve(c, Attr(c, "ref").value_or(""), doc), Where(c, doc));
      } else if (IsXsd(c, "anyAttribute")) {
        Wildcard w;
        w.namespaces = Collapse(Attr(c, "namespace").value_or("##any"));
        w.processContents = Collapse(Attr(c, "processContents").value_or("strict"));
        w.where = Where(c, doc);
        out.anyAttribute = w;
      }
    }
  }

  std::unique_ptr<ComplexType> ComplexTypeDefinition(const CXmlElement* e, Document& doc) {
    auto type = std::make_unique<ComplexType>();
    type->where = Where(e, doc);
    if (auto name = Attr(e, "name")) type->name = QName{doc.targetNamespace, Collapse(*name)};
    type->isAbstract = Collapse(Attr(e, "abstract").value_or("false")) == "true";
    type->mixed = Collapse(Attr(e, "mixed").value_or("false")) == "true";
    for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (IsXsd(c, "simpleContent") || IsXsd(c, "complexContent")) {
        const bool simple = IsXsd(c, "simpleContent");
        if (!simple) {
          if (auto mixed = Attr(c, "mixed")) type->mixed = Collapse(*mixed) == "true";
        }
        type->content = simple ? ComplexType::Content::Simple : ComplexType::Content::Elements;
        for (const CXmlElement* d = c->GetFirstElement(); d; d = d->GetNextSiblingElement()) {
          if (!IsXsd(d, "extension") && !IsXsd(d, "restriction")) continue;
          type->derivation =
              IsXsd(d, "extension") ? ComplexType::Derivation::Extension : ComplexType::Derivation::Restriction;
          type->base = Resolve(d, Attr(d, "base").value_or(""), doc);
          if (simple && type->derivation == ComplexType::Derivation::Restriction) {
            type->simpleRestriction = std::make_unique<SimpleType>();
            type->simpleRestriction->where = Where(d, doc);
            type->simpleRestriction->base = type->base;
            ReadFacets(d, doc, *type->simpleRestriction);
          }
          Content(d, doc, *type);
          Attributes(d, doc, type->attributes);
        }
      }
    }
    Content(e, doc, *type);
    Attributes(e, doc, type->attributes);
    return type;
  }

  void Content(const CXmlElement* parent, Document& doc, ComplexType& type) {
    for (const CXmlElement* c = parent->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (IsXsd(c, "sequence") || IsXsd(c, "choice") || IsXsd(c, "all") || IsXsd(c, "group")) {
        type.particle = std::make_unique<Particle>(ParticleOf(c, doc));
      }
    }
  }

  Particle ParticleOf(const CXmlElement* c, Document& doc) {
    Particle p;
    p.where = Where(c, doc);
    p.minOccurs = Occurs(Attr(c, "minOccurs"), 1, p.where);
    p.maxOccurs = Occurs(Attr(c, "maxOccurs"), 1, p.where);
    if (p.maxOccurs != kUnbounded && p.maxOccurs < p.minOccurs)
      throw SchemaError(p.where, "maxOccurs is less than minOccurs");
    if (IsXsd(c, "element")) {
      p.kind = Particle::Kind::Element;
      p.element = ElementDeclaration(c, doc, false);
    } else if (IsXsd(c, "group")) {
      p.kind = Particle::Kind::GroupRef;
      p.ref = Resolve(c, Attr(c, "ref").value_or(""), doc);
    } else if (IsXsd(c, "any")) {
      p.kind = Particle::Kind::Any;
      p.any.namespaces = Collapse(Attr(c, "namespace").value_or("##any"));
      p.any.processContents = Collapse(Attr(c, "processContents").value_or("strict"));
      p.any.where = p.where;
    } else {
      p.kind = Particle::Kind::Group;
      p.group = Group(c, doc);
    }
    return p;
  }

  std::unique_ptr<ModelGroup> Group(const CXmlElement* e, Document& doc) {
    auto group = std::make_unique<ModelGroup>();
    group->where = Where(e, doc);
    group->kind = IsXsd(e, "choice") ? ModelGroup::Kind::Choice
                  : IsXsd(e, "all")  ? ModelGroup::Kind::All
                                     : ModelGroup::Kind::Sequence;
    for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (IsXsd(c, "element") || IsXsd(c, "group") || IsXsd(c, "any") || IsXsd(c, "sequence") ||
          IsXsd(c, "choice") || IsXsd(c, "all"))
        group->particles.push_back(ParticleOf(c, doc));
    }
    return group;
  }

  std::unique_ptr<SimpleType> SimpleTypeDefinition(const CXmlElement* e, Document& doc) {
    auto type = std::make_unique<SimpleType>();
    type->where = Where(e, doc);
    if (auto name = Attr(e, "name")) type->name = QName{doc.targetNamespace, Collapse(*name)};
    for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (IsXsd(c, "restriction")) {
        type->variety = SimpleType::Variety::Restriction;
        if (auto base = Attr(c, "base")) type->base = Resolve(c, *base, doc);
        ReadFacets(c, doc, *type);
      } else if (IsXsd(c, "list")) {
        type->variety = SimpleType::Variety::List;
      } else if (IsXsd(c, "union")) {
        type->variety = SimpleType::Variety::Union;
      }
    }
    if (type->variety == SimpleType::Variety::Restriction && type->base.empty() && !type->anonymousBase)
      throw SchemaError(type->where, "xs:simpleType without a base type");
    return type;
  }

  void ReadFacets(const CXmlElement* r, Document& doc, SimpleType& type) {
    Facets& f = type.facets;
    f.where = Where(r, doc);
    for (const CXmlElement* c = r->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
      if (c->GetNamespaceURI() != kXsdNamespace) continue;
      const std::string& k = c->GetLocalName();
      if (k == "simpleType") {
        type.anonymousBase = SimpleTypeDefinition(c, doc);
        continue;
      }
      const std::optional<std::string> raw = Attr(c, "value");
      if (!raw) continue;
      const std::string value = *raw;
      auto number = [&](std::optional<int>& slot) {
        const std::string v = Collapse(value);
        char* end = nullptr;
        const long n = std::strtol(v.c_str(), &end, 10);
        if (v.empty() || *end || n < 0) throw SchemaError(Where(c, doc), "invalid " + k + " value '" + v + "'");
        slot = n > 0x7fffffff ? 0x7fffffff : static_cast<int>(n);
      };
      if (k == "pattern") f.patterns.push_back(value);
      else if (k == "enumeration") f.enumerations.push_back(value);
      else if (k == "minInclusive") f.minInclusive = Collapse(value);
      else if (k == "maxInclusive") f.maxInclusive = Collapse(value);
      else if (k == "minExclusive") f.minExclusive = Collapse(value);
      else if (k == "maxExclusive") f.maxExclusive = Collapse(value);
      else if (k == "length") number(f.length);
      else if (k == "minLength") number(f.minLength);
      else if (k == "maxLength") number(f.maxLength);
      else if (k == "totalDigits") number(f.totalDigits);
      else if (k == "fractionDigits") number(f.fractionDigits);
      else if (k == "whiteSpace") f.whiteSpace = Collapse(value);
    }
  }

  const LoadOptions& m_options;
  SchemaSet& m_set;
  std::set<std::string> m_loaded;
  std::map<QName, QName> m_renamed;
  const QName* m_inRedefineOf = nullptr;
  std::string m_root;
};

}  // namespace

void LoadSchemas(const std::vector<std::string>& files, const LoadOptions& options, SchemaSet& set) {
  Loader loader(options, set);
  for (const std::string& file : files) loader.LoadRoot(file);
}

}  // namespace koxml::generate
