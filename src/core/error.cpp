#include "error.h"

#include "errorlist.h"

ZuError MemoryError(ErrMemoryError);
ZuError DummyError(ErrDummyError);

ZuError::ZuError(unsigned short number, int type, unsigned short stateId, int32_t native)
    : native_(native), number_(number), stateId_(stateId)
{
    if (type == ErrTypeWarning)
        flags_ |= FlagWarning;
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
