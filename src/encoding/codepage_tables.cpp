/*
 * The code page tables and their binary searches.
 *
 * What this file keeps true: every table is constant, sorted strictly by its
 * key, and exactly as long as its declaration in codepage.h; the static
 * checks after the tables refuse to compile a table that breaks either.  Number
 * keys are ordered as signed integers.  Name keys are ordered byte by byte
 * (unsigned) after folding A..Z to a..z and nothing else, which is also the
 * order in which ucnvMapToID compares; so "GB_1988-80" sorts before "GBK".
 *
 * The searches allocate nothing and never fail; every name they return is a
 * string literal of this file and lives for the life of the process.
 */
#include <cstddef>

#include "codepage.h"

namespace {
constexpr unsigned char foldAZ(char c)
{
    auto b = static_cast<unsigned char>(c);
    return (b >= 'A' && b <= 'Z') ? static_cast<unsigned char>(b + ('a' - 'A')) : b;
}

// <0, 0, >0 as strcmp, after folding A..Z only.
constexpr int compareFolded(const char* a, const char* b)
{
    for (;; ++a, ++b) {
        unsigned char x = foldAZ(*a);
        unsigned char y = foldAZ(*b);
        if (x != y)
            return x < y ? -1 : 1;
        if (x == 0)
            return 0;
    }
}
}  // namespace

