#include "linux/atspi/TreeFetch.h"

#include <algorithm>

#include "linux/atspi/LongList.h"
#include "linux/atspi/ManagedTable.h"
#include "linux/atspi/Popups.h"
#include "linux/atspi/Replies.h"
#include "linux/atspi/TreeFetchNames.h"

namespace tarvix::atspi {

namespace {

constexpr std::size_t kLargeTree = 3'000;
constexpr std::size_t kMostBoxesAtOnce = 800;
constexpr std::size_t kLongList = 64;
// No screen shows more. A tree that goes on for ever ends here, before a walk of it runs out of stack.
constexpr std::size_t kMostNodes = 30'000;
constexpr int kDeepest = 500;

// A match rule, which the call doesn't look at, and the properties wanted.
int appendTreeArguments(sd_bus_message* m) {
    return sd_bus_message_append(m, "(aiia{ss}iaiiasib)as", 2, 0, 0, 1, 0, 1, 4, 0, 0, 0, 0, 1, 0, 1, 0, 3,
                                 "AccessibleId", "Attributes", "Component.ScreenExtents");
}

bool isScroller(Role role) {
    return role == Role::scrollPane || role == Role::viewport || role == Role::documentWeb ||
           role == Role::documentFrame;
}

// GTK 4 has no states for what scrolling or a hidden page leaves of its lists; their boxes tell.
bool isGtk4Clipper(Role role) {
    return isScroller(role) || role == Role::list || role == Role::treeTable || role == Role::table ||
           role == Role::listBox;
}

// The blanks between the elements of a page are objects in Chromium, and so are the bullets of its lists.
bool saysNothing(const Node& node) {
    return node.inWebContent && node.role == Role::staticText && node.childCount == 0 && isBullet(node.name);
}

// LibreOffice has a menu bar of its own below GTK's, which is never shown.
bool isUndrawnMenuBar(const Node& node) { return node.role == Role::menuBar && node.raw && node.raw->height == 0; }

}  // namespace

const Manner& mannerOf(Toolkit toolkit) {
    static constexpr Manner gtk3{true, true, true, false, false, false, true, true};
    // Not what it is made of: the parents that LibreOffice's items name are not those of its tree.
    static constexpr Manner atk{true, true, true, false, false, false, false, false};
    static constexpr Manner web{true, false, true, false, true, false, false, false};
    // Its lists and tables make an object for each of their cells that is listed.
    static constexpr Manner java{true, true, true, false, true, false, false, false};
    static constexpr Manner gtk4{true, true, false, false, false, true, true, false};
    static constexpr Manner careful{false, true, true, true, false, false, false, false};
    switch (toolkit) {
        case Toolkit::gtk3:
            return gtk3;
        case Toolkit::libreOffice:
        case Toolkit::clutter:
            return atk;
        case Toolkit::chromium:
        case Toolkit::gecko:
            return web;
        case Toolkit::java:
            return java;
        case Toolkit::gtk4:
            return gtk4;
        case Toolkit::qt:
        case Toolkit::other:
            break;
    }
    return careful;
}

TreeFetch::TreeFetch(Pipeline& pipeline, const Application& application, bool direct, const Placement& placement,
                     AxRect visible, std::map<Role, std::string> roleWords, Paddings paddings)
    : pipeline_(pipeline),
      application_(application),
      direct_(direct),
      manner_(mannerOf(application.toolkit)),
      placement_(placement),
      visible_(visible),
      roleWords_(std::move(roleWords)),
      paddings_(std::move(paddings)) {}

void TreeFetch::run(const Reference& frame, Bulk bulk) {
    if (manner_.hasItems && bulk == Bulk::allowed) askSeed(frame);
    visit(add(frame, -1, visible_, Kind::ordinary));
    pipeline_.run();
    if (tree_.empty()) return;
    if (application_.toolkit == Toolkit::gtk4) {
        dropHiddenPages();
        BorderBoxes::widen(pipeline_, tree_, paddings_);
        for (std::size_t i = 1; i < tree_.size(); ++i) place(static_cast<int>(i));
    }
    if (application_.toolkit == Toolkit::libreOffice) straightenLibreOffice();
}

void TreeFetch::addPopups(const std::vector<Reference>& popups) {
    if (tree_.empty() || popups.empty()) return;
    visitChildren(0, popups, kEverywhere, Kind::ordinary);
    pipeline_.run();
}

void TreeFetch::askSeed(const Reference& frame) {
    Call items = callTo(frame, "org.a11y.atspi.Cache", "GetItems");
    items.path = "/org/a11y/atspi/cache";
    pipeline_.send(std::move(items), [this, frame](sd_bus_message* reply) {
        seed_ = readItems(reply);
        // GetTree tells of what is hidden as well; in a large tree that costs more than asking for what shows.
        if (!manner_.hasTree || seed_.size() > kLargeTree) return;
        Call tree = callTo(frame, "org.a11y.atspi.Collection", "GetTree");
        tree.append = appendTreeArguments;
        pipeline_.send(std::move(tree), [this](sd_bus_message* tree_reply) { addTree(tree_reply, seed_); });
    });
    pipeline_.run();
    if (!manner_.hasTree) askSeedBoxes(frame);
}

// All boxes at once: asked level by level, a small window costs more waiting than answering.
void TreeFetch::askSeedBoxes(const Reference& frame) {
    std::vector<Reference> below{frame};
    std::unordered_set<std::string> listed{frame.path};
    for (std::size_t i = 0; i < below.size() && below.size() <= kMostBoxesAtOnce; ++i) {
        const auto item = seed_.find(below[i].path);
        if (item == seed_.end()) continue;
        for (const Reference& child : item->second.children)
            if (listed.insert(child.path).second) below.push_back(child);
    }
    if (below.size() > kMostBoxesAtOnce) return;
    for (const Reference& each : below) {
        const auto item = seed_.find(each.path);
        if (item == seed_.end() || item->second.role == Role::invalid) continue;
        Call call = callTo(each, kComponent, "GetExtents");
        call.signature = "u";
        call.integers[0] = static_cast<std::int32_t>(coordinatesOf(application_.toolkit));
        pipeline_.send(std::move(call), [&known = item->second](sd_bus_message* reply) {
            known.box = readBox(reply);
            known.hasBox = true;
        });
    }
    pipeline_.run();
}

void TreeFetch::takeFromSeed(int index, const SeedItem& item) {
    const auto i = static_cast<std::size_t>(index);
    Node& node = tree_[i];
    node.role = item.role;
    node.states = item.states;
    node.interfaces = item.interfaces;
    node.childCount = item.childCount;
    node.name = item.name;
    node.description = item.description;
    node.identifier = item.identifier;
    node.attributes = item.attributes;
    if (item.hasBox) {
        node.raw = item.box;
        work_[i].boxAsked = true;
        place(index);
    }
    work_[i].seeded = true;
    if (static_cast<std::int32_t>(item.children.size()) == item.childCount) work_[i].children = item.children;
}

Call TreeFetch::callTo(const Reference& reference, const char* interface, const char* member) const {
    Call call;
    if (!direct_) call.destination = reference.bus;
    call.path = reference.path;
    call.interface = interface;
    call.member = member;
    return call;
}

// -1 when the object is not to be visited.
int TreeFetch::add(const Reference& reference, int parent, AxRect clip, Kind kind) {
    const int depth = parent < 0 ? 0 : work_[static_cast<std::size_t>(parent)].depth + 1;
    if (tree_.size() >= kMostNodes || depth > kDeepest) return -1;
    // An object of another process (a plug) can't be called on the application's own socket.
    if (direct_ && reference.bus != application_.bus) return -1;
    if (leftOut_.contains(reference.bus)) return -1;
    if (!met_.insert(reference.bus + reference.path).second) return -1;
    Node& node = tree_.emplace_back();
    node.reference = reference;
    node.parent = parent;
    if (parent >= 0) {
        const Node& above = tree_[static_cast<std::size_t>(parent)];
        node.inWebContent = above.inWebContent || above.role == Role::documentWeb || above.role == Role::documentFrame;
        node.inTitleBar = above.inTitleBar || above.role == Role::titleBar;
        node.inMenuBar = above.role == Role::menuBar;
    }
    Work& work = work_.emplace_back();
    work.clip = clip;
    work.depth = depth;
    work.kind = kind;
    return static_cast<int>(tree_.size()) - 1;
}

void TreeFetch::ask(int index, const char* interface, const char* member, std::function<void(sd_bus_message*)> answer,
                    void (TreeFetch::*next)(int)) {
    const auto i = static_cast<std::size_t>(index);
    ++work_[i].awaited;
    pipeline_.send(callTo(tree_[i].reference, interface, member),
                   [this, index, i, answer = std::move(answer), next](sd_bus_message* reply) {
                       answer(reply);
                       if (--work_[i].awaited == 0) (this->*next)(index);
                   });
}

void TreeFetch::askProperty(int index, const char* interface, const char* property,
                            std::function<void(sd_bus_message*)> answer, void (TreeFetch::*next)(int)) {
    const auto i = static_cast<std::size_t>(index);
    ++work_[i].awaited;
    Call call = callTo(tree_[i].reference, kProperties, "Get");
    call.signature = "ss";
    call.texts[0] = interface;
    call.texts[1] = property;
    pipeline_.send(std::move(call), [this, index, i, answer = std::move(answer), next](sd_bus_message* reply) {
        answer(reply);
        if (--work_[i].awaited == 0) (this->*next)(index);
    });
}

void TreeFetch::visit(int index) {
    if (index < 0) return;
    // While everything else of this step is sent, no step may be finished by an early answer.
    Work& work = work_[static_cast<std::size_t>(index)];
    ++work.awaited;
    const Reference& reference = tree_[static_cast<std::size_t>(index)].reference;
    const auto seed = reference.bus == application_.bus ? seed_.find(reference.path) : seed_.end();
    if (seed != seed_.end() && seed->second.role != Role::invalid)
        takeFromSeed(index, seed->second);
    else
        askState(index);
    if (!work_[static_cast<std::size_t>(index)].boxAsked && asksBoxFirst(index)) askExtents(index);
    if (--work_[static_cast<std::size_t>(index)].awaited == 0) askFields(index);
}

void TreeFetch::askState(int index) {
    const auto i = static_cast<std::size_t>(index);
    ask(
        index, kAccessible, "GetState",
        [this, i](sd_bus_message* reply) {
            const std::optional<std::uint64_t> states = readStates(reply);
            work_[i].refused = work_[i].refused || !states;
            tree_[i].states = states.value_or(0);
        },
        &TreeFetch::askFields);
}

void TreeFetch::askExtents(int index) {
    const auto i = static_cast<std::size_t>(index);
    ++work_[i].awaited;
    work_[i].boxAsked = true;
    Call call = callTo(tree_[i].reference, kComponent, "GetExtents");
    call.signature = "u";
    call.integers[0] = static_cast<std::int32_t>(coordinatesOf(application_.toolkit));
    const bool early = asksBoxFirst(index);
    pipeline_.send(std::move(call), [this, index, i, early](sd_bus_message* reply) {
        tree_[i].raw = readBox(reply);
        place(index);
        if (--work_[i].awaited == 0) early ? askFields(index) : onFields(index);
    });
}

// Where the states don't tell what scrolling or a hidden page leaves, the box must be known before anything else is
// asked.
bool TreeFetch::asksBoxFirst(int index) const {
    return manner_.clipsByEveryBox || !manner_.showingIsTold ||
           work_[static_cast<std::size_t>(index)].kind == Kind::cell;
}

void TreeFetch::place(int index) {
    Node& node = tree_[static_cast<std::size_t>(index)];
    if (node.raw && isSane(*node.raw)) node.frame = placement_.toRoot(*node.raw, node.inWebContent);
}

bool TreeFetch::showsByState(const Node& node) const {
    if (node.has(State::defunct)) return false;
    // The place of another process's part (a socket of GTK 3) says now and then that it has no state at all.
    if (!direct_ && application_.toolkit == Toolkit::gtk3 && node.states == 0) return true;
    return manner_.showingIsTold ? node.has(State::showing) : node.has(State::visible) || node.has(State::showing);
}

// Whether some of the object's box is left by the boxes above it. What has no box of its own (an empty container) is
// gone through, since what it holds may have one.
bool TreeFetch::isWithinClip(int index) const {
    const Node& node = tree_[static_cast<std::size_t>(index)];
    if (!node.raw) return true;
    // A part of another process (a plug of GTK 3) that has been missed by its socket doesn't know where it is; what is
    // in it does.
    const bool isPlug = !direct_ && node.parent == 0 && node.reference.bus != application_.bus;
    if (!isSane(*node.raw)) return isPlug;
    // A cell holds nothing else, and one without a size is a column or a part of a cell that is hidden.
    if (work_[static_cast<std::size_t>(index)].kind == Kind::cell && isEmpty(*node.raw)) return false;
    // What GTK 4 doesn't show has no size, once it has been hidden or before it was ever laid out.
    if (application_.toolkit == Toolkit::gtk4 && isEmpty(*node.raw)) return false;
    return isEmpty(*node.raw) || isSurface(node) || intersects(node.frame, work_[static_cast<std::size_t>(index)].clip);
}

// GTK 3 gives a page whose tab isn't shown a box of -1 all over, and so does Firefox with the second combo box that it
// hangs a page's open list on. What they hold is there all the same.
void TreeFetch::openUnplaced(int index) {
    Node& node = tree_[static_cast<std::size_t>(index)];
    const bool isTab = application_.toolkit == Toolkit::gtk3 && node.role == Role::pageTab;
    const bool isOpenList =
        application_.toolkit == Toolkit::gecko && node.role == Role::comboBox && node.has(State::expanded);
    if ((!isTab && !isOpenList) || !node.raw || isSane(*node.raw)) return;
    node.role = Role::panel;
    node.raw.reset();
}

void TreeFetch::askFields(int index) {
    const auto i = static_cast<std::size_t>(index);
    openUnplaced(index);
    Node& node = tree_[i];
    const bool isFrame = index == 0;
    if (work_[i].refused || (!isFrame && (!showsByState(node) || !isWithinClip(index)))) return;
    node.shows = true;
    ++work_[i].awaited;
    if (!work_[i].seeded) askOwnFields(index);
    if (!work_[i].boxAsked) askExtents(index);
    const bool childrenKnown =
        work_[i].seeded && static_cast<std::int32_t>(work_[i].children.size()) == node.childCount;
    if (!manner_.childrenByIndex && work_[i].kind == Kind::ordinary && !node.has(State::managesDescendants) &&
        !childrenKnown)
        askChildren(index, &TreeFetch::onFields);
    if (--work_[i].awaited == 0) onFields(index);
}

// Everything but the box and the children.
void TreeFetch::askOwnFields(int index) {
    const auto i = static_cast<std::size_t>(index);
    const Node& node = tree_[i];
    ask(
        index, kAccessible, "GetRole",
        [this, i](sd_bus_message* reply) { tree_[i].role = static_cast<Role>(readUnsigned(reply).value_or(0)); },
        &TreeFetch::onFields);
    if (manner_.allProperties) {
        ++work_[i].awaited;
        Call call = callTo(node.reference, kProperties, "GetAll");
        call.signature = "s";
        call.texts[0] = kAccessible;
        pipeline_.send(std::move(call), [this, index, i](sd_bus_message* reply) {
            readAllProperties(reply, tree_[i]);
            if (--work_[i].awaited == 0) onFields(index);
        });
    } else {
        askProperty(
            index, kAccessible, "Name",
            [this, i](sd_bus_message* reply) { tree_[i].name = readVariantText(reply).value_or(""); },
            &TreeFetch::onFields);
        if (work_[i].kind == Kind::ordinary)
            askProperty(
                index, kAccessible, "Description",
                [this, i](sd_bus_message* reply) { tree_[i].description = readVariantText(reply).value_or(""); },
                &TreeFetch::onFields);
    }
    if (manner_.asksInterfaces && work_[i].kind == Kind::ordinary)
        ask(
            index, kAccessible, "GetInterfaces",
            [this, i](sd_bus_message* reply) { tree_[i].interfaces = readInterfaces(reply); }, &TreeFetch::onFields);
}

void TreeFetch::askChildren(int index, void (TreeFetch::*next)(int)) {
    const auto i = static_cast<std::size_t>(index);
    ask(
        index, kAccessible, "GetChildren",
        [this, i](sd_bus_message* reply) { work_[i].children = readReferences(reply); }, next);
}

void TreeFetch::onFields(int index) {
    const auto i = static_cast<std::size_t>(index);
    openUnplaced(index);
    Node& node = tree_[i];
    if (index != 0 && (node.role == Role::invalid || !isWithinClip(index) ||
                       (application_.toolkit == Toolkit::chromium && saysNothing(node)) ||
                       (application_.toolkit == Toolkit::libreOffice && isUndrawnMenuBar(node)))) {
        node.shows = false;
        return;
    }
    // Chromium lists two unnamed root views beside the frame's own content; only what shows is gone into, and those do.
    askDetails(index);
    descend(index);
}

void TreeFetch::descend(int index) {
    const auto i = static_cast<std::size_t>(index);
    Node& node = tree_[i];
    if (manner_.asksInterfaces && node.has(State::managesDescendants)) {
        if (node.offers(interface::table))
            ManagedTable::fetch(*this, index);
        else
            askChildren(index, &TreeFetch::onCells);  // an icon view
        return;
    }
    if (isSocket(index)) {
        askPlug(index);
        return;
    }
    // GTK 3 makes a cell of several, one for each thing that it draws in it.
    if (work_[i].kind == Kind::cell && application_.toolkit == Toolkit::gtk3 && node.childCount > 0) {
        askChildren(index, &TreeFetch::onCells);
        return;
    }
    if (!manner_.childrenByIndex) {
        onChildren(index);
        return;
    }
    if (node.childCount <= 0) return;
    if (static_cast<std::size_t>(node.childCount) < kLongList)
        askChildren(index, &TreeFetch::onChildren);
    else
        LongList::fetch(*this, index);
}

// Where another process has put its part. It is counted as a child, and left out of the list of children.
bool TreeFetch::isSocket(int index) const {
    const Node& node = tree_[static_cast<std::size_t>(index)];
    return !direct_ && application_.toolkit == Toolkit::gtk3 && node.role == Role::filler && node.childCount == 1 &&
           work_[static_cast<std::size_t>(index)].children.empty();
}

void TreeFetch::askPlug(int index) {
    const auto i = static_cast<std::size_t>(index);
    ++work_[i].awaited;
    Call call = callTo(tree_[i].reference, kAccessible, "GetChildAtIndex");
    call.signature = "i";
    pipeline_.send(std::move(call), [this, index, i](sd_bus_message* reply) {
        if (auto plug = readReference(reply)) work_[i].children.push_back(std::move(*plug));
        if (--work_[i].awaited == 0) onChildren(index);
    });
}

void TreeFetch::onChildren(int index) {
    visitChildren(index, work_[static_cast<std::size_t>(index)].children, clipBelow(index), Kind::ordinary);
}

void TreeFetch::onCells(int index) {
    visitChildren(index, work_[static_cast<std::size_t>(index)].children, clipBelow(index), Kind::cell);
}

void TreeFetch::visitChildren(int index, const std::vector<Reference>& children, AxRect clip, Kind kind) {
    std::vector<int> added;
    for (const Reference& child : children) {
        const int at = add(child, index, clip, kind);
        if (at < 0) continue;
        added.push_back(at);
        tree_[static_cast<std::size_t>(index)].children.push_back(at);
    }
    for (const int each : added) visit(each);
}

AxRect TreeFetch::clipBelow(int index) const {
    const Node& node = tree_[static_cast<std::size_t>(index)];
    const AxRect clip = work_[static_cast<std::size_t>(index)].clip;
    if (index == 0 || !node.raw || isEmpty(*node.raw)) return clip;
    if (isSurface(node) || opensPopup(node) || isPopover(node)) return kEverywhere;
    const bool clips = manner_.clipsByEveryBox || (node.inWebContent && node.role == Role::listBox) ||
                       isScroller(node.role) || (!manner_.showingIsTold && isGtk4Clipper(node.role));
    return clips ? intersection(clip, node.frame) : clip;
}

}  // namespace tarvix::atspi
