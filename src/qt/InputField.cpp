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
    quint32 place;  // the X server's keycode of that letter on the US layout
    Qt::KeyboardModifiers modifiers;
    void (*run)(QLineEdit&);
};

const std::array<Command, 6> kCommands{{
    {Qt::Key_A, 38, Qt::MetaModifier, [](QLineEdit& field) { field.selectAll(); }},
    {Qt::Key_C, 54, Qt::MetaModifier, [](QLineEdit& field) { field.copy(); }},
    {Qt::Key_V, 55, Qt::MetaModifier, [](QLineEdit& field) { field.paste(); }},
    {Qt::Key_X, 53, Qt::MetaModifier, [](QLineEdit& field) { field.cut(); }},
    {Qt::Key_Z, 52, Qt::MetaModifier, [](QLineEdit& field) { field.undo(); }},
    {Qt::Key_Z, 52, Qt::MetaModifier | Qt::ShiftModifier, [](QLineEdit& field) { field.redo(); }},
}};

// On a layout without Latin letters the letter is the one of the place, as it is for every other key of a search. Qt
// itself (6.4) takes it so with Control alone.
bool isKeyOf(const QKeyEvent& event, const Command& command) {
    constexpr int lastLatin = 0xff;
    return event.key() <= lastLatin ? event.key() == command.key : event.nativeScanCode() == command.place;
}

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
        if (isKeyOf(*event, command) && command.modifiers == event->modifiers()) command.run(*this);
    if (text() != before && onEdited) onEdited();
}

void InputField::inputMethodEvent(QInputMethodEvent* event) {
    if (!isComposable_) return;
    composing_ = event->preeditString();
    QLineEdit::inputMethodEvent(event);
    if (onComposing) onComposing();
}

}  // namespace tarvix
