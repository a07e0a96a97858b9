/*
 * ZuParamString and ZuParamStringW: messages with numbered placeholders.
 *
 * A placeholder is `%`, a type letter (`s` text, `d` number), `x` when the
 * ordinal is greater than 9, and the ordinal in decimal: %s1, %d2, %sx10.
 * Each parameter raises the ordinal by one and replaces every occurrence
 * of its placeholder; a placeholder that is not in the message changes
 * nothing, and its ordinal is used up all the same.  A failure (memory)
 * sets a sticky bit, after which operator<< does nothing, so a chain of
 * parameters can be written without testing each step.  Ownership is that
 * of ZuString.
 */
#ifndef HNSYB_CORE_PARAMSTRING_H
#define HNSYB_CORE_PARAMSTRING_H

#include "zustring.h"

class ZU_EXPORT ZuParamString : public ZuString {
public:
    static constexpr unsigned short FlagFailed = 1u << 15;

    ZuParamString() = default;
    ~ZuParamString() override;

    // As ZuString, clearing the ordinal; a failure sets the sticky bit.
    int initialize(const char* text);
    int initialize(const char* text, unsigned long length);
    int initialize(const char* text, unsigned long length, zuCPType type);
    using ZuString::initialize;

    // Raises the ordinal and writes its placeholder for `letter` into
    // `buffer` (at least 16 bytes); the placeholder's length.
    unsigned long buildMatchString(char* buffer, char letter);
    int setParam(const char* text);
    int setParam(const char* text, unsigned long length);
    int setParam(const ZuSubString& view);
    int setParam(unsigned long number);
    int setParam(long number);
    int setQuotedParam(const char* text, char quote);

    ZuParamString& operator<<(const char* text);
    ZuParamString& operator<<(const ZuSubString& view);
    ZuParamString& operator<<(unsigned long number);
    ZuParamString& operator<<(long number);

    unsigned short getOrdinal() const { return ordinal_; }
    void setOrdinal(unsigned short ordinal) { ordinal_ = ordinal; }
    int hasFailed() const { return (flags_ & FlagFailed) != 0; }

private:
    int replaceParam(char letter, const char* text, unsigned long length);

    unsigned short ordinal_ = 0;
    unsigned short flags_ = 0;
};

class ZU_EXPORT ZuParamStringW : public ZuStringW {
public:
    static constexpr unsigned short FlagFailed = 1u << 15;

    ZuParamStringW() = default;
    ~ZuParamStringW() override;

    int initialize(const unsigned short* text);
    int initialize(const unsigned short* text, unsigned long length);
    // From narrow text, as ZuStringW does it.
    using ZuStringW::initialize;

    unsigned long buildMatchString(unsigned short* buffer, unsigned short letter);
    int setParam(const unsigned short* text);
    int setParam(const unsigned short* text, unsigned long length);
    int setParam(const ZuSubStringW& view);
    int setParam(unsigned long number);
    int setParam(long number);
    int setQuotedParam(const unsigned short* text, unsigned short quote);

    ZuParamStringW& operator<<(const unsigned short* text);
    ZuParamStringW& operator<<(const ZuSubStringW& view);
    ZuParamStringW& operator<<(unsigned long number);
    ZuParamStringW& operator<<(long number);

    unsigned short getOrdinal() const { return ordinal_; }
    void setOrdinal(unsigned short ordinal) { ordinal_ = ordinal; }
    int hasFailed() const { return (flags_ & FlagFailed) != 0; }
    void setFailed() { flags_ |= FlagFailed; }

private:
    int replaceParam(unsigned short letter, const unsigned short* text, unsigned long length);

    unsigned short ordinal_ = 0;
    unsigned short flags_ = 0;
};

#endif
