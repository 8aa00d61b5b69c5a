#pragma once

#include "IVorCvarEventSink.h"

/// {69226983-92D8-4C33-8ACB-A2756064CDF4}
inline constexpr IID IID_IVorAsynchronousCvarNotifier = {
    0x69226983, 0x92D8, 0x4C33, {0x8A, 0xCB, 0xA2, 0x75, 0x60, 0x64, 0xCD, 0xF4}};
/// {2CC873C4-3530-4910-9411-B0C079C1EE80}, "Vortana.AsynchronousCvarNotifier"
inline constexpr CLSID CLSID_AsynchronousCvarNotifier = {
    0x2CC873C4, 0x3530, 0x4910, {0x94, 0x11, 0xB0, 0xC0, 0x79, 0xC1, 0xEE, 0x80}};

/// Delivers notifications later, on its own thread.
///
/// One worker thread serves one queue. Entries are delivered in the order of their posting. An
/// entry whose (source, listener) pair is still queued is merged into the queued one, which keeps
/// its place: the masks are combined by OR. A queued entry holds a reference to its source and to
/// its listener. No lock is held while a listener runs; what a listener answers is dropped, and an
/// exception of a listener ends its delivery only.
class IVorAsynchronousCvarNotifier : public IUnknown {
 public:
  /// Wraps a listener: each OnCvarNotify of the forwarder posts to the listener and returns S_OK.
  ///
  /// @param listener   borrowed; held by reference as long as the forwarder lives.
  /// @param forwarder  receives a new forwarder with one reference; null on failure.
  /// @retval E_POINTER     forwarder is null
  /// @retval E_INVALIDARG  listener is null or offers no IVorCvarEventSink
  /// @retval S_OK
  virtual HRESULT CreateForwarder(IUnknown* listener, IVorCvarEventSink** forwarder) = 0;  // 3

  /// Queues one delivery of OnCvarNotify(source, what) to listener.
  ///
  /// @retval E_INVALIDARG  source or listener is null
  /// @retval S_FALSE       merged into a queued entry
  /// @retval S_OK          queued as a new entry
  /// @retval E_UNEXPECTED  the notifier was stopped; nothing is queued
  virtual HRESULT Post(IVorCvar* source, NOTIFYTYPE what, IVorCvarEventSink* listener) = 0;  // 4

  /// Waits until everything that was queued before the call has been delivered.
  ///
  /// @param timeoutMs  longest wait in milliseconds; 0xFFFFFFFF waits without limit.
  /// @retval S_OK          all delivered
  /// @retval S_FALSE       the time ran out first
  /// @retval E_UNEXPECTED  called by a listener on the worker thread; returns at once
  virtual HRESULT Drain(ULONG timeoutMs) = 0;  // 5

  /// Drops what is queued, waits for the delivery in progress and ends the worker thread.
  /// Runs by itself when the last reference goes. From the worker thread it does not wait.
  ///
  /// @retval S_FALSE  it was stopped before
  /// @retval S_OK
  virtual HRESULT Stop() = 0;  // 6

 protected:
  ~IVorAsynchronousCvarNotifier() = default;
};

template <>
struct cvars::InterfaceId<IVorAsynchronousCvarNotifier> {
  static constexpr IID value = IID_IVorAsynchronousCvarNotifier;
};
