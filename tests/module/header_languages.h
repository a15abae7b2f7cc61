/* Shared by the two halves of the public header's test. */
#ifndef HEADER_LANGUAGES_H
#define HEADER_LANGUAGES_H

#include "vs_pfs.h"

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The byte at position 2, by way of a byte taken back. */
int32_t c99_third_byte(VwBlockFile *file);
int32_t c99_file_id_of(const char *start, uint32_t size);
/* Taken apart and put together again. */
void *c99_pointer_again(const void *pointer);
size_t c99_size_of_kind(void);
size_t c99_size_of_description(void);
size_t c99_size_of_tab_stop(void);

#ifdef __cplusplus
}
#endif

#endif
