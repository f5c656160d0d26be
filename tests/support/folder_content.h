#pragma once
// FolderContent: what is in a folder, at any depth: files with their bytes, folders, and
// symbolic links. Case tables write it as an object of paths:
//
//   {"a.txt": "text", "b/c.bin": {"base64": "AP8="}, "empty": {"folder": true},
//    "link": {"link": "a.txt"}}
//
// Folders on the way to a path need not be written.

#include <map>
#include <string>
#include <string_view>

namespace skerrow::tests {

struct FolderItem {
  enum class Kind { file, folder, link };

  Kind kind = Kind::folder;
  std::string content;  ///< the bytes of a file, or what a link holds

  bool operator==(const FolderItem&) const = default;
};

/// The items by their paths in the folder.
using FolderContent = std::map<std::string, FolderItem>;

/// What becomes of a folder by changes that are written as above; null as a path's item
/// means that nothing is there, nor anything in it. Throws std::invalid_argument and
/// MalformedJson.
FolderContent afterChanges(FolderContent before, std::string_view json);

/// The changes that make the one of the other, as afterChanges takes them.
std::string changesBetween(const FolderContent& before, const FolderContent& after);

/// Makes the items in a folder that is there and empty.
void makeContent(const FolderContent& content, const std::string& folder);

/// What is in a folder on disk.
FolderContent contentOfFolder(const std::string& folder);

}  // namespace skerrow::tests
