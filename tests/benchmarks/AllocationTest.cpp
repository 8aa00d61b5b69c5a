// What must not touch the heap: sets of numbers, notifications and typed reads.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>

#include "CComPtr.h"
#include "Cvars.h"
#include "RecordingListener.h"

namespace {

std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};

void Count() noexcept {
  if (g_counting.load(std::memory_order_relaxed)) g_allocations.fetch_add(1);
}

}  // namespace

// The C library's own, under these names; every way to memory ends in one of the three. Memory that
// is given back is given back as before.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
  Count();
  return __libc_malloc(size);
}
__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) noexcept {
  Count();
  return __libc_calloc(count, size);
}
__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size) noexcept {
  Count();
  return __libc_realloc(memory, size);
}
}

namespace {

/// Counts its calls and nothing else.
class QuietListener final : public IVorCvarEventSink {
 public:
  HRESULT QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override { return --m_references; }
  HRESULT OnCvarNotify(IVorCvar*, NOTIFYTYPE) override {
    ++calls;
    return S_OK;
  }

  long calls = 0;

 private:
  ULONG m_references = 1;
};

template <class Operation>
long AllocationsOf(Operation operation) {
  operation();  // what is made at the first use only is made here
  g_allocations = 0;
  g_counting = true;
  operation();
  g_counting = false;
  return g_allocations;
}

constexpr auto kReplicationFlags = CVARREPLICATIONFLAGS(0x202);

class Allocations : public testing::Test {
 protected:
  Allocations() {
    real->Initialize(L"Level", 1.0, -10.0, 10.0, 0.001, L"V", CVARFLAGS(0), L"", 0,
                     kReplicationFlags);
    whole->Initialize(L"Count", 1, -1000, 1000, 1, L"", CVARFLAGS(0), L"", 0, kReplicationFlags);
    (void)bag->Add(real);
    (void)bag->Add(whole);
    for (QuietListener& listener : listeners) {
      (void)real->AttachCvarEventSink(&listener);
      (void)whole->AttachCvarEventSink(&listener);
    }
  }
  ~Allocations() override {
    for (QuietListener& listener : listeners) {
      (void)real->DetachCvarEventSink(&listener);
      (void)whole->DetachCvarEventSink(&listener);
    }
  }

  CComPtr<CCvarBag> bag = CCvarBag::Create(L"Trigger", nullptr);
  CComPtr<CvarObject<CCvarDouble>> real = CvarObject<CCvarDouble>::Create();
  CComPtr<CvarObject<CCvarInt>> whole = CvarObject<CCvarInt>::Create();
  QuietListener listeners[3];
  double m_next = 0;
};

TEST_F(Allocations, AreSeen) {
  EXPECT_GE(AllocationsOf([] { SysFreeString(SysAllocString(L"seen")); }), 1);
}

TEST_F(Allocations, NoneInTheSetOfANumberAndItsNotification) {
  EXPECT_EQ(AllocationsOf([this] {
              EXPECT_EQ(real->SetRequestedValue(m_next += 0.5), S_OK);
              EXPECT_EQ(whole->SetRequestedValue(static_cast<int>(m_next * 10)), S_OK);
            }),
            0);
  EXPECT_EQ(listeners[2].calls, 4);
}

TEST_F(Allocations, NoneInAVariantOfANumber) {
  EXPECT_EQ(AllocationsOf([this] {
              VARIANT value = {};
              value.vt = VT_R8;
              value.dblVal = m_next += 0.5;
              EXPECT_EQ(real->put_Value(value), S_OK);
              EXPECT_EQ(real->get_Value(&value), S_OK);
            }),
            0);
}

TEST_F(Allocations, NoneInANotification) {
  EXPECT_EQ(AllocationsOf([this] {
              EXPECT_EQ(real->ForceNotification(NOTIFY_RANGE), S_OK);
              real->SuspendNotifications(1);
              EXPECT_EQ(real->ForceNotification(NOTIFY_ATTRIBUTES), S_OK);
              real->SuspendNotifications(0);
            }),
            0);
  EXPECT_EQ(listeners[0].calls, 4);
}

TEST_F(Allocations, NoneInATypedRead) {
  EXPECT_EQ(AllocationsOf([this] {
              double number = 0;
              int integer = 0;
              EXPECT_EQ(real->GetAdaptedValue(&number), S_OK);
              EXPECT_EQ(real->GetRequestedValue(&number), S_OK);
              EXPECT_EQ(real->GetMaxValue(&number), S_OK);
              EXPECT_EQ(whole->GetAdaptedValue(&integer), S_OK);
            }),
            0);
}

}  // namespace
