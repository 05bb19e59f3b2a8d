// A GTK module that tells what an application's windows show, by asking the widgets themselves, and which of their
// controls get a press of the mouse. GTK_MODULES loads it.
#include <dlfcn.h>
#include <gdk/gdkx.h>
#include <glib-unix.h>
#include <gmodule.h>
#include <gtk/gtk.h>

#include <memory>

#include "tests/applications/probes/Channel.h"
#include "tests/applications/probes/GtkCells.h"
#include "tests/applications/probes/Seen.h"

namespace tarvix::probe {

std::vector<GtkWidget*> childrenOf(GtkWidget* widget) {
    std::vector<GtkWidget*> children;
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(
            GTK_CONTAINER(widget),
            [](GtkWidget* child, gpointer list) { static_cast<std::vector<GtkWidget*>*>(list)->push_back(child); },
            &children);
    return children;
}

namespace {

// ----------------------------------------------------------------------------------------------------- one toplevel

class Walk : public GtkCells<Walk> {
public:
    explicit Walk(GtkWidget* toplevel) : toplevel_(toplevel), scale_(gtk_widget_get_scale_factor(toplevel)) {
        gdk_window_get_origin(gtk_widget_get_window(toplevel), &originX_, &originY_);
        visit(toplevel, "");
    }

    std::vector<Seen> take() { return std::move(all_); }

private:
    friend class GtkCells<Walk>;

    Box boxOf(GtkWidget* widget, GdkRectangle inside) const {
        int x = 0, y = 0;
        gtk_widget_translate_coordinates(widget, toplevel_, inside.x, inside.y, &x, &y);
        return {(originX_ + x) * scale_, (originY_ + y) * scale_, inside.width * scale_, inside.height * scale_};
    }
    Box boxOf(GtkWidget* widget) const {
        return boxOf(widget, {0, 0, gtk_widget_get_allocated_width(widget), gtk_widget_get_allocated_height(widget)});
    }

    // What the windows around it leave of a widget: those of what scrolls cut it off.
    Box clipOf(GdkWindow* window) const {
        Box clip{-32768, -32768, 65536, 65536};
        for (GdkWindow* at = window; at != nullptr && gdk_window_get_window_type(at) != GDK_WINDOW_ROOT;
             at = gdk_window_get_parent(at)) {
            int x = 0, y = 0;
            gdk_window_get_origin(at, &x, &y);
            clip = intersection(
                clip, {x * scale_, y * scale_, gdk_window_get_width(at) * scale_, gdk_window_get_height(at) * scale_});
            if (gdk_window_get_window_type(at) != GDK_WINDOW_CHILD) break;
        }
        return clip;
    }

    void add(GtkWidget* widget, Seen seen, std::optional<Box> clip = {}) {
        seen.visible = intersection(seen.frame, clipOf(gtk_widget_get_window(widget)));
        if (clip) seen.visible = intersection(seen.visible, *clip);
        seen.owner = widget;
        if (!seen.visible.isEmpty()) all_.push_back(std::move(seen));
    }

    void add(GtkWidget* widget, const char* kind, std::string text, bool counted, const std::string& inside,
             GtkWidget* textWidget = nullptr) {
        add(widget, {.id = idOf(widget),
                     .kind = kind,
                     .text = std::move(text),
                     .frame = boxOf(widget),
                     .textFrame = textWidget ? std::optional(boxOf(textWidget)) : std::nullopt,
                     .counted = counted && inside.empty(),
                     .clickable = gtk_widget_is_sensitive(widget) != FALSE,
                     .inside = inside});
    }

    void visitChildren(GtkWidget* widget, const std::string& inside) {
        for (GtkWidget* child : childrenOf(widget)) visit(child, inside);
    }

    void visit(GtkWidget* widget, const std::string& inside) {
        if (!shows(widget)) return;
        if (GTK_IS_TREE_VIEW(widget)) return tree(GTK_TREE_VIEW(widget));
        if (GTK_IS_ICON_VIEW(widget)) return icons(widget);
        if (isA(widget, "ExoIconView") || isA(widget, "XfceIconView")) return xfceIcons(widget);
        if (GTK_IS_NOTEBOOK(widget)) return notebook(GTK_NOTEBOOK(widget));
        const auto [kind, text] = control(widget);
        const bool counted = kind[0] != '\0' && !isTitleButton(widget);
        add(widget, kind[0] ? kind : "widget", text, counted, inside, textWidget(widget));
        if (GTK_IS_ENTRY(widget)) entryIcons(GTK_ENTRY(widget));
        if (GTK_IS_STATUSBAR(widget)) return visitStatusBar(widget, messageOf(widget));
        visitChildren(widget, kind[0] && inside.empty() ? idOf(widget) : inside);
    }

