#include "qt/QtSplashPanel.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

namespace tarvix {

namespace {

QString text(std::string_view from) { return QString::fromUtf8(from.data(), static_cast<qsizetype>(from.size())); }

class QtSplashPanel : public SplashPanel {
public:
    void setContent(const SplashContent& view, std::function<void(SplashAction)> pressed) override {
        window_ = std::make_unique<QWidget>();
        auto* column = new QVBoxLayout(window_.get());
        for (const std::string_view said : {view.title, view.text}) {
            auto* label = new QLabel(text(said));
            label->setWordWrap(true);
            column->addWidget(label);
        }
        for (const SplashButton& button : view.buttons) {
            auto* widget = new QPushButton(text(button.title));
            QObject::connect(widget, &QPushButton::clicked, [pressed, action = button.action] { pressed(action); });
            column->addWidget(widget);
        }
    }
    void orderFrontRegardless() override { window_->show(); }
    void orderOut() override { window_->hide(); }

private:
    std::unique_ptr<QWidget> window_ = std::make_unique<QWidget>();
};

}  // namespace

std::unique_ptr<SplashPanel> makeQtSplashPanel() { return std::make_unique<QtSplashPanel>(); }

}  // namespace tarvix
