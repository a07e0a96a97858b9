/*
 * ux: text from one encoding into another over already opened ICU
 * converters, and the small Unicode helpers around them.
 *
 * Every transform has one shape:
 *   (target, target size, source, source length, &written, &consumed,
 *    converter(s) [, swap])
 * and one result, ZuConvertReturn.  `written` and `consumed` may be null.
 * A null target, a target size of 0 or a null source gives
 * ZU_CONV_FAILURE at once.  When there is room behind the output for a
 * terminator it is written, and not counted.  A source length of -1 means
 * a terminated source.  The transforms report through their result only;
 * a caller turns it into an error of the thread's list with checkUXreturn.
 *
 * Plain ASCII never reaches ICU: runs of 7-bit bytes are copied (or widened,
 * or narrowed) a machine word or vector at a time, and ICU takes over at the
 * first character that needs it.  That shortcut is taken only where it gives
 * the same bytes as ICU would: over converters that map the 7-bit range to
 * itself and keep no shift state (not EBCDIC, not ISO-2022, not UTF-16).
 *
 * `consumed` tells how far the source was read.  Where ICU takes over, text
 * goes through an intermediate UTF-16 buffer of 2,000 units; when the target
 * fills, `consumed` counts what reached that buffer and may run ahead of
 * what was written.  A caller that must know the exact need uses the
 * counting forms below.
 *
 * No normal path allocates: the intermediate UTF-16 buffers are on the
 * stack.  The one exception is an odd-aligned UTF-16 source above 4,000
 * units, which is copied to the heap (failure: ZU_CONV_FAILURE).
 */
#ifndef HNSYB_ENCODING_UX_H
#define HNSYB_ENCODING_UX_H

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <cstdint>

#include "../platform/export.h"

enum ZuConvertReturn {
    ZU_CONV_SUCCESS = 0,
    ZU_CONV_TRUNCATED = 1,       // output full: data truncated
    ZU_CONV_ILLEGAL_CHAR = 2,    // illegal character found
    ZU_CONV_FAILURE = 4,         // bad arguments, or other failure
    ZU_CONV_INVALID_TABLE = 5,   // invalid conversion table
    ZU_CONV_FILE_NOT_FOUND = 6   // converter file not found
};

// Message numbers of the conversion errors and warnings.
constexpr unsigned short ZU_MSG_CONV_TRUNCATED = 2735;
constexpr unsigned short ZU_MSG_CONV_SUBSTITUTED = 2736;
constexpr unsigned short ZU_MSG_CONV_FAILED = 2737;
constexpr unsigned short ZU_MSG_CONV_BAD_TABLE = 2738;
constexpr unsigned short ZU_MSG_CONV_NO_TABLE = 2739;
// State ids that travel with them: "01004", "01000", "HY000".
constexpr unsigned short ZU_STATE_01004 = 4;
constexpr unsigned short ZU_STATE_01000 = 2;
constexpr unsigned short ZU_STATE_HY000 = 60;

ZU_EXPORT ZuConvertReturn mapICUreturn(UErrorCode status);
// Report to the thread's error list; 1 for an error, 0 for success or a warning.
ZU_EXPORT int checkICUreturn(UErrorCode status);
ZU_EXPORT int checkUXreturn(ZuConvertReturn result);
// `length` for results 0 to 3, else 0.
ZU_EXPORT long setConversionReturnLength(ZuConvertReturn result, long length);

// Context of the from-Unicode substitution callback.
struct ICUSubstitutionErrorInfo {
    int mode;                            // 0 quiet; 1 fail; other values allow and record
    int substituted;                     // set when a substitution happened
    UConverterFromUCallback previous;    // the callback it replaced
    const void* previousContext;
};
extern "C" ZU_EXPORT void handleCharacterSubstitution(const void* context, UConverterFromUnicodeArgs* args,
                                                      const UChar* codeUnits, int32_t length, UChar32 codePoint,
                                                      UConverterCallbackReason reason, UErrorCode* status);
// Installs handleCharacterSubstitution with `info` as context, remembering
// the callback in place.  0, or 1 when ICU refused (nothing reported).
ZU_EXPORT int installSubstitutionCallback(UConverter* converter, ICUSubstitutionErrorInfo* info);

// ---- The transforms --------------------------------------------------------

ZU_EXPORT ZuConvertReturn uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source,
                                       long sourceLength, long* written, long* consumed,
                                       UConverter* from, UConverter* utf8);
ZU_EXPORT ZuConvertReturn uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source,
                                       long sourceLength, long* written, long* consumed,
                                       UConverter* utf8, UConverter* to);
ZU_EXPORT ZuConvertReturn uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source,
                                     long sourceLength, long* written, long* consumed,
                                     UConverter* from, UConverter* to);
// Target bytes, source units.  With swap the source is byte-swapped in
// place first, and stays swapped.
ZU_EXPORT ZuConvertReturn uxUCS2ToAnsi(unsigned char* target, long targetSize, unsigned short* source,
                                       long sourceUnits, long* written, long* consumed,
                                       UConverter* to, int swap);
