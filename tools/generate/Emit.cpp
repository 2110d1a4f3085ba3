// The C++ text of the generated classes: one header and one source per class
// and enumeration, a namespace file per target namespace, an umbrella header
// per schema.
#include "Emit.h"

#include <set>
#include <sstream>

#include "Names.h"

namespace koxml::generate {

namespace {

struct TypeInfo {
  const char* itemType;
  const char* cxx;
  bool byReference;
  const char* accessor;  // KoVariant Set<x>/Get<x>
  const char* collection;
  const char* initial;
};

const TypeInfo& Type(int itemType) {
  static const TypeInfo kTypes[] = {
      {"ItemType_none", "std::string", true, "String", "CstringCol", ""},
      {"ItemType_hexBinary", "KoXmlLib10::CBinaryData", true, "HexBinary", "ChexBinaryCol", ""},
      {"ItemType_base64Binary", "KoXmlLib10::CBinaryData", true, "Base64Binary", "Cbase64BinaryCol", ""},
      {"ItemType_i1", "char", false, "I1", "Ci1Col", "0"},
      {"ItemType_i2", "short", false, "I2", "Ci2Col", "0"},
      {"ItemType_i4", "long", false, "I4", "Ci4Col", "0"},
      {"ItemType_i8", "long long", false, "I8", "Ci8Col", "0"},
      {"ItemType_ui1", "unsigned char", false, "UI1", "Cui1Col", "0"},
      {"ItemType_ui2", "unsigned short", false, "UI2", "Cui2Col", "0"},
      {"ItemType_ui4", "unsigned long", false, "UI4", "Cui4Col", "0"},
      {"ItemType_ui8", "unsigned long long", false, "UI8", "Cui8Col", "0"},
      {"ItemType_r4", "float", false, "R4", "Cr4Col", "0.0f"},
      {"ItemType_r8", "double", false, "R8", "Cr8Col", "0.0"},
      {"ItemType_duration", "KoXmlLib10::CDateTimeSpan", true, "Duration", "CdurationCol", ""},
      {"ItemType_yearMonth", "KoXmlLib10::CDateTime", true, "YearMonth", "CyearMonthCol", ""},
      {"ItemType_monthDay", "KoXmlLib10::CDateTime", true, "MonthDay", "CmonthDayCol", ""},
      {"ItemType_year", "unsigned short", false, "Year", "CyearCol", "0"},
      {"ItemType_month", "unsigned char", false, "Month", "CmonthCol", "0"},
      {"ItemType_day", "unsigned char", false, "Day", "CdayCol", "0"},
      {"ItemType_date", "KoXmlLib10::CDateTime", true, "Date", "CdateCol", ""},
      {"ItemType_datetime", "KoXmlLib10::CDateTime", true, "DateTime", "CdatetimeCol", ""},
      {"ItemType_time", "KoXmlLib10::CDateTime", true, "Time", "CtimeCol", ""},
      {"ItemType_char", "char", false, "Char", "CstringCol", "0"},
      {"ItemType_string", "std::string", true, "String", "CstringCol", ""},
      {"ItemType_boolean", "bool", false, "Boolean", "CbooleanCol", "false"},
      {"ItemType_decimal", "KoXmlLib10::CDecimal", true, "Decimal", "CdecimalCol", ""},
      {"ItemType_integer", "KoXmlLib10::CBigInteger", true, "Integer", "CintegerCol", ""},
  };
  return kTypes[itemType >= 0 && itemType <= 26 ? itemType : 23];
}

const char* Whitespace(int rule) {
  switch (rule) {
    case 0: return "CWhitespaceUtils::WhitespaceRule_None";
    case 1: return "kPreserve";
    case 2: return "kReplace";
    default: return "kCollapse";
  }
}

// A C++ string literal for any bytes.
std::string Quote(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    if (c == '\\') out += "\\\\";
    else if (c == '"') out += "\\\"";
    else if (c == '\n') out += "\\n";
    else if (c == '\t') out += "\\t";
    else if (c == '?') out += "\\?";  // no trigraphs
    else if (c < 0x20 || c >= 0x7f) {
      static const char kOct[] = "01234567";
      out += '\\';
      out += kOct[(c >> 6) & 7];
      out += kOct[(c >> 3) & 7];
      out += kOct[c & 7];
    } else out += static_cast<char>(c);
  }
  return out + "\"";
}

std::string CommentText(const std::string& text) {
  std::string out;
  for (char c : text) out += (c == '\n' || c == '\r') ? ' ' : c;
  size_t pos;
  while ((pos = out.find("*/")) != std::string::npos) out.replace(pos, 2, "* /");
  return out;
}

std::string Guard(const NamespaceModel* ns, const std::string& fileBase) {
  std::string g;
  for (char c : ns->cxx + "_" + fileBase + "_H") {
    if (std::isalnum(static_cast<unsigned char>(c))) g += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    else if (!g.empty() && g.back() != '_') g += '_';
  }
  return "KOXML_GEN_" + g;
}

std::string RestrictionsText(const Restrictions& r) {
  if (r.Empty()) return "CPrimitiveRestrictions()";
  auto text = [](const std::string& s) { return s.empty() ? std::string("nullptr") : Quote(s); };
  std::ostringstream o;
  o << "CPrimitiveRestrictions(" << text(r.pattern) << ", " << r.minLength << ", " << r.maxLength << ", "
    << text(r.minInclusive) << ", " << text(r.maxInclusive) << ", " << text(r.minExclusive) << ", "
    << text(r.maxExclusive) << ", " << r.length << ")";
  return o.str();
}

// The pattern that admits exactly the values of an enumeration (for a
// collection of them, held as strings).
std::string EnumPattern(const EnumModel& e) {
  std::string out;
  for (const std::string& v : e.values) {
    if (!out.empty()) out += "|";
    for (char c : v) {
      if (std::string("\\|.-^?*+{}()[]$").find(c) != std::string::npos) out += '\\';
      out += c;
    }
  }
  return out;
}

class Writer {
 public:
  Writer(const BindingModel& model, const EmitOptions& options) : m_model(model), m_options(options) {}

