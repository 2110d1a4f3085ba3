#ifndef KOXMLLIB10_MEMBERS_REGEX_H
#define KOXMLLIB10_MEMBERS_REGEX_H

#include <string>

namespace KoXmlLib10 {

// What TestRegEx(LocalTextAsUtf8(pattern), value) answers, without copying
// either text when it is plain ASCII: the facet check of every value written
// goes through here.
bool MatchesPattern(const std::string& pattern, const std::string& value);

}  // namespace KoXmlLib10

#endif
