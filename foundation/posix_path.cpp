#include "foundation/posix_path.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "foundation/text_encoding.h"
#include "platform/path_facts.h"

namespace skerrow::foundation {

namespace {

using Components = std::vector<std::u16string>;

bool holdsNul(std::u16string_view text) { return text.find(u'\0') != std::u16string_view::npos; }

Components componentsOf(std::u16string_view path) {
  Components components;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(u'/'), path.size());
    const std::u16string_view component = path.substr(0, end);
    if (!component.empty() && component != u".") components.emplace_back(component);
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return components;
}

std::u16string absolutePathOf(const Components& components) {
  std::u16string path;
  for (const std::u16string& component : components) path += u"/" + component;
  return path.empty() ? u"/" : path;
}

std::u16string withTildeExpanded(std::u16string_view path) {
  if (!path.starts_with(u'~')) return std::u16string(path);
  const std::size_t end = std::min(path.find(u'/'), path.size());
  const std::u16string_view user = path.substr(1, end - 1);
  if (holdsNul(user)) return std::u16string(path);
  const std::optional<std::string> home = platform::homeFolder(utf8FromUtf16(user));
  if (!home) return std::u16string(path);
  return utf16FromUtf8Replacing(*home) + std::u16string(path.substr(end));
}

// Replaces the components of a folder by those of its real parent.
void goToParent(Components& components) {
  if (components.empty()) return;
  const std::u16string path = absolutePathOf(components);
  if (!holdsNul(path)) {
    if (const auto real = platform::resolvedLink(utf8FromUtf16(path))) {
      components = componentsOf(utf16FromUtf8Replacing(*real));
    }
  }
  if (!components.empty()) components.pop_back();
}

}  // namespace

std::u16string standardizedPath(std::u16string_view path) {
  if (path.empty()) return {};
  const std::u16string expanded = withTildeExpanded(path);
  if (!expanded.starts_with(u'/')) {
    std::u16string relative;
    for (const std::u16string& component : componentsOf(expanded)) {
      relative += (relative.empty() ? u"" : u"/") + component;
    }
    return relative.empty() ? u"." : relative;
  }
  Components components;
  for (std::u16string& component : componentsOf(expanded)) {
    if (component == u"..") {
      goToParent(components);
    } else {
      components.push_back(std::move(component));
    }
  }
  return absolutePathOf(components);
}

}  // namespace skerrow::foundation
