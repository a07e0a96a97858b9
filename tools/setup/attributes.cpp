#include "attributes.h"

#include <strings.h>

#include <cstring>

namespace hnsybs {

bool sameKeyword(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && strncasecmp(a.c_str(), b.c_str(), a.size()) == 0;
}

void Attributes::add(std::string key, std::string value)
{
    if (find(key) == nullptr)
        items_.emplace_back(std::move(key), std::move(value));
}

void Attributes::set(const std::string& key, std::string value)
{
    for (auto& item : items_) {
        if (sameKeyword(item.first, key)) {
            item.second = std::move(value);
            return;
        }
    }
    items_.emplace_back(key, std::move(value));
}

const std::string* Attributes::find(const std::string& key) const
{
    for (const auto& item : items_)
        if (sameKeyword(item.first, key))
            return &item.second;
    return nullptr;
}

static std::string trimmed(const char* begin, const char* end)
{
    while (begin < end && (*begin == ' ' || *begin == '\t'))
        ++begin;
    while (end > begin && (end[-1] == ' ' || end[-1] == '\t'))
        --end;
    return std::string(begin, end);
}

bool parseAttributes(const char* text, Attributes& out, std::string& error)
{
    out = Attributes();
    if (text == nullptr)
        return true;
    std::size_t offset = 0;
    while (text[offset] != '\0') {
        // One pair: its length is found with a bound, so that a string that
        // lacks its terminator is reported instead of read without end.
        const char* pair = text + offset;
        std::size_t left = kMaxAttributeStringLength - offset;
        const void* nul = std::memchr(pair, '\0', left);
        if (nul == nullptr) {
            error = "the attribute string has no end";
            return false;
        }
        const char* pairEnd = static_cast<const char*>(nul);
        const char* equals = static_cast<const char*>(std::memchr(pair, '=', pairEnd - pair));
        if (equals == nullptr) {
            error = "attribute \"" + std::string(pair, pairEnd) + "\" has no '='";
            return false;
        }
        std::string key = trimmed(pair, equals);
        if (key.empty()) {
            error = "an attribute has an empty keyword";
            return false;
        }
        std::string value(equals + 1, pairEnd);
        if (key.size() > kMaxKeyLength || value.size() > kMaxValueLength) {
            error = "attribute \"" + key.substr(0, 64) + "\" is too long";
            return false;
        }
        out.add(std::move(key), std::move(value));
        offset = static_cast<std::size_t>(pairEnd - text) + 1;
        if (offset >= kMaxAttributeStringLength) {
            error = "the attribute string has no end";
            return false;
        }
    }
    return true;
}

}  // namespace hnsybs
