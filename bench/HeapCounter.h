#ifndef KOXML_BENCH_HEAPCOUNTER_H
#define KOXML_BENCH_HEAPCOUNTER_H

// Heap accounting for the benchmarks: malloc itself is replaced, so that
// expat's buffers count as well as the library's own blocks. Counting is
// switched on only for an untimed extra run, so it does not weigh on the
// timings (the benchmarks run on one thread). Include it in exactly one
// source file of a benchmark program: it defines malloc and friends.

#include <malloc.h>

#include <algorithm>
#include <cstddef>

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
}

namespace {

bool g_counting = false;
size_t g_inUse = 0;
size_t g_peak = 0;
size_t g_allocations = 0;

void Counted(void* block) {
  if (!g_counting || !block) return;
  g_inUse += malloc_usable_size(block);
  g_peak = std::max(g_peak, g_inUse);
  ++g_allocations;
}

void Uncounted(void* block) {
  if (g_counting && block) g_inUse -= std::min(g_inUse, malloc_usable_size(block));
}

}  // namespace

extern "C" {
void* malloc(size_t size) {
  void* block = __libc_malloc(size);
  Counted(block);
  return block;
}
void* calloc(size_t count, size_t size) {
  void* block = __libc_calloc(count, size);
  Counted(block);
  return block;
}
void* realloc(void* old, size_t size) {
  Uncounted(old);
  void* block = __libc_realloc(old, size);
  if (block)
    Counted(block);
  else if (size)
    Counted(old);  // the old block stays in use
  return block;
}
void free(void* block) {
  Uncounted(block);
  __libc_free(block);
}
}

#endif
