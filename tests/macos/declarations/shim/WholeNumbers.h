// Whole numbers of 64 bits as a Mac has them, `long long`, where the C library at hand has `long`: another type, which
// is the one of size_t there.
#pragma once

typedef __INT64_TYPE__ int64_t;
typedef __UINT64_TYPE__ uint64_t;
#define __DEFINED_int64_t
#define __DEFINED_uint64_t
