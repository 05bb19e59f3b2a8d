// A plug-in of Qt 5 and Qt 6 that tells what an application's windows show, by asking the widgets themselves, and which
// of their controls get a press of the mouse. QT_QPA_GENERIC_PLUGINS loads it.
#include "tests/applications/probes/QtProbe.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollBar>
#include <QSocketNotifier>
#include <QStatusBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <QWindow>

namespace tarvix::probe {
namespace {

std::string utf8(const QString& text) { return text.toStdString(); }

// A text as it is painted: an ampersand before a letter underlines it.
std::string plain(QString text) {
    QString shown;
    for (int at = 0; at < text.size(); ++at) {
        if (text[at] == QLatin1Char('&') && at + 1 < text.size()) ++at;
        shown += text[at];
    }
    return utf8(shown);
}

// A name that a widget keeps for its life.
std::string idOf(QObject* object) {
    static int last = 0;
    constexpr const char* key = "tarvix-probe-id";
    if (!object->property(key).isValid()) object->setProperty(key, ++last);
    return std::to_string(object->property(key).toInt());
}

class Walk {
public:
    explicit Walk(QWidget* window) { visit(window, ""); }

    std::vector<Seen> take() { return std::move(all_); }

private:
    static Box onScreen(const QWidget* widget, QRect inside) {
        const double scale = widget->devicePixelRatioF();
        const QPoint at = widget->mapToGlobal(inside.topLeft());
        const auto pixel = [scale](int value) { return static_cast<int>(value * scale + 0.5); };
        return {pixel(at.x()), pixel(at.y()), pixel(inside.width()), pixel(inside.height())};
    }

    // The part that nothing cuts off; empty where something else lies over its middle.
    static Box visibleBox(QWidget* widget, QRect inside) {
        QWidget* window = widget->window();
        QRect rest = QRect(widget->mapTo(window, inside.topLeft()), inside.size());
        for (QWidget* at = widget; at != nullptr; at = at == window ? nullptr : at->parentWidget())
            rest &= QRect(at->mapTo(window, QPoint(0, 0)), at->size());
        if (rest.isEmpty()) return {};
        QWidget* hit = window->childAt(rest.center());
        if (hit != nullptr && hit != widget && !widget->isAncestorOf(hit) && !hit->isAncestorOf(widget)) return {};
        return onScreen(window, rest);
    }

    void add(QWidget* widget, const std::string& part, const char* kind, std::string text, QRect inside, bool counted,
             const std::string& within, bool clickable = true, std::optional<QRect> drawn = {}) {
        Seen seen{.id = idOf(widget) + part,
                  .kind = kind,
                  .text = std::move(text),
                  .frame = onScreen(widget, inside),
                  .textFrame = drawn ? std::optional(onScreen(widget, *drawn)) : std::nullopt,
                  .visible = visibleBox(widget, inside),
                  .counted = counted && within.empty(),
                  .clickable = clickable && widget->isEnabled(),
                  .inside = within,
                  .owner = widget};
        if (!seen.visible.isEmpty()) all_.push_back(std::move(seen));
    }

    void visit(QWidget* widget, const std::string& within) {
        if (!widget->isVisible()) return;
        std::string below = within;
        if (auto* view = qobject_cast<QHeaderView*>(widget)) {
            header(view);
            return visitChildren(widget, within);
        }
        if (auto* menus = qobject_cast<QMenuBar*>(widget)) {
            actions(menus, "menu bar item");
        } else if (auto* menu = qobject_cast<QMenu*>(widget)) {
            actions(menu, "menu item");
        } else if (auto* tabs = qobject_cast<QTabBar*>(widget)) {
            for (int tab = 0; tab < tabs->count(); ++tab)
                add(widget, "/" + std::to_string(tab), "tab", plain(tabs->tabText(tab)), tabs->tabRect(tab), true, "");
        } else if (auto* items = qobject_cast<QAbstractItemView*>(widget)) {
            add(widget, "", "widget", "", widget->rect(), false, "");
            view(items);
        } else {
            const auto [kind, text] = control(widget);
            const bool counted = kind[0] != '\0';
            add(widget, "", counted ? kind : "widget", text, placeOf(widget), counted, within, true, drawnOf(widget));
            // What a group or a dock holds is not a part of its title.
            const bool holds = qobject_cast<QGroupBox*>(widget) || qobject_cast<QDockWidget*>(widget) ||
                               qobject_cast<QStatusBar*>(widget);
            if (counted && within.empty() && !holds) below = idOf(widget);
        }
        visitChildren(widget, below);
    }

    void visitChildren(QWidget* widget, const std::string& within) {
        for (QObject* child : widget->children()) {
            auto* below = qobject_cast<QWidget*>(child);
            if (below != nullptr && !below->isWindow()) visit(below, within);
        }
    }

