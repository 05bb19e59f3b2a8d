// The symbol of the status item: three lines of wind.
#pragma once

#include <QColor>
#include <QImage>

namespace tarvix {

struct SymbolColors {
    QColor lines;
    QColor edge;  // around the lines, for grounds that are like them
};

// Readable on grounds of any lightness, and best where the guess is right.
SymbolColors symbolColors(bool isOnDark);
bool isDark(const QColor& ground);

// The picture is square, transparent around the symbol.
QImage windSymbol(int size, const SymbolColors& colors);

}  // namespace tarvix
