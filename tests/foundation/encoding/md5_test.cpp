#include "foundation/encoding/md5.h"

#include <gtest/gtest.h>

#include <string>

namespace skerrow::foundation {
namespace {

// The test suite of RFC 1321, section A.5.
TEST(Md5, GivesTheDigestsOfItsDefinition) {
  EXPECT_EQ(md5Digest(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(md5Digest("a"), "0cc175b9c0f1b6a831c399e269772661");
  EXPECT_EQ(md5Digest("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
  EXPECT_EQ(md5Digest("12345678901234567890123456789012345678901234567890123456789012345678901234"
                      "567890"),
            "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Md5, TakesBytesOfAnyValue) {
  EXPECT_EQ(md5Digest(std::string("\0\xFF", 2)), "d07d34efac6328007ad67c7e0a985e00");
}

}  // namespace
}  // namespace skerrow::foundation
