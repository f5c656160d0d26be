#include "foundation/encoding/md5.h"

#include <glib.h>

#include <memory>

namespace skerrow::foundation {

std::string md5Digest(std::string_view bytes) {
  struct Free {
    void operator()(char* text) const { g_free(text); }
  };
  const auto* const begin = reinterpret_cast<const guchar*>(bytes.data());
  const std::unique_ptr<char, Free> digits(
      g_compute_checksum_for_data(G_CHECKSUM_MD5, begin, bytes.size()));
  return digits.get();
}

}  // namespace skerrow::foundation
