// Uses the library through its umbrella header.
#include <Cvars.h>

#include <cstdio>

int main() {
  CComBSTR name(L"Trigger Level");
  if (name.Length() != 13) {
    std::puts("the name has lost its length");
    return 1;
  }
  return 0;
}
