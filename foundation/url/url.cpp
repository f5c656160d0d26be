#include "foundation/url/url.h"

#include <glib.h>

#include <memory>

namespace skerrow::foundation {

namespace {

struct GlibFree {
  void operator()(char* memory) const { g_free(memory); }
};
using GlibText = std::unique_ptr<char, GlibFree>;

constexpr std::string_view kFileScheme = "file:";

bool holdsNul(std::string_view text) { return text.find('\0') != std::string_view::npos; }

}  // namespace

std::optional<Url> parseUrl(std::string_view text) {
  std::string absoluteString(text);
  if (holdsNul(text) || g_uri_is_valid(absoluteString.c_str(), G_URI_FLAGS_ENCODED, nullptr) == 0) {
    return std::nullopt;
  }
  return Url{std::move(absoluteString)};
}

std::optional<Url> fileUrl(std::string_view posixPath) {
  if (holdsNul(posixPath)) return std::nullopt;
  const GlibText uri(g_filename_to_uri(std::string(posixPath).c_str(), nullptr, nullptr));
  if (!uri) return std::nullopt;
  return Url{uri.get()};
}

bool isFileUrl(const Url& url) {
  return g_ascii_strncasecmp(url.absoluteString.c_str(), kFileScheme.data(), kFileScheme.size()) ==
         0;
}

std::optional<std::string> filePath(const Url& url) {
  if (!isFileUrl(url)) return std::nullopt;
  // The library takes a query for a part of the path.
  if (url.absoluteString.find('?') != std::string::npos) return std::nullopt;
  char* host = nullptr;
  const GlibText path(g_filename_from_uri(url.absoluteString.c_str(), &host, nullptr));
  const GlibText ownedHost(host);
  if (!path || (host != nullptr && std::string_view(host) != "localhost")) return std::nullopt;
  return path.get();
}

}  // namespace skerrow::foundation
