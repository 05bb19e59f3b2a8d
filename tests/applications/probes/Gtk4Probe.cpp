// A GIO module that tells what a GTK 4 application's windows show, by asking the widgets themselves, and which of their
// controls get a press of the mouse. GIO_EXTRA_MODULES names the folder that it is loaded from, as GTK 4 has no
// modules.
#include <gdk/x11/gdkx.h>
#include <gio/gio.h>
#include <glib-unix.h>
#include <gtk/gtk.h>

#include <cmath>
#include <memory>

#include "tests/applications/probes/Channel.h"
#include "tests/applications/probes/GtkCells.h"
#include "tests/applications/probes/Seen.h"

namespace tarvix::probe {

std::vector<GtkWidget*> childrenOf(GtkWidget* widget) {
    std::vector<GtkWidget*> children;
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
         child = gtk_widget_get_next_sibling(child))
        if (!GTK_IS_NATIVE(child)) children.push_back(child);
    return children;
}

namespace {

// The popovers over a widget: windows of their own, though the widget's children.
std::vector<GtkWidget*> popoversOf(GtkWidget* widget) {
    std::vector<GtkWidget*> children;
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
         child = gtk_widget_get_next_sibling(child))
        if (GTK_IS_NATIVE(child)) children.push_back(child);
    return children;
}

// ------------------------------------------------------------------------------------------------- one X window

class Walk : public GtkCells<Walk> {
public:
    // Everything below a window or popover, and in the popovers over it.
    explicit Walk(GtkWidget* native) : native_(native), scale_(gtk_widget_get_scale_factor(native)) {
        GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(native));
        Window child = 0;
        Display* display = GDK_SURFACE_XDISPLAY(surface);
        XTranslateCoordinates(display, GDK_SURFACE_XID(surface), DefaultRootWindow(display), 0, 0, &originX_, &originY_,
                              &child);
        gtk_native_get_surface_transform(GTK_NATIVE(native), &shiftX_, &shiftY_);
        visit(native, "");
    }

    std::vector<Seen> take() { return std::move(all_); }

