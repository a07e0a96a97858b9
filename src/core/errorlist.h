/*
 * ZuErrorList: the errors and warnings of one operation of one thread.
 *
 * The list keeps errors in their order of arrival (it is a ZuSortedArray with
 * the lazy-sort flags set, so add appends).  It counts errors and warnings
 * apart.  A list that is not keep-all holds at most one error: the first one
 * wins (see ZuErrorKeeper::addError).
 *
 * Running out of memory allocates nothing: the list sets its memory bit and
 * counts one error; from then on the static MemoryError reads as the last
 * error, until it is removed.  There is at most one memory error per list.
 *
 * A list is owned by whoever constructed it (usually a stack frame); its
 * destructor destroys every error it holds.  It belongs to one thread and is
 * not locked.  Removal hands an error to the caller, static errors excepted.
 */
#ifndef HNSYB_CORE_ERRORLIST_H
#define HNSYB_CORE_ERRORLIST_H

#include "error.h"
#include "sortedarray.h"
#include "zustring.h"

class ZU_EXPORT ZuErrorList : public ZuSortedArray {
public:
    static constexpr uint32_t FlagKeepAll = 1u << 31;
    static constexpr uint32_t FlagMemoryPending = 1u << 30;

    explicit ZuErrorList(void* owner = nullptr, int keepAll = 1);
    ~ZuErrorList() override;

    virtual ZuError* getMemoryError();
    virtual ZuError* getDummyError();
    // New errors of the four text forms (null when memory runs out).
    virtual ZuError* allocError(unsigned short number, const char* text, zuCPType cpType, int type,
                                unsigned short stateId, int32_t native);
    virtual ZuError* allocError(unsigned short number, const char* text, long codePage, int type,
                                unsigned short stateId, int32_t native);
    virtual ZuError* allocError(unsigned short number, const char* text, UConverter* converter, int type,
                                unsigned short stateId, int32_t native);
    virtual ZuError* allocError(unsigned short number, const unsigned short* text, int type,
                                unsigned short stateId, int32_t native);

    // Appends, takes ownership, counts the error or the warning.  0 or 1.
    int add(ZuError* error);
    ZuError* removeFirstError();
    ZuError* removeAtIndex(unsigned index);
    ZuError* removeLastError();
    ZuError* getLastError();

    // 0 nothing in the array; 1 errors and warnings; 2 errors only;
    // 3 warnings only.  A pending memory error is not in the array.
    int getErrorsMix() const;
    int isWarningOnly() const { return errorCount_ == 0 && warningCount_ > 0; }
    int isExistingError() const { return errorCount_ != 0; }
    int32_t getErrorCount() const { return errorCount_; }
    int32_t getWarningCount() const { return warningCount_; }
    int isKeepAll() const { return (listFlags_ & FlagKeepAll) != 0; }
    int isMemoryErrorPending() const { return (listFlags_ & FlagMemoryPending) != 0; }
    void* getOwnerOfList() const { return owner_; }

    // Marks a memory error (no allocation); at most one per list.
    void addMemoryError();

    // Iteration: element 0 and position 1; the element at the position;
    // element n and position n + 1.  Null past the end.  Any removal resets
    // the position to 0.
    ZuError* getFirstNode();
    ZuError* getNextNode();
    ZuError* getNodeAtPos(unsigned n);

    // Moves every error of `source` here, carrying a pending memory error.
    // The source's counter is lowered twice for each error moved (once by its
    // removal, once more), as its callers expect; its counters therefore end
    // below what the errors moved would justify.
    void moveErrorsFromList(ZuErrorList* source);
    // Turns the errors from `position` on into warnings.
    void setWarningAfterPos(unsigned position);
    // Every error becomes a warning; a pending memory error becomes a real
    // warning (number 2, "Out Of Memory") first.
    void changeErrorsToWarnings();
    // The narrow texts of all errors, separated, appended to `string`.
    // 1 when the string could not grow.
    int concatErrors(ZuString* string, const char* separator);
    // Copies of every error of `source` (which is left alone), and its
    // pending memory error.
    void copyErrorsFromList(ZuErrorList* source);
    // Appends message `number`'s text to the error at `position`.
    void appendTextStartingAtPos(unsigned position, const unsigned short* text);
    // Moves the last error to `position`.
    void moveLastErrorToPos(unsigned position);

private:
    friend class ZuError;
    friend class ZuErrorKeeper;

    ZuError* takeOut(unsigned index);
    void moveCount(const ZuError* error, int toWarning);

    int32_t errorCount_ = 0;
    int32_t warningCount_ = 0;
    void* owner_ = nullptr;
    ZuErrorList* previous_ = nullptr;
    void** slot_ = nullptr;
    unsigned position_ = 0;
    uint32_t listFlags_ = 0;
};

class ZuThreadInfo;

// Static facade over the calling thread's current list (per-thread slot 0).
class ZU_EXPORT ZuErrorKeeper {
public:
    // Makes `list` current for the thread (the previous one is remembered by
    // the list); 0, or 1 when the thread row could not be made.
    static int setErrorList(ZuErrorList* list);
    static int setErrorList(ZuErrorList* list, ZuThreadInfo* thread);
    // Restores the previous list and returns the one given up (null if none).
    static ZuErrorList* giveUpErrorList();
    static ZuErrorList* giveUpErrorList(ZuThreadInfo* thread);
    static ZuErrorList* getErrorList();

    static ZuError* getLastError();
    static unsigned short getLastErrorNumber();
    static int32_t getLastNativeError();
    static void setLastErrorType(int type);
    // Adds to the thread's list as its rules say; the error kept, or
    // DummyError (the refused error is destroyed).
    static ZuError* addError(ZuError* error);
    static void clearLastError();
    static void addMemoryError();
    static void* getOwnerOfList();
    static void appendTextToLastError(const char* text);
    static void appendTextToLastError(const unsigned short* text);
};

// The calling thread's list.  Each returns the error kept, or DummyError,
// so that parameters can always be chained: addError(1523) << path << text.
ZU_EXPORT ZuError& addError(unsigned short number);
ZU_EXPORT ZuError& addError(unsigned short number, const unsigned short* text);
ZU_EXPORT ZuError& addError(unsigned short number, const char* text);
ZU_EXPORT ZuError& addWarning(unsigned short number);
ZU_EXPORT ZuError& addDatabaseError(unsigned short number, int32_t native, const char* text, int type,
                                    zuCPType cpType);
// Looks message `number` up and appends it to the last error / the error at
// `position` (DummyError when there is none).
ZU_EXPORT ZuError& appendTextToLastError(unsigned short number);
ZU_EXPORT ZuError& appendTextToErrorAtPos(unsigned short number, unsigned position);

#endif
