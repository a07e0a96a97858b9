// Integer conversions against Python's integers: every parse form over texts
// made from values at and around each type's limits and at random
// magnitudes (reference_values.py computes the values and what each parse
// must give), every writing form against Python's str(), and the
// fixed-width field against a model of it written in Python.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "conversion/convert.h"
#include "core/errorlist.h"
#include "platform/catalog.h"
#include "support/subprocess.h"

namespace {

using U16 = std::vector<unsigned short>;

U16 wide(const std::string& s)
{
    U16 out;
    for (unsigned char c : s)
        out.push_back(c);
    out.push_back(0);
    return out;
}

std::string narrow(const unsigned short* units, int n, bool swapped = false)
{
    std::string s;
    for (int i = 0; i < n; ++i)
        s += static_cast<char>(swapped ? (units[i] >> 8) | ((units[i] & 0xFF) << 8) : units[i]);
    return s;
}

std::string fromHex(const std::string& hex)
{
    std::string out;
    if (hex == "-")
        return out;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return out;
}

const unsigned char* bytes(const std::string& s) { return reinterpret_cast<const unsigned char*>(s.c_str()); }

// The thread's error list with the support library's catalog open, so that
// error texts can be read.
class Conversion : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(bosSetInstallDir(HNSYB_BINARY_DIR), 0);
        bosLoadResourceDLL("uxutl24", 0, nullptr, &uses_);
        ZuErrorKeeper::setErrorList(&errors_);
    }
    void TearDown() override
    {
        ZuErrorKeeper::giveUpErrorList();
        bosFreeResourceDLL(0, &uses_);
    }
    // The number of the last error, removed from the list; 0 when none.
    int takeError()
    {
        ZuError* e = errors_.removeLastError();
        if (e == nullptr)
            return 0;
        const int n = e->getErrorNumber();
        if (!e->isStatic())
            delete e;
        return n;
    }
    ZuErrorList errors_{nullptr, 1};
    int uses_ = 0;
};

struct Outcome {
    int rc = -1;
    std::string value;  // the parsed value in decimal, or "E<error>"
};

std::string decimal(long long v) { return std::to_string(v); }
std::string decimal(unsigned long long v) { return std::to_string(v); }
std::string decimal(long v) { return std::to_string(v); }
std::string decimal(unsigned long v) { return std::to_string(v); }
std::string decimal(int v) { return std::to_string(v); }

// One parse form applied to a text: the outcome in the reference's words.
using Parser = std::function<Outcome(const std::string&, std::function<int()>)>;

template <class T>
Outcome run(int rc, T value, const std::function<int()>& takeError)
{
    Outcome o;
    o.rc = rc;
    if (rc == 0)
        o.value = decimal(+value);
    else
        o.value = "E" + std::to_string(takeError());
    return o;
}

// Every parse form of type T: terminated and with a length, narrow and wide
// (where the interface has them).  With a length, bytes after the length
// must not be read: the text is followed by a digit and a letter that would
// change the result.
template <class T>
std::vector<std::pair<std::string, Parser>> formsOf(bool narrowLength, bool wideForms)
{
    std::vector<std::pair<std::string, Parser>> forms;
    forms.reserve(4);
    forms.emplace_back("narrow", [](const std::string& text, std::function<int()> take) {
        T v{};
        const int rc = convert(bytes(text), &v);
        return run(rc, v, take);
    });
    if constexpr (!std::is_same_v<T, unsigned char> && !std::is_same_v<T, char>) {
        if (narrowLength) {
            forms.emplace_back("narrow+length", [](const std::string& text, std::function<int()> take) {
                const std::string padded = text + "9x";
                T v{};
                const int rc = convert(bytes(padded), static_cast<unsigned short>(text.size()), &v);
                return run(rc, v, take);
            });
        }
    }
    if constexpr (std::is_same_v<T, unsigned long long> || std::is_same_v<T, long long> ||
                  std::is_same_v<T, unsigned long> || std::is_same_v<T, long> ||
                  std::is_same_v<T, unsigned short>) {
        if (wideForms) {
            forms.emplace_back("wide", [](const std::string& text, std::function<int()> take) {
                const U16 w = wide(text);
                T v{};
                const int rc = convert(w.data(), &v);
                return run(rc, v, take);
            });
            forms.emplace_back("wide+length", [](const std::string& text, std::function<int()> take) {
                const U16 w = wide(text + "9x");
                T v{};
                const int rc = convert(w.data(), static_cast<unsigned long>(text.size()), &v);
                return run(rc, v, take);
            });
        }
    }
    return forms;
}

