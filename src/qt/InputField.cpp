#include "qt/InputField.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleFactory>
#include <array>

namespace tarvix {

namespace {

struct Command {
    int key;
    Qt::KeyboardModifiers modifiers;
    void (*run)(QLineEdit&);
};

const std::array<Command, 6> kCommands{{
    {Qt::Key_A, Qt::MetaModifier, [](QLineEdit& field) { field.selectAll(); }},
    {Qt::Key_C, Qt::MetaModifier, [](QLineEdit& field) { field.copy(); }},
    {Qt::Key_V, Qt::MetaModifier, [](QLineEdit& field) { field.paste(); }},
    {Qt::Key_X, Qt::MetaModifier, [](QLineEdit& field) { field.cut(); }},
    {Qt::Key_Z, Qt::MetaModifier, [](QLineEdit& field) { field.undo(); }},
    {Qt::Key_Z, Qt::MetaModifier | Qt::ShiftModifier, [](QLineEdit& field) { field.redo(); }},
}};

}  // namespace

InputField::InputField(QWidget* parent) : QLineEdit(parent) {
    // Themes draw fields in their own ways, some with a ground that can't be turned off; this one draws what it is
    // told.
    QStyle* plain = QStyleFactory::create("Fusion");
    plain->setParent(this);
    setStyle(plain);
    setFrame(false);
    setAutoFillBackground(false);
    setContextMenuPolicy(Qt::NoContextMenu);  // a menu would take the keyboard away
    setDragEnabled(false);                    // and a drag the pointer
    setAccessibleName("The Input");
    connect(this, &QLineEdit::textEdited, this, [this] {
        if (onEdited) onEdited();
    });
}

QString InputField::shownText() const {
    QString shown = text();
    return shown.insert(cursorPosition(), composing_);
}

void InputField::dropComposition() {
    QGuiApplication::inputMethod()->reset();
    QInputMethodEvent nothing;
    inputMethodEvent(&nothing);
    isComposable_ = false;
}

void InputField::keyPressEvent(QKeyEvent* event) {
    if (onKey) onKey();
    if (event->key() == Qt::Key_Escape) {
        if (onCancel) onCancel();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return;
    if (!(event->modifiers() & Qt::MetaModifier)) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    const QString before = text();
    for (const Command& command : kCommands)
        if (command.key == event->key() && command.modifiers == event->modifiers()) command.run(*this);
    if (text() != before && onEdited) onEdited();
}

void InputField::inputMethodEvent(QInputMethodEvent* event) {
    if (!isComposable_) return;
    composing_ = event->preeditString();
    QLineEdit::inputMethodEvent(event);
    if (onComposing) onComposing();
}

}  // namespace tarvix