    // What kind of control a widget is, and what is written on it; no kind where it is none.
    std::pair<const char*, std::string> control(GtkWidget* widget) const {
        if (GTK_IS_LABEL(widget)) {
            const std::string text = lent(gtk_label_get_text(GTK_LABEL(widget)));
            return {text.find_first_not_of(" \n\t") == std::string::npos ? "" : "label", text};
        }
        if (GTK_IS_SEPARATOR_MENU_ITEM(widget)) return {"", ""};
        if (GTK_IS_MENU_ITEM(widget))
            return {GTK_IS_MENU_BAR(gtk_widget_get_parent(widget)) ? "menu bar item" : "menu item", labelsOn(widget)};
        if (GTK_IS_COMBO_BOX(widget)) return {"combo box", comboText(widget)};
        if (GTK_IS_SPIN_BUTTON(widget)) return {"spin button", lent(gtk_entry_get_text(GTK_ENTRY(widget)))};
        if (GTK_IS_ENTRY(widget)) return {"entry", entryText(GTK_ENTRY(widget))};
        if (GTK_IS_TEXT_VIEW(widget)) return {"text area", viewText(GTK_TEXT_VIEW(widget))};
        if (GTK_IS_SWITCH(widget)) return {"switch", ""};
        if (GTK_IS_SCALE(widget)) return {"slider", ""};
        if (GTK_IS_EXPANDER(widget)) return {"", ""};  // its title counts, and what it holds
        if (GTK_IS_CALENDAR(widget)) return {"calendar", ""};
        if (GTK_IS_PROGRESS_BAR(widget)) {
            if (!gtk_progress_bar_get_show_text(GTK_PROGRESS_BAR(widget))) return {"", ""};
            return {"progress", lent(gtk_progress_bar_get_text(GTK_PROGRESS_BAR(widget)))};
        }
        if (GTK_IS_STATUSBAR(widget)) {
            GtkWidget* message = messageOf(widget);
            const std::string text = message != nullptr ? labelsOn(message) : "";
            return {text.empty() ? "" : "status bar", text};
        }
        if (isA(widget, "VteTerminal")) return {"terminal", terminalText(widget)};
        if (GTK_IS_BUTTON(widget)) return {buttonKind(widget), labelsOn(widget)};
        return {"", ""};
    }

    static const char* buttonKind(GtkWidget* widget) {
        if (GTK_IS_RADIO_BUTTON(widget)) return "radio button";
        if (GTK_IS_CHECK_BUTTON(widget)) return "check box";
        if (GTK_IS_LINK_BUTTON(widget)) return "link";
        // What opens a menu or a dialog.
        if (GTK_IS_MENU_BUTTON(widget) || GTK_IS_COLOR_BUTTON(widget) || GTK_IS_FONT_BUTTON(widget) ||
            GTK_IS_SCALE_BUTTON(widget) || GTK_IS_FILE_CHOOSER_BUTTON(widget))
            return "menu button";
        return GTK_IS_TOGGLE_BUTTON(widget) ? "toggle button" : "button";
    }

    // One of the window's own, to close it and the like.
    static bool isTitleButton(GtkWidget* widget) {
        return gtk_style_context_has_class(gtk_widget_get_style_context(widget), "titlebutton");
    }

    // Its message is its own; whatever else an application has put there isn't.
    static GtkWidget* messageOf(GtkWidget* statusBar) {
        return firstLabel(gtk_statusbar_get_message_area(GTK_STATUSBAR(statusBar)));
    }
    static GtkWidget* firstLabel(GtkWidget* widget) {
        if (GTK_IS_LABEL(widget)) return widget;
        for (GtkWidget* child : childrenOf(widget))
            if (GtkWidget* label = firstLabel(child)) return label;
        return nullptr;
    }

    void visitStatusBar(GtkWidget* widget, const GtkWidget* message) {
        for (GtkWidget* child : childrenOf(widget)) {
            if (child == message) continue;
            if (message != nullptr && gtk_widget_is_ancestor(const_cast<GtkWidget*>(message), child))
                visitStatusBar(child, message);
            else
                visit(child, "");
        }
    }

    // What holds the text of a control that is more than its text.
    static GtkWidget* textWidget(GtkWidget* widget) {
        if (GTK_IS_STATUSBAR(widget)) return messageOf(widget);
        return GTK_IS_COMBO_BOX(widget) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(widget))
                   ? gtk_bin_get_child(GTK_BIN(widget))
                   : nullptr;
    }

