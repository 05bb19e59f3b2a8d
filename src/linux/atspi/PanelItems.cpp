#include "linux/atspi/PanelItems.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <map>

namespace tarvix::atspi {

namespace {

constexpr double kNear = 4;  // pixels by which a noted place may differ from the button's box
constexpr std::string_view kIconWord = "icon", kButtonWord = "button";

AxPoint centreOf(const AxRect& box) { return {(box.minX() + box.maxX()) / 2, (box.minY() + box.maxY()) / 2}; }

bool holds(const AxRect& box, AxPoint p) {
    return p.x >= box.minX() && p.x < box.maxX() && p.y >= box.minY() && p.y < box.maxY();
}

bool isNear(const AxRect& a, const AxRect& b) {
    const auto near = [](double x, double y) { return std::abs(x - y) <= kNear; };
    return near(a.minX(), b.minX()) && near(a.minY(), b.minY()) && near(a.maxX(), b.maxX()) && near(a.maxY(), b.maxY());
}

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool mentions(const std::string& text, const std::string& word) {
    return lowered(text).find(lowered(word)) != std::string::npos;
}

// Adds a text where it says something new.
void add(std::string& text, const std::string& more, const char* between) {
    if (more.empty() || mentions(text, more)) return;
    if (!text.empty()) text += between;
    text += more;
}

const Node& at(const NodeTree& nodes, int index) { return nodes[static_cast<std::size_t>(index)]; }

// What is operated or read in a panel; everything else only holds such.
bool isOperable(const Node& node) {
    switch (node.role) {
        case Role::pushButton:
        case Role::pushButtonMenu:
        case Role::toggleButton:
        case Role::switchButton:
        case Role::checkBox:
        case Role::radioButton:
        case Role::comboBox:
        case Role::entry:
        case Role::text:
        case Role::spinButton:
        case Role::slider:
        case Role::progressBar:
        case Role::menu:
        case Role::menuItem:
        case Role::link:
        case Role::listItem:
        case Role::pageTab:
        case Role::icon:
            return true;
        case Role::label:
        case Role::staticText:
        case Role::image:
            return !node.name.empty();
        case Role::unknown:  // GTK 3's word for what draws itself, such as a pager
        case Role::drawingArea:
        case Role::canvas:
            return node.children.empty();
        default:
            return false;
    }
}

// The rows of buttons, those that don't show among them, of which none that shows has a name.
std::vector<std::vector<int>> namelessRows(const NodeTree& nodes) {
    std::map<int, std::vector<int>> rows;
    for (std::size_t i = 1; i < nodes.size(); ++i) rows[nodes[i].parent].push_back(static_cast<int>(i));
    std::vector<std::vector<int>> found;
    for (auto& [parent, row] : rows) {
        const auto isShown = [&](int i) { return at(nodes, i).shows; };
        const auto fits = [&](int i) {
            const Node& node = at(nodes, i);
            // Of what another process doesn't show nothing has been asked but that.
            if (!node.shows) return node.role == Role::pushButton || node.role == Role::invalid;
            return node.role == Role::pushButton && node.name.empty() && node.description.empty();
        };
        if (std::ranges::any_of(row, isShown) && std::ranges::all_of(row, fits)) found.push_back(std::move(row));
    }
    return found;
}

struct Names {
    std::string name, description;
};

class Reader {
public:
    Reader(const PanelSeen& panel, const PanelSurroundings& around)
        : panel_(panel), around_(around), nodes_(panel.nodes), counts_(nodes_.size(), 0) {}

    std::vector<PanelItem> read() {
        if (!nodes_.empty()) gather(0);
        for (const int index : found_)
            for (int above = at(nodes_, index).parent; above > 0; above = at(nodes_, above).parent)
                ++counts_[static_cast<std::size_t>(above)];
        const std::map<int, Names> names = trayNames();
        for (const int index : found_) take(index, names);
        addEmbedded();
        if (nodes_.empty()) addTasks();
        for (PanelItem& item : items_) keepOffTheEdge(item);
        return std::move(items_);
    }

private:
    void gather(int index) {
        for (const int child : at(nodes_, index).children) {
            const Node& node = at(nodes_, child);
            if (!node.shows) continue;
            if (!isOperable(node))
                gather(child);
            else if (intersects(node.frame, panel_.window.clickable))
                found_.push_back(child);
        }
    }

