// What is read of an object beyond the fields that all have, once it is known to show: texts, values, addresses.
#include <algorithm>
#include <string_view>

#include "linux/atspi/Replies.h"
#include "linux/atspi/Translation.h"
#include "linux/atspi/TreeFetch.h"
#include "linux/atspi/TreeFetchNames.h"

namespace tarvix::atspi {

namespace {

constexpr std::string_view kEmbedded = "\xEF\xBF\xBC";  // U+FFFC stands for a child in a text
constexpr std::int32_t kToTheEnd = -1;

bool mayBeLong(const Node& node) {
    return node.has(State::multiLine) || node.role == Role::terminal || node.role == Role::documentText;
}

}  // namespace

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

}  // namespace tarvix::atspi
