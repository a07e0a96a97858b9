// Protected values (see protect_impl.h).
//
// Grammar of a stored value:
//   protected = 0xFF hexdigit* NUL     (upper-case digits, two per byte)
//   plain     = any text not starting with 0xFF

#include "protect_impl.h"

#include <Xm/Text.h>

#include <cstring>

#include "../core/strcmp.h"
#include "../core/strcopy.h"
#include "../core/strhex.h"
#include "../net/textcipher.h"
#include "../platform/ram.h"
#include "attrlist.h"

namespace {

constexpr unsigned short kMethod = 3;  // keyed method of textcipher.h, built-in key

unsigned char* duplicate(const unsigned char* text)
{
    const std::size_t length = std::strlen(reinterpret_cast<const char*>(text));
    auto* copy = static_cast<unsigned char*>(ramAllocC(length + 1));
    if (copy != nullptr)
        std::memcpy(copy, text, length + 1);
    return copy;
}

}  // namespace

int getEncryptedHexifiedValue(unsigned char* clear, unsigned char** out)
{
    if (out == nullptr)
        return 1;
    if (clear == nullptr || clear[0] == DSN_PROTECTED_MARKER)
        return 0;  // nothing to protect, or protected already
    const std::size_t n = std::strlen(reinterpret_cast<char*>(clear));
    auto* cipher = static_cast<unsigned char*>(ramAllocC(2 * n + 2));
    if (cipher == nullptr) {
        *out = nullptr;
        return 1;
    }
    std::memcpy(cipher, clear, n + 1);
    encrypt(cipher, n, kMethod, nullptr);
    if (n == 0) {
        *out = cipher;  // empty
        return 0;
    }
    auto* text = static_cast<unsigned char*>(ramAllocC(2 * n + 2));
    if (text == nullptr) {
        ramFreeC(cipher);
        *out = nullptr;
        return 1;
    }
    text[0] = DSN_PROTECTED_MARKER;
    hexify(reinterpret_cast<char*>(text) + 1, cipher, static_cast<long>(n));  // 2n digits and a NUL
    ramFreeC(cipher);
    *out = text;
    return 0;
}

int getDehexifiedDecryptedValue(unsigned char* stored, unsigned char** out)
{
    if (out == nullptr)
        return 1;
    *out = nullptr;
    if (stored == nullptr)
        return 0;
    unsigned char* copy = duplicate(stored);
    if (copy == nullptr)
        return 1;
    if (copy[0] != DSN_PROTECTED_MARKER) {
        *out = copy;  // plain text passes as it is
        return 0;
    }
    const std::size_t digits = std::strlen(reinterpret_cast<char*>(copy) + 1);
    auto* clear = static_cast<unsigned char*>(ramAllocC(digits / 2 + 2));
    if (clear == nullptr) {
        ramFreeC(copy);
        return 1;
    }
    if (dehexify(clear, reinterpret_cast<char*>(copy) + 1, static_cast<long>(digits)) != 0) {
        // Bad digit (error 2708 is on the list).  Nothing is handed out, so
        // the caller has nothing to free whatever it does with the 1.
        ramFreeC(clear);
        ramFreeC(copy);
        return 1;
    }
    clear[digits / 2] = 0;
    ramFreeC(copy);
    // The length comes from strlen: a ciphertext byte of 0 cuts the value,
    // as the format has always done.
    decrypt(clear, std::strlen(reinterpret_cast<char*>(clear)), kMethod, nullptr);
    *out = clear;
    return 0;
}

int setDehexifiedDecryptedValue(char* stored, char*, Widget field)
{
    if (stored == nullptr)
        return 1;
    if (stored[0] == 0)
        return 0;
    // The reveal works on a buffer of DSN_REVEAL_BUFFER bytes: a longer
    // stored value is taken as its first DSN_REVEAL_MAX characters.
    char local[DSN_REVEAL_BUFFER];
    strCopy(local, sizeof local, stored);
    unsigned char* clear = nullptr;
    if (getDehexifiedDecryptedValue(reinterpret_cast<unsigned char*>(local), &clear) != 0)
        return 1;
    if (field != nullptr)
        XmTextSetString(field, clear != nullptr ? reinterpret_cast<char*>(clear) : const_cast<char*>(""));
    ramFreeC(clear);
    return 0;
}

int setEncryptedHexifiedValue(char* clear, char* nodeValue)
{
    if (nodeValue == nullptr)
        return 1;
    unsigned char* text = nullptr;
    if (getEncryptedHexifiedValue(reinterpret_cast<unsigned char*>(clear), &text) != 0) {
        nodeValue[0] = 0;
        return 1;
    }
    if (clear == nullptr || text == nullptr)
        nodeValue[0] = 0;
    else
        strCopy(nodeValue, ND_VALUE_SIZE, reinterpret_cast<char*>(text));
    ramFreeC(text);
    return 0;
}

XmString decodeEncryption(const unsigned char* value)
{
    static const char* const shown[] = {"0 - No Encryption", "1 - SSL Auto", "2 - Database Encryption",
                                        "3 - SSL3", "4 - SSL2", "5 - TLS1"};
    static const char* const digits[] = {"0", "1", "2", "3", "4", "5"};
    int index = 0;
    if (value != nullptr)
        for (int i = 1; i < 6; ++i)
            if (strCompareCi(reinterpret_cast<const char*>(value), digits[i]) == 0)
                index = i;
    return XmStringCreateLocalized(const_cast<char*>(shown[index]));
}
