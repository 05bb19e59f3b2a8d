// A file that comes to be whole or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tarvix {

// The text lies in a file of another name until it becomes the one that it is meant for; else it goes with the object.
class Draft {
public:
    // `folder` is the one of the file that it is to become.
    Draft(const std::filesystem::path& folder, std::string_view text);
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    // Each gives 0 or the error, the one of the text's writing included.
    // EEXIST where there is a file of that name.
    int become(const std::filesystem::path& path);
    // In the place of a file of that name, if there is one.
    int replace(const std::filesystem::path& path);

private:
    std::string path_;  // empty once it has become another
    int error_ = 0;
};

}  // namespace tarvix
