// What the widgets of GTK 3 and GTK 4 that draw cells show; both have the same functions for them.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/applications/probes/Seen.h"

namespace tarvix::probe {

inline std::string taken(char* text) {
    const std::unique_ptr<char, decltype(&g_free)> owner(text, &g_free);
    return text == nullptr ? "" : text;
}

inline std::string lent(const char* text) { return text == nullptr ? "" : text; }

// A name that a widget keeps for its life.
inline std::string idOf(void* object) {
    static const GQuark key = g_quark_from_static_string("tarvix-probe-id");
    static int last = 0;
    auto number = GPOINTER_TO_INT(g_object_get_qdata(G_OBJECT(object), key));
    if (number == 0) g_object_set_qdata(G_OBJECT(object), key, GINT_TO_POINTER(number = ++last));
    return std::to_string(number);
}

inline bool isA(GtkWidget* widget, const char* type) {
    const GType known = g_type_from_name(type);
    return known != 0 && g_type_is_a(G_OBJECT_TYPE(widget), known);
}

// All of them, an application's and the toolkit's own; the two toolkits list them in different ways.
std::vector<GtkWidget*> childrenOf(GtkWidget* widget);

inline bool shows(GtkWidget* widget) { return gtk_widget_get_mapped(widget) && gtk_widget_get_opacity(widget) > 0; }

// What a label says; nothing where it isn't one.
inline std::string labelText(GtkWidget* widget) {
    if (GTK_IS_LABEL(widget)) return lent(gtk_label_get_text(GTK_LABEL(widget)));
    char* text = nullptr;
    if (isA(widget, "GtkInscription")) g_object_get(widget, "text", &text, nullptr);
    return taken(text);
}

// The texts of the labels on a widget.
inline std::string labelsOn(GtkWidget* widget) {
    if (!shows(widget)) return "";
    std::string text = labelText(widget);
    for (GtkWidget* child : childrenOf(widget)) {
        const std::string more = labelsOn(child);
        if (!more.empty()) text += (text.empty() ? "" : " ") + more;
    }
    return text;
}

// A walk derives from it. It has add(), boxOf(), visit() and visitChildren(), which differ.
template <class Walk>
class GtkCells {
protected:
    static std::string viewText(GtkTextView* view) {
        GdkRectangle visible;
        gtk_text_view_get_visible_rect(view, &visible);
        GtkTextIter start, end;
        gtk_text_view_get_line_at_y(view, &start, visible.y, nullptr);
        end = start;
        gtk_text_iter_forward_to_line_end(&end);
        return taken(gtk_text_buffer_get_text(gtk_text_view_get_buffer(view), &start, &end, FALSE));
    }

    // `view`: the widget on its button.
    static std::string comboText(GtkComboBox* combo, GtkWidget* view) {
        GtkTreeIter row;
        if (!gtk_combo_box_get_active_iter(combo, &row)) return "";
        // The cells that draw the button, not those of the list.

        GtkCellLayout* layout = GTK_IS_CELL_LAYOUT(view) ? GTK_CELL_LAYOUT(view) : GTK_CELL_LAYOUT(combo);
        gtk_cell_area_apply_attributes(gtk_cell_layout_get_area(layout), gtk_combo_box_get_model(combo), &row, FALSE,
                                       FALSE);
        return textOf(gtk_cell_layout_get_cells(layout));
    }

    static std::string textOf(GtkCellRenderer* cell) {
        char* text = nullptr;
        if (GTK_IS_CELL_RENDERER_TEXT(cell)) g_object_get(cell, "text", &text, nullptr);
        return taken(text);
    }
    static std::string textOf(GList* cells) {
        std::string all;
        for (GList* at = cells; at != nullptr; at = at->next) {
            const std::string text = textOf(GTK_CELL_RENDERER(at->data));
            if (!text.empty()) all += (all.empty() ? "" : " ") + text;
        }
        g_list_free(cells);
        return all;
    }

    // Where its rows are: below the headers.
    static GdkRectangle rowsOf(GtkTreeView* tree) {
        GdkRectangle rows;
        gtk_tree_view_get_visible_rect(tree, &rows);
        gtk_tree_view_convert_tree_to_widget_coords(tree, rows.x, rows.y, &rows.x, &rows.y);
        return rows;
    }

    void tree(GtkTreeView* tree) {
        GtkWidget* widget = GTK_WIDGET(tree);
        self().add(widget, "widget", "", false, "");
        for (GtkWidget* child : childrenOf(widget))
            if (!GTK_IS_BUTTON(child)) self().visit(child, "");  // an entry where a cell is edited
        GList* columns = gtk_tree_view_get_columns(tree);
        if (gtk_tree_view_get_headers_visible(tree))
            for (GList* at = columns; at != nullptr; at = at->next) header(GTK_TREE_VIEW_COLUMN(at->data));
        GtkTreePath *first = nullptr, *last = nullptr;
        if (!gtk_tree_view_get_visible_range(tree, &first, &last)) return g_list_free(columns);
        for (GtkTreePath* path = gtk_tree_path_copy(first); path != nullptr;) {
            int number = 0;
            for (GList* at = columns; at != nullptr; at = at->next)
                row(tree, path, GTK_TREE_VIEW_COLUMN(at->data), number++);
            const bool more = gtk_tree_path_compare(path, last) < 0 && next(tree, path);
            if (!more) {
                gtk_tree_path_free(path);
                path = nullptr;
            }
        }
        g_list_free(columns);
        gtk_tree_path_free(first);
        gtk_tree_path_free(last);
    }

