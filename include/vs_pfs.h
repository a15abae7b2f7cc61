/* vs_pfs.h - the document filter vs_pfs: its one public interface, and its manual.
 *
 * vs_pfs reads documents of PFS: WRITE, Professional Write, IBM Writing Assistant and
 * PFS: First Choice and reports what they hold as a stream of calls: characters, attribute
 * changes, indents, breaks, tab stops, headers and footers. The host owns the file, the
 * layout and the screen; the filter never draws, never opens and never writes a file.
 *
 * ORDER OF CALLS
 *
 *   VwGetRtns               once per loaded module: the table of entry points
 *   for each document:
 *     VwAllocProc           an instance; the host owns it until VwFreeProc
 *     VwLocalUp             wraps the host's block file in a character stream and sets
 *                           every output routine to SODummy; check the stream for null
 *     VwSetSoRtn, VwSetUser the host's output routines and its two user words
 *     VwStreamOpen          recognises the document and reads its header
 *     VwStreamSection       announces the one section
 *     VwStreamRead          again and again, until break VW_BREAK_END_OF_DOCUMENT is reported
 *     VwLocalDown           frees the stream, returns the block file
 *     VwFreeProc            frees the instance
 *
 * VwLocalUp must come before VwSetSoRtn: it overwrites every routine.
 *
 * WHICH KIND A FILE IS
 *
 * VwStreamOpen finds a document's kind by its content, whatever the file id is that it gets; the id
 * only selects the name that it stores. A host that shows names, or that asks whether a file is
 * for this filter at all, finds the id beforehand, by the bytes that VwStreamOpen itself looks at:
 *
 *   offset   9   "GERBILDOC"          PFS: First Choice: 1058 if the next byte is '3', else 1017
 *   offset 641   "WRD PC", "TYPE 2"   PFS: WRITE: byte 649 is '1' for 1012, '2' for 1013
 *                "TYPE 3"             1014, Professional Write 1
 *                "TYPE 4"             1015, Professional Write 2
 *                "IBM   "             1016, IBM Writing Assistant
 *
 * VwFileIdOf, below, does that with a file's first VW_KIND_BYTES bytes. Programs that use the
 * library have pfsdoc::identify for it, and people `pfsdoc identify`.
 *
 * THE TWO USER WORDS
 *
 * Each output routine gets two words of 32 bits that the host has set by VwSetUser: enough for a
 * pointer to the host's own data. VwPointerToWords takes one apart, VwPointerOfWords puts it
 * together again, with pointers of 32 and of 64 bits:
 *
 *   uint32_t words[2];
 *   VwPointerToWords(&viewer, words);
 *   VwSetUser(words[0], words[1], instance);
 *
 *   int32_t on_character(int32_t byte, uint32_t user1, uint32_t user2)
 *   {
 *       Viewer *viewer = (Viewer *)VwPointerOfWords(user1, user2);
 *       ...
 *
 * STOPPING AND RESUMING
 *
 * At each paragraph end VwStreamRead reports VW_BREAK_PARAGRAPH. If the routine returns 1
 * the call returns at once, and the next VwStreamRead continues from there. At such a point
 * VwStreamTell and VwGetData give a position and VW_SAVED_STATE_SIZE bytes with which
 * reading can be resumed later: VwSetData, VwStreamSeek, VwStreamRead. The pair is valid for
 * the same document only, in any instance that has opened it. An unregistered routine 13
 * returns 1 at every paragraph end, since SODummy returns its first argument.
 *
 * UNITS
 *
 * Lengths are in twips: VW_TWIPS_PER_COLUMN (144) is one character column, 240 is single and
 * 480 double line spacing. Characters are the document's own bytes (code page 437 in nearly
 * all of them); the filter does not convert them. All integers are in native byte order.
 *
 * 16-BIT VALUES
 *
 * Small integers are passed as 32-bit words and read as 16-bit values where the comment says
 * so: only the low 16 bits count.
 *
 * THREADS
 *
 * Everything runs on the caller's thread. The module has no mutable global state: any number
 * of instances may be in use, each by one thread at a time. Output routines are called
 * synchronously and may use VwStreamTell on the stream being read, and VwSetSoRtn and VwSetUser
 * on the instance, which take effect with the next call out. They must not throw or jump out of
 * the filter, must not read, seek or release that stream, and must not restore a saved state.
 *
 * WHAT IS PROMISED FOR BAD INPUT
 *
 * Any file content is read to an end, within the filter's own memory: data that stop without
 * the end byte report VW_BREAK_END_OF_DOCUMENT where they stop. A read that fails, or that
 * claims more bytes than were requested, counts as the end of the data. Arbitrary bytes given
 * to VwSetData may garble the text, nothing worse.
 *
 * NOT PROMISED
 *
 * That a text is what its author saw; that null pointers are accepted where this file does
 * not say so; the layout of the instance and of the saved state.
 *
 * This header is C99 and C++11, and needs the C library's <stdint.h> and <string.h>.
 */
