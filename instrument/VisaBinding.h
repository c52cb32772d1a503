#pragma once

#include "visa/VisaTypes.h"

#include <QStringList>

// The VISA entry points of this process, null until iaVisaDll_Init() finds them. In the programs,
// InstrumentIo.cpp alone calls them. p_viQueryf_*, p_viPrintf and p_viScanf_f must exist, but
// nothing calls them.

extern visa::OpenDefaultRM *p_viOpenDefaultRM;
extern visa::StatusDesc *p_viStatusDesc;
extern visa::Open *p_viOpen;
extern visa::Write *p_viWrite;
extern visa::Read *p_viRead;
extern visa::Queryf *p_viQueryf_s;
extern visa::Queryf *p_viQueryf_f;
extern visa::Queryf *p_viQueryf_i;
extern visa::Printf *p_viPrintf;
extern visa::Scanf *p_viScanf_s; ///< stays null: strings are read by viRead
extern visa::Scanf *p_viScanf_f;
extern visa::ReadToFile *p_viReadToFile;
extern visa::Clear *p_viClear;
extern visa::Close *p_viClose;
extern visa::SetAttribute *p_viSetAttribute;
extern visa::GetAttribute *p_viGetAttribute;
extern visa::SetBuf *p_viSetBuf;
extern visa::ReadSTB *p_viReadSTB;
extern visa::GpibControlREN *p_viGpibControlREN;

/// Set where iaVisaDll_Init() looks for a VISA library: absolute paths of files, in order.
void setVisaLibraryPaths(const QStringList &paths);

/// Bind the first VISA library that has all entry points. They are resolved in the order above, up
/// to the first that the library lacks. Returns false when no library is complete; the entry points
/// of the last library then stay bound up to the first that it lacks, and the others are null.
/// Writes to standard error which library is bound and why others were passed over.
bool iaVisaDll_Init();