// Number -> ICU converter name.  The row of ZU_CP_ICU_DEFAULT has a null
// name on purpose: ucnv_open(nullptr) is ICU's default converter.
constexpr ZuCodePageName IANAtoICUTable[341] = {
    {3, "ANSI_X3.4-1968"}, {4, "ISO_8859-1:1987"}, {5, "ISO_8859-2:1987"}, {6, "ISO_8859-3:1988"},
    {7, "ISO_8859-4:1988"}, {8, "ISO_8859-5:1988"}, {9, "ISO_8859-6:1987"}, {10, "ISO_8859-7:1987"},
    {11, "ISO_8859-8:1988"}, {12, "ISO_8859-9"}, {13, "ISO-8859-10"}, {14, "ISO_6937-2-add"},
    {15, "JIS_X0201"}, {16, "JIS_Encoding"}, {17, "ibm-942_P120-2000"},
    {18, "Extended_UNIX_Code_Packed_Format_for_Japanese"},
    {19, "Extended_UNIX_Code_Fixed_Width_for_Japanese"}, {20, "BS_4730"}, {21, "SEN_850200_C"}, {22, "IT"},
    {23, "ES"}, {24, "DIN_66003"}, {25, "NS_4551-1"}, {26, "NF_Z_62-010"}, {27, "ISO-10646-UTF-1"},
    {28, "ISO_646.basic:1983"}, {29, "INVARIANT"}, {30, "ISO_646.irv:1983"}, {31, "NATS-SEFI"},
    {32, "NATS-SEFI-ADD"}, {33, "NATS-DANO"}, {34, "NATS-DANO-ADD"}, {35, "SEN_850200_B"},
    {36, "ibm-1363_P11B-2000"}, {37, "ISO-2022-KR"}, {38, "EUC-KR"}, {39, "ISO-2022-JP"},
    {40, "ISO-2022-JP-2"}, {41, "JIS_C6220-1969-jp"}, {42, "JIS_C6220-1969-ro"}, {43, "PT"},
    {44, "greek7-old"}, {45, "latin-greek"}, {46, "NF_Z_62-010_(1973)"}, {47, "Latin-greek-1"},
    {48, "ISO_5427"}, {49, "JIS_C6226-1978"}, {50, "BS_viewdata"}, {51, "INIS"}, {52, "INIS-8"},
    {53, "INIS-cyrillic"}, {54, "ISO_5427:1981"}, {55, "ISO_5428:1980"}, {56, "GB_1988-80"},
    {57, "GB_2312-80"}, {58, "NS_4551-2"}, {59, "videotex-suppl"}, {60, "PT2"}, {61, "ES2"},
    {62, "MSZ_7795.3"}, {63, "JIS_C6226-1983"}, {64, "greek7"}, {65, "ASMO_449"}, {66, "iso-ir-90"},
    {67, "JIS_C6229-1984-a"}, {68, "JIS_C6229-1984-b"}, {69, "JIS_C6229-1984-b-add"},
    {70, "JIS_C6229-1984-hand"}, {71, "JIS_C6229-1984-hand-add"}, {72, "JIS_C6229-1984-kana"},
    {73, "ISO_2033-1983"}, {74, "ANSI_X3.110-1983"}, {75, "T.61-7bit"}, {76, "T.61-8bit"},
    {77, "ECMA-cyrillic"}, {78, "CSA_Z243.4-1985-1"}, {79, "CSA_Z243.4-1985-2"}, {80, "CSA_Z243.4-1985-gr"},
    {81, "ISO_8859-6-E"}, {82, "ISO_8859-6-I"}, {83, "T.101-G2"}, {84, "ISO_8859-8-E"}, {85, "ISO_8859-8-I"},
    {86, "CSN_369103"}, {87, "JUS_I.B1.002"}, {88, "IEC_P27-1"}, {89, "JUS_I.B1.003-serb"},
    {90, "JUS_I.B1.003-mac"}, {91, "greek-ccitt"}, {92, "NC_NC00-10:81"}, {93, "ISO_6937-2-25"},
    {94, "GOST_19768-74"}, {95, "ISO_8859-supp"}, {96, "ISO_10367-box"}, {97, "latin-lap"},
    {98, "JIS_X0212-1990"}, {99, "DS_2089"}, {100, "us-dk"}, {101, "dk-us"}, {102, "KSC5636"},
    {103, "UNICODE-1-1-UTF-7"}, {104, "ISO-2022-CN"}, {105, "ISO-2022-CN-EXT"}, {106, "UTF-8"},
    {109, "ISO-8859-13"}, {110, "ISO-8859-14"}, {111, "ISO-8859-15"}, {112, "ISO-8859-16"}, {113, "GBK"},
    {114, "GB18030"}, {1000, "ISO-10646-UCS-2"}, {1001, "ISO-10646-UCS-4"}, {1002, "ISO-10646-UCS-Basic"},
    {1003, "ISO-10646-Unicode-Latin1"}, {1004, "ISO-10646-J-1"}, {1005, "ISO-Unicode-IBM-1261"},
    {1006, "ISO-Unicode-IBM-1268"}, {1007, "ISO-Unicode-IBM-1276"}, {1008, "ISO-Unicode-IBM-1264"},
    {1009, "ISO-Unicode-IBM-1265"}, {1010, "UNICODE-1-1"}, {1011, "SCSU"}, {1012, "UTF-7"},
    {1013, "UTF-16BE"}, {1014, "UTF-16LE"}, {1015, "UTF-16BE"}, {1016, "CESU-8"}, {1017, "UTF-32"},
    {1018, "UTF-32BE"}, {1019, "UTF-32LE"}, {1020, "BOCU-1"}, {2000, "ISO-8859-1-Windows-3.0-Latin-1"},
    {2001, "ISO-8859-1-Windows-3.1-Latin-1"}, {2002, "ISO-8859-2-Windows-Latin-2"},
    {2003, "ISO-8859-9-Windows-Latin-5"}, {2004, "hp-roman8"}, {2005, "Adobe-Standard-Encoding"},
    {2006, "Ventura-US"}, {2007, "Ventura-International"}, {2008, "DEC-MCS"}, {2009, "IBM850"},
    {2010, "IBM852"}, {2011, "IBM437"}, {2012, "PC8-Danish-Norwegian"}, {2013, "IBM862"},
    {2014, "PC8-Turkish"}, {2015, "IBM-Symbols"}, {2016, "cp838"}, {2017, "HP-Legal"}, {2018, "HP-Pi-font"},
    {2019, "HP-Math8"}, {2020, "Adobe-Symbol-Encoding"}, {2021, "HP-DeskTop"}, {2022, "Ventura-Math"},
    {2023, "Microsoft-Publishing"}, {2024, "ibm-943_P15A-2003"}, {2025, "GB2312"}, {2026, "Big5"},
    {2027, "macintosh"}, {2028, "IBM037"}, {2029, "IBM038"}, {2030, "IBM273"}, {2031, "IBM274"},
    {2032, "IBM275"}, {2033, "IBM277"}, {2034, "IBM278"}, {2035, "IBM280"}, {2036, "IBM281"},
    {2037, "IBM284"}, {2038, "IBM285"}, {2039, "IBM290"}, {2040, "IBM297"}, {2041, "IBM420"},
    {2042, "IBM423"}, {2043, "IBM424"}, {2044, "IBM500"}, {2045, "IBM851"}, {2046, "IBM855"},
    {2047, "IBM857"}, {2048, "IBM860"}, {2049, "IBM861"}, {2050, "IBM863"}, {2051, "IBM864"},
    {2052, "IBM865"}, {2053, "IBM868"}, {2054, "IBM869"}, {2055, "IBM870"}, {2056, "IBM871"},
    {2057, "IBM880"}, {2058, "IBM891"}, {2059, "IBM903"}, {2060, "IBM904"}, {2061, "IBM905"},
    {2062, "IBM918"}, {2063, "IBM1026"}, {2064, "EBCDIC-AT-DE"}, {2065, "EBCDIC-AT-DE-A"},
    {2066, "EBCDIC-CA-FR"}, {2067, "EBCDIC-DK-NO"}, {2068, "EBCDIC-DK-NO-A"}, {2069, "EBCDIC-FI-SE"},
    {2070, "EBCDIC-FI-SE-A"}, {2071, "EBCDIC-FR"}, {2072, "EBCDIC-IT"}, {2073, "EBCDIC-PT"},
    {2074, "EBCDIC-ES"}, {2075, "EBCDIC-ES-A"}, {2076, "EBCDIC-ES-S"}, {2077, "EBCDIC-UK"},
    {2078, "EBCDIC-US"}, {2079, "UNKNOWN-8BIT"}, {2080, "MNEMONIC"}, {2081, "MNEM"}, {2082, "VISCII"},
    {2083, "VIQR"}, {2084, "KOI8-R"}, {2085, "HZ-GB-2312"}, {2086, "IBM866"}, {2087, "IBM775"},
    {2088, "KOI8-U"}, {2089, "IBM00858"}, {2090, "IBM00924"}, {2091, "cpibm1140"}, {2092, "cpibm1141"},
    {2093, "cpibm1142"}, {2094, "cpibm1143"}, {2095, "cpibm1144"}, {2096, "cpibm1145"}, {2097, "cpibm1146"},
    {2098, "cpibm1147"}, {2099, "cpibm1148"}, {2100, "cpibm1149"}, {2101, "ibm-1375_P100-2003"},
    {2102, "IBM1047"}, {2103, "PTCP154"}, {2250, "windows-1250"}, {2251, "windows-1251"},
    {2252, "windows-1252"}, {2253, "windows-1253"}, {2254, "windows-1254"}, {2255, "windows-1255"},
    {2256, "windows-1256"}, {2257, "windows-1257"}, {2258, "windows-1258"}, {2259, "TIS620"},
    {4971, "ibm-4971"}, {2000000000, nullptr}, {2000000001, "UNICONV_CID_DECKANJI"},
    {2000000002, "UNICONV_CID_EUCGB"}, {2000000003, "UNICONV_CID_MACCYR"}, {2000000004, "UNICONV_CID_MACEE"},
    {2000000005, "UNICONV_CID_MACGRK"}, {2000000006, "UNICONV_CID_MACTURK"},
    {2000000007, "UNICONV_CID_GREEK8"}, {2000000008, "UNICONV_CID_TURKISH8"},
    {2000000009, "UNICONV_CID_EUCKSC"}, {2000000010, "UNICONV_CID_MACTHAI"},
    {2000000011, "UNICONV_CID_ROMAN9"}, {2000000012, "UNICONV_CID_MACEURO"}, {2000000036, "windows-949"},
    {2000000038, "windows-874-2000"}, {2000000300, "ibm-16684"}, {2000000737, "UNICONV_CID_CP737"},
    {2000000775, "UNICONV_CID_CP775"}, {2000000833, "ibm-933_P110-1995"}, {2000000834, "ibm-834"},
    {2000000835, "ibm-835"}, {2000000837, "UNICONV_CID_CP837"}, {2000000856, "ibm-856"},
    {2000000862, "ibm-862"}, {2000000874, "ibm-1161_P100-1999"}, {2000000875, "ibm-875"},
    {2000000930, "ibm-930"}, {2000000933, "ibm-933"}, {2000000935, "ibm-935"}, {2000000937, "ibm-937"},
    {2000000939, "ibm-939"}, {2000000943, "ibm-943_P14A-2000"}, {2000000950, "ibm-1370_P100-1999"},
    {2000000954, "UNICONV_CID_CP954"}, {2000001025, "ibm-1025"}, {2000001027, "ibm-5123"},
    {2000001159, "ibm-1159"}, {2000001250, "ibm-1250_P100-1995"}, {2000001386, "ibm-1386"},
    {2000001388, "ibm-1388"}, {2000001399, "ibm-1399"}, {2000002024, "windows-932-2000"},
    {2000005026, "ibm-1390"}, {2000005037, "solaris-eucJP-2_7"}, {2000005038, "solaris-eucJP-2_8"},
    {2000005039, "td_ebcdic"}, {2000005040, "td_ebcdic037_0e"}, {2000005041, "td_ebcdic273_0e"},
    {2000005042, "td_ebcdic277_0e"}, {2000005043, "td_hangulebcdic933_1ii"},
    {2000005044, "td_hangulksc5601_2r4"}, {2000005045, "td_kanjiebcdic5026_0i"},
    {2000005046, "td_kanjiebcdic5035_0i"}, {2000005047, "td_kanjieuc_0u"}, {2000005048, "td_kanjisjis_0s"},
    {2000005049, "td_katakanaebcdic"}, {2000005050, "td_latin1252_0a"}, {2000005051, "td_latin1_0a"},
    {2000005052, "td_latin9_0a"}, {2000005053, "td_schebcdic935_2ij"}, {2000005054, "td_schgb2312_1t0"},
    {2000005055, "td_tchbig5_1r0"}, {2000005056, "td_tchebcdic937_3ib"}, {2000010001, "mysql_armscii8"},
    {2000010002, "mysql_big5"}, {2000010003, "mysql_cp850"}, {2000010004, "mysql_cp852"},
    {2000010005, "mysql_cp866"}, {2000010006, "mysql_cp932"}, {2000010007, "mysql_cp1250"},
    {2000010008, "mysql_cp1251"}, {2000010009, "mysql_cp1256"}, {2000010010, "mysql_cp1257"},
    {2000010011, "mysql_dec8"}, {2000010012, "mysql_eucjpms"}, {2000010013, "mysql_euckr"},
    {2000010014, "mysql_gb2312"}, {2000010015, "mysql_gbk"}, {2000010016, "mysql_geostd8"},
    {2000010017, "mysql_greek"}, {2000010018, "mysql_hebrew"}, {2000010019, "mysql_hp8"},
    {2000010020, "mysql_keybcs2"}, {2000010021, "mysql_koi8r"}, {2000010022, "mysql_koi8u"},
    {2000010023, "mysql_latin1"}, {2000010024, "mysql_latin2"}, {2000010025, "mysql_latin5"},
    {2000010026, "mysql_latin7"}, {2000010027, "mysql_macce"}, {2000010028, "mysql_macroman"},
    {2000010029, "mysql_sjis"}, {2000010030, "mysql_swe7"}, {2000010031, "mysql_tis620"},
    {2000010032, "mysql_ujis"},
};

