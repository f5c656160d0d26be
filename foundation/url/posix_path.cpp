#include "foundation/url/posix_path.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/text/text_encoding.h"

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

std::u16string withTildeExpanded(std::u16string_view path, const platform::Platform& platform) {
  if (!path.starts_with(u'~')) return std::u16string(path);
  const std::size_t end = std::min(path.find(u'/'), path.size());
  const std::u16string_view user = path.substr(1, end - 1);
  const std::optional<std::string> name = fileNameFromText(user);
  if (!name || holdsNul(user)) return std::u16string(path);
  const std::optional<std::string> home =
      platform::homeFolder(platform.environment, platform.accounts, *name);
  if (!home) return std::u16string(path);
  return textFromFileName(*home) + std::u16string(path.substr(end));
}

// An absolute path on its way through its components.
class Walk {
 public:
  explicit Walk(const platform::FileFacts& facts) : facts_(facts) {}

  void goInto(std::u16string component) {
    unitCount_ += component.size() + 1;
    components_.push_back(std::move(component));
  }

  /// Goes to the real parent of the folder.
  void goToParent() {
    if (components_.empty()) return;
    followLink();
    if (components_.empty()) return;
    unitCount_ -= components_.back().size() + 1;
    components_.pop_back();
  }

  [[nodiscard]] std::u16string path() const { return absolutePathOf(components_); }

 private:
  void followLink() {
    // The system takes no path of more bytes, and each unit is at least one.
    constexpr std::size_t kLongestPath = 4096;
    if (unitCount_ > kLongestPath) return;
    const std::u16string folder = path();
    const std::optional<std::string> name = fileNameFromText(folder);
    if (!name || holdsNul(folder)) return;
    const auto real = facts_.resolvedLink(*name);
    if (!real) return;
    components_.clear();
    unitCount_ = 0;
    for (std::u16string& component : componentsOf(textFromFileName(*real))) {
      goInto(std::move(component));
    }
  }

  const platform::FileFacts& facts_;
  Components components_;
  std::size_t unitCount_ = 0;  // of the path
};

}  // namespace

std::u16string standardizedPath(std::u16string_view path, const platform::Platform& platform) {
  if (path.empty()) return {};
  const std::u16string expanded = withTildeExpanded(path, platform);
  if (!expanded.starts_with(u'/')) {
    std::u16string relative;
    for (const std::u16string& component : componentsOf(expanded)) {
      relative += (relative.empty() ? u"" : u"/") + component;
    }
    return relative.empty() ? u"." : relative;
  }
  Walk walk(platform.facts);
  for (std::u16string& component : componentsOf(expanded)) {
    if (component == u"..") {
      walk.goToParent();
    } else {
      walk.goInto(std::move(component));
    }
  }
  return walk.path();
}

}  // namespace skerrow::foundation
