// Logical lines and byte-wise case changes.
#include "bostext.h"

#include <cctype>

unsigned short bosgetbl(const char* text, unsigned short* position, char* line, unsigned short size,
                        unsigned short* length)
{
    unsigned short result = BOS_LINE_END_OF_TEXT;
    if (line != nullptr && size > 0)
        *line = 0;
    if (text == nullptr || position == nullptr || line == nullptr || size == 0) {
        if (length != nullptr)
            *length = result;
        return result;
    }
    unsigned pos = *position;
    if (text[pos] == 0 || text[pos] == 26 || pos >= 0xFFFFu) {
        if (length != nullptr)
            *length = result;
        return result;
    }
    unsigned kept = 0;
    bool cut = false;
    bool comment = text[pos] == ';';
    char outer = 0;
    char inner = 0;
    // The 16-bit index bounds the text: a line stops at 0xFFFF whatever comes.
    while (pos < 0xFFFFu && text[pos] != 0 && text[pos] != 26) {
        char c = text[pos++];
        if (c == '\n' && outer == 0)
            break;
        if (!comment) {
            if (c == '"' || c == '\'') {
                if (inner != 0 && c == inner)
                    inner = 0;
                else if (outer != 0 && c == outer)
                    outer = inner = 0;
                else if (outer != 0)
                    inner = c;
                else
                    outer = c;
            }
        } else if (kept > 0) {
            continue;  // the comment keeps its ';' only
        }
        if (kept + 1 < size)
            line[kept++] = c;
        else
            cut = true;
    }
    if (kept > 0 && line[kept - 1] == '\r')
        --kept;
    line[kept] = 0;
    *position = static_cast<unsigned short>(pos);
    result = cut ? static_cast<unsigned short>(BOS_LINE_TOO_LONG) : static_cast<unsigned short>(kept);
    if (length != nullptr)
        *length = result;
    return result;
}

void UpperText(char* text, unsigned long length)
{
    for (unsigned long i = 0; text != nullptr && i < length; ++i)
        if (std::islower(static_cast<unsigned char>(text[i])))
            text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
}

void LowerText(char* text, unsigned long length)
{
    for (unsigned long i = 0; text != nullptr && i < length; ++i)
        if (std::isupper(static_cast<unsigned char>(text[i])))
            text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
}
