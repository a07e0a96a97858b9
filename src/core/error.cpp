#include "error.h"

#include <cstring>

#include "../platform/catalog.h"
#include "errorlist.h"

ZuError MemoryError(ErrMemoryError);
ZuError DummyError(ErrDummyError);

namespace {
const unsigned short kOutOfMemoryW[] = {'O', 'u', 't', ' ', 'O', 'f', ' ', 'M', 'e', 'm', 'o', 'r', 'y', 0};
const char kOutOfMemory[] = "Out Of Memory";
const unsigned short kUnknownW[] = {'<', 'u', 'n', 'k', 'n', 'o', 'w', 'n', '>', 0};
constexpr unsigned kMessageUnits = 1024;

// The flags an error starts with: the warning bit for ErrorType 1.
uint32_t typeFlags(int type) { return type == ErrTypeWarning ? ZuError::FlagWarning : 0; }
}  // namespace

ZuError::ZuError(unsigned short number, int type, unsigned short stateId, int32_t native)
    : native_(native), number_(number), stateId_(stateId)
{
    flags_ = typeFlags(type);
    lookUpMessage();
}

ZuError::ZuError(unsigned short number, const char* text, zuCPType cpType, int type, unsigned short stateId,
                 int32_t native)
    : native_(native), number_(number), stateId_(stateId), cpType_(cpType)
{
    flags_ = typeFlags(type);
    setMessage(text, cpType);
}

ZuError::ZuError(unsigned short number, const char* text, UConverter* converter, int type, unsigned short stateId,
                 int32_t native)
    : native_(native), number_(number), stateId_(stateId), cpType_(ZU_CP_UTF8)
{
    flags_ = typeFlags(type);
    if (text != nullptr)
        message_.initialize(text, std::strlen(text), converter);
}

ZuError::ZuError(unsigned short number, const char* text, long codePage, int type, unsigned short stateId,
                 int32_t native)
    : native_(native), number_(number), stateId_(stateId), cpType_(ZU_CP_UTF8)
{
    flags_ = typeFlags(type);
    if (text != nullptr)
        message_.initialize(text, std::strlen(text), codePage);
}

ZuError::ZuError(unsigned short number, const unsigned short* text, int type, unsigned short stateId, int32_t native)
    : native_(native), number_(number), stateId_(stateId)
{
    flags_ = typeFlags(type);
    message_.initialize(text);
}

ZuError::ZuError(ErrSpecialError which)
{
    if (which == ErrMemoryError) {
        number_ = ZU_MEMORY_ERROR_NUMBER;
        flags_ = FlagStatic | FlagMemory;
    } else {
        flags_ = FlagStatic | FlagDummy;
    }
}

ZuError::~ZuError() = default;

void ZuError::lookUpMessage()
{
    unsigned short text[kMessageUnits + 1];
    winGetString(text, number_);
    message_.initialize(text);
}

void ZuError::setMessage(const char* text, zuCPType cpType)
{
    if (text == nullptr)
        return;
    if (message_.initialize(text, std::strlen(text), cpType) != 0)
        message_.setFailed();
}

void ZuError::setRowColumn(int32_t row, int32_t column)
{
    if (isDummy())
        return;
    row_ = row;
    column_ = column;
}

void ZuError::setWarning()
{
    if (isDummy() || isWarning())
        return;
    flags_ |= FlagWarning;
    if (owner_ != nullptr)
        owner_->moveCount(this, 1);
}

void ZuError::resetWarning()
{
    if (isDummy() || !isWarning())
        return;
    flags_ &= ~FlagWarning;
    if (owner_ != nullptr)
        owner_->moveCount(this, 0);
}

const unsigned short* ZuError::getErrorTextW()
{
    if (isMemoryError())
        return kOutOfMemoryW;
    if (message_.getData() == nullptr)
        return kUnknownW + 9;  // the empty text
    message_.getWritableData()[message_.getLength()] = 0;
    return message_.getData();
}

const char* ZuError::getErrorText()
{
    if (isMemoryError())
        return kOutOfMemory;
    return message_.asCStr(static_cast<zuCPType>(cpType_));
}

void ZuError::appendText(const unsigned short* text)
{
    if (isStatic() || text == nullptr)
        return;
    message_.concat(text);
    message_.setOrdinal(0);
}

void ZuError::appendText(const char* text)
{
    if (isStatic() || text == nullptr)
        return;
    ZuStringW wide;
    if (wide.initialize(text, std::strlen(text), static_cast<zuCPType>(cpType_)) == 0)
        message_.concat(wide.getData(), wide.getLength());
    message_.setOrdinal(0);
}

