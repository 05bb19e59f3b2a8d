// An object of this program on the session bus with one interface, whose methods stand in a table.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace tarvix {

// Main thread. At its path for as long as it lives.
class BusObject : public QDBusVirtualObject {
public:
    ~BusObject() override;
    BusObject(const BusObject&) = delete;
    BusObject& operator=(const BusObject&) = delete;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

protected:
    using Answer = std::optional<QVariantList>;  // absent: the arguments make no sense
    struct Method {
        QString signature;  // of its arguments; a call with others doesn't get there
        std::function<Answer(const QVariantList&)> answer;
    };
    using Methods = std::map<QString, Method>;

    // `description` is the interface's element of the introspection.
    BusObject(QDBusConnection bus, QString path, QString interface, QString description);
    void setMethods(Methods methods) { methods_ = std::move(methods); }
    virtual QVariantMap properties() const = 0;
    void tell(const char* signal, const QVariantList& arguments = {});

private:
    std::optional<Answer> answerTo(const QDBusMessage& message) const;
    Answer answerAboutProperties(const QDBusMessage& message) const;

    QDBusConnection bus_;
    QString path_, interface_, description_;
    Methods methods_;
};

}  // namespace tarvix