private:
    friend class GtkCells<Walk>;

    Box boxOf(GtkWidget* widget, GdkRectangle inside) const {
        double x = 0, y = 0;
        gtk_widget_translate_coordinates(widget, native_, inside.x, inside.y, &x, &y);
        return onScreen(x, y, inside.width, inside.height);
    }
    // With its border and padding.
    Box boxOf(GtkWidget* widget) const {
        graphene_rect_t bounds;
        if (!gtk_widget_compute_bounds(widget, native_, &bounds)) return {};
        return onScreen(bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height);
    }
    Box onScreen(double x, double y, double width, double height) const {
        const auto pixel = [this](double at) { return static_cast<int>(std::lround(at * scale_)); };
        return {originX_ + pixel(x + shiftX_), originY_ + pixel(y + shiftY_), pixel(width), pixel(height)};
    }

    // What the widgets around it leave of a widget.
    Box clipOf(GtkWidget* widget) const {
        Box clip{-32768, -32768, 65536, 65536};
        for (GtkWidget* at = widget; at != nullptr && at != native_; at = gtk_widget_get_parent(at))
            if (at != widget && gtk_widget_get_overflow(at) == GTK_OVERFLOW_HIDDEN)
                clip = intersection(clip, boxOf(at));
        return intersection(clip, boxOf(native_));
    }

    void add(GtkWidget* widget, Seen seen, std::optional<Box> clip = {}) {
        seen.visible = intersection(seen.frame, clipOf(widget));
        if (clip) seen.visible = intersection(seen.visible, *clip);
        seen.owner = widget;
        if (!seen.visible.isEmpty()) all_.push_back(std::move(seen));
    }

    void add(GtkWidget* widget, const char* kind, std::string text, bool counted, const std::string& inside) {
        const bool hasEntry = GTK_IS_COMBO_BOX(widget) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(widget));
        add(widget, {.id = idOf(widget),
                     .kind = kind,
                     .text = std::move(text),
                     .frame = boxOf(widget),
                     .textFrame =
                         hasEntry ? std::optional(boxOf(gtk_combo_box_get_child(GTK_COMBO_BOX(widget)))) : std::nullopt,
                     .counted = counted && inside.empty(),
                     .clickable = gtk_widget_is_sensitive(widget) != FALSE,
                     .inside = inside});
    }

    void visitChildren(GtkWidget* widget, const std::string& inside) {
        for (GtkWidget* child : childrenOf(widget)) visit(child, inside);
    }

    void visit(GtkWidget* widget, const std::string& inside) {
        if (!shows(widget)) return;
        for (GtkWidget* popover : popoversOf(widget))
            if (shows(popover) && gtk_native_get_surface(GTK_NATIVE(popover)) != nullptr)
                for (Seen& seen : Walk(popover).take()) all_.push_back(std::move(seen));
        if (GTK_IS_TREE_VIEW(widget)) return tree(GTK_TREE_VIEW(widget));
        if (GTK_IS_ICON_VIEW(widget)) return icons(widget);
        if (isTab(widget)) return tab(widget);
        const auto [kind, text] = control(widget);
        const bool counted = kind[0] != '\0' && !isTitleButton(widget);
        add(widget, kind[0] ? kind : "widget", text, counted, inside);
        if (GTK_IS_ENTRY(widget) && inside.empty()) entryIcons(GTK_ENTRY(widget));
        visitChildren(widget, kind[0] && inside.empty() ? idOf(widget) : inside);
    }

    // What kind of control a widget is, and what is written on it; no kind where it is none.
    std::pair<const char*, std::string> control(GtkWidget* widget) const {
        if (GTK_IS_LABEL(widget) || isA(widget, "GtkInscription")) {
            const std::string text = labelText(widget);
            return {text.find_first_not_of(" \n\t") == std::string::npos ? "" : "label", text};
        }
        if (isA(widget, "GtkPopoverMenuBarItem")) return {"menu bar item", labelsOn(widget)};
        if (isA(widget, "GtkModelButton")) return {"menu item", labelsOn(widget)};
        if (isA(widget, "GtkColumnViewTitle")) return {"header", labelsOn(widget)};
        if (isA(widget, "GtkColorSwatch")) return {"button", ""};
        if (GTK_IS_COMBO_BOX(widget)) return {"combo box", comboText(widget)};
        if (GTK_IS_DROP_DOWN(widget)) return {"combo box", labelsOn(widget)};
        if (GTK_IS_SPIN_BUTTON(widget)) return {"spin button", editableText(widget)};
        if (GTK_IS_TEXT_VIEW(widget)) return {"text area", viewText(GTK_TEXT_VIEW(widget))};
        if (GTK_IS_EDITABLE(widget)) return {"entry", editableText(widget)};
        if (GTK_IS_SWITCH(widget)) return {"switch", ""};
        if (GTK_IS_SCALE(widget)) return {"slider", ""};
        if (GTK_IS_PROGRESS_BAR(widget)) {
            if (!gtk_progress_bar_get_show_text(GTK_PROGRESS_BAR(widget))) return {"", ""};
            return {"progress", lent(gtk_progress_bar_get_text(GTK_PROGRESS_BAR(widget)))};
        }
        if (GTK_IS_CHECK_BUTTON(widget)) return {isGrouped(widget) ? "radio button" : "check box", labelsOn(widget)};
        if (GTK_IS_LINK_BUTTON(widget)) return {"link", labelsOn(widget)};
        // What opens a menu or a dialog.
        if (GTK_IS_MENU_BUTTON(widget) || GTK_IS_COLOR_BUTTON(widget) || GTK_IS_FONT_BUTTON(widget) ||
            GTK_IS_SCALE_BUTTON(widget))
            return {"menu button", labelsOn(widget)};
        if (GTK_IS_TOGGLE_BUTTON(widget)) return {"toggle button", labelsOn(widget)};
        if (GTK_IS_BUTTON(widget)) return {"button", labelsOn(widget)};
        return {"", ""};
    }

    // The mark of a check button in a group is another node of the style.
    static bool isGrouped(GtkWidget* widget) {
        for (GtkWidget* child : childrenOf(widget))
            if (g_str_equal(gtk_widget_get_css_name(child), "radio")) return true;
        return false;
    }

    static bool isTitleButton(GtkWidget* widget) {
        return gtk_widget_get_ancestor(widget, GTK_TYPE_WINDOW_CONTROLS) != nullptr;
    }

    static std::string editableText(GtkWidget* widget) {
        const std::string text = lent(gtk_editable_get_text(GTK_EDITABLE(widget)));
        if (!text.empty()) return GTK_IS_PASSWORD_ENTRY(widget) ? "" : text;
        char* placeholder = nullptr;
        if (g_object_class_find_property(G_OBJECT_GET_CLASS(widget), "placeholder-text"))
            g_object_get(widget, "placeholder-text", &placeholder, nullptr);
        return taken(placeholder);
    }

    static std::string comboText(GtkWidget* combo) {
        GtkWidget* child = gtk_combo_box_get_child(GTK_COMBO_BOX(combo));
        if (gtk_combo_box_get_has_entry(GTK_COMBO_BOX(combo))) return editableText(child);
        return GtkCells::comboText(GTK_COMBO_BOX(combo), child);
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

    static bool isTab(GtkWidget* widget) {
        return g_str_equal(gtk_widget_get_css_name(widget), "tab") &&
               gtk_widget_get_ancestor(widget, GTK_TYPE_NOTEBOOK) != nullptr;
    }

    void tab(GtkWidget* widget) {
        add(widget, "tab", labelsOn(widget), true, "");
        tabParts(widget, idOf(widget));
    }

    // The button that closes a page is a control of its own.
    void tabParts(GtkWidget* widget, const std::string& tab) {
        for (GtkWidget* child : childrenOf(widget)) {
            if (!shows(child)) continue;
            if (GTK_IS_BUTTON(child)) {
                visit(child, "");
                continue;
            }
            add(child, "widget", labelText(child), false, tab);
            tabParts(child, tab);
        }
    }

    GtkWidget* native_;
    int scale_, originX_ = 0, originY_ = 0;
    double shiftX_ = 0, shiftY_ = 0;
    std::vector<Seen> all_;
};