// Number -> the name the documentation gives users.
constexpr ZuCodePageName IANAtoICUTableExport[78] = {
    {3, "us-ascii"}, {4, "iso-8859-1"}, {5, "iso-8859-2"}, {6, "iso-8859-3"}, {7, "iso-8859-4"},
    {8, "iso-8859-5"}, {10, "iso-8859-7"}, {11, "iso-8859-8"}, {12, "iso-8859-9"}, {17, "Shift_JIS"},
    {18, "euc-jp"}, {37, "iso-2022-kr"}, {38, "euc-kr"}, {39, "iso-2022-jp"}, {106, "UTF-8"},
    {109, "iso-8859-13"}, {111, "iso-8859-15"}, {113, "GBK"}, {1013, "UTF-16BE"}, {1014, "UTF-16LE"},
    {2009, "IBM850"}, {2010, "IBM852"}, {2011, "IBM437"}, {2025, "gb2312"}, {2026, "Big5"},
    {2027, "MACINTOSH"}, {2028, "IBM037"}, {2030, "IBM273"}, {2033, "IBM277"}, {2034, "IBM278"},
    {2035, "IBM280"}, {2037, "IBM284"}, {2038, "IBM285"}, {2039, "IBM290"}, {2040, "IBM297"},
    {2041, "IBM420"}, {2043, "IBM424"}, {2044, "IBM500"}, {2046, "IBM855"}, {2047, "IBM857"},
    {2048, "IBM860"}, {2049, "IBM861"}, {2050, "IBM863"}, {2051, "IBM864"}, {2052, "IBM865"},
    {2054, "IBM869"}, {2055, "IBM870"}, {2056, "IBM871"}, {2063, "IBM1026"}, {2084, "koi8-r"},
    {2085, "hz-gb-2312"}, {2086, "IBM866"}, {2087, "IBM775"}, {2089, "IBM00858"}, {2091, "IBM01140"},
    {2092, "IBM01141"}, {2093, "IBM01142"}, {2094, "IBM01143"}, {2095, "IBM01144"}, {2096, "IBM01145"},
    {2097, "IBM01146"}, {2098, "IBM01147"}, {2099, "IBM01148"}, {2100, "IBM01149"}, {2250, "windows-1250"},
    {2251, "windows-1251"}, {2252, "windows-1252"}, {2253, "windows-1253"}, {2254, "windows-1254"},
    {2255, "windows-1255"}, {2256, "windows-1256"}, {2257, "windows-1257"}, {2258, "windows-1258"},
    {2000000036, "KS_C_5601"}, {2000000038, "windows-874"}, {2000000862, "IBM862"},
    {2000000943, "IBM-943_P14A-2000"}, {2000005026, "IBM-5026"},
};

