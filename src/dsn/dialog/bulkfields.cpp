// The record of the bulk dialogs and the callbacks of their fields
// (bulk_impl.h).
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/Xm.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include "conversion/convert.h"
#include "core/errorlist.h"
#include "core/strcmp.h"
#include "core/strcopy.h"
#include "dsn/dialog/bulk_impl.h"

BulkInfo GlobalBulkInfo;
int CalledFromFileName = 0;

// By name, as the list shows them; the numbers are those of the code page
// table, "200000502" and the second 2000000939 included.
const char* const CodePages[ZU_BULK_CODE_PAGE_COUNT] = {
    "2026 - Big5",           "18 - euc-jp",           "38 - euc-kr",
    "2025 - gb2312",         "113 - GBK",             "2085 - hz-gb-2312",
    "2028 - IBM037",         "2030 - IBM273",         "2033 - IBM277",
    "2034 - IBM278",         "2035 - IBM280",         "2037 - IBM284",
    "2038 - IBM285",         "2039 - IBM290",         "2040 - IBM297",
    "2041 - IBM420",         "2043 - IBM424",         "2011 - IBM437",
    "2044 - IBM500",         "2087 - IBM775",         "2009 - IBM850",
    "2010 - IBM852",         "2046 - IBM855",         "2047 - IBM857",
    "2089 - IBM00858",       "2048 - IBM860",         "2049 - IBM861",
    "2000000862 - IBM862",   "2050 - IBM863",         "2051 - IBM864",
    "2052 - IBM865",         "2086 - IBM866",         "2054 - IBM869",
    "2055 - IBM870",         "2056 - IBM871",         "2000000939 - IBM-939",
    "2000000943 - IBM-943_P14A-2000", "2063 - IBM1026", "2091 - IBM01140",
    "2092 - IBM01141",       "2093 - IBM01142",       "2094 - IBM01143",
    "2095 - IBM01144",       "2096 - IBM01145",       "2097 - IBM01146",
    "2098 - IBM01147",       "2099 - IBM01148",       "2100 - IBM01149",
    "2000000930 - IBM-4396", "200000502 - IBM-5026",  "2000000939 - IBM-5035",
    "39 - iso-2022-jp",      "37 - iso-2022-kr",      "4 - iso-8859-1",
    "5 - iso-8859-2",        "6 - iso-8859-3",        "7 - iso-8859-4",
    "8 - iso-8859-5",        "10 - iso-8859-7",       "11 - iso-8859-8",
    "12 - iso-8859-9",       "109 - iso-8859-13",     "111 - iso-8859-15",
    "2084 - koi8-r",         "2000000036 - KS_C_5601", "2027 - MACINTOSH",
    "17 - Shift_JIS",        "3 - us-ascii",          "1013 - UTF-16BE",
    "1014 - UTF-16LE",       "106 - UTF-8",           "2000000038 - windows-874",
    "2250 - windows-1250",   "2251 - windows-1251",   "2252 - windows-1252",
    "2253 - windows-1253",   "2254 - windows-1254",   "2255 - windows-1255",
    "2256 - windows-1256",   "2257 - windows-1257",   "2258 - windows-1258",
};

namespace {

BulkInfo* record(XtPointer info) { return info != nullptr ? static_cast<BulkInfo*>(info) : &GlobalBulkInfo; }

// The field's text copied into `target` (cut to fit, always ended).
void copyField(Widget w, char* target, long size)
{
    char* text = XmTextGetString(w);
    strCopy(target, size, text != nullptr ? text : "");
    XtFree(text);
}

// The field's number into *value when it parses and fits 32 bits; else the
// value stays and the reason is in the thread's error list.
void parseSigned(Widget w, int32_t* value)
{
    char* text = XmTextGetString(w);
    long long number = 0;
    const unsigned char* digits = reinterpret_cast<const unsigned char*>(text != nullptr ? text : "");
    if (convert(digits, &number) == 0) {
        if (number < INT32_MIN || number > INT32_MAX)
            addError(ZU_MSG_VALUE_OUT_OF_RANGE) << reinterpret_cast<const char*>(digits);
        else
            *value = static_cast<int32_t>(number);
    }
    XtFree(text);
}

void parseUnsigned(Widget w, uint32_t* value)
{
    char* text = XmTextGetString(w);
    unsigned long long number = 0;
    const unsigned char* digits = reinterpret_cast<const unsigned char*>(text != nullptr ? text : "");
    if (convert(digits, &number) == 0) {
        if (number > UINT32_MAX)
            addError(ZU_MSG_VALUE_OUT_OF_RANGE) << reinterpret_cast<const char*>(digits);
        else
            *value = static_cast<uint32_t>(number);
    }
    XtFree(text);
}

// `name` without a final ".csv" (either case), then `suffix`, into target.
void derive(char* target, std::size_t size, const char* name, std::size_t n, const char* suffix)
{
    const std::size_t suffixLength = std::strlen(suffix);
    if (n + suffixLength + 1 > size)
        n = size > suffixLength + 1 ? size - suffixLength - 1 : 0;  // the suffix always shows
    std::memcpy(target, name, n);
    std::memcpy(target + n, suffix, suffixLength + 1);
}

}  // namespace