// --------------------------------------------------------------------------------------------------- the application

std::unique_ptr<Channel> channel;

// The window of that X window's number; null where there is none.
GtkWidget* windowOf(unsigned long number) {
    GListModel* windows = gtk_window_get_toplevels();
    for (guint at = 0; at < g_list_model_get_n_items(windows); ++at) {
        const std::unique_ptr<void, decltype(&g_object_unref)> item(g_list_model_get_item(windows, at),
                                                                    &g_object_unref);
        auto* widget = GTK_WIDGET(item.get());
        GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(widget));
        if (shows(widget) && surface != nullptr && GDK_SURFACE_XID(surface) == number) return widget;
    }
    return nullptr;
}

gboolean pressed(GtkEventControllerLegacy* controller, GdkEvent* event, gpointer) {
    if (gdk_event_get_event_type(event) != GDK_BUTTON_PRESS || gdk_button_event_get_button(event) != 1) return FALSE;
    auto* native = gtk_native_get_for_surface(gdk_event_get_surface(event));
    double x = 0, y = 0, shiftX = 0, shiftY = 0;
    gdk_event_get_position(event, &x, &y);
    gtk_native_get_surface_transform(native, &shiftX, &shiftY);
    GtkWidget* target = gtk_widget_pick(GTK_WIDGET(native), x - shiftX, y - shiftY, GTK_PICK_DEFAULT);
    if (target == nullptr) target = gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(controller));
    const int scale = gtk_widget_get_scale_factor(target);
    int left = 0, top = 0;
    Window child = 0;
    GdkSurface* surface = gdk_event_get_surface(event);
    Display* display = GDK_SURFACE_XDISPLAY(surface);
    XTranslateCoordinates(display, GDK_SURFACE_XID(surface), DefaultRootWindow(display), 0, 0, &left, &top, &child);
    const auto all = Walk(GTK_WIDGET(native)).take();
    const Seen* control =
        smallestAt(all, left + static_cast<int>(x * scale), top + static_cast<int>(y * scale), [&](const Seen& seen) {
            auto* owner = static_cast<GtkWidget*>(const_cast<void*>(seen.owner));
            return owner == target || gtk_widget_is_ancestor(target, owner) || gtk_widget_is_ancestor(owner, target);
        });
    channel->send({{"pressed", control ? control->id : ""}, {"widget", G_OBJECT_TYPE_NAME(target)}});
    return FALSE;
}

// Sees a window's events before its widgets do.
void watch(GtkWidget* window) {
    if (g_object_get_data(G_OBJECT(window), "tarvix-probe-watched") != nullptr) return;
    g_object_set_data(G_OBJECT(window), "tarvix-probe-watched", window);
    GtkEventController* controller = gtk_event_controller_legacy_new();
    gtk_event_controller_set_propagation_phase(controller, GTK_PHASE_CAPTURE);
    g_signal_connect(controller, "event", G_CALLBACK(pressed), nullptr);
    gtk_widget_add_controller(window, controller);
}

gboolean clicked(GSignalInvocationHint*, guint, const GValue* values, gpointer) {
    channel->send({{"pressed", idOf(g_value_get_object(&values[0]))}, {"widget", "clicked"}});
    return TRUE;
}

gboolean asked(int, GIOCondition, gpointer) {
    for (const std::string& command : channel->commands()) {
        GtkWidget* window = windowOf(std::strtoul(command.c_str(), nullptr, 10));
        if (window != nullptr) watch(window);
        channel->send({{"controls", toJson(window ? Walk(window).take() : std::vector<Seen>())}});
    }
    return channel->fd() >= 0;
}

// The module is loaded before GTK is ready, in whichever thread asks GIO for something first.
gboolean begin(gpointer) {
    if (!gtk_is_initialized() || gdk_display_get_default() == nullptr) return G_SOURCE_CONTINUE;
    channel = std::make_unique<Channel>("GTK " + std::to_string(gtk_get_major_version()) + "." +
                                        std::to_string(gtk_get_minor_version()) + "." +
                                        std::to_string(gtk_get_micro_version()));
    if (channel->fd() < 0) return G_SOURCE_REMOVE;
    g_unix_fd_add(channel->fd(), G_IO_IN, asked, nullptr);
    // A class has to be there before its signals can be looked up.
    g_type_class_unref(g_type_class_ref(GTK_TYPE_BUTTON));
    g_signal_add_emission_hook(g_signal_lookup("clicked", GTK_TYPE_BUTTON), 0, clicked, nullptr, nullptr);
    return G_SOURCE_REMOVE;
}

}  // namespace
}  // namespace tarvix::probe

extern "C" {
G_MODULE_EXPORT void g_io_module_load(GIOModule*) { g_timeout_add(50, tarvix::probe::begin, nullptr); }
G_MODULE_EXPORT void g_io_module_unload(GIOModule*) {}
}