// Documented name -> number.
constexpr ZuNameCodePage DocumentedICUtoIANATable[81] = {
    {"Big5", 2026}, {"euc-jp", 18}, {"euc-kr", 38}, {"gb2312", 2025}, {"GBK", 113}, {"hz-gb-2312", 2085},
    {"IBM-4396", 2000000930}, {"IBM-5026", 2000005026}, {"IBM-5035", 2000000939}, {"IBM-939", 2000000939},
    {"IBM-943_P14A-2000", 2000000943}, {"IBM00858", 2089}, {"IBM01140", 2091}, {"IBM01141", 2092},
    {"IBM01142", 2093}, {"IBM01143", 2094}, {"IBM01144", 2095}, {"IBM01145", 2096}, {"IBM01146", 2097},
    {"IBM01147", 2098}, {"IBM01148", 2099}, {"IBM01149", 2100}, {"IBM037", 2028}, {"IBM1026", 2063},
    {"IBM273", 2030}, {"IBM277", 2033}, {"IBM278", 2034}, {"IBM280", 2035}, {"IBM284", 2037},
    {"IBM285", 2038}, {"IBM290", 2039}, {"IBM297", 2040}, {"IBM420", 2041}, {"IBM424", 2043},
    {"IBM437", 2011}, {"IBM500", 2044}, {"IBM775", 2087}, {"IBM850", 2009}, {"IBM852", 2010},
    {"IBM855", 2046}, {"IBM857", 2047}, {"IBM860", 2048}, {"IBM861", 2049}, {"IBM862", 2000000862},
    {"IBM863", 2050}, {"IBM864", 2051}, {"IBM865", 2052}, {"IBM866", 2086}, {"IBM869", 2054},
    {"IBM870", 2055}, {"IBM871", 2056}, {"iso-2022-jp", 39}, {"iso-2022-kr", 37}, {"iso-8859-1", 4},
    {"iso-8859-13", 109}, {"iso-8859-15", 111}, {"iso-8859-2", 5}, {"iso-8859-3", 6}, {"iso-8859-4", 7},
    {"iso-8859-5", 8}, {"iso-8859-7", 10}, {"iso-8859-8", 11}, {"iso-8859-9", 12}, {"koi8-r", 2084},
    {"KS_C_5601", 2000000036}, {"MACINTOSH", 2027}, {"Shift_JIS", 17}, {"us-ascii", 3}, {"UTF-16BE", 1013},
    {"UTF-16LE", 1014}, {"UTF-8", 106}, {"windows-1250", 2250}, {"windows-1251", 2251},
    {"windows-1252", 2252}, {"windows-1253", 2253}, {"windows-1254", 2254}, {"windows-1255", 2255},
    {"windows-1256", 2256}, {"windows-1257", 2257}, {"windows-1258", 2258}, {"windows-874", 2000000038},
};