    void take(int index, const std::map<int, Names>& names) {
        Node node = at(nodes_, index);
        node.frame = intersection(node.frame, panel_.window.clickable);
        node.inTitleBar = false;
        if (const auto told = names.find(index); told != names.end()) {
            node.name = told->second.name;
            node.description = told->second.description;
        }
        takeNamesFromAbove(node);
        PanelItem item{std::move(node), PanelRow::tray};
        const bool isTask = nameByWindows(item.node);
        if (isTask || isLauncher(index)) item.row = PanelRow::dock;
        item.node.children.clear();
        items_.push_back(std::move(item));
    }

    // The one control in a part of a panel that has a name goes by that where it has none itself.
    void takeNamesFromAbove(Node& node) const {
        if (!node.name.empty()) return;
        for (int above = node.parent; above > 0 && counts_[static_cast<std::size_t>(above)] == 1;
             above = at(nodes_, above).parent) {
            if (node.name.empty()) node.name = at(nodes_, above).name;
            add(node.description, at(nodes_, above).description, ". ");
        }
    }

    // Whether it is the button of a window, which has its name then.
    bool nameByWindows(Node& node) const {
        bool isTask = false;
        for (const X11Window& client : around_.clients) {
            if (!client.iconGeometry || !isNear(*client.iconGeometry, node.frame)) continue;
            isTask = true;
            if (node.name.empty()) node.name = client.title;
        }
        return isTask;
    }

    bool isLauncher(int index) const {
        const Node& node = at(nodes_, index);
        if (node.role != Role::pushButton || node.reference.bus != nodes_.front().reference.bus) return false;
        return around_.isApplication(node.name) || hasArrowBeside(index);
    }

    // The panel of Xfce has a button and an arrow in a launcher, of which the arrow mostly doesn't show. Of what
    // doesn't show the role may be unknown.
    bool hasArrowBeside(int index) const {
        int arrows = 0, others = 0;
        for (std::size_t i = 1; i < nodes_.size(); ++i) {
            const Node& each = nodes_[i];
            if (each.parent != at(nodes_, index).parent || static_cast<int>(i) == index) continue;
            const bool isArrow = each.role == Role::toggleButton || (!each.shows && each.role == Role::invalid);
            ++(isArrow ? arrows : others);
        }
        return arrows == 1 && others == 0;
    }

    // Those that no button with a name stands for.
    std::vector<NotifierItem> notifiersLeft() const {
        std::vector<NotifierItem> left = around_.notifiers();
        const auto isTold = [&](const NotifierItem& item) {
            return std::ranges::any_of(found_, [&](int index) {
                const Node& node = at(nodes_, index);
                const std::string told = node.name + '\n' + node.description;
                return std::ranges::any_of(std::array{item.id, item.title, item.toolTip}, [&](const std::string& text) {
                    return !text.empty() && node.role == Role::pushButton && mentions(told, text);
                });
            });
        };
        std::erase_if(left, isTold);
        return left;
    }

    // The rows of buttons that may be the tray's. Xfce's panel has its tray in another process; what is nameless in its
    // own is a launcher.
    std::vector<std::vector<int>> rowsOfTheTray() const {
        std::vector<std::vector<int>> rows = namelessRows(nodes_);
        if (around_.order)
            std::erase_if(rows, [this](const std::vector<int>& row) {
                return at(nodes_, row.front()).reference.bus == nodes_.front().reference.bus;
            });
        return rows;
    }

    // What the tray's items say of the buttons that say nothing themselves.
    std::map<int, Names> trayNames() const {
        const std::vector<std::vector<int>> rows = rowsOfTheTray();
        if (rows.empty()) return {};
        const std::vector<NotifierItem> notifiers = notifiersLeft();
        const auto fits = [&](const std::vector<int>& row) { return row.size() == notifiers.size(); };
        // Where the panel has no order of items, one nameless button alone may be anything.
        const bool isTheTray = rows.size() == 1 && around_.order;
        const auto row = isTheTray ? rows.begin() : std::ranges::find_if(rows, fits);
        if (row == rows.end() || (!isTheTray && std::ranges::count_if(rows, fits) != 1)) return {};
        std::vector<bool> shows;
        for (const int button : *row) shows.push_back(at(nodes_, button).shows);
        const auto itemsOf = itemsOfButtons(shows, notifiers, around_.order);
        std::map<int, Names> names;
        for (std::size_t b = 0; b < row->size(); ++b)
            if (!itemsOf[b].empty()) names[(*row)[b]] = namesOf(itemsOf[b], notifiers);
        return names;
    }

