#include "qt/BusObject.h"

#include <QDBusVariant>

namespace tarvix {

namespace {

constexpr auto kPropertiesInterface = "org.freedesktop.DBus.Properties";
constexpr auto kPropertiesDescription = R"(  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
    </method>
    <method name="GetAll"><arg type="s" direction="in"/><arg type="a{sv}" direction="out"/></method>
  </interface>
)";

}  // namespace

BusObject::BusObject(QDBusConnection bus, QString path, QString interface, QString description)
    : bus_(std::move(bus)),
      path_(std::move(path)),
      interface_(std::move(interface)),
      description_(std::move(description)) {
    bus_.registerVirtualObject(path_, this);
}

BusObject::~BusObject() { bus_.unregisterObject(path_); }

QString BusObject::introspect(const QString&) const { return description_ + kPropertiesDescription; }

void BusObject::tell(const char* signal, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createSignal(path_, interface_, signal);
    message.setArguments(arguments);
    bus_.send(message);
}

// What isn't answered here, Qt answers: introspection, a sign of life, or that there is no such method.
bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    const auto answer = answerTo(message);
    if (!answer) return false;
    connection.send(*answer ? message.createReply(**answer)
                            : message.createErrorReply(QDBusError::InvalidArgs, "There is no such thing here"));
    return true;
}

std::optional<BusObject::Answer> BusObject::answerTo(const QDBusMessage& message) const {
    if (message.interface() == kPropertiesInterface) return answerAboutProperties(message);
    if (message.interface() != interface_ && !message.interface().isEmpty()) return std::nullopt;
    const auto method = methods_.find(message.member());
    if (method == methods_.end() || method->second.signature != message.signature()) return std::nullopt;
    return method->second.answer(message.arguments());
}

BusObject::Answer BusObject::answerAboutProperties(const QDBusMessage& message) const {
    const QVariantList arguments = message.arguments();
    if (!message.signature().startsWith('s') || arguments[0].toString() != interface_) return std::nullopt;
    const QVariantMap all = properties();
    if (message.member() == "GetAll" && arguments.size() == 1) return QVariantList{all};
    if (message.member() != "Get" || arguments.size() != 2) return std::nullopt;
    const auto found = all.find(arguments[1].toString());
    if (found == all.end()) return std::nullopt;
    return QVariantList{QVariant::fromValue(QDBusVariant(*found))};
}

}  // namespace tarvix
