// A small indeterminate progress indicator.
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace tarvix {

// A ring of spokes in its palette's text colour; it turns only while it is visible.
class ProgressSpinner : public QWidget {
public:
    explicit ProgressSpinner(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QBasicTimer timer_;
    int step_ = 0;
};

}  // namespace tarvix
