#include "support/failing_allocation.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

long g_left = -1;  // allocations that succeed yet; -1: all do
bool g_hit = false;

}  // namespace

void* operator new(std::size_t size) {
  g_hit |= g_left == 0;
  void* memory = g_left == 0 ? nullptr : std::malloc(size);
  if (!memory) throw std::bad_alloc();
  if (g_left > 0) --g_left;
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace quillpg {

CFailingAllocation::CFailingAllocation(long position) {
  g_hit = false;
  g_left = position;
}
CFailingAllocation::~CFailingAllocation() { g_left = -1; }

bool CFailingAllocation::Hit() const { return g_hit; }

}  // namespace quillpg