    void header(GtkTreeViewColumn* column) {
        GtkWidget* button = gtk_tree_view_column_get_button(column);
        if (!shows(button)) return;
        const std::string text = labelsOn(button);
        const bool clickable = gtk_tree_view_column_get_clickable(column) != FALSE;
        self().add(button, {.id = idOf(button),
                            .kind = "header",
                            .text = text,
                            .frame = self().boxOf(button),
                            .counted = clickable || !text.empty(),
                            .clickable = clickable});
        self().visitChildren(button, idOf(button));
    }

    // The row below, into rows that are open and out of them again.
    static bool next(GtkTreeView* tree, GtkTreePath* path) {
        GtkTreeModel* model = gtk_tree_view_get_model(tree);
        GtkTreeIter row;
        if (gtk_tree_view_row_expanded(tree, path)) {
            gtk_tree_path_down(path);
            if (gtk_tree_model_get_iter(model, &row, path)) return true;
            gtk_tree_path_up(path);
        }
        do {
            gtk_tree_path_next(path);
            if (gtk_tree_model_get_iter(model, &row, path)) return true;
        } while (gtk_tree_path_up(path) && gtk_tree_path_get_depth(path) > 0);
        return false;
    }

    void row(GtkTreeView* tree, GtkTreePath* path, GtkTreeViewColumn* column, int number) {
        GtkTreeModel* model = gtk_tree_view_get_model(tree);
        GtkTreeIter at;
        if (!gtk_tree_view_column_get_visible(column) || !gtk_tree_model_get_iter(model, &at, path)) return;
        GtkWidget* widget = GTK_WIDGET(tree);
        GdkRectangle cell;
        gtk_tree_view_get_cell_area(tree, path, column, &cell);
        gtk_tree_view_convert_bin_window_to_widget_coords(tree, cell.x, cell.y, &cell.x, &cell.y);
        gtk_tree_view_column_cell_set_cell_data(column, model, &at, gtk_tree_model_iter_has_child(model, &at), FALSE);
        const std::string id = idOf(widget) + "/" + taken(gtk_tree_path_to_string(path)) + "/" + std::to_string(number);
        GList* renderers = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        int part = 0;
        for (GList* each = renderers; each != nullptr; each = each->next, ++part) {
            auto* renderer = GTK_CELL_RENDERER(each->data);
            if (gtk_cell_renderer_get_visible(renderer))
                cellPart(widget, id + "#" + std::to_string(part), column, renderer, cell);
        }
        g_list_free(renderers);
    }

    void cellPart(GtkWidget* widget, const std::string& id, GtkTreeViewColumn* column, GtkCellRenderer* renderer,
                  GdkRectangle cell) {
        GdkRectangle own = cell;
        int x = 0, width = 0;
        if (gtk_tree_view_column_cell_get_position(column, renderer, &x, &width)) {
            own.x = cell.x + x;
            own.width = width;
        }
        const std::string text = textOf(renderer);
        const bool toggles = GTK_IS_CELL_RENDERER_TOGGLE(renderer);
        self().add(widget,
                   {.id = id,
                    .kind = toggles ? "check cell" : "cell",
                    .text = text,
                    .frame = self().boxOf(widget, cell),
                    .textFrame = self().boxOf(widget, own),
                    .counted = toggles || !text.empty(),
                    .clickable = gtk_widget_is_sensitive(widget) != FALSE},
                   self().boxOf(widget, rowsOf(GTK_TREE_VIEW(widget))));
    }

    void icons(GtkWidget* widget) {
        auto* view = GTK_ICON_VIEW(widget);
        self().add(widget, "widget", "", false, "");
        GtkTreePath *first = nullptr, *last = nullptr;
        if (!gtk_icon_view_get_visible_range(view, &first, &last)) return;
        for (; gtk_tree_path_compare(first, last) <= 0; gtk_tree_path_next(first)) {
            GdkRectangle item;
            if (gtk_icon_view_get_cell_rect(view, first, nullptr, &item))
                icon(widget, GTK_CELL_LAYOUT(view), gtk_icon_view_get_model(view), first, item);
        }
        gtk_tree_path_free(first);
        gtk_tree_path_free(last);
    }

    void icon(GtkWidget* widget, GtkCellLayout* layout, GtkTreeModel* model, GtkTreePath* path, GdkRectangle item) {
        GtkTreeIter at;
        if (!gtk_tree_model_get_iter(model, &at, path)) return;
        std::string text;
        if (GtkCellArea* area = gtk_cell_layout_get_area(layout)) {
            gtk_cell_area_apply_attributes(area, model, &at, FALSE, FALSE);
            text = textOf(gtk_cell_layout_get_cells(layout));
        }
        self().add(widget, {.id = idOf(widget) + "/" + taken(gtk_tree_path_to_string(path)),
                            .kind = "icon",
                            .text = text,
                            .frame = self().boxOf(widget, item),
                            .counted = true,
                            .clickable = true});
    }

private:
    Walk& self() { return static_cast<Walk&>(*this); }
};

}  // namespace tarvix::probe
