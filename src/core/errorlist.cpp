#include "errorlist.h"

#include <cstring>

#include "../platform/catalog.h"
#include "../platform/mds.h"
#include "../platform/ram.h"

// ---- ZuErrorList -----------------------------------------------------------

ZuErrorList::ZuErrorList(void* owner, int keepAll) : owner_(owner)
{
    if (keepAll != 0)
        listFlags_ |= FlagKeepAll;
    setLazySort(1);
    setInitialSize(16);
}

ZuErrorList::~ZuErrorList()
{
    // A list destroyed while still current gives the thread its previous
    // list back, so that no later report writes into freed memory.
    if (slot_ != nullptr && *slot_ == this) {
        *slot_ = previous_;
        mdsPerThreadTerm();
    }
    listFlags_ &= ~FlagMemoryPending;
    for (unsigned i = 0; i < getCount(); ++i) {
        auto* e = static_cast<ZuError*>(at(i));
        if (e != nullptr && !e->isStatic())
            delete e;
        setAt(i, nullptr);
    }
    ZuArray::shrink(0);
}

ZuError* ZuErrorList::getMemoryError() { return &MemoryError; }
ZuError* ZuErrorList::getDummyError() { return &DummyError; }

ZuError* ZuErrorList::allocError(unsigned short number, const char* text, zuCPType cpType, int type,
                                 unsigned short stateId, int32_t native)
{
    return new ZuError(number, text, cpType, type, stateId, native);
}

ZuError* ZuErrorList::allocError(unsigned short number, const char* text, long codePage, int type,
                                 unsigned short stateId, int32_t native)
{
    return new ZuError(number, text, codePage, type, stateId, native);
}

ZuError* ZuErrorList::allocError(unsigned short number, const char* text, UConverter* converter, int type,
                                 unsigned short stateId, int32_t native)
{
    return new ZuError(number, text, converter, type, stateId, native);
}

ZuError* ZuErrorList::allocError(unsigned short number, const unsigned short* text, int type,
                                 unsigned short stateId, int32_t native)
{
    return new ZuError(number, text, type, stateId, native);
}

int ZuErrorList::add(ZuError* error)
{
    if (ZuSortedArray::add(error) != 0)
        return 1;
    error->owner_ = this;
    if (error->isWarning())
        ++warningCount_;
    else
        ++errorCount_;
    return 0;
}

void ZuErrorList::moveCount(const ZuError* error, int toWarning)
{
    (void)error;
    if (toWarning) {
        --errorCount_;
        ++warningCount_;
    } else {
        --warningCount_;
        ++errorCount_;
    }
}

ZuError* ZuErrorList::takeOut(unsigned index)
{
    if (isMemoryErrorPending()) {
        listFlags_ &= ~FlagMemoryPending;
        --errorCount_;
        return getMemoryError();
    }
    if (index >= getCount())
        return nullptr;
    auto* e = static_cast<ZuError*>(at(index));
    ZuSortedArray::removeAtIndex(index);
    position_ = 0;
    if (e->isWarning())
        --warningCount_;
    else
        --errorCount_;
    e->owner_ = nullptr;
    return e;
}

ZuError* ZuErrorList::removeFirstError() { return takeOut(0); }
ZuError* ZuErrorList::removeAtIndex(unsigned index) { return takeOut(index); }
ZuError* ZuErrorList::removeLastError() { return getCount() == 0 && !isMemoryErrorPending() ? nullptr : takeOut(getCount() - 1); }

ZuError* ZuErrorList::getLastError()
{
    if (isMemoryErrorPending())
        return getMemoryError();
    return getCount() == 0 ? nullptr : static_cast<ZuError*>(at(getCount() - 1));
}

int ZuErrorList::getErrorsMix() const
{
    if (getCount() == 0)
        return 0;
    if (errorCount_ != 0)
        return warningCount_ != 0 ? 1 : 2;
    return warningCount_ != 0 ? 3 : 0;
}

void ZuErrorList::addMemoryError()
{
    // In a one-error list the error held is replaced; it is taken from the
    // array itself, as a pending memory error would otherwise be taken first.
    if (!isKeepAll() && getCount() > 0) {
        auto* last = static_cast<ZuError*>(at(getCount() - 1));
        ZuSortedArray::removeAtIndex(getCount() - 1);
        position_ = 0;
        if (last->isWarning())
            --warningCount_;
        else
            --errorCount_;
        last->owner_ = nullptr;
        if (!last->isStatic())
            delete last;
    }
    if (!isMemoryErrorPending()) {
        ++errorCount_;
        listFlags_ |= FlagMemoryPending;
    }
}

ZuError* ZuErrorList::getFirstNode()
{
    if (getCount() == 0)
        return nullptr;
    position_ = 1;
    return static_cast<ZuError*>(at(0));
}

ZuError* ZuErrorList::getNextNode()
{
    if (position_ >= getCount())
        return nullptr;
    return static_cast<ZuError*>(at(position_++));
}

