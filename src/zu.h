/*
 * <hnsyb/zu.h>: the whole support library in one include.
 *
 * Every public header of the support library is listed here, lowest layer
 * first.  The dialog's C entry points are in <hnsyb/dsn.h>.
 */
#ifndef HNSYB_ZU_H
#define HNSYB_ZU_H

// Platform layer
#include "platform/export.h"
#include "platform/ram.h"
#include "platform/ramfault.h"
#include "platform/mds.h"
#include "platform/critsec.h"
#include "platform/semaphore.h"
#include "platform/thread.h"
#include "platform/trace.h"
#include "platform/catalog.h"
#include "platform/bosfile.h"
#include "platform/bospath.h"
#include "platform/boslocate.h"
#include "platform/bosfind.h"
#include "platform/bossys.h"
#include "platform/bostext.h"

// Core library
#include "core/object.h"
#include "core/array.h"
#include "core/sortedarray.h"
#include "core/list.h"
#include "core/bitarray.h"
#include "core/error.h"
#include "core/errorlist.h"
#include "core/handlecache.h"
#include "core/but.h"
#include "core/strcmp.h"
#include "core/strcopy.h"
#include "core/strfind.h"
#include "core/strlike.h"
#include "core/strtoken.h"
#include "core/strhex.h"
#include "core/accelerator.h"
#include "core/substring.h"
#include "core/zustring.h"
#include "core/paramstring.h"
#include "core/set.h"
#include "core/dictionary.h"
#include "core/replacestring.h"
#include "core/substringupper.h"

// Character encoding
#include "encoding/cptype.h"
#include "encoding/codepage.h"
#include "encoding/ux.h"
#include "encoding/icucache.h"
#include "encoding/mbchar.h"

// Data conversion
#include "conversion/charconverter.h"
#include "conversion/convert.h"
#include "conversion/juliandate.h"
#include "conversion/zutime.h"

// Profiles
#include "profile/inicache.h"
#include "profile/profile.h"

// Network and security services
#include "net/crc32.h"
#include "net/md5.h"
#include "net/des.h"
#include "net/textcipher.h"

// Online help
#include "help/help.h"
#include "help/wwhelp.h"
#include "help/wwhplatform.h"
#include "help/wwhcomm.h"

#endif