#ifndef VS_PFS_H
#define VS_PFS_H

#include <stdint.h>
#include <string.h>

#if defined(VS_PFS_STATIC) /* linked in rather than loaded */
#define VS_PFS_API
#elif defined(_WIN32) && defined(VS_PFS_BUILD)
#define VS_PFS_API __declspec(dllexport)
#elif defined(_WIN32)
#define VS_PFS_API __declspec(dllimport)
#elif defined(__GNUC__)
#define VS_PFS_API __attribute__((visibility("default")))
#else
#define VS_PFS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* All state of a document. Opaque; from VwAllocProc. */
typedef struct VwInstance VwInstance;
typedef struct VwBlockFile VwBlockFile;
typedef struct VwCharStream VwCharStream;
typedef struct VwFileDescription VwFileDescription;

/* Any routine, in transit. Both sides cast it to the routine's own type before a call. */
typedef void (*VwRoutine)(void);

#define VW_TWIPS_PER_COLUMN 144
#define VW_SINGLE_SPACING 240
#define VW_DOUBLE_SPACING 480

/* ------------------------------------------------------------------ block files --- */

/* The host's file: a structure that begins with these seven pointers, followed by the host's
 * own data. The host owns it; it must outlive the stream that wraps it. Each operation
 * returns 0 for success and anything else for failure. */
struct VwBlockFile {
    /* Closes the file. Called by VwBlockClose only. */
    int32_t (*close)(VwBlockFile *self);
    /* Reads up to count bytes at the current position, advances it and stores the number
     * read, 0 at the end of the file. Fewer than count ends the data no sooner than the
     * next read does. */
    int32_t (*read)(VwBlockFile *self, void *destination, uint32_t count, uint32_t *count_read);
    VwRoutine reserved2; /* never called */
    /* Moves to offset bytes from the start (origin 0) or from the end (origin 2). With
     * origin 0 the offset is a position: its 32 bits are unsigned. */
    int32_t (*seek)(VwBlockFile *self, uint32_t origin, int32_t offset);
    /* Stores the current position. */
    int32_t (*tell)(VwBlockFile *self, uint32_t *position);
    VwRoutine reserved5; /* never called */
    /* Opens a related file and stores it in *result. Code VW_OPEN_PATH: argument is a
     * NUL-terminated path. Code VW_OPEN_BESIDE: argument is a VwOpenBeside. The last
     * argument is always 1. Called by VwBlockOpen only. */
    int32_t (*open)(VwBlockFile **result, uint32_t code, const void *argument, uint32_t one);
};

enum { VW_OPEN_PATH = 1, VW_OPEN_BESIDE = 9 };

/* Names a file in the same directory as an open one. */
typedef struct VwOpenBeside {
    VwBlockFile *existing;
    char name[256]; /* without path, NUL-terminated */
} VwOpenBeside;

/* Helpers over the operations, for the host; the filter's own reading does not use them. */

/* Reads up to count (16-bit) bytes, stores how many (low 16 bits). 0, or -1 on failure. */
VS_PFS_API int32_t VwBlockRead(VwBlockFile *file, void *destination, uint32_t count,
                               uint16_t *count_read);
