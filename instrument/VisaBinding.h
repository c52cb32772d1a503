#pragma once

#include "visa/VisaTypes.h"

#include <QStringList>

// The VISA entry points of this process: null until iaVisaDll_Init() finds them, then valid until
// the process ends. Only the ia functions call through them.

extern visa::OpenDefaultRM *p_viOpenDefaultRM;
extern visa::StatusDesc *p_viStatusDesc;
extern visa::Open *p_viOpen;
extern visa::Write *p_viWrite;
extern visa::Read *p_viRead;
extern visa::Queryf *p_viQueryf_s;
extern visa::Queryf *p_viQueryf_f;
extern visa::Queryf *p_viQueryf_i;
extern visa::Printf *p_viPrintf;
extern visa::Scanf *p_viScanf_s; ///< stays null: nothing reads strings with viScanf
extern visa::Scanf *p_viScanf_f;
extern visa::ReadToFile *p_viReadToFile;
extern visa::Clear *p_viClear;
extern visa::Close *p_viClose;
extern visa::SetAttribute *p_viSetAttribute;
extern visa::GetAttribute *p_viGetAttribute;
extern visa::SetBuf *p_viSetBuf;
extern visa::ReadSTB *p_viReadSTB;
extern visa::GpibControlREN *p_viGpibControlREN;

/// Say where iaVisaDll_Init() looks for the VISA library: absolute paths of files, the first one
/// that serves is taken.
void setVisaLibraryPaths(const QStringList &paths);

/// Load a VISA library and resolve its entry points in the order above. Returns true when all of
/// them are there. At the first that is missing it gives that library up: the pointers before it
/// keep their values, the later ones stay null. Standard error says which library serves, or why
/// none does.
bool iaVisaDll_Init();