// Target units, source bytes; swap asks for a byte-swapped result.
ZU_EXPORT ZuConvertReturn uxAnsiToUCS2(unsigned short* target, long targetUnits, const unsigned char* source,
                                       long sourceBytes, long* written, long* consumed,
                                       UConverter* from, int swap);

// The slower forms of the first four: character by character, and after the
// target is full the conversion goes on into a scratch buffer so that
// `written` tells the full length needed (result 1 then).
ZU_EXPORT ZuConvertReturn uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source,
                                       long sourceLength, long* written, UConverter* from, UConverter* utf8);
ZU_EXPORT ZuConvertReturn uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source,
                                       long sourceLength, long* written, UConverter* utf8, UConverter* to);
ZU_EXPORT ZuConvertReturn uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source,
                                     long sourceLength, long* written, UConverter* from, UConverter* to);
ZU_EXPORT ZuConvertReturn uxUCS2ToAnsi(unsigned char* target, long targetSize, unsigned short* source,
                                       long sourceUnits, long* written, UConverter* to, int swap);

// UTF-16 <-> UTF-8 without a converter.  A source length of -1 (or -3)
// means a terminated source.  `written` is what is in the target; the
// ReqLen forms give the length needed instead, even past the end, and
// always leave the target terminated.
ZU_EXPORT ZuConvertReturn uxUTF16ToUTF8(unsigned char* target, long targetSize, const unsigned short* source,
                                        long sourceUnits, long* written, int swap);
ZU_EXPORT ZuConvertReturn uxUTF8ToUTF16(unsigned short* target, long targetUnits, const unsigned char* source,
                                        long sourceBytes, long* written, int swap);
ZU_EXPORT ZuConvertReturn uxUTF16ToUTF8ReqLen(unsigned char* target, long targetSize, const unsigned short* source,
                                              long sourceUnits, long* written, int swap);
ZU_EXPORT ZuConvertReturn uxUTF8ToUTF16ReqLen(unsigned short* target, long targetUnits, const unsigned char* source,
                                              long sourceBytes, long* written, int swap);

// ICU's u_strFromUTF8 / u_strToUTF8 contract, reporting the position
// reached.  An ill-formed sequence: U_INVALID_CHAR_FOUND; UTF-8 that ends
// inside a character: U_TRUNCATED_CHAR_FOUND with *source left at that
// character's start, so that more data can be added and the call repeated.
ZU_EXPORT UChar* ConvUTF8ToUTF16(UChar** target, int32_t targetCapacity, int32_t* length,
                                 const char** source, int32_t sourceLength, UErrorCode* status);
ZU_EXPORT char* ConvUTF16ToUTF8(char** target, int32_t targetCapacity, int32_t* length,
                                const UChar** source, int32_t sourceLength, UErrorCode* status);

// ---- Helpers ---------------------------------------------------------------

// Largest bytes per character of the code page's converter; 0 if it does
// not open.  Code page 0 opens ICU's default converter.
ZU_EXPORT int uxMaxCharSize(long codePage);
// 1 when a converter for the code page opens.
ZU_EXPORT int VerifyCodePage(long codePage);

// 16-bit strings: a heap copy (ramFreeC), a bounded copy, lengths.
ZU_EXPORT unsigned short* uxUnicodeDup(const unsigned short* text);
ZU_EXPORT unsigned short* uxUnicodeCopy(unsigned short* target, const unsigned short* source);
ZU_EXPORT unsigned short* uxUnicodeCopy(unsigned short* target, const unsigned short* source, long units);
ZU_EXPORT long uxUnicodeLen(const unsigned short* text);
ZU_EXPORT long uxUCS2Len(const unsigned short* text);
// Number of UTF-8 bytes the text needs (terminated, or `units` long), or of
// a single code point.
ZU_EXPORT long uxAsciiLenOfUnicodeStr(const unsigned short* text);
ZU_EXPORT long uxAsciiLenOfUnicodeStr(const unsigned short* text, long units);
ZU_EXPORT long uxAsciiLenOfUnicodeStr(const UChar32* codes, long count);
ZU_EXPORT long uxAsciiLenOfUnicodeStr(UChar32 code);

// Swaps the bytes of `count` units; target and source may be the same.
ZU_EXPORT void uxUCS2Swap(unsigned short* target, const unsigned short* source, long count);
// Upper-cases UTF-8 text in place; the new length.
ZU_EXPORT long uxUTF8Upper(unsigned char* text, long length);
// Appends the UTF-8 form of `code` (1 to 4 bytes); the next position.
ZU_EXPORT unsigned char* uxAppendUTF8(unsigned char* target, UChar32 code);
// Below 0x10000: the unit in the high half; below 0x110000: the two
// surrogates (high one in the high half); otherwise 0.
ZU_EXPORT uint32_t UTF16CharFromUTF8Char(UChar32 code);
// The UTF-8 bytes of `code`, packed from the top of the word; below 128 the
// byte itself.
ZU_EXPORT uint32_t UTF8CharFromUTF16Char(UChar32 code);

#endif
