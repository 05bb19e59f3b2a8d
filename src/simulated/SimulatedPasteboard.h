// The clipboard, in memory.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/Pasteboard.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedPasteboard : public Pasteboard {
public:
    explicit SimulatedPasteboard(Journal& journal) : journal_(journal) {}

    void clearContents() override {
        text.reset();
        journal_.note(Topic::pasteboard, "pasteboard cleared");
    }
    void setString(std::string string) override {
        journal_.note(Topic::pasteboard, "pasteboard set to '" + string + "'");
        text = std::move(string);
    }

    std::optional<std::string> text;

private:
    Journal& journal_;
};

}  // namespace tarvix