/* Seeks; origin is 16-bit, 0 or 2. 0, or -1 on failure. */
VS_PFS_API int32_t VwBlockSeek(VwBlockFile *file, int32_t offset, uint32_t origin);
/* The current position, or -1 on failure. */
VS_PFS_API int32_t VwBlockTell(VwBlockFile *file);
/* Closes the file. 0 whatever the file returns. */
VS_PFS_API int32_t VwBlockClose(VwBlockFile *file);
/* Opens path, or if that fails the file of that name beside `file` (what follows the last
 * '\\', '/' or ':' is the name). Returns the new file, which the host owns, or the pointer
 * value -1: for an empty path, for a name of 256 characters or more, and when the host's
 * open refuses both. The third argument is not used. */
VS_PFS_API VwBlockFile *VwBlockOpen(VwBlockFile *file, const char *path, uint32_t unused);

/* ------------------------------------------------------------- character streams --- */

#define VW_STREAM_BUFFER_SIZE 2048

/* A buffered, seekable byte reader over a block file. Public so that VwCharGet can be
 * inlined; treat the members as read-only.
 * While bytes are buffered: cursor == buffer + (bufferLength - remaining), and the next
 * byte's position is bufferBase + bufferLength - remaining. */
struct VwCharStream {
    int16_t remaining;     /* bytes not yet delivered; below 0 after reads at the end */
    uint32_t bufferLength; /* valid bytes in the buffer, 0 to 2048 */
    uint32_t bufferBase;   /* file position of the buffer's first byte */
    uint8_t buffer[VW_STREAM_BUFFER_SIZE];
    uint8_t *cursor; /* next byte to deliver, inside the buffer */
    VwBlockFile *blockFile;
};

/* Wraps a block file; reading starts at position 0 whatever the file's position. From
 * malloc; null if there is not enough memory. Owned by the caller until VwCharToBlock. */
VS_PFS_API VwCharStream *VwBlockToChar(VwBlockFile *file);
/* Frees the stream and returns the block file it wrapped, still open. */
VS_PFS_API VwBlockFile *VwCharToBlock(VwCharStream *stream);
/* Refills the buffer and delivers its first byte, 0 to 255; -1 at the end of the data or if
 * the read fails. The slow path of VwCharGet; not to be called while bytes remain. */
VS_PFS_API int32_t vxfilbuf(VwCharStream *stream);
/* Moves to position: absolute (origin 0), relative to here (1) or to the end (2); origin is
 * a signed 16-bit value, and any other value means 0. 0, or -1 if the block file refuses; the
 * stream is then empty, at the requested position or, if origin 2 could not be resolved, at
 * its old one. */
VS_PFS_API int32_t VwCharSeek(VwCharStream *stream, uint32_t position, int32_t origin);
/* The next byte's position. Each read past the end advances it by one. */
VS_PFS_API uint32_t VwCharTell(VwCharStream *stream);
/* VwBlockOpen on the stream's file, wrapped into a new stream. The pointer value -1 on
 * failure; a file that opened but could not be wrapped is then not closed. */
VS_PFS_API VwCharStream *VwCharBlockOpen(VwCharStream *stream, const char *path, uint32_t flags);
/* Frees the stream and closes its block file. Always 0. */
VS_PFS_API int32_t VwCharBlockClose(VwCharStream *stream);

/* The next byte, 0 to 255, or -1 at the end of the data. */
static inline int32_t VwCharGet(VwCharStream *stream)
{
    if (stream->remaining > 0) {
        --stream->remaining;
        return *stream->cursor++;
    }
    if (stream->remaining > INT16_MIN) { /* saturates: it must never wrap around to 0 */
        --stream->remaining;
    }
    return vxfilbuf(stream);
}

/* Takes the byte just delivered back, so that it is delivered again. Once per byte, and not
 * after -1; at the start of the buffer it does nothing. */
static inline void VwCharUnget(VwCharStream *stream)
{
    if (stream->cursor != stream->buffer) {
        ++stream->remaining;
        --stream->cursor;
    }
}

/* ---------------------------------------------------------------- output routines --- */

