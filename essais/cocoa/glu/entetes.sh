#!/bin/sh
# entetes.sh <dossier> : les en-têtes du libobjc de GCC, rendus lisibles par clang en ARC, écrits dans <dossier>/objc.
set -e
vers=$1/objc
mkdir -p "$vers"
cp "$(gcc-12 -print-file-name=include)"/objc/*.h "$vers"/ 2>/dev/null || cp "$(gcc -print-file-name=include)"/objc/*.h "$vers"/
# YES, NO, nil et Nil, tels que les littéraux d’Objective-C et nullptr les attendent.
sed -i -E 's/^#define YES .*/#define YES __objc_yes/; s/^#define NO .*/#define NO __objc_no/
s/^#define nil \(id\)0.*/#ifdef __cplusplus\n#define nil nullptr\n#else\n#define nil ((id)0)\n#endif/
s/^#define Nil \(Class\)0.*/#ifdef __cplusplus\n#define Nil nullptr\n#else\n#define Nil ((Class)0)\n#endif/' "$vers/objc.h"
sed -i 's/return object->class_pointer;/return *(Class*)(__bridge void*)object;/' "$vers/runtime.h"
printf '#pragma once\n#include <Block.h>\n' >"$vers/blocks_runtime.h"