  std::map<std::string, std::string> Run() {
    for (const auto& ns : m_model.namespaces) {
      if (ns->classes.empty() && ns->enums.empty()) continue;
      NamespaceFiles(*ns);
    }
    for (const auto& e : m_model.enums) EnumFiles(*e);
    for (const auto& c : m_model.classes) ClassFiles(*c);
    for (const auto& [name, headers] : m_model.umbrellas) {
      std::ostringstream o;
      const std::string stem = name.substr(0, name.size() - 2);
      o << "// Generated by koxml generate: every class of the schema.\n";
      // The include prefix keeps apart the guards of two schemas whose
      // files share a name, built side by side.
      const std::string guard = "KOXML_GEN_" + Upper(m_options.includePrefix.empty() ? stem
                                                     : m_options.includePrefix + "_" + stem) + "_H";
      o << "#ifndef " << guard << "\n#define " << guard << "\n\n";
      for (const std::string& h : headers) o << "#include " << Include(h) << "\n";
      o << "\n#endif\n";
      m_files[name] = o.str();
    }
    if (m_options.shards > 0) {
      // A fixed set of sources for build systems that must know the outputs
      // before the generator runs: each compiles a share of the classes.
      std::vector<std::string> sources;
      for (const auto& [name, text] : m_files)
        if (name.size() > 4 && name.compare(name.size() - 4, 4, ".cpp") == 0) sources.push_back(name);
      for (int i = 0; i < m_options.shards; ++i) {
        std::ostringstream o;
        o << "// Generated by koxml generate: part " << i + 1 << " of " << m_options.shards
          << " of the classes, for builds that compile them in a fixed set of sources.\n";
        for (size_t k = static_cast<size_t>(i); k < sources.size(); k += static_cast<size_t>(m_options.shards))
          o << "#include \"" << sources[k] << "\"\n";
        m_files["shard_" + std::to_string(i + 1) + ".cpp"] = o.str();
      }
    }
    return m_files;
  }

 private:
  static std::string Upper(const std::string& s) {
    std::string u;
    for (char c : s)
      u += std::isalnum(static_cast<unsigned char>(c)) ? static_cast<char>(std::toupper(static_cast<unsigned char>(c)))
                                                        : '_';
    return u;
  }

  std::string Include(const std::string& header) const {
    return "\"" + (m_options.includePrefix.empty() ? "" : m_options.includePrefix + "/") + header + "\"";
  }

  std::string Export() const { return m_options.exportMacro.empty() ? "" : m_options.exportMacro + " "; }

  static std::string Open(const NamespaceModel& ns) { return "namespace " + ns.cxx + " {\n"; }
  static std::string Close(const NamespaceModel& ns) { return "}  // namespace " + ns.cxx + "\n"; }

  // The qualified name of a class or enumeration as seen from `from`.
  static std::string Qualified(const NamespaceModel* from, const NamespaceModel* owner, const std::string& name) {
    return from == owner ? name : "::" + owner->cxx + "::" + name;
  }

  void NamespaceFiles(const NamespaceModel& ns) {
    std::ostringstream h;
    h << "// Generated by koxml generate: names shared by the classes of namespace "
      << CommentText(ns.uri.empty() ? "(none)" : ns.uri) << ".\n";
    const std::string guard = Guard(&ns, ns.fileBase + "Namespace");
    h << "#ifndef " << guard << "\n#define " << guard << "\n\n#include <KoXmlLib10.h>\n\n" << Open(ns) << "\n";
    h << "inline constexpr char kTargetNamespace[] = " << Quote(ns.uri) << ";\n\n";
    h << "// Whitespace rules of the records.\n"
         "inline constexpr auto kPreserve = KoXmlLib10::CWhitespaceUtils::WhitespaceRule_Preserve;\n"
         "inline constexpr auto kReplace = KoXmlLib10::CWhitespaceUtils::WhitespaceRule_Replace;\n"
         "inline constexpr auto kCollapse = KoXmlLib10::CWhitespaceUtils::WhitespaceRule_Collapse;\n\n";
    h << "// Announces the generator version to the library; every class calls it\n"
         "// before its first object is created.\n";
    h << Export() << "void AnnounceGeneratorVersion();\n\n";
    h << "// Whether the member object `member` is held by its owner alone. Init empties\n"
         "// such a member in place rather than building a new one (reading calls Init\n"
         "// on every object it fills); a member the application also holds is\n"
         "// replaced, so that it does not change under the application.\n";
    h << Export() << "bool IsHeldAlone(KoXmlLib10::CXmlObjectBase* member);\n\n" << Close(ns) << "\n#endif\n";
    m_files[ns.fileBase + "Namespace.h"] = h.str();

    std::ostringstream s;
    s << "#include " << Include(ns.fileBase + "Namespace.h") << "\n\n#include <KoXmlLib10.h>\n\n" << Open(ns) << "\n";
    s << "namespace {\n"
         "// Before main: the version must be known before the first object is built.\n"
         "const bool g_announced" << ns.fileBase << " = (KoXmlLib10::SetGeneratorVersion(10, 1), true);\n"
         "}  // namespace\n\n";
    s << "void AnnounceGeneratorVersion() { (void)g_announced" << ns.fileBase << "; }\n\n";
    s << "bool IsHeldAlone(KoXmlLib10::CXmlObjectBase* member) {\n"
         "  if (!member) return false;\n"
         "  const int references = member->AddRef();\n"
         "  member->Release();\n"
         "  return references == 2;\n"
         "}\n\n" << Close(ns);
    m_files[ns.fileBase + "Namespace.cpp"] = s.str();
  }

  void EnumFiles(const EnumModel& e) {
    const NamespaceModel& ns = *e.ns;
    const size_t n = e.values.size();
    std::ostringstream h;
    h << "// Generated by koxml generate: " << CommentText(e.origin) << ".\n";
    const std::string guard = Guard(&ns, e.cxxName);
    h << "#ifndef " << guard << "\n#define " << guard << "\n\n" << Open(ns) << "\n";
    h << "enum class " << e.cxxName << " {";
    for (size_t i = 0; i < n; ++i) h << (i ? ", " : " ") << e.identifiers[i] << " = " << i;
    h << " };\n\n";
    h << "// The two text functions the records call; an unknown text or value throws\n"
         "// KoXmlLib10::CKoInvalidValueException.\n";
    h << Export() << "const char* " << e.cxxName << "ToText(int value);\n";
    h << Export() << "int " << e.cxxName << "FromText(const char* text);\n\n" << Close(ns) << "\n#endif\n";
    m_files[e.cxxName + ".h"] = h.str();

    std::ostringstream s;
    s << "#include " << Include(e.cxxName + ".h") << "\n\n#include <KoXmlLib10.h>\n\n#include <cstring>\n";
    if (e.collapse) s << "#include <string>\n";
    s << "\n" << Open(ns) << "\nnamespace {\nconst char* const k" << e.cxxName << "Texts[] = {";
    for (size_t i = 0; i < n; ++i) s << (i ? ", " : "") << Quote(e.values[i]);
    s << "};\n}  // namespace\n\n";
    s << "const char* " << e.cxxName << "ToText(int value) {\n"
      << "  if (value < 0 || value >= " << n << ")\n"
      << "    throw KoXmlLib10::CKoInvalidValueException(\n"
      << "        KoXmlLib10::FormatString(\"Invalid value [%d] for enumeration " << e.cxxName << "\", value));\n"
      << "  return k" << e.cxxName << "Texts[value];\n}\n\n";
    s << "int " << e.cxxName << "FromText(const char* text) {\n";
    if (e.collapse) {
      s << "  // Surrounding whitespace is not part of the value.\n"
        << "  std::string value(text);\n"
        << "  value.erase(0, value.find_first_not_of(\" \\t\\r\\n\"));\n"
        << "  value.erase(value.find_last_not_of(\" \\t\\r\\n\") + 1);\n"
        << "  for (int i = 0; i < " << n << "; ++i)\n"
        << "    if (value == k" << e.cxxName << "Texts[i]) return i;\n";
    } else {
      s << "  for (int i = 0; i < " << n << "; ++i)\n"
        << "    if (std::strcmp(text, k" << e.cxxName << "Texts[i]) == 0) return i;\n";
    }
    s << "  throw KoXmlLib10::CKoInvalidValueException(\n"
      << "      KoXmlLib10::FormatString(\"Invalid value [%s] for enumeration " << e.cxxName << "\", text));\n}\n\n"
      << Close(ns);
    m_files[e.cxxName + ".cpp"] = s.str();
  }