// ICU name -> number: IANAtoICUTable inverted, without the null name and
// ibm-1388, with ibm-1025 under its full name and UTF-16BE as 1013 only.
constexpr ZuNameCodePage ICUtoIANATable[338] = {
    {"Adobe-Standard-Encoding", 2005}, {"Adobe-Symbol-Encoding", 2020}, {"ANSI_X3.110-1983", 74},
    {"ANSI_X3.4-1968", 3}, {"ASMO_449", 65}, {"Big5", 2026}, {"BOCU-1", 1020}, {"BS_4730", 20},
    {"BS_viewdata", 50}, {"CESU-8", 1016}, {"cp838", 2016}, {"cpibm1140", 2091}, {"cpibm1141", 2092},
    {"cpibm1142", 2093}, {"cpibm1143", 2094}, {"cpibm1144", 2095}, {"cpibm1145", 2096}, {"cpibm1146", 2097},
    {"cpibm1147", 2098}, {"cpibm1148", 2099}, {"cpibm1149", 2100}, {"CSA_Z243.4-1985-1", 78},
    {"CSA_Z243.4-1985-2", 79}, {"CSA_Z243.4-1985-gr", 80}, {"CSN_369103", 86}, {"DEC-MCS", 2008},
    {"DIN_66003", 24}, {"dk-us", 101}, {"DS_2089", 99}, {"EBCDIC-AT-DE", 2064}, {"EBCDIC-AT-DE-A", 2065},
    {"EBCDIC-CA-FR", 2066}, {"EBCDIC-DK-NO", 2067}, {"EBCDIC-DK-NO-A", 2068}, {"EBCDIC-ES", 2074},
    {"EBCDIC-ES-A", 2075}, {"EBCDIC-ES-S", 2076}, {"EBCDIC-FI-SE", 2069}, {"EBCDIC-FI-SE-A", 2070},
    {"EBCDIC-FR", 2071}, {"EBCDIC-IT", 2072}, {"EBCDIC-PT", 2073}, {"EBCDIC-UK", 2077}, {"EBCDIC-US", 2078},
    {"ECMA-cyrillic", 77}, {"ES", 23}, {"ES2", 61}, {"EUC-KR", 38},
    {"Extended_UNIX_Code_Fixed_Width_for_Japanese", 19},
    {"Extended_UNIX_Code_Packed_Format_for_Japanese", 18}, {"GB18030", 114}, {"GB2312", 2025},
    {"GB_1988-80", 56}, {"GB_2312-80", 57}, {"GBK", 113}, {"GOST_19768-74", 94}, {"greek-ccitt", 91},
    {"greek7", 64}, {"greek7-old", 44}, {"HP-DeskTop", 2021}, {"HP-Legal", 2017}, {"HP-Math8", 2019},
    {"HP-Pi-font", 2018}, {"hp-roman8", 2004}, {"HZ-GB-2312", 2085}, {"ibm-1025_P100-1995", 2000001025},
    {"ibm-1159", 2000001159}, {"ibm-1161_P100-1999", 2000000874}, {"ibm-1250_P100-1995", 2000001250},
    {"ibm-1363_P11B-2000", 36}, {"ibm-1370_P100-1999", 2000000950}, {"ibm-1375_P100-2003", 2101},
    {"ibm-1386", 2000001386}, {"ibm-1390", 2000005026}, {"ibm-1399", 2000001399}, {"ibm-16684", 2000000300},
    {"ibm-4971", 4971}, {"ibm-5123", 2000001027}, {"ibm-834", 2000000834}, {"ibm-835", 2000000835},
    {"ibm-856", 2000000856}, {"ibm-862", 2000000862}, {"ibm-875", 2000000875}, {"ibm-930", 2000000930},
    {"ibm-933", 2000000933}, {"ibm-933_P110-1995", 2000000833}, {"ibm-935", 2000000935},
    {"ibm-937", 2000000937}, {"ibm-939", 2000000939}, {"ibm-942_P120-2000", 17},
    {"ibm-943_P14A-2000", 2000000943}, {"ibm-943_P15A-2003", 2024}, {"IBM-Symbols", 2015}, {"IBM00858", 2089},
    {"IBM00924", 2090}, {"IBM037", 2028}, {"IBM038", 2029}, {"IBM1026", 2063}, {"IBM1047", 2102},
    {"IBM273", 2030}, {"IBM274", 2031}, {"IBM275", 2032}, {"IBM277", 2033}, {"IBM278", 2034},
    {"IBM280", 2035}, {"IBM281", 2036}, {"IBM284", 2037}, {"IBM285", 2038}, {"IBM290", 2039},
    {"IBM297", 2040}, {"IBM420", 2041}, {"IBM423", 2042}, {"IBM424", 2043}, {"IBM437", 2011},
    {"IBM500", 2044}, {"IBM775", 2087}, {"IBM850", 2009}, {"IBM851", 2045}, {"IBM852", 2010},
    {"IBM855", 2046}, {"IBM857", 2047}, {"IBM860", 2048}, {"IBM861", 2049}, {"IBM862", 2013},
    {"IBM863", 2050}, {"IBM864", 2051}, {"IBM865", 2052}, {"IBM866", 2086}, {"IBM868", 2053},
    {"IBM869", 2054}, {"IBM870", 2055}, {"IBM871", 2056}, {"IBM880", 2057}, {"IBM891", 2058},
    {"IBM903", 2059}, {"IBM904", 2060}, {"IBM905", 2061}, {"IBM918", 2062}, {"IEC_P27-1", 88}, {"INIS", 51},
    {"INIS-8", 52}, {"INIS-cyrillic", 53}, {"INVARIANT", 29}, {"ISO-10646-J-1", 1004},
    {"ISO-10646-UCS-2", 1000}, {"ISO-10646-UCS-4", 1001}, {"ISO-10646-UCS-Basic", 1002},
    {"ISO-10646-Unicode-Latin1", 1003}, {"ISO-10646-UTF-1", 27}, {"ISO-2022-CN", 104},
    {"ISO-2022-CN-EXT", 105}, {"ISO-2022-JP", 39}, {"ISO-2022-JP-2", 40}, {"ISO-2022-KR", 37},
    {"ISO-8859-1-Windows-3.0-Latin-1", 2000}, {"ISO-8859-1-Windows-3.1-Latin-1", 2001}, {"ISO-8859-10", 13},
    {"ISO-8859-13", 109}, {"ISO-8859-14", 110}, {"ISO-8859-15", 111}, {"ISO-8859-16", 112},
    {"ISO-8859-2-Windows-Latin-2", 2002}, {"ISO-8859-9-Windows-Latin-5", 2003}, {"iso-ir-90", 66},
    {"ISO-Unicode-IBM-1261", 1005}, {"ISO-Unicode-IBM-1264", 1008}, {"ISO-Unicode-IBM-1265", 1009},
    {"ISO-Unicode-IBM-1268", 1006}, {"ISO-Unicode-IBM-1276", 1007}, {"ISO_10367-box", 96},
    {"ISO_2033-1983", 73}, {"ISO_5427", 48}, {"ISO_5427:1981", 54}, {"ISO_5428:1980", 55},
    {"ISO_646.basic:1983", 28}, {"ISO_646.irv:1983", 30}, {"ISO_6937-2-25", 93}, {"ISO_6937-2-add", 14},
    {"ISO_8859-1:1987", 4}, {"ISO_8859-2:1987", 5}, {"ISO_8859-3:1988", 6}, {"ISO_8859-4:1988", 7},
    {"ISO_8859-5:1988", 8}, {"ISO_8859-6-E", 81}, {"ISO_8859-6-I", 82}, {"ISO_8859-6:1987", 9},
    {"ISO_8859-7:1987", 10}, {"ISO_8859-8-E", 84}, {"ISO_8859-8-I", 85}, {"ISO_8859-8:1988", 11},
    {"ISO_8859-9", 12}, {"ISO_8859-supp", 95}, {"IT", 22}, {"JIS_C6220-1969-jp", 41},
    {"JIS_C6220-1969-ro", 42}, {"JIS_C6226-1978", 49}, {"JIS_C6226-1983", 63}, {"JIS_C6229-1984-a", 67},
    {"JIS_C6229-1984-b", 68}, {"JIS_C6229-1984-b-add", 69}, {"JIS_C6229-1984-hand", 70},
    {"JIS_C6229-1984-hand-add", 71}, {"JIS_C6229-1984-kana", 72}, {"JIS_Encoding", 16}, {"JIS_X0201", 15},
    {"JIS_X0212-1990", 98}, {"JUS_I.B1.002", 87}, {"JUS_I.B1.003-mac", 90}, {"JUS_I.B1.003-serb", 89},
    {"KOI8-R", 2084}, {"KOI8-U", 2088}, {"KSC5636", 102}, {"latin-greek", 45}, {"Latin-greek-1", 47},
    {"latin-lap", 97}, {"macintosh", 2027}, {"Microsoft-Publishing", 2023}, {"MNEM", 2081},
    {"MNEMONIC", 2080}, {"MSZ_7795.3", 62}, {"mysql_armscii8", 2000010001}, {"mysql_big5", 2000010002},
    {"mysql_cp1250", 2000010007}, {"mysql_cp1251", 2000010008}, {"mysql_cp1256", 2000010009},
    {"mysql_cp1257", 2000010010}, {"mysql_cp850", 2000010003}, {"mysql_cp852", 2000010004},
    {"mysql_cp866", 2000010005}, {"mysql_cp932", 2000010006}, {"mysql_dec8", 2000010011},
    {"mysql_eucjpms", 2000010012}, {"mysql_euckr", 2000010013}, {"mysql_gb2312", 2000010014},
    {"mysql_gbk", 2000010015}, {"mysql_geostd8", 2000010016}, {"mysql_greek", 2000010017},
    {"mysql_hebrew", 2000010018}, {"mysql_hp8", 2000010019}, {"mysql_keybcs2", 2000010020},
    {"mysql_koi8r", 2000010021}, {"mysql_koi8u", 2000010022}, {"mysql_latin1", 2000010023},
    {"mysql_latin2", 2000010024}, {"mysql_latin5", 2000010025}, {"mysql_latin7", 2000010026},
    {"mysql_macce", 2000010027}, {"mysql_macroman", 2000010028}, {"mysql_sjis", 2000010029},
    {"mysql_swe7", 2000010030}, {"mysql_tis620", 2000010031}, {"mysql_ujis", 2000010032}, {"NATS-DANO", 33},
    {"NATS-DANO-ADD", 34}, {"NATS-SEFI", 31}, {"NATS-SEFI-ADD", 32}, {"NC_NC00-10:81", 92},
    {"NF_Z_62-010", 26}, {"NF_Z_62-010_(1973)", 46}, {"NS_4551-1", 25}, {"NS_4551-2", 58},
    {"PC8-Danish-Norwegian", 2012}, {"PC8-Turkish", 2014}, {"PT", 43}, {"PT2", 60}, {"PTCP154", 2103},
    {"SCSU", 1011}, {"SEN_850200_B", 35}, {"SEN_850200_C", 21}, {"solaris-eucJP-2_7", 2000005037},
    {"solaris-eucJP-2_8", 2000005038}, {"T.101-G2", 83}, {"T.61-7bit", 75}, {"T.61-8bit", 76},
    {"td_ebcdic", 2000005039}, {"td_ebcdic037_0e", 2000005040}, {"td_ebcdic273_0e", 2000005041},
    {"td_ebcdic277_0e", 2000005042}, {"td_hangulebcdic933_1ii", 2000005043},
    {"td_hangulksc5601_2r4", 2000005044}, {"td_kanjiebcdic5026_0i", 2000005045},
    {"td_kanjiebcdic5035_0i", 2000005046}, {"td_kanjieuc_0u", 2000005047}, {"td_kanjisjis_0s", 2000005048},
    {"td_katakanaebcdic", 2000005049}, {"td_latin1252_0a", 2000005050}, {"td_latin1_0a", 2000005051},
    {"td_latin9_0a", 2000005052}, {"td_schebcdic935_2ij", 2000005053}, {"td_schgb2312_1t0", 2000005054},
    {"td_tchbig5_1r0", 2000005055}, {"td_tchebcdic937_3ib", 2000005056}, {"TIS620", 2259},
    {"UNICODE-1-1", 1010}, {"UNICODE-1-1-UTF-7", 103}, {"UNICONV_CID_CP737", 2000000737},
    {"UNICONV_CID_CP775", 2000000775}, {"UNICONV_CID_CP837", 2000000837}, {"UNICONV_CID_CP954", 2000000954},
    {"UNICONV_CID_DECKANJI", 2000000001}, {"UNICONV_CID_EUCGB", 2000000002},
    {"UNICONV_CID_EUCKSC", 2000000009}, {"UNICONV_CID_GREEK8", 2000000007},
    {"UNICONV_CID_MACCYR", 2000000003}, {"UNICONV_CID_MACEE", 2000000004},
    {"UNICONV_CID_MACEURO", 2000000012}, {"UNICONV_CID_MACGRK", 2000000005},
    {"UNICONV_CID_MACTHAI", 2000000010}, {"UNICONV_CID_MACTURK", 2000000006},
    {"UNICONV_CID_ROMAN9", 2000000011}, {"UNICONV_CID_TURKISH8", 2000000008}, {"UNKNOWN-8BIT", 2079},
    {"us-dk", 100}, {"UTF-16BE", 1013}, {"UTF-16LE", 1014}, {"UTF-32", 1017}, {"UTF-32BE", 1018},
    {"UTF-32LE", 1019}, {"UTF-7", 1012}, {"UTF-8", 106}, {"Ventura-International", 2007},
    {"Ventura-Math", 2022}, {"Ventura-US", 2006}, {"videotex-suppl", 59}, {"VIQR", 2083}, {"VISCII", 2082},
    {"windows-1250", 2250}, {"windows-1251", 2251}, {"windows-1252", 2252}, {"windows-1253", 2253},
    {"windows-1254", 2254}, {"windows-1255", 2255}, {"windows-1256", 2256}, {"windows-1257", 2257},
    {"windows-1258", 2258}, {"windows-874-2000", 2000000038}, {"windows-932-2000", 2000002024},
    {"windows-949", 2000000036},
};

