#include "platform/system/machine.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>

namespace quillary::system {

namespace {

// Addresses that the processor gives a process: 47 bits.
constexpr std::uint64_t kAddressSpace = std::uint64_t{1} << 47;

class MemoryOfMachine : public MemoryStatus {
public:
    MemoryFigures Read() override {
        std::uint64_t total = 0, available = 0, swapTotal = 0, swapFree = 0;
        std::ifstream info("/proc/meminfo");
        std::string name, unit;
        for (std::uint64_t kilobytes = 0; info >> name >> kilobytes; std::getline(info, unit)) {
            if (name == "MemTotal:")
                total = kilobytes * 1024;
            else if (name == "MemAvailable:")
                available = kilobytes * 1024;
            else if (name == "SwapTotal:")
                swapTotal = kilobytes * 1024;
            else if (name == "SwapFree:")
                swapFree = kilobytes * 1024;
        }
        MemoryFigures figures;
        figures.totalPhysical = total;
        figures.availablePhysical = available;
        figures.totalPageFile = total + swapTotal;
        figures.availablePageFile = available + swapFree;
        if (total > 0)
            figures.load = static_cast<int>(
                std::lround(100.0 * static_cast<double>(total - available) / static_cast<double>(total)));
        rlimit limit{};
        const bool limited = ::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
        figures.totalVirtual =
            limited ? std::min<std::uint64_t>(limit.rlim_cur, kAddressSpace) : kAddressSpace;
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const std::uint64_t used = pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
        figures.availableVirtual = figures.totalVirtual - std::min(used, figures.totalVirtual);
        return figures;
    }
};

} // namespace

std::shared_ptr<MemoryStatus> MachineMemory() {
    return std::make_shared<MemoryOfMachine>();
}

} // namespace quillary::system
