#include "qt/NotifierItem.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QImage>
#include <QTimer>
#include <QtEndian>
#include <array>
#include <utility>

#include "qt/NotifierTypes.h"
#include "qt/WindSymbol.h"

namespace tarvix {

namespace {

constexpr auto kInterface = "org.kde.StatusNotifierItem";
constexpr auto kPath = "/StatusNotifierItem";  // where everybody looks for it
constexpr auto kMenuPath = "/MenuBar";
constexpr std::array kSizes{16, 22, 24, 32, 48, 64};

constexpr auto kDescription = R"xml(  <interface name="org.kde.StatusNotifierItem">
    <property name="Category" type="s" access="read"/>
    <property name="Id" type="s" access="read"/>
    <property name="Title" type="s" access="read"/>
    <property name="Status" type="s" access="read"/>
    <property name="WindowId" type="i" access="read"/>
    <property name="IconName" type="s" access="read"/>
    <property name="IconThemePath" type="s" access="read"/>
    <property name="IconPixmap" type="a(iiay)" access="read"/>
    <property name="IconAccessibleDesc" type="s" access="read"/>
    <property name="OverlayIconName" type="s" access="read"/>
    <property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
    <property name="AttentionIconName" type="s" access="read"/>
    <property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
    <property name="AttentionMovieName" type="s" access="read"/>
    <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
    <property name="ItemIsMenu" type="b" access="read"/>
    <property name="Menu" type="o" access="read"/>
    <method name="ContextMenu"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
    <method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
    <method name="SecondaryActivate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
    <method name="Scroll"><arg type="i" direction="in"/><arg type="s" direction="in"/></method>
    <signal name="NewTitle"/>
    <signal name="NewIcon"/>
    <signal name="NewAttentionIcon"/>
    <signal name="NewOverlayIcon"/>
    <signal name="NewToolTip"/>
    <signal name="NewStatus"><arg type="s"/></signal>
  </interface>
)xml";

NotifierPixmap pixmapOf(int size, const SymbolColors& colors) {
    QImage image = windSymbol(size, colors).convertToFormat(QImage::Format_ARGB32);
    NotifierPixmap pixmap{size, size, QByteArray(image.sizeInBytes(), Qt::Uninitialized)};
    qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, pixmap.pixels.data());
    return pixmap;
}

QVariant pixmapsFor(bool isOnDark) {
    NotifierPixmaps all;
    for (const int size : kSizes) all << pixmapOf(size, symbolColors(isOnDark));
    return QVariant::fromValue(all);
}

// Each item that is registered needs a name of its own: watchers know them by it.
QString nextBusName() {
    static int count = 0;
    return QString("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
}

QDBusMessage callToBus(const char* method) {
    return QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                          method);
}

}  // namespace

NotifierItem::NotifierItem(NotifierWatcher& watcher, StatusMenu& menu, const StatusButton& button, bool isOnDark,
                           StatusItemClicks clicks, std::function<void()> refused)
    : BusObject(QDBusConnection::sessionBus(), kPath, kInterface, kDescription),
      watcher_(watcher),
      clicks_(std::move(clicks)),
      busName_(nextBusName()),
      busMenu_(QDBusConnection::sessionBus(), kMenuPath, menu),
      button_(button),
      isOnDark_(isOnDark),
      pixmaps_(pixmapsFor(isOnDark_)) {
    registerNotifierTypes();
    const auto opens = [this](const QVariantList& arguments) { return opensMenu(arguments); };
    const auto ignores = [](const QVariantList&) { return QVariantList{}; };
    const auto removes = [this](const QVariantList&) {
        QTimer::singleShot(0, this, clicks_.removes);
        return QVariantList{};
    };
    setMethods({{"Activate", {"ii", opens}},
                {"ContextMenu", {"ii", opens}},
                {"SecondaryActivate", {"ii", removes}},
                {"Scroll", {"is", ignores}},
                {"ProvideXdgActivationToken", {"s", ignores}}});
    requestName(std::move(refused));
}

// Watchers drop an item when its name goes.
NotifierItem::~NotifierItem() {
    QDBusMessage release = callToBus("ReleaseName");
    release << busName_;
    QDBusConnection::sessionBus().send(release);
}

void NotifierItem::requestName(std::function<void()> refused) {
    QDBusMessage request = callToBus("RequestName");
    constexpr uint withoutWaiting = 4, isOurs = 1;
    request << busName_ << withoutWaiting;
    auto* pending = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(request), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, refused = std::move(refused)] {
        pending->deleteLater();
        if (const QDBusPendingReply<uint> reply = *pending; reply.isError() || reply.value() != isOurs)
            return refused();
        watcher_.registerItem(*this, busName_, refused);
    });
}

void NotifierItem::setIsOnDark(bool isOnDark) {
    if (isOnDark == isOnDark_) return;
    isOnDark_ = isOnDark;
    pixmaps_ = pixmapsFor(isOnDark);
    tell("NewIcon");
}

QVariantMap NotifierItem::properties() const {
    const QString title = QString::fromStdString(button_.accessibilityTitle);
    const NotifierToolTip toolTip{{}, {}, title, QString::fromStdString(button_.accessibilityHelp)};
    const QVariant none = QVariant::fromValue(NotifierPixmaps());
    return {{"Category", "ApplicationStatus"},
            {"Id", "org.tarvix.Tarvix"},
            {"Title", title},
            {"Status", "Active"},
            {"WindowId", 0},
            {"IconName", ""},
            {"IconThemePath", ""},
            {"IconPixmap", pixmaps_},
            {"IconAccessibleDesc", QString::fromStdString(button_.accessibilityLabel)},
            {"OverlayIconName", ""},
            {"OverlayIconPixmap", none},
            {"AttentionIconName", ""},
            {"AttentionIconPixmap", none},
            {"AttentionMovieName", ""},
            {"ToolTip", QVariant::fromValue(toolTip)},
            {"ItemIsMenu", true},
            {"Menu", QVariant::fromValue(QDBusObjectPath(kMenuPath))}};
}

// The panel holds the mouse until it has its answer.
NotifierItem::Answer NotifierItem::opensMenu(const QVariantList& arguments) {
    const QPoint where(arguments[0].toInt(), arguments[1].toInt());
    QTimer::singleShot(0, this, [this, where] { clicks_.opensMenu(where); });
    return QVariantList{};
}

}  // namespace tarvix
