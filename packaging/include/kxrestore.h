/* Everything that a C or C++ host of KXRestore includes: the interfaces, and their identifiers without a
   library. In a source file that includes this one, identifiers of system headers that are included later are
   defined as well; they are merged by the linker. */
#ifndef KXRESTORE_H
#define KXRESTORE_H

#include <windows.h>

#include <ocidl.h>
#include <oleauto.h>

#include <initguid.h>

#include "kxrestore_com.h" /* made from the interface description */

#endif
