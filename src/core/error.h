/*
 * ZuError: one entry of a thread's error list.
 *
 * An error carries a message number, the native code of the database or the
 * system, an SQLSTATE (as a small state id and/or a five-letter text), a row
 * and a column, and flag bits (warning, static, memory, dummy).  It knows the
 * list that counts it, so that turning it into a warning moves one count
 * between the list's counters.
 *
 * Two static errors exist for the whole process: MemoryError, which stands
 * for "memory ran out" in any list without being allocated, and DummyError,
 * which absorbs every change, so that a caller may always chain calls on the
 * result of an add even when the error was not kept.  Static errors are never
 * freed.  Any other error belongs to the list that holds it, and to whoever
 * removed it from a list afterwards.
 */
#ifndef HNSYB_CORE_ERROR_H
#define HNSYB_CORE_ERROR_H

#include <cstdint>

#include <unicode/ucnv.h>

#include "../encoding/cptype.h"
#include "list.h"
#include "paramstring.h"

class ZuErrorList;

// 1 is a warning; anything else an error.
enum ErrorType { ErrTypeError = 0, ErrTypeWarning = 1 };
enum ErrSpecialError { ErrMemoryError = 1, ErrDummyError = 2 };

// Message number of the out-of-memory error.
constexpr unsigned short ZU_MEMORY_ERROR_NUMBER = 30190;

class ZU_EXPORT ZuError : public ZuNode {
public:
    static constexpr uint32_t FlagWarning = 1u << 31;
    static constexpr uint32_t FlagStatic = 1u << 30;
    static constexpr uint32_t FlagMemory = 1u << 29;
    static constexpr uint32_t FlagDummy = 1u << 28;

    // An error of `number` whose message is the catalog's text for that
    // number; a warning when type is ErrTypeWarning.
    ZuError(unsigned short number, int type, unsigned short stateId = 0, int32_t native = 0);
    // An error with a given text: narrow in a zuCPType, narrow through a
    // converter or a code page number (the error then counts as UTF-8 for
    // its parameters), or 16-bit.
    ZuError(unsigned short number, const char* text, zuCPType cpType, int type, unsigned short stateId,
            int32_t native);
    ZuError(unsigned short number, const char* text, UConverter* converter, int type, unsigned short stateId,
            int32_t native);
    ZuError(unsigned short number, const char* text, long codePage, int type, unsigned short stateId,
            int32_t native);
    ZuError(unsigned short number, const unsigned short* text, int type, unsigned short stateId, int32_t native);
    // The static errors: ErrMemoryError or ErrDummyError.
    explicit ZuError(ErrSpecialError which);
    ~ZuError() override;

    unsigned short getErrorNumber() const { return number_; }
    int32_t getNativeError() const { return native_; }
    unsigned short getStateId() const { return stateId_; }
    uint32_t getFlags() const { return flags_; }
    int isWarning() const { return (flags_ & FlagWarning) != 0; }
    int isStatic() const { return (flags_ & FlagStatic) != 0; }
    int isMemoryError() const { return (flags_ & FlagMemory) != 0; }
    int isDummy() const { return (flags_ & FlagDummy) != 0; }
    ZuErrorList* getOwner() const { return owner_; }
    int32_t getRow() const { return row_; }
    int32_t getColumn() const { return column_; }
    void setRowColumn(int32_t row, int32_t column);

    // Turn into a warning / back into an error; the owner's counters follow.
    void setWarning();
    void resetWarning();

    // The message; narrow in the error's code page type.  Both belong to the
    // error.  The memory error gives "Out Of Memory".
    const char* getErrorText();
    const unsigned short* getErrorTextW();
    // Appends text to the message; the placeholders of the appended text
    // count from 1 again.
    void appendText(const char* text);
    void appendText(const unsigned short* text);
    // Fills the next numbered placeholder.  On the dummy error, or after a
    // failure, nothing happens (a failure hands back the list's dummy).
    ZuError& operator<<(const unsigned short* text);
    ZuError& operator<<(const char* text);
    ZuError& operator<<(unsigned long number);
    ZuError& operator<<(long number);
    ZuError& operator<<(int number) { return *this << static_cast<long>(number); }
    ZuError& operator<<(const ZuSubString& view);
    ZuError& operator<<(const ZuSubStringW& view);
    // The SQL state as narrow text ("HY000" when none is known).
    const char* getInterfaceCode();
    // Sets the five-letter state.
    void setState(const char* state);
    // Report order: row, then 08S01, 01S01, classes 03 to HZ, class IM.
    int compare(const ZuObject* other) const override;
    int getCPType() const { return cpType_; }
private:
    friend class ZuErrorList;
    void setMessage(const char* text, zuCPType cpType);
    void lookUpMessage();
    ZuError& addParameter(const char* text, unsigned long length);
    template <class Parameter>
    ZuError& fill(const Parameter& parameter);
    void stateOf(char state[6], const unsigned short* text) const;

    ZuErrorList* owner_ = nullptr;
    int32_t native_ = 0;
    unsigned short number_ = 0;
    unsigned short stateId_ = 0;
    int cpType_ = 1;
    ZuParamStringW message_;
    char interfaceCode_[6] = {};
    unsigned short stateText_[6] = {};
    int32_t row_ = -1;
    int32_t column_ = -1;
    uint32_t flags_ = 0;
};

ZU_EXPORT extern ZuError MemoryError;
ZU_EXPORT extern ZuError DummyError;

#endif
