#include "qt/QtInputPanel.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QBitmap>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <cmath>

#include "base/Listeners.h"
#include "qt/AfterTheInput.h"
#include "qt/ContinuousCorners.h"
#include "qt/FocusKeeper.h"
#include "qt/InputField.h"
#include "qt/KeyPace.h"
#include "qt/ProgressSpinner.h"
#include "qt/ServerSync.h"

namespace tarvix {

namespace {

constexpr double kPadding = 6;  // between the rounded rectangle and the field
constexpr double kMargin = 16;  // around the rounded rectangle
constexpr double kSpinnerSize = 14;
constexpr int kMiddleGray = 140;   // black is read better on what is brighter
constexpr double kLargeText = 28;  // beyond it the field reaches over the trailing edge, where its spare width lies

// The panel's look in pixels of this desktop.
struct PixelLook {
    PixelLook(const InputLook& look, double desktopScale)
        : scale(desktopScale),
          textSize(std::max(1, static_cast<int>(std::lround(look.textSize * scale)))),
          opacity(std::clamp(look.backgroundOpacity, 0.0, 1.0)),
          cornerRadius(look.cornerRadius * scale),
          border(std::max(0.0, look.borderThickness * scale)),
          padding(std::round(kPadding * scale)),
          trailingPadding(look.textSize > kLargeText ? -padding : padding),
          margin(std::round(kMargin * scale)),
          isLarge(look.textSize > kLargeText) {}

    double scale;
    int textSize;
    double opacity, cornerRadius, border, padding, trailingPadding, margin;
    bool isLarge;

    // The stroke lies half inside and half outside of the rectangle's edge. The edge is where the stroke, however thin,
    // covers whole pixels, so that it is crisp: this far inside of the window's.
    double outset() const { return std::ceil(border) / 2; }
    // What of the frame the window leaves out on each side.
    double unpainted() const { return margin - std::ceil(outset()); }
};

class InputWindow : public QWidget {
public:
    InputWindow()
        : QWidget(nullptr,
                  Qt::X11BypassWindowManagerHint | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool),
          field_(this),
          spinner_(this),
          look_(InputLook{}, 1) {
        setObjectName("TheInput");
        setWindowTitle("The Input");
        setAccessibleName("The Input");
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setFocusProxy(&field_);
        field_.setFocus();
    }

    InputField& field() { return field_; }
    ProgressSpinner& spinner() { return spinner_; }
    const PixelLook& look() const { return look_; }

    void setLook(const InputLook& look, double scale) {
        look_ = PixelLook(look, scale);
        QFont font = QGuiApplication::font();
        font.setPixelSize(look_.textSize);
        font.setWeight(QFont::Normal);
        field_.setFont(font);
        update();
    }

    void setAppearance(const AppearanceValues& appearance) {
        dark_ = appearance.isDark;
        const auto [red, green, blue, alpha] = appearance.selection;
        const QColor selection =
            QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
        QPalette palette = QGuiApplication::palette();
        palette.setColor(QPalette::Text, dark_ ? Qt::white : Qt::black);
        palette.setColor(QPalette::Base, Qt::transparent);
        palette.setColor(QPalette::Highlight, selection);
        palette.setColor(QPalette::HighlightedText, qGray(selection.rgb()) < kMiddleGray ? Qt::white : Qt::black);
        field_.setPalette(palette);
        spinner_.setPalette(palette);
        update();
    }

    void setTranslucent(bool translucent) {
        if (translucent_ == translucent) return;
        translucent_ = translucent;
        maskIfOpaque();
        update();
    }

    // Not by resizeEvent(), which a hidden widget gets at its next showing only.
    void place(const QRect& pixels) {
        setGeometry(pixels);
        arrange();
        maskIfOpaque();
    }

    double measuredWidth() const {
        return QFontMetricsF(field_.font()).horizontalAdvance("X" + field_.shownText() + "XX");
    }
    double textHeight() const { return std::ceil(QFontMetricsF(field_.font()).height()); }

    // The panel's least frame.
    Size fittingSize() const {
        return {std::ceil(measuredWidth()) + look_.padding + look_.trailingPadding + 2 * look_.margin,
                textHeight() + 2 * look_.padding + 2 * look_.margin};
    }

