#include "tests/desktop/play/MilestoneLog.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/desktop/play/Await.h"

namespace tarvix {

std::vector<Moment> MilestoneLog::all() const {
    std::ostringstream text;
    text << std::ifstream(path_).rdbuf();
    std::istringstream whole(text.str().substr(0, text.str().rfind('\n') + 1));
    std::vector<Moment> moments;
    for (Moment moment;
         whole >> moment.microseconds >> moment.count && whole.ignore(1) && std::getline(whole, moment.name);)
        moments.push_back(moment);
    return moments;
}

std::optional<Moment> MilestoneLog::next(std::string_view name, std::int64_t from,
                                         std::chrono::milliseconds limit) const {
    std::optional<Moment> found;
    await(limit, [&] {
        const std::vector<Moment> moments = all();
        const auto match = std::find_if(moments.begin(), moments.end(), [&](const Moment& moment) {
            return moment.name == name && moment.microseconds >= from;
        });
        if (match != moments.end()) found = *match;
        return found.has_value();
    });
    return found;
}

}  // namespace tarvix
