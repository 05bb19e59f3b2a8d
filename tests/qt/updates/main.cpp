#include <gmock/gmock.h>

#include <QApplication>
#include <QNetworkProxy>

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);  // the server is in this process
    testing::InitGoogleMock(&count, arguments);
    return RUN_ALL_TESTS();
}
