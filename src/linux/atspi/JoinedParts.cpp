#include "linux/atspi/JoinedParts.h"

#include <algorithm>
#include <vector>

namespace tarvix::atspi {

namespace {

bool isControl(Role role) {
    switch (role) {
        case Role::pushButton:
        case Role::pushButtonMenu:
        case Role::toggleButton:
        case Role::switchButton:
        case Role::checkBox:
        case Role::radioButton:
        case Role::link:
        case Role::comboBox:
        case Role::menuItem:
        case Role::checkMenuItem:
        case Role::radioMenuItem:
        case Role::columnHeader:
        case Role::tableColumnHeader:
            return true;
        default:
            return false;
    }
}

// What only draws.
bool isPassive(const Node& node) {
    switch (node.role) {
        case Role::label:
        case Role::staticText:
        case Role::caption:
        case Role::image:
        case Role::icon:
        case Role::animation:
        case Role::panel:
        case Role::filler:
        case Role::grouping:
        case Role::separator:
            return true;
        default:
            return false;
    }
}

bool saysText(const Node& node) { return node.role == Role::label || node.role == Role::staticText; }

// What is below an object, in the order of the tree, as far as it shows.
struct Below {
    std::vector<int> drawing, rest;
};

Below below(const NodeTree& tree, const Node& control) {
    Below found;
    std::vector<int> pending(control.children.rbegin(), control.children.rend());
    while (!pending.empty()) {
        const int at = pending.back();
        pending.pop_back();
        const Node& part = tree[static_cast<std::size_t>(at)];
        if (!part.shows) continue;
        (isPassive(part) ? found.drawing : found.rest).push_back(at);
        if (isPassive(part)) pending.insert(pending.end(), part.children.rbegin(), part.children.rend());
    }
    return found;
}

void addWord(std::string& text, const std::string& word) {
    if (!word.empty()) text += (text.empty() ? "" : " ") + word;
}

// What is written on a control. Empty where it holds something that can be used on its own.
std::string writingOn(const NodeTree& tree, const Node& control) {
    std::string text;
    const Below parts = below(tree, control);
    if (!parts.rest.empty()) return text;
    for (const int at : parts.drawing)
        if (const Node& part = tree[static_cast<std::size_t>(at)]; saysText(part)) addWord(text, part.name);
    return text;
}

// The same, and all that draws it is hidden.
std::string takeWriting(NodeTree& tree, const Node& control) {
    std::string text = writingOn(tree, control);
    const Below parts = below(tree, control);
    if (parts.rest.empty())
        for (const int at : parts.drawing) tree[static_cast<std::size_t>(at)].shows = false;
    return text;
}

// A menu button of GTK 4 holds a button, and so does a combo box: one control for people.
std::string takeInnerButton(NodeTree& tree, const Node& control) {
    const Below parts = below(tree, control);
    if (parts.rest.size() != 1) return {};
    Node& inner = tree[static_cast<std::size_t>(parts.rest.front())];
    if (inner.role != Role::pushButton && inner.role != Role::toggleButton) return {};
    if (!below(tree, inner).rest.empty()) return {};
    std::string text = takeWriting(tree, inner);
    inner.shows = false;
    return text;
}

void join(NodeTree& tree, Node& control, Toolkit toolkit) {
    const bool isWrapper = toolkit == Toolkit::gtk4 &&
                           (control.role == Role::pushButton || control.role == Role::comboBox) &&
                           !control.has(State::editable);
    std::string text = isWrapper ? takeInnerButton(tree, control) : std::string();
    if (text.empty() && control.role != Role::comboBox) text = takeWriting(tree, control);
    if (control.name.find(text) == std::string::npos) control.text = std::move(text);
}

}  // namespace

void joinParts(NodeTree& tree, Toolkit toolkit) {
    for (Node& node : tree) {
        if (!node.shows || node.inWebContent || node.children.empty()) continue;
        if (isControl(node.role)) join(tree, node, toolkit);
        // A tab of GTK 4 may be named with the mark of its shortcut. In GTK 3 its page is below it.
        if (toolkit == Toolkit::gtk4 && node.role == Role::pageTab)
            if (std::string text = writingOn(tree, node); node.name.find(text) == std::string::npos)
                node.text = std::move(text);
        if (node.role == Role::tableCell && std::any_of(node.children.begin(), node.children.end(), [&](int child) {
                return tree[static_cast<std::size_t>(child)].shows;
            }))
            node.role = Role::panel;
    }
}

}  // namespace tarvix::atspi