  // --- classes -----------------------------------------------------------------
  struct Field {
    std::string type;      // of the member variable
    std::string variable;  // m_x
  };

  static std::string Var(const Member& m) { return "m_" + LowerCamel(m.property); }

  std::string ValueType(const ClassModel& c, const Member& m) const {
    if (m.kind == MemberKind::Enum) return Qualified(c.ns, m.simple.enumeration->ns, m.simple.enumeration->cxxName);
    return Type(m.simple.itemType).cxx;
  }

  std::string ParamType(const ClassModel& c, const Member& m) const {
    if (m.kind == MemberKind::Enum) return ValueType(c, m);
    const TypeInfo& t = Type(m.simple.itemType);
    return t.byReference ? "const " + std::string(t.cxx) + "&" : t.cxx;
  }

  std::string CollectionType(const ClassModel& c, const Member& m) const {
    switch (m.kind) {
      case MemberKind::Prim: return std::string("KoXmlLib10::") + Type(m.simple.itemType).collection;
      case MemberKind::Enum: return "KoXmlLib10::CstringCol";
      case MemberKind::Cls:
      case MemberKind::AbsCls: return Qualified(c.ns, m.cls->ns, m.cls->cxxName + "Col");
      case MemberKind::Untyped: return "KoXmlLib10::CElementCol";
      case MemberKind::AnyAttribute: return "KoXmlLib10::CAttributeCol";
    }
    return "";
  }

  std::string ClassType(const ClassModel& c, const Member& m) const {
    return Qualified(c.ns, m.cls->ns, m.cls->cxxName);
  }

  static bool HasNillableAncestor(const ClassModel& c) {
    for (const ClassModel* k = c.base; k; k = k->base)
      if (k->nillable) return true;
    return false;
  }

  static std::vector<const Member*> AllMembers(const ClassModel& c) {
    std::vector<const Member*> all;
    for (const Member& m : c.elements) all.push_back(&m);
    for (const Member& m : c.attributes) all.push_back(&m);
    return all;
  }

  void Accessors(std::ostringstream& h, const ClassModel& c, const Member& m) const {
    const std::string P = m.property;
    const std::string v = Var(m);
    if (m.occurrence == Occurrence::Collection || m.kind == MemberKind::AnyAttribute) {
      h << "  " << CollectionType(c, m) << "* Get" << P << "() const { return " << v << ".get(); }\n";
      return;
    }
    if (m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls) {
      h << "  " << ClassType(c, m) << "* Get" << P << "() const { return " << v << ".get(); }\n";
      if (m.occurrence == Occurrence::Optional || m.kind == MemberKind::AbsCls)
        h << "  void Set" << P << "(" << ClassType(c, m) << "* value) { " << v << " = value; }\n";
      return;
    }
    if (m.kind == MemberKind::Untyped) {
      h << "  KoXmlLib10::CElement* Get" << P << "() const { return " << v << ".get(); }\n";
      if (m.occurrence == Occurrence::Optional) h << "  void Set" << P << "(KoXmlLib10::CElement* value) { " << v << " = value; }\n";
      return;
    }
    const std::string T = ValueType(c, m);
    const std::string param = ParamType(c, m);
    const bool byRef = m.kind == MemberKind::Prim && Type(m.simple.itemType).byReference;
    if (m.occurrence == Occurrence::Optional) {
      h << "  bool IsSet" << P << "() const { return " << v << ".has_value(); }\n";
      std::string fallback = m.kind == MemberKind::Enum ? T + "::" + m.simple.enumeration->identifiers[0] : "decltype(" + v + ")::value_type()";  // not T(): "unsigned long()" does not parse
      h << "  " << T << " Get" << P << "() const { return " << v << ".value_or(" << fallback << "); }\n";
      h << "  void Set" << P << "(" << param << " value) { " << v << " = value;" << (m.nillable ? " " + v + "Nil = false;" : "")
        << " }\n";
      h << "  void Clear" << P << "() { " << v << ".reset(); }\n";
    } else {
      h << "  " << (byRef ? "const " + T + "&" : T) << " Get" << P << "() const { return " << v << "; }\n";
      h << "  void Set" << P << "(" << param << " value) { " << v << " = value;" << (m.nillable ? " " + v + "Nil = false;" : "")
        << " }\n";
    }
    if (m.nillable) {
      h << "  bool IsNil" << P << "() const { return " << v << "Nil; }\n";
      h << "  void SetNil" << P << "(bool nil) { " << v << "Nil = nil; }\n";
    }
  }

  void Fields(std::ostringstream& h, const ClassModel& c, const Member& m) const {
    const std::string v = Var(m);
    std::string type;
    if (m.occurrence == Occurrence::Collection || m.kind == MemberKind::AnyAttribute)
      type = "CSmartPtr<" + CollectionType(c, m) + ">";
    else if (m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls)
      type = "CSmartPtr<" + ClassType(c, m) + ">";
    else if (m.kind == MemberKind::Untyped)
      type = "CSmartPtr<KoXmlLib10::CElement>";
    else if (m.occurrence == Occurrence::Optional)
      type = "std::optional<" + ValueType(c, m) + ">";
    else
      type = ValueType(c, m);
    h << "  " << type << " " << v << ";\n";
    if (m.nillable && (m.kind == MemberKind::Prim || m.kind == MemberKind::Enum))
      h << "  bool " << v << "Nil = false;\n";
  }

  // The namespace a new wildcard element starts in, as the records choose
  // it: one that the restriction admits.
  static std::string AnyDefaultNamespace(const std::string& restriction, const ClassModel& c) {
    std::string r = restriction;
    if (r.size() > 2 && r.compare(0, 2, "##") == 0 && r.find(' ') != std::string::npos) r = r.substr(0, r.find(' '));
    if (r == "##any") return c.elementNamespace;
    if (r == "##other") return c.elementNamespace.empty() ? "DefaultNamespace" : "";
    if (r == "##targetNamespace") return c.ns->uri;
    return "";
  }

