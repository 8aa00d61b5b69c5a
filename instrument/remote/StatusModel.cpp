#include "instrument/remote/StatusModel.h"

#include <utility>

namespace cvars::remote {
namespace {

unsigned EventStatusBit(ScpiError error) noexcept {
  const int number = static_cast<int>(error);
  if (number <= -400) return StatusModel::kQueryError;
  if (number <= -300) return StatusModel::kDeviceError;
  if (number <= -200) return StatusModel::kExecutionError;
  return StatusModel::kCommandError;
}

}  // namespace

void EventRegister::SetCondition(unsigned bits) noexcept {
  bits &= kMask;
  m_event |= bits & ~m_condition;
  m_condition = bits;
}

unsigned EventRegister::TakeEvent() noexcept { return std::exchange(m_event, 0U); }

void StatusModel::Report(ScpiError error) noexcept {
  if (error == ScpiError::kNone) return;
  m_eventStatus |= EventStatusBit(error);
  if (m_errorCount < kQueueLength) {
    m_errors[(m_firstError + m_errorCount) % kQueueLength] = error;
    ++m_errorCount;
    return;
  }
  m_errors[(m_firstError + kQueueLength - 1) % kQueueLength] = ScpiError::kQueueOverflow;
  m_eventStatus |= EventStatusBit(ScpiError::kQueueOverflow);
}

ScpiError StatusModel::TakeError() noexcept {
  if (m_errorCount == 0) return ScpiError::kNone;
  const ScpiError error = m_errors[m_firstError];
  m_firstError = (m_firstError + 1) % kQueueLength;
  --m_errorCount;
  return error;
}

unsigned StatusModel::TakeEventStatus() noexcept { return std::exchange(m_eventStatus, 0U); }

unsigned StatusModel::StatusByte(bool messageAvailable) const noexcept {
  unsigned bits = 0;
  if (m_errorCount != 0) bits |= kErrorsQueued;
  if (m_questionable.Summary()) bits |= kQuestionableSummary;
  if (messageAvailable) bits |= kMessageAvailable;
  if ((m_eventStatus & m_eventStatusEnable) != 0) bits |= kEventStatusSummary;
  if (m_operation.Summary()) bits |= kOperationSummary;
  if ((bits & m_serviceRequestEnable) != 0) bits |= kMasterSummary;
  return bits;
}

void StatusModel::Clear() noexcept {
  m_errorCount = 0;
  m_eventStatus = 0;
  m_operation.ClearEvent();
  m_questionable.ClearEvent();
}

void StatusModel::Preset() noexcept {
  m_operation.SetEnable(0);
  m_questionable.SetEnable(0);
}

}  // namespace cvars::remote
