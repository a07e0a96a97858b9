// CRC-32, MD5 and DES-CBC against gzip and openssl on the same bytes, and
// the text protection methods with their round trips and quirks.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "net/crc32.h"
#include "net/des.h"
#include "net/md5.h"
#include "net/textcipher.h"
#include "support/subprocess.h"

namespace {
std::string tempFile(const std::string& bytes)
{
    char name[] = "/tmp/hnsyb-cipher-XXXXXX";
    const int fd = mkstemp(name);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(fd);
    return name;
}

std::string readAll(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string hex(const unsigned char* p, size_t n)
{
    std::string s;
    char b[3];
    for (size_t i = 0; i < n; ++i) {
        std::snprintf(b, sizeof b, "%02x", p[i]);
        s += b;
    }
    return s;
}

std::string randomBytes(std::mt19937& rng, size_t n)
{
    std::string s(n, '\0');
    for (char& c : s)
        c = static_cast<char>(rng());
    return s;
}

const unsigned char* u(const std::string& s) { return reinterpret_cast<const unsigned char*>(s.data()); }
}  // namespace

TEST(Crc32, MatchesGzipTrailerInOneGoAndInPieces)
{
    std::mt19937 rng(1);
    for (size_t n : {0u, 1u, 7u, 64u, 1000u, 65537u}) {
        const std::string data = randomBytes(rng, n);
        const std::string in = tempFile(data);
        const std::string gz = in + ".gz";
        ASSERT_EQ(runProgram({"sh", "-c", "gzip -c -n \"$0\" > \"$1\"", in, gz}).exitCode, 0);
        const std::string z = readAll(gz);
        ASSERT_GE(z.size(), 8u);
        uint32_t expected = 0;
        for (int i = 0; i < 4; ++i)
            expected |= static_cast<uint32_t>(static_cast<unsigned char>(z[z.size() - 8 + i])) << (8 * i);
        EXPECT_EQ(updateCRC32(0xFFFFFFFFul, u(data), n) ^ 0xFFFFFFFFul, expected) << n;
        const size_t half = n / 3;
        unsigned long crc = updateCRC32(0xFFFFFFFFul, u(data), half);
        crc = updateCRC32(crc, u(data) + half, n - half);
        EXPECT_EQ(crc ^ 0xFFFFFFFFul, expected) << "in pieces, " << n;
        unlink(in.c_str());
        unlink(gz.c_str());
    }
    EXPECT_EQ(CRC32Table[1], 0x77073096u);
}

TEST(Md5, MatchesOpensslAtEveryPaddingBoundary)
{
    std::mt19937 rng(2);
    for (size_t n : {0u, 1u, 55u, 56u, 57u, 63u, 64u, 65u, 119u, 120u, 1000u}) {
        const std::string data = randomBytes(rng, n);
        const std::string in = tempFile(data);
        const RunResult r = runProgram({"openssl", "dgst", "-md5", "-r", in});
        ASSERT_EQ(r.exitCode, 0) << r.output;
        std::vector<uint32_t> words(n / 4 + 1);
        std::memcpy(words.data(), data.data(), n);
        uint32_t digest[4];
        MD5(words.data(), 8 * n, digest);
        EXPECT_EQ(hex(reinterpret_cast<unsigned char*>(digest), 16), r.output.substr(0, 32)) << n;
        unlink(in.c_str());
    }
    uint32_t digest[4];
    MD5(nullptr, 0, digest);
    EXPECT_EQ(hex(reinterpret_cast<unsigned char*>(digest), 16), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Md5, PartialByteKeepsOnlyItsTopBits)
{
    uint32_t a[2] = {}, b[2] = {}, da[4], db[4];
    std::memcpy(a, "abc\xA0", 4);  // 27 bits: "abc" and the top 3 bits 101
    std::memcpy(b, "abc\xBF", 4);  // the same top bits, other bits below them
    MD5(a, 27, da);
    MD5(b, 27, db);
    EXPECT_EQ(std::memcmp(da, db, 16), 0);
    MD5(a, 28, db);
    EXPECT_NE(std::memcmp(da, db, 16), 0);
    EXPECT_EQ(leftRotate(0x80000001u, 1), 3u);
}

TEST(DesCbc, MatchesOpensslAndRoundTrips)
{
    std::mt19937 rng(3);
    const std::string key = randomBytes(rng, 8), iv = randomBytes(rng, 8);
    const std::string plain = randomBytes(rng, 64);
    const std::string in = tempFile(plain);
    const std::string out = in + ".des";
    const RunResult r = runProgram({"openssl", "enc", "-des-cbc", "-nopad", "-provider", "legacy", "-provider",
                                    "default", "-K", hex(u(key), 8), "-iv", hex(u(iv), 8), "-in", in, "-out", out});
    ASSERT_EQ(r.exitCode, 0) << r.output;
    const std::string expected = readAll(out);
    unlink(in.c_str());
    unlink(out.c_str());

    DESwCBCEncryptor enc(u(iv));
    enc.SetKeySchedule(u(key), 8, CipherEncrypt);
    std::vector<unsigned char> src(plain.begin(), plain.end()), cipher(64);
    // In two calls: the chain carries over.
    enc.EncryptData(src.data(), cipher.data(), 24);
    enc.EncryptData(src.data() + 24, cipher.data() + 24, 40);
    EXPECT_EQ(std::string(cipher.begin(), cipher.end()), expected);

    // In place: chained from the initial value each call.
    DESwCBCEncryptor inPlace(u(iv));
    inPlace.SetKeySchedule(u(key), 8, CipherEncrypt);
    std::vector<unsigned char> buf(src);
    inPlace.EncryptData(buf.data(), buf.data(), 64);
    EXPECT_EQ(buf, cipher);

    DESwCBCEncryptor dec(u(iv));
    dec.SetKeySchedule(u(key), 8, CipherDecrypt);
    std::vector<unsigned char> back(64);
    dec.DecryptData(cipher.data(), back.data(), 32);
    dec.DecryptMoreData(cipher.data() + 32, back.data() + 32, 32);
    EXPECT_EQ(back, src);

    // The checksum form leaves the last cipher block.
    unsigned char mac[8];
    DESwCBCEncryptor sum(u(iv));
    sum.SetKeySchedule(u(key), 8, CipherEncrypt);
    sum.ProcessString(src.data(), 64, mac, 8);
    EXPECT_EQ(std::memcmp(mac, cipher.data() + 56, 8), 0);
}

TEST(DesCbc, StandardTestVector)
{
    // FIPS 81 example: key 0123456789abcdef, iv 1234567890abcdef.
    const unsigned char key[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef};
    const unsigned char iv[] = {0x12, 0x34, 0x56, 0x78, 0x90, 0xab, 0xcd, 0xef};
    unsigned char text[] = "Now is the time for all ";
    DESwCBCEncryptor enc(iv);
    enc.SetKeySchedule(key, 8, CipherEncrypt);
    unsigned char out[24];
    enc.EncryptData(text, out, 24);
    EXPECT_EQ(hex(out, 24), "e5c7cdde872bf27c43e934008c389c0f683788499a7c05f6");
}

TEST(TextProtection, MethodsRoundTripAndKeepTheirQuirks)
{
    std::mt19937 rng(4);
    for (unsigned short method : {1, 2, 3}) {
        for (size_t n : {1u, 2u, 3u, 16u, 31u}) {
            std::string s = randomBytes(rng, n);
            if (method == 2)
                for (char& c : s)
                    if (static_cast<unsigned char>(c) == 0xF5)
                        c = 'x';  // its complement is the end of line, which method 2 leaves alone
            std::vector<unsigned char> t(s.begin(), s.end());
            encrypt(t.data(), n, method, reinterpret_cast<const unsigned char*>("secret"));
            if (n > 1) {
                EXPECT_NE(std::string(t.begin(), t.end()), s) << method << " " << n;
            }
            decrypt(t.data(), n, method, reinterpret_cast<const unsigned char*>("secret"));
            EXPECT_EQ(std::string(t.begin(), t.end()), s) << method << " " << n;

            std::vector<unsigned short> w(n);
            for (size_t i = 0; i < n; ++i)
                w[i] = static_cast<unsigned short>(rng());
            if (method == 2)
                for (unsigned short& x : w)
                    if (x == 0xFFF5)
                        x = 1;
            const std::vector<unsigned short> orig = w;
            encrypt(w.data(), n, method, nullptr);
            decrypt(w.data(), n, method, nullptr);
            EXPECT_EQ(w, orig) << "16-bit, method " << method << " " << n;
        }
    }
    unsigned char line[] = "a\nb";
    encrypt(line, 3, 2, nullptr);
    EXPECT_EQ(line[1], '\n') << "method 2 keeps the line structure";
    EXPECT_EQ(line[0], static_cast<unsigned char>(~'a'));

    // One unit: an XOR with the first key byte.
    unsigned char one[] = {0x41};
    encrypt(one, 1, 3, reinterpret_cast<const unsigned char*>("K"));
    EXPECT_EQ(one[0], 0x41 ^ 'K');

    // Odd count: the last unit pairs with the first, which changes again.
    unsigned char even[] = "abcd", odd[] = "abcde";
    encrypt(even, 4, 3, nullptr);
    encrypt(odd, 5, 3, nullptr);
    EXPECT_EQ(even[2], odd[2]);
    EXPECT_NE(even[0], odd[0]);

    // Another key does not read back; an unknown method changes nothing.
    unsigned char t[] = "value1";
    encrypt(t, 6, 3, reinterpret_cast<const unsigned char*>("one"));
    decrypt(t, 6, 3, reinterpret_cast<const unsigned char*>("two"));
    EXPECT_NE(std::string(reinterpret_cast<char*>(t), 6), "value1");
    unsigned char same[] = "keep";
    encrypt(same, 4, 7, nullptr);
    EXPECT_STREQ(reinterpret_cast<char*>(same), "keep");
}