ZuError* ZuErrorList::getNodeAtPos(unsigned n)
{
    if (n >= getCount())
        return nullptr;
    position_ = n + 1;
    return static_cast<ZuError*>(at(n));
}

void ZuErrorList::moveErrorsFromList(ZuErrorList* source)
{
    if (source == nullptr || source == this)
        return;
    if (source->isMemoryErrorPending() && !isMemoryErrorPending()) {
        listFlags_ |= FlagMemoryPending;
        ++errorCount_;
    }
    while (source->getCount() > 0) {
        // removeAtIndex of the array itself: the source's pending memory
        // error stays with the source.
        auto* e = static_cast<ZuError*>(source->at(0));
        source->ZuSortedArray::removeAtIndex(0);
        source->position_ = 0;
        for (int pass = 0; pass < 2; ++pass) {
            if (e->isWarning())
                --source->warningCount_;
            else
                --source->errorCount_;
        }
        e->owner_ = nullptr;
        if (add(e) != 0 && !e->isStatic())
            delete e;
    }
}

void ZuErrorList::setWarningAfterPos(unsigned position)
{
    for (unsigned i = position; i < getCount(); ++i)
        static_cast<ZuError*>(at(i))->setWarning();
}

void ZuErrorList::changeErrorsToWarnings()
{
    if (isMemoryErrorPending()) {
        static const unsigned short text[] = {'O', 'u', 't', ' ', 'O', 'f', ' ', 'M', 'e', 'm', 'o', 'r', 'y', 0};
        ZuError* warning = allocError(2, text, ErrTypeWarning, 0, 0);
        listFlags_ &= ~FlagMemoryPending;
        --errorCount_;
        // Memory may have run out again while the warning was made: then the
        // bit is set once more and the new error is dropped.
        if (warning != nullptr) {
            if (isMemoryErrorPending() || add(warning) != 0)
                delete warning;
        }
    }
    for (unsigned i = 0; i < getCount(); ++i)
        static_cast<ZuError*>(at(i))->setWarning();
}

int ZuErrorList::concatErrors(ZuString* string, const char* separator)
{
    const unsigned long sepLength = separator == nullptr ? 0 : std::strlen(separator);
    bool first = true;
    for (ZuError* e = getFirstNode(); e != nullptr; e = getNextNode()) {
        const char* text = e->getErrorText();
        const unsigned long n = std::strlen(text);
        if (string->resize(string->getLength() + 1 + sepLength + n) != 0)
            return 1;
        if (!first)
            string->concat(separator, sepLength);
        string->concat(text, n);
        first = false;
    }
    return 0;
}

void ZuErrorList::copyErrorsFromList(ZuErrorList* source)
{
    if (source == nullptr || source == this)
        return;
    if (source->isMemoryErrorPending() && !isMemoryErrorPending()) {
        listFlags_ |= FlagMemoryPending;
        ++errorCount_;
    }
    for (unsigned i = 0; i < source->getCount(); ++i) {
        auto* e = static_cast<ZuError*>(source->at(i));
        ZuError* copy = allocError(e->getErrorNumber(), e->getErrorTextW(), e->isWarning() ? ErrTypeWarning : 0,
                                   e->getStateId(), e->getNativeError());
        if (copy != nullptr && add(copy) != 0)
            delete copy;
    }
}

void ZuErrorList::appendTextStartingAtPos(unsigned position, const unsigned short* text)
{
    if (ZuError* e = getNodeAtPos(position))
        e->appendText(text);
}

void ZuErrorList::moveLastErrorToPos(unsigned position)
{
    if (getCount() < 2 || position >= getCount())
        return;
    ZuObject* last = at(getCount() - 1);
    ZuSortedArray::removeAtIndex(getCount() - 1);
    addAtIndex(last, position);
    position_ = 0;
}

// ---- ZuErrorKeeper ---------------------------------------------------------

ZuErrorList* ZuErrorKeeper::getErrorList() { return static_cast<ZuErrorList*>(mdsGetPerThreadData(PTHD_ERROR_LIST)); }

int ZuErrorKeeper::setErrorList(ZuErrorList* list)
{
    if (mdsPerThreadInit() == 0)
        return 1;
    void** slot = mdsGetPerThreadDataAddress(PTHD_ERROR_LIST);
    list->previous_ = static_cast<ZuErrorList*>(*slot);
    list->slot_ = slot;
    *slot = list;
    return 0;
}

int ZuErrorKeeper::setErrorList(ZuErrorList* list, ZuThreadInfo* thread)
{
    if (thread == nullptr)
        return setErrorList(list);
    thread->useCount.fetch_add(1, std::memory_order_acq_rel);
    void** slot = &thread->slots[PTHD_ERROR_LIST];
    list->previous_ = static_cast<ZuErrorList*>(*slot);
    list->slot_ = slot;
    *slot = list;
    return 0;
}