  // The statement that gives member `m` its initial value. With `construct`
  // it is for the constructor: the member is fresh, so there is nothing to
  // reuse, and a member whose default construction already is its initial
  // value gets no statement at all (building and assigning a temporary
  // decimal or integer costs heap allocations on every object read).
  std::string InitOf(const ClassModel& c, const Member& m, bool construct = false) const {
    const std::string v = Var(m);
    if (construct && (m.kind == MemberKind::Prim || m.kind == MemberKind::Enum)) {
      if (m.occurrence == Occurrence::Optional) return "";
      if (m.occurrence == Occurrence::Mandatory && m.kind == MemberKind::Prim && !(m.defaultValue && m.fixedValue)) {
        const TypeInfo& t = Type(m.simple.itemType);
        if (std::string(t.cxx) == "std::string" || !*t.initial) return "";
      }
    }
    const std::string ns = m.xmlNamespace.empty() ? "\"\"" : Quote(m.xmlNamespace);
    std::ostringstream o;
    if (m.kind == MemberKind::AnyAttribute) {
      o << v << " = new CAttributeCol(\"\", " << Quote(m.wildcard) << ", kTargetNamespace);";
    } else if (m.occurrence == Occurrence::Collection) {
      const int max = m.maxOccurs;
      // Init runs on every object reading fills: a collection only the owner
      // holds is emptied where it stands instead of being rebuilt.
      if (!construct && m.kind != MemberKind::Untyped) o << "if (IsHeldAlone(" << v << ".get()))\n    " << v << "->Clear();\n  else\n    ";
      if (m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls) {
        o << v << " = new " << CollectionType(c, m) << "(" << Quote(m.xmlName) << ", " << ns << ", " << m.minOccurs
          << ", " << max << (m.kind == MemberKind::AbsCls ? ", &" + ClassType(c, m) + "::CreateFromElement" : "")
          << ");";
      } else if (m.kind == MemberKind::Untyped) {
        o << v << " = new CElementCol(" << Quote(AnyDefaultNamespace(m.wildcard, c)) << ", " << Quote(m.wildcard) << ", kTargetNamespace, " << m.minOccurs
          << ", " << max << ");";
      } else {
        koxml::generate::Restrictions r = m.simple.restrictions;
        if (m.kind == MemberKind::Enum) r = koxml::generate::Restrictions{}, r.pattern = EnumPattern(*m.simple.enumeration);
        auto text = [](const std::string& s) { return s.empty() ? std::string("nullptr") : Quote(s); };
        o << v << " = new " << CollectionType(c, m) << "(" << Quote(m.xmlName) << ", " << ns << ", " << m.minOccurs
          << ", " << max << ", " << text(r.pattern) << ", " << r.minLength << ", " << r.maxLength << ", "
          << text(r.minInclusive) << ", " << text(r.maxInclusive) << ", " << text(r.minExclusive) << ", "
          << text(r.maxExclusive) << ", " << r.length << ", "
          << (m.kind == MemberKind::Enum ? "kCollapse" : Whitespace(m.simple.whitespace)) << ", nullptr);";
      }
    } else if (m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls) {
      // A mandatory member of an abstract type has no object until one is
      // read or set.
      // A member of a class without derived types that only the owner holds
      // is emptied in place; any other one is replaced by a new object.
      if (!construct && m.occurrence == Occurrence::Mandatory && !m.cls->isAbstract && m.kind == MemberKind::Cls)
        o << "if (IsHeldAlone(" << v << ".get())) {\n    " << v << "->SetElementName(" << Quote(m.xmlName) << ");\n    "
          << v << "->Init();\n  } else {\n    " << v << " = new " << ClassType(c, m) << "(" << Quote(m.xmlName)
          << ");\n  }";
      else if (m.occurrence == Occurrence::Mandatory && !m.cls->isAbstract)
        o << v << " = new " << ClassType(c, m) << "(" << Quote(m.xmlName) << ");";
      else
        o << v << " = nullptr;";
    } else if (m.kind == MemberKind::Untyped) {
      if (m.occurrence == Occurrence::Mandatory)
        o << v << " = new CElement(" << Quote(m.xmlName) << ", "
          << (m.xmlName == "AnyElement" ? Quote(AnyDefaultNamespace(m.wildcard, c)) : ns) << ", " << Quote(m.wildcard)
          << ", kTargetNamespace);";
      else
        o << v << " = nullptr;";
    } else if (m.occurrence == Occurrence::Optional) {
      o << v << ".reset();";
    } else if (m.kind == MemberKind::Enum) {
      size_t index = 0;
      if (m.defaultValue)
        for (size_t i = 0; i < m.simple.enumeration->values.size(); ++i)
          if (m.simple.enumeration->values[i] == *m.defaultValue) index = i;
      o << v << " = " << ValueType(c, m) << "::" << m.simple.enumeration->identifiers[index] << ";";
    } else if (m.defaultValue && m.fixedValue) {
      // A required fixed attribute starts with its only valid value.
      const TypeInfo& t = Type(m.simple.itemType);
      o << "{\n    KoVariant fixed;\n    fixed.FromString(" << Quote(*m.defaultValue) << ", " << t.itemType
        << ", kCollapse);\n    " << v << " = fixed.Get" << t.accessor << "();\n  }";
    } else {
      const TypeInfo& t = Type(m.simple.itemType);
      if (std::string(t.cxx) == "std::string") o << v << ".clear();";
      else if (*t.initial) o << v << " = " << t.initial << ";";
      else o << v << " = " << t.cxx << "();";
    }
    if (m.nillable && (m.kind == MemberKind::Prim || m.kind == MemberKind::Enum)) o << " " << v << "Nil = false;";
    return o.str();
  }

  // Whether reading may store the member straight from its text: a single
  // primitive value of a known item type.
  static bool StoresText(const Member& m) {
    return m.kind == MemberKind::Prim && m.occurrence != Occurrence::Collection && m.simple.itemType >= 1 &&
           m.simple.itemType <= 26;
  }

  // The case of StoreOwnPropertyText for `m`: the conversion KoVariant::
  // FromString makes for the item type, stored as AccessProperty stores it.
  std::string StoreTextCase(const Member& m) const {
    const TypeInfo& t = Type(m.simple.itemType);
    const std::string token = std::string(t.itemType).substr(std::string("ItemType_").size());
    std::ostringstream o;
    o << "    case k" << m.property << ":\n";
    o << "      if (itemType != " << t.itemType << ") return false;\n";
    o << "      " << Var(m) << " = CConversions::" << token << "FromString(text, rule);\n";
    if (m.nillable) o << "      " << Var(m) << "Nil = false;\n";
    o << "      return true;\n";
    return o.str();
  }