void tableNameCB(Widget w, XtPointer info, XtPointer)
{
    copyField(w, record(info)->tableName, sizeof GlobalBulkInfo.tableName);
}

void configFileCB(Widget w, XtPointer info, XtPointer)
{
    if (CalledFromFileName)
        return;
    record(info)->configFileEdited = 1;
    copyField(w, record(info)->configFileName, sizeof GlobalBulkInfo.configFileName);
}

void logFileCB(Widget w, XtPointer info, XtPointer)
{
    if (CalledFromFileName)
        return;
    record(info)->logFileEdited = 1;
    copyField(w, record(info)->logFileName, sizeof GlobalBulkInfo.logFileName);
}

void discardFileCB(Widget w, XtPointer info, XtPointer)
{
    copyField(w, record(info)->discardFileName, sizeof GlobalBulkInfo.discardFileName);
}

void errorToleranceCB(Widget w, XtPointer info, XtPointer) { parseSigned(w, &record(info)->errorTolerance); }
void warningToleranceCB(Widget w, XtPointer info, XtPointer) { parseSigned(w, &record(info)->warningTolerance); }
void loadStartCB(Widget w, XtPointer info, XtPointer) { parseUnsigned(w, &record(info)->loadStart); }
void loadCountCB(Widget w, XtPointer info, XtPointer) { parseUnsigned(w, &record(info)->loadCount); }
void readBufferSizeCB(Widget w, XtPointer info, XtPointer) { parseUnsigned(w, &record(info)->readBufferSize); }

void codePagesCB(Widget w, XtPointer info, XtPointer)
{
    char text[64];
    copyField(w, text, sizeof text);
    if (char* blank = std::strchr(text, ' '))
        *blank = 0;
    long long number = 0;
    const unsigned char* digits = reinterpret_cast<const unsigned char*>(text);
    if (convert(digits, &number) == 0 && number >= INT32_MIN && number <= INT32_MAX)
        record(info)->codePage = static_cast<int32_t>(number);
}

void bulkDataFileChanged(BulkInfo* info, const char* name, Widget configField, Widget logField)
{
    strCopy(info->dataFileName, sizeof info->dataFileName, name != nullptr ? name : "");
    std::size_t n = std::strlen(info->dataFileName);
    if (n > 4 && strCompareCi(info->dataFileName + n - 4, ".csv") == 0)
        n -= 4;
    CalledFromFileName = 1;
    if (info->configFileEdited == 0) {
        derive(info->configFileName, sizeof info->configFileName, info->dataFileName, n, ".xml");
        if (configField != nullptr)
            XmTextSetString(configField, info->configFileName);
    }
    if (info->logFileEdited == 0) {
        derive(info->logFileName, sizeof info->logFileName, info->dataFileName, n, ".log");
        if (logField != nullptr)
            XmTextSetString(logField, info->logFileName);
    }
    CalledFromFileName = 0;
}

void dataFileNameCB(Widget w, XtPointer info, XtPointer)
{
    char* text = XmTextGetString(w);
    // The derived names show in the fields of the same dialog.
    Widget form = XtParent(w);
    bulkDataFileChanged(record(info), text, XtNameToWidget(form, "configFileText"),
                        XtNameToWidget(form, "logFileText"));
    XtFree(text);
}
