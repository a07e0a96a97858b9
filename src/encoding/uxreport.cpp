// ICU status to conversion result, reporting to the thread's error list, and
// the substitution callback.
#include <cstdio>

#include "uxreport_impl.h"
#include "../core/errorlist.h"
#include "ux.h"

namespace {
// Adds a conversion error or warning with its state id; the message text
// comes from the catalog by number.
void report(unsigned short number, bool warning, unsigned short stateId)
{
    ZuErrorKeeper::addError(new ZuError(number, warning ? ErrTypeWarning : ErrTypeError, stateId));
}
}  // namespace

ZuConvertReturn mapICUreturn(UErrorCode status)
{
    switch (status) {
    case U_ZERO_ERROR:
        return ZU_CONV_SUCCESS;
    case U_STRING_NOT_TERMINATED_WARNING:
    case U_BUFFER_OVERFLOW_ERROR:
        return ZU_CONV_TRUNCATED;
    case U_ILLEGAL_CHAR_FOUND:
        return ZU_CONV_ILLEGAL_CHAR;
    case U_INVALID_TABLE_FORMAT:
    case U_INVALID_TABLE_FILE:
        return ZU_CONV_INVALID_TABLE;
    case U_FILE_ACCESS_ERROR:
        return ZU_CONV_FILE_NOT_FOUND;
    default:
        return ZU_CONV_FAILURE;
    }
}

int checkICUreturn(UErrorCode status)
{
    switch (status) {
    case U_ZERO_ERROR:
        return 0;
    case U_ILLEGAL_CHAR_FOUND:
        report(ZU_MSG_CONV_SUBSTITUTED, true, ZU_STATE_01000);
        return 0;
    case U_BUFFER_OVERFLOW_ERROR:
        report(ZU_MSG_CONV_TRUNCATED, true, ZU_STATE_01004);
        return 0;
    case U_INVALID_TABLE_FORMAT:
    case U_INVALID_TABLE_FILE:
        report(ZU_MSG_CONV_BAD_TABLE, false, ZU_STATE_HY000);
        return 1;
    case U_FILE_ACCESS_ERROR:
        report(ZU_MSG_CONV_NO_TABLE, false, ZU_STATE_HY000);
        return 1;
    default:
        report(ZU_MSG_CONV_FAILED, false, ZU_STATE_HY000);
        return 1;
    }
}

int checkUXreturn(ZuConvertReturn result)
{
    switch (result) {
    case ZU_CONV_SUCCESS:
        return 0;
    case ZU_CONV_TRUNCATED:
        report(ZU_MSG_CONV_TRUNCATED, true, ZU_STATE_01004);
        return 0;
    case ZU_CONV_ILLEGAL_CHAR:
        report(ZU_MSG_CONV_SUBSTITUTED, true, ZU_STATE_01000);
        return 0;
    case ZU_CONV_INVALID_TABLE:
        report(ZU_MSG_CONV_BAD_TABLE, false, ZU_STATE_HY000);
        return 1;
    case ZU_CONV_FILE_NOT_FOUND:
        report(ZU_MSG_CONV_NO_TABLE, false, ZU_STATE_HY000);
        return 1;
    default:
        report(ZU_MSG_CONV_FAILED, false, ZU_STATE_HY000);
        return 1;
    }
}

int reportOpenFailure(UErrorCode status, long codePage)
{
    if (status != U_FILE_ACCESS_ERROR) {
        checkICUreturn(status);
        return 1;
    }
    auto* e = new ZuError(ZU_MSG_CONV_NO_TABLE, ErrTypeError, ZU_STATE_HY000);
    if (e != nullptr) {
        char number[24];
        std::snprintf(number, sizeof number, "%ld", codePage);
        e->appendText(number);
    }
    ZuErrorKeeper::addError(e);
    return 1;
}

long setConversionReturnLength(ZuConvertReturn result, long length)
{
    return result >= 0 && result <= 3 ? length : 0;
}

void handleCharacterSubstitution(const void* context, UConverterFromUnicodeArgs* args, const UChar* codeUnits,
                                 int32_t length, UChar32 codePoint, UConverterCallbackReason reason,
                                 UErrorCode* status)
{
    auto* info = static_cast<ICUSubstitutionErrorInfo*>(const_cast<void*>(context));
    if (info == nullptr)
        return;
    if (reason != UCNV_RESET && reason != UCNV_CLOSE && reason != UCNV_CLONE) {
        if (info->mode == 1)
            return;  // the error stands: the conversion fails
        if (info->mode != 0)
            info->substituted = 1;
    }
    if (info->previous != nullptr)
        info->previous(info->previousContext, args, codeUnits, length, codePoint, reason, status);
}

int installSubstitutionCallback(UConverter* converter, ICUSubstitutionErrorInfo* info)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverterFromUCallback previous = nullptr;
    const void* previousContext = nullptr;
    ucnv_setFromUCallBack(converter, handleCharacterSubstitution, info, &previous, &previousContext, &status);
    if (U_FAILURE(status))
        return 1;
    // Installing twice must not make the callback call itself.
    if (previous != handleCharacterSubstitution) {
        info->previous = previous;
        info->previousContext = previousContext;
    }
    return 0;
}
