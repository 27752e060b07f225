/* Not part of the library. A description of the library's interface tells types only where a function takes them,
 * and the library's functions take plain integers; this one takes every type of the header's constants. */
#include "movload.h"

MOVLOAD_API void CONSTANTS_OF_MOVLOAD_H(enum movload_result_kind kind, enum movload_record_field field,
                                        enum movload_sizes size);

void CONSTANTS_OF_MOVLOAD_H(enum movload_result_kind kind, enum movload_record_field field,
                            enum movload_sizes size) {
  (void)kind;
  (void)field;
  (void)size;
}
