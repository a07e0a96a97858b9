// Protected values: how a password is kept in a profile file.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/errorlist.h"
#include "core/strhex.h"
#include "dsn/attrlist.h"
#include "dsn/protect_impl.h"

namespace {

std::string protect(const std::string& clear)
{
    unsigned char* out = nullptr;
    EXPECT_EQ(getEncryptedHexifiedValue(reinterpret_cast<unsigned char*>(const_cast<char*>(clear.c_str())), &out), 0);
    std::string text = out != nullptr ? reinterpret_cast<char*>(out) : "(null)";
    std::free(out);
    return text;
}

std::string reveal(const std::string& stored, int* rc = nullptr)
{
    unsigned char* out = reinterpret_cast<unsigned char*>(0x1);
    const int result = getDehexifiedDecryptedValue(reinterpret_cast<unsigned char*>(const_cast<char*>(stored.c_str())), &out);
    if (rc != nullptr)
        *rc = result;
    std::string text = out != nullptr ? reinterpret_cast<char*>(out) : "(null)";
    std::free(out);
    return text;
}

bool isUpperHex(const std::string& digits)
{
    for (char c : digits)
        if (!std::isdigit(static_cast<unsigned char>(c)) && !(c >= 'A' && c <= 'F'))
            return false;
    return true;
}

}  // namespace

TEST(ProtectedValue, IsTheMarkerThenTwoUpperCaseDigitsPerByteAndComesBack)
{
    for (const std::string clear : {"s3cret", "x", "ab", "abc", "Pass word;with=odd chars!", "\xC3\xA6\xC3\xB8"}) {
        const std::string stored = protect(clear);
        ASSERT_FALSE(stored.empty());
        EXPECT_EQ(static_cast<unsigned char>(stored[0]), DSN_PROTECTED_MARKER) << clear;
        EXPECT_EQ(stored.size(), 1 + 2 * clear.size()) << clear;
        EXPECT_TRUE(isUpperHex(stored.substr(1))) << stored;
        // The ciphertext differs from the clear text's own hex digits.
        char plainHex[256];
        hexify(plainHex, reinterpret_cast<const unsigned char*>(clear.data()), static_cast<long>(clear.size()));
        EXPECT_NE(stored.substr(1), plainHex) << clear;
        int rc = -1;
        const std::string back = reveal(stored, &rc);
        EXPECT_EQ(rc, 0);
        // A ciphertext byte of 0 would cut the value (see the next test);
        // these values have none, so they come back whole.
        EXPECT_EQ(back, clear);
    }
}

TEST(ProtectedValue, ACipherByteOfZeroCutsTheRevealedValueAsTheFormatAlwaysHas)
{
    // Find a two-character clear text whose second cipher byte is 0: the
    // reveal takes the length with strlen and so deciphers one byte only.
    bool found = false;
    for (int a = 'a'; a <= 'z' && !found; ++a) {
        for (int b = 0x20; b < 0x7F && !found; ++b) {
            const std::string clear{static_cast<char>(a), static_cast<char>(b)};
            const std::string stored = protect(clear);
            if (stored.substr(3, 2) != "00")
                continue;
            found = true;
            const std::string back = reveal(stored);
            EXPECT_EQ(back.size(), 1u);
            EXPECT_NE(back, clear);
        }
    }
    EXPECT_TRUE(found) << "no clear text with a zero cipher byte among those tried";
}

TEST(ProtectedValue, PlainTextPassesAndProtectedTextIsNotProtectedTwice)
{
    EXPECT_EQ(reveal("plain words"), "plain words");
    EXPECT_EQ(reveal(""), "");
    unsigned char* out = nullptr;
    EXPECT_EQ(getDehexifiedDecryptedValue(nullptr, &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(getDehexifiedDecryptedValue(nullptr, nullptr), 1);
    EXPECT_EQ(getEncryptedHexifiedValue(nullptr, nullptr), 1);

    // Already protected: success, and nothing handed out.
    std::string stored = protect("twice");
    unsigned char* again = reinterpret_cast<unsigned char*>(0x1);
    EXPECT_EQ(getEncryptedHexifiedValue(reinterpret_cast<unsigned char*>(stored.data()), &again), 0);
    EXPECT_EQ(again, reinterpret_cast<unsigned char*>(0x1));

    // An empty clear text gives an empty (unmarked) value.
    EXPECT_EQ(protect(""), "");
}

TEST(ProtectedValue, ABadHexDigitFailsWithError2708AndHandsNothingOut)
{
    ZuErrorList errors(nullptr, 1);
    ZuErrorKeeper::setErrorList(&errors);
    std::string stored = protect("abcd");
    stored[3] = 'G';
    int rc = 0;
    EXPECT_EQ(reveal(stored, &rc), "(null)");
    EXPECT_EQ(rc, 1);
    ASSERT_TRUE(errors.isExistingError());
    EXPECT_EQ(errors.getLastError()->getErrorNumber(), ZU_MSG_BAD_HEX_DIGIT);
    ZuErrorKeeper::giveUpErrorList();
}

TEST(ProtectedValue, ANodeValueGetsTheProtectedFormOrEmpty)
{
    char value[ND_VALUE_SIZE];
    std::strcpy(value, "old");
    char clear[] = "hunter2";
    EXPECT_EQ(setEncryptedHexifiedValue(clear, value), 0);
    EXPECT_EQ(reveal(value), "hunter2");
    EXPECT_EQ(static_cast<unsigned char>(value[0]), DSN_PROTECTED_MARKER);

    // A null clear text, or one that is protected already, empties the node.
    EXPECT_EQ(setEncryptedHexifiedValue(nullptr, value), 0);
    EXPECT_STREQ(value, "");
    std::string stored = protect("x");
    std::strcpy(value, "old");
    EXPECT_EQ(setEncryptedHexifiedValue(stored.data(), value), 0);
    EXPECT_STREQ(value, "");

    // A clear text too long for the node's field is cut to the field.
    std::string longClear(600, 'p');
    EXPECT_EQ(setEncryptedHexifiedValue(longClear.data(), value), 0);
    EXPECT_EQ(std::strlen(value), static_cast<size_t>(ND_VALUE_SIZE - 1));
}

TEST(ProtectedValue, EncryptionMethodsShowTheirNamesAndAnythingElseShowsNoEncryption)
{
    const std::pair<const char*, const char*> cases[] = {
        {"0", "0 - No Encryption"}, {"1", "1 - SSL Auto"}, {"2", "2 - Database Encryption"}, {"3", "3 - SSL3"},
        {"4", "4 - SSL2"},          {"5", "5 - TLS1"},     {"9", "0 - No Encryption"},       {"", "0 - No Encryption"}};
    for (const auto& [value, shown] : cases) {
        XmString string = decodeEncryption(reinterpret_cast<const unsigned char*>(value));
        char* text = static_cast<char*>(XmStringUnparse(string, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0,
                                                        XmOUTPUT_ALL));
        EXPECT_STREQ(text, shown) << value;
        XtFree(text);
        XmStringFree(string);
    }
}
