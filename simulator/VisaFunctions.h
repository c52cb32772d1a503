#pragma once

#include "instrument/VisaTypes.h"

// The bench's VISA library: what a client finds in it. All functions may be called from any thread.

#define SIMULATOR_EXPORT __attribute__((visibility("default")))

extern "C" {
SIMULATOR_EXPORT visa::OpenDefaultRM viOpenDefaultRM;
SIMULATOR_EXPORT visa::FindRsrc viFindRsrc;
SIMULATOR_EXPORT visa::FindNext viFindNext;
SIMULATOR_EXPORT visa::ParseRsrc viParseRsrc;
SIMULATOR_EXPORT visa::ParseRsrcEx viParseRsrcEx;
SIMULATOR_EXPORT visa::Open viOpen;
SIMULATOR_EXPORT visa::Close viClose;
SIMULATOR_EXPORT visa::StatusDesc viStatusDesc;
SIMULATOR_EXPORT visa::SetAttribute viSetAttribute;
SIMULATOR_EXPORT visa::GetAttribute viGetAttribute;
SIMULATOR_EXPORT visa::DisableEvent viDisableEvent;
SIMULATOR_EXPORT visa::DiscardEvents viDiscardEvents;
SIMULATOR_EXPORT visa::Write viWrite;
SIMULATOR_EXPORT visa::Read viRead;
SIMULATOR_EXPORT visa::ReadToFile viReadToFile;
SIMULATOR_EXPORT visa::Clear viClear;
SIMULATOR_EXPORT visa::SetBuf viSetBuf;
SIMULATOR_EXPORT visa::ReadSTB viReadSTB;
SIMULATOR_EXPORT visa::GpibControlREN viGpibControlREN;
SIMULATOR_EXPORT visa::Printf viPrintf;
SIMULATOR_EXPORT visa::Scanf viScanf;
SIMULATOR_EXPORT visa::Queryf viQueryf;
}
