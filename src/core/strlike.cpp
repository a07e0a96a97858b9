#include "strlike.h"

#include "strchar_impl.h"
#include "strcopy.h"

namespace {
inline int step(const char* p, long remaining, zuCPType type) { return zu_str::charSize(p, remaining, type); }
inline int step(const unsigned short*, long, zuCPType) { return 1; }

int charEqual(const char* a, int sizeA, const char* b, int sizeB, int caseFlag)
{
    if (sizeA != sizeB)
        return 0;
    if (sizeA == 1) {
        const auto x = static_cast<unsigned char>(*a);
        const auto y = static_cast<unsigned char>(*b);
        if (x == y)
            return 1;
        return caseFlag == 0 && zu_str::upperByte(x) == zu_str::upperByte(y);
    }
    for (int k = 0; k < sizeA; ++k)
        if (a[k] != b[k])
            return 0;
    return 1;
}

int charEqual(const unsigned short* a, int, const unsigned short* b, int, int caseFlag)
{
    return *a == *b || (caseFlag == 0 && zu_str::upperUnit(*a) == zu_str::upperUnit(*b));
}

template <typename Unit>
int like(const Unit* text, long tl, const Unit* pat, long pl, Unit many, Unit one, Unit escape, int caseFlag,
         int padFlag, zuCPType type)
{
    if (tl < 0)
        tl = 0;
    if (pl < 0)
        pl = 0;
    if (padFlag == 0) {
        tl = strRightTrimBlanks(text, tl);
        pl = strRightTrimBlanks(pat, pl);
    }
    long t = 0;
    long p = 0;
    long backText = -1;  // the text place after the latest wildcard, or -1
    long backPattern = 0;
    while (t < tl) {
        bool mismatch = false;
        if (p < pl && pat[p] == many) {
            while (p < pl && pat[p] == many)
                ++p;
            while (p < pl && pat[p] == one && t < tl) {
                t += step(text + t, tl - t, type);
                ++p;
            }
            if (p < pl && pat[p] == many)
                continue;
            if (p >= pl)
                return 1;
            backText = t;
            backPattern = p;
            continue;
        }
        if (p >= pl) {
            mismatch = true;
        } else if (pat[p] == one) {
            t += step(text + t, tl - t, type);
            ++p;
        } else {
            int literal = 0;
            if (escape != 0 && pat[p] == escape) {
                ++p;
                literal = 1;
            }
            if (p >= pl) {
                mismatch = true;
            } else {
                const int st = step(text + t, tl - t, type);
                const int sp = step(pat + p, pl - p, type);
                if (charEqual(text + t, st, pat + p, sp, literal ? 1 : caseFlag)) {
                    t += st;
                    p += sp;
                } else {
                    mismatch = true;
                }
            }
        }
        if (mismatch) {
            if (backText < 0)
                return 0;
            backText += step(text + backText, tl - backText, type);
            t = backText;
            p = backPattern;
        }
    }
    while (p < pl && pat[p] == many)
        ++p;
    return p >= pl;
}
}  // namespace

int isCharEqual(const char* a, long lengthA, const char* b, long lengthB, int caseFlag, zuCPType type)
{
    if (lengthA <= 0 || lengthB <= 0)
        return 0;
    return charEqual(a, step(a, lengthA, type), b, step(b, lengthB, type), caseFlag);
}

int isCharEqual(const char* a, const char* b, int caseFlag, zuCPType type)
{
    return charEqual(a, zu_str::charSizeZ(a, type), b, zu_str::charSizeZ(b, type), caseFlag);
}

int isCharEqual(const unsigned short* a, const unsigned short* b, int caseFlag) { return charEqual(a, 1, b, 1, caseFlag); }

int strLike(const char* text, long textLength, const char* pattern, long patternLength, char many, char one,
            char escape, int caseFlag, int padFlag, zuCPType type)
{
    return like(text, textLength, pattern, patternLength, many, one, escape, caseFlag, padFlag, type);
}

int strLike(const unsigned short* text, long textLength, const unsigned short* pattern, long patternLength,
            unsigned short many, unsigned short one, unsigned short escape, int caseFlag, int padFlag, zuCPType type)
{
    return like(text, textLength, pattern, patternLength, many, one, escape, caseFlag, padFlag, type);
}