ZuErrorList* ZuErrorKeeper::giveUpErrorList()
{
    void** slot = mdsGetPerThreadDataAddress(PTHD_ERROR_LIST);
    if (slot == nullptr)
        return nullptr;
    auto* list = static_cast<ZuErrorList*>(*slot);
    if (list != nullptr) {
        *slot = list->previous_;
        list->previous_ = nullptr;
        list->slot_ = nullptr;
    }
    mdsPerThreadTerm();
    return list;
}

ZuErrorList* ZuErrorKeeper::giveUpErrorList(ZuThreadInfo* thread)
{
    if (thread == nullptr)
        return giveUpErrorList();
    void** slot = &thread->slots[PTHD_ERROR_LIST];
    auto* list = static_cast<ZuErrorList*>(*slot);
    if (list != nullptr) {
        *slot = list->previous_;
        list->previous_ = nullptr;
        list->slot_ = nullptr;
    }
    thread->lockedDecrementCount();
    return list;
}

ZuError* ZuErrorKeeper::getLastError()
{
    ZuErrorList* list = getErrorList();
    return list == nullptr ? nullptr : list->getLastError();
}

unsigned short ZuErrorKeeper::getLastErrorNumber()
{
    ZuError* e = getLastError();
    return e == nullptr ? 0 : e->getErrorNumber();
}

int32_t ZuErrorKeeper::getLastNativeError()
{
    ZuError* e = getLastError();
    return e == nullptr ? 0 : e->getNativeError();
}

void ZuErrorKeeper::setLastErrorType(int type)
{
    ZuError* e = getLastError();
    if (e == nullptr || e->isStatic())
        return;
    if (type == ErrTypeWarning)
        e->setWarning();
    else
        e->resetWarning();
}

ZuError* ZuErrorKeeper::addError(ZuError* error)
{
    if (error == nullptr)
        return &DummyError;
    ZuErrorList* list = getErrorList();
    // Without a list there is nowhere to keep it: the caller still gets an
    // error it can chain on.
    if (list == nullptr || (!list->isKeepAll() && list->isExistingError())) {
        if (!error->isStatic())
            delete error;
        return &DummyError;
    }
    if (list->add(error) != 0) {
        if (!error->isStatic())
            delete error;
        return &DummyError;
    }
    return error;
}

void ZuErrorKeeper::clearLastError()
{
    ZuErrorList* list = getErrorList();
    if (list == nullptr)
        return;
    ZuError* e = list->removeLastError();
    if (e != nullptr && !e->isStatic())
        delete e;
}

void ZuErrorKeeper::addMemoryError()
{
    if (ZuErrorList* list = getErrorList())
        list->addMemoryError();
}

void* ZuErrorKeeper::getOwnerOfList()
{
    ZuErrorList* list = getErrorList();
    return list == nullptr ? nullptr : list->getOwnerOfList();
}

void ZuErrorKeeper::appendTextToLastError(const char* text)
{
    if (ZuError* e = getLastError())
        e->appendText(text);
}

void ZuErrorKeeper::appendTextToLastError(const unsigned short* text)
{
    if (ZuError* e = getLastError())
        e->appendText(text);
}

void ramAddMemoryError() { ZuErrorKeeper::addMemoryError(); }

// ---- Free functions --------------------------------------------------------

namespace {
// The text of message `number`, from the catalog.
struct MessageText {
    unsigned short units[1025];
    explicit MessageText(unsigned short number) { winGetString(units, number); }
};
}  // namespace

ZuError& addError(unsigned short number) { return *ZuErrorKeeper::addError(new ZuError(number, ErrTypeError)); }

ZuError& addWarning(unsigned short number) { return *ZuErrorKeeper::addError(new ZuError(number, ErrTypeWarning)); }

ZuError& addError(unsigned short number, const unsigned short* text)
{
    return *ZuErrorKeeper::addError(new ZuError(number, text, ErrTypeError, 0, 0));
}

ZuError& addError(unsigned short number, const char* text)
{
    return *ZuErrorKeeper::addError(new ZuError(number, text, ZU_CP_LOCALE, ErrTypeError, 0, 0));
}

ZuError& addDatabaseError(unsigned short number, int32_t native, const char* text, int type, zuCPType cpType)
{
    return *ZuErrorKeeper::addError(new ZuError(number, text, cpType, type, 0, native));
}

ZuError& appendTextToLastError(unsigned short number)
{
    ZuError* e = ZuErrorKeeper::getLastError();
    if (e == nullptr)
        return DummyError;
    MessageText text(number);
    e->appendText(text.units);
    return *e;
}

ZuError& appendTextToErrorAtPos(unsigned short number, unsigned position)
{
    ZuErrorList* list = ZuErrorKeeper::getErrorList();
    ZuError* e = list == nullptr ? nullptr : list->getNodeAtPos(position);
    if (e == nullptr)
        return DummyError;
    MessageText text(number);
    e->appendText(text.units);
    return *e;
}
