// The floor that the start of any C++ program is compared with.
#include <iostream>

int main() {
  std::cout << "empty\n";
  return 0;
}
