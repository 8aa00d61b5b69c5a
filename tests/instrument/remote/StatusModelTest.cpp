#include "instrument/remote/StatusModel.h"

#include <gtest/gtest.h>

namespace cvars::remote {
namespace {

struct ClassCase {
  ScpiError error;
  unsigned eventStatus;
};

constexpr ClassCase kClassCases[] = {
    {ScpiError::kUndefinedHeader, 0x20},    {ScpiError::kInvalidBlockData, 0x20},
    {ScpiError::kExecutionError, 0x10},     {ScpiError::kIllegalParameterValue, 0x10},
    {ScpiError::kInputBufferOverrun, 0x08}, {ScpiError::kQueryDeadlocked, 0x04},
};

TEST(StatusModelTest, ErrorSetsTheEventStatusBitOfItsClass) {
  for (const ClassCase& row : kClassCases) {
    StatusModel status;
    status.Report(row.error);
    EXPECT_EQ(status.TakeEventStatus(), row.eventStatus) << static_cast<int>(row.error);
    EXPECT_EQ(status.TakeEventStatus(), 0U);
    EXPECT_EQ(status.TakeError(), row.error);
    EXPECT_EQ(status.TakeError(), ScpiError::kNone);
  }
}

TEST(StatusModelTest, ErrorsComeOutInTheOrderInWhichTheyWentIn) {
  StatusModel status;
  for (int round = 0; round < 40; ++round) {
    status.Report(ScpiError::kUndefinedHeader);
    status.Report(ScpiError::kDataTypeError);
    EXPECT_EQ(status.ErrorCount(), 2U);
    EXPECT_EQ(status.TakeError(), ScpiError::kUndefinedHeader);
    EXPECT_EQ(status.TakeError(), ScpiError::kDataTypeError);
  }
}

TEST(StatusModelTest, OverflowTurnsTheLastErrorIntoQueueOverflow) {
  StatusModel status;
  for (std::size_t index = 0; index < StatusModel::kQueueLength + 5; ++index) {
    status.Report(ScpiError::kUndefinedHeader);
  }
  EXPECT_EQ(status.TakeEventStatus(), 0x28U);
  EXPECT_EQ(status.ErrorCount(), StatusModel::kQueueLength);
  for (std::size_t index = 0; index + 1 < StatusModel::kQueueLength; ++index) {
    EXPECT_EQ(status.TakeError(), ScpiError::kUndefinedHeader);
  }
  EXPECT_EQ(status.TakeError(), ScpiError::kQueueOverflow);
  EXPECT_EQ(status.TakeError(), ScpiError::kNone);
}

TEST(StatusModelTest, StatusByteSumsUp) {
  StatusModel status;
  EXPECT_EQ(status.StatusByte(false), 0U);
  EXPECT_EQ(status.StatusByte(true), 0x10U);
  status.Report(ScpiError::kUndefinedHeader);
  EXPECT_EQ(status.StatusByte(false), 0x04U);
  status.SetEventStatusEnable(0x20);
  EXPECT_EQ(status.StatusByte(false), 0x24U);
  status.SetServiceRequestEnable(0x20);
  EXPECT_EQ(status.StatusByte(false), 0x64U);
  status.Operation().SetEnable(1);
  status.Operation().SetCondition(1);
  status.Questionable().SetEnable(2);
  status.Questionable().SetCondition(2);
  EXPECT_EQ(status.StatusByte(false), 0xECU);
  status.Clear();
  EXPECT_EQ(status.StatusByte(false), 0U);
  EXPECT_EQ(status.EventStatusEnable(), 0x20U);
}

TEST(StatusModelTest, MasterSummaryCannotBeEnabled) {
  StatusModel status;
  status.SetServiceRequestEnable(0xFF);
  EXPECT_EQ(status.ServiceRequestEnable(), 0xBFU);
}

TEST(StatusModelTest, RegisterKeepsRisingConditionsUntilRead) {
  EventRegister events;
  events.SetCondition(0x8005);
  EXPECT_EQ(events.Condition(), 5U);
  events.SetCondition(4);
  EXPECT_EQ(events.TakeEvent(), 5U);
  events.SetCondition(4);
  EXPECT_EQ(events.TakeEvent(), 0U);
}

TEST(StatusModelTest, PresetDisablesTheRegisters) {
  StatusModel status;
  status.Operation().SetEnable(0xFFFF);
  status.Questionable().SetEnable(3);
  EXPECT_EQ(status.Operation().Enable(), 0x7FFFU);
  status.SetEventStatusEnable(7);
  status.Preset();
  EXPECT_EQ(status.Operation().Enable(), 0U);
  EXPECT_EQ(status.Questionable().Enable(), 0U);
  EXPECT_EQ(status.EventStatusEnable(), 7U);
}

}  // namespace
}  // namespace cvars::remote
