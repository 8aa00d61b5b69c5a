#include "instrument/model/Acquisition.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/instrument/model/ScopeFixture.h"

namespace cvars::model {
namespace {

using AcquisitionTest = ScopeFixture;

TEST_F(AcquisitionTest, AutoSetupFitsScalesAndTriggerToTheSignal) {
  Ask("TRIGGER:MODE STOP;LEVEL 3;:CHANNEL2:OFFSET 5");
  EXPECT_EQ(Ask("ACQUISITION:AUTO_SETUP;*OPC?"), "1\n");
  EXPECT_EQ(Ask("CHANNEL1:SCALE?;:CHANNEL4:SCALE?;:CHANNEL2:OFFSET?"), "200E-3;200E-3;0E-3\n");
  EXPECT_EQ(Ask("TRIGGER:MODE?;LEVEL?;:HORIZONTAL:SCALE?"), "AUTO;500E-3;200E-6\n");
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(AcquisitionTest, SingleArmsTheChipAndAForcedTriggerEndsIt) {
  EXPECT_EQ(Ask("ACQUISITION:CONTROL?;STATUS?"), "#H0;#H1\n");
  EXPECT_EQ(Ask("ACQUISITION:SINGLE;*OPC?"), "1\n");
  EXPECT_EQ(Ask("ACQUISITION:CONTROL?;STATUS?;:TRIGGER:MODE?"), "#H3;#H3;SINGLE\n");
  EXPECT_EQ(Ask("ACQUISITION:FORCE_TRIGGER;*OPC?"), "1\n");
  EXPECT_EQ(Ask("ACQUISITION:CONTROL?;STATUS?"), "#H0;#H5\n");
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(AcquisitionTest, TheControlRegisterHoldsWhatTheBusReadsBack) {
  EXPECT_EQ(Ask("ACQUISITION:CONTROL #HF5;CONTROL?;STATUS?"), "#HF1;#H7\n");
  EXPECT_EQ(Ask("ACQUISITION:CONTROL &h1;CONTROL?;STATUS?"), "#H1;#H3\n");
  Ask("ACQUISITION:STATUS 0");
  EXPECT_EQ(TakeError(), -203);
}

TEST_F(AcquisitionTest, DefaultSetupPutsEverySettingBack) {
  Ask("CHANNEL1:SCALE 1;:TRIGGER:PATTERN '10XX';:ACQUISITION:CONTROL 1;CHANNEL CHANNEL3");
  EXPECT_EQ(Ask("ACQUISITION:DEFAULT_SETUP;*OPC?"), "1\n");
  EXPECT_EQ(Ask("CHANNEL1:SCALE?;:TRIGGER:PATTERN?;:ACQUISITION:CONTROL?;CHANNEL?"),
            "100E-3;\"XXXX\";#H0;CHANNEL1\n");
  EXPECT_EQ(TakeError(), 0);
}

TEST_F(AcquisitionTest, TheTriggerPatternHasOneBitAChannel) {
  EXPECT_EQ(Ask("TRIGGER:PATTERN '1x';PATTERN?"), "\"XX1X\"\n");
  EXPECT_EQ(Ask("TRIGGER:PATTERN #B0101;PATTERN?"), "#B0101\n");
}

TEST_F(AcquisitionTest, AChannelIsSelectedByItsName) {
  EXPECT_EQ(Ask("ACQUISITION:CHANNEL?"), "CHANNEL1\n");
  EXPECT_EQ(Ask("ACQUISITION:CHANNEL channel2;CHANNEL?"), "CHANNEL2\n");
  EXPECT_EQ(Ask("ACQUISITION:CHANNEL 'Channel4';CHANNEL?"), "CHANNEL4\n");
  EXPECT_EQ(TakeError(), 0);
  Ask("ACQUISITION:CHANNEL CHANNEL5");
  EXPECT_EQ(TakeError(), -224);
  EXPECT_EQ(Ask("ACQUISITION:CHANNEL DEF;CHANNEL?"), "CHANNEL1\n");
}

TEST(SimulatedBusTest, CountsTheTimeOfItsTransfers) {
  SimulatedBus bus;
  bus.Write(SimulatedBus::kControlAddress, SimulatedBus::kRun);
  EXPECT_EQ(bus.Read(SimulatedBus::kControlAddress), SimulatedBus::kRun);
  bus.Write(SimulatedBus::kStatusAddress, 0xFF);
  EXPECT_EQ(bus.Read(SimulatedBus::kStatusAddress), SimulatedBus::kReady | SimulatedBus::kArmed);
  EXPECT_EQ(bus.Read(0), 0u);
  EXPECT_EQ(bus.BusyUs(), 5 * SimulatedBus::kTransferUs);
}

}  // namespace
}  // namespace cvars::model
