/*
 * The ODBC installer's attribute string, read into an ordered list.
 *
 * An attribute string is a run of KEY=VALUE pairs, each ended by a NUL, the
 * whole ended by a second NUL ("DSN=x\0Server=y\0\0").  parseAttributes reads
 * it with every length bounded: a key is the text before the first '='
 * (blanks around it cut), the value everything after it.  Keys match without
 * regard to case, as ODBC keywords do; when a key repeats, its first value
 * counts, as in a connection string.
 *
 * The list owns its strings (std::string); nothing here allocates with
 * malloc or hands memory to the dialog library.
 */
#ifndef HNSYB_TOOLS_SETUP_ATTRIBUTES_H
#define HNSYB_TOOLS_SETUP_ATTRIBUTES_H

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace hnsybs {

// Longest key and value that the dialog's attribute list can hold (its
// fields are 512 and 1,024 bytes with the terminating NUL).
inline constexpr std::size_t kMaxKeyLength = 511;
inline constexpr std::size_t kMaxValueLength = 1023;
// A string that runs on this far without its closing double NUL is taken
// as malformed rather than read further.
inline constexpr std::size_t kMaxAttributeStringLength = 1 << 20;

using Attribute = std::pair<std::string, std::string>;

class Attributes {
public:
    // Adds the pair unless the key is there already (first value counts).
    void add(std::string key, std::string value);
    // Sets the key's value, adding the pair at the end when it is new.
    void set(const std::string& key, std::string value);
    // The value of `key` (any case), or null.
    const std::string* find(const std::string& key) const;
    const std::vector<Attribute>& items() const { return items_; }
    bool empty() const { return items_.empty(); }

private:
    std::vector<Attribute> items_;
};

// Reads `text` (may be null: an empty list).  False, with the reason in
// `error`, for a pair without '=', an empty key, a key or value longer than
// the dialog can hold, or a string without its end within the bound.
bool parseAttributes(const char* text, Attributes& out, std::string& error);

// The case-insensitive comparison used for keywords.
bool sameKeyword(const std::string& a, const std::string& b);

}  // namespace hnsybs

#endif
