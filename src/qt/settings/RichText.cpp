#include "qt/settings/RichText.h"

#include <QStringList>

#include "qt/QtText.h"

namespace tarvix {

QString plainText(std::string_view text) { return textOf(text).remove('`'); }

// Code stays on one line.
QString richText(std::string_view text) {
    const QStringList parts = textOf(text).split('`');
    QString html;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QString part = parts[i].toHtmlEscaped();
        html += i % 2 == 1 ? "<code>" + QString(part).replace(' ', QChar::Nbsp) + "</code>" : part;
    }
    return html.replace("\n", "<br>");
}

}  // namespace tarvix
