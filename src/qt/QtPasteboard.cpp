#include "qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tarvix {

// Empty data of our own, other than QClipboard::clear(), leaves us the clipboard's owner.
void QtPasteboard::clearContents() { QGuiApplication::clipboard()->setMimeData(new QMimeData); }

void QtPasteboard::setString(std::string text) { QGuiApplication::clipboard()->setText(QString::fromStdString(text)); }

}  // namespace tarvix
