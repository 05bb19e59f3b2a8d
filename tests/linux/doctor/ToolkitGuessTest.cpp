#include <gtest/gtest.h>
#include <unistd.h>

#include "linux/doctor/ToolkitGuess.h"

namespace tarvix {
namespace {

std::string mapsOf(std::initializer_list<std::string_view> libraries) {
    std::string maps = "55d0c0000000-55d0c0001000 r--p 00000000 08:01 1 /usr/bin/program\n";
    for (const std::string_view library : libraries)
        maps +=
            "7f0000000000-7f0000001000 r-xp 00000000 08:01 2 /usr/lib/x86_64-linux-gnu/" + std::string(library) + "\n";
    return maps;
}

const std::vector<std::string> kNothing;

TEST(ToolkitGuess, LibrariesTell) {
    using enum ProgramToolkit;
    EXPECT_EQ(guessToolkit(mapsOf({"libgtk-3.so.0.2404.32"}), kNothing), (ToolkitGuess{gtk3, "GTK 3"}));
    EXPECT_EQ(guessToolkit(mapsOf({"libgtk-4.so.1"}), kNothing), (ToolkitGuess{gtk4, "GTK 4"}));
    EXPECT_EQ(guessToolkit(mapsOf({"libQt5Core.so.5", "libQt5Gui.so.5.15.8"}), kNothing), (ToolkitGuess{qt, "Qt 5"}));
    EXPECT_EQ(guessToolkit(mapsOf({"libQt6Gui.so.6.4.2"}), kNothing), (ToolkitGuess{qt, "Qt 6"}));
    EXPECT_EQ(guessToolkit(mapsOf({"libSDL2-2.0.so.0"}), kNothing), (ToolkitGuess{inaccessible, "SDL"}));
    EXPECT_EQ(guessToolkit(mapsOf({"libXt.so.6", "libXaw.so.7"}), kNothing), (ToolkitGuess{inaccessible, "Xaw"}));
    EXPECT_EQ(guessToolkit(mapsOf({"libX11.so.6"}), kNothing), ToolkitGuess{});
    EXPECT_EQ(guessToolkit("", kNothing), ToolkitGuess{});
}

TEST(ToolkitGuess, WhatStandsOnAnotherToolkitIsNotTakenForThat) {
    using enum ProgramToolkit;
    EXPECT_EQ(guessToolkit(mapsOf({"libgtk-3.so.0", "libxul.so"}), kNothing).toolkit, firefox);
    EXPECT_EQ(guessToolkit(mapsOf({"libgtk-3.so.0", "libmergedlo.so"}), kNothing).toolkit, libreOffice);
    EXPECT_EQ(guessToolkit(mapsOf({"libgtk-3.so.0", "libjvm.so"}), kNothing).toolkit, java);
    EXPECT_EQ(guessToolkit(mapsOf({"libSDL2-2.0.so.0", "libgtk-3.so.0"}), kNothing).toolkit, gtk3);
}

TEST(ToolkitGuess, ANameThatOnlyContainsALibrarysIsNoSign) {
    EXPECT_EQ(guessToolkit(mapsOf({"my-libgtk-3.so"}), kNothing), ToolkitGuess{});
}

TEST(ToolkitGuess, ChromiumAndElectronAreKnownByWhatLiesBesideThem) {
    const std::vector<std::string> chromium{"chromium", "icudtl.dat", "resources.pak", "v8_context_snapshot.bin"};
    std::vector<std::string> electron = chromium;
    electron.emplace_back("resources/app.asar");
    const std::string maps = mapsOf({"libgtk-3.so.0"});  // loaded for its dialogs
    EXPECT_EQ(guessToolkit(maps, chromium).toolkit, ProgramToolkit::chromium);
    EXPECT_EQ(guessToolkit(maps, electron).toolkit, ProgramToolkit::electron);
    EXPECT_EQ(guessToolkit(maps, {"chromium", "resources.pak"}).toolkit, ProgramToolkit::gtk3);
    EXPECT_EQ(guessToolkit(maps, {"app", "resources/app.asar"}).toolkit, ProgramToolkit::gtk3);
}

TEST(ToolkitGuess, AProcessIsLookedAt) {
    EXPECT_EQ(guessToolkit(getpid()), ToolkitGuess{}) << "this one has no window";
    EXPECT_EQ(guessToolkit(-1), ToolkitGuess{});
}

}  // namespace
}  // namespace tarvix
