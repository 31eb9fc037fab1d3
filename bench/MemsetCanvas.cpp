// Fills fresh memory for one canvas of 20000 x 12500 pixels, the unit in which composing one is
// measured: the pages are new, as those of a bitmap are.
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main() {
  constexpr std::size_t kBytes = std::size_t{20000} * 12500 * 4;
  void* memory = std::malloc(kBytes);
  if (memory == nullptr) return 1;
  std::memset(memory, 255, kBytes);
  asm volatile("" : : "r"(memory) : "memory");  // someone may look at it
  return 0;
}
