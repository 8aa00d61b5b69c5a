#include "CvarBaseCpp.h"

#include <atomic>

namespace {

std::atomic<int> g_constructed{0};
std::atomic<int> g_destructed{0};

}  // namespace

CvarBaseCpp::CvarBaseCpp() noexcept { g_constructed.fetch_add(1, std::memory_order_relaxed); }

CvarBaseCpp::~CvarBaseCpp() { g_destructed.fetch_add(1, std::memory_order_relaxed); }

int CvarBaseCpp::NumCvarsConstructed() { return g_constructed.load(std::memory_order_relaxed); }

int CvarBaseCpp::NumCvarsDestructed() { return g_destructed.load(std::memory_order_relaxed); }