    // What kind of control a widget is, and what is written on it; no kind where it is none.
    static std::pair<const char*, std::string> control(QWidget* widget) {
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) return {buttonKind(button), buttonText(button)};
        if (auto* combo = qobject_cast<QComboBox*>(widget)) return {"combo box", utf8(combo->currentText())};
        if (auto* spin = qobject_cast<QAbstractSpinBox*>(widget)) return {"spin button", utf8(spin->text())};
        if (auto* line = qobject_cast<QLineEdit*>(widget)) {
            const QString shown = line->displayText();
            return {"entry", utf8(shown.isEmpty() ? line->placeholderText() : shown)};
        }
        if (auto* edit = qobject_cast<QTextEdit*>(widget))
            return {"text area", utf8(edit->cursorForPosition(QPoint(1, 1)).block().text())};
        if (auto* edit = qobject_cast<QPlainTextEdit*>(widget))
            return {"text area", utf8(edit->cursorForPosition(QPoint(1, 1)).block().text())};
        if (auto* label = qobject_cast<QLabel*>(widget)) {
            const std::string text = labelText(label);
            return {text.find_first_not_of(" \n\t") == std::string::npos ? "" : "label", text};
        }
        if (qobject_cast<QScrollBar*>(widget)) return {"", ""};
        if (qobject_cast<QAbstractSlider*>(widget)) return {"slider", ""};
        if (auto* progress = qobject_cast<QProgressBar*>(widget)) {
            const bool told = progress->isTextVisible() && !progress->text().isEmpty();
            return {told ? "progress" : "", told ? utf8(progress->text()) : ""};
        }
        if (auto* group = qobject_cast<QGroupBox*>(widget))
            return {group->title().isEmpty() ? "" : "group", plain(group->title())};
        if (auto* dock = qobject_cast<QDockWidget*>(widget)) {
            const bool told = dock->titleBarWidget() == nullptr && !dock->windowTitle().isEmpty();
            return {told ? "dock" : "", told ? plain(dock->windowTitle()) : ""};
        }
        if (auto* bar = qobject_cast<QStatusBar*>(widget))
            return {bar->currentMessage().isEmpty() ? "" : "status bar", utf8(bar->currentMessage())};
        return {"", ""};
    }

    // A group and a dock are their titles, in the strip above what they hold.
    static QRect placeOf(QWidget* widget) {
        QRect place = widget->rect();
        if (auto* group = qobject_cast<QGroupBox*>(widget); group && !group->title().isEmpty())
            place.setBottom(group->contentsRect().top());
        if (auto* dock = qobject_cast<QDockWidget*>(widget); dock && dock->widget() && !dock->titleBarWidget())
            place.setBottom(dock->widget()->y() - 1);
        return place;
    }

    // A check or radio button takes clicks on its mark and its text alone, however wide it is.
    static std::optional<QRect> drawnOf(QWidget* widget) {
        const bool isCheck = widget->inherits("QCheckBox");
        if (!isCheck && !widget->inherits("QRadioButton")) return std::nullopt;
        auto* button = qobject_cast<QAbstractButton*>(widget);
        QStyleOptionButton option;
        option.initFrom(button);
        option.text = button->text();
        option.icon = button->icon();
        option.iconSize = button->iconSize();
        return widget->style()->subElementRect(isCheck ? QStyle::SE_CheckBoxClickRect : QStyle::SE_RadioButtonClickRect,
                                               &option, widget);
    }

    static const char* buttonKind(QAbstractButton* button) {
        if (qobject_cast<QRadioButton*>(button)) return "radio button";
        if (auto* tool = qobject_cast<QToolButton*>(button); tool && tool->popupMode() == QToolButton::InstantPopup)
            return "menu button";
        if (!button->isCheckable()) return "button";
        return button->inherits("QCheckBox") ? "check box" : "toggle button";
    }

    static std::string buttonText(QAbstractButton* button) {
        // A tool button of a tool bar has a text that isn't painted.
        auto* tool = qobject_cast<QToolButton*>(button);
        const bool iconOnly = tool != nullptr && tool->toolButtonStyle() == Qt::ToolButtonIconOnly &&
                              (!tool->icon().isNull() || tool->arrowType() != Qt::NoArrow);
        return iconOnly ? "" : plain(button->text());
    }

    static std::string labelText(QLabel* label) {
        const QString text = label->text();
        const bool rich =
            label->textFormat() == Qt::RichText || (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(text));
        if (rich) return utf8(QTextDocumentFragment::fromHtml(text).toPlainText());
        return label->buddy() != nullptr ? plain(text) : utf8(text);
    }