    std::function<void(QPoint by)> onDragged;
    std::function<void()> onPainted;
    std::function<void()> onKeyPress;  // one is on its way into the field

protected:
    // Seen here and not as an event of the field, since a dead key or an input method may keep it.
    bool nativeEvent(const QByteArray& type, void* message, qintptr* result) override {
        if ((static_cast<const xcb_generic_event_t*>(message)->response_type & 0x7f) == XCB_KEY_PRESS) onKeyPress();
        return QWidget::nativeEvent(type, message, result);
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPainterPath shape = continuousRoundedRect(box(), look_.cornerRadius);
        if (translucent_) {
            QColor ground = this->ground();
            ground.setAlphaF(static_cast<float>(look_.opacity));
            painter.fillPath(shape, ground);
            if (look_.border > 0) painter.strokePath(shape, QPen(ink(), look_.border));
        } else {
            paintOpaque(painter, shape);
        }
        if (onPainted) onPainted();
    }

    void mousePressEvent(QMouseEvent* event) override { grip_ = event->globalPosition().toPoint(); }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!(event->buttons() & Qt::LeftButton)) return;
        const QPoint at = event->globalPosition().toPoint();
        if (onDragged) onDragged(at - grip_);
        grip_ = at;
    }

private:
    QRectF box() const {
        const double outset = look_.outset();
        return QRectF(rect()).adjusted(outset, outset, -outset, -outset);
    }

    void arrange() {
        const QRectF inside = box();
        const double height = textHeight();
        field_.setGeometry(QRectF(inside.left() + look_.padding, inside.center().y() - height / 2,
                                  inside.width() - look_.padding - look_.trailingPadding, height)
                               .toRect());
        const double size = std::round(kSpinnerSize * look_.scale);
        const double top = look_.isLarge ? inside.top() + look_.padding : inside.center().y() - size / 2;
        spinner_.setGeometry(QRectF(inside.right() - look_.padding - size, top, size, size).toRect());
    }

    QColor ground() const { return dark_ ? Qt::black : Qt::white; }
    QColor ink() const { return dark_ ? Qt::white : Qt::black; }

    // The mask cuts whole pixels, so that all of them have to be covered; a border thinner than one is a pale one.
    void paintOpaque(QPainter& painter, const QPainterPath& shape) {
        painter.fillRect(rect(), look_.border >= 1 ? ink() : ground());
        painter.fillPath(shape, ground());
        if (look_.border <= 0) return;
        QColor border = ink();
        border.setAlphaF(static_cast<float>(std::min(1.0, look_.border)));
        painter.strokePath(shape, QPen(border, std::max(1.0, look_.border)));
    }

    // Without a compositor the corners would show as black.
    void maskIfOpaque() {
        if (translucent_) {
            clearMask();
            return;
        }
        QBitmap shape(size());
        shape.clear();
        QPainter painter(&shape);
        const QPainterPath outline = continuousRoundedRect(box(), look_.cornerRadius);
        painter.fillPath(outline, Qt::color1);
        if (look_.border > 0) painter.strokePath(outline, QPen(Qt::color1, std::max(1.0, look_.border)));
        painter.end();
        setMask(shape);
    }

    InputField field_;
    ProgressSpinner spinner_;
    PixelLook look_;
    bool translucent_ = true;
    bool dark_ = false;
    QPoint grip_;
};

class QtInputPanel : public InputPanel {
public:
    explicit QtInputPanel(const PanelServices& services) : services_(services) {
        window_.field().onEdited = [this] { edited(); };
        window_.field().onKey = [this] { pace_.typed(); };
        window_.field().onComposing = [this] {
            pace_.composed();
            remeasure();
        };
        window_.field().onCancel = [this] { cancelled_(); };
        window_.onDragged = [this](QPoint by) { dragged(by); };
        window_.onPainted = [this] { painted(); };
        window_.onKeyPress = [this] {
            window_.field().keyComes();
            pace_.pressed();
        };
        pace_.onDealtWith = [this] { services_.windowing.readyForKeyPress(); };
        window_.setAppearance(services_.appearance.values());
        appearanceChanged_ = services_.appearance.onChange([this] { appearanceChanged(); });
        adoptLook();
        warmUp();
    }

    ~QtInputPanel() override { orderOut(); }

    PanelRect frame() const override { return frame_; }

    void setFrame(PanelRect frame) override {
        const Size least = window_.fittingSize();
        frame_ = {frame.origin, {std::max(frame.size.width, least.width), least.height}};
        const AxRect place = flip(frame_, firstScreenHeight(services_.screens));
        const double off = window_.look().unpainted();
        window_.place(pixelsOf(
            {{place.origin.x + off, place.origin.y + off}, {place.size.width - 2 * off, place.size.height - 2 * off}}));
    }