  std::string AccessCase(const ClassModel& c, const Member& m) const {
    const std::string v = Var(m);
    const std::string k = "k" + m.property;
    std::ostringstream o;
    o << "    case " << k << ":";
    if (m.occurrence == Occurrence::Collection || m.kind == MemberKind::AnyAttribute) {
      o << " return get ? value.SetXmlCollection(" << v << ".get()) : void();\n";
      return o.str();
    }
    if (m.kind == MemberKind::Cls || m.kind == MemberKind::AbsCls || m.kind == MemberKind::Untyped) {
      const std::string T = m.kind == MemberKind::Untyped ? "CElement" : ClassType(c, m);
      // Mandatory or not, setting stores the object the variant holds.
      o << "\n      return get ? value.SetXmlObject(" << v << ".get()) : void(" << v << " = ObjectFromVariant<" << T
        << ">(value));\n";
      return o.str();
    }
    const std::string acc = m.kind == MemberKind::Enum ? "I4" : Type(m.simple.itemType).accessor;
    const std::string T = ValueType(c, m);
    auto toVariant = [&](const std::string& x) {
      return m.kind == MemberKind::Enum ? "value.SetI4(static_cast<long>(" + x + "))" : "value.Set" + acc + "(" + x + ")";
    };
    const std::string fromVariant =
        m.kind == MemberKind::Enum ? "static_cast<" + T + ">(value.GetI4())" : "value.Get" + acc + "()";
    o << "\n";
    if (m.nillable) {
      o << "      if (get) return " << v << "Nil ? value.SetNil() : ";
      if (m.occurrence == Occurrence::Optional)
        o << "(" << v << " ? " << toVariant("*" + v) << " : value.SetInvalid());\n";
      else
        o << toVariant(v) << ";\n";
      o << "      " << v << "Nil = value.IsNil();\n";
      if (m.occurrence == Occurrence::Optional)
        o << "      return " << v << "Nil || !value.IsValid() ? " << v << ".reset() : void(" << v << " = " << fromVariant
          << ");\n";
      else
        o << "      return " << v << "Nil ? void() : void(" << v << " = " << fromVariant << ");\n";
    } else if (m.occurrence == Occurrence::Optional) {
      o << "      if (get) return " << v << " ? " << toVariant("*" + v) << " : value.SetInvalid();\n";
      o << "      return value.IsValid() ? void(" << v << " = " << fromVariant << ") : " << v << ".reset();\n";
    } else {
      o << "      return get ? " << toVariant(v) << " : void(" << v << " = " << fromVariant << ");\n";
    }
    return o.str();
  }

  std::string ElementRecord(const ClassModel& c, const Member& m) const {
    const char* group = c.groupType == 1 ? "Choice" : c.groupType == 2 ? "All" : "Seq";
    const std::string ns = m.xmlNamespace.empty() ? "\"\"" : Quote(m.xmlNamespace);
    const std::string head = Quote(m.xmlName) + ", " + ns + ", " + c.cxxName + "::k" + m.property;
    const std::string occ = m.occurrence == Occurrence::Mandatory ? "Mnd" : m.occurrence == Occurrence::Optional ? "Opt" : "Col";
    std::ostringstream o;
    o << "new CElementInfo" << group;
    const char* elementType = m.cls && m.cls->pseudo ? "XmlElementTypePseudo" : "XmlElementTypeElement";
    switch (m.kind) {
      case MemberKind::Prim:
        if (m.occurrence == Occurrence::Collection) o << "PrimCol(" << head << ")";
        else
          o << "Prim" << occ << "(" << head << ", " << (m.nillable ? "true" : "false") << ", "
            << Type(m.simple.itemType).itemType << ", nullptr, " << Whitespace(m.simple.whitespace) << ", "
            << RestrictionsText(m.simple.restrictions) << ")";
        break;
      case MemberKind::Enum:
        if (m.occurrence == Occurrence::Collection) o << "PrimCol(" << head << ")";
        else {
          const std::string e = Qualified(c.ns, m.simple.enumeration->ns, m.simple.enumeration->cxxName);
          o << "Enum" << occ << "(" << head << ", " << (m.nillable ? "true" : "false") << ", &" << e << "ToText, &" << e
            << "FromText)";
        }
        break;
      case MemberKind::AbsCls:
        if (m.occurrence == Occurrence::Collection) o << "AbsClsCol(" << head << ", " << elementType << ")";
        else
          o << "AbsCls" << occ << "(" << head << ", " << elementType << ", &" << ClassType(c, m) << "::CreateFromElement)";
        break;
      case MemberKind::Cls:
        if (m.occurrence == Occurrence::Collection) o << "ClsCol(" << head << ", " << elementType << ")";
        else if (m.occurrence == Occurrence::Optional)
          o << "ClsOpt(" << head << ", " << elementType << ", &" << ClassType(c, m) << "::Create, 0)";
        else
          o << "ClsMnd(" << head << ", " << elementType << ", &" << ClassType(c, m) << "::Create, 0, "
            << (m.contentRequired ? "true" : "false") << ")";
        break;
      case MemberKind::Untyped:
        if (m.occurrence == Occurrence::Collection) o << "UntpdCol(" << head << ")";
        else o << "Untpd" << occ << "(" << head << ", " << Quote(m.wildcard) << ", kTargetNamespace)";
        break;
      case MemberKind::AnyAttribute: break;
    }
    return o.str();
  }

  std::string AttributeRecord(const ClassModel& c, const Member& m) const {
    const std::string ns = m.xmlNamespace.empty() ? "\"\"" : Quote(m.xmlNamespace);
    const std::string head = Quote(m.xmlName) + ", " + ns + ", " + c.cxxName + "::k" + m.property + ", " +
                             (m.occurrence == Occurrence::Optional ? "true" : "false");
    const std::string deflt = m.defaultValue ? Quote(*m.defaultValue) : "nullptr";
    std::ostringstream o;
    if (m.kind == MemberKind::AnyAttribute) {
      o << "new CAttributeInfoAny(\"\", \"\", " << c.cxxName << "::k" << m.property << ", true, " << Quote(m.wildcard)
        << ", kTargetNamespace, nullptr)";
    } else if (m.kind == MemberKind::Enum) {
      const std::string e = Qualified(c.ns, m.simple.enumeration->ns, m.simple.enumeration->cxxName);
      o << "new CAttributeInfoEnum(" << head << ", &" << e << "ToText, &" << e << "FromText, " << deflt << ")";
    } else {
      o << "new CAttributeInfoPrimitive(" << head << ", " << Type(m.simple.itemType).itemType << ", nullptr, "
        << Whitespace(m.simple.whitespace) << ", " << RestrictionsText(m.simple.restrictions) << ", " << deflt << ")";
    }
    return o.str();
  }

  // Every class derived from c, directly or not, in a stable order.
  static std::vector<const ClassModel*> Descendants(const ClassModel& c) {
    std::vector<const ClassModel*> out;
    std::vector<const ClassModel*> pending{&c};
    for (size_t i = 0; i < pending.size() && i < 100000; ++i)
      for (const ClassModel* k : pending[i]->derived) {
        out.push_back(k);
        pending.push_back(k);
      }
    return out;
  }