// The previous library's numbers -> numbers.
constexpr ZuCodePageMap UnilibToIANATable[78] = {
    {-1, 1015}, {0, 3}, {1, 4}, {2, 2009}, {3, 2011}, {4, 2004}, {5, 2027}, {6, 17}, {7, 18}, {9, 2025},
    {11, 2024}, {12, 5}, {13, 8}, {14, 9}, {15, 10}, {16, 11}, {17, 12}, {18, 13}, {19, 6}, {20, 7},
    {21, 111}, {32, 2084}, {33, 2259}, {34, 2026}, {37, 2028}, {42, 109}, {43, 110}, {273, 2030}, {277, 2033},
    {278, 2034}, {284, 2037}, {285, 2038}, {290, 2039}, {297, 2040}, {420, 2041}, {424, 2043}, {500, 2044},
    {852, 2010}, {855, 2046}, {857, 2047}, {860, 2048}, {861, 2049}, {863, 2050}, {864, 2051}, {865, 2052},
    {869, 2054}, {870, 2055}, {871, 2056}, {874, 111}, {921, 109}, {923, 111}, {932, 17}, {936, 113},
    {949, 36}, {950, 2026}, {954, 18}, {1006, 2053}, {1026, 2063}, {1047, 2102}, {1140, 2091}, {1141, 2092},
    {1142, 2093}, {1143, 2094}, {1144, 2095}, {1145, 2096}, {1146, 2097}, {1147, 2098}, {1148, 2099},
    {1149, 2100}, {1250, 2250}, {1251, 2251}, {1252, 2252}, {1253, 2253}, {1254, 2254}, {1255, 2255},
    {1256, 2256}, {1257, 2257}, {1258, 2258},
};