std::string typeSpec(const char* name, std::size_t bytes, bool isSigned)
{
    return std::string(name) + ":" + std::to_string(bytes * 8) + (isSigned ? ":s" : ":u");
}

std::string runReference(const std::string& file)
{
    const std::string script = std::string(HNSYB_SOURCE_DIR) + "/tests/conversion/reference_values.py";
    RunResult r = runProgram({"python3", script, "integers", file, "20240607",
                              typeSpec("ull", sizeof(unsigned long long), false),
                              typeSpec("ll", sizeof(long long), true),
                              typeSpec("ul", sizeof(unsigned long), false), typeSpec("l", sizeof(long), true),
                              typeSpec("us", sizeof(unsigned short), false), typeSpec("s", sizeof(short), true),
                              typeSpec("uc", sizeof(unsigned char), false), typeSpec("c", sizeof(char), true)},
                             120000);
    return r.exitCode == 0 ? std::string() : "reference_values.py failed: " + r.output;
}

struct ReferenceFile {
    ReferenceFile()
    {
        char tmpl[] = "/tmp/hnsyb-convert-XXXXXX";
        const int fd = mkstemp(tmpl);
        if (fd >= 0)
            close(fd);
        path = tmpl;
        failure = runReference(path);
    }
    ~ReferenceFile() { unlink(path.c_str()); }
    std::string path;
    std::string failure;
};

TEST_F(Conversion, EveryParseFormAgreesWithPythonAtAndAroundTheLimits)
{
    ReferenceFile ref;
    ASSERT_TRUE(ref.failure.empty()) << ref.failure;
    std::map<std::string, std::vector<std::pair<std::string, Parser>>> forms;
    forms["ull"] = formsOf<unsigned long long>(true, true);
    forms["ll"] = formsOf<long long>(true, true);
    forms["ul"] = formsOf<unsigned long>(true, true);
    forms["l"] = formsOf<long>(true, true);
    forms["us"] = formsOf<unsigned short>(true, true);
    forms["s"] = formsOf<short>(true, false);
    forms["uc"] = formsOf<unsigned char>(false, false);
    forms["c"] = formsOf<char>(false, false);
    const std::function<int()> take = [this] { return takeError(); };

    std::ifstream in(ref.path);
    std::string line;
    std::map<std::string, int> checked;
    int limitErrors = 0;
    int charErrors = 0;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind, type, hex, want;
        fields >> kind >> type >> hex >> want;
        if (kind != "P")
            continue;
        const std::string text = fromHex(hex);
        for (const auto& [formName, parse] : forms.at(type)) {
            const Outcome got = parse(text, take);
            ASSERT_EQ(got.value, want) << type << " " << formName << " of \"" << text << "\"";
            ASSERT_EQ(got.rc, want[0] == 'E' ? 1 : 0);
            ++checked[type + " " + formName];
        }
        limitErrors += want == "E2701";
        charErrors += want == "E2702";
        ASSERT_EQ(errors_.getErrorCount(), 0) << "each failed parse adds exactly one error";
    }
    EXPECT_GT(limitErrors, 1000);
    EXPECT_GT(charErrors, 1000);
    for (const auto& [form, n] : checked)
        EXPECT_GT(n, 5000) << form;
    EXPECT_EQ(checked.size(), 24u) << "every parse form was exercised";
}

