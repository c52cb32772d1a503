#pragma once

#include "visa/VisaTypes.h"

// The functions that this VISA library exports; they reach devices through visa::backend(). They
// may be called from any thread; calls on one session take turns. Functions that only return
// VI_ERROR_NSUP_OPER are in UnsupportedFunctions.cpp.

#define VISA_EXPORT __attribute__((visibility("default")))

extern "C" {
VISA_EXPORT visa::OpenDefaultRM viOpenDefaultRM;
VISA_EXPORT visa::FindRsrc viFindRsrc;
VISA_EXPORT visa::FindNext viFindNext;
VISA_EXPORT visa::ParseRsrcEx viParseRsrcEx;
VISA_EXPORT visa::Open viOpen;
VISA_EXPORT visa::Close viClose;
VISA_EXPORT visa::StatusDesc viStatusDesc;
VISA_EXPORT visa::SetAttribute viSetAttribute;
VISA_EXPORT visa::GetAttribute viGetAttribute;
VISA_EXPORT visa::Lock viLock;
VISA_EXPORT visa::Unlock viUnlock;
VISA_EXPORT visa::DisableEvent viDisableEvent;
VISA_EXPORT visa::DiscardEvents viDiscardEvents;
VISA_EXPORT visa::Write viWrite;
VISA_EXPORT visa::Read viRead;
VISA_EXPORT visa::ReadToFile viReadToFile;
VISA_EXPORT visa::Clear viClear;
VISA_EXPORT visa::SetBuf viSetBuf;
VISA_EXPORT visa::Flush viFlush;
VISA_EXPORT visa::ReadSTB viReadSTB;
VISA_EXPORT visa::AssertTrigger viAssertTrigger;
VISA_EXPORT visa::GpibControlREN viGpibControlREN;
}
