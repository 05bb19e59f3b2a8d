#include "qt/QtInspectorPanel.h"

#include <QApplication>
#include <QGlyphRun>
#include <QPainter>
#include <QTextLayout>
#include <QWidget>
#include <algorithm>
#include <cmath>

#include "qt/RoundedPanel.h"
#include "qt/ServerSync.h"

namespace tarvix {

namespace {

// In points.
constexpr double kHeadingSize = 17;
constexpr double kTextSize = 13;
constexpr double kPadding = 16;
constexpr double kBelowHeading = 10;
constexpr double kCornerRadius = 10;
constexpr double kBorder = 1;

// Plain text in lines, as measured and as painted.
class Paragraph {
public:
    // As many whole lines as there is room for, at least one.
    void arrange(QString text, const QFont& font, QSizeF most) {
        layout_.setFont(font);
        layout_.setText(text.replace('\n', QChar(QChar::LineSeparator)));
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);  // a long address has no blanks
        layout_.setTextOption(option);
        size_ = {};
        layout_.beginLayout();
        for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
            line.setLineWidth(most.width());
            line.setPosition({0, size_.height()});
            const double bottom = size_.height() + line.height();
            if (bottom > most.height() && line.lineNumber() > 0) {
                line.setNumColumns(0);
                break;
            }
            size_ = {std::max(size_.width(), line.naturalTextWidth()), bottom};
        }
        layout_.endLayout();
    }

    QSizeF size() const { return size_; }

    void paint(QPainter& painter, QPointF at) const {
        for (int i = 0; i < layout_.lineCount(); ++i)
            if (layout_.lineAt(i).y() < size_.height()) layout_.lineAt(i).draw(&painter, at);
    }

private:
    QTextLayout layout_;
    QSizeF size_;
};

bool canBeShown(const QString& word, const QFont& font) {
    QTextLayout layout(word, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    for (const QGlyphRun& run : layout.glyphRuns())
        if (run.glyphIndexes().contains(0)) return false;
    return true;
}

// Without the words that no font here has the glyphs of: a missing emoji is better than a box.
QString showable(const QString& text, const QFont& font) {
    QStringList words = text.split(' ');
    words.removeIf([&](const QString& word) { return !canBeShown(word, font); });
    return words.join(' ');
}

class InspectorWindow : public QWidget {
public:
    InspectorWindow()
        : QWidget(nullptr, Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::Tool | Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus) {
        setObjectName("Inspector");
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        winId();
    }

    void setContent(const InspectorContent& content) {
        content_ = content;
        update();
    }

    Size arrange(Size most) {
        const double paddings = 2 * kPadding * scale_;
        const double width = most.width - paddings;
        const QFont headingFont = panelFont(kHeadingSize * scale_, QFont::Bold);
        heading_.arrange(showable(QString::fromStdString(content_.heading), headingFont), headingFont,
                         {width, most.height});
        QString body = QString::fromStdString(content_.body);
        if (body.endsWith('\n')) body.chop(1);
        body_.arrange(body, panelFont(kTextSize * scale_, QFont::Normal), {width, most.height - paddings - bodyTop()});
        return {std::min(most.width, std::ceil(std::max(heading_.size().width(), body_.size().width()) + paddings)),
                std::min(most.height, std::ceil(paddings + bodyTop() + body_.size().height()))};
    }

    void setAppearance(const AppearanceValues& appearance) {
        isDark_ = appearance.isDark;
        scale_ = appearance.scale;
        update();
    }

    void setTranslucent(bool translucent) {
        translucent_ = translucent;
        maskIfOpaque();
    }

    // Not by resizeEvent(), which a hidden widget gets at its next showing only.
    void place(const QRect& pixels) {
        setGeometry(pixels);
        maskIfOpaque();
        update();
    }

    std::function<void()> onPainted;

protected:
    void paintEvent(QPaintEvent*) override {
        const bool dark = isDark_;
        const QColor ink = dark ? Qt::white : Qt::black;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor edge = ink;
        edge.setAlphaF(0.3F);
        painter.setPen(QPen(edge, kBorder * scale_));
        painter.setBrush(dark ? QColor(44, 44, 48) : QColor(250, 250, 250));
        painter.drawRoundedRect(box(), kCornerRadius * scale_, kCornerRadius * scale_);
        painter.setPen(ink);
        const double padding = kPadding * scale_;
        heading_.paint(painter, {padding, padding});
        body_.paint(painter, {padding, padding + bodyTop()});
        if (onPainted) onPainted();
    }

private:
    double bodyTop() const { return heading_.size().height() + kBelowHeading * scale_; }

    QRectF box() const {
        const double inset = kBorder * scale_ / 2;
        return QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    }

    void maskIfOpaque() {
        if (translucent_ || size().isEmpty()) {
            clearMask();
            return;
        }
        maskRounded(*this, box(), kCornerRadius * scale_, kBorder * scale_);
    }

    InspectorContent content_;
    double scale_ = 1;
    Paragraph heading_, body_;
    bool translucent_ = true;
    bool isDark_ = false;
};

class QtInspectorPanel : public InspectorPanel {
public:
    explicit QtInspectorPanel(const PanelServices& services) : services_(services) {
        window_.onPainted = [this] { painted(); };
        window_.setAppearance(services_.appearance.values());
        appearanceChanged_ =
            services_.appearance.onChange([this] { window_.setAppearance(services_.appearance.values()); });
    }

    void setContent(const InspectorContent& content) override {
        window_.setContent(content);
        unreported_ = true;
    }

    Size fittingSize(Size most) override { return window_.arrange(most); }

    void setFrame(PanelRect frame) override {
        window_.place(pixelsOf(flip(frame, firstScreenHeight(services_.screens))));
    }

    void orderFrontRegardless() override {
        window_.setTranslucent(services_.windowing.isComposited());
        if (!window_.isVisible()) {
            window_.show();
            syncWithServer();
        }
        services_.windowing.stackOnTop(static_cast<std::uint32_t>(window_.winId()));
    }

    void orderOut() override {
        if (!window_.isVisible()) return;
        window_.hide();
        flushToServer();
    }

private:
    void painted() {
        if (!unreported_) return;
        unreported_ = false;
        // Queued, as the painting reaches the server after the event that asked for it.
        QMetaObject::invokeMethod(
            &window_,
            [this] {
                flushToServer();
                services_.milestones.reached(milestone::inspectorShown, 0);
            },
            Qt::QueuedConnection);
    }

    PanelServices services_;
    InspectorWindow window_;
    bool unreported_ = false;
    Subscription appearanceChanged_;
};

}  // namespace

std::unique_ptr<InspectorPanel> makeQtInspectorPanel(const PanelServices& services) {
    return std::make_unique<QtInspectorPanel>(services);
}

}  // namespace tarvix
