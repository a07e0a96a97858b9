#include "replacestring.h"

#include <cstring>

#include "../encoding/mbchar.h"

namespace {

constexpr unsigned long kSpare = 512;

// The shared rewriting, over either width.  `Str` is the target's type.
template <class Str, class Unit>
struct Rewriter {
    Str* target;
    unsigned long& out;
    unsigned long& gapEnd;

    int write(const Unit* text, unsigned long length)
    {
        if (target == nullptr)
            return 1;
        if (gapEnd - out < length) {
            // Make room: the unread rest moves up by length + 512; text that
            // lies in the target is re-based when the buffer moves.
            const Unit* oldData = target->getData();
            const unsigned long oldLength = target->getLength();
            const bool inTarget = text >= oldData && text < oldData + oldLength;
            const unsigned long offset = inTarget ? static_cast<unsigned long>(text - oldData) : 0;
            const unsigned long shift = length + kSpare;
            if (target->resize(oldLength + shift + 1) != 0)
                return 1;
            Unit* data = target->getWritableData();
            std::memmove(data + gapEnd + shift, data + gapEnd, (oldLength - gapEnd) * sizeof(Unit));
            if (inTarget)
                text = data + offset + (offset >= gapEnd ? shift : 0);
            gapEnd += shift;
            target->setLength(oldLength + shift);
            data[oldLength + shift] = 0;
        }
        std::memmove(target->getWritableData() + out, text, length * sizeof(Unit));
        out += length;
        return 0;
    }

    void close()
    {
        if (target == nullptr || target->getData() == nullptr)
            return;
        Unit* data = target->getWritableData();
        const unsigned long rest = target->getLength() - gapEnd;
        if (gapEnd > out) {
            std::memmove(data + out, data + gapEnd, rest * sizeof(Unit));
            target->setLength(out + rest);
            data[out + rest] = 0;
            target->resize(out + rest + 1);  // failing to shrink loses nothing
        } else {
            target->setLength(out + rest);
        }
    }
};

}  // namespace

// ---- ZuReplaceString -------------------------------------------------------

ZuReplaceString::ZuReplaceString(zuCPType type) { type_ = type; }

ZuReplaceString::ZuReplaceString(ZuString* target) : target_(target)
{
    if (target != nullptr)
        type_ = target->getType();
    syncView();
}

ZuReplaceString::~ZuReplaceString() { Rewriter<ZuString, char>{target_, out_, gapEnd_}.close(); }

void ZuReplaceString::syncView()
{
    if (target_ == nullptr)
        return;
    initialize(target_->getWritableData() + gapEnd_, target_->getLength() - gapEnd_, type_);
}

void ZuReplaceString::consume(unsigned long count)
{
    if (target_ == nullptr)
        return;
    const unsigned long rest = target_->getLength() - gapEnd_;
    gapEnd_ += count < rest ? count : rest;
    syncView();
}

int ZuReplaceString::concat(const char* text, unsigned long length)
{
    const int rc = Rewriter<ZuString, char>{target_, out_, gapEnd_}.write(text, length);
    syncView();
    return rc;
}

int ZuReplaceString::addQuotedBytes(const char* text, unsigned long length, char quote)
{
    // The quoted form is made apart first: the text may be unread input that
    // the writing would overtake.
    ZuString quoted;
    if (quoted.initialize(2 * length + 2) != 0 || quoted.concat(quote) != 0)
        return 1;
    for (unsigned long i = 0; i < length;) {
        const unsigned long size =
            i + 1 < length ? static_cast<unsigned long>(zuCharSize(text + i, type_)) : 1;
        const unsigned long n = size == 0 || i + size > length ? 1 : size;
        if (n == 1 && text[i] == quote && quoted.concat(quote) != 0)
            return 1;
        if (quoted.concat(text + i, n) != 0)
            return 1;
        i += n;
    }
    if (quoted.concat(quote) != 0)
        return 1;
    return concat(quoted.getData(), quoted.getLength());
}

// ---- ZuReplaceStringW ------------------------------------------------------

ZuReplaceStringW::ZuReplaceStringW(ZuStringW* target) : target_(target) { syncView(); }

ZuReplaceStringW::~ZuReplaceStringW() { Rewriter<ZuStringW, unsigned short>{target_, out_, gapEnd_}.close(); }

void ZuReplaceStringW::syncView()
{
    if (target_ == nullptr)
        return;
    initialize(target_->getWritableData() + gapEnd_, target_->getLength() - gapEnd_);
}

void ZuReplaceStringW::consume(unsigned long count)
{
    if (target_ == nullptr)
        return;
    const unsigned long rest = target_->getLength() - gapEnd_;
    gapEnd_ += count < rest ? count : rest;
    syncView();
}

int ZuReplaceStringW::concat(const unsigned short* text, unsigned long length)
{
    const int rc = Rewriter<ZuStringW, unsigned short>{target_, out_, gapEnd_}.write(text, length);
    syncView();
    return rc;
}

int ZuReplaceStringW::addQuotedChars(const unsigned short* text, unsigned long length, unsigned short quote)
{
    ZuStringW quoted;
    if (quoted.initialize(2 * length + 2) != 0 || quoted.concat(quote) != 0)
        return 1;
    for (unsigned long i = 0; i < length; ++i)
        if ((text[i] == quote && quoted.concat(quote) != 0) || quoted.concat(text[i]) != 0)
            return 1;
    if (quoted.concat(quote) != 0)
        return 1;
    return concat(quoted.getData(), quoted.getLength());
}