// Fills the next placeholder; after a failure (now or before) the list's
// dummy error is handed back, which absorbs what follows.
template <class Parameter>
ZuError& ZuError::fill(const Parameter& parameter)
{
    if (isStatic() || message_.hasFailed())
        return *this;
    message_.setParam(parameter);
    if (message_.hasFailed() && owner_ != nullptr)
        return *owner_->getDummyError();
    return *this;
}

ZuError& ZuError::operator<<(const unsigned short* text) { return fill(text); }

ZuError& ZuError::addParameter(const char* text, unsigned long length)
{
    if (isStatic() || message_.hasFailed())
        return *this;
    // Decoded with the error's type; UTF-8 that does not decode is tried as
    // the locale's encoding, and what does not decode either becomes
    // "<unknown>".  The errors of a failed decoding are not kept.
    ZuErrorList* list = ZuErrorKeeper::getErrorList();
    const unsigned before = list != nullptr ? list->getCount() : 0;
    auto dropNewErrors = [&] {
        while (list != nullptr && list->getCount() > before)
            delete list->removeLastError();
    };
    ZuStringW wide;
    int rc = wide.initialize(text, length, static_cast<zuCPType>(cpType_));
    if (rc != 0 && cpType_ == ZU_CP_UTF8) {
        dropNewErrors();
        rc = wide.initialize(text, length, ZU_CP_LOCALE);
    }
    if (rc != 0) {
        dropNewErrors();
        message_.setParam(kUnknownW);
    } else {
        // UTF-8 leaves the string as long as its bytes, with cleared units
        // behind the characters: the parameter ends at the first of them.
        unsigned long units = 0;
        while (units < wide.getLength() && wide.getData()[units] != 0)
            ++units;
        message_.setParam(wide.getData(), units);
    }
    if (message_.hasFailed() && owner_ != nullptr)
        return *owner_->getDummyError();
    return *this;
}

ZuError& ZuError::operator<<(const char* text)
{
    return addParameter(text == nullptr ? "" : text, text == nullptr ? 0 : std::strlen(text));
}

ZuError& ZuError::operator<<(const ZuSubString& view) { return addParameter(view.getData(), view.getLength()); }

ZuError& ZuError::operator<<(const ZuSubStringW& view) { return fill(view); }

ZuError& ZuError::operator<<(unsigned long number) { return fill(number); }

ZuError& ZuError::operator<<(long number) { return fill(number); }

void ZuError::setState(const char* state)
{
    if (isDummy() || state == nullptr)
        return;
    unsigned i = 0;
    for (; i < 5 && state[i] != 0; ++i)
        stateText_[i] = static_cast<unsigned char>(state[i]);
    stateText_[i] = 0;
}

// The state of an error: its text when set, else the catalog's text for its
// state id, else HY001 for the memory error and HY000 for any other.  When
// `text` is given it stands in for the error's own state text.
void ZuError::stateOf(char state[6], const unsigned short* text) const
{
    if (text[0] != 0) {
        unsigned i = 0;
        for (; i < 5 && text[i] != 0; ++i)
            state[i] = static_cast<char>(text[i]);
        state[i] = 0;
    } else if (stateId_ != 0) {
        char buffer[64];
        winGetString(stateId_, buffer, sizeof buffer);
        std::strncpy(state, buffer, 5);
        state[5] = 0;
    } else {
        std::strcpy(state, isMemoryError() ? "HY001" : "HY000");
    }
}

const char* ZuError::getInterfaceCode()
{
    stateOf(interfaceCode_, stateText_);
    return interfaceCode_;
}

int ZuError::compare(const ZuObject* other) const
{
    const auto* o = static_cast<const ZuError*>(other);
    if (row_ != o->row_)
        return row_ < o->row_ ? -1 : 1;
    char left[6], right[6];
    stateOf(left, stateText_);
    // The right-hand error's state text, when it has one, is read from the
    // left-hand error: the order depends on it, and is kept so.
    o->stateOf(right, o->stateText_[0] != 0 ? stateText_ : o->stateText_);
    for (const char* first : {"08S01", "01S01"}) {
        if (std::strcmp(left, first) == 0)
            return -1;
        if (std::strcmp(right, first) == 0)
            return 1;
    }
    auto inRange = [](const char* s) { return std::strncmp(s, "03", 2) >= 0 && std::strncmp(s, "HZ", 2) <= 0; };
    if (inRange(left))
        return -1;
    if (inRange(right))
        return 1;
    if (std::strncmp(left, "IM", 2) == 0)
        return -1;
    if (std::strncmp(right, "IM", 2) == 0)
        return 1;
    return 0;
}
