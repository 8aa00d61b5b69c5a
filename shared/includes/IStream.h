#pragma once

#include "Unknown.h"

/// {0000000C-0000-0000-C000-000000000046}
inline constexpr IID IID_IStream = {
    0x0000000C, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Where a Seek counts from.
inline constexpr DWORD STREAM_SEEK_SET = 0;
inline constexpr DWORD STREAM_SEEK_CUR = 1;
inline constexpr DWORD STREAM_SEEK_END = 2;

/// A sequence of bytes with a position. The library stores streams and hands them back, no more.
class CVARS_API IStream : public IUnknown {
 public:
  /// Reads from the position and moves it.
  ///
  /// @param count     in bytes.
  /// @param readCount receives how many bytes were read; may be null.
  /// @retval S_FALSE  the end was reached before
  virtual HRESULT Read(void* bytes, ULONG count, ULONG* readCount) = 0;  // 3
  /// Writes at the position and moves it.
  ///
  /// @param bytes         borrowed.
  /// @param count         in bytes.
  /// @param writtenCount  receives how many bytes were written; may be null.
  virtual HRESULT Write(const void* bytes, ULONG count, ULONG* writtenCount) = 0;  // 4
  /// Moves the position.
  ///
  /// @param offset       in bytes.
  /// @param origin       a STREAM_SEEK_ value.
  /// @param newPosition  receives the position from the start, in bytes; may be null.
  virtual HRESULT Seek(LONGLONG offset, DWORD origin, ULONGLONG* newPosition) = 0;  // 5

 protected:
  ~IStream() = default;
};

template <>
struct cvars::InterfaceId<IStream> {
  static constexpr IID value = IID_IStream;
};
