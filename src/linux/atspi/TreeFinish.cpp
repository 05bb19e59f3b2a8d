// What is made of a tree once all of it has been fetched: what a toolkit tells wrongly or not at all is put right.
#include <algorithm>

#include "linux/atspi/JoinedParts.h"
#include "linux/atspi/Popups.h"
#include "linux/atspi/Replies.h"
#include "linux/atspi/TableNumbering.h"
#include "linux/atspi/TitleStrip.h"
#include "linux/atspi/Translation.h"
#include "linux/atspi/TreeFetch.h"
#include "linux/atspi/TreeFetchNames.h"

namespace tarvix::atspi {

namespace {

constexpr double kWidestPopoverBorder = 64;

}  // namespace

void TreeFetch::finish() {
    if (tree_.empty()) return;
    nameTabs();
    if (application_.toolkit == Toolkit::gtk3 || application_.toolkit == Toolkit::gtk4)
        joinParts(tree_, application_.toolkit);
    addTextElements();
    markTitleBar();
    if (application_.toolkit == Toolkit::java) heightenHeaders();
    if (application_.toolkit == Toolkit::libreOffice) {
        describeButtons();
        addHeadings();
    }
    clipFrames();
}

// GTK 4 keeps the pages of a stack or notebook that aren't shown, VISIBLE and with the boxes they once had. A hit test
// at the middle of the stack finds the page that shows.
void TreeFetch::dropHiddenPages() {
    struct Stack {
        int index;
        std::vector<int> pages;
        Reference hit;
    };
    std::vector<Stack> stacks;
    for (std::size_t i = 0; i < tree_.size(); ++i) {
        Stack stack{static_cast<int>(i), {}, {}};
        for (const int child : tree_[i].children) {
            const Node& page = tree_[static_cast<std::size_t>(child)];
            if (page.shows && page.role == Role::panel && !page.offers(interface::component))
                stack.pages.push_back(child);
        }
        if (stack.pages.size() > 1) stacks.push_back(std::move(stack));
    }
    for (Stack& stack : stacks) {
        const Node& node = tree_[static_cast<std::size_t>(stack.index)];
        const AxPoint centre{node.frame.origin.x + node.frame.size.width / 2,
                             node.frame.origin.y + node.frame.size.height / 2};
        const RawBox at = placement_.fromRoot(centre, false);
        Call call = callTo(tree_[0].reference, kComponent, "GetAccessibleAtPoint");
        call.signature = "iiu";
        call.integers[0] = at.x;
        call.integers[1] = at.y;
        call.integers[2] = static_cast<std::int32_t>(Coordinates::window);
        pipeline_.send(std::move(call), [&stack](sd_bus_message* reply) {
            if (auto hit = readReference(reply)) stack.hit = *hit;
        });
    }
    pipeline_.run();
    for (const Stack& stack : stacks) {
        const auto found =
            std::find_if(tree_.begin(), tree_.end(), [&](const Node& n) { return n.reference == stack.hit; });
        if (found == tree_.end()) continue;
        int at = static_cast<int>(found - tree_.begin());
        while (at >= 0 && tree_[static_cast<std::size_t>(at)].parent != stack.index)
            at = tree_[static_cast<std::size_t>(at)].parent;
        if (at < 0) continue;
        for (const int page : stack.pages)
            if (page != at) tree_[static_cast<std::size_t>(page)].shows = false;
    }
}

bool TreeFetch::isPopover(const Node& node) const { return atspi::isPopover(application_.toolkit, node); }

bool TreeFetch::hasPopovers() const {
    return std::any_of(tree_.begin(), tree_.end(), [this](const Node& node) { return node.shows && isPopover(node); });
}

void TreeFetch::placePopovers(const std::vector<AxRect>& windows) {
    for (std::size_t i = 1; i < tree_.size(); ++i)
        if (tree_[i].shows && isPopover(tree_[i])) placePopover(static_cast<int>(i), windows);
}

// GTK 4 reports what is in a popover as if that stood on its parent's origin. In truth it is a window of its own, which
// is known by its size: the popover's content and as much border at least as there is before the content.
void TreeFetch::placePopover(int index, const std::vector<AxRect>& windows) {
    Node& popover = tree_[static_cast<std::size_t>(index)];
    const AxRect told = popover.frame;
    const AxPoint corner = tree_[static_cast<std::size_t>(popover.parent)].frame.origin;
    const Size least{told.maxX() - corner.x, told.maxY() - corner.y};
    const auto excess = [&](const AxRect& window) {
        const double width = window.size.width - least.width, height = window.size.height - least.height;
        return width < -1 || height < -1 ? kEverywhere.size.width : width + height;
    };
    const auto best = std::min_element(windows.begin(), windows.end(),
                                       [&](const AxRect& a, const AxRect& b) { return excess(a) < excess(b); });
    if (best == windows.end() || excess(*best) > kWidestPopoverBorder) return;
    const double dx = best->origin.x - corner.x, dy = best->origin.y - corner.y;
    std::vector<int> below{index};
    while (!below.empty()) {
        const auto at = static_cast<std::size_t>(below.back());
        below.pop_back();
        tree_[at].frame.origin.x += dx;
        tree_[at].frame.origin.y += dy;
        if (at != static_cast<std::size_t>(index)) {
            work_[at].clip.origin.x += dx;
            work_[at].clip.origin.y += dy;
        }
        below.insert(below.end(), tree_[at].children.begin(), tree_[at].children.end());
    }
    popover.frame = *best;
    work_[static_cast<std::size_t>(index)].clip = kEverywhere;
}

// The drawn-by-itself part of a LibreOffice window reports boxes that are off by the height of the menu bar until a
// pointer event has reached the window (7.4 and 25.2): the GTK panel around its root pane tells by how much.
// Its parts that are GTK's own are where they say.
void TreeFetch::straightenLibreOffice() {
    for (std::size_t i = 0; i < tree_.size(); ++i) {
        const Node& pane = tree_[i];
        if (pane.role != Role::rootPane || pane.parent < 0) continue;
        const Node& panel = tree_[static_cast<std::size_t>(pane.parent)];
        if (!isGtkPart(panel) || !panel.raw || !pane.raw) continue;
        const double dx = panel.frame.origin.x - pane.frame.origin.x;
        const double dy = panel.frame.origin.y - pane.frame.origin.y;
        std::vector<int> below{static_cast<int>(i)};
        while (!below.empty()) {
            Node& node = tree_[static_cast<std::size_t>(below.back())];
            below.pop_back();
            if (isGtkPart(node)) continue;
            node.frame.origin.x += dx;
            node.frame.origin.y += dy;
            below.insert(below.end(), node.children.begin(), node.children.end());
        }
    }
}

void TreeFetch::addTextElements() {
    const std::size_t count = tree_.size();
    for (std::size_t i = 0; i < count; ++i) {
        Node& node = tree_[i];
        if (!node.shows) continue;
        if (!node.ownTexts.empty()) {
            addOwnTexts(static_cast<int>(i));
            continue;
        }
        std::erase_if(node.children, [this](int c) { return !tree_[static_cast<std::size_t>(c)].shows; });
        if (needsTextElement(node, !node.children.empty()))
            addTextElement(static_cast<int>(i), ownText(node), node.frame, 0);
        else if (application_.toolkit == Toolkit::qt)
            if (const std::optional<AxRect> strip = titleStrip(tree_, static_cast<int>(i)))
                addTextElement(static_cast<int>(i), node.name, *strip, 0);
    }
    for (Node& node : tree_)
        if (const auto word = roleWords_.find(node.role); word != roleWords_.end()) node.roleWord = word->second;
}

// The whole line answers a click.
bool TreeFetch::isOption(int index) const {
    const Node& node = tree_[static_cast<std::size_t>(index)];
    return node.role == Role::listItem && node.parent >= 0 &&
           tree_[static_cast<std::size_t>(node.parent)].role == Role::listBox;
}

// Each between the children where it is read. What scrolling has left of the element need not hold all of them.
void TreeFetch::addOwnTexts(int index) {
    const auto i = static_cast<std::size_t>(index);
    std::size_t added = 0;
    for (const auto& [stretch, box] : tree_[i].ownTexts) {
        if (box && !intersects(*box, work_[i].clip)) continue;
        const std::size_t place = static_cast<std::size_t>(stretch.childrenBefore) + added;
        addTextElement(index, stretch.text, isOption(index) ? tree_[i].frame : box.value_or(tree_[i].frame), place);
        ++added;
    }
    std::erase_if(tree_[i].children, [this](int c) { return !tree_[static_cast<std::size_t>(c)].shows; });
}

void TreeFetch::addTextElement(int index, const std::string& text, AxRect frame, std::size_t place) {
    const auto i = static_cast<std::size_t>(index);
    Node& node = tree_[i];
    Node element;
    element.reference = node.reference;
    element.parent = index;
    element.role = node.role;
    element.states = node.states;
    element.text = text;
    element.frame = frame;
    element.raw = node.raw;
    element.shows = element.synthetic = true;
    element.inWebContent = node.inWebContent;
    node.children.insert(node.children.begin() + static_cast<std::ptrdiff_t>(std::min(place, node.children.size())),
                         static_cast<int>(tree_.size()));
    tree_.push_back(std::move(element));
    work_.emplace_back().clip = work_[i].clip;
}

// GTK 4.8 calls every tab "Tab" and has its title in a label within.
void TreeFetch::nameTabs() {
    if (application_.toolkit != Toolkit::gtk4) return;
    for (Node& tab : tree_) {
        if (tab.role != Role::pageTab || tab.name != "Tab" || tab.children.empty()) continue;
        if (const Node& label = tree_[static_cast<std::size_t>(tab.children.front())]; label.role == Role::label)
            tab.name = label.name;
    }
}

// What stands at the top of a window that draws its own title bar. GTK has no role for the bar itself.
void TreeFetch::markTitleBar() {
    constexpr double kTallestBar = 64;
    for (Node& node : tree_) node.inTitleBar = node.inTitleBar || node.frame.maxY() <= visible_.minY() + kTallestBar;
}

// The buttons of a side bar are pictures whose words are those of the panel around each.
void TreeFetch::describeButtons() {
    for (Node& node : tree_) {
        if ((node.role != Role::toggleButton && node.role != Role::pushButton) || node.parent < 0) continue;
        const Node& panel = tree_[static_cast<std::size_t>(node.parent)];
        if (node.name.empty() && node.description.empty() && panel.role == Role::panel && panel.childCount == 1)
            node.description = panel.description;
    }
}

// The headings of a sheet's columns and rows have no objects. They are between the corner of the scroll pane and that
// of the sheet, as wide and as high as the cells, which have them in their names.
void TreeFetch::addHeadings() {
    const std::size_t count = tree_.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Node& table = tree_[i];
        if (table.role != Role::table || table.children.empty() || table.parent < 0) continue;
        const int sheet = table.parent, pane = tree_[static_cast<std::size_t>(sheet)].parent;
        if (tree_[static_cast<std::size_t>(sheet)].role != Role::documentSpreadsheet || pane < 0) continue;
        const AxPoint corner = tree_[static_cast<std::size_t>(pane)].frame.origin, first = table.frame.origin;
        const std::vector<int> cells = table.children;
        for (const int at : cells) {
            const auto [name, cell] =
                std::pair(tree_[static_cast<std::size_t>(at)].name, tree_[static_cast<std::size_t>(at)].frame);
            if (!parseCellName(name)) continue;
            const std::size_t letters = name.find_first_of("0123456789");
            if (cell.minY() <= first.y)
                addTextElement(sheet, name.substr(0, letters),
                               {{cell.minX(), corner.y}, {cell.width(), first.y - corner.y}}, std::string::npos);
            if (cell.minX() <= first.x)
                addTextElement(sheet, name.substr(letters),
                               {{corner.x, cell.minY()}, {first.x - corner.x, cell.height()}}, std::string::npos);
        }
    }
}

// Java's bridge gives the headers of a table's columns no height; it is that of their bar.
void TreeFetch::heightenHeaders() {
    for (Node& node : tree_) {
        if (node.role != Role::label || node.parent < 0 || node.frame.size.height > 0) continue;
        const AxRect bar = tree_[static_cast<std::size_t>(node.parent)].frame;
        node.frame.origin.y = bar.origin.y;
        node.frame.size.height = bar.size.height;
    }
}

// A control that is half scrolled away is where its visible half is: a click at the middle of its whole box would miss
// it.
void TreeFetch::clipFrames() {
    for (std::size_t i = 1; i < tree_.size(); ++i) {
        Node& node = tree_[i];
        // The page of a stack has no box in GTK 4; it is where the stack is.
        if (!node.raw && node.parent >= 0 && !node.synthetic)
            node.frame = tree_[static_cast<std::size_t>(node.parent)].frame;
        if (!node.shows || !node.raw || isEmpty(*node.raw) || isSurface(node)) continue;
        if (const AxRect rest = intersection(node.frame, work_[i].clip); !rest.isNull()) node.frame = rest;
    }
}

}  // namespace tarvix::atspi
