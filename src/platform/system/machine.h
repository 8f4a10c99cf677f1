#pragma once

#include "platform/system/services.h"

#include <memory>

// The parts of MachineServices(), one file each.
namespace quillary::system {

std::shared_ptr<RegionalSettings> MachineRegionalSettings();
std::shared_ptr<Folders> MachineFolders();
std::shared_ptr<Processes> MachineProcesses();
std::shared_ptr<MemoryStatus> MachineMemory();
std::shared_ptr<FileVersions> MachineFileVersions();

// Windows of a process on the X display, when there is one. Each returns whether it found a window.
bool ActivateWindowsOf(ProcessId process);
bool CloseWindowsOf(ProcessId process);

} // namespace quillary::system
