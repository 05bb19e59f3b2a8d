#include "qt/MilestoneFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>

namespace tarvix {

MilestoneFile::MilestoneFile(const std::string& path) {
    if (!path.empty()) file_ = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
}

MilestoneFile::~MilestoneFile() {
    if (file_ >= 0) close(file_);
}

void MilestoneFile::reached(std::string_view moment, std::size_t count) {
    if (file_ < 0) return;
    const auto now =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch());
    std::string line = std::to_string(now.count()) + ' ' + std::to_string(count) + ' ';
    line.append(moment).push_back('\n');
    // A line that can't be written is lost; whoever reads them waits for it in vain and says so.
    if (write(file_, line.data(), line.size()) < 0) return;
}

}  // namespace tarvix
