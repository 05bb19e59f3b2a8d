#include "qt/PopUpMenu.h"

#include <QAction>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include "qt/MenuKeys.h"

namespace tarvix {

namespace {

// An ampersand stands before the letter that a menu underlines.
QString textOf(const MenuItem& item) { return QString::fromStdString(item.title).replace("&", "&&"); }

void fill(QMenu& shown, const Menu& menu) {
    for (const MenuItem& item : menu) {
        if (item.title.empty()) {
            shown.addSeparator();
        } else if (!item.submenu.empty()) {
            fill(*shown.addMenu(textOf(item)), item.submenu);
        } else {
            QAction* action = shown.addAction(textOf(item));
            action->setShortcut(keySequenceOf(item));
            action->setShortcutVisibleInContextMenu(true);
            action->setEnabled(item.action != nullptr);
            QObject::connect(action, &QAction::triggered, &shown,
                             [run = item.action] { QTimer::singleShot(0, qGuiApp, run); });
        }
    }
}

// Towards the middle of the screen.
QPoint placeOf(QSize menu, const QRect& beside) {
    const QScreen* screen = QGuiApplication::screenAt(beside.center());
    const QRect area = (screen ? screen : QGuiApplication::primaryScreen())->geometry();
    const bool isBelow = beside.center().y() > area.center().y();
    const int x = qBound(area.left(), beside.left(), qMax(area.left(), area.right() + 1 - menu.width()));
    return {x, isBelow ? beside.top() - menu.height() : beside.bottom() + 1};
}

}  // namespace

void PopUpMenu::open(const Menu& menu, const QRect& beside) {
    menu_ = std::make_unique<QMenu>();
    fill(*menu_, menu);
    menu_->popup(placeOf(menu_->sizeHint(), beside));
}

void PopUpMenu::close() { menu_.reset(); }

}  // namespace tarvix
