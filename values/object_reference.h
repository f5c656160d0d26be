#pragma once
// ObjectReference: what a script value of type 'obj ' holds, a reference to a property
// or element of the application. Immutable and shared; safe to read on any thread.
// What it refers to is looked up by those who can, from its path.

#include <string>
#include <utility>

namespace skerrow {

class ObjectReference {
 public:
  ObjectReference() = default;
  ObjectReference(const ObjectReference&) = delete;
  ObjectReference& operator=(const ObjectReference&) = delete;
  virtual ~ObjectReference() = default;

  /// The way from the application inwards, in UTF-8: progWin.progMessage,
  /// skerrowScreens[1].skerrowBounds.
  [[nodiscard]] virtual std::string path() const = 0;
};

/// A path as it was given, which nobody has looked up.
class PathReference final : public ObjectReference {
 public:
  explicit PathReference(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] std::string path() const override { return path_; }

 private:
  std::string path_;
};

}  // namespace skerrow