/* Ids for VwSetSoRtn. 1 to 65 can be registered; the filter calls only these. */
enum VwOutputId {
    VW_SO_CHARACTER = 1,         /* (byte): a character; 0x20 where wrapped lines join; a
                                    missing byte of a truncated header text is -1 */
    VW_SO_SPECIAL_CHARACTER = 2, /* (byte, 7): a space in a line of spaces only, or one byte
                                    of an embedded command, including its asterisks */
    VW_SO_PAGE_BREAK = 3,        /* (4, 0) */
    VW_SO_ATTRIBUTE = 4,         /* (code 2, 3, 4, 10 or 11; 1 on, 0 off) */
    VW_SO_FONT = 5,              /* (24), at the start of each read */
    VW_SO_ALIGNMENT = 6,         /* (VwAlignment) for what follows */
    VW_SO_INDENTS = 7,           /* (left, right, first line) in twips from the margins, after
                                    a paragraph's text, before its break; 0, 0, 0 resets */
    VW_SO_TAB_STOPS_BEGIN = 8,   /* () a new table of tab stops, which replaces the last */
    VW_SO_TAB_STOPS_END = 9,     /* () */
    VW_SO_TAB_STOP = 10,         /* (const VwTabStop *), valid during the call */
    VW_SO_MARGINS = 11,          /* (left, right) in twips from the page's left edge */
    VW_SO_HEADER_FOOTER = 12,    /* (1 header or 2 footer, 3), after VW_BREAK_BLOCK_OPEN */
    VW_SO_BREAK = 13,            /* (VwBreak, 0); the only one whose result counts, after
                                    VW_BREAK_PARAGRAPH: 1 ends the read call at once */
    VW_SO_SECTION_START = 26,    /* (0), from VwStreamSection */
    VW_SO_LINE_SPACING = 46      /* (1, 240 or 480, 0, 0) */
};
#define VW_OUTPUT_ROUTINES 65

enum VwBreak {
    VW_BREAK_PARAGRAPH = 1,       /* the end of a paragraph, or of a header or footer line */
    VW_BREAK_END_OF_DOCUMENT = 2, /* nothing more is reported */
    VW_BREAK_BLOCK_OPEN = 6,      /* a header or footer block begins */
    VW_BREAK_BLOCK_CLOSE = 7      /* and ends */
};

enum VwAlignment { VW_ALIGN_LEFT = 1, VW_ALIGN_RIGHT = 2, VW_ALIGN_CENTRE = 3 };

enum VwTabKind { VW_TAB_LEFT = 1, VW_TAB_DECIMAL = 4 };

/* One tab stop, valid during the call only. */
typedef struct VwTabStop {
    uint16_t kind;               /* VwTabKind */
    uint16_t alignmentCharacter; /* '.' for a decimal stop, else 0 */
    uint16_t leaderCharacter;    /* always 0 */
    uint16_t gap;                /* not to be read */
    uint32_t position;           /* twips from the page's left edge */
} VwTabStop;

/* The routines' types, by their own arguments; the two user words always come last. */
typedef int32_t (*VwOutput0)(uint32_t user1, uint32_t user2);
typedef int32_t (*VwOutput1)(int32_t, uint32_t user1, uint32_t user2);
typedef int32_t (*VwOutput2)(int32_t, int32_t, uint32_t user1, uint32_t user2);
typedef int32_t (*VwOutput3)(int32_t, int32_t, int32_t, uint32_t user1, uint32_t user2);
typedef int32_t (*VwOutput4)(int32_t, int32_t, int32_t, int32_t, uint32_t user1, uint32_t user2);
typedef int32_t (*VwOutputTabStop)(const VwTabStop *, uint32_t user1, uint32_t user2);

/* The default routine. Returns its first argument. The filter does not actually call it:
 * it takes the first argument as the result. */
VS_PFS_API int32_t SODummy(int32_t first);

/* -------------------------------------------------------------------- entry points --- */

/* Slots of the entry point table. 15 and 16 are null. */
enum VwEntrySlot {
    VW_ENTRY_STREAM_OPEN = 0,
    VW_ENTRY_STREAM_SECTION = 1,
    VW_ENTRY_STREAM_READ = 2,
    VW_ENTRY_STREAM_TELL = 3,
    VW_ENTRY_STREAM_SEEK = 4,
    VW_ENTRY_GET_INFO = 5,
    VW_ENTRY_GET_DATA = 6,
    VW_ENTRY_SET_DATA = 7,
    VW_ENTRY_LOCAL_UP = 8,
    VW_ENTRY_LOCAL_DOWN = 9,
    VW_ENTRY_ALLOC_PROC = 10,
    VW_ENTRY_FREE_PROC = 11,
    VW_ENTRY_SET_USER = 12,
    VW_ENTRY_SET_SO_RTN = 13,
    VW_ENTRY_STREAM_CLOSE = 14,
    VW_ENTRY_STREAM_READ_RECORD = 17,
    VW_ENTRY_DO_SPECIAL = 18
};
#define VW_ENTRY_SLOTS 19
/* From this interface version on VwGetRtns fills VW_ENTRY_DO_SPECIAL. */
#define VW_INTERFACE_DO_SPECIAL 19