    void entryIcons(GtkEntry* entry) {
        for (const auto place : {GTK_ENTRY_ICON_PRIMARY, GTK_ENTRY_ICON_SECONDARY}) {
            if (gtk_entry_get_icon_storage_type(entry, place) == GTK_IMAGE_EMPTY) continue;
            GdkRectangle icon;
            gtk_entry_get_icon_area(entry, place, &icon);
            GtkWidget* widget = GTK_WIDGET(entry);
            const bool isControl = gtk_entry_get_icon_activatable(entry, place) && gtk_widget_is_sensitive(widget);
            add(widget, {.id = idOf(widget) + "/" + std::to_string(place),
                         .kind = "entry icon",
                         .text = "",
                         .frame = boxOf(widget, icon),
                         .counted = isControl,
                         .clickable = isControl});
        }
    }

    static std::string entryText(GtkEntry* entry) {
        const std::string text = lent(gtk_entry_get_text(entry));
        if (text.empty()) return lent(gtk_entry_get_placeholder_text(entry));
        return gtk_entry_get_visibility(entry) ? text : "";  // a password is drawn as dots
    }

    static std::string comboText(GtkWidget* combo) {
        GtkWidget* child = gtk_bin_get_child(GTK_BIN(combo));
        if (gtk_combo_box_get_has_entry(GTK_COMBO_BOX(combo))) return entryText(GTK_ENTRY(child));
        return GtkCells::comboText(GTK_COMBO_BOX(combo), child);
    }

    static std::string terminalText(GtkWidget* terminal) {
        using GetText = char* (*)(void*, void*, void*, void*);
        const auto get = reinterpret_cast<GetText>(dlsym(RTLD_DEFAULT, "vte_terminal_get_text"));
        return get ? taken(get(terminal, nullptr, nullptr, nullptr)) : "";
    }

    // ------------------------------------------------------------------------------------------- cells and the like

    void notebook(GtkNotebook* notebook) {
        GtkWidget* widget = GTK_WIDGET(notebook);
        add(widget, "widget", "", false, "");
        const int pages = gtk_notebook_get_n_pages(notebook);
        for (int number = 0; number < pages; ++number) {
            GtkWidget* page = gtk_notebook_get_nth_page(notebook, number);
            GtkWidget* label = gtk_notebook_get_tab_label(notebook, page);
            if (label != nullptr && shows(label)) {
                add(widget, {.id = idOf(label),
                             .kind = "tab",
                             .text = labelsOn(label),
                             .frame = boxOf(label),
                             .counted = true,
                             .clickable = true});
                tabParts(label, idOf(label));
            }
            visit(page, "");
        }
        for (const GtkPackType end : {GTK_PACK_START, GTK_PACK_END})
            if (GtkWidget* action = gtk_notebook_get_action_widget(notebook, end)) visit(action, "");
    }

    // The button that closes a page is a control of its own.
    void tabParts(GtkWidget* widget, const std::string& tab) {
        if (!shows(widget)) return;
        if (GTK_IS_BUTTON(widget)) return visit(widget, "");
        add(widget, "widget", GTK_IS_LABEL(widget) ? labelsOn(widget) : "", false, tab);
        for (GtkWidget* child : childrenOf(widget)) tabParts(child, tab);
    }

    // The icon view of Xfce's library has the functions of GTK's under other names.
    void xfceIcons(GtkWidget* widget) {
        add(widget, "widget", "", false, "");
        const auto find = [](const char* name) {
            for (const char* prefix : {"xfce_icon_view_", "exo_icon_view_"})
                if (void* found = dlsym(RTLD_DEFAULT, (std::string(prefix) + name).c_str())) return found;
            return static_cast<void*>(nullptr);
        };
        using Range = gboolean (*)(void*, GtkTreePath**, GtkTreePath**);
        using At = GtkTreePath* (*)(void*, int, int);
        const auto range = reinterpret_cast<Range>(find("get_visible_range"));
        const auto pathAt = reinterpret_cast<At>(find("get_path_at_pos"));
        const auto model = reinterpret_cast<GtkTreeModel* (*)(void*)>(find("get_model"));
        GtkTreePath *first = nullptr, *last = nullptr;
        if (!range || !pathAt || !model || !range(widget, &first, &last)) return;
        // It doesn't tell where its items are, only which is at a point.
        const int width = gtk_widget_get_allocated_width(widget), height = gtk_widget_get_allocated_height(widget);
        constexpr int step = 2;
        for (; gtk_tree_path_compare(first, last) <= 0; gtk_tree_path_next(first)) {
            int left = width, top = height, right = -1, bottom = -1;
            for (int y = 0; y < height; y += step)
                for (int x = 0; x < width; x += step)
                    if (GtkTreePath* path = pathAt(widget, x, y)) {
                        if (gtk_tree_path_compare(path, first) == 0) {
                            left = std::min(left, x), top = std::min(top, y);
                            right = std::max(right, x), bottom = std::max(bottom, y);
                        }
                        gtk_tree_path_free(path);
                    }
            if (right >= left)
                icon(widget, GTK_CELL_LAYOUT(widget), model(widget), first,
                     {left, top, right - left + 1, bottom - top + 1});
        }
        gtk_tree_path_free(first);
        gtk_tree_path_free(last);
    }

