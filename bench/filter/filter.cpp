// What one key press costs in matching, beside the plain way of doing it and the floor: a plain scan for one substring
// over the same bytes.
#include <string.h>  // memmem

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "base/Text.h"
#include "search/SearchEngine.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/search/NaiveMatching.h"

namespace tarvix {
namespace {

constexpr auto kWords = std::to_array<const char*>(
    {"Save",    "Open",   "Close",     "Format", "Insert",  "Reply",     "Archive",  "Settings", "Größe",  "Résumé",
     "New tab", "Search", "Bookmarks", "View",   "hello",   "friend",    "Download", "Row",      "Column", "Selection",
     "inbox",   "Drafts", "message",   "from",   "Tuesday", "yesterday", "Preview",  "Share",    "über",   "日本語"});
constexpr auto kRoles = std::to_array<const char*>({"button", "link", "text", "check box", "menu item", "cell"});

std::string words(std::mt19937& random, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += (i == 0 ? "" : " ") + std::string(kWords[random() % kWords.size()]);
    return text;
}

// As many as asked, each of another frame, with the texts that elements of applications have.
OrderedSet<AccessibilityElement> candidates(int count) {
    std::mt19937 random(7);
    OrderedSet<AccessibilityElement> result;
    for (int i = 0; i < count; ++i) {
        AccessibilityElement element;
        element.roleDescription = kRoles[random() % kRoles.size()];
        element.title = words(random, 1 + static_cast<int>(random() % 4));
        if (random() % 4 == 0) element.help = words(random, 6);
        if (random() % 3 == 0) element.value = words(random, static_cast<int>(random() % 9)) + std::to_string(i);
        element.position = {static_cast<double>(i % 1000), static_cast<double>(i / 1000)};
        element.size = {10, 10};
        result.insert(std::move(element));
    }
    return result;
}

double medianMilliseconds(int rounds, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[static_cast<std::size_t>(rounds / 2)];
}

// How often the needle occurs, with nothing done about it.
std::size_t scan(std::string_view bytes, const std::string& needle) {
    std::size_t count = 0;
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    while (const void* found = memmem(at, static_cast<std::size_t>(end - at), needle.data(), needle.size())) {
        ++count;
        at = static_cast<const char*>(found) + needle.size();
    }
    return count;
}

void measure(int count) {
    SimulatedDesktop desktop;
    const SearchEngine engine(desktop.platform());
    const OrderedSet<AccessibilityElement> all = candidates(count);
    engine.prepare(all);
    const MatchIndex index(all);
    const double prepared = medianMilliseconds(3, [&] { MatchIndex again(all); });
    for (const char* query : {"s", "sav", "hf", "op bu", "hel fri bu"}) {
        for (const FuzzyMatchingFlavor flavor :
             {FuzzyMatchingFlavor::tarvixClassic, FuzzyMatchingFlavor::tarvixExtended}) {
            desktop.userDefaults.set("fuzzyMatchingFlavor", std::string(rawValue(flavor)));
            std::size_t matching = 0, scanned = 0;
            const double ours = medianMilliseconds(15, [&] { matching = engine.filteredElements(all, query).size(); });
            const double plain = medianMilliseconds(
                count > 20'000 ? 1 : 3, [&] { matching = naive::filteredElements(all, query, flavor).size(); });
            std::string longest = query;
            if (const std::size_t blank = longest.find(' '); blank != std::string::npos) longest.resize(blank);
            const double floor = medianMilliseconds(15, [&] { scanned = scan(index.bytes(), longest); });
            std::printf("%-10d %-12s %-15s %9zu %10.3f %12.1f %8.0f %10.3f %9.1f %9zu\n", count, query,
                        std::string(rawValue(flavor)).c_str(), matching, ours, plain, plain / ours, floor, ours / floor,
                        scanned);
        }
    }
    std::printf("%-10d index made once for the list: %.1f ms\n", count, prepared);
}

}  // namespace
}  // namespace tarvix

int main() {
    std::printf("%-10s %-12s %-15s %9s %10s %12s %8s %10s %9s %9s\n", "candidates", "query", "flavour", "matching",
                "ms", "plain way ms", "times", "floor ms", "of floor", "found");
    for (const int count : {1'000, 10'000, 100'000}) tarvix::measure(count);
}
