#include "qt/QtSplashPanel.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <cmath>

#include "qt/ProgramIcon.h"
#include "qt/QtText.h"
#include "qt/RoundedPanel.h"
#include "qt/SplashButton.h"
#include "qt/XcbOfQt.h"

namespace tarvix {

namespace {

// In points.
constexpr double kPadding = 16;
constexpr double kIconSize = 72;
constexpr double kBelowIcon = 12;
constexpr double kTitleSize = 17;
constexpr double kTextSize = 13;
constexpr double kBelowText = 18;
constexpr double kBetweenButtons = 4;
constexpr double kBesideButtonText = 8;

constexpr float kOpacity = 0.97F;  // where windows are blended
constexpr std::uint32_t kEveryDesktop = 0xffffffff;

class SplashWindow : public QWidget {
public:
    SplashWindow() : QWidget(nullptr, Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
        setObjectName("Splash");
        setWindowTitle("Tarvix");
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_QuitOnClose, false);  // it is none of the windows that can be closed
    }

    void setContent(const SplashContent& content, const std::function<void(SplashAction)>& pressed) {
        content_ = content;
        pressed_ = pressed;
        build();
    }

    void setAppearance(const AppearanceValues& appearance) {
        appearance_ = appearance;
        if (content_) build();
    }

    void setTranslucent(bool translucent) {
        translucent_ = translucent;
        maskIfOpaque();
        update();
    }

    void center(const QRect& screen) {
        const QRect place(QPoint(), size());
        move(screen.center() - place.center());
    }

    // A window manager reads it when the window comes up.
    void showOnEveryDesktop() {
        auto* x = connectionOfQt();
        if (!x) return;
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(winId()), atomOf(x, "_NET_WM_DESKTOP"),
                            XCB_ATOM_CARDINAL, 32, 1, &kEveryDesktop);
    }

protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }

    void keyPressEvent(QKeyEvent* event) override {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isReturn && default_ && !event->isAutoRepeat()) default_->click();
    }

    // By the window manager, so that it stays within what that allows; by hand without one.
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) return;
        isDragged_ = !windowHandle()->startSystemMove();
        grip_ = event->globalPosition().toPoint() - pos();
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (isDragged_) move(event->globalPosition().toPoint() - grip_);
    }
    void mouseReleaseEvent(QMouseEvent*) override { isDragged_ = false; }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ground = appearance_.isDark ? QColor(44, 44, 48) : QColor(246, 246, 248);
        if (translucent_) ground.setAlphaF(kOpacity);
        QColor edge = appearance_.isDark ? Qt::white : Qt::black;
        edge.setAlphaF(0.25F);
        painter.setBrush(ground);
        painter.setPen(QPen(edge, appearance_.scale));
        painter.drawRoundedRect(box(), radius(), radius());
    }

private:
    int pixels(double points) const { return static_cast<int>(std::lround(points * appearance_.scale)); }
    double radius() const { return content_ ? content_->cornerRadius * appearance_.scale : 0; }
    QRectF box() const {
        const double inset = appearance_.scale / 2;
        return QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    }

    void build() {
        delete layout();
        qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(pixels(kPadding), pixels(kPadding), pixels(kPadding), pixels(kPadding));
        column->setSpacing(0);
        auto* icon = new QLabel;
        icon->setPixmap(programIcon(pixels(kIconSize)));
        icon->setAlignment(Qt::AlignCenter);
        column->addWidget(icon);
        column->addSpacing(pixels(kBelowIcon));
        column->addWidget(label(content_->title, panelFont(kTitleSize * appearance_.scale, QFont::Bold)));
        column->addSpacing(pixels(content_->spaceBelowTitle));
        column->addWidget(label(content_->text, panelFont(kTextSize * appearance_.scale, QFont::Normal)));
        column->addSpacing(pixels(kBelowText - kBetweenButtons));
        for (const SplashButton& button : content_->buttons) {
            column->addSpacing(pixels(kBetweenButtons));
            column->addWidget(makeButton(button));
        }
        // A layout leaves out what has come into a window that shows, until that shows too.
        for (auto* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) child->show();
        const int width = pixels(content_->width);
        setFixedSize(width, column->heightForWidth(width));
        maskIfOpaque();
        update();
    }

    QLabel* label(std::string_view said, const QFont& font) {
        auto* label = new QLabel(textOf(said));
        label->setFont(font);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignCenter);
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, appearance_.isDark ? Qt::white : Qt::black);
        label->setPalette(palette);
        return label;
    }

    // Fonts differ in width, and the panel doesn't; the buttons are alike.
    QFont buttonFont() const {
        const int room = pixels(content_->width - 2 * kPadding - 2 * kBesideButtonText);
        QFont font = panelFont(kTextSize * appearance_.scale, QFont::Normal);
        const auto fits = [&](const SplashButton& button) {
            return QFontMetrics(font).horizontalAdvance(textOf(button.title)) <= room;
        };
        while (!std::ranges::all_of(content_->buttons, fits) && font.pixelSize() > 1)
            font.setPixelSize(font.pixelSize() - 1);
        return font;
    }

    QPushButton* makeButton(const SplashButton& button) {
        auto* made = new SplashPanelButton(textOf(button.title), button.isDefault, appearance_);
        made->setFont(buttonFont());
        // Later, since the answer may be to take this very button away.
        QObject::connect(
            made, &QPushButton::clicked, this, [this, action = button.action] { pressed_(action); },
            Qt::QueuedConnection);
        if (button.isDefault) {
            default_ = made;
            made->setFocus();
        }
        return made;
    }

    void maskIfOpaque() {
        if (translucent_ || size().isEmpty()) {
            clearMask();
            return;
        }
        maskRounded(*this, box(), radius(), appearance_.scale);
    }

    std::optional<SplashContent> content_;
    std::function<void(SplashAction)> pressed_;
    AppearanceValues appearance_;
    QPushButton* default_ = nullptr;
    bool translucent_ = true;
    bool isDragged_ = false;
    QPoint grip_;
};

class QtSplashPanel : public SplashPanel {
public:
    explicit QtSplashPanel(const PanelServices& services) : services_(services) {
        window_.setAppearance(services_.appearance.values());
        appearanceChanged_ =
            services_.appearance.onChange([this] { window_.setAppearance(services_.appearance.values()); });
    }

    void setContent(const SplashContent& content, std::function<void(SplashAction)> pressed) override {
        window_.setContent(content, pressed);
    }

    void orderFrontRegardless() override {
        window_.setTranslucent(services_.windowing.isComposited());
        if (window_.isVisible()) {
            window_.raise();
            return;
        }
        if (const auto screen = services_.screens.mainFrame())
            window_.center(pixelsOf(flip(*screen, firstScreenHeight(services_.screens))));
        window_.showOnEveryDesktop();
        window_.show();
    }

    void orderOut() override { window_.hide(); }

private:
    PanelServices services_;
    SplashWindow window_;
    Subscription appearanceChanged_;
};

}  // namespace

std::unique_ptr<SplashPanel> makeQtSplashPanel(const PanelServices& services) {
    return std::make_unique<QtSplashPanel>(services);
}

}  // namespace tarvix
