#include "linux/x11/X11WindowTree.h"

#include <cstddef>

namespace tarvix {

std::vector<xcb_window_t> childrenOfRoot(X11Connection& connection, const std::vector<xcb_window_t>& windows) {
    std::vector<xcb_window_t> result = windows;
    std::vector<std::size_t> climbing(windows.size());
    for (std::size_t i = 0; i < windows.size(); ++i) climbing[i] = i;
    while (!climbing.empty()) {
        std::vector<xcb_query_tree_cookie_t> asked;
        for (const std::size_t i : climbing) asked.push_back(xcb_query_tree(connection.get(), result[i]));
        std::vector<std::size_t> higher;
        for (std::size_t k = 0; k < climbing.size(); ++k) {
            const auto answer = connection.reply<xcb_query_tree_reply>(asked[k]);
            xcb_window_t& place = result[climbing[k]];
            if (!answer || answer->parent == XCB_WINDOW_NONE) {
                place = XCB_WINDOW_NONE;  // gone, or the root itself
            } else if (answer->parent != answer->root) {
                place = answer->parent;
                higher.push_back(climbing[k]);
            }
        }
        climbing = std::move(higher);
    }
    return result;
}

std::vector<xcb_window_t> rootStack(X11Connection& connection) {
    const auto answer = connection.reply<xcb_query_tree_reply>(xcb_query_tree(connection.get(), connection.root()));
    if (!answer) return {};
    const xcb_window_t* first = xcb_query_tree_children(answer.get());
    return {first, first + xcb_query_tree_children_length(answer.get())};
}

bool hasWindowManager(X11Connection& connection) {
    const auto check = connection.items(connection.root(), "_NET_SUPPORTING_WM_CHECK");
    if (check.empty()) return false;
    // The property outlives a window manager that crashed; its window doesn't.
    return connection.items(check.front(), "_NET_SUPPORTING_WM_CHECK") == check;
}

std::string windowManagerName(X11Connection& connection) {
    const auto check = connection.items(connection.root(), "_NET_SUPPORTING_WM_CHECK");
    return check.empty() ? std::string() : connection.text(check.front(), "_NET_WM_NAME").value_or(std::string());
}

}  // namespace tarvix