// Windows code page numbers -> numbers.
constexpr ZuCodePageMap WindowsToIANATable[73] = {
    {37, 2028}, {437, 2011}, {500, 2044}, {708, 9}, {710, 9}, {775, 2087}, {850, 2009}, {852, 2010},
    {855, 2046}, {857, 2047}, {858, 2089}, {860, 2048}, {861, 2049}, {862, 2013}, {863, 2050}, {864, 2051},
    {865, 2052}, {866, 2086}, {869, 2054}, {870, 2055}, {874, 2000000038}, {932, 2024}, {936, 113}, {949, 36},
    {950, 2026}, {1026, 2063}, {1047, 2102}, {1140, 2091}, {1141, 2092}, {1142, 2093}, {1143, 2094},
    {1144, 2095}, {1145, 2096}, {1146, 2097}, {1147, 2098}, {1148, 2099}, {1149, 2100}, {1200, 1014},
    {1201, 1013}, {1250, 2250}, {1251, 2251}, {1252, 2252}, {1253, 2253}, {1254, 2254}, {1255, 2255},
    {1256, 2256}, {1257, 2257}, {1258, 2258}, {1361, 36}, {20127, 3}, {20936, 2025}, {28591, 4}, {28592, 5},
    {28593, 6}, {28594, 7}, {28595, 8}, {28596, 9}, {28597, 10}, {28598, 11}, {28599, 12}, {28605, 111},
    {38598, 11}, {50220, 39}, {50221, 40}, {50225, 37}, {50227, 104}, {50229, 105}, {51932, 18},
    {51936, 2025}, {51949, 38}, {54936, 114}, {65000, 1012}, {65001, 106},
};

