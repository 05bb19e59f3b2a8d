// What a desktop file in an autostart folder says (freedesktop.org's rules for autostart and desktop entries).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

// Whether it is there to be started on desktops of these names, and neither the user nor a desktop has switched it off.
bool isSwitchedOn(std::string_view entry, const std::vector<std::string>& desktops);
// Whether the programs are there that it names, by their paths or in the folders of `searchPath`, with colons between.
bool canBeStarted(std::string_view entry, std::string_view searchPath);

// The entry that starts a program, a path or a name, without arguments.
std::string autostartEntry(const std::string& program);
// The entry that keeps one of the same name in a folder of the system from being started.
std::string hiddenEntry();

// The words of an Exec line as it stands in a file, and the line of one word.
std::vector<std::string> execWords(std::string_view line);
std::string execLine(std::string_view program);

// Where a program is that is named by its path or stands in a folder of `searchPath`; empty where there is none.
std::string programPath(std::string_view program, std::string_view searchPath);

}  // namespace tarvix
