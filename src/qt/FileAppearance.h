// The appearance by a file of the desktop's.
#pragma once

#include <QFileSystemWatcher>
#include <QString>
#include <functional>
#include <optional>

#include "base/Listeners.h"
#include "platform/Appearance.h"

namespace tarvix {

// The file is read when it is made and whenever it has changed; it may come and go, and its folder with it. What is no
// ordinary file, or larger than a megabyte, tells nothing. Main thread.
class FileAppearance final : public AppearanceSource {
public:
    using Reader = std::function<AppearanceTold(std::string_view text)>;

    FileAppearance(const QString& path, Reader reader);

    AppearanceTold told() const override { return told_; }
    [[nodiscard]] Subscription onChange(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

private:
    void refresh();
    void watch();

    QString path_;
    Reader reader_;
    std::optional<QByteArray> text_;
    AppearanceTold told_;
    QFileSystemWatcher watcher_;
    Listeners<> changed_;
};

}  // namespace tarvix