  void ElementFactory(std::ostringstream& s, const ClassModel& c) const {
    std::vector<const ClassModel*> candidates;
    if (!c.isAbstract) candidates.push_back(&c);
    // Anonymous types cannot be named by xsi:type.
    for (const ClassModel* k : Descendants(c))
      if (!k->isAbstract && !k->sourceName.empty()) candidates.push_back(k);
    s << "CSmartPtr<CXmlObjectBase> " << c.cxxName << "::CreateFromElement(CXmlElement* element) {\n";
    s << "  const std::string type = CClassfactoryBase::GetElementType(element);\n";
    s << "  const char* name = element->GetLocalName().c_str();\n";
    s << "  if (type.empty()) return " << (c.isAbstract ? "nullptr" : "new " + c.cxxName + "(name)") << ";\n";
    if (candidates.empty()) {
      s << "  return nullptr;\n}\n\n";
      return;
    }
    s << "  const std::string typeNamespace = CClassfactoryBase::GetElementTypeNamespaceUri(element);\n";
    s << "  struct Entry {\n    const char* name;\n    const char* ns;\n"
         "    CSmartPtr<CXmlObjectBase> (*create)(int, const char*);\n  };\n";
    s << "  static const Entry kTypes[] = {\n";
    for (const ClassModel* k : candidates)
      s << "      {" << Quote(k->typeName) << ", " << Quote(k->typeNamespace) << ", &"
        << Qualified(c.ns, k->ns, k->cxxName) << "::Create},\n";
    s << "  };\n";
    s << "  for (const Entry& e : kTypes)\n"
         "    if (type == e.name && typeNamespace == e.ns) return e.create(0, name);\n";
    s << "  // A prefix-less xsi:type resolves to the element's namespace; a type\n"
         "  // named in no namespace is still found when its local name is unique.\n";
    s << "  const Entry* found = nullptr;\n";
    s << "  for (const Entry& e : kTypes) {\n"
         "    if (type != e.name) continue;\n"
         "    if (found) return nullptr;\n"
         "    found = &e;\n  }\n";
    s << "  return found ? found->create(0, name) : nullptr;\n}\n\n";
  }