// Writes value with every writing form of its signedness and compares each
// with Python's text of it.
template <class Wide, class Long>
void checkWriting(const std::string& want, Wide value, Long asLong)
{
    const int n = static_cast<int>(want.size());
    unsigned char narrowBuffer[32];
    std::memset(narrowBuffer, '#', sizeof narrowBuffer);
    ASSERT_EQ(convert(narrowBuffer, value), n) << want;
    ASSERT_EQ(std::string(reinterpret_cast<char*>(narrowBuffer)), want);

    unsigned short units[32];
    ASSERT_EQ(convert(units, value), n);
    ASSERT_EQ(narrow(units, n), want);
    ASSERT_EQ(units[n], 0);
    ASSERT_EQ(convert(units, asLong), n);
    ASSERT_EQ(narrow(units, n), want);

    // Sized forms: exactly the room needed works and writes no terminator;
    // one less writes nothing at all.
    std::memset(narrowBuffer, '#', sizeof narrowBuffer);
    ASSERT_EQ(convert(narrowBuffer, static_cast<unsigned long>(n), value), n);
    ASSERT_EQ(std::string(reinterpret_cast<char*>(narrowBuffer), n), want);
    ASSERT_EQ(narrowBuffer[n], '#');
    std::memset(narrowBuffer, '#', sizeof narrowBuffer);
    ASSERT_EQ(convert(narrowBuffer, static_cast<unsigned long>(n - 1), value), 0);
    ASSERT_EQ(narrowBuffer[0], '#');

    const std::function<int(unsigned short*, unsigned long)> wideForms[] = {
        [&](unsigned short* t, unsigned long size) { return convert(t, size, value); },
        [&](unsigned short* t, unsigned long size) { return convert(t, size, asLong); },
    };
    for (const auto& form : wideForms) {
        std::fill(std::begin(units), std::end(units), 0xAAAA);
        ASSERT_EQ(form(units, n), n);
        ASSERT_EQ(narrow(units, n), want);
        ASSERT_EQ(units[n], 0xAAAA);
        std::fill(std::begin(units), std::end(units), 0xAAAA);
        ASSERT_EQ(form(units, n - 1), 0);
        ASSERT_EQ(units[0], 0xAAAA);
    }
    const std::function<int(unsigned short*, unsigned long)> swapForms[] = {
        [&](unsigned short* t, unsigned long size) { return convertUTF16Swap(t, size, value); },
        [&](unsigned short* t, unsigned long size) { return convertUTF16Swap(t, size, asLong); },
    };
    for (const auto& form : swapForms) {
        std::fill(std::begin(units), std::end(units), 0xAAAA);
        ASSERT_EQ(form(units, n), n);
        ASSERT_EQ(narrow(units, n, true), want);
        ASSERT_EQ(form(units, n - 1), 0);
    }
}

TEST_F(Conversion, EveryWritingFormAgreesWithPythonsText)
{
    ReferenceFile ref;
    ASSERT_TRUE(ref.failure.empty()) << ref.failure;
    std::ifstream in(ref.path);
    std::string line;
    int written = 0;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind, type, hex, want;
        fields >> kind >> type >> hex >> want;
        // Python's own text of a value that fits 64 bits: its str().
        if (kind != "P" || fromHex(hex) != want)
            continue;
        if (type == "ull") {
            const unsigned long long v = std::stoull(want);
            checkWriting(want, v, static_cast<unsigned long>(v));
            ++written;
        } else if (type == "ll") {
            const long long v = std::stoll(want);
            checkWriting(want, v, static_cast<long>(v));
            ++written;
        }
    }
    EXPECT_GT(written, 5000);
}

TEST_F(Conversion, FixedWidthFieldsMatchTheirModel)
{
    ReferenceFile ref;
    ASSERT_TRUE(ref.failure.empty()) << ref.failure;
    std::ifstream in(ref.path);
    std::string line;
    int fields = 0;
    int overflowed = 0;
    while (std::getline(in, line)) {
        std::istringstream parts(line);
        std::string kind, hex;
        unsigned width = 0, left = 0, count = 0;
        unsigned long long value = 0;
        parts >> kind >> width >> left >> value >> hex >> count;
        if (kind != "F")
            continue;
        const std::string want = fromHex(hex);
        unsigned char buffer[32];
        std::memset(buffer, '#', sizeof buffer);
        const int got = convert(buffer, static_cast<unsigned short>(width), value, static_cast<unsigned short>(left));
        ASSERT_EQ(got, static_cast<int>(count)) << width << " " << left << " " << value;
        ASSERT_EQ(std::string(reinterpret_cast<char*>(buffer)), want) << width << " " << left << " " << value;
        ASSERT_EQ(buffer[width + 1], '#') << "nothing behind the terminator";
        // The signed form agrees for values that are not negative.
        std::memset(buffer, '#', sizeof buffer);
        ASSERT_EQ(convert(buffer, static_cast<unsigned short>(width), static_cast<long long>(value),
                          static_cast<unsigned short>(left)),
                  static_cast<int>(count));
        ASSERT_EQ(std::string(reinterpret_cast<char*>(buffer)), want);
        ++fields;
        overflowed += want.find('*') != std::string::npos;
    }
    EXPECT_GT(fields, 3000);
    EXPECT_GT(overflowed, 100);
}