/* Fills the host's table of VW_ENTRY_SLOTS pointers. interfaceVersion is an unsigned 16-bit
 * value; below 19 the last slot is left unchanged. */
VS_PFS_API void VwGetRtns(VwRoutine *table, uint32_t interfaceVersion);

/* Queries of VwGetInfo; query is an unsigned 16-bit value. */
enum VwInfoQuery {
    VW_INFO_SAVED_STATE_SIZE = 1,  /* uint16_t: 328 */
    VW_INFO_FILTER_STATE_SIZE = 2, /* uint16_t: 380 */
    VW_INFO_INIT_SIZE = 3,         /* uint16_t: 208, the size of PfsInit */
    VW_INFO_SIZE_4 = 4,            /* uint16_t: 400 */
    VW_INFO_SIZE_5 = 5,            /* uint16_t: 440 */
    VW_INFO_FILE_KINDS = 6,        /* uint16_t: 7 */
    VW_INFO_FILE_IDS = 7,          /* uint16_t[7]: the file ids */
    VW_INFO_BUILD_DATE = 8,        /* char[12]: "Oct 12 1995" */
    VW_INFO_BUILD_TIME = 9,        /* char[9]: "16:59:28" */
    VW_INFO_ZERO_10 = 10,          /* uint16_t: 0 */
    VW_INFO_ZERO_11 = 11,          /* uint16_t: 0 */
    VW_INFO_MARKER = 12            /* uint32_t: 0x12345678 */
};
/* Writes the result to result, which needs no alignment. 1, or 0 for an unknown query,
 * which writes nothing. The instance is not used and may be null. */
VS_PFS_API int32_t VwGetInfo(void *result, uint32_t query, VwInstance *instance);

/* A new, uninitialised instance, from malloc; null if there is not enough memory. VwLocalUp
 * and VwStreamOpen must be called before anything is read with it. */
VS_PFS_API VwInstance *VwAllocProc(void);
/* Frees an instance; null is ignored. */
VS_PFS_API void VwFreeProc(VwInstance *instance);

/* Stores the two user words, the last arguments of every output call. */
VS_PFS_API void VwSetUser(uint32_t user1, uint32_t user2, VwInstance *instance);

/* A pointer as the two user words, and the pointer again. */
static inline void VwPointerToWords(const void *pointer, uint32_t words[2])
{
    words[0] = words[1] = 0;
    memcpy(words, &pointer, sizeof pointer);
}
static inline void *VwPointerOfWords(uint32_t user1, uint32_t user2)
{
    const uint32_t words[2] = {user1, user2};
    void *pointer;
    memcpy(&pointer, words, sizeof pointer);
    return pointer;
}

/* Registers the output routine of an id, a signed 16-bit value; null restores SODummy, and
 * an id outside 1 to 65 is ignored. */
VS_PFS_API void VwSetSoRtn(int32_t id, VwRoutine routine, VwInstance *instance);

/* Wraps the block file and stores the stream, null if there is not enough memory; sets all
 * output routines to SODummy. The host frees the stream with VwLocalDown. */
VS_PFS_API void VwLocalUp(VwBlockFile *file, VwCharStream **stream, VwInstance *instance);
/* Frees the stream and stores the block file it wrapped. The instance is not used. */
VS_PFS_API void VwLocalDown(VwCharStream *stream, VwBlockFile **file, VwInstance *instance);

/* What VwStreamOpen reports of the document's kind. */
struct VwFileDescription {
    uint16_t fileKindCode;  /* 120 */
    uint16_t fileDescFlags; /* 1 */
    char fileKindName[41];  /* display name, NUL-terminated */
};

