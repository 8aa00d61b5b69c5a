// Uses the platform layer alone.
#include <Bstr.h>
#include <platform/FaultGuard.h>

#include <cstdio>
#include <stdexcept>

int main() {
  BSTR text = SysAllocString(L"trigger");
  const UINT length = SysStringLen(text);
  SysFreeString(text);

  const HRESULT contained = cvars::platform::CallGuarded(
      [](void*) -> HRESULT { throw std::runtime_error("refused"); }, nullptr);

  if (length != 7 || contained != E_FAIL) {
    std::printf("length %u, result %08x\n", length, static_cast<unsigned>(contained));
    return 1;
  }
  return 0;
}
