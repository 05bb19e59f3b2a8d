#include "tests/desktop/gallery/GalleryPage.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "tests/desktop/gallery/GalleryTable.h"

namespace tarvix {

namespace {

std::string image(const GalleryPicture& picture) { return "![" + picture.name + "](gallery/" + picture.name + ".png)"; }

// Cells in rows, captions above their pictures; a single picture needs none.
std::string table(const GallerySection& section) {
    if (section.pictures.size() == 1) return image(section.pictures.front()) + "\n";
    const auto columns = static_cast<std::size_t>(section.columns);
    std::string text;
    for (std::size_t first = 0; first < section.pictures.size(); first += columns) {
        std::string captions = "|", pictures = "|", rule = "|";
        for (std::size_t i = first; i < std::min(first + columns, section.pictures.size()); ++i) {
            captions += " " + section.pictures[i].caption + " |";
            pictures += " " + image(section.pictures[i]) + " |";
            rule += "---|";
        }
        text += captions + "\n" + (first == 0 ? rule + "\n" : "") + pictures + "\n";
    }
    return text;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string galleryPage() {
    std::string page =
        "# Gallery\n\n"
        "Pictures of the running program over real applications. `tools/gallery` takes them anew and writes this "
        "page.\n";
    for (const GallerySection& section : gallery())
        page += "\n## " + section.title + "\n\n" + section.text + "\n\n" + table(section);
    return page;
}

std::string galleryFaults(const std::string& documents) {
    std::string faults;
    const std::filesystem::path folder(documents);
    if (contentOf(folder / "gallery.md") != galleryPage()) faults += "gallery.md is not what the table says\n";
    std::set<std::string> expected, found;
    for (const GallerySection& section : gallery())
        for (const GalleryPicture& picture : section.pictures)
            if (!expected.insert(picture.name + ".png").second) faults += picture.name + " is there twice\n";
    if (std::filesystem::is_directory(folder / "gallery"))
        for (const auto& entry : std::filesystem::directory_iterator(folder / "gallery"))
            found.insert(entry.path().filename());
    for (const std::string& name : expected)
        if (!found.contains(name)) faults += "gallery/" + name + " is missing\n";
    for (const std::string& name : found)
        if (!expected.contains(name)) faults += "gallery/" + name + " is shown nowhere\n";
    return faults;
}

}  // namespace tarvix