/* Opens the document of the stream. fileId is a signed 16-bit value, one of the ids of
 * VwPfsOverlayId; it only selects the name stored in description, which may be null. The
 * stream is left at the first byte of the text.
 * 0, or -1 if the document is of no known kind. A truncated document opens. */
VS_PFS_API int32_t VwStreamOpen(VwCharStream *stream, int32_t fileId, void *unused,
                                VwFileDescription *description, VwInstance *instance);
/* Reports VW_SO_SECTION_START. Always 0. */
VS_PFS_API int32_t VwStreamSection(VwCharStream *stream, VwInstance *instance);
/* Reports tab stops, attributes, margins, header and footer lines not yet reported, and
 * text, until VW_SO_BREAK returns 1 at a paragraph end or the document ends. Always 0: only
 * VW_SO_BREAK reports why reading stopped. */
VS_PFS_API int32_t VwStreamRead(VwCharStream *stream, VwInstance *instance);
/* Stores the next byte's position. Always 0. */
VS_PFS_API int32_t VwStreamTell(VwCharStream *stream, uint32_t *position);
/* Moves to an absolute position. 0, or -1 if the block file refuses. */
VS_PFS_API int32_t VwStreamSeek(VwCharStream *stream, const uint32_t *position);

#define VW_SAVED_STATE_SIZE 328
/* Copies the saved state out of, and into, the instance: VW_SAVED_STATE_SIZE bytes, which
 * need no alignment. */
VS_PFS_API void VwGetData(void *buffer, VwInstance *instance);
VS_PFS_API void VwSetData(const void *buffer, VwInstance *instance);

/* Entry points that do nothing and have no result. */
VS_PFS_API void VwStreamClose(VwCharStream *stream, VwInstance *instance);
VS_PFS_API void VwStreamReadRecord(VwCharStream *stream, void *record, VwInstance *instance);
VS_PFS_API void VwDoSpecial(void *, void *, void *, void *, void *, VwInstance *instance);
VS_PFS_API void VwGetSectionData(void *buffer, VwInstance *instance);
VS_PFS_API void VwSetSectionData(const void *buffer, VwInstance *instance);

/* A block of size bytes, all zero, from malloc's heap; null if there is not enough memory. */
VS_PFS_API void *SUAlloc(uint32_t size);

/* --------------------------------------------------------------------------- tables --- */

/* A document kind. */
typedef struct VwFileKind {
    uint16_t fileId;
    uint8_t kind;         /* 120 */
    char displayName[41]; /* NUL-terminated, padded with NUL */
} VwFileKind;
#define VW_FILE_KINDS 7

/* What VwFileIdOf needs of a file: with fewer bytes it finds less, but never anything else. */
#define VW_KIND_BYTES 650

/* The file id of the document that begins with these bytes, 0 if there is none: that of the kind
 * that VwStreamOpen finds. */
static inline int32_t VwFileIdOf(const char *start, uint32_t size)
{
    const char *signature = size >= 647 ? start + 641 : "------";
    const char variant = size >= 650 ? start[649] : '-';
    if (size >= 18 && memcmp(start + 9, "GERBILDOC", 9) == 0) {
        return size > 18 && start[18] == '3' ? 1058 : 1017;
    }
    if (memcmp(signature, "WRD PC", 6) == 0 || memcmp(signature, "TYPE 2", 6) == 0) {
        return variant == '1' ? 1012 : variant == '2' ? 1013 : 0;
    }
    if (memcmp(signature, "TYPE 3", 6) == 0) {
        return 1014;
    }
    if (memcmp(signature, "TYPE 4", 6) == 0) {
        return 1015;
    }
    return memcmp(signature, "IBM   ", 6) == 0 ? 1016 : 0;
}

/* The seven kinds: 1012 to 1017, and 1058. */
VS_PFS_API extern const VwFileKind VwPfsOverlayId[VW_FILE_KINDS];

/* The texts that identify documents and commands: "GERBILDOC" (10 bytes with its NUL), the 18
 * command keywords (9 bytes each) and the five signatures (7 bytes each), and a final NUL. */
#define VW_PFS_INIT_SIZE 208
VS_PFS_API extern const char PfsInit[VW_PFS_INIT_SIZE];

#ifdef __cplusplus
}
#endif

#endif
