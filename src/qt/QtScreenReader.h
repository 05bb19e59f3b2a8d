// The desktop's screen reader: whether one runs, and what it is told.
#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <string_view>
#include <vector>

namespace tarvix {

// Main thread. It only listens to what the desktop says of its screen reader, and never waits for an answer: until
// there is one, and without a session bus, none runs.
class QtScreenReader : public QObject {
    Q_OBJECT

public:
    QtScreenReader();

    bool isRunning() const { return isRunning_; }

    // Has it speak a text, without waiting, after those given before; from a priority of 90 on at once, else when it
    // has finished its sentence. The text comes from the widget with the keyboard, else from the program as a whole.
    // Nothing where Qt isn't on the accessibility bus.
    void announce(std::string_view text, int priority);

private Q_SLOTS:
    void statusChanged(const QString& interface, const QVariantMap& changed);

private:
    struct Announcement {
        QString from;  // the path of an accessible object
        QString text;
        int politeness;
    };

    void readStatus();
    void askWhatIsHeard();
    void sayTo(const QStringList& heard);

    QDBusServiceWatcher launcher_;
    bool isRunning_ = false;
    std::vector<Announcement> unsaid_;  // until the answer comes
};

}  // namespace tarvix