namespace {
// A row left out of an initializer would be zero-filled; counting the rows
// that are not all zero checks the transcription against the bound.
template <std::size_t N>
constexpr std::size_t filledRows(const ZuCodePageName (&t)[N])
{
    std::size_t n = 0;
    for (const auto& row : t)
        n += (row.id != 0 || row.name != nullptr) ? 1 : 0;
    return n;
}
template <std::size_t N>
constexpr std::size_t filledRows(const ZuNameCodePage (&t)[N])
{
    std::size_t n = 0;
    for (const auto& row : t)
        n += row.name != nullptr ? 1 : 0;
    return n;
}
template <std::size_t N>
constexpr std::size_t filledRows(const ZuCodePageMap (&t)[N])
{
    std::size_t n = 0;
    for (const auto& row : t)
        n += (row.from != 0 || row.to != 0) ? 1 : 0;
    return n;
}

template <std::size_t N>
constexpr bool strictlySorted(const ZuCodePageName (&t)[N])
{
    for (std::size_t i = 1; i < N; ++i)
        if (!(t[i - 1].id < t[i].id))
            return false;
    return true;
}
template <std::size_t N>
constexpr bool strictlySorted(const ZuNameCodePage (&t)[N])
{
    for (std::size_t i = 1; i < N; ++i)
        if (compareFolded(t[i - 1].name, t[i].name) >= 0)
            return false;
    return true;
}
template <std::size_t N>
constexpr bool strictlySorted(const ZuCodePageMap (&t)[N])
{
    for (std::size_t i = 1; i < N; ++i)
        if (!(t[i - 1].from < t[i].from))
            return false;
    return true;
}

static_assert(filledRows(IANAtoICUTable) == 341 && strictlySorted(IANAtoICUTable));
static_assert(filledRows(IANAtoICUTableExport) == 78 && strictlySorted(IANAtoICUTableExport));
static_assert(filledRows(DocumentedICUtoIANATable) == 81 && strictlySorted(DocumentedICUtoIANATable));
static_assert(filledRows(ICUtoIANATable) == 338 && strictlySorted(ICUtoIANATable));
static_assert(filledRows(UnilibToIANATable) == 78 && strictlySorted(UnilibToIANATable));
static_assert(filledRows(WindowsToIANATable) == 73 && strictlySorted(WindowsToIANATable));
}  // namespace

const char* ucnvMapToName(long number, const ZuCodePageName* table, int rows)
{
    if (table == nullptr)
        return nullptr;
    int low = 0;
    int high = rows - 1;
    while (low <= high) {
        int middle = (low + high) / 2;
        long key = table[middle].id;
        if (key == number)
            return table[middle].name;
        if (key < number)
            low = middle + 1;
        else
            high = middle - 1;
    }
    return nullptr;
}

long ucnvMapToID(const char* name, const ZuNameCodePage* table, int rows)
{
    // A null name is ICU's default converter, which is what the result for
    // an unknown name stands for as well.
    if (name == nullptr || table == nullptr)
        return ZU_CP_ICU_DEFAULT;
    int low = 0;
    int high = rows - 1;
    while (low <= high) {
        int middle = (low + high) / 2;
        int order = compareFolded(table[middle].name, name);
        if (order == 0)
            return table[middle].id;
        if (order < 0)
            low = middle + 1;
        else
            high = middle - 1;
    }
    return ZU_CP_ICU_DEFAULT;
}

long ucnvMapToIANAID(long number, const ZuCodePageMap* table, int rows)
{
    if (table == nullptr)
        return ZU_CP_NONE;
    int low = 0;
    int high = rows - 1;
    while (low <= high) {
        int middle = (low + high) / 2;
        long key = table[middle].from;
        if (key == number)
            return table[middle].to;
        if (key < number)
            low = middle + 1;
        else
            high = middle - 1;
    }
    return ZU_CP_NONE;
}

const char* ucnvIANAidToICUname(long number) { return ucnvMapToName(number, IANAtoICUTable, 341); }

const char* ucnvIANAidToICUnameExport(long number)
{
    const char* name = ucnvMapToName(number, IANAtoICUTableExport, 78);
    return name != nullptr ? name : ucnvIANAidToICUname(number);
}

long ucnvICUnameToIANAid(const char* name)
{
    long number = ucnvMapToID(name, DocumentedICUtoIANATable, 81);
    return number != ZU_CP_ICU_DEFAULT ? number : ucnvMapToID(name, ICUtoIANATable, 338);
}

long ucnvUnilibToIANA(long number) { return ucnvMapToIANAID(number, UnilibToIANATable, 78); }

long ucnvWindowsToIANA(long number) { return ucnvMapToIANAID(number, WindowsToIANATable, 73); }