  void ClassFiles(const ClassModel& c) {
    const NamespaceModel& ns = *c.ns;
    const bool nillable = c.nillable && !HasNillableAncestor(c);
    const std::string baseClass = c.base ? Qualified(c.ns, c.base->ns, c.base->cxxName) : "KoXmlLib10::CXmlGeneratedClass";
    std::set<std::string> topIncludes, bottomIncludes, forwards;
    bool needOptional = false;
    if (c.base) topIncludes.insert(c.base->fileBase + ".h");
    std::vector<const Member*> members = AllMembers(c);
    for (const Member* m : members) {
      if (m->simple.enumeration && m->kind == MemberKind::Enum) topIncludes.insert(m->simple.enumeration->cxxName + ".h");
      if (m->cls && m->cls != &c) bottomIncludes.insert(m->cls->fileBase + ".h");
      if (m->occurrence == Occurrence::Optional && (m->kind == MemberKind::Prim || m->kind == MemberKind::Enum))
        needOptional = true;
    }
    if (c.simpleContent && c.simpleContent->enumeration) topIncludes.insert(c.simpleContent->enumeration->cxxName + ".h");
    for (const Member* m : members) {
      if (!m->cls || m->cls == &c) continue;
      if (m->cls->ns != c.ns) continue;
      forwards.insert(m->cls->cxxName);
      if (m->occurrence == Occurrence::Collection) forwards.insert(m->cls->cxxName + "Col");
    }
    for (const std::string& inc : topIncludes) bottomIncludes.erase(inc);

    std::ostringstream h;
    h << "// Generated by koxml generate: " << CommentText(c.origin) << ".\n";
    const std::string guard = Guard(&ns, c.fileBase);
    h << "#ifndef " << guard << "\n#define " << guard << "\n\n#include <KoXmlLib10.h>\n\n";
    if (needOptional) h << "#include <optional>\n";
    h << "#include <string>\n#include <vector>\n";
    if (!topIncludes.empty()) h << "\n";
    for (const std::string& inc : topIncludes) h << "#include " << Include(inc) << "\n";
    // Classes of other namespaces are declared in theirs.
    std::set<const NamespaceModel*> foreign;
    for (const Member* m : members)
      if (m->cls && m->cls->ns != c.ns) foreign.insert(m->cls->ns);
    for (const NamespaceModel* f : foreign) {
      h << "\nnamespace " << f->cxx << " {\n";
      std::set<std::string> names;
      for (const Member* m : members)
        if (m->cls && m->cls->ns == f) {
          names.insert(m->cls->cxxName);
          if (m->occurrence == Occurrence::Collection) names.insert(m->cls->cxxName + "Col");
        }
      for (const std::string& n : names) h << "class " << n << ";\n";
      h << "}  // namespace " << f->cxx << "\n";
    }
    h << "\n" << Open(ns) << "\n";
    for (const std::string& f : forwards) h << "class " << f << ";\n";
    if (!forwards.empty()) h << "\n";

    h << "class " << Export() << c.cxxName << " : public " << baseClass << (nillable ? ", public KoXmlLib10::INillable" : "")
      << " {\n public:\n";
    // Property ids continue the base's.
    h << "  enum Property {";
    bool first = true;
    for (const Member* m : members) {
      h << (first ? " " : ", ") << "k" << m->property;
      if (first && c.base) h << " = " << baseClass << "::kPropertyCount";
      first = false;
    }
    if (c.simpleContent && !c.base) {
      h << (first ? " " : ", ") << "k" << c.valueProperty;
      first = false;
    }
    h << (first ? " " : ", ") << "kPropertyCount";
    if (first && c.base) h << " = " << baseClass << "::kPropertyCount";
    h << " };\n\n";
    h << "  explicit " << c.cxxName << "(const char* elementName = " << Quote(c.defaultElement) << ");\n";
    h << "  ~" << c.cxxName << "() override;\n";
    h << "  static CSmartPtr<KoXmlLib10::CXmlObjectBase> Create(int factoryCode, const char* elementName);\n";
    if (c.elementFactory)
      h << "  // The object for an element of this type: this class or the derived one\n"
           "  // its xsi:type names; none for an unknown type"
        << (c.isAbstract ? " or an element without xsi:type" : "") << ".\n"
        << "  static CSmartPtr<KoXmlLib10::CXmlObjectBase> CreateFromElement(KoXmlLib10::CXmlElement* element);\n";
    h << "\n";
    for (const Member* m : members) Accessors(h, c, *m);
    if (c.simpleContent && !c.base) {
      Member value;
      value.kind = c.simpleContent->enumeration ? MemberKind::Enum : MemberKind::Prim;
      value.simple = *c.simpleContent;
      value.property = c.valueProperty;
      Accessors(h, c, value);
    }
    if (nillable) {
      h << "  bool IsNil() override { return m_nil; }\n";
      h << "  void SetNil(bool nil) override { m_nil = nil; }\n";
    }
    h << "\n  // The generated-code contract.\n";
    h << "  KoXmlLib10::CXmlObjectBase* GetBase() override { return this; }\n";
    h << "  std::string GetTargetNamespace() const override;\n";
    h << "  std::string GetNamespace() const override;\n";
    h << "  const char* GetNamespaceText() const override;\n";
    h << "  void AccessProperty(int propertyId, bool get, KoXmlLib10::KoVariant& value) override;\n";
    h << "  KoXmlLib10::CParentElementInfo* GetClassInfo() override;\n";
    h << "  KoXmlLib10::CElementInfo** GetClassElementInfo() override;\n";
    h << "  KoXmlLib10::CAttributeInfo** GetClassAttributeInfo() override;\n";
    h << "  void Init() override;\n";
    h << "  bool StorePropertyText(int propertyId, KoXmlLib10::ItemType itemType, const std::string& text,\n"
         "                         KoXmlLib10::CWhitespaceUtils::WhitespaceRule rule) override;\n\n";
    h << "  // This class's records after its base's; derived classes start from them.\n";
    h << "  static void AddRecords(std::vector<KoXmlLib10::CElementInfo*>& elements,\n"
         "                         std::vector<KoXmlLib10::CAttributeInfo*>& attributes);\n\n";
    h << " protected:\n";
    h << "  // StorePropertyText for the properties of this class and its bases.\n";
    h << "  bool StoreOwnPropertyText(int propertyId, KoXmlLib10::ItemType itemType, const std::string& text,\n"
         "                            KoXmlLib10::CWhitespaceUtils::WhitespaceRule rule);\n\n";
    h << " private:\n  void InitMembers();\n\n";
    for (const Member* m : members) Fields(h, c, *m);
    if (c.simpleContent && !c.base) {
      Member value;
      value.kind = c.simpleContent->enumeration ? MemberKind::Enum : MemberKind::Prim;
      value.simple = *c.simpleContent;
      value.property = c.valueProperty;
      Fields(h, c, value);
    }
    if (nillable) h << "  bool m_nil = false;\n";
    h << "};\n";
    if (c.needsCollection) {
      const std::string k = c.cxxName;
      h << "\n// A repeated " << CommentText(c.defaultElement) << " member.\n";
      h << "class " << Export() << k << "Col : public KoXmlLib10::CXmlClassCollection {\n public:\n";
      h << "  " << k << "Col(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs);\n";
      if (c.elementFactory)
        h << "  // Items chosen by the element factory (xsi:type).\n"
          << "  " << k << "Col(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs,\n"
          << "      KoXmlLib10Data::ElementFactoryFunction factory);\n";
      h << "  CSmartPtr<" << k << "> Add();\n";
      h << "  void Add(" << k << "* item) { AppendItem(item); }\n";
      h << "  " << k << "* Item(int index) const { return static_cast<" << k << "*>(GetNodeAtIndex(index)->item); }\n";
      h << "  KoXmlLib10::CXmlCollectionIterator<" << k << "> begin() const {\n"
        << "    return KoXmlLib10::CXmlCollectionIterator<" << k << ">(GetHead());\n  }\n";
      h << "  KoXmlLib10::CXmlCollectionIterator<" << k << "> end() const {\n"
        << "    return KoXmlLib10::CXmlCollectionIterator<" << k << ">(nullptr);\n  }\n};\n";
    }
    h << "\n" << Close(ns);
    if (!bottomIncludes.empty()) {
      h << "\n// The member classes, complete for users of this one.\n";
      for (const std::string& inc : bottomIncludes) h << "#include " << Include(inc) << "\n";
    }
    h << "\n#endif\n";
    m_files[c.fileBase + ".h"] = h.str();

    // --- source ---
    std::ostringstream s;
    s << "#include " << Include(c.fileBase + ".h") << "\n\n#include " << Include(ns.fileBase + "Namespace.h") << "\n";
    if (c.elementFactory) {
      std::set<std::string> derivedHeaders;
      for (const ClassModel* k : Descendants(c)) derivedHeaders.insert(k->fileBase + ".h");
      for (const std::string& inc : derivedHeaders) s << "#include " << Include(inc) << "\n";
    }
    s << "\n#include <typeinfo>\n\n";
    s << "using namespace KoXmlLib10;\nusing namespace KoXmlLib10Data;\n\n" << Open(ns) << "\nnamespace {\n\n";
    const std::string records = "Create" + c.fileBase + "Records";
    s << "void " << records << "(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {\n";
    std::string valueId = "-1", valueType = "ItemType_none";
    if (c.simpleContent) {
      const ClassModel* owner = &c;
      while (owner->base && owner->base->simpleContent) owner = owner->base;
      valueId = c.cxxName + "::k" + owner->valueProperty;
      valueType = c.simpleContent->enumeration ? "ItemType_string" : Type(c.simpleContent->itemType).itemType;
    }
    s << "  info = new CParentElementInfo(" << (c.groupType == 1 ? "XmlElementGroupTypeChoice" : c.groupType == 2 ? "XmlElementGroupTypeAll" : "XmlElementGroupTypeSequence")
      << ", " << (c.pseudo ? "XmlElementTypePseudo" : "XmlElementTypeElement") << ", " << Quote(c.typeName) << ", "
      << (c.typeNamespace.empty() ? "\"\"" : Quote(c.typeNamespace)) << ", false, "
      << (c.writeTypeAttribute ? "true" : "false") << ", " << valueId << ", " << valueType << ", nullptr, "
      << (c.simpleContent && c.simpleContent->enumeration ? "true" : "false") << ");\n";
    s << "  std::vector<CElementInfo*> elementList;\n  std::vector<CAttributeInfo*> attributeList;\n";
    s << "  " << c.cxxName << "::AddRecords(elementList, attributeList);\n";
    s << "  elements = new CElementInfo*[elementList.size() + 1]();\n";
    s << "  for (size_t i = 0; i < elementList.size(); ++i) elements[i] = elementList[i];\n";
    s << "  attributes = new CAttributeInfo*[attributeList.size() + 1]();\n";
    s << "  for (size_t i = 0; i < attributeList.size(); ++i) attributes[i] = attributeList[i];\n}\n\n";
    s << "CGeneratedMetaData g_" << c.fileBase << "Records(&" << records << ");\n\n}  // namespace\n\n";

    const bool usesElements = c.base || !c.elements.empty(), usesAttributes = c.base || !c.attributes.empty();
    s << "void " << c.cxxName << "::AddRecords(std::vector<CElementInfo*>&" << (usesElements ? " elements" : "")
      << ", std::vector<CAttributeInfo*>&" << (usesAttributes ? " attributes" : "") << ") {\n";
    if (c.base) s << "  " << baseClass << "::AddRecords(elements, attributes);\n";
    bool anyRecord = false;
    for (const Member& m : c.elements) {
      s << "  elements.push_back(" << ElementRecord(c, m) << ");\n";
      anyRecord = true;
    }
    for (const Member& m : c.attributes) {
      s << "  attributes.push_back(" << AttributeRecord(c, m) << ");\n";
      anyRecord = true;
    }
    (void)anyRecord;
    s << "}\n\n";

    s << c.cxxName << "::" << c.cxxName << "(const char* elementName)";
    if (c.base) s << " : " << baseClass << "(elementName)";
    s << " {\n  AnnounceGeneratorVersion();\n";
    if (!c.base) s << "  SetElementName(elementName);\n";
    for (const Member* m : members) {
      const std::string init = InitOf(c, *m, true);
      if (!init.empty()) s << "  " << init << "\n";
    }
    if (c.simpleContent && !c.base) {
      Member value;
      value.kind = c.simpleContent->enumeration ? MemberKind::Enum : MemberKind::Prim;
      value.simple = *c.simpleContent;
      value.property = c.valueProperty;
      const std::string init = InitOf(c, value, true);
      if (!init.empty()) s << "  " << init << "\n";
    }
    s << "}\n\n";
    s << c.cxxName << "::~" << c.cxxName << "() = default;\n\n";
    s << "CSmartPtr<CXmlObjectBase> " << c.cxxName << "::Create(int, const char* elementName) { return new "
      << c.cxxName << "(elementName); }\n\n";
    if (c.elementFactory) ElementFactory(s, c);
    s << "std::string " << c.cxxName << "::GetTargetNamespace() const { return " << Quote(c.elementNamespace) << "; }\n";
    s << "std::string " << c.cxxName << "::GetNamespace() const { return kTargetNamespace; }\n";
    s << "const char* " << c.cxxName << "::GetNamespaceText() const { return kTargetNamespace; }\n";
    s << "CParentElementInfo* " << c.cxxName << "::GetClassInfo() { return g_" << c.fileBase << "Records.Info(); }\n";
    s << "CElementInfo** " << c.cxxName << "::GetClassElementInfo() { return g_" << c.fileBase << "Records.Elements(); }\n";
    s << "CAttributeInfo** " << c.cxxName << "::GetClassAttributeInfo() { return g_" << c.fileBase << "Records.Attributes(); }\n\n";
    s << "void " << c.cxxName << "::Init() {\n";
    if (c.base) s << "  " << baseClass << "::Init();\n";
    s << "  InitMembers();\n}\n\n";
    s << "void " << c.cxxName << "::InitMembers() {\n";
    for (const Member* m : members) s << "  " << InitOf(c, *m) << "\n";
    if (c.simpleContent && !c.base) {
      Member value;
      value.kind = c.simpleContent->enumeration ? MemberKind::Enum : MemberKind::Prim;
      value.simple = *c.simpleContent;
      value.property = c.valueProperty;
      s << "  " << InitOf(c, value) << "\n";
    }
    if (nillable) s << "  m_nil = false;\n";
    s << "}\n\n";
    s << "void " << c.cxxName << "::AccessProperty(int propertyId, bool get, KoVariant& value) {\n";
    s << "  switch (propertyId) {\n";
    for (const Member* m : members) s << AccessCase(c, *m);
    if (c.simpleContent && !c.base) {
      Member value;
      value.kind = c.simpleContent->enumeration ? MemberKind::Enum : MemberKind::Prim;
      value.simple = *c.simpleContent;
      value.property = c.valueProperty;
      if (value.kind == MemberKind::Enum) {
        // Simple content is exchanged as text.
        const std::string e = Qualified(c.ns, value.simple.enumeration->ns, value.simple.enumeration->cxxName);
        s << "    case k" << c.valueProperty << ":\n      return get ? value.SetString(" << e << "ToText(static_cast<int>("
          << Var(value) << "))) : void(" << Var(value) << " = static_cast<" << e << ">(" << e
          << "FromText(value.GetString().c_str())));\n";
      } else {
        s << AccessCase(c, value);
      }
    }
    s << "    default:";
    if (c.base) s << " return " << baseClass << "::AccessProperty(propertyId, get, value);\n";
    else s << " break;\n";
    s << "  }\n}\n";

    // Reading stores primitive values straight from their text. A class
    // derived from this one outside the generated code may watch its
    // properties through AccessProperty, so its objects go through it.
    std::string storeCases;
    for (const Member* m : members)
      if (StoresText(*m)) storeCases += StoreTextCase(*m);
    if (c.simpleContent && !c.base && !c.simpleContent->enumeration) {
      Member value;
      value.simple = *c.simpleContent;
      value.property = c.valueProperty;
      if (StoresText(value)) storeCases += StoreTextCase(value);
    }
    s << "\nbool " << c.cxxName << "::StorePropertyText(int propertyId, KoXmlLib10::ItemType itemType, const std::string& text,\n"
      << "                                KoXmlLib10::CWhitespaceUtils::WhitespaceRule rule) {\n"
      << "  if (typeid(*this) != typeid(" << c.cxxName << ")) return false;\n"
      << "  return StoreOwnPropertyText(propertyId, itemType, text, rule);\n}\n\n";
    const bool usesArguments = !storeCases.empty() || c.base;
    s << "bool " << c.cxxName << "::StoreOwnPropertyText(int propertyId, KoXmlLib10::ItemType"
      << (usesArguments ? " itemType" : "") << ", const std::string&" << (usesArguments ? " text" : "")
      << ",\n                                   KoXmlLib10::CWhitespaceUtils::WhitespaceRule" << (usesArguments ? " rule" : "")
      << ") {\n";
    s << "  switch (propertyId) {\n" << storeCases << "    default:";
    if (c.base) s << " return " << baseClass << "::StoreOwnPropertyText(propertyId, itemType, text, rule);\n";
    else s << " return false;\n";
    s << "  }\n}\n";
    if (c.needsCollection) {
      const std::string k = c.cxxName;
      s << "\n" << k << "Col::" << k << "Col(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs)\n"
        << "    : CXmlClassCollection(elementName, elementNamespace, minOccurs, maxOccurs, &" << k << "::Create, 0"
        << (c.pseudo ? ", XmlElementTypePseudo" : "") << ") {}\n\n";
      if (c.elementFactory)
        s << k << "Col::" << k << "Col(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs,\n"
          << "    ElementFactoryFunction factory)\n"
          << "    : CXmlClassCollection(elementName, elementNamespace, minOccurs, maxOccurs, factory) {}\n\n";
      s << "CSmartPtr<" << k << "> " << k << "Col::Add() {\n  CSmartPtr<" << k << "> item(new " << k
        << "(GetElementName().c_str()));\n  AppendItem(item.get());\n  return item;\n}\n";
    }
    s << "\n" << Close(ns);
    m_files[c.fileBase + ".cpp"] = s.str();
  }

  const BindingModel& m_model;
  const EmitOptions& m_options;
  std::map<std::string, std::string> m_files;
};

}  // namespace

std::map<std::string, std::string> Emit(const BindingModel& model, const EmitOptions& options) {
  return Writer(model, options).Run();
}

}  // namespace koxml::generate
