// The probe in a Qt application, and the plug-in that makes it.
#pragma once

#include <QGenericPlugin>
#include <QObject>
#include <QWidget>

#include "tests/applications/probes/Channel.h"
#include "tests/applications/probes/Seen.h"

class QMouseEvent;

namespace tarvix::probe {

class Probe : public QObject {
    Q_OBJECT

public:
    Probe();
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static std::vector<Seen> seenInWindow(unsigned long long number);
    void press(QWidget* widget, QMouseEvent* event);

    Channel channel_;
    unsigned long long lastPress_ = 0;
};

class Plugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "QtProbe.json")

public:
    QObject* create(const QString& name, const QString& arguments) override;
};

}  // namespace tarvix::probe
