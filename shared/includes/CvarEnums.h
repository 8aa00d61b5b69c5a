#pragma once

#include <cstdint>
#include <type_traits>

namespace cvars {
/// True for the enumerations that are sets of independent bits.
template <class E>
inline constexpr bool kIsBitMask = false;

template <class E>
concept BitMask = kIsBitMask<E>;
}  // namespace cvars

/// State bits of a cvar; GetFlagsString shows each as one letter.
enum CVARFLAGS : std::uint32_t {
  CVARFLAG_READONLY = 0x1,
  CVARFLAG_HIDDEN = 0x2,
  CVARFLAG_WRAPPING = 0x4,
  CVARFLAG_LATEUPDATE = 0x8,
  CVARFLAG_GUIONLY = 0x10,
  CVARFLAG_COMPACT = 0x20,
  CVARFLAG_NONVOLATILE = 0x40,
  CVARFLAG_REVERSEINCREMENT = 0x80,
  CVARFLAG_A = 0x100,
  CVARFLAG_M = 0x200,
  CVARFLAG_GRAYED = 0x400,
  CVARFLAG_P = 0x800,
  CVARFLAG_D = 0x1000,
  CVARFLAG_PRIVATE = 0x2000,
  CVARFLAG_PUBLIC = 0x4000,
  CVARFLAG_SPECIALCHARS = 0x10000,
};

/// What changed; a listener may get several bits at once.
enum NOTIFYTYPE : std::uint32_t {
  NOTIFY_FLAGS = 0x1,
  NOTIFY_VALUE = 0x2,
  NOTIFY_RANGE = 0x4,
  NOTIFY_LATEUPDATE = 0x8,
  NOTIFY_UNIT = 0x40,
  NOTIFY_ATTRIBUTES = 0x80,
  NOTIFY_REQUESTED = 0x100,
  NOTIFY_GUIHINTS = 0x200,
};

/// Which listeners a notification reaches; every value but 2 reaches all.
enum NOTIFYCLIENTS : std::uint32_t {
  NOTIFY_ALL_CLIENTS = 1,
  NOTIFY_FIRST_CLIENT_ONLY = 2,
};

/// What a replica copies from its source.
enum CVARREPLICATIONFLAGS : std::uint32_t {
  REPLICATE_FLAGS = 0x1,
  REPLICATE_REQUESTED = 0x2,
  REPLICATE_RANGE = 0x4,
  REPLICATE_NAME = 0x8,
  REPLICATE_HELPID = 0x10,
  REPLICATE_GUIHINTS = 0x20,
  REPLICATE_DEFAULT = 0x40,
  REPLICATE_OVERRIDE_READONLY = 0x80,
  REPLICATE_UNIT = 0x100,
  REPLICATE_VALUE = 0x200,
  REPLICATE_DESCRIPTION = 0x8000,
};

/// How one direction of a replication connection listens.
enum CVARREPLICATIONCONNECTIONATTRIBUTES : std::uint32_t {
  REPLICATIONCONNECTION_NONE = 0,
  REPLICATIONCONNECTION_SYNCHRONOUS = 1,
  REPLICATIONCONNECTION_ASYNCHRONOUS = 2,
  REPLICATIONCONNECTION_UNCHANGED = 3,
};

/// Who copies from whom when a replication connection is made.
enum CVARREPLICATIONINITIALCOPYDIRECTION : std::uint32_t {
  REPLICATIONCOPY_FROM_OTHER = 0,
  REPLICATIONCOPY_TO_OTHER = 1,
};

/// Steps of one decade in which a lockstep value moves; the name lists them.
enum LOCKSTEP : std::uint32_t {
  LOCKSTEP_1_2_25_5 = 0,  ///< 1, 2, 2.5, 5, 10
  LOCKSTEP_1_2_4 = 1,
  LOCKSTEP_1_2_4_5 = 2,
  LOCKSTEP_1_2_4_8 = 3,
  LOCKSTEP_1_2_5 = 4,
  LOCKSTEP_1_25_4_5 = 5,  ///< 1, 2.5, 4, 5, 10
  LOCKSTEP_1_25_5 = 6,    ///< 1, 2.5, 5, 10
  LOCKSTEP_1_3_5 = 7,
  LOCKSTEP_1_33 = 8,  ///< 1, 3.3, 10
  LOCKSTEP_1 = 9,
  LOCKSTEP_1_2 = 10,
  LOCKSTEP_1_2_3_5 = 11,
  LOCKSTEP_1_5 = 12,
};

/// Which member of a set of allowed values a request between two members takes.
enum AdaptPolicy : std::uint32_t {
  ADAPT_CLOSEST_DOWN = 0,  ///< the nearer one, on a tie the lower
  ADAPT_CLOSEST_UP = 1,    ///< the nearer one, on a tie the higher
  ADAPT_DOWN = 2,
  ADAPT_UP = 3,
};

namespace cvars {
template <>
inline constexpr bool kIsBitMask<CVARFLAGS> = true;
template <>
inline constexpr bool kIsBitMask<NOTIFYTYPE> = true;
template <>
inline constexpr bool kIsBitMask<CVARREPLICATIONFLAGS> = true;
}  // namespace cvars

template <cvars::BitMask E>
constexpr E operator|(E a, E b) noexcept {
  return static_cast<E>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
template <cvars::BitMask E>
constexpr E operator&(E a, E b) noexcept {
  return static_cast<E>(static_cast<std::uint32_t>(a) & static_cast<std::uint32_t>(b));
}
template <cvars::BitMask E>
constexpr E operator~(E a) noexcept {
  return static_cast<E>(~static_cast<std::uint32_t>(a));
}
template <cvars::BitMask E>
constexpr E& operator|=(E& a, E b) noexcept {
  return a = a | b;
}
template <cvars::BitMask E>
constexpr E& operator&=(E& a, E b) noexcept {
  return a = a & b;
}
