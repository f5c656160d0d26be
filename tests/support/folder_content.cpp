#include "tests/support/folder_content.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "foundation/encoding/base64.h"
#include "foundation/text/text_encoding.h"
#include "tests/support/json_text.h"

namespace skerrow::tests {

namespace {

namespace fs = std::filesystem;
using Kind = FolderItem::Kind;

std::string inQuotes(std::string_view path) { return "“" + std::string(path) + "”"; }

void requireInside(const std::string& path) {
  const fs::path normal = fs::path(path).lexically_normal();
  const bool isPlain = normal.string() == path && normal.is_relative() && normal.has_filename() &&
                       path != "." && *normal.begin() != "..";
  if (!isPlain) throw std::invalid_argument(inQuotes(path) + " is no path inside of a folder");
}

FolderItem itemFrom(const JsonPart& member) {
  if (member.text.starts_with('"')) return {Kind::file, contentOf(member.text)};
  const auto parts = membersOf(member.text);
  if (parts.size() == 1 && parts.front().name == "folder" && parts.front().text == "true") {
    return {};
  }
  if (parts.size() == 1 && parts.front().name == "link") {
    return {Kind::link, contentOf(parts.front().text)};
  }
  if (parts.size() == 1 && parts.front().name == "base64") {
    if (auto bytes = foundation::bytesFromBase64(contentOf(parts.front().text))) {
      return {Kind::file, *std::move(bytes)};
    }
  }
  throw std::invalid_argument(inQuotes(member.name) +
                              " needs a text, “base64”, “folder”: true or “link”");
}

void removeWithContent(FolderContent& content, const std::string& path) {
  std::erase_if(content, [&path](const auto& entry) {
    return entry.first == path || entry.first.starts_with(path + "/");
  });
}

void add(FolderContent& content, const std::string& path, FolderItem item) {
  for (std::size_t at = path.find('/'); at != std::string::npos; at = path.find('/', at + 1)) {
    const auto [folder, isNew] = content.try_emplace(path.substr(0, at));
    if (folder->second.kind != Kind::folder) {
      throw std::invalid_argument(inQuotes(folder->first) + " is no folder for " + inQuotes(path));
    }
  }
  const auto inside = content.lower_bound(path + "/");
  if (item.kind != Kind::folder && inside != content.end() &&
      inside->first.starts_with(path + "/")) {
    throw std::invalid_argument(inQuotes(path) + " is a folder for " + inQuotes(inside->first));
  }
  content.insert_or_assign(path, std::move(item));
}

std::string jsonOf(const FolderItem& item) {
  switch (item.kind) {
    case Kind::folder:
      return R"({"folder": true})";
    case Kind::link:
      return R"({"link": )" + jsonString(item.content) + "}";
    case Kind::file:
      if (foundation::utf16FromUtf8(item.content)) return jsonString(item.content);
  }
  return R"({"base64": )" + jsonString(foundation::base64FromBytes(item.content)) + "}";
}

bool hasFolderOf(const FolderContent& content, const std::string& path) {
  const std::size_t end = path.rfind('/');
  return end == std::string::npos || content.contains(path.substr(0, end));
}

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

FolderContent afterChanges(FolderContent before, std::string_view json) {
  FolderContent after = std::move(before);
  const auto members = membersOf(json);
  for (const JsonPart& member : members) {
    requireInside(member.name);
    if (member.text != "null") continue;
    if (!after.contains(member.name)) {
      throw std::invalid_argument(inQuotes(member.name) + " is not there before either");
    }
    removeWithContent(after, member.name);
  }
  for (const JsonPart& member : members) {
    if (member.text == "null") continue;
    add(after, member.name, itemFrom(member));
  }
  return after;
}

std::string changesBetween(const FolderContent& before, const FolderContent& after) {
  std::string changes;
  const auto write = [&changes](const std::string& path, const std::string& item) {
    changes += (changes.empty() ? "" : ", ") + jsonString(path) + ": " + item;
  };
  for (const auto& [path, item] : before) {
    if (!after.contains(path) && hasFolderOf(after, path)) write(path, "null");
  }
  for (const auto& [path, item] : after) {
    const auto there = before.find(path);
    if (there != before.end() && there->second == item) continue;
    const auto inside = after.lower_bound(path + "/");
    const bool isOnTheWay =
        there == before.end() && inside != after.end() && inside->first.starts_with(path + "/");
    if (!isOnTheWay) write(path, jsonOf(item));
  }
  return "{" + changes + "}";
}

// Folders come before what is in them, as their paths are shorter.
void makeContent(const FolderContent& content, const std::string& folder) {
  for (const auto& [path, item] : content) {
    const fs::path place = fs::path(folder) / path;
    if (item.kind == Kind::folder) {
      fs::create_directory(place);
    } else if (item.kind == Kind::link) {
      fs::create_symlink(item.content, place);
    } else {
      std::ofstream file(place, std::ios::binary);
      file.write(item.content.data(), static_cast<std::streamsize>(item.content.size()));
      if (!file.flush()) throw std::runtime_error("could not write " + place.string());
    }
  }
}

FolderContent contentOfFolder(const std::string& folder) {
  FolderContent content;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    FolderItem item;
    if (entry.is_symlink()) {
      item = {Kind::link, fs::read_symlink(entry.path()).string()};
    } else if (entry.is_regular_file()) {
      item = {Kind::file, bytesOf(entry.path())};
    } else if (!entry.is_directory()) {
      throw std::runtime_error("there is no word for " + entry.path().string());
    }
    content.emplace(entry.path().lexically_relative(folder).string(), std::move(item));
  }
  return content;
}

}  // namespace skerrow::tests