    GtkWidget* toplevel_;
    int scale_, originX_ = 0, originY_ = 0;
    std::vector<Seen> all_;
};

// --------------------------------------------------------------------------------------------------- the application

std::vector<Seen> seenIn(GtkWidget* toplevel) { return Walk(toplevel).take(); }

// In the window of that number, and in what has opened over it.
std::vector<Seen> seenInWindow(unsigned long number) {
    std::vector<Seen> all;
    GList* windows = gtk_window_list_toplevels();
    for (GList* at = windows; at != nullptr; at = at->next) {
        auto* widget = GTK_WIDGET(at->data);
        if (!shows(widget) || gtk_widget_get_window(widget) == nullptr) continue;
        const bool isPopup = gtk_window_get_window_type(GTK_WINDOW(widget)) == GTK_WINDOW_POPUP;
        if (!isPopup && gdk_x11_window_get_xid(gtk_widget_get_window(widget)) != number) continue;
        for (Seen& seen : seenIn(widget)) all.push_back(std::move(seen));
    }
    g_list_free(windows);
    return all;
}

std::unique_ptr<Channel> channel;

// A press goes to one widget first and then to those around it.
gboolean pressed(GSignalInvocationHint*, guint, const GValue* values, gpointer) {
    auto* widget = GTK_WIDGET(g_value_get_object(&values[0]));
    const auto* event = static_cast<const GdkEventButton*>(g_value_get_boxed(&values[1]));
    static guint32 lastTime = 0;
    if (event->type != GDK_BUTTON_PRESS || event->button != 1 || event->time == lastTime) return TRUE;
    lastTime = event->time;
    GtkWidget* toplevel = gtk_widget_get_toplevel(widget);
    const int scale = gtk_widget_get_scale_factor(toplevel);
    const auto all = seenIn(toplevel);
    const Seen* control = smallestAt(
        all, static_cast<int>(event->x_root) * scale, static_cast<int>(event->y_root) * scale, [&](const Seen& seen) {
            auto* owner = static_cast<GtkWidget*>(const_cast<void*>(seen.owner));
            return owner == widget || gtk_widget_is_ancestor(widget, owner) || gtk_widget_is_ancestor(owner, widget);
        });
    channel->send({{"pressed", control ? control->id : ""}, {"widget", G_OBJECT_TYPE_NAME(widget)}});
    return TRUE;
}

// Through accessibility it comes without the mouse.
gboolean clicked(GSignalInvocationHint*, guint, const GValue* values, gpointer) {
    channel->send({{"pressed", idOf(g_value_get_object(&values[0]))}, {"widget", "clicked"}});
    return TRUE;
}

gboolean asked(int, GIOCondition, gpointer) {
    for (const std::string& command : channel->commands())
        channel->send({{"controls", toJson(seenInWindow(std::strtoul(command.c_str(), nullptr, 10)))}});
    return channel->fd() >= 0;
}

}  // namespace
}  // namespace tarvix::probe

extern "C" G_MODULE_EXPORT void gtk_module_init(int*, char***) {
    using namespace tarvix::probe;
    channel = std::make_unique<Channel>("GTK " + std::to_string(gtk_get_major_version()) + "." +
                                        std::to_string(gtk_get_minor_version()) + "." +
                                        std::to_string(gtk_get_micro_version()));
    if (channel->fd() < 0) return;
    g_unix_fd_add(channel->fd(), G_IO_IN, asked, nullptr);
    // A class has to be there before its signals can be looked up.
    g_type_class_unref(g_type_class_ref(GTK_TYPE_BUTTON));
    g_signal_add_emission_hook(g_signal_lookup("clicked", GTK_TYPE_BUTTON), 0, clicked, nullptr, nullptr);
    g_signal_add_emission_hook(g_signal_lookup("button-press-event", GTK_TYPE_WIDGET), 0, pressed, nullptr, nullptr);
}
