#!/usr/bin/env bash
# check-install.sh BUILD_DIR CXX
set -euo pipefail
build=$1
cxx=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" > /dev/null

for f in lib/libhnsybr.so include/hnsyb/zu.h include/hnsyb/dsn.h \
         include/hnsyb/platform/ram.h include/hnsyb/core/array.h \
         locale/en_US/LC_MESSAGES/HNmback.mo locale/en_US/LC_MESSAGES/uxutl24.mo \
         lib/pkgconfig/hnsyb.pc lib/libhnsybs.so bin/hnsyb-setup; do
  [ -e "$prefix/$f" ] || fail "missing $f"
done

# A program built only against the installed headers and library.
cat > "$prefix/user.cpp" <<'CPP'
#include <hnsyb/zu.h>
#include <hnsyb/dsn.h>
#include <nl_types.h>
#include <cstdio>
#include <cstring>
#include <string>
struct Item : ZuObject { int v; explicit Item(int x) : v(x) {} int compare(const ZuObject* o) const override { return v - static_cast<const Item*>(o)->v; } };
int main(int, char** argv) {
    ZuSortedArray a;
    for (int v : {5, 1, 3}) a.add(new Item(v));
    if (static_cast<Item*>(a.at(0))->v != 1 || static_cast<Item*>(a.at(2))->v != 5) return 2;
    a.deleteContents();
    ZuErrorList list(nullptr, 1);
    ZuErrorKeeper::setErrorList(&list);
    ramAddMemoryError();
    if (ZuErrorKeeper::getLastErrorNumber() != 30190) return 3;
    ZuErrorKeeper::giveUpErrorList();
    std::string path = std::string(argv[1]) + "/locale/en_US/LC_MESSAGES/uxutl24.mo";
    nl_catd cat = catopen(path.c_str(), 0);
    if (cat == (nl_catd)-1) return 4;
    const char* text = catgets(cat, 1, 30190, "30190");
    if (std::strcmp(text, "Out Of Memory") != 0) { std::printf("got %s\n", text); return 5; }
    catclose(cat);
    path = std::string(argv[1]) + "/locale/en_US/LC_MESSAGES/HNmback.mo";
    cat = catopen(path.c_str(), 0);
    if (cat == (nl_catd)-1) return 6;
    catclose(cat);
    return 0;
}
CPP
# Sanitizer builds need the same runtime in the user program.
san=$(grep -E '^HNSYB_SANITIZE:' "$build/CMakeCache.txt" | cut -d= -f2 | tr ';' ',')
sanflags=()
[ -n "$san" ] && sanflags=(-fsanitize="$san")
"$cxx" -std=c++20 -Wall -Wextra "${sanflags[@]}" -I"$prefix/include" "$prefix/user.cpp" \
  -L"$prefix/lib" -Wl,-rpath,"$prefix/lib" -lhnsybr -o "$prefix/user" || fail "user program does not build"
"$prefix/user" "$prefix" || fail "user program exited $?"

# The dynamic symbol table holds the interface and nothing else.
syms=$(nm -D --defined-only -C "$prefix/lib/libhnsybr.so" | awk '{ $1=""; $2=""; sub(/^  /, ""); print }')
for name in ramAllocC ramResizeZ ramAddMemoryError mdsPerThreadInit mdsGetPerThreadData \
            countDBLibInits atomicTaskExchange zuSemaphoreEnter UtlThreadCreate \
            'ZuCriticalSection::enter()' 'ZuArray::addRawAtIndex(void*, unsigned int)' \
            'ZuSortedArray::add(ZuObject*)' 'ZuList::insertAtPos(ZuNode*, unsigned int)' \
            'ZuDList::unlink(ZuDNode*)' 'ZuErrorKeeper::setErrorList(ZuErrorList*)' \
            'vtable for ZuObject' 'typeinfo for ZuArrayS32' BOS_ZUSEMAPHORE_INFO MemoryError DummyError; do
  # Exactly that name, or that function with any parameter list.
  awk -v n="$name" '$0 == n || index($0, n "(") == 1 { found = 1 } END { exit !found }' <<< "$syms" \
    || fail "not exported: $name"
