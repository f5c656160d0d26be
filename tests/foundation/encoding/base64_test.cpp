#include "foundation/encoding/base64.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/generators.h"

namespace skerrow::foundation {
namespace {

TEST(Base64, WritesAndReadsThePublishedExamples) {
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {std::string(1, '\0'), "AA=="},
      {"\xFB\xEF\xBE", "++++"},
      {"\xFF\xFF\xFF", "////"},
      {"é", "w6k="},
  };
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(base64FromBytes(bytes), text);
    EXPECT_EQ(bytesFromBase64(text), bytes) << text;
  }
}

TEST(Base64, RefusesWhatIsNotExactlyBase64) {
  const std::string rows[] = {"Z",
                              "Zg",
                              "Zg=",
                              "Zg===",
                              "=",
                              "====",
                              "A===",
                              "=AAA",
                              "AA=A",
                              "AAAA=",
                              "AAAA====",
                              "AA==AA==",
                              "Zm9v\n",
                              " Zm9v",
                              "Zm 9v",
                              "Zm-v",
                              "Zm_v",
                              "Zm9é",
                              "éé",
                              "AAA*",
                              std::string("AAA\0", 4),
                              std::string("\0\0\0\0", 4)};
  for (const std::string& text : rows) EXPECT_EQ(bytesFromBase64(text), std::nullopt) << text;
}

// Long content is encoded in pieces of 48 KiB, which must join without padding.
TEST(Base64, KeepsContentAroundTheEdgesOfPieces) {
  for (const std::size_t count : {48U * 1024 - 1, 48U * 1024, 48U * 1024 + 1, 3U * 48 * 1024 + 2}) {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 31);
    const std::string text = base64FromBytes(bytes);
    EXPECT_EQ(text.size(), (count + 2) / 3 * 4);
    EXPECT_EQ(bytesFromBase64(text), bytes);
  }
}

RC_GTEST_PROP(Base64, EveryRunOfBytesReadsBack, ()) {
  const std::string bytes = *tests::arbitraryBytes();
  RC_ASSERT(bytesFromBase64(base64FromBytes(bytes)) == bytes);
}

}  // namespace
}  // namespace skerrow::foundation
