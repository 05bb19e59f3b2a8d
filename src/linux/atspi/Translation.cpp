#include "linux/atspi/Translation.h"

#include <libintl.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <unordered_map>

namespace tarvix::atspi {

namespace {

using enum NameIs;

constexpr RoleRow kUnknown{Role::unknown, "AXGroup", "", title};

// clang-format off
constexpr auto kRoles = std::to_array<RoleRow>({
    {Role::pushButton,            "AXButton",            "",                    title},
    {Role::pushButtonMenu,        "AXMenuButton",        "",                    title},
    {Role::toggleButton,          "AXCheckBox",          "AXToggle",            title},
    {Role::switchButton,          "AXCheckBox",          "AXSwitch",            title},
    {Role::checkBox,              "AXCheckBox",          "",                    title},
    {Role::radioButton,           "AXRadioButton",       "",                    title},
    {Role::pageTab,               "AXRadioButton",       "AXTabButton",         title},
    {Role::pageTabList,           "AXTabGroup",          "",                    description},
    {Role::comboBox,              "AXPopUpButton",       "",                    value},
    {Role::link,                  "AXLink",              "",                    title},
    {Role::list,                  "AXList",              "",                    description},
    {Role::listBox,               "AXList",              "",                    description},
    {Role::descriptionList,       "AXList",              "",                    description},
    {Role::listItem,              "AXRow",               "AXTableRow",          value},
    {Role::treeItem,              "AXRow",               "AXOutlineRow",        value},
    {Role::tableRow,              "AXRow",               "AXTableRow",          value},
    {Role::table,                 "AXTable",             "",                    description},
    {Role::treeTable,             "AXOutline",           "",                    description},
    {Role::tree,                  "AXOutline",           "",                    description},
    {Role::tableCell,             "AXCell",              "",                    value},
    {Role::columnHeader,          "AXButton",            "AXSortButton",        title},
    {Role::tableColumnHeader,     "AXButton",            "AXSortButton",        title},
    {Role::rowHeader,             "AXCell",              "",                    value},
    {Role::tableRowHeader,        "AXCell",              "",                    value},
    {Role::entry,                 "AXTextField",         "",                    description},
    {Role::text,                  "AXTextField",         "",                    description},
    {Role::passwordText,          "AXTextField",         "AXSecureTextField",   description},
    {Role::spinButton,            "AXTextField",         "",                    description},
    {Role::dateEditor,            "AXTextField",         "",                    description},
    {Role::editBar,               "AXTextField",         "",                    description},
    {Role::autocomplete,          "AXComboBox",          "",                    description},
    {Role::terminal,              "AXTextArea",          "",                    description},
    {Role::documentText,          "AXTextArea",          "",                    description},
    {Role::label,                 "AXStaticText",        "",                    value},
    {Role::staticText,            "AXStaticText",        "",                    value},
    {Role::caption,               "AXStaticText",        "",                    value},
    {Role::heading,               "AXHeading",           "",                    value},
    {Role::paragraph,             "AXGroup",             "",                    value},
    {Role::section,               "AXGroup",             "",                    value},
    {Role::blockQuote,            "AXGroup",             "",                    value},
    {Role::descriptionTerm,       "AXGroup",             "AXTerm",              value},
    {Role::descriptionValue,      "AXGroup",             "AXDefinition",        value},
    {Role::landmark,              "AXGroup",             "",                    title},
    {Role::article,               "AXGroup",             "AXDocumentArticle",   title},
    {Role::panel,                 "AXGroup",             "",                    title},
    {Role::filler,                "AXGroup",             "",                    title},
    {Role::grouping,              "AXGroup",             "",                    title},
    {Role::form,                  "AXGroup",             "",                    title},
    {Role::redundantObject,       "AXGroup",             "",                    title},
    {Role::internalFrame,         "AXGroup",             "",                    title},
    {Role::rootPane,              "AXGroup",             "",                    title},
    {Role::layeredPane,           "AXGroup",             "",                    title},
    {Role::glassPane,             "AXGroup",             "",                    title},
    {Role::optionPane,            "AXGroup",             "",                    title},
    {Role::titleBar,              "AXGroup",             "",                    title},
    {Role::header,                "AXGroup",             "",                    title},
    {Role::footer,                "AXGroup",             "",                    title},
    {Role::embedded,              "AXGroup",             "",                    title},
    {Role::application,           "AXGroup",             "",                    title},
    {Role::documentPresentation,  "AXGroup",             "",                    title},
    {Role::documentSpreadsheet,   "AXGroup",             "",                    title},
    {Role::image,                 "AXImage",             "",                    description},
    {Role::icon,                  "AXImage",             "",                    description},
    {Role::desktopIcon,           "AXImage",             "",                    title},
    {Role::animation,             "AXImage",             "",                    description},
    {Role::imageMap,              "AXGroup",             "",                    description},
    {Role::canvas,                "AXImage",             "",                    description},
    {Role::drawingArea,           "AXGroup",             "",                    description},
    {Role::scrollPane,            "AXScrollArea",        "",                    description},
    {Role::viewport,              "AXScrollArea",        "",                    description},
    {Role::scrollBar,             "AXScrollBar",         "",                    description},
    {Role::splitPane,             "AXSplitGroup",        "",                    description},
    {Role::separator,             "AXSplitter",          "",                    description},
    {Role::toolBar,               "AXToolbar",           "",                    description},
    {Role::documentWeb,           "AXWebArea",           "",                    description},
    {Role::documentFrame,         "AXWebArea",           "",                    description},
    {Role::documentEmail,         "AXWebArea",           "",                    description},
    {Role::htmlContainer,         "AXWebArea",           "",                    description},
    {Role::frame,                 "AXWindow",            "AXStandardWindow",    title},
    {Role::window,                "AXWindow",            "AXStandardWindow",    title},
    {Role::dialog,                "AXWindow",            "AXDialog",            title},
    {Role::fileChooser,           "AXWindow",            "AXDialog",            title},
    {Role::colorChooser,          "AXWindow",            "AXDialog",            title},
    {Role::alert,                 "AXWindow",            "AXDialog",            title},
    // A bar in a window is a container; the bar that is the application's own is the application element's.
    {Role::menuBar,               "AXGroup",             "",                    description},
    {Role::menu,                  "AXMenuItem",          "",                    title},
    {Role::popupMenu,             "AXGroup",             "",                    description},
    {Role::menuItem,              "AXMenuItem",          "",                    title},
    {Role::checkMenuItem,         "AXMenuItem",          "",                    title},
    {Role::radioMenuItem,         "AXMenuItem",          "",                    title},
    {Role::tearOffMenuItem,       "AXMenuItem",          "",                    title},
    {Role::slider,                "AXSlider",            "",                    description},
    {Role::dial,                  "AXSlider",            "",                    description},
    {Role::rating,                "AXSlider",            "AXRatingIndicator",   description},
    {Role::progressBar,           "AXProgressIndicator", "",                    description},
    {Role::levelBar,              "AXLevelIndicator",    "",                    description},
    {Role::statusBar,             "AXGroup",             "AXApplicationStatus", value},
    {Role::notification,          "AXGroup",             "",                    value},
    {Role::infoBar,               "AXGroup",             "",                    value},
    {Role::toolTip,               "AXHelpTag",           "",                    value},
});
// clang-format on

bool isToggle(Role role) {
    return role == Role::checkBox || role == Role::toggleButton || role == Role::radioButton ||
           role == Role::switchButton;
}

bool isTextInput(Role role) {
    return role == Role::entry || role == Role::text || role == Role::passwordText || role == Role::spinButton ||
           role == Role::terminal || role == Role::documentText || role == Role::autocomplete ||
           role == Role::dateEditor || role == Role::editBar;
}

// The header of a column that sorts its table by a click says so.
bool isPlainHeader(const Node& node) {
    return node.inWebContent && (node.role == Role::columnHeader || node.role == Role::tableColumnHeader) &&
           !node.attribute("sort") && !node.has(State::focusable);
}

// Emphasis within a text: in Chromium the object that says it is below it.
bool isInline(const Node& node) {
    return node.inWebContent && node.role == Role::staticText && node.childCount > 0 && node.name.empty();
}

// On a page these only hold a text, which is an object of its own, or in Gecko a part of theirs.
bool isTextPart(const Node& node) {
    return isInline(node) || (node.inWebContent && (node.role == Role::label || node.role == Role::caption ||
                                                    node.role == Role::tableCell || node.role == Role::rowHeader ||
                                                    node.role == Role::tableRowHeader || isPlainHeader(node)));
}

// GTK 4.8 names a widget that has no name of its own by its class ("GtkImage").
bool isClassName(const std::string& name) {
    return name.size() > 3 && name.compare(0, 3, "Gtk") == 0 &&
           std::isupper(static_cast<unsigned char>(name[3])) != 0 &&
           std::all_of(name.begin() + 3, name.end(), [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

AxValue textOrNothing(const std::string& text) { return text.empty() ? AxValue() : AxValue(text); }

// The buttons that a client draws into its own title bar have no role or identifier in GTK, only the words of its
// catalogue; Chromium gives them a class and fixed identifiers.
std::string_view titleBarSubrole(const Node& node) {
    struct Word {
        const char* word;
        std::string_view subrole;
    };
    static constexpr auto words = std::to_array<Word>({{"Close", "AXCloseButton"},
                                                       {"Minimize", "AXMinimizeButton"},
                                                       {"Maximize", "AXZoomButton"},
                                                       {"Restore", "AXZoomButton"}});
    if (node.role != Role::pushButton || !node.inTitleBar) return {};
    // A browser's tabs stand in its title bar, and each has a button to close it.
    if (const std::string* type = node.attribute("class"); type && *type != "FrameCaptionButton") return {};
    for (const Word& row : words)
        for (const char* domain : {"gtk30", "gtk40"})
            if (node.name == row.word || node.name == dgettext(domain, row.word)) return row.subrole;
    return {};
}

std::string_view subroleOf(const Node& node) {
    if (const std::string_view button = titleBarSubrole(node); !button.empty()) return button;
    if (isPlainHeader(node)) return {};
    if (isToggle(node.role)) {
        const std::string* roles = node.attribute("xml-roles");
        if (roles && *roles == "switch") return "AXSwitch";
    }
    return rowOf(node.role).subrole;
}

std::string nameOf(const Node& node) { return isClassName(node.name) ? std::string() : node.name; }

// A name that says what is inside would be found beside that; a given one is all there may be.
bool isNameOfContents(const Node& node) {
    const std::string* given = node.attribute("explicit-name");
    return isTextPart(node) && !(given && *given == "true");
}

NameIs nameIs(const Node& node) {
    if (isTextPart(node)) return description;
    return node.role == Role::comboBox && !node.text.empty() ? description : rowOf(node.role).nameIs;
}

// What is written on a control, where its name says something else.
bool hasWriting(const Node& node) {
    return !node.inWebContent && !node.text.empty() && rowOf(node.role).nameIs == title;
}

AxValue titleOf(const Node& node) {
    if (node.synthetic || nameIs(node) != title) return {};
    return textOrNothing(hasWriting(node) ? node.text : nameOf(node));
}

AxValue labelOf(const Node& node) {
    if (node.synthetic || isNameOfContents(node)) return {};
    return nameIs(node) == description || hasWriting(node) ? textOrNothing(nameOf(node)) : AxValue();
}

AxValue valueOf(const Node& node) {
    if (node.synthetic) return textOrNothing(node.text);
    if (isToggle(node.role)) {
        if (node.has(State::indeterminate)) return std::int64_t{2};
        return std::int64_t{node.has(State::checked) || node.has(State::pressed)};
    }
    if (node.role == Role::pageTab) return std::int64_t{node.has(State::selected)};
    if ((isTextInput(node.role) || node.role == Role::comboBox) && !node.text.empty()) return node.text;
    if (node.value) return *node.value;
    if (nameIs(node) == value) return textOrNothing(node.text.empty() ? nameOf(node) : node.text);
    return {};
}

AxValue placeholderOf(const Node& node) {
    for (const char* key : {"placeholder-text", "placeholder"})
        if (const std::string* text = node.attribute(key); text && !text->empty()) return *text;
    return {};
}

AxValue urlOf(const Node& node) {
    if (!node.uri.empty()) return Url{node.uri};
    for (const char* key : {"DocURL", "src"})
        if (const std::string* text = node.attribute(key); text && !text->empty()) return Url{*text};
    return {};
}

AxValue identifierOf(const Node& node) {
    if (!node.identifier.empty()) return node.identifier;
    const std::string* id = node.attribute("id");
    // Chromium numbers the views of its own window; such a number says nothing.
    if (!id || id->empty() || id->compare(0, 5, "view_") == 0) return {};
    return *id;
}

AxValue roleDescriptionOf(const Node& node) {
    const std::string* given = node.attribute("roledescription");
    return textOrNothing(given && !given->empty() ? *given : node.roleWord);
}

AxValue helpOf(const Node& node) { return node.synthetic ? AxValue() : textOrNothing(node.description); }

AxValue valueDescriptionOf(const Node& node) {
    if (!node.valueText.empty()) return node.valueText;
    const std::string* text = node.attribute("valuetext");
    return text ? textOrNothing(*text) : AxValue();
}

AxValue roleOf(const Node& node) { return std::string(axRole(node)); }
AxValue subroleValueOf(const Node& node) {
    return node.synthetic ? AxValue() : textOrNothing(std::string(subroleOf(node)));
}

}  // namespace

const RoleRow& rowOf(Role role) {
    static const auto byNumber = [] {
        std::unordered_map<std::uint32_t, const RoleRow*> rows;
        for (const RoleRow& row : kRoles) rows.emplace(static_cast<std::uint32_t>(row.role), &row);
        return rows;
    }();
    const auto found = byNumber.find(static_cast<std::uint32_t>(role));
    return found == byNumber.end() ? kUnknown : *found->second;
}

std::string_view axRole(const Node& node) {
    if (node.synthetic) return "AXStaticText";
    if ((node.role == Role::text || node.role == Role::entry) && node.has(State::multiLine)) return "AXTextArea";
    if (node.role == Role::comboBox && node.has(State::editable)) return "AXComboBox";
    if (node.inWebContent && (node.role == Role::label || node.role == Role::caption)) return "AXGroup";
    if (isInline(node)) return "AXGroup";
    if (isPlainHeader(node)) return "AXCell";
    if (node.role == Role::pushButton && node.has(State::hasPopup)) return "AXMenuButton";
    if ((node.role == Role::menu || node.role == Role::menuItem) && node.inMenuBar) return "AXMenuBarItem";
    if (node.role == Role::pushButton && node.offers(interface::hyperlink)) return "AXLink";  // GTK 3's link button
    return rowOf(node.role).axRole;
}

std::optional<AxValue> translate(const Node& node, std::string_view attribute) {
    struct Row {
        std::string_view name;
        AxValue (*of)(const Node&);
    };
    static constexpr auto rows = std::to_array<Row>({{ax::role, roleOf},
                                                     {ax::roleDescription, roleDescriptionOf},
                                                     {ax::subrole, subroleValueOf},
                                                     {ax::description, labelOf},
                                                     {ax::title, titleOf},
                                                     {ax::help, helpOf},
                                                     {ax::value, valueOf},
                                                     {ax::valueDescription, valueDescriptionOf},
                                                     {ax::placeholderValue, placeholderOf},
                                                     {ax::url, urlOf},
                                                     {ax::identifier, identifierOf}});
    for (const Row& row : rows)
        if (row.name == attribute) return row.of(node);
    return std::nullopt;
}

std::string ownText(const Node& node) { return node.text.empty() ? nameOf(node) : node.text; }

// The roles whose text, where it is their own, would be lost with them, since the role itself is never a target.
bool isTextCarrier(const Node& node) {
    switch (node.role) {
        case Role::listItem:
        case Role::treeItem:
        case Role::heading:
        case Role::paragraph:
        case Role::section:
        case Role::blockQuote:
        case Role::descriptionTerm:
        case Role::descriptionValue:
        case Role::statusBar:
            return true;
        default:
            return isTextPart(node);
    }
}

bool needsTextElement(const Node& node, bool hasChildren) {
    if (node.synthetic || !isTextCarrier(node)) return false;
    // With children, only a text of its own counts: a name is then put together from theirs.
    return !isOrnament(hasChildren ? node.text : ownText(node));
}

bool wantsText(Toolkit toolkit, const Node& node) {
    if (isTextInput(node.role)) return true;
    if (node.role == Role::comboBox && node.has(State::editable))
        return toolkit == Toolkit::chromium || toolkit == Toolkit::gecko;
    // Gecko has no objects for plain text: it is in the text of what contains it. LibreOffice's cells likewise.
    if (toolkit == Toolkit::gecko)
        return isTextCarrier(node) || node.role == Role::label || node.role == Role::staticText ||
               node.role == Role::tableCell || node.role == Role::caption;
    if (toolkit == Toolkit::libreOffice)
        return node.role == Role::tableCell || node.role == Role::paragraph ||
               (node.role == Role::label && node.name.empty());  // the fields of its status bar
    return false;
}

bool wantsValue(const Node& node) {
    return node.role == Role::slider || node.role == Role::dial || node.role == Role::progressBar ||
           node.role == Role::levelBar || node.role == Role::rating;
}

bool wantsUri(Toolkit toolkit, const Node& node) {
    if (toolkit == Toolkit::qt || toolkit == Toolkit::gtk4) return false;  // they don't tell
    return axRole(node) == "AXLink";
}

}  // namespace tarvix::atspi
