#include <gtest/gtest.h>

#include <string>

#include "kiv/KIVMD5.h"
#include "support/TempFile.h"

namespace {

// The test suite of RFC 1321, appendix A.5.
const struct {
    const char* message;
    const char* digest;
} kRfc1321[] = {
    {"", "d41d8cd98f00b204e9800998ecf8427e"},
    {"a", "0cc175b9c0f1b6a831c399e269772661"},
    {"abc", "900150983cd24fb0d6963f7d28e17f72"},
    {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
    {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
    {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
     "d174ab98d277d9f5a5611c2c9f419d9f"},
    {"12345678901234567890123456789012345678901234567890"
     "123456789012345678901234567890",
     "57edf4a22be3c955ac49da2e2107b67a"},
};

TEST(Md5Test, DigestsOfTextAndOfFilesMatchTheReferenceVectors) {
    for (const auto& vector : kRfc1321) {
        SCOPED_TRACE(vector.message);
        kiv::CString digest = "unchanged";
        ASSERT_TRUE(KIVMD5::calculateMD5Hash(vector.message, digest));
        EXPECT_EQ(digest.str(), vector.digest);
        const testsupport::TempFile file("md5", vector.message);
        digest = "unchanged";
        ASSERT_TRUE(KIVMD5::calculateMD5HashFile(kiv::String(file.widePath()), digest));
        EXPECT_EQ(digest.str(), vector.digest);
    }
}

TEST(Md5Test, FileDigestCoversEveryByteAcrossChunks) {
    // Larger than one read chunk and holding zero bytes, which must all be hashed: one
    // million "a" is a well-known vector, the zeros make it differ.
    const testsupport::TempFile million("md5big", std::string(1000000, 'a'));
    kiv::CString digest;
    ASSERT_TRUE(KIVMD5::calculateMD5HashFile(kiv::String(million.widePath()), digest));
    EXPECT_EQ(digest.str(), "7707d6ae4e027c70eea2a935c2296f21");

    const testsupport::TempFile withZero("md5zero", std::string("abc\0def", 7));
    ASSERT_TRUE(KIVMD5::calculateMD5HashFile(kiv::String(withZero.widePath()), digest));
    EXPECT_NE(digest.str(), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(digest.length(), 32u);
}

TEST(Md5Test, TextDigestStopsAtTheFirstZeroByte) {
    kiv::CString digest;
    ASSERT_TRUE(KIVMD5::calculateMD5Hash(kiv::CString("abc\0def", 7), digest));
    EXPECT_EQ(digest.str(), "900150983cd24fb0d6963f7d28e17f72");
    ASSERT_TRUE(KIVMD5::calculateMD5Hash(kiv::CString("\0abc", 4), digest));
    EXPECT_EQ(digest.str(), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Md5Test, MissingFileOrDirectoryFailsAndLeavesTheDigest) {
    kiv::CString digest = "unchanged";
    EXPECT_FALSE(KIVMD5::calculateMD5HashFile(L"no such file.bin", digest));
    EXPECT_FALSE(KIVMD5::calculateMD5HashFile(L".", digest));
    EXPECT_FALSE(KIVMD5::calculateMD5HashFile(L"", digest));
    EXPECT_EQ(digest.str(), "unchanged");
}

}  // namespace
