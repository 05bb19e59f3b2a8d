// The gallery as a page of the documents.
#pragma once

#include <string>

namespace tarvix {

// docs/gallery.md, whole.
std::string galleryPage();

// What is amiss with the page and the pictures in a folder of documents, a line for each; empty when they agree with
// the table.
std::string galleryFaults(const std::string& documents);

}  // namespace tarvix
