// Fetching the showing part of a window's tree: many calls under way at once, one visit for each object that shows.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "linux/atspi/Applications.h"
#include "linux/atspi/Node.h"
#include "linux/atspi/Pipeline.h"
#include "linux/atspi/Placement.h"
#include "linux/atspi/Seed.h"

namespace tarvix::atspi {

// What differs between the toolkits in how they are asked.
struct Manner {
    bool allProperties;    // Properties.GetAll can be sent; it kills Qt 5 and Qt 6 up to 6.8
    bool asksInterfaces;   // else they follow from the role
    bool showingIsTold;    // the SHOWING state means that the object is on the screen (scrolling aside, see below)
    bool clipsByEveryBox;  // a child never shows outside its parent, and SHOWING ignores scrolling
    bool childrenByIndex;  // long child lists are searched by index; GetChildren is quadratic in Chromium
    bool asksAttributes;   // GetAttributes, where GetAll doesn't bring them and texts need them
    bool hasItems;  // Cache.GetItems tells of all objects at once (in GTK 4, of all that somebody has listed before)
    bool hasTree;   // Collection.GetTree too
};
const Manner& mannerOf(Toolkit toolkit);

// Fetches one window's tree. For one use on one thread.
class TreeFetch {
public:
    TreeFetch(Pipeline& pipeline, const Application& application, bool direct, const Placement& placement,
              AxRect visible, std::map<Role, std::string> roleWords, Paddings paddings);
    TreeFetch(const TreeFetch&) = delete;
    TreeFetch& operator=(const TreeFetch&) = delete;

    // Objects of these applications, by their names on the bus, are not visited.
    void leaveOut(std::set<std::string> buses) { leftOut_ = std::move(buses); }

    // Visits everything that shows below the frame and returns when it has arrived or the pipeline's deadline has
    // passed; what has arrived until then stands. A reference that was met before is not visited again, so that a tree
    // that lists an ancestor among its children, or one child twice, ends.
    enum class Bulk : std::uint8_t { allowed, never };
    void run(const Reference& frame, Bulk bulk = Bulk::allowed);
    // Visits popups that the application lists beside its frames; they become the last children of the frame.
    void addPopups(const std::vector<Reference>& popups);
    // Whether there are popovers, and where they stand: each is one of these windows, in root pixels.
    bool hasPopovers() const;
    void placePopovers(const std::vector<AxRect>& windows);
    // To be called last: what is known only of the whole.
    void finish();

    NodeTree takeTree() { return std::move(tree_); }
    // The words for the roles that were met, those given at creation included.
    const std::map<Role, std::string>& roleWords() const { return roleWords_; }
    // Likewise the widths of borders.
    const Paddings& paddings() const { return paddings_; }

private:
    friend class LongList;
    friend class ManagedTableFetch;

    enum class Kind { ordinary, cell };
    struct Work {
        AxRect clip;
        Kind kind = Kind::ordinary;
        int awaited = 0;
        int depth = 0;  // below the frame
        bool refused = false;
        bool boxAsked = false;
        bool seeded = false;  // all but the box is known
        std::vector<Reference> children;
    };

    void askSeed(const Reference& frame);
    void askSeedBoxes(const Reference& frame);
    void takeFromSeed(int index, const SeedItem& item);
    int add(const Reference& reference, int parent, AxRect clip, Kind kind);
    void visit(int index);
    void askState(int index);
    void askExtents(int index);
    void askFields(int index);
    void askOwnFields(int index);
    bool asksBoxFirst(int index) const;
    void askChildren(int index, void (TreeFetch::*next)(int));
    void onFields(int index);
    bool isSocket(int index) const;
    void askPlug(int index);
    void onChildren(int index);
    void onCells(int index);
    void askDetails(int index);
    void askTextLength(int index);
    void askText(int index, std::int32_t end);
    void askRoleWord(int index);
    void askOwnTexts(int index);
    void askSelectedChild(int index);
    void askSelectedIn(const Reference& list, int index);
    void openUnplaced(int index);
    void descend(int index);
    void place(int index);
    bool showsByState(const Node& node) const;
    bool isWithinClip(int index) const;
    AxRect clipBelow(int index) const;
    bool isPopover(const Node& node) const;
    void visitChildren(int index, const std::vector<Reference>& children, AxRect clip, Kind kind);

    // Sends a call about an object and counts it among what its next step waits for.
    void ask(int index, const char* interface, const char* member, std::function<void(sd_bus_message*)> answer,
             void (TreeFetch::*next)(int));
    void askProperty(int index, const char* interface, const char* property,
                     std::function<void(sd_bus_message*)> answer, void (TreeFetch::*next)(int));
    Call callTo(const Reference& reference, const char* interface, const char* member) const;

    void dropHiddenPages();
    void placePopover(int index, const std::vector<AxRect>& windows);
    void addTextElements();
    void addTextElement(int index, const std::string& text, AxRect frame, std::size_t place);
    void addOwnTexts(int index);
    bool isOption(int index) const;
    void nameTabs();
    void markTitleBar();
    void straightenLibreOffice();
    void heightenHeaders();
    void describeButtons();
    void addHeadings();
    void clipFrames();

    Pipeline& pipeline_;
    const Application& application_;
    const bool direct_;
    const Manner& manner_;
    const Placement placement_;
    const AxRect visible_;
    std::map<Role, std::string> roleWords_;
    Paddings paddings_;
    NodeTree tree_;
    std::deque<Work> work_;
    std::unordered_set<std::string> met_;
    std::set<std::string> leftOut_;
    Seed seed_;
};

}  // namespace tarvix::atspi