    bool isVisible() const override { return window_.isVisible(); }

    void makeKeyAndOrderFront() override {
        orderFrontRegardless();
        if (!hasKeyboard_) setHasKeyboard(services_.windowing.takeKeyboard(number(), [this] { lostKeyboard(); }));
        services_.windowing.readyForKeyPress();
        if (!hasKeyboard_) QTimer::singleShot(0, &window_, [this] { resigned_(); });
    }

    void orderFrontRegardless() override {
        window_.setTranslucent(services_.windowing.isComposited());
        setFrame(frame_);  // the first screen's height may have changed
        awaitsPainting_ = !window_.isVisible();
        window_.show();
        syncWithServer();  // a grab of the keyboard wants a window that is mapped
        services_.windowing.stackOnTop(number());
    }

    void orderOut() override {
        const bool wasVisible = window_.isVisible();
        if (hasKeyboard_) services_.windowing.releaseKeyboard();
        setHasKeyboard(false);
        if (wasVisible) window_.field().dropComposition();
        window_.hide();
        syncWithServer();  // a click posted next must find the panel gone
        if (wasVisible) services_.milestones.reached(milestone::inputHidden, 0);
    }

    void setText(const std::string& text) override {
        window_.field().setText(QString::fromStdString(text));
        remeasure();
    }

    void setShowsProgress(bool shows) override { window_.spinner().setVisible(shows); }

    void setLook(const InputLook& look) override {
        if (look == look_) return;
        look_ = look;
        adoptLook();
    }

    Subscription onTextChanged(std::function<void(const std::string&)> changed) override {
        return textChanged_.add(std::move(changed));
    }
    Subscription onMeasured(std::function<void(double)> measured) override {
        measured(measuredWidth_);
        return measured_.add(std::move(measured));
    }
    Subscription onResignKey(std::function<void()> resigned) override { return resigned_.add(std::move(resigned)); }
    Subscription onCancel(std::function<void()> cancelled) override { return cancelled_.add(std::move(cancelled)); }

private:
    std::uint32_t number() const { return static_cast<std::uint32_t>(window_.winId()); }

    // The native window, the style and the glyphs of the font before the first search needs them.
    void warmUp() {
        window_.winId();
        window_.ensurePolished();
        window_.field().setText("abcdefghijklmnopqrstuvwxyz");
        window_.grab();
        window_.field().setText({});
    }

    void appearanceChanged() {
        const AppearanceValues& now = services_.appearance.values();
        window_.setAppearance(now);
        if (now.scale != window_.look().scale) adoptLook();
    }

    void adoptLook() {
        window_.setLook(look_, services_.appearance.values().scale);
        setFrame(frame_);
        remeasure();
    }

    void edited() {
        services_.milestones.reached(milestone::textChanged, 0);
        remeasure();
        textChanged_(window_.field().text().toStdString());
    }

    void remeasure() {
        const double width = window_.measuredWidth();
        if (width == measuredWidth_) return;
        measuredWidth_ = width;
        measured_(width);
    }

    void dragged(QPoint by) { setFrame({{frame_.origin.x + by.x(), frame_.origin.y - by.y()}, frame_.size}); }

    void painted() {
        if (!awaitsPainting_) return;
        awaitsPainting_ = false;
        // Queued, as the painting reaches the server after the event that asked for it.
        QMetaObject::invokeMethod(
            &window_,
            [this] {
                flushToServer();
                if (hasKeyboard_) services_.milestones.reached(milestone::inputShown, 0);
                if (services_.afterTheInput) services_.afterTheInput->theInputIsPainted();
            },
            Qt::QueuedConnection);
    }

    void setHasKeyboard(bool has) {
        hasKeyboard_ = has;
        focus_.setPanelHasKeyboard(has);
    }

    void lostKeyboard() {
        setHasKeyboard(false);
        resigned_();
    }

    PanelServices services_;
    InputWindow window_;
    FocusKeeper focus_{window_};
    KeyPace pace_;
    InputLook look_;
    PanelRect frame_;
    double measuredWidth_ = 0;
    bool hasKeyboard_ = false;
    bool awaitsPainting_ = false;
    Listeners<const std::string&> textChanged_;
    Listeners<double> measured_;
    Listeners<> resigned_;
    Listeners<> cancelled_;
    Subscription appearanceChanged_;
};

}  // namespace

std::unique_ptr<InputPanel> makeQtInputPanel(const PanelServices& services) {
    return std::make_unique<QtInputPanel>(services);
}

}  // namespace tarvix