    static Names namesOf(const std::vector<std::size_t>& which, const std::vector<NotifierItem>& notifiers) {
        Names names;
        for (const std::size_t i : which) add(names.name, notifiers[i].name(), ", ");
        for (const std::size_t i : which) add(names.description, notifiers[i].toolTip, ", ");
        for (const std::size_t i : which)
            if (!mentions(names.name, notifiers[i].id)) add(names.description, notifiers[i].id, ", ");
        return names;
    }

    // The icons that live in windows of their own: what they say of themselves goes before what the X server knows.
    void addEmbedded() {
        for (std::size_t i = 0; i < panel_.embedded.size(); ++i) {
            const X11Window& icon = panel_.embedded[i];
            const bool holdsAnother =
                std::any_of(panel_.embedded.begin() + static_cast<std::ptrdiff_t>(i) + 1, panel_.embedded.end(),
                            [&](const X11Window& other) { return holds(icon.client, centreOf(other.client)); });
            if (holdsAnother) continue;
            bool isTold = false;
            for (PanelItem& item : items_) {
                if (!holds(icon.client, centreOf(item.node.frame))) continue;
                isTold = true;
                if (item.node.role == Role::icon) nameByIcon(item.node, icon);
            }
            const AxRect frame = intersection(icon.client, panel_.window.clickable);
            if (isTold || frame.isNull() || frame.isEmpty()) continue;
            Node node = made(Role::icon, icon.number, frame, kIconWord);
            nameByIcon(node, icon);
            items_.push_back({std::move(node), PanelRow::tray});
        }
    }

    static void nameByIcon(Node& node, const X11Window& icon) {
        if (node.name.empty()) node.name = icon.title.empty() ? icon.windowClass : icon.title;
        if (!mentions(node.name, icon.windowInstance)) add(node.description, icon.windowInstance, ". ");
    }

    // The buttons of windows in a panel that tells only where they are.
    void addTasks() {
        std::vector<PanelItem> tasks;
        for (const X11Window& client : around_.clients) {
            if (!client.iconGeometry || !holds(panel_.window.clickable, centreOf(*client.iconGeometry))) continue;
            const auto same = std::ranges::find_if(
                tasks, [&](const PanelItem& each) { return isNear(each.node.frame, *client.iconGeometry); });
            const bool isNew = same == tasks.end();
            if (isNew)
                tasks.push_back({made(Role::pushButton, client.number,
                                      intersection(*client.iconGeometry, panel_.window.clickable), kButtonWord),
                                 PanelRow::dock});
            Node& node = isNew ? tasks.back().node : same->node;
            add(node.name, client.title, ", ");
            if (!mentions(node.name, client.windowClass)) add(node.description, client.windowClass, ", ");
        }
        std::ranges::move(tasks, std::back_inserter(items_));
    }

    // Status items that are parked, since there is no room for them, stand at the screen's left edge or beyond it, and
    // are no candidates. What a panel shows there gives up its first column of pixels to be told from those.
    void keepOffTheEdge(PanelItem& item) const {
        AxRect& frame = item.node.frame;
        if (item.row == PanelRow::dock || frame.minX() > panel_.window.clickable.minX() || frame.width() <= 1) return;
        frame = {{frame.minX() + 1, frame.minY()}, {frame.width() - 1, frame.height()}};
    }

    static Node made(Role role, std::uint32_t window, AxRect frame, std::string_view word) {
        Node node;
        node.reference.path = "/window/" + std::to_string(window);
        node.role = role;
        node.roleWord = word;
        node.frame = frame;
        node.shows = true;
        return node;
    }

    const PanelSeen& panel_;
    const PanelSurroundings& around_;
    const NodeTree& nodes_;
    std::vector<int> found_;
    std::vector<int> counts_;  // of what was found below each node
    std::vector<PanelItem> items_;
};

}  // namespace

bool hasNamelessButtons(const NodeTree& nodes) { return !namelessRows(nodes).empty(); }

std::vector<PanelItem> panelItems(const PanelSeen& panel, const PanelSurroundings& around) {
    return Reader(panel, around).read();
}

}  // namespace tarvix::atspi
