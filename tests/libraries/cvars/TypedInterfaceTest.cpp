// What callers compiled apart rely on: slot order and identifiers of the typed interfaces.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "IVorCvarAction.h"
#include "IVorCvarBitPattern.h"
#include "IVorCvarDoubleLockstep.h"
#include "IVorCvarFileName.h"
#include "IVorCvarImage.h"
#include "IVorCvarInt.h"
#include "IVorCvarLongInt.h"
#include "IVorCvarObjectName.h"
#include "IVorCvarRegister.h"
#include "IVorCvarString.h"

namespace {

constexpr std::size_t kFirstSlot = 7;  // after IUnknown and IDispatch

// The place of a virtual function in its table: the ABI keeps it, in bytes and one more, in the
// first word of a pointer to the function.
template <class Function>
std::size_t SlotOf(Function function) {
  std::ptrdiff_t place = 0;
  std::memcpy(&place, &function, sizeof(place));
  EXPECT_EQ(place % 2, 1) << "not a virtual function";
  return static_cast<std::size_t>(place - 1) / sizeof(void*) - kFirstSlot;
}

#define EXPECT_SLOT(slot, function) EXPECT_EQ(SlotOf(&function), std::size_t{slot}) << #function

TEST(TypedInterface, SlotsOfIVorCvarDoubleLockstep) {
  EXPECT_SLOT(55, IVorCvarDoubleLockstep::get_Lockstep);
  EXPECT_SLOT(56, IVorCvarDoubleLockstep::get_LockStep);
  EXPECT_SLOT(57, IVorCvarDoubleLockstep::put_Lockstep);
  EXPECT_SLOT(58, IVorCvarDoubleLockstep::IncrementFine);
  EXPECT_SLOT(59, IVorCvarDoubleLockstep::get_FineGrainAllowed);
  EXPECT_SLOT(60, IVorCvarDoubleLockstep::put_FineGrainAllowed);
  EXPECT_SLOT(61, IVorCvarDoubleLockstep::get_FineGrainOn);
  EXPECT_SLOT(62, IVorCvarDoubleLockstep::put_FineGrainOn);
}

TEST(TypedInterface, SlotsOfIVorCvarInt) {
  EXPECT_SLOT(44, IVorCvarInt::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarInt::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarInt::GetGrainValue);
  EXPECT_SLOT(47, IVorCvarInt::GetMaxValue);
  EXPECT_SLOT(48, IVorCvarInt::GetMinValue);
  EXPECT_SLOT(49, IVorCvarInt::GetRequestedValue);
  EXPECT_SLOT(50, IVorCvarInt::GetUnitRemoteString);
  EXPECT_SLOT(51, IVorCvarInt::SetRequestedValue);
  EXPECT_SLOT(52, IVorCvarInt::get_CoarseGrain);
  EXPECT_SLOT(53, IVorCvarInt::put_CoarseGrain);
  EXPECT_SLOT(54, IVorCvarInt::get_NumberOfIncrement);
}

TEST(TypedInterface, SlotsOfIVorCvarLongInt) {
  EXPECT_SLOT(44, IVorCvarLongInt::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarLongInt::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarLongInt::GetGrainValue);
  EXPECT_SLOT(47, IVorCvarLongInt::GetMaxValue);
  EXPECT_SLOT(48, IVorCvarLongInt::GetMinValue);
  EXPECT_SLOT(49, IVorCvarLongInt::GetRequestedValue);
  EXPECT_SLOT(50, IVorCvarLongInt::GetUnitRemoteString);
  EXPECT_SLOT(51, IVorCvarLongInt::SetRequestedValue);
  EXPECT_SLOT(52, IVorCvarLongInt::get_CoarseGrain);
  EXPECT_SLOT(53, IVorCvarLongInt::put_CoarseGrain);
  EXPECT_SLOT(54, IVorCvarLongInt::get_NumberOfIncrement);
}

TEST(TypedInterface, SlotsOfIVorCvarString) {
  EXPECT_SLOT(44, IVorCvarString::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarString::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarString::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarString::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarString::GetMaxLength);
}

TEST(TypedInterface, SlotsOfIVorCvarObjectName) {
  EXPECT_SLOT(49, IVorCvarObjectName::SetRequestedValueStringScreen);
  EXPECT_SLOT(50, IVorCvarObjectName::SetRequestedValueStringAutomation);
  EXPECT_SLOT(51, IVorCvarObjectName::SetRequestedValueStringRemote);
  EXPECT_SLOT(52, IVorCvarObjectName::GetAdaptedValueNamesJoined);
}

TEST(TypedInterface, SlotsOfIVorCvarFileName) {
  EXPECT_SLOT(44, IVorCvarFileName::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarFileName::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarFileName::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarFileName::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarFileName::get_RootValue);
  EXPECT_SLOT(49, IVorCvarFileName::put_RootValue);
  EXPECT_SLOT(50, IVorCvarFileName::get_PathValue);
  EXPECT_SLOT(51, IVorCvarFileName::put_PathValue);
  EXPECT_SLOT(52, IVorCvarFileName::get_FileNameValue);
  EXPECT_SLOT(53, IVorCvarFileName::put_FileNameValue);
  EXPECT_SLOT(54, IVorCvarFileName::get_FiltersValue);
  EXPECT_SLOT(55, IVorCvarFileName::put_FiltersValue);
  EXPECT_SLOT(56, IVorCvarFileName::get_AdaptedValueFormat);
  EXPECT_SLOT(57, IVorCvarFileName::put_AdaptedValueFormat);
  EXPECT_SLOT(58, IVorCvarFileName::get_DirectoryOnly);
  EXPECT_SLOT(59, IVorCvarFileName::put_DirectoryOnly);
  EXPECT_SLOT(60, IVorCvarFileName::get_FileMustExist);
  EXPECT_SLOT(61, IVorCvarFileName::put_FileMustExist);
  EXPECT_SLOT(62, IVorCvarFileName::get_FullFileNameValue);
  EXPECT_SLOT(63, IVorCvarFileName::GetExtension);
}

TEST(TypedInterface, SlotsOfIVorCvarBitPattern) {
  EXPECT_SLOT(44, IVorCvarBitPattern::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarBitPattern::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarBitPattern::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarBitPattern::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarBitPattern::get_DecimalValue);
  EXPECT_SLOT(49, IVorCvarBitPattern::GetSignedDecimalValue);
  EXPECT_SLOT(50, IVorCvarBitPattern::put_DecimalValue);
  EXPECT_SLOT(51, IVorCvarBitPattern::put_HexadecimalValue);
  EXPECT_SLOT(52, IVorCvarBitPattern::get_HexadecimalValue);
  EXPECT_SLOT(53, IVorCvarBitPattern::get_MinValue);
  EXPECT_SLOT(54, IVorCvarBitPattern::get_MaxValue);
  EXPECT_SLOT(55, IVorCvarBitPattern::get_NumBits);
  EXPECT_SLOT(56, IVorCvarBitPattern::get_NumBytes);
  EXPECT_SLOT(57, IVorCvarBitPattern::get_MaxNumBits);
  EXPECT_SLOT(58, IVorCvarBitPattern::get_Format);
  EXPECT_SLOT(59, IVorCvarBitPattern::get_AllowedBitValues);
  EXPECT_SLOT(60, IVorCvarBitPattern::get_PaddingChar);
  EXPECT_SLOT(61, IVorCvarBitPattern::get_PadAlign);
  EXPECT_SLOT(62, IVorCvarBitPattern::get_SizeAlign);
  EXPECT_SLOT(63, IVorCvarBitPattern::put_MaxNumBits);
  EXPECT_SLOT(64, IVorCvarBitPattern::put_NumBits);
  EXPECT_SLOT(65, IVorCvarBitPattern::put_NumBytes);
  EXPECT_SLOT(66, IVorCvarBitPattern::put_Format);
  EXPECT_SLOT(67, IVorCvarBitPattern::put_AllowedBitValues);
  EXPECT_SLOT(68, IVorCvarBitPattern::put_PaddingChar);
  EXPECT_SLOT(69, IVorCvarBitPattern::put_PadAlign);
  EXPECT_SLOT(70, IVorCvarBitPattern::put_SizeAlign);
}

TEST(TypedInterface, SlotsOfIVorCvarRegister) {
  EXPECT_SLOT(44, IVorCvarRegister::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarRegister::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarRegister::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarRegister::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarRegister::UpdateFromHardware);
  EXPECT_SLOT(49, IVorCvarRegister::GetMask);
  EXPECT_SLOT(50, IVorCvarRegister::GetNbOfBits);
  EXPECT_SLOT(51, IVorCvarRegister::GetHardwareAddress);
  EXPECT_SLOT(52, IVorCvarRegister::GetAccessStyle);
  EXPECT_SLOT(53, IVorCvarRegister::SetMask);
  EXPECT_SLOT(54, IVorCvarRegister::SetNbOfBits);
  EXPECT_SLOT(55, IVorCvarRegister::SetHardwareAddress);
  EXPECT_SLOT(56, IVorCvarRegister::SetAccessStyle);
  EXPECT_SLOT(57, IVorCvarRegister::SetDefaultValue);
  EXPECT_SLOT(58, IVorCvarRegister::SetFieldDescription);
  EXPECT_SLOT(59, IVorCvarRegister::GetFieldDescription);
  EXPECT_SLOT(60, IVorCvarRegister::GetFieldDescriptionFirstBit);
  EXPECT_SLOT(61, IVorCvarRegister::GetFieldDescriptionLastBit);
  EXPECT_SLOT(62, IVorCvarRegister::GetFieldDescriptionString);
}

TEST(TypedInterface, SlotsOfIVorCvarImage) {
  EXPECT_SLOT(44, IVorCvarImage::GetBitmapHandle);
  EXPECT_SLOT(45, IVorCvarImage::LoadFromBitmapResource);
  EXPECT_SLOT(46, IVorCvarImage::LoadFromFile);
  EXPECT_SLOT(47, IVorCvarImage::LoadFromHandle);
  EXPECT_SLOT(48, IVorCvarImage::CreateBitmap);
}

TEST(TypedInterface, SlotsOfIVorCvarAction) { EXPECT_SLOT(44, IVorCvarAction::ActNow); }

TEST(TypedInterface, IdentifiersNeverChange) {
  EXPECT_EQ(IID_IVorCvarDoubleLockstep,
            (IID{0x5A7D0E93, 0xB64F, 0x4C21, {0x8E, 0x1A, 0xF3, 0x92, 0x6D, 0x80, 0xC7, 0x4B}}));
  EXPECT_EQ(IID_IVorCvarInt,
            (IID{0x2C8E5D17, 0x94A3, 0x4F6B, {0xB1, 0xD0, 0x7A, 0x3E, 0x96, 0xC4, 0x15, 0x8F}}));
  EXPECT_EQ(IID_IVorCvarLongInt,
            (IID{0x91F4A6B2, 0x3D5C, 0x4E87, {0xA0, 0x2B, 0xC8, 0x6F, 0x1D, 0x7E, 0x40, 0x39}}));
  EXPECT_EQ(IID_IVorCvarString,
            (IID{0x2C9E2B5D, 0x1E0F, 0x4F5B, {0x9B, 0x7C, 0x70, 0xA3, 0xB2, 0xD9, 0x4E, 0x11}}));
  EXPECT_EQ(IID_IVorCvarObjectName,
            (IID{0x9A1C7F06, 0x3D58, 0x4B8A, {0x8E, 0x4C, 0x5C, 0x1E, 0x0D, 0xA7, 0xB6, 0x22}}));
  EXPECT_EQ(IID_IVorCvarFileName,
            (IID{0x47D5B0E3, 0x6A92, 0x4C37, {0xA5, 0xF8, 0x13, 0xE9, 0xC0, 0x4B, 0x7D, 0x33}}));
  EXPECT_EQ(IID_IVorCvarBitPattern,
            (IID{0x2F6C1B0E, 0x94A7, 0x4D0B, {0x8C, 0x55, 0x6E, 0x1D, 0x3A, 0x7B, 0x9F, 0x42}}));
  EXPECT_EQ(IID_IVorCvarRegister,
            (IID{0x9B3D5A17, 0x60C8, 0x4E2F, {0x9A, 0x71, 0xC4, 0xE8, 0x5D, 0x0B, 0x2F, 0x16}}));
  EXPECT_EQ(IID_IVorCvarImage,
            (IID{0xD2E6A7C4, 0x5B19, 0x4E0D, {0x8C, 0x73, 0x9F, 0x3B, 0x1A, 0x64, 0xC0, 0x44}}));
  EXPECT_EQ(IID_IVorCvarAction,
            (IID{0xC7A1E3D4, 0x5B28, 0x4F96, {0x8E, 0x0D, 0x17, 0xF2, 0xA9, 0x4C, 0x6B, 0x53}}));
}

}  // namespace
