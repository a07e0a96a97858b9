#include "substringupper.h"

#include <cstring>

#include "../encoding/mbchar.h"
#include "strcmp.h"

ZuSubStringUpper::ZuSubStringUpper(const ZuSubString* view) : view_(view), length_(view->getLength()) {}

int ZuSubStringUpper::isEqualUpper(const char* text, unsigned long length)
{
    if (length != length_)
        return 0;
    if (valid_ == 0) {
        if (std::memcmp(view_->getData(), text, length) == 0)
            return 1;
        if (length > sizeof buffer_)
            return strEqualCi(view_->getData(), static_cast<long>(length_), text, static_cast<long>(length),
                              view_->getType());
        std::memcpy(buffer_, view_->getData(), length_);
        strUpper(buffer_, static_cast<long>(length_));
        valid_ = 1;
    }
    return std::memcmp(buffer_, text, length) == 0 ? 1 : 0;
}

ZuSubStringUpperW::ZuSubStringUpperW(const ZuSubStringW* view) : view_(view), length_(view->getLength()) {}

bool ZuSubStringUpperW::fill()
{
    if (valid_ != 0)
        return true;
    if (length_ > 48)
        return false;
    std::memcpy(buffer_, view_->getData(), length_ * 2);
    strUpper(buffer_, static_cast<long>(length_));
    valid_ = 1;
    return true;
}

int ZuSubStringUpperW::isEqualUpper(const unsigned short* text, unsigned long length)
{
    if (length != length_)
        return 0;
    if (valid_ == 0 && std::memcmp(view_->getData(), text, length * 2) == 0)
        return 1;
    if (!fill())
        return strEqualCi(view_->getData(), static_cast<long>(length_), text, static_cast<long>(length),
                          ZU_CP_UTF16);
    return std::memcmp(buffer_, text, length * 2) == 0 ? 1 : 0;
}

int ZuSubStringUpperW::compareUpper(const unsigned short* text, unsigned long length)
{
    if (!fill())
        return strCompareCi(view_->getData(), static_cast<long>(length_), text, static_cast<long>(length),
                            ZU_CP_UTF16);
    const unsigned long n = length < length_ ? length : length_;
    for (unsigned long i = 0; i < n; ++i)
        if (buffer_[i] != text[i])
            return buffer_[i] < text[i] ? -1 : 1;
    return length_ == length ? 0 : (length_ < length ? -1 : 1);
}

unsigned short ZuSubStringUpperW::getFirstChar()
{
    if (length_ == 0)
        return 0;
    if (length_ < 25) {
        fill();
        return buffer_[0];
    }
    unsigned short first = view_->getData()[0];
    strUpper(&first, 1);
    return first;
}