done
# Every exported name belongs to one of the library's families.
allowed='^(vtable for |typeinfo for |typeinfo name for |VTT for )?(ram|mds|zu|Zu|Utl|bos|Bos|BOS_|SemArray|countDBLibInits|atomic(Task|Thread)Exchange|findThreadInfo|MemoryError|DummyError'
allowed+='|ucnv|ux|UTF(8|16)CharFromUTF(8|16)Char|ConvUTF|VerifyCodePage|checkICUreturn|checkUXreturn|mapICUreturn|setConversionReturnLength'
allowed+='|handleCharacterSubstitution|installSubstitutionCallback|IANAtoICUTable|ICUtoIANATable|DocumentedICUtoIANATable|UnilibToIANATable|WindowsToIANATable'
allowed+='|GRAVO_UCNV_|IniInitialize|CharacterConverter|str(Upper|Lower)|java(To)?(Upper|Lower)|generateLeadByteMap|getPossibleLeadByteMap|isPossibleLeadByte|getCount|getCounts'
allowed+='|updateCRC32|CRC32Table|MD5|leftRotate|DESwCBCEncryptor|InitialPermutation|FinalPermutation|xorbuf|encrypt|decrypt'
allowed+='|BUT|but(token|xpand|swap)|mem(Equal|Zero|CopyAligned|CompareHuge)|fastMemCopy|str[A-Z]|floatCompare|isCharEqual|(wide)?([Hh]exify|[Dd]ehexify)|hexifyHuge|dehexifyHuge|isHexString|isTrueStr'
allowed+='|findMenuAccelerator|setAcceleratorKey|makeDialogText|getMenuAccelerator|BZUHINST|CatFD|InstallDirLocation|OpenStrings|CloseStrings|LoadString|winGetString|addError|addWarning|addDatabaseError|appendTextTo'
allowed+='|(private_)?WWHelp_'
allowed+='|(Upper|Lower)Text'
allowed+='|convert(UTF16Swap)?\(|Base(DateToJulian|JulianToDate)\('
allowed+='|(forget|create)(_shell1|ListOfWidgets|Form|PushButton|Label|LabelField|ToggleButton|TextField|MultiLineTextField|DropDownList|HelpPushButton|LabelAndText|MultiLineBox|SecurityTab|ConnPoolTab|BulkTab)\(|populate(UIFromLinkedList|LinkedListFromUI)\(|ungrayAuthOptions|iddlgname|iniids|idtype|IDNameWgt|getMsgByID|setControlRect|addToCtrlArray|(depended|authMethod|encryptMethod|failoverMode)(Method)?Changed|checkPassword|enablePooling|key(store)?Passsword'
allowed+='|(motifbackend_invoke_dialog|invokeBackend|convertAttributeStringToLinkedList|getValueOfKey|PopulateDriverDSNStruct|AddNodeToList|FreeLinkedList|FreeDriverDsnStruct|applyChanges|getFileVersionString|getCompanyNameString|BACKEND_HANDLE_CFG|CONNECT_BACK_DLG|BACK_DLG_FUNC|HINSTFRONTEND|CPoolAttrName|Rfile|shODBCAdmin|shell1|driDsnNameL|keyValNodeHeadL|exit_code|current_shell|loop_done|truststorePasssword)$|(loadResourceLib|callBackendFunc|initialize\(driverDSNName|dialog_main_loop|exit_dialog_loop|applyAction|common(Ok|Cancel)Functionality|btn(OK|Cancel|Apply|TestConnect)_Clicked|freeAllocatedMemory|createMessageDialog|motifMessageBox|okCB|show(Permission|OutOfMemory)Error|outOfMemoryError|exitDriverConfig|(get|set)(EncryptedHexified|DehexifiedDecrypted)Value|decodeEncryption|TestConnect::|createConnectionString|testConnectClicked|closeButtonCalls|createAbtForm|setAboutInfo|getCompNameAndVersion|getVersion\(|getPFIconIPixmap)'
allowed+='|(tableName|dataFileName|configFile|logFile|discardFile|errorTolerance|warningTolerance|loadStart|loadCount|readBufferSize|codePages|loadTable|verifyData|exportTable|cancel)CB\(|build(LoadTable|VerifyData|ExportTable)Dialog\(|btnBulk[A-Za-z]*_Clicked\(|bulkDataFileChanged\(|(GlobalBulkInfo|CalledFromFileName|CodePages|loadTableDialog|verifyDataDialog|exportTableDialog)$'
allowed+='|GetPrivateProfile(String|Int)\(|WritePrivateProfileString\(|GetWindowRect\(|SetWindowPos\(|winCenterBox\(|(gui)?MessageBox\('
allowed+='|_init$|_fini$|__bss_start$|_edata$|_end$)'
stray=$(grep -vE "$allowed" <<< "$syms" | grep -vE '^__(asan|ubsan|sanitizer|odr_asan|tsan)' || true)
[ -z "$stray" ] || fail "exported names outside the interface:
$stray"
# The setup library exports the installer's entry and nothing else of ours.
setup_syms=$(nm -D --defined-only "$prefix/lib/libhnsybs.so" | awk '$2 ~ /^[TDBR]$/ { print $3 }' \
  | grep -vE '^(_init|_fini|__bss_start|_edata|_end|__(asan|ubsan|sanitizer|odr_asan)).*' || true)
[ "$setup_syms" = "ConfigDSN" ] || fail "libhnsybs.so exports: $setup_syms"
"$prefix/bin/hnsyb-setup" --help > /dev/null || fail "installed hnsyb-setup does not run"
echo "install layout, user program, catalogs and exports: ok"