    template <class Menu>
    void actions(Menu* menu, const char* kind) {
        add(menu, "", "widget", "", menu->rect(), false, "");
        int number = 0;
        for (QAction* action : menu->actions()) {
            const std::string part = "/" + std::to_string(number++);
            if (!action->isVisible() || action->isSeparator()) continue;
            const std::string text = plain(action->text().section(QLatin1Char('\t'), 0, 0));
            add(menu, part, kind, text, menu->actionGeometry(action), true, "", action->isEnabled());
        }
    }

    void header(QHeaderView* header) {
        if (header->model() == nullptr) return;
        for (int section = 0; section < header->count(); ++section) {
            if (header->isSectionHidden(section)) continue;
            const int at = header->sectionViewportPosition(section), size = header->sectionSize(section);
            const bool across = header->orientation() == Qt::Horizontal;
            const QRect box = across ? QRect(at, 0, size, header->viewport()->height())
                                     : QRect(0, at, header->viewport()->width(), size);
            const QString text = header->model()->headerData(section, header->orientation()).toString();
            add(header->viewport(), "/" + std::to_string(section), "header", utf8(text), box, !text.isEmpty(), "",
                header->sectionsClickable());
        }
    }

    void view(QAbstractItemView* view) {
        QWidget* port = view->viewport();
        items(view, port, view->rootIndex());
    }

    // The items of a model that are painted. Rows come in their order, so that the first below the view ends them.
    void items(QAbstractItemView* view, QWidget* port, const QModelIndex& parent) {
        const QAbstractItemModel* model = view->model();
        if (model == nullptr) return;
        const int rows = model->rowCount(parent), columns = std::max(model->columnCount(parent), 1);
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) item(view, port, model->index(row, column, parent));
            const QModelIndex first = model->index(row, 0, parent);
            if (auto* tree = qobject_cast<QTreeView*>(view); tree != nullptr && tree->isExpanded(first))
                items(view, port, first);
        }
    }

    void item(QAbstractItemView* view, QWidget* port, const QModelIndex& index) {
        const QRect box = view->visualRect(index);
        if (!index.isValid() || !box.isValid() || !port->rect().intersects(box)) return;
        const QString text = index.data().toString();
        const bool checks = index.data(Qt::CheckStateRole).isValid();
        const std::string part = "/" + std::to_string(index.row()) + "/" + std::to_string(index.column()) + "/" +
                                 std::to_string(index.internalId() % 100000);
        add(port, part, "cell", utf8(text), box, !text.isEmpty() || checks, "",
            (index.flags() & Qt::ItemIsEnabled) != 0);
    }

    std::vector<Seen> all_;
};

}  // namespace

Probe::Probe() : channel_("Qt " + std::string(qVersion())) {
    if (channel_.fd() < 0) return;
    auto* notifier = new QSocketNotifier(channel_.fd(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        for (const std::string& command : channel_.commands())
            channel_.send({{"controls", toJson(seenInWindow(std::stoull(command)))}});
        if (channel_.fd() < 0) notifier->setEnabled(false);
    });
    qApp->installEventFilter(this);
}

// In the window of that number, and in what has opened over it.
std::vector<Seen> Probe::seenInWindow(unsigned long long number) {
    std::vector<Seen> all;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) continue;
        const bool isPopup = window->windowType() == Qt::Popup;
        if (!isPopup && (!window->windowHandle() || window->windowHandle()->winId() != number)) continue;
        for (Seen& seen : Walk(window).take()) all.push_back(std::move(seen));
    }
    return all;
}

bool Probe::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget != nullptr &&
        (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick))
        press(widget, static_cast<QMouseEvent*>(event));
    return QObject::eventFilter(watched, event);
}

void Probe::press(QWidget* widget, QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || event->timestamp() == lastPress_) return;
    lastPress_ = event->timestamp();
    const double scale = widget->devicePixelRatioF();
    const QPoint at = widget->mapToGlobal(event->pos());
    const auto all = Walk(widget->window()).take();
    const Seen* control =
        smallestAt(all, static_cast<int>(at.x() * scale), static_cast<int>(at.y() * scale), [&](const Seen& seen) {
            auto* owner = static_cast<QWidget*>(const_cast<void*>(seen.owner));
            return owner == widget || owner->isAncestorOf(widget) || widget->isAncestorOf(owner);
        });
    channel_.send({{"pressed", control ? control->id : ""}, {"widget", widget->metaObject()->className()}});
}

QObject* Plugin::create(const QString&, const QString&) {
    // The application isn't complete yet.
    QTimer::singleShot(0, [] {
        if (qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) static Probe probe;
    });
    return new QObject;
}

}  // namespace tarvix::probe
