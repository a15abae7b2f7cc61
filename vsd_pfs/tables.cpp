// The constant tables: the document kinds that the host knows, and the texts that documents
// and embedded commands are recognised by. Test: tests/module/tables_test.cpp.
#include "tables.h"

namespace {

constexpr uint8_t kind_byte = 120;

} // namespace

extern "C" const VwFileKind VwPfsOverlayId[VW_FILE_KINDS] = {
    {1012, kind_byte, "PFS: WRITE A"},          {1013, kind_byte, "PFS: WRITE B"},
    {1014, kind_byte, "Professional Write 1"},  {1015, kind_byte, "Professional Write 2"},
    {1016, kind_byte, "IBM Writing Assistant"}, {1017, kind_byte, "PFS: First Choice 2.0"},
    {1058, kind_byte, "PFS: First Choice 3.0"},
};
static_assert(sizeof(VwFileKind) == 44);

// Every text stands at a fixed offset: the keywords are padded to 9 bytes each, and the
// literal's own NUL completes the table.
extern "C" const char PfsInit[VW_PFS_INIT_SIZE] = "GERBILDOC\0"
                                                  "N*\0\0\0\0\0\0\0"
                                                  "NEW \0\0\0\0\0"
                                                  "PAGE*\0\0\0\0"
                                                  "JUSTIFY \0"
                                                  "JY \0\0\0\0\0\0"
                                                  "YES*\0\0\0\0\0"
                                                  "Y*\0\0\0\0\0\0\0"
                                                  "NO*\0\0\0\0\0\0"
                                                  "PRINTER \0"
                                                  "P \0\0\0\0\0\0\0"
                                                  "CENTER*\0\0"
                                                  "C*\0\0\0\0\0\0\0"
                                                  "GRAPH \0\0\0"
                                                  "G \0\0\0\0\0\0\0"
                                                  "JOIN \0\0\0\0"
                                                  "J \0\0\0\0\0\0\0"
                                                  "RIGHT*\0\0\0"
                                                  "R*\0\0\0\0\0\0\0"
                                                  "WRD PC\0"
                                                  "TYPE 2\0"
                                                  "IBM   \0"
                                                  "TYPE 3\0"
                                                  "TYPE 4\0";
static_assert(vs_pfs::init_signatures_offset +
                  vs_pfs::init_signatures * vs_pfs::init_signature_size + 1 ==
              VW_PFS_INIT_SIZE);