TEST_F(Conversion, NamedEdgeCases)
{
    unsigned long long u = 7;
    EXPECT_EQ(convert(bytes("18446744073709551615"), &u), 0);
    EXPECT_EQ(u, ULLONG_MAX);
    EXPECT_EQ(convert(bytes("18446744073709551616"), &u), 1);
    EXPECT_EQ(takeError(), 2701);
    EXPECT_EQ(u, ULLONG_MAX) << "a failed parse leaves the value alone";

    EXPECT_EQ(convert(bytes(" + +12 "), &u), 0);
    EXPECT_EQ(u, 12u);
    EXPECT_EQ(convert(bytes("12x"), &u), 1);
    EXPECT_EQ(takeError(), 2702);
    EXPECT_EQ(convert(bytes(""), &u), 0);
    EXPECT_EQ(u, 0u);
    u = 5;
    EXPECT_EQ(convert(bytes(" \t "), &u), 0);
    EXPECT_EQ(u, 0u) << "blanks only are 0, no error";
    EXPECT_EQ(errors_.getErrorCount(), 0);

    long long s = 0;
    EXPECT_EQ(convert(bytes("-9223372036854775808"), &s), 0);
    EXPECT_EQ(s, LLONG_MIN);
    EXPECT_EQ(convert(bytes("9223372036854775808"), &s), 1);
    EXPECT_EQ(takeError(), 2701);
    EXPECT_EQ(convert(bytes("  - + 42"), &s), 0) << "blanks and '+' after the sign are the base form's";
    EXPECT_EQ(s, -42);
    EXPECT_EQ(convert(bytes("+-42"), &s), 1) << "the sign comes before any '+'";
    EXPECT_EQ(takeError(), 2702);

    unsigned short us = 0;
    EXPECT_EQ(convert(bytes("70000"), &us), 1);
    EXPECT_EQ(takeError(), 2701);

    // 10^12 needs 13 characters.
    unsigned char buffer[16];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(convert(buffer, 13ul, 1000000000000ull), 13);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 13), "1000000000000");
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(convert(buffer, 12ul, 1000000000000ull), 0);
    EXPECT_EQ(buffer[0], '#');

    // A negative value needs a size above 1 for its sign and digits.
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(convert(buffer, 1ul, -5ll), 0);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(convert(buffer, 2ul, -5ll), 2);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 2), "-5");

    // A negative value cannot be shown by a field of digit positions.
    EXPECT_EQ(convert(buffer, static_cast<unsigned short>(4), -5ll, static_cast<unsigned short>(0)), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer)), "****");
}

TEST_F(Conversion, ErrorsCarryTheText)
{
    long v = 0;
    ASSERT_EQ(convert(bytes("  99999999999999999999 "), &v), 1);
    ZuError* e = errors_.getLastError();
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->getErrorNumber(), 2701);
    EXPECT_NE(std::string(e->getErrorText()).find("99999999999999999999"), std::string::npos) << e->getErrorText();
    EXPECT_NE(std::string(e->getErrorText()).find("out of range"), std::string::npos) << e->getErrorText();
    takeError();

    // With a length, the text is what lies within it.
    const U16 w = wide("12a45");
    unsigned long long u = 0;
    ASSERT_EQ(convert(w.data(), 4ul, &u), 1);
    e = errors_.getLastError();
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->getErrorNumber(), 2702);
    EXPECT_NE(std::string(e->getErrorText()).find(": 12a4"), std::string::npos) << e->getErrorText();
    EXPECT_EQ(std::string(e->getErrorText()).find("12a45"), std::string::npos) << e->getErrorText();
    takeError();

    // A NUL before the length ends the text.
    const unsigned char padded[6] = {'4', '2', 0, 'x', 'y', 'z'};
    unsigned short us = 0;
    EXPECT_EQ(convert(padded, static_cast<unsigned short>(6), &us), 0);
    EXPECT_EQ(us, 42);
}

}  // namespace
