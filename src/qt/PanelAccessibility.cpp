#include "qt/PanelAccessibility.h"

#include <QAccessibleInterface>
#include <QAccessibleWidget>
#include <QWidget>

namespace tarvix {

namespace {

// An object that isn't there: neither Qt's list of windows nor its events take it up.
class Unseen : public QAccessibleInterface {
public:
    bool isValid() const override { return false; }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override { return nullptr; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QString text(QAccessible::Text) const override { return {}; }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override { return {}; }
    QAccessible::Role role() const override { return QAccessible::NoRole; }
    QAccessible::State state() const override { return {}; }
};

// The Input's window, with its field alone: that it is busy for a moment is nothing to be told.
class InputDialog : public QAccessibleWidget {
public:
    explicit InputDialog(QWidget* window) : QAccessibleWidget(window, QAccessible::Dialog) {}

    int childCount() const override { return field() ? 1 : 0; }
    QAccessibleInterface* child(int index) const override { return index == 0 ? field() : nullptr; }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child && child->object() && child->object() == widget()->focusProxy() ? 0 : -1;
    }

private:
    QAccessibleInterface* field() const { return QAccessible::queryAccessibleInterface(widget()->focusProxy()); }
};

bool isOnlyLookedAt(const QWidget& widget) {
    return widget.windowFlags().testFlag(Qt::WindowTransparentForInput) ||
           widget.testAttribute(Qt::WA_TransparentForMouseEvents);
}

QAccessibleInterface* describe(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget || className != "QWidget") return nullptr;
    if (isOnlyLookedAt(*widget)) return new Unseen;
    if (widget->isWindow() && widget->objectName() == "TheInput") return new InputDialog(widget);
    if (widget->isWindow() && widget->objectName() == "Splash")
        return new QAccessibleWidget(widget, QAccessible::Dialog);
    return nullptr;
}

}  // namespace

void describePanelsToScreenReaders() { QAccessible::installFactory(describe); }

}  // namespace tarvix
