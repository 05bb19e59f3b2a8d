#include "linux/atspi/TreeFetch.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "linux/atspi/JoinedParts.h"
#include "linux/atspi/LongList.h"
#include "linux/atspi/ManagedTable.h"
#include "linux/atspi/Popups.h"
#include "linux/atspi/Replies.h"
#include "linux/atspi/TableNumbering.h"
#include "linux/atspi/TitleStrip.h"
#include "linux/atspi/Translation.h"

namespace tarvix::atspi {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kComponent = "org.a11y.atspi.Component";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kText = "org.a11y.atspi.Text";
constexpr std::string_view kEmbedded = "\xEF\xBF\xBC";  // U+FFFC stands for a child in a text

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

constexpr AxRect kEverywhere{{-1e6, -1e6}, {2e6, 2e6}};
constexpr double kWidestPopoverBorder = 64;

constexpr std::int32_t kToTheEnd = -1;

bool mayBeLong(const Node& node) {
    return node.has(State::multiLine) || node.role == Role::terminal || node.role == Role::documentText;
}

// The blanks between the elements of a page are objects in Chromium, and so are the bullets of its lists.
bool saysNothing(const Node& node) {
    return node.inWebContent && node.role == Role::staticText && node.childCount == 0 && isBullet(node.name);
}

// In LibreOffice, whose other parts are drawn by itself.
bool isGtkPart(const Node& node) {
    const std::string* toolkit = node.attribute("toolkit");
    return toolkit && *toolkit == "gtk";
}

// LibreOffice has a menu bar of its own below GTK's, which is never shown.
bool isUndrawnMenuBar(const Node& node) { return node.role == Role::menuBar && node.raw && node.raw->height == 0; }

bool isEmpty(RawBox box) { return box.width <= 0 || box.height <= 0; }

AxRect intersection(AxRect a, AxRect b) {
    if (!intersects(a, b)) return AxRect::null();
    const double x = std::max(a.minX(), b.minX());
    const double y = std::max(a.minY(), b.minY());
    return {{x, y}, {std::min(a.maxX(), b.maxX()) - x, std::min(a.maxY(), b.maxY()) - y}};
}

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

void TreeFetch::askDetails(int index) {
    const auto i = static_cast<std::size_t>(index);
    const Node& node = tree_[i];
    askRoleWord(index);
    if (wantsText(application_.toolkit, node)) mayBeLong(node) ? askTextLength(index) : askText(index, kToTheEnd);
    if (node.role == Role::comboBox && node.childCount > 0) {
        if (node.inWebContent) askSelectedChild(index);
        // By its name, GTK 3 may mean what another column of its list says, such as the name of a picture.
        if (application_.toolkit == Toolkit::gtk3 && !node.name.empty()) askSelectedIn(node.reference, index);
    }
    if (wantsValue(node)) {
        Call call = callTo(node.reference, kProperties, "Get");
        call.signature = "ss";
        call.texts[0] = "org.a11y.atspi.Value";
        call.texts[1] = "CurrentValue";
        pipeline_.send(std::move(call),
                       [this, i](sd_bus_message* reply) { tree_[i].value = readVariantDouble(reply); });
    }
    if (wantsUri(application_.toolkit, node)) {
        Call call = callTo(node.reference, "org.a11y.atspi.Hyperlink", "GetURI");
        call.signature = "i";
        pipeline_.send(std::move(call),
                       [this, i](sd_bus_message* reply) { tree_[i].uri = readText(reply, kLongestName).value_or(""); });
    }
    if (manner_.asksAttributes &&
        (node.role == Role::entry || node.role == Role::text || node.role == Role::passwordText))
        pipeline_.send(callTo(node.reference, kAccessible, "GetAttributes"),
                       [this, i](sd_bus_message* reply) { tree_[i].attributes = readAttributes(reply); });
}

// A text that may be a whole document is asked for up to a length only, and that length must not be more than there is.
void TreeFetch::askTextLength(int index) {
    Call call = callTo(tree_[static_cast<std::size_t>(index)].reference, kProperties, "Get");
    call.signature = "ss";
    call.texts[0] = kText;
    call.texts[1] = "CharacterCount";
    pipeline_.send(std::move(call), [this, index](sd_bus_message* reply) {
        askText(index, std::min(readVariantInteger(reply).value_or(0), kLongestText));
    });
}

void TreeFetch::askText(int index, std::int32_t end) {
    const auto i = static_cast<std::size_t>(index);
    Call call = callTo(tree_[i].reference, kText, "GetText");
    call.signature = "ii";
    // GTK 4.8 answers an end of -1 with nothing, Gecko one beyond the text.
    call.integers[1] = end == kToTheEnd && application_.toolkit == Toolkit::gtk4 ? 2147483647 : end;
    pipeline_.send(std::move(call), [this, index, i](sd_bus_message* reply) {
        tree_[i].text = readText(reply, kLongestTextBytes).value_or("");
        const bool isGecko = application_.toolkit == Toolkit::gecko;
        if ((isGecko && isTextCarrier(tree_[i])) || tree_[i].text.find(kEmbedded) != std::string::npos)
            askOwnTexts(index);
    });
}

void TreeFetch::askRoleWord(int index) {
    const Node& node = tree_[static_cast<std::size_t>(index)];
    // One question for each role of an application: the word doesn't depend on the object.
    if (!roleWords_.emplace(node.role, std::string()).second) return;
    pipeline_.send(callTo(node.reference, kAccessible, "GetLocalizedRoleName"),
                   [this, role = node.role](sd_bus_message* reply) {
                       roleWords_[role] = readText(reply, kLongestName).value_or("");
                   });
}

// A text with children in it (links in a paragraph) is several, each with a place of its own: the box of the whole
// would cover the children. In Gecko even a text without them is not where its block is, which is as wide as the page.
void TreeFetch::askOwnTexts(int index) {
    const auto i = static_cast<std::size_t>(index);
    Node& node = tree_[i];
    std::vector<Stretch> stretches = stretchesOf(node.text);
    node.text = joined(stretches);
    if (!isTextCarrier(node)) return;
    for (Stretch& stretch : stretches) {
        const std::size_t k = node.ownTexts.size();
        Call call = callTo(node.reference, kText, "GetRangeExtents");
        call.signature = "iiu";
        call.integers[0] = stretch.start;
        call.integers[1] = stretch.end;
        call.integers[2] = static_cast<std::int32_t>(Coordinates::screen);
        // Gecko takes a child right after the end for a part of the range; the last character is given up for it.
        if (stretch.touchesNext && stretch.end - stretch.start > 1) --call.integers[1];
        node.ownTexts.push_back({std::move(stretch), {}});
        pipeline_.send(std::move(call), [this, i, k](sd_bus_message* reply) {
            RawBox box;
            if (reply && sd_bus_message_read(reply, "iiii", &box.x, &box.y, &box.width, &box.height) > 0 &&
                !isEmpty(box) && isSane(box))
                tree_[i].ownTexts[k].box = placement_.toRoot(box, tree_[i].inWebContent);
        });
    }
}

// A closed drop-down list of a page says what is chosen in it by the choice in its menu only.
void TreeFetch::askSelectedChild(int index) {
    const auto i = static_cast<std::size_t>(index);
    Call menu = callTo(tree_[i].reference, kAccessible, "GetChildAtIndex");
    menu.signature = "i";
    pipeline_.send(std::move(menu), [this, index](sd_bus_message* reply) {
        if (const std::optional<Reference> list = readReference(reply)) askSelectedIn(*list, index);
    });
}

// The name of what is chosen in a list becomes the text of the object.
void TreeFetch::askSelectedIn(const Reference& list, int index) {
    const auto i = static_cast<std::size_t>(index);
    Call chosen = callTo(list, "org.a11y.atspi.Selection", "GetSelectedChild");
    chosen.signature = "i";
    pipeline_.send(std::move(chosen), [this, i](sd_bus_message* chosenReply) {
        const std::optional<Reference> option = readReference(chosenReply);
        if (!option) return;
        Call name = callTo(*option, kProperties, "Get");
        name.signature = "ss";
        name.texts[0] = kAccessible;
        name.texts[1] = "Name";
        pipeline_.send(std::move(name), [this, i](sd_bus_message* nameReply) {
            const std::string text = readVariantText(nameReply).value_or("");
            if (text != tree_[i].name) tree_[i].text = text;
        });
    });
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
