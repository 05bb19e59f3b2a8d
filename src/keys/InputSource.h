// A keyboard layout or input method, as the key of what is known about it.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "platform/InputSources.h"

namespace tarvix {

// Two of them are the same source when their `id` and `modeID` agree, whatever else has changed about it.
struct InputSource {
    InputSourceInfo info;

    friend bool operator==(const InputSource& a, const InputSource& b) {
        return a.info.id == b.info.id && a.info.modeID == b.info.modeID;
    }

    struct Hash {
        std::size_t operator()(const InputSource& source) const {
            const std::hash<std::string> hash;
            return hash(source.info.id) * 31 + (source.info.modeID ? hash(*source.info.modeID) : 0);
        }
    };
};

}  // namespace tarvix
